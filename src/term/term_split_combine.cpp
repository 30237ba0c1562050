// Splits are views: they borrow from the term. A leaf counts by what it names, whatever it carries.
#include "term/term_split_combine.h"

#include <algorithm>
#include <string>

#include "term/node_memo.h"
#include "term/report.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// A proposition that carries a side condition is used whole.
bool is_scoped_application(term_ptr t) {
  return t->scope() != nullptr || (t->left()->type() == Apply && t->left()->scope() != nullptr);
}

// Head and operands of f(a) or f(a, b) with a leaf of that type as f.
struct small_application {
  term_ptr head = nullptr;
  term_ptr t1 = nullptr;
  term_ptr t2 = nullptr;
};

small_application opened(term_ptr t, term_type leaf) {
  if (!is_apply(t) || (leaf != Oper && is_scoped_application(t))) {
    return {};
  }
  if (t->left()->type() == leaf) {
    return {t->left(), t->right(), nullptr};
  }
  if (t->left()->type() == Apply && t->left()->left()->type() == leaf) {
    return {t->left()->left(), t->left()->right(), t->right()};
  }
  return {};
}

term_ptr unary(term_ptr head, term_ptr t1) { return mk_apply(head, t1); }

term_ptr binary(term_ptr head, term_ptr t1, term_ptr t2) { return mk_apply(mk_apply(head, t1), t2); }

term_ptr unsupported(const char* what, int number) {
  print_progress(what + std::to_string(number) + "\n");
  return nullptr;
}

void append_operands(term_ptr t, connect_type connect, term_list& out) {
  const auto view = composed_prop_split(t);
  if (!view || view->connect != connect || view->t2 == nullptr) {
    out.push_back(t);
    return;
  }
  append_operands(view->t1, connect, out);
  append_operands(view->t2, connect, out);
}

}  // namespace

// ---- Splits.

std::optional<composed_term> composed_term_split(term_ptr t) {
  const small_application parts = opened(t, Oper);
  if (parts.head == nullptr) {
    return std::nullopt;
  }
  return composed_term{parts.head->oper(), parts.t1, parts.t2};
}

std::optional<atomic_prop> atomic_prop_split(term_ptr t) {
  const small_application parts = opened(t, Pred);
  if (parts.head == nullptr) {
    return std::nullopt;
  }
  return atomic_prop{parts.head->pred(), parts.t1, parts.t2};
}

std::optional<composed_prop> composed_prop_split(term_ptr t) {
  const small_application parts = opened(t, Connect);
  if (parts.head == nullptr) {
    return std::nullopt;
  }
  return composed_prop{parts.head->connect(), parts.t1, parts.t2};
}

std::optional<prop> pred_split(term_ptr t) {
  const small_application parts = opened(t, Pred);
  if (parts.t2 == nullptr) {
    return std::nullopt;
  }
  return prop{parts.head->pred(), parts.t1, parts.t2};
}

// ---- Builders.

term_ptr make_composed_term(oper_type oper, term_ptr t1, term_ptr t2) {
  switch (oper) {
    case Tuple: {
      const term_ptr components[] = {t1, t2};
      return make_tuple(components);
    }
    case SetUnion:
    case PowerSet:
    case InverseBinRel:
      return unary(mk_oper(oper), t1);
    default:
      return unsupported("error, unsupport oper type ", oper);
  }
}

term_ptr make_atomic_prop(pred_type pred, term_ptr t1, term_ptr t2) {
  switch (pred) {
    case Eq:
    case Neq:
    case Gt:
    case Ge:
    case Lt:
    case Le:
    case Appro:
    case IdentEq:
    case Divides:
    case Belong:
    case Subset:
    case SetPartition:
    case Equinumerous:
      return binary(mk_pred(pred), t1, t2);
    case CountableSet:
    case ReflexiveBinRel:
    case SymmetricBinRel:
    case TransitiveBinRel:
    case EquivalenceBinRel:
      return unary(mk_pred(pred), t1);
    default:
      return unsupported("error, unsupport pred type:", pred);
  }
}

term_ptr make_composed_prop(connect_type connect, term_ptr t1, term_ptr t2) {
  switch (connect) {
    case Not:
      return unary(mk_connect(connect), t1);
    case And:
    case Or:
    case Impl:
    case Iff:
      return binary(mk_connect(connect), t1, t2);
    default:
      return unsupported("error, unsupport connect type:", connect);
  }
}

term_ptr make_quant_prop(quant_type type, std::string_view name, term_ptr body) {
  const term_ptr vars[] = {mk_var(name)};
  return mk_quant(type, vars, body);
}

term_ptr make_binPred_prop(pred_type pred, term_ptr t1, term_ptr t2) { return binary(mk_pred(pred), t1, t2); }

term_ptr make_binOp_term(oper_type oper, term_ptr t1, term_ptr t2) { return binary(mk_oper(oper), t1, t2); }

term_ptr make_unOp_term(oper_type oper, term_ptr t1) { return unary(mk_oper(oper), t1); }

term_ptr make_const(const_type type, int num) {
  switch (type) {
    case Integer:
      return mk_integer(num);
    case Decimal:
      return mk_decimal("");
    default:
      return mk_const(type);
  }
}

std::string make_quantvar_str(int id) { return "qvar" + std::to_string(id); }

term_ptr make_var(int id) { return mk_var(make_quantvar_str(id)); }

term_ptr make_tuple(term_span components) { return mk_apply(mk_oper(Tuple), mk_term_list(components)); }

term_ptr and_compose(term_span list) {
  if (list.empty()) {
    return nullptr;
  }
  term_ptr result = list.back();
  for (std::size_t i = list.size() - 1; i > 0; --i) {
    result = binary(mk_connect(And), list[i - 1], result);
  }
  return result;
}

term_ptr lambda_condition_from_list(term_span list) {
  term_ptr result = list.empty() ? nullptr : list.front();
  for (std::size_t i = 1; i < list.size(); ++i) {
    result = binary(mk_connect(And), result, list[i]);
  }
  return result;
}

// ---- Conjunctions.

namespace {

bool is_conjunction(term_ptr t) { return is_apply(t) && is_apply(t->left()) && is_connect(t->left()->left(), And); }

class conjunction_split {
 public:
  void split(term_ptr t, term_list& out) {
    if (!is_conjunction(t)) {
      out.push_back(preserved(t));
      return;
    }
    const std::size_t first = out.size();
    split(t->left()->right(), out);
    split(t->right(), out);
    if (t->scope() != nullptr) {
      add_scope(flat(t->scope()), first, out);
    }
  }

  // Every scope inside in its flat form.
  term_ptr preserved(term_ptr t) {
    if (!t->has(fact_scope)) {
      return t;
    }
    return known_.get(t, [&] {
      const term_ptr result =
          map_children(t, walk_children | walk_binders | keep_meta, [this](term_ptr part) { return preserved(part); });
      return t->scope() == nullptr ? result : with_scope(result, flat(t->scope()));
    });
  }

 private:
  term_ptr flat(term_ptr scope) {
    term_list conjuncts;
    split(scope, conjuncts);
    return and_compose(conjuncts);
  }

  static void add_scope(term_ptr scope, std::size_t first, term_list& conjuncts) {
    for (std::size_t i = first; i < conjuncts.size(); ++i) {
      const term_ptr own = conjuncts[i]->scope();
      conjuncts[i] = with_scope(conjuncts[i], own == nullptr ? scope : binary(mk_connect(And), own, scope));
    }
  }

  node_memo<term_ptr> known_;
};

}  // namespace

term_list term_split_and(term_ptr t) {
  if (t == nullptr) {
    report_error("Error: term_split_and visiting NULL pointer\n");
    return {};
  }
  term_list result;
  conjunction_split().split(t, result);
  return result;
}

term_ptr term_split_and_preserve(term_ptr t) { return t == nullptr ? nullptr : conjunction_split().preserved(t); }

term_list split_connect(term_ptr t, connect_type connect) {
  term_list operands;
  append_operands(t, connect, operands);
  return operands;
}

}  // namespace vetro

// What the written form of an opaque term keeps.
#include "qv_solver_list/algebra/expression_reader.h"

namespace vetro {
namespace {

bool is_proposition(term_ptr t) {
  while (t->type() == Apply) {
    t = t->left();
  }
  return t->type() == Pred || t->type() == Connect || t->type() == Quant;
}

term_ptr strip(term_ptr t, std::unordered_map<term_ptr, term_ptr>& done) {
  if (!t->has(fact_meta)) {
    return t;
  }
  const auto known = done.find(t);
  if (known != done.end()) {
    return known->second;
  }
  const unsigned scope = is_proposition(t) ? walk_scope : 0U;
  term_ptr plain = map_children(t, walk_children | keep_binders | always_rebuild | scope,
                                [&](term_ptr part) { return strip(part, done); });
  done.emplace(t, plain);
  return plain;
}

// SetDesc applied to two arguments.
bool describes_set(term_ptr t) { return is_apply(t) && is_apply(t->left()) && is_oper(t->left()->left(), SetDesc); }

// Set descriptions beyond this size count as depending on their domain unseen.
constexpr std::uint32_t most_nodes_searched = 10'000;

bool is_number(term_ptr t) { return t->type() == Const && (t->constant() == Integer || t->constant() == Decimal); }

// A quotient by something else than a number, or a power that may stand for one.
bool may_be_undefined(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view || view->t2 == nullptr) {
    return false;
  }
  switch (view->oper) {
    case Div:
    case Frac:
      return !is_number(view->t2);
    case Power:
      return !is_number(view->t2) || view->t2->constant() != Integer || view->t2->integer() < 0;
    default:
      return false;
  }
}

bool is_zero(term_ptr t) {
  const auto number = number_literal(t);
  return number && number->is_zero();
}

// The application of something that may not be defined everywhere: ln(x), f(x), a_n.
bool may_be_partial(term_ptr t) {
  if (!is_apply(t) || is_apply(t->left())) {
    return false;
  }
  term_ptr head = t->left();
  if (head->type() != Oper) {
    return head->type() != Pred && head->type() != Connect;
  }
  switch (head->oper()) {
    case Plus:
    case Neg:
    case Minus:
    case Mult:
    case Div:
    case Frac:
    case Power:
    case Abs:
    case Sgn:
    case Floor:
    case Ceil:
    case Sin:
    case Cos:
    case SetDesc:
    case SetEnum:
    case Tuple:
      return false;
    default:
      return true;
  }
}

// Arithmetic by which another part can vanish: a difference, a negation, an operand 0.
bool may_cancel(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view) {
    return false;
  }
  switch (view->oper) {
    case Neg:
    case Minus:
      return true;
    case Plus:
    case Mult:
    case Div:
    case Frac:
    case Power:
      return view->t2 != nullptr && (is_zero(view->t1) || is_zero(view->t2));
    default:
      return false;
  }
}

bool is_differential(term_ptr t) { return is_apply(t) && (is_oper(t->left(), PD) || is_oper(t->left(), D)); }

bool holds_differential(term_ptr t) { return any_subterm(t, walk_children, is_differential); }

// A differential, or a product or power with one in it.
bool is_product_with_differential(term_ptr t) {
  term_list open{t};
  std::unordered_set<term_ptr> opened;
  while (!open.empty()) {
    term_ptr part = open.back();
    open.pop_back();
    if (is_differential(part)) {
      return true;
    }
    const auto view = composed_term_split(part);
    if (!view || view->t2 == nullptr || (view->oper != Mult && view->oper != Power) || !opened.insert(part).second) {
      continue;
    }
    open.push_back(view->t1);
    if (view->oper == Mult) {
      open.push_back(view->t2);
    }
  }
  return false;
}

// A differential of a differential, or a quotient of differentials.
bool holds_second_order(term_ptr t) {
  return holds_differential(t) && any_subterm(t, walk_children, [](term_ptr part) {
           if (is_differential(part)) {
             return holds_differential(part->right());
           }
           const auto view = composed_term_split(part);
           return view && view->t2 != nullptr && (view->oper == Div || view->oper == Frac) &&
                  holds_differential(view->t2);
         });
}

}  // namespace

bool is_conditional_proposition(term_ptr t) { return t->scope() != nullptr && is_proposition(t); }

term_ptr written_form(term_ptr t) {
  std::unordered_map<term_ptr, term_ptr> done;
  return strip(t, done);
}

bool is_dotted_list(term_ptr t) {
  if (!t->has(fact_ellipsis)) {
    return false;
  }
  const auto is_ellipsis = [](term_ptr part) { return is_constant(part, Ellipsis); };
  if (t->type() == TermList) {
    return std::any_of(t->elements().begin(), t->elements().end(), is_ellipsis);
  }
  for (term_ptr part = t; part->type() == Apply; part = part->left()) {
    if (is_ellipsis(part->right())) {
      return true;
    }
  }
  // In 1 + 2 + ... + n, the operand to the left ends in the ellipsis.
  const auto view = composed_term_split(t);
  const auto before = view && view->t2 != nullptr ? composed_term_split(view->t1) : std::nullopt;
  return before && before->t2 != nullptr && is_ellipsis(before->t2);
}

bool divides_by_differentials(const composed_term& view) {
  term_ptr divisor = view.oper == Power ? view.t1 : view.t2;
  const bool first_order =
      is_differential(divisor) && is_oper(divisor->left(), D) && !holds_differential(divisor->right());
  if (view.oper == Power) {
    const auto exponent = integer_literal(view.t2);
    return (!exponent || *exponent < (first_order ? -1 : 0)) && is_product_with_differential(divisor);
  }
  return first_order ? holds_second_order(view.t1) : is_product_with_differential(divisor);
}

bool depends_on_domain(term_ptr t) {
  if (is_pred(t->left(), Defined) || is_oper(t->left(), Dom)) {
    return true;
  }
  return describes_set(t) &&
         (t->size() > most_nodes_searched || any_subterm(t, walk_children, may_be_undefined) ||
          (any_subterm(t, walk_children, may_be_partial) && any_subterm(t, walk_children, may_cancel)));
}

}  // namespace vetro

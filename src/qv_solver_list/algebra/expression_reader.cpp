// What the written form of an opaque term keeps.
#include "qv_solver_list/algebra/expression_reader.h"

namespace vetro {
namespace {

term_ptr strip(term_ptr t, std::unordered_map<term_ptr, term_ptr>& done) {
  if (!t->has(fact_meta)) {
    return t;
  }
  const auto known = done.find(t);
  if (known != done.end()) {
    return known->second;
  }
  constexpr unsigned parts = walk_children | keep_binders | always_rebuild;
  term_ptr plain = map_children(t, parts, [&](term_ptr part) { return strip(part, done); });
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
  return is_number(t) &&
         cnum_is_zero(t->constant() == Integer ? cnum_from_int(t->integer()) : cnum_from_decimal_str(t->decimal()));
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

}  // namespace

term_ptr written_form(term_ptr t) {
  std::unordered_map<term_ptr, term_ptr> done;
  return strip(t, done);
}

bool divides_by_differentials(term_ptr divisor) {
  if (is_differential(divisor)) {
    return is_oper(divisor->left(), PD);
  }
  term_list open{divisor};
  std::unordered_set<term_ptr> opened;
  while (!open.empty()) {
    term_ptr part = open.back();
    open.pop_back();
    const auto view = composed_term_split(part);
    if (!view || view->t2 == nullptr || (view->oper != Mult && view->oper != Power) || !opened.insert(part).second) {
      continue;
    }
    if (is_differential(view->t1) || (view->oper == Mult && is_differential(view->t2))) {
      return true;
    }
    open.push_back(view->t1);
    if (view->oper == Mult) {
      open.push_back(view->t2);
    }
  }
  return false;
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

// What the written form of an opaque term keeps.
#include "qv_solver_list/expression_reader.h"

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

}  // namespace

term_ptr written_form(term_ptr t) {
  std::unordered_map<term_ptr, term_ptr> done;
  return strip(t, done);
}

bool depends_on_domain(term_ptr t) {
  if (is_pred(t->left(), Defined) || is_oper(t->left(), Dom)) {
    return true;
  }
  return describes_set(t) && (t->size() > most_nodes_searched || any_subterm(t, walk_children, may_be_undefined));
}

}  // namespace vetro

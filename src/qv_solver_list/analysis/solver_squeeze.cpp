// Order by chains of assumed inequalities: a ≤ b and b < c give a < c, also multiplied by factors of known sign and
// cleared of denominators of known sign. Where no chain leads from one side to the other, equal parts of both sides are
// peeled off and the rest is compared: x + z ≤ y + z by x ≤ y, z - y ≤ z - x as well.
#include <algorithm>
#include <optional>

#include "qv_solver_list/analysis/squeeze_facts.h"
#include "qv_solver_list/analysis/squeeze_search.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/solvers.h"
#include "term/relation.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

class squeeze_proof {
 public:
  explicit squeeze_proof(squeeze_facts& facts) : facts_(facts), search_(facts) {}

  bool has_path(term_ptr lower, term_ptr upper, bool strict) {
    return search_.has_path(key(lower), key(upper), strict);
  }

  // lower ≤ upper, or lower < upper, by peeling off what both have.
  bool peel(term_ptr lower, term_ptr upper, bool strict);

 private:
  squeeze_keys::key_id key(term_ptr t) { return facts_.keys().of(t); }
  bool equal(term_ptr a, term_ptr b) { return key(a) == key(b); }
  bool proves(term_ptr lower, term_ptr upper, bool strict);
  bool peel_binary(const composed_term& lower, const composed_term& upper, bool strict);
  bool multiplied(term_ptr factor, term_ptr lower, term_ptr upper, bool strict);
  bool divided(term_ptr denominator, term_ptr lower, term_ptr upper, bool strict);

  squeeze_facts& facts_;
  squeeze_search search_;
};

bool squeeze_proof::proves(term_ptr lower, term_ptr upper, bool strict) {
  if (equal(lower, upper)) {
    return !strict;
  }
  return has_path(lower, upper, strict) || peel(lower, upper, strict);
}

bool squeeze_proof::peel(term_ptr lower, term_ptr upper, bool strict) {
  if (lower->has_meta() || upper->has_meta()) {
    return false;
  }
  const auto below = composed_term_split(lower);
  const auto above = composed_term_split(upper);
  if (!below || !above || below->oper != above->oper || (below->t2 == nullptr) != (above->t2 == nullptr)) {
    return false;
  }
  if (below->t2 == nullptr) {
    return below->oper == Neg && proves(above->t1, below->t1, strict);
  }
  return peel_binary(*below, *above, strict);
}

// Exactly one pair of operands is equal, and the other moves.
bool squeeze_proof::peel_binary(const composed_term& lower, const composed_term& upper, bool strict) {
  const bool same_left = equal(lower.t1, upper.t1);
  const bool same_right = equal(lower.t2, upper.t2);
  if (same_left == same_right) {
    return false;
  }
  switch (lower.oper) {
    case Plus:
      return same_right ? proves(lower.t1, upper.t1, strict) : proves(lower.t2, upper.t2, strict);
    case Minus:
      return same_right ? proves(lower.t1, upper.t1, strict) : proves(upper.t2, lower.t2, strict);
    case Mult:
      return same_right ? multiplied(lower.t2, lower.t1, upper.t1, strict)
                        : multiplied(lower.t1, lower.t2, upper.t2, strict);
    case Div:
    case Frac:
      return same_right && divided(lower.t2, lower.t1, upper.t1, strict);
    default:
      return false;
  }
}

bool squeeze_proof::multiplied(term_ptr factor, term_ptr lower, term_ptr upper, bool strict) {
  const unsigned signs = facts_.signs(key(factor));
  if ((signs & (sq_positive | sq_negative)) != 0) {
    return divided(factor, lower, upper, strict);
  }
  if (strict || signs == 0) {
    return false;
  }
  return (signs & sq_nonnegative) != 0 ? proves(lower, upper, strict) : proves(upper, lower, strict);
}

// Also multiplication, for a factor that is not 0.
bool squeeze_proof::divided(term_ptr denominator, term_ptr lower, term_ptr upper, bool strict) {
  const unsigned signs = facts_.signs(key(denominator));
  if ((signs & sq_positive) != 0) {
    return proves(lower, upper, strict);
  }
  return (signs & sq_negative) != 0 && proves(upper, lower, strict);
}

}  // namespace

bool solver_squeeze(term_ptr target, const solve_data& sdata) {
  const auto relation = target == nullptr || target->has(fact_scope) ? std::nullopt : pred_split(target);
  if (!relation || !is_order_relation(relation->pred) || relation->pred == Eq || relation->pred == Neq) {
    return false;
  }
  assumption_facts& assumed = facts_of(sdata);
  auto& complex = assumed.table<complex_values>();
  for (term_ptr side : {relation->left, relation->right}) {
    if (is_one_whole(side) || complex.may_be_complex(side)) {
      return false;
    }
  }
  auto& facts = assumed.table<squeeze_facts>();
  if (facts.overflow()) {
    return false;
  }
  const order_fact order = order_fact{relation->pred, relation->left, relation->right}.ascending();
  const bool strict = order.pred == Lt;
  squeeze_proof proof(facts);
  return proof.has_path(order.left, order.right, strict) || proof.peel(order.left, order.right, strict);
}

}  // namespace vetro

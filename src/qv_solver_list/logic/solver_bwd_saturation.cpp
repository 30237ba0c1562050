// Backward unfolding of set-theoretic and relational goals: a goal is replaced by what it means.
//
// Each rule gives propositions whose conjunction implies the goal. The rules for memberships are tried in order, and
// the first whose set has the right shape decides, also when it then needs a pair and the element is none.
#include <array>
#include <optional>
#include <utility>

#include "qv_solver_list/logic/set_meaning.h"
#include "qv_solver_list/solvers.h"
#include "term/pattern_match.h"
#include "term/substitute.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr belongs(term_ptr element, term_ptr set) { return make_atomic_prop(Belong, element, set); }

term_ptr pair_of(term_ptr first, term_ptr second) { return make_composed_term(Tuple, first, second); }

bool is_pair(term_ptr t, term_ptr& first, term_ptr& second) { return match(t, "(?, ?)", first, second); }

// A variable that the goal does not hold: "qvar" and the first free number.
term_ptr bound_variable(int first_number, term_ptr element, term_ptr set) {
  for (int number = first_number;; ++number) {
    term_ptr variable = make_var(number);
    if (!name_occurs(variable->name(), element) && !name_occurs(variable->name(), set)) {
      return variable;
    }
  }
}

term_ptr exists_both(term_ptr variable, term_ptr left, term_ptr right) {
  term_ptr both = make_composed_prop(And, left, right);
  return make_quant_prop(Exists, variable->name(), both);
}

// What x in S means, for one shape of S. Nothing when S has another shape; an empty list when no rule applies after
// all.
using meaning = std::optional<term_list>;

meaning in_intersection(term_ptr x, term_ptr set) {
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  if (!match(set, "Inter(?, ?)", a, b)) {
    return std::nullopt;
  }
  term_ptr in_a = belongs(x, a);
  term_ptr in_b = belongs(x, b);
  return term_list{in_a, in_b};
}

meaning in_union(term_ptr x, term_ptr set) {
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  if (!match(set, "Union(?, ?)", a, b)) {
    return std::nullopt;
  }
  term_ptr in_a = belongs(x, a);
  term_ptr in_b = belongs(x, b);
  return term_list{make_composed_prop(Or, in_a, in_b)};
}

meaning in_difference(term_ptr x, term_ptr set) {
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  if (!match(set, "SetMinus(?, ?)", a, b)) {
    return std::nullopt;
  }
  term_ptr in_a = belongs(x, a);
  term_ptr in_b = belongs(x, b);
  term_ptr outside_b = make_composed_prop(Not, in_b, nullptr);
  return term_list{in_a, outside_b};
}

meaning in_product(term_ptr x, term_ptr set) {
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  if (!match(set, "CartesianProd(?, ?)", a, b)) {
    return std::nullopt;
  }
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_pair(x, x1, x2)) {
    return term_list{};
  }
  term_ptr in_a = belongs(x1, a);
  term_ptr in_b = belongs(x2, b);
  return term_list{in_a, in_b};
}

meaning in_inverse(term_ptr x, term_ptr set) {
  term_ptr relation = nullptr;
  if (!match(set, "InverseBinRel(?)", relation)) {
    return std::nullopt;
  }
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_pair(x, x1, x2)) {
    return term_list{};
  }
  return term_list{belongs(pair_of(x2, x1), relation)};
}

meaning in_power_set(term_ptr x, term_ptr set) {
  term_ptr base = nullptr;
  if (!match(set, "PowerSet(?)", base)) {
    return std::nullopt;
  }
  return term_list{make_atomic_prop(Subset, x, base)};
}

// x is in some z that is in the family.
meaning in_family_union(term_ptr x, term_ptr set) {
  term_ptr family = nullptr;
  if (!match(set, "SetUnion(?)", family)) {
    return std::nullopt;
  }
  term_ptr z = bound_variable(0, x, set);
  term_ptr in_z = belongs(x, z);
  term_ptr in_family = belongs(z, family);
  return term_list{exists_both(z, in_z, in_family)};
}

// From x1 by the first relation to some z, from there by the second to x2.
meaning in_composition(term_ptr x, term_ptr set) {
  term_ptr first = nullptr;
  term_ptr second = nullptr;
  if (!match(set, "Composition(?, ?)", first, second) && !match(set, "BinRelComp(?, ?)", first, second)) {
    return std::nullopt;
  }
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_pair(x, x1, x2)) {
    return term_list{};
  }
  term_ptr z = bound_variable(1, x, set);
  term_ptr in_first = belongs(pair_of(x1, z), first);
  term_ptr in_second = belongs(pair_of(z, x2), second);
  return term_list{exists_both(z, in_first, in_second)};
}

meaning in_class(term_ptr x, term_ptr set) {
  term_ptr representative = nullptr;
  term_ptr relation = nullptr;
  if (!match(set, "EquivClass(?, ?)", representative, relation)) {
    return std::nullopt;
  }
  return term_list{belongs(pair_of(representative, x), relation)};
}

constexpr std::array membership_rules = {
    in_intersection, in_union,        in_difference,  in_product, in_inverse,
    in_power_set,    in_family_union, in_composition, in_class,
};

term_list membership_meaning(term_ptr x, term_ptr set) {
  for (const auto rule : membership_rules) {
    if (meaning found = rule(x, set)) {
      return *found;
    }
  }
  return {};
}

term_list equal_pairs_meaning(term_ptr left, term_ptr right) {
  term_ptr a1 = nullptr;
  term_ptr a2 = nullptr;
  term_ptr b1 = nullptr;
  term_ptr b2 = nullptr;
  if (!is_pair(left, a1, a2) || !is_pair(right, b1, b2)) {
    return {};
  }
  term_ptr first = make_atomic_prop(Eq, a1, b1);
  term_ptr second = make_atomic_prop(Eq, a2, b2);
  return {first, second};
}

term_list unary_meaning(pred_type pred, term_ptr t) {
  if (pred == CountableSet) {
    return {make_atomic_prop(Equinumerous, t, mk_const(PosIntegerSet))};
  }
  if (pred == EquivalenceBinRel) {
    term_ptr reflexive = make_atomic_prop(ReflexiveBinRel, t, nullptr);
    term_ptr symmetric = make_atomic_prop(SymmetricBinRel, t, nullptr);
    term_ptr transitive = make_atomic_prop(TransitiveBinRel, t, nullptr);
    return {reflexive, symmetric, transitive};
  }
  return {};
}

}  // namespace

solve_res solver_bwd_saturation_set(const solver_args& args) {
  term_list meaning_of_target = set_equiv_saturation(args.target);
  if (meaning_of_target.empty()) {
    return {};
  }
  return {.type = termlist_and, .ans = false, .list = std::move(meaning_of_target)};
}

term_list set_equiv_saturation(term_ptr p) {
  if (p == nullptr) {
    return {};
  }
  const auto view = atomic_prop_split(p);
  if (!view) {
    return {};
  }
  if (view->t2 == nullptr) {
    return unary_meaning(view->pred, view->t1);
  }
  switch (view->pred) {
    case Eq:
      return equal_pairs_meaning(view->t1, view->t2);
    case Belong:
      return membership_meaning(view->t1, view->t2);
    default:
      return {};
  }
}

}  // namespace vetro

// The laws. The element of a membership may be a list, as in x, y ∈ A: it says the membership of each member. What
// holds for a list as for an element (a list in an intersection is in both sets, one in A or in B is in the union) goes
// by the law of the set; every other membership of a list is that of its members first.
#include "qv_solver_list/logic/set_meaning.h"

#include <algorithm>
#include <array>
#include <optional>
#include <type_traits>

#include "term/pattern_match.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr belongs(term_ptr element, term_ptr set) { return make_atomic_prop(Belong, element, set); }

term_ptr pair_of(term_ptr first, term_ptr second) { return make_composed_term(Tuple, first, second); }

bool is_dots(term_ptr t) { return is_constant(t, Ellipsis); }

// Dots stand for components that nobody counted.
bool is_pair(term_ptr t, term_ptr& first, term_ptr& second) {
  return match(t, "(?, ?)", first, second) && !is_dots(first) && !is_dots(second);
}

bool is_list(term_ptr t) { return t->type() == TermList; }

// A variable that the goal does not hold: "qvar" and the first free number.
term_ptr bound_variable(int first_number, term_ptr p) {
  for (int number = first_number;; ++number) {
    term_ptr variable = make_var(number);
    if (!name_occurs(variable->name(), p)) {
      return variable;
    }
  }
}

term_ptr exists_both(term_ptr variable, term_ptr left, term_ptr right) {
  term_ptr both = make_composed_prop(And, left, right);
  return make_quant_prop(Exists, variable->name(), both);
}

// ---- Memberships x ∈ S. Each gives nothing where S has another shape.

// x ∈ S for a set S of that shape.
template <class... Parts>
bool is_member(term_ptr p, term_ptr& x, std::type_identity_t<pattern_text<sizeof...(Parts)>> shape, Parts&... parts) {
  const auto view = atomic_prop_split(p);
  if (!view || view->pred != Belong || view->t2 == nullptr || !match(view->t2, shape, parts...)) {
    return false;
  }
  x = view->t1;
  return true;
}

// x ∈ A and x ∈ B, built in this order, where p is x ∈ S and S a set of that shape of A and B.
struct two_memberships {
  term_ptr in_a = nullptr;
  term_ptr in_b = nullptr;
};

std::optional<two_memberships> of_two_sets(term_ptr p, pattern_text<2> shape) {
  term_ptr x = nullptr;
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  if (!is_member(p, x, shape, a, b)) {
    return std::nullopt;
  }
  term_ptr in_a = belongs(x, a);
  term_ptr in_b = belongs(x, b);
  return two_memberships{in_a, in_b};
}

term_list in_intersection(term_ptr p) {
  const auto found = of_two_sets(p, "Inter(?, ?)");
  return found ? term_list{found->in_a, found->in_b} : term_list{};
}

term_list in_union(term_ptr p) {
  const auto found = of_two_sets(p, "Union(?, ?)");
  return found ? term_list{make_composed_prop(Or, found->in_a, found->in_b)} : term_list{};
}

term_list members_in_set(term_ptr p) {
  term_ptr list = nullptr;
  term_ptr set = nullptr;
  if (!is_member(p, list, "?", set) || !is_list(list) || list->elements().size() < 2) {
    return {};
  }
  const term_span listed = list->elements();
  if (std::any_of(listed.begin(), listed.end(), is_dots)) {
    return {};
  }
  term_list members;
  for (term_ptr member : listed) {
    members.push_back(belongs(member, set));
  }
  return members;
}

term_list in_difference(term_ptr p) {
  const auto found = of_two_sets(p, "SetMinus(?, ?)");
  return found ? term_list{found->in_a, make_composed_prop(Not, found->in_b, nullptr)} : term_list{};
}

term_list in_product(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr a = nullptr;
  term_ptr b = nullptr;
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_member(p, x, "CartesianProd(?, ?)", a, b) || !is_pair(x, x1, x2)) {
    return {};
  }
  term_ptr in_a = belongs(x1, a);
  term_ptr in_b = belongs(x2, b);
  return {in_a, in_b};
}

term_list in_inverse(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr relation = nullptr;
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_member(p, x, "InverseBinRel(?)", relation) || !is_pair(x, x1, x2)) {
    return {};
  }
  return {belongs(pair_of(x2, x1), relation)};
}

term_list in_power_set(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr base = nullptr;
  if (!is_member(p, x, "PowerSet(?)", base)) {
    return {};
  }
  return {make_atomic_prop(Subset, x, base)};
}

term_list in_family_union(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr family = nullptr;
  if (!is_member(p, x, "SetUnion(?)", family)) {
    return {};
  }
  term_ptr z = bound_variable(0, p);
  term_ptr in_z = belongs(x, z);
  term_ptr in_family = belongs(z, family);
  return {exists_both(z, in_z, in_family)};
}

// From x1 by the first relation to some z, from there by the second to x2.
term_list by_way_of(term_ptr p, term_ptr x, term_ptr first, term_ptr second) {
  term_ptr x1 = nullptr;
  term_ptr x2 = nullptr;
  if (!is_pair(x, x1, x2)) {
    return {};
  }
  term_ptr z = bound_variable(1, p);
  term_ptr in_first = belongs(pair_of(x1, z), first);
  term_ptr in_second = belongs(pair_of(z, x2), second);
  return {exists_both(z, in_first, in_second)};
}

term_list in_composition(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr first = nullptr;
  term_ptr second = nullptr;
  return is_member(p, x, "Composition(?, ?)", first, second) ? by_way_of(p, x, first, second) : term_list{};
}

term_list in_relation_composition(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr first = nullptr;
  term_ptr second = nullptr;
  return is_member(p, x, "BinRelComp(?, ?)", first, second) ? by_way_of(p, x, first, second) : term_list{};
}

term_list in_class(term_ptr p) {
  term_ptr x = nullptr;
  term_ptr representative = nullptr;
  term_ptr relation = nullptr;
  if (!is_member(p, x, "EquivClass(?, ?)", representative, relation)) {
    return {};
  }
  return {belongs(pair_of(representative, x), relation)};
}

// ---- Other propositions.

term_list equal_pairs(term_ptr p) {
  const auto view = atomic_prop_split(p);
  term_ptr a1 = nullptr;
  term_ptr a2 = nullptr;
  term_ptr b1 = nullptr;
  term_ptr b2 = nullptr;
  if (!view || view->pred != Eq || view->t2 == nullptr || !is_pair(view->t1, a1, a2) || !is_pair(view->t2, b1, b2)) {
    return {};
  }
  term_ptr first = make_atomic_prop(Eq, a1, b1);
  term_ptr second = make_atomic_prop(Eq, a2, b2);
  return {first, second};
}

term_list countable(term_ptr p) {
  const auto view = atomic_prop_split(p);
  if (!view || view->pred != CountableSet || view->t2 != nullptr) {
    return {};
  }
  return {make_atomic_prop(Equinumerous, view->t1, mk_const(PosIntegerSet))};
}

term_list equivalence(term_ptr p) {
  const auto view = atomic_prop_split(p);
  if (!view || view->pred != EquivalenceBinRel || view->t2 != nullptr) {
    return {};
  }
  term_ptr reflexive = make_atomic_prop(ReflexiveBinRel, view->t1, nullptr);
  term_ptr symmetric = make_atomic_prop(SymmetricBinRel, view->t1, nullptr);
  term_ptr transitive = make_atomic_prop(TransitiveBinRel, view->t1, nullptr);
  return {reflexive, symmetric, transitive};
}

constexpr std::array laws = {
    set_law{set_rule::pair_equality, "(a, b) = (c, d) ⇔ a = c ∧ b = d", equal_pairs},
    set_law{set_rule::intersection, "x ∈ A ∩ B ⇔ x ∈ A ∧ x ∈ B", in_intersection},
    set_law{set_rule::set_union, "x ∈ A ∪ B ⇔ x ∈ A ∨ x ∈ B", in_union},
    set_law{set_rule::members_of_list, "x, y ∈ A ⇔ x ∈ A ∧ y ∈ A", members_in_set},
    set_law{set_rule::difference, "x ∈ A \\ B ⇔ x ∈ A ∧ ¬(x ∈ B)", in_difference},
    set_law{set_rule::product, "(x, y) ∈ CartesianProd(A, B) ⇔ x ∈ A ∧ y ∈ B", in_product},
    set_law{set_rule::inverse, "(x, y) ∈ InverseBinRel(R) ⇔ (y, x) ∈ R", in_inverse},
    set_law{set_rule::power_set, "x ∈ PowerSet(A) ⇔ x ⊆ A", in_power_set},
    set_law{set_rule::family_union, "x ∈ SetUnion(F) ⇔ exists (z), x ∈ z ∧ z ∈ F", in_family_union},
    set_law{set_rule::composition, "(x, y) ∈ Composition(R, S) ⇔ exists (z), (x, z) ∈ R ∧ (z, y) ∈ S", in_composition},
    set_law{set_rule::relation_composition, "(x, y) ∈ BinRelComp(R, S) ⇔ exists (z), (x, z) ∈ R ∧ (z, y) ∈ S",
            in_relation_composition},
    set_law{set_rule::equivalence_class, "x ∈ EquivClass(a, R) ⇔ (a, x) ∈ R", in_class},
    set_law{set_rule::countable, "CountableSet(A) ⇔ Equinumerous(A, NatPlus)", countable},
    set_law{set_rule::equivalence,
            "EquivalenceBinRel(R) ⇔ ReflexiveBinRel(R) ∧ SymmetricBinRel(R) ∧ TransitiveBinRel(R)", equivalence},
};

}  // namespace

std::span<const set_law> set_laws() { return laws; }

term_list set_equiv_saturation(term_ptr p) {
  if (p == nullptr || p->scope() != nullptr) {
    return {};
  }
  for (const set_law& row : laws) {
    term_list found = row.meaning(p);
    if (!found.empty()) {
      return found;
    }
  }
  return {};
}

}  // namespace vetro

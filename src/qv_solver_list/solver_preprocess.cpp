// What an assumption also says: the walk that lowers memberships, the walk that opens equations of tuples, and the
// record that puts the derived facts behind the given ones.
//
// Each derived fact follows from its assumption. A membership in an interval or in a signed set of reals says the same
// as its comparison about a real, so it may be lowered in any position; a membership in a set of integers or rationals
// says more than its comparison, so it may be lowered only where a weaker statement still follows.
#include "qv_solver_list/solver_preprocess.h"

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>

#include "qv_solver_list/enriched_list.h"
#include "term/number_set.h"
#include "term/state.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// A binary application of the bare leaf: no call of the matcher, since this runs over every assumption.
bool is_binary(term_ptr t, pred_type pred) {
  return is_apply(t) && is_apply(t->left()) && is_pred(t->left()->left(), pred);
}

term_ptr comparison(pred_type pred, term_ptr left, term_ptr right) { return make_binPred_prop(pred, left, right); }

// What stands in a list for members that nobody wrote.
bool is_dots(term_ptr t) { return is_constant(t, Ellipsis); }

// ---- Memberships.

// Whether a weaker statement still follows where a membership stands; never: not even one that says the same of reals.
enum class position : unsigned char { positive, other, never };

constexpr whole_part not_finite = whole_part::infinity_value | whole_part::set_size;

using membership_rule = term_ptr (*)(term_ptr element, term_ptr set, position where);

// Applies a rule to each membership that stands as a proposition: the term itself, or below connectives. One that is
// an argument of a term, such as the index part of a sum, is notation and stays.
class membership_walk {
 public:
  membership_walk(membership_rule rule, term_ptr root) : rule_(rule), known_(root) {}

  term_ptr run(term_ptr t, position where) {
    if (t->scope() != nullptr) {  // holds where its scope does, and is used whole
      return t;
    }
    if (is_binary(t, Belong)) {
      term_ptr lowered = lowered_members(t->left()->right(), t->right(), where);
      return lowered == nullptr ? t : lowered;
    }
    const auto view = composed_prop_split(t);
    if (!view) {
      return t;
    }
    return known_.get(
        t, [&] { return rebuild(t, *view, where); }, where == position::positive ? 0 : 1);
  }

 private:
  // x, y ∈ S says the membership of each, unless dots stand for some of them. A value that is not finite is no
  // real number, so that its comparison says less than its membership in a set of reals, too.
  term_ptr lowered_members(term_ptr element, term_ptr set, position where) {
    const position allowed = holds_any(element, not_finite) && where != position::positive ? position::never : where;
    if (element->type() != TermList) {
      return rule_(element, set, allowed);
    }
    term_list members;
    for (term_ptr member : element->elements()) {
      members.push_back(is_dots(member) ? nullptr : rule_(member, set, allowed));
      if (members.back() == nullptr) {
        return nullptr;
      }
    }
    return and_compose(members);
  }

  term_ptr rebuild(term_ptr t, const composed_prop& view, position where) {
    const bool keeps_left = view.connect == And || view.connect == Or;
    const bool keeps_right = keeps_left || view.connect == Impl;
    term_ptr first = run(view.t1, keeps_left ? where : position::other);
    if (view.t2 == nullptr) {
      return first == view.t1 ? t : mk_apply(t->left(), first);
    }
    term_ptr second = run(view.t2, keeps_right ? where : position::other);
    return first == view.t1 && second == view.t2 ? t : mk_apply(mk_apply(t->left()->left(), first), second);
  }

  membership_rule rule_;
  walk_memo<term_ptr> known_;  // by position
};

constexpr enrichment_law laws[] = {
    {enrichment_rule::open_interval, "x ∈ (a, b) ⇒ a < x ∧ x < b"},
    {enrichment_rule::left_closed_interval, "x ∈ [a, b) ⇒ a ≤ x ∧ x < b"},
    {enrichment_rule::right_closed_interval, "x ∈ (a, b] ⇒ a < x ∧ x ≤ b"},
    {enrichment_rule::closed_interval, "x ∈ [a, b] ⇒ a ≤ x ∧ x ≤ b"},
    {enrichment_rule::positive_integers, "x ∈ NatPlus ⇒ x ≥ 1"},
    {enrichment_rule::negative_integers, "x ∈ NegIntegerSet ⇒ x ≤ -1"},
    {enrichment_rule::nonpositive_integers, "x ∈ NonPosIntegerSet ⇒ x ≤ 0"},
    {enrichment_rule::nonnegative_integers, "x ∈ Nat ⇒ x ≥ 0"},
    {enrichment_rule::positive_rationals, "x ∈ RationalPlus ⇒ x > 0"},
    {enrichment_rule::negative_rationals, "x ∈ NegRationalSet ⇒ x < 0"},
    {enrichment_rule::nonpositive_rationals, "x ∈ NonPosRationalSet ⇒ x ≤ 0"},
    {enrichment_rule::nonnegative_rationals, "x ∈ NonNegRationalSet ⇒ x ≥ 0"},
    {enrichment_rule::positive_reals, "x ∈ RealPlus ⇒ x > 0"},
    {enrichment_rule::negative_reals, "x ∈ NegRealSet ⇒ x < 0"},
    {enrichment_rule::nonpositive_reals, "x ∈ NonPosRealSet ⇒ x ≤ 0"},
    {enrichment_rule::nonnegative_reals, "x ∈ NonNegRealSet ⇒ x ≥ 0"},
    {enrichment_rule::members_of_list, "x, y ∈ RealPlus ⇒ x > 0 ∧ y > 0"},
    {enrichment_rule::tuple_equation, "(a, b) = (c, d) ⇒ a = c ∧ b = d"},
};

struct interval_row {
  oper_type interval;
  pred_type lower;  // lower(lo, elem)
  pred_type upper;  // upper(elem, hi)
};

// The first four laws.
constexpr std::array<interval_row, 4> interval_rows = {{
    {IntervalLoRo, Lt, Lt},
    {IntervalLcRo, Le, Lt},
    {IntervalLoRc, Lt, Le},
    {IntervalLcRc, Le, Le},
}};

term_ptr interval_as_comparisons(term_ptr element, term_ptr set, position where) {
  const auto view = composed_term_split(set);
  if (!view || view->t2 == nullptr || where == position::never) {
    return nullptr;
  }
  for (const interval_row& row : interval_rows) {
    if (view->oper == row.interval) {
      term_ptr lower = comparison(row.lower, view->t1, element);
      term_ptr upper = comparison(row.upper, element, view->t2);
      return make_composed_prop(And, lower, upper);
    }
  }
  return nullptr;
}

// The laws of number sets; term/number_set.h knows their comparisons. A comparison says as much as the membership of a
// real, where the set is one of reals.
term_ptr const_set_as_comparison(term_ptr element, term_ptr set, position where) {
  const auto named = number_set_of(set);
  const auto says = named ? comparison_of(*named) : std::nullopt;
  if (!says || where == position::never || (named->c != number_class::real && where != position::positive)) {
    return nullptr;
  }
  return comparison(says->pred, element, mk_integer(says->bound));
}

// ---- Equations of tuples.

// The components of Tuple(T(...)), or null. Dots among them stand for components that nobody counted.
term_ptr tuple_components(term_ptr t) {
  if (!is_apply(t) || !is_oper(t->left(), Tuple) || t->right()->type() != TermList) {
    return nullptr;
  }
  const term_span components = t->right()->elements();
  return std::none_of(components.begin(), components.end(), is_dots) ? t->right() : nullptr;
}

class tuple_walk {
 public:
  explicit tuple_walk(term_ptr root) : known_(root) {}

  term_ptr run(term_ptr t) {
    return known_.get(t, [&] { return rebuild(t); });
  }

 private:
  // Conditions of functions and implicit binders stay; every other part is walked, under binders and in scopes too.
  static constexpr unsigned parts = (walk_children & ~walk_condition) | walk_scope | keep_binders | keep_soft;

  term_ptr rebuild(term_ptr t) {
    if (t->type() != Apply && t->children().empty() && !t->has_meta()) {
      return t;
    }
    if (is_binary(t, Eq)) {
      term_ptr left = tuple_components(t->left()->right());
      term_ptr right = left == nullptr ? nullptr : tuple_components(t->right());
      if (right != nullptr && left->elements().size() == right->elements().size() && left->elements().size() >= 2) {
        return open_equation(t, left->elements(), right->elements());
      }
    }
    return map_children(t, parts, [this](term_ptr part) { return run(part); });
  }

  // The equations of the components, joined to the left. What stands on the equation stands on each of them and on the
  // whole.
  term_ptr open_equation(term_ptr t, term_span left, term_span right) {
    term_ptr joined = nullptr;
    for (std::size_t i = 0; i < left.size(); ++i) {
      term_ptr plain = comparison(Eq, left[i], right[i]);
      term_ptr equation = run(with_meta(plain, t->meta()));
      joined = joined == nullptr ? equation : make_composed_prop(And, joined, equation);
    }
    term_meta meta = t->meta();
    if (meta.scope != nullptr) {
      meta.scope = run(meta.scope);
    }
    return with_meta(joined, meta);
  }

  walk_memo<term_ptr> known_;
};

// ---- What each assumption gives, remembered for the whole run: the same assumptions come back with every question.

struct enrichment_cache {
  std::unordered_map<term_ptr, term_list> derived;  // of each assumption, without the assumption itself
  // For each level of one recursion a list of all assumptions, and one of the few that an instruction selects.
  std::array<enriched_list, 6> lists;
  std::array<std::size_t, 6> last_use{};
  std::size_t uses = 0;
};

enrichment_cache& cache() { return state().slots.of<enrichment_cache>(); }

// Behind each chained comparison its links, in text order. Between the links of 1 < ... < n stands what nobody wrote.
term_list with_links(const term_list& conjuncts) {
  term_list facts;
  for (term_ptr conjunct : conjuncts) {
    facts.push_back(conjunct);
    if (!conjunct->has(fact_ellipsis) && !conjunct->has(fact_scope)) {
      const term_list links = long_order_split(conjunct);
      if (links.size() > 1) {
        facts.insert(facts.end(), links.rbegin(), links.rend());
      }
    }
  }
  return facts;
}

// The conjuncts of the rewritten assumption and their links, without the assumption itself; null when a step failed.
const term_list* derived_facts(term_ptr assumption) {
  if (assumption == nullptr) {
    return nullptr;
  }
  auto& known = cache().derived;
  if (const auto found = known.find(assumption); found != known.end()) {
    return &found->second;
  }
  term_ptr comparisons = solver_preprocess_expand_shared_membership(assumption);
  term_ptr opened = solver_preprocess_expand_tuple_equalities(comparisons);
  if (opened == nullptr) {
    return nullptr;
  }
  term_list facts = with_links(term_split_and(opened));
  std::erase(facts, assumption);
  return &known.emplace(assumption, std::move(facts)).first->second;
}

// The record that follows the list: the one that has most of its beginning, provided that this is most of both; else
// the one that has not been used for longest.
enriched_list& list_to_follow(const shared_terms& assum) {
  auto& [derived, lists, last_use, uses] = cache();
  std::size_t best = 0;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    const std::size_t common = lists[i].common_beginning(assum);
    if (common > kept || (common == kept && lists[i].size() < lists[best].size())) {
      best = i;
      kept = common;
    }
  }
  if (2 * kept < std::max(lists[best].size(), assum.size())) {
    best = static_cast<std::size_t>(std::min_element(last_use.begin(), last_use.end()) - last_use.begin());
  }
  last_use[best] = ++uses;
  return lists[best];
}

}  // namespace

std::span<const enrichment_law> enrichment_laws() { return laws; }

bool solver_preprocess_build_augmented_sdata(const solve_data& src, solve_data& dst) {
  dst = src;
  if (src.assum.empty()) {
    return true;
  }
  enriched_list& list = list_to_follow(src.assum);
  if (!list.follow(src.assum, derived_facts)) {
    return false;
  }
  dst.assum = list.result();
  dst.facts = list.facts();
  return true;
}

term_ptr solver_preprocess_expand_shared_membership(term_ptr t) {
  term_ptr without_intervals = solver_preprocess_expand_interval_membership(t);
  return without_intervals == nullptr ? nullptr : solver_preprocess_lower_const_set_membership(without_intervals);
}

term_ptr solver_preprocess_expand_interval_membership(term_ptr t) {
  return t == nullptr ? nullptr : membership_walk(interval_as_comparisons, t).run(t, position::positive);
}

term_ptr solver_preprocess_lower_const_set_membership(term_ptr t) {
  return t == nullptr ? nullptr : membership_walk(const_set_as_comparison, t).run(t, position::positive);
}

term_ptr solver_preprocess_expand_tuple_equalities(term_ptr t) { return t == nullptr ? nullptr : tuple_walk(t).run(t); }

}  // namespace vetro

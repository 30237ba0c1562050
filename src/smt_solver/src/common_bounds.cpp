// The search alone would meet every combination of the cases of many such disjunctions before it knew what they have
// in common. Each case is a tableau of its own; a bound holds in it when its negation does not fit in.
#include "smt_solver/src/common_bounds.h"

#include <map>

namespace vetro::smt {
namespace {

class one_case {
 public:
  one_case(const sum_case& constraints, budget& work) : tableau_(work) {
    for (const sum_constraint& c : constraints) {
      const linear_var x = sum_of(c.terms);
      consistent_ = consistent_ && (!c.at_most || bound(x, bound_side::upper, c.bound)) &&
                    (!c.at_least || bound(x, bound_side::lower, c.bound));
    }
    consistent_ = consistent_ && tableau_.check() != simplex::answer::conflict;
  }

  // At most the value on the upper side, at least on the lower one.
  bool implies(const linear_terms& terms, bound_side side, const delta_number& value) {
    if (!consistent_) {
      return true;
    }
    const linear_var x = sum_of(terms);
    tableau_.open_level();
    const bool upper = side == bound_side::upper;
    const delta_number beyond{value.real, value.delta + exact(upper ? 1 : -1)};
    const bool fits = bound(x, upper ? bound_side::lower : bound_side::upper, beyond) &&
                      tableau_.check() != simplex::answer::conflict;
    tableau_.back_to_level(0);
    return !fits;
  }

 private:
  bool bound(linear_var x, bound_side side, const delta_number& value) {
    return tableau_.assert_bound(x, side, value, {});
  }
  linear_var sum_of(const linear_terms& terms) {
    std::vector<simplex::summand> sum;
    for (const auto& [unknown, coefficient] : terms) {
      const auto [entry, added] = variables_.try_emplace(unknown, 0);
      if (added) {
        entry->second = tableau_.add_variable();
      }
      sum.emplace_back(entry->second, coefficient);
    }
    return tableau_.add_sum(sum);
  }

  simplex tableau_;
  std::map<atom_id, linear_var> variables_;
  bool consistent_ = true;
};

}  // namespace

std::vector<common_bound> common_bounds(const std::vector<sum_case>& cases, budget& work) {
  std::vector<common_bound> found;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    for (const sum_constraint& c : cases[i]) {
      if (!c.at_most || !c.at_least) {
        continue;
      }
      for (const bound_side side : {bound_side::upper, bound_side::lower}) {
        bool holds = true;
        for (std::size_t j = 0; j < cases.size() && holds; ++j) {
          holds = j == i || one_case(cases[j], work).implies(c.terms, side, c.bound);
        }
        if (holds) {
          const bool upper = side == bound_side::upper;
          found.push_back({c.terms, {c.bound.real, c.bound.delta + exact(upper ? 0 : -1)}, !upper});
        }
      }
    }
  }
  return found;
}

}  // namespace vetro::smt

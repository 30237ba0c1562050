// The table holds every assumption and every derived fact once up to bound names, so that a longer or shorter list
// costs what was added or taken away, and one pass over the pointers of the result.
#include "qv_solver_list/enriched_list.h"

#include <algorithm>

namespace vetro {

std::size_t enriched_list::common_beginning(const term_list& list) const {
  const auto differs = std::mismatch(source_.begin(), source_.end(), list.begin(), list.end());
  return static_cast<std::size_t>(differs.first - source_.begin());
}

void enriched_list::append(term_ptr assumption, const term_list& facts) {
  const std::size_t at = source_.size();
  source_.push_back(assumption);
  places& as_given = known_[assumption];
  as_given.given = std::min(as_given.given, at);
  for (term_ptr fact : facts) {
    places& as_derived = known_[fact];
    if (as_derived.derived_from == nowhere) {
      as_derived.derived_from = at;
      derived_.push_back({fact, &as_derived});
    }
  }
}

void enriched_list::remove_last() {
  const std::size_t at = source_.size() - 1;
  while (!derived_.empty() && derived_.back().known->derived_from == at) {
    term_ptr fact = derived_.back().fact;
    derived_.pop_back();
    forget(fact, &places::derived_from);
  }
  if (known_.find(source_.back())->second.given == at) {
    forget(source_.back(), &places::given);
  }
  source_.pop_back();
}

void enriched_list::forget(term_ptr t, std::size_t places::*kind) {
  const auto found = known_.find(t);
  found->second.*kind = nowhere;
  if (found->second.given == nowhere && found->second.derived_from == nowhere) {
    known_.erase(found);
  }
}

void enriched_list::publish() {
  result_ = source_;
  for (const derived_fact& derived : derived_) {
    if (derived.known->given == nowhere) {
      result_.push_back(derived.fact);
    }
  }
  facts_ = std::make_shared<assumption_facts>(result_);
}

}  // namespace vetro

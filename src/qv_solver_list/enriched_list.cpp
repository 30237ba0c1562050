// The table holds every assumption and every derived fact once up to bound names, so that a longer or shorter list
// costs what was added or taken away, and one pass over the pointers of the result.
#include "qv_solver_list/enriched_list.h"

#include <algorithm>

namespace vetro {

// The list's next assumption, with what it gives.
void enriched_list::append(const shared_terms& list, const term_list& facts) {
  const std::size_t at = source_.size();
  source_ = list.beginning(at + 1);
  places& as_given = table_->known[list[at]];
  as_given.given = std::min(as_given.given, at);
  for (term_ptr fact : facts) {
    places& as_derived = table_->known[fact];
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
  if (table_->known.find(source_.back())->second.given == at) {
    forget(source_.back(), &places::given);
  }
  source_ = source_.beginning(at);
}

void enriched_list::forget(term_ptr t, std::size_t places::*kind) {
  const auto found = table_->known.find(t);
  found->second.*kind = nowhere;
  if (found->second.given == nowhere && found->second.derived_from == nowhere) {
    table_->known.erase(found);
  }
}

void enriched_list::publish() {
  term_list facts;
  for (const derived_fact& derived : derived_) {
    if (derived.known->given == nowhere) {
      facts.push_back(derived.fact);
    }
  }
  result_ = source_;
  result_.append(facts);
  facts_ = std::make_shared<assumption_facts>(result_, table_);
}

}  // namespace vetro

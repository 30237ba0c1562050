// A list of assumptions with what is derived from each of them. Most questions of a run are asked about a list that
// grew or shrank at its end, so the record follows the list: what the common beginning gave stays.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "qv_solver_list/assumption_facts.h"

namespace vetro {

class enriched_list {
 public:
  // Places from which two lists are the same.
  std::size_t common_beginning(const shared_terms& list) const { return source_.common_beginning(list); }
  std::size_t size() const { return source_.size(); }

  // Makes this the record of the list: facts_of(assumption) gives what is derived from an assumption, null on failure.
  // False when that failed; the record is then that of the assumptions before.
  template <class FactsOf>
  bool follow(const shared_terms& list, FactsOf facts_of);

  // The assumptions, then each derived fact that equals none of them and no earlier fact, up to bound names.
  const shared_terms& result() const { return result_; }
  const std::shared_ptr<assumption_facts>& facts() const { return facts_; }

 private:
  using places = formula_table::places;
  static constexpr std::size_t nowhere = formula_table::nowhere;
  struct derived_fact {
    term_ptr fact;
    const places* known;
  };

  void append(const shared_terms& list, const term_list& facts);
  void remove_last();
  void forget(term_ptr t, std::size_t places::*kind);
  void publish();

  shared_terms source_;
  std::shared_ptr<formula_table> table_ = std::make_shared<formula_table>();
  std::vector<derived_fact> derived_;  // one for each formula, in the order of the assumptions
  shared_terms result_;
  std::shared_ptr<assumption_facts> facts_;
  bool whole_ = true;  // not where memory ran out on the way from one list to another
};

template <class FactsOf>
bool enriched_list::follow(const shared_terms& list, FactsOf facts_of) {
  if (!whole_) {
    *this = enriched_list();
  }
  const std::size_t kept = common_beginning(list);
  if (kept == list.size() && kept == source_.size() && facts_ != nullptr) {
    return true;
  }
  whole_ = false;
  facts_ = nullptr;
  ++table_->version;
  while (source_.size() > kept) {
    remove_last();
  }
  for (std::size_t i = kept; i < list.size(); ++i) {
    const term_list* facts = facts_of(list[i]);
    if (facts == nullptr) {
      whole_ = true;
      return false;
    }
    append(list, *facts);
  }
  publish();
  whole_ = true;
  return true;
}

}  // namespace vetro

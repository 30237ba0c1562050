// A list of assumptions with what is derived from each of them. Most questions of a run are asked about a list that
// grew or shrank at its end, so the record follows the list: what the common beginning gave stays.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <unordered_map>
#include <vector>

#include "qv_solver_list/assumption_facts.h"

namespace vetro {

class enriched_list {
 public:
  // Places from which two lists are the same.
  std::size_t common_beginning(const term_list& list) const;
  std::size_t size() const { return source_.size(); }

  // Makes this the record of the list: facts_of(assumption) gives what is derived from an assumption, null on failure.
  // False when that failed; the record is then that of the assumptions before.
  template <class FactsOf>
  bool follow(const term_list& list, FactsOf facts_of);

  // The assumptions, then each derived fact that equals none of them and no earlier fact, up to bound names.
  const term_list& result() const { return result_; }
  const std::shared_ptr<assumption_facts>& facts() const { return facts_; }

 private:
  static constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

  // The first places of a formula. Later ones need no mention: a list that is cut before the first has none of them.
  struct places {
    std::size_t given = nowhere;         // as an assumption
    std::size_t derived_from = nowhere;  // as what an assumption gives
  };
  struct derived_fact {
    term_ptr fact;
    const places* known;
  };

  void append(term_ptr assumption, const term_list& facts);
  void remove_last();
  void forget(term_ptr t, std::size_t places::*kind);
  void publish();

  term_list source_;
  std::unordered_map<term_ptr, places, alpha_hasher, alpha_equal> known_;
  std::vector<derived_fact> derived_;  // one for each formula, in the order of the assumptions
  term_list result_;
  std::shared_ptr<assumption_facts> facts_;
};

template <class FactsOf>
bool enriched_list::follow(const term_list& list, FactsOf facts_of) {
  const std::size_t kept = common_beginning(list);
  if (kept == list.size() && kept == source_.size() && facts_ != nullptr) {
    return true;
  }
  facts_ = nullptr;
  while (source_.size() > kept) {
    remove_last();
  }
  for (std::size_t i = kept; i < list.size(); ++i) {
    const term_list* facts = facts_of(list[i]);
    if (facts == nullptr) {
      return false;
    }
    append(list[i], *facts);
  }
  publish();
  return true;
}

}  // namespace vetro

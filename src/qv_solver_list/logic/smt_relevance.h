// Which assumptions of a long list can matter for a goal, and what is known of the others.
//
// Assumptions that share a name, a function or a relation belong together, and so do, step by step, those around them.
// Parts that share nothing have a model together when each has one, so that a goal needs the parts that it shares
// something with, and of the rest only that it does not contradict itself; which is found out once for a list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "qv_solver_list/assumption_facts.h"
#include "term/node_memo.h"

namespace vetro {

// Kept with a list of assumptions as table<smt_relevance>(), for the list's own layer.
class smt_relevance {
 public:
  explicit smt_relevance(assumption_facts& facts);

  // The assumptions that belong together with what the propositions speak of, in their order.
  term_list relevant_to(term_span propositions);
  // Those that were not in the last answer of relevant_to and are not known to have a model.
  term_list others() const;

  // The last answer of relevant_to has a model; the last one of others has one, or will not be refuted.
  void relevant_are_consistent() { settle(true); }
  void others_are_consistent() { settle(false); }
  void contradicts_itself() { contradictory_ = true; }
  bool is_contradictory() const { return contradictory_; }

 private:
  // A part of the list, by the number of something in it; joined parts point to each other's top.
  using element = std::int32_t;
  static constexpr element nothing = -1;
  static std::size_t at(element e) { return static_cast<std::size_t>(e); }

  element top(element e);
  element join(element a, element b);
  element of_symbol(term_ptr symbol);
  element read(term_ptr t, bool is_statement);
  element read_new(term_ptr t, bool is_statement);
  void make_relevant(term_ptr t, node_set& seen);
  bool is_relevant(std::size_t assumption) const;
  void settle(bool relevant);

  term_list assumptions_;
  std::vector<element> part_of_;  // by assumption; nothing for one that says something of numbers alone
  std::vector<element> up_;
  std::unordered_map<term_ptr, element> symbols_;
  std::unordered_map<term_ptr, element> known_[2];  // of terms, of statements
  std::unordered_set<term_ptr> applied_;            // names in front of arguments
  std::unordered_set<term_ptr> other_names_;        // and elsewhere
  std::vector<bool> relevant_;                      // by part
  std::vector<bool> consistent_;
  bool contradictory_ = false;
};

}  // namespace vetro

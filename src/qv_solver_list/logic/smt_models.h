// Solutions of assumptions, kept from questions that stayed open.
//
// A goal that fails by splitting asks the linear solver for each of its links and for signs of their parts, about one
// list of assumptions. Most of these comparisons are false in a solution that is known already, and so do not follow.
#pragma once

#include <deque>
#include <string_view>
#include <unordered_map>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/logic/smt_values.h"
#include "smt_solver/src/delta_number.h"
#include "term/ast.h"

namespace vetro {

// An order between sums of names with integer factors, and nothing else: what it speaks of is read alike with it and
// without it.
bool is_linear_comparison(term_ptr target);

// Kept with a list of assumptions as table<smt_models>().
class smt_models {
 public:
  using values = std::unordered_map<std::string_view, smt::delta_number>;  // of names that live as long as the terms

  explicit smt_models(assumption_facts& /*facts*/) {}

  // Whether exactly these assumptions have a known solution in which the target is a false comparison of real numbers,
  // by more than a change of the values could mend that is as small as one likes.
  bool refute(term_span assumptions, term_ptr target);

  // The values belong to a solution of the assumptions; the kinds are what these alone tell.
  void keep(term_span assumptions, value_kinds kinds, values of_names);

 private:
  struct model {
    term_list assumptions;
    value_kinds kinds;
    values of_names;
  };
  std::deque<model> models_;  // newest first
};

}  // namespace vetro

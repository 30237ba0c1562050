// The premises of a rule at the place where rewrite_in uses it: eventually true in a limit, true on the whole range of
// a sum, implied by the conditions of a set. Each gives false and remembers the first premise without a proof.
#pragma once

#include "dsl_interpreter/instructions/rewrite_in_context.h"
#include "dsl_interpreter/instructions/rewrite_in_state.h"

namespace vetro {

// The premises for the given value of the rule's variable.
bool solve_all_eventual_conditions(const limit_context& view, term_ptr instance, rewrite_in_state& state);

// The premises for the index of the sum.
bool solve_all_sum_conditions(const sum_context& view, rewrite_in_state& state);

// The premises for the variable of the set, from the given conditions of it.
bool solve_all_setdesc_conditions_from_flat(term_ptr var, const term_list& flat, rewrite_in_state& state);

// Conditions cut at their conjunctions and chains.
term_list flattened_setdesc_conditions(const term_list& conditions);

}  // namespace vetro

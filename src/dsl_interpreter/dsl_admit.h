// The record of propositions that were admitted without proof.
#pragma once

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

// Records the proposition with the current gap, the proposition as its goal. False for a null proposition.
bool dsl_record_admitted_proposition(dsl_execute_data& data, term_ptr proposition, int source_line,
                                     const std::string& step_id, std::int64_t hypothesis_num);

// Appends copies of all records of source to those of destination.
void dsl_merge_admitted_propositions(dsl_execute_data& destination, const dsl_execute_data& source);

}  // namespace vetro

// What can be said beside an instruction's message: the record for who collects diagnostics, with what may have been
// meant. Nothing here runs unless somebody collects, and nothing here changes what the run does or says.
#pragma once

#include <string>

#include "dsl_interpreter/dsl_handler.h"

namespace vetro {

// The record of a message: its first line, the places and formulas of the fault, and a suggestion.
diagnostic described_fault(const dsl_execute_data& data, const fault& about, const std::string& text);

// Whether a premise is one of the hypotheses or proved by the battery. Leaves the counters of fresh names alone.
bool is_seen_to_hold(const dsl_execute_data& data, term_ptr premise);

// Whether the assumptions of a gap contradict one another, as far as the solvers for bounds and propositions see.
bool assumptions_contradict(const dsl_execute_data& data, const proof_gap_full& gap);

// Warnings for what the newest search for a proof closed by calculation, where that cancelled a denominator that is not
// known to be non-zero: one that stands on one side of a comparison, or only in the hypotheses that it was compared
// with.
void warn_of_denominators(const dsl_execute_data& data, const fault& about);
// The same for two expressions that were found equal.
void warn_of_denominators(const dsl_execute_data& data, const fault& about, term_ptr left, term_ptr right);

}  // namespace vetro

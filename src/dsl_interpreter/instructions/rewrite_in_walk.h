// The walk of rewrite_in: two formulas in step, down to the contexts that the instruction opens.
#pragma once

#include "dsl_interpreter/instructions/rewrite_in_state.h"

namespace vetro {

// True when the new form arises from the old one by uses of the rule inside supported contexts, perhaps none
// (state.rewrite_hits counts the places), with all premises proved. On false the state may say why.
bool rewrite_in_walk(term_ptr from, term_ptr to, rewrite_in_state& state);

}  // namespace vetro

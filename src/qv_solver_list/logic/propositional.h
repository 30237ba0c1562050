// Propositional reasoning over opaque atoms, with an answer that keeps "no" and "unknown" apart.
#pragma once

#include "term/ast.h"

namespace vetro {

// What propositional reasoning alone says of a target. It is undecided when the question is beyond a limit, or when a
// term is missing.
enum class sat_answer : unsigned char { open, proved, undecided };

sat_answer propositional_answer(term_span assum, term_ptr target);

}  // namespace vetro

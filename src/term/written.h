// The one identity of parts that an engine does not look into.
#pragma once

#include "term/ast.h"

namespace vetro {

// The term without what a comparison of written forms ignores: soft types, and side conditions of what is no
// proposition. What notations bind stays: { x + y | x > y } ranges over x alone where y is bound outside.
term_ptr as_written(term_ptr t);

// Whether the term is headed by a predicate, a connective or a quantifier.
bool is_proposition_by_head(term_ptr t);

}  // namespace vetro

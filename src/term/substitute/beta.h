// Beta normalisation.
#pragma once

#include "term/ast.h"

namespace vetro {

// Every ready application of a Lambda reduced. A Lambda with a condition, or over other parameters than reals, says
// where it is defined: below Dom, Defined and a set description, whose meaning depends on that, it stays applied. Null
// for null, and when the result would exceed the work budget.
term_ptr beta_normalize_term(term_ptr t);

// The body with the parameters replaced by args, at once. Null unless lambda is a Lambda with as many parameters, and
// where a notation guards what would be replaced.
term_ptr beta_substitute_lambda(term_ptr lambda, term_span args);

}  // namespace vetro

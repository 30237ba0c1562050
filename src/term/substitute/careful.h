// Capture-avoiding substitution.
#pragma once

#include "term/ast.h"

namespace vetro {

// src becomes dest in t, in scopes too; every binder that is a free name of dest is renamed. Null when an argument is
// null, and where a notation guards a name that would be replaced or caught.
term_ptr subst_term_capture_avoiding(term_ptr src, term_ptr dest, term_ptr t);

// The variables replaced by the values, in one pass and at once; names of binders that are in the way become reserved
// ones, so that no counter moves. For work inside: such a name is not to be printed. Null as above.
term_ptr substitute_all(term_span vars, term_span values, term_ptr t);

}  // namespace vetro

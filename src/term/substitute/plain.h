// Plain substitution.
#pragma once

#include "term/ast.h"

namespace vetro {

// src (any subterm, compared exactly) becomes dest in t. Protects against capture only where dest is itself the bound
// variable; leaves scopes and quantifier entries alone. Null, with its message, for a null argument; null where a
// notation guards what would be replaced.
term_ptr subst_term(term_ptr src, term_ptr dest, term_ptr t);
term_list subst_term_list(term_ptr src, term_ptr dest, term_span list);  // empty when an element comes out null

}  // namespace vetro

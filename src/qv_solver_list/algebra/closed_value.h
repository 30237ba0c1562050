// The sign of a real number that is written with the elementary functions: 2^(1/2) + 3^(1/2) - π.
#pragma once

#include "term/ast.h"

namespace vetro {

// The sign of left - right, -1 or 1; 0 where bounds of up to some hundred digits do not tell, so always for equal
// values, and where one of the terms has a name in it, no real value, or something that is not calculated.
int sign_of_difference(term_ptr left, term_ptr right);

}  // namespace vetro

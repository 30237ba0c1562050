// Free variables, where an indexed name such as a_n counts as one variable whose index is not looked at.
#pragma once

#include "term/ast.h"

namespace vetro {

// A Var, or Index applied to two arguments. Null reports "Error: term_is_var visiting NULL pointer\n" and gives false.
bool term_is_var(term_ptr t);

// The variables of t that are free and not in bound, without duplicates, in order of first occurrence.
term_list term_free_variable(term_ptr t, term_span bound = {});
term_list term_list_free_variable(term_span list, term_span bound = {});

}  // namespace vetro

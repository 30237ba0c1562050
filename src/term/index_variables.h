// Which of the variables that a big operator binds are its indices.
//
// The binders of a sum, product, union or intersection hold every variable of the index part, k beside i in i = k. Only
// the indices are names that may be chosen freely: the sums from k and from m are different sums.
#pragma once

#include <optional>

#include "term/ast.h"

namespace vetro {

// The indices of a big operator with its index part, among its binders; nothing for any other node.
//   i = k, i ∈ S, d | n   the variables of the left side
//   0 < i < n             those of the first operand that has some, if a bound stands before it
//   k < i                 those of one side when the other side's come from outside; none when the notation does not
//   tell
// A conjunction has the indices of its parts, and a term all its variables.
std::optional<term_list> big_operator_indices(term_ptr t);

// True for a variable that t binds as a part of its index part and that is no index: the start k of i = k. Such a name
// means what it means outside.
bool stands_for_itself(term_ptr binder, term_ptr t);

// The binders of t without those that stand for themselves.
term_list bound_here(term_ptr t);

}  // namespace vetro

// What follows by logic when equal things may stand for each other: the equations among the assumptions, and their
// consequences for everything that is built of their sides.
#pragma once

#include "qv_solver_list/solver.h"
#include "term/ast.h"

namespace vetro {

// Whether the target follows from the assumptions once each part of them is replaced by the simplest that equals it: as
// an equation that calculation shows, or by the connectives. False where the assumptions hold no equation.
bool follows_by_equations(term_ptr target, const solve_data& sdata);

}  // namespace vetro

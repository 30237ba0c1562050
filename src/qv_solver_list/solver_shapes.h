// Names of the solvers for a reader, and the shapes of goals that they work on, for diagnostics. Nothing is decided
// here: a solver that has a goal's shape may still refuse it.
#pragma once

#include <string_view>
#include <vector>

#include "qv_solver_list/solver.h"

namespace vetro {

// The name behind `using`, or what docs/solvers.md calls a solver without one.
std::string_view solver_title(solver_id id);

// The titles of the solvers of the battery that work on goals of this shape, in the order of trial; those that take any
// proposition are left out.
std::vector<std::string_view> solvers_for_shape(term_ptr goal);

}  // namespace vetro

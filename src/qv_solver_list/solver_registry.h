// All solvers of the program, one row each.
#pragma once

#include <span>

#include "qv_solver_list/solver.h"

namespace vetro {

// In the order of solver_id: the battery in its order of trial, cheap and exact solvers first, then the others. The
// solvers for domains and types, for numbers, and the propositional one cannot be selected by name.
std::span<const solver_row> solver_registry();

// The one-step solvers in their order.
std::span<const solver_func_t> one_step_solvers();

}  // namespace vetro

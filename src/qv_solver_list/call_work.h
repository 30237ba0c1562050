// Work that all solvers below one call from outside share.
#pragma once

#include "number/budget.h"

namespace vetro {

// What all runs of the SMT kernel in one call of call_decision_solver or call_one_step_solver may do together; null
// outside of any.
budget* kernel_work_of_call();

}  // namespace vetro

// The door of the SMT kernel.
#pragma once

#include "number/budget.h"
#include "smt_solver/src/smt_lang.h"

namespace vetro {

// 0: the formula has no model in linear rational arithmetic with uninterpreted functions, where products and quotients
// are opaque. 1: it has one, or the work was used up. -1: it is true by its connectives alone.
int smt_solver_lra_uf(const smt_language& language, smt_prop formula, budget& work);

}  // namespace vetro

// The door of the SMT kernel.
#pragma once

#include <utility>
#include <vector>

#include "number/budget.h"
#include "smt_solver/src/delta_number.h"
#include "smt_solver/src/smt_lang.h"

namespace vetro {

// The names that take part in the arithmetic, with their values in a model.
using smt_values = std::vector<std::pair<smt_term, smt::delta_number>>;

// 0: the formula has no model in linear rational arithmetic with uninterpreted functions, where products and quotients
// are opaque. 1: it has one, or the work was used up. -1: it is true by its connectives alone. Where a model was found,
// model, if it is not null, takes the values of names in it.
int smt_solver_lra_uf(const smt_language& language, smt_prop formula, budget& work, smt_values* model = nullptr);

}  // namespace vetro

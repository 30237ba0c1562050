// "Are these two equal?", by a list of solvers.
#pragma once

#include <algorithm>
#include <span>

#include "qv_solver_list/solver.h"
#include "term/term_split_combine.h"

namespace vetro {

// True if one of the solvers, tried in their order, proves left = right. Reflexivity stands for equality as written.
inline bool equal_by(std::span<const solver_id> tests, term_ptr left, term_ptr right, const solve_data& sdata) {
  const term_ptr equation = make_binPred_prop(Eq, left, right);
  return std::any_of(tests.begin(), tests.end(), [&](solver_id id) {
    const solver_decide solve = find_solver(id);
    return solve != nullptr && solve(equation, sdata);
  });
}

}  // namespace vetro

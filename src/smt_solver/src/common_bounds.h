// Bounds that hold in every case of a disjunction: x >= 0 and a = x, or x < 0 and a = -x, gives a >= x and a >= -x.
#pragma once

#include <vector>

#include "number/budget.h"
#include "smt_solver/src/linear_arithmetic.h"

namespace vetro::smt {

// A sum with a bound, or with two equal ones.
struct sum_constraint {
  linear_terms terms;
  delta_number bound;
  bool at_most;
  bool at_least;
};
using sum_case = std::vector<sum_constraint>;

// For each equation of a case: its side that all other cases imply. The bounds are "at most" with the bound, or the
// negation of one.
struct common_bound {
  linear_terms terms;
  delta_number at_most;
  bool negated;
};
std::vector<common_bound> common_bounds(const std::vector<sum_case>& cases, budget& work);

}  // namespace vetro::smt

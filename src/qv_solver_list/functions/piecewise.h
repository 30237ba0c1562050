// Functions given by cases: cases{ a if p; b if q; otherwise c }, and which of the cases holds.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "qv_solver_list/functions/conditions.h"

namespace vetro {

enum class solver_func_piecewise_semantics : std::uint8_t {
  SOLVER_FUNC_PIECEWISE_POINT_VALUE = 0,  // conditions are asked at the point
  SOLVER_FUNC_PIECEWISE_OPEN_AT = 1,      // conditions are asked in a neighbourhood of it
};
using enum solver_func_piecewise_semantics;

struct solver_func_piecewise_select_options {
  solver_func_piecewise_semantics semantics = SOLVER_FUNC_PIECEWISE_POINT_VALUE;
  term_span params = {};  // names, and the point at which they stand
  term_span values = {};
  prover& premises;
  int fuel = 0;
  bool normalize_selected_value = false;
  function_normalizer normalizer = nullptr;
};

// A case. Without a condition it is the one that holds otherwise.
struct piecewise_branch {
  term_ptr value;
  term_ptr condition;
};

// The cases of t in their order; nothing when t is not given by cases, or when an ellipsis stands for some of them.
std::optional<std::vector<piecewise_branch>> solver_func_piecewise_branches(term_ptr t);
bool solver_func_piecewise_is_piecewise(term_ptr t);

// The value of the first case whose condition is shown true, all conditions before it being shown false; the case
// without a condition needs the latter alone. Null where that is not decided, and for fuel below 1.
term_ptr solver_func_piecewise_select(term_ptr t, const solver_func_piecewise_select_options& options);

}  // namespace vetro

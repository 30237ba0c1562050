// Values of derivatives at a point.
#pragma once

#include <cstdint>
#include <span>

#include "qv_solver_list/functions/definedness.h"
#include "term/ast.h"

namespace vetro {

// Differentiate by the parameter of that number, from 1 on, that often.
struct derivative_step {
  std::int32_t index;
  std::int32_t order;
};

// The body differentiated step by step and taken at the point, one value for each parameter. Null where the parameters
// are not different plain names, where no rule applies, and where there is no value: where the body or the result has a
// denominator or the like that is 0, or a rule says 0/0 because it divides by a root that is not shown to differ from
// 0.
term_ptr derivative_value(term_ptr body, term_span params, std::span<const derivative_step> steps, term_span point,
                          domain_prover& facts);

// t with each FunDeri of a `fun` at a point replaced by its value, where there is one. A `fun` with a condition stays.
term_ptr reduce_known_derivatives(term_ptr t, domain_prover& facts);

}  // namespace vetro

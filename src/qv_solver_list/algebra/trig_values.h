// The exact values of sine, cosine, tangent and their reciprocals at rational multiples of π.
#pragma once

#include <optional>

#include "number/exact.h"
#include "term/ast.h"

namespace vetro {

// The value of op (Sin, Cos, Tan, Cot, Sec, Csc) at multiple * π; null where the tables have none.
term_ptr exact_trig_value(oper_type op, const exact& multiple);

// The c for which t is c * π.
std::optional<exact> multiple_of_pi(term_ptr t);

}  // namespace vetro

// Whether a term may take the place of a variable: a variable stands for one finite value.
#pragma once

#include "term/whole_parts.h"

namespace vetro {

// ±a, a Landau term and an indefinite integral stand for several values, each occurrence for another one: from x = ±1
// and y = ±1 follows nothing about x and y.
inline bool holds_several_values(term_ptr t) {
  return holds_any(t, whole_part::several_values | whole_part::landau | whole_part::indefinite_integral);
}

inline bool has_one_value(term_ptr t) { return !holds_several_values(t) && !holds_any(t, whole_part::infinity_value); }

}  // namespace vetro

// The third printer: a formula as MathML. It stands on the rows of the pretty printer, so that both group alike; what
// has a second dimension on paper (fractions, powers, roots, sums, limits, integrals, cases) has it here.
#pragma once

#include <string>

#include "term/ast.h"

namespace vetro {

// A formula that is larger or deeper than this is no good as a picture: browsers stop to nest elements at some
// hundreds.
inline constexpr std::uint32_t mathml_most_nodes = 5'000;
inline constexpr std::uint32_t mathml_most_depth = 60;

// The content of a <math> element, as one element; empty for null and for a formula beyond the limits above.
std::string print_term_mathml(term_ptr t);

}  // namespace vetro

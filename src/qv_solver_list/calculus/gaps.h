// Where a formula breaks off as its variable moves: points at which it has no value, or may jump.
#pragma once

#include <vector>

#include "qv_solver_list/calculus/variable_facts.h"
#include "term/ast.h"

namespace vetro {

// The formula may break off where `part` is 0: a denominator, the base of a power that may be negative, the cosine
// under a tangent, the argument of a logarithm or of its magnitude.
struct gap {
  term_ptr part;
  bool under_logarithm;
};

// The gaps of t that move with the variable, in text order.
std::vector<gap> gaps_of(term_ptr t, const variable_facts& facts);

// Whether `formula` breaks off only where `integrand`, an equal form of its derivative, does so too, or where the facts
// exclude it. A function that jumps at a point where its derivative has a value is no primitive there:
// arctan(x) + arctan(1/x) is not the family of 0. The arguments of logarithms in the formula are left out.
bool breaks_off_with(term_ptr formula, term_ptr integrand, variable_facts& facts);

// Whether the argument of each logarithm in the formula that moves with the variable is a magnitude, or shown positive.
bool logarithms_are_defined(term_ptr formula, variable_facts& facts);

}  // namespace vetro

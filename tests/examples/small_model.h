// Tries formulas in a small world: numbers are exact, functions and sequences come from a short list, sets are the
// subsets of a few elements. What the world cannot decide stays open.
#pragma once

#include "term/ast.h"

namespace vetro::test {

struct trial {
  int held = 0;          // choices of values for which all premises and the conclusion hold
  int contradicted = 0;  // choices for which the formula is false
};

// Tries a closed formula for all choices of values for the variables of its outermost universal quantifier.
//
// A formula of sets alone is decided in a world of three elements. Elsewhere a statement about all numbers holds if it
// holds for the sampled ones, and one about some number if a sampled one will do; a statement about all below one about
// some (for all ε there is a δ such that for all x ...) is open.
trial try_formula(term_ptr formula);

}  // namespace vetro::test

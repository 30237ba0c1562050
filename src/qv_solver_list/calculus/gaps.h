// Where a formula breaks off as its variable moves: points at which it has no value, or may jump.
#pragma once

#include <vector>

#include "qv_solver_list/calculus/variable_facts.h"
#include "term/ast.h"

namespace vetro {

// Whether a formula breaks off at the zeros of an expression.
enum class gap_kind : std::uint8_t {
  certain,       // it has no value there: a denominator, the cosine under a tangent
  of_logarithm,  // none either, and the expression, or its magnitude, stands under a logarithm
  of_power,      // it is a power with an exponent that does not move, and breaks off if that is negative
  possible,      // it is a power with an exponent that moves
};

struct gap {
  gap_kind kind;
  term_ptr part;      // moves with the variable, and is no product, power or root
  term_ptr exponent;  // of a power; else null
};

// The gaps of t, in text order.
std::vector<gap> gaps_of(term_ptr t, const variable_facts& facts);

// Whether `formula` breaks off only where `integrand`, an equal form of its derivative, does so too, or where the facts
// exclude it. A function that jumps at a point where its derivative has a value is no primitive there:
// arctan(x) + arctan(1/x) is not the family of 0. The arguments of logarithms in the formula are left out.
bool breaks_off_with(term_ptr formula, term_ptr integrand, variable_facts& facts);

// Whether the argument of each logarithm in the formula that moves with the variable is a magnitude, or shown positive.
bool logarithms_are_defined(term_ptr formula, variable_facts& facts);

}  // namespace vetro

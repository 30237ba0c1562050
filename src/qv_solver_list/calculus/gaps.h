// Where a formula breaks off as its variable moves: points at which it has no value, or may jump.
#pragma once

#include <vector>

#include "qv_solver_list/calculus/variable_facts.h"
#include "term/ast.h"

namespace vetro {

// Whether a formula breaks off at the zeros of an expression.
enum class gap_kind : std::uint8_t {
  certain,   // it has no value there: a denominator, the cosine under a tangent, what stands under a logarithm
  of_power,  // it is a power with an exponent that does not move, and breaks off if that is negative
  possible,  // it is a power with an exponent that moves
};

struct gap {
  gap_kind kind;
  term_ptr part;      // moves with the variable, and is no product, power or root
  term_ptr exponent;  // of a power; else null
};

// The gaps of t, in text order.
std::vector<gap> gaps_of(term_ptr t, variable_facts& facts);

// Whether `slope` has a value wherever `integrand` has, as far as gaps go and the facts do not exclude them.
bool ends_only_with(term_ptr slope, term_ptr integrand, variable_facts& facts);

// Whether `formula` jumps only where `integrand`, an equal form of its derivative, has no value. A function that jumps
// elsewhere is no primitive: arctan(x) + arctan(1/x) and x * e^(-ln(|x|)) are not in the family of 0.
//
// A formula may jump at its gaps. Addends c * ln(|u|) are left out, where c does not move and the magnitude of u is the
// same on both sides of its zeros: there the derivative has no value, or such addends cancel on both sides alike.
// ln(|2 * x + (x^2)^(1/2)|) - ln(|x|) jumps at 0.
bool jumps_only_with(term_ptr formula, term_ptr integrand, variable_facts& facts);

// Whether the argument of each logarithm in the formula that moves with the variable is a magnitude, or shown positive.
bool logarithms_are_defined(term_ptr formula, variable_facts& facts);

}  // namespace vetro

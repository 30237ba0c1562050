// Numbers in terms: reading literals and calculations with them, and writing a number as a term.
#pragma once

#include <cstdint>
#include <optional>

#include "number/exact.h"
#include "term/ast.h"

namespace vetro {

// An integer constant, also with signs in front (Neg).
std::optional<std::int64_t> integer_literal(term_ptr t);

// The value of an integer or decimal constant.
std::optional<exact> number_literal(term_ptr t);

// What evaluate calculates, beside integer constants.
struct allowed_forms {
  bool decimals = true;
  bool negation = true;
  bool sums = true;       // Plus, Minus
  bool products = true;   // Mult
  bool quotients = true;  // Div, Frac
  bool powers = false;    // Power with an exponent that evaluates to an integer; 0^0 is 1
  bool absolute = false;  // Abs
};

// The exact value of a term that is built of numbers by the allowed forms. Nothing for any other term, for a quotient
// by zero, and for a value beyond the limit of exact.
std::optional<exact> evaluate(term_ptr t, const allowed_forms& allowed);

// An Integer, or Frac of two; null where a part does not fit 32 bits.
term_ptr number_term(const exact& value);

}  // namespace vetro

// What is known of the value of an expression: its class of numbers, its possible signs, its exact value.
//
// The operations say what follows for the result from what is known of the operands. They hold wherever the expression
// is defined, and give nothing where it is not known to be.
#pragma once

#include <cstdint>
#include <optional>

#include "number/exact.h"
#include "term/number_set.h"
#include "term/relation.h"

namespace vetro {

// Limits on the exact roots that are computed; 0 stands for none.
struct root_limits {
  std::int64_t index = 0;      // the largest index
  std::int64_t component = 0;  // the largest magnitude of a numerator or denominator under the root
};

struct value_facts {
  std::optional<number_class> smallest;  // a class that holds the value; nothing: not known to be a number
  sign_class signs = sign_class::any;    // the signs that a real value may have
  bool prime = false;
  bool no_real = false;           // certainly not a real number
  exact value = exact::beyond();  // the exact value, where it is known

  bool known() const { return smallest.has_value(); }
  bool in(number_class c) const { return smallest && *smallest <= c; }
  bool real() const { return in(number_class::real); }
  bool has_value() const { return value.is_known(); }
  bool has_signs(sign_class s) const { return real() && within(signs, s); }
  bool nonzero() const { return has_signs(sign_class::nonzero); }
  bool positive() const { return has_signs(sign_class::positive); }
  bool nonnegative() const { return has_signs(sign_class::nonnegative); }
};

value_facts facts_of_value(const exact& value);  // beyond: nothing known
value_facts facts_of_imaginary_unit();

// What a membership in the constant set says; nothing for another constant.
value_facts facts_of_set(const_type set);
// Whether the value is known to lie in the constant set. Primes beyond a million are known only as such.
bool lies_in(const value_facts& a, const_type set);

// What two sources say of one value.
value_facts both(const value_facts& a, const value_facts& b);

value_facts negated(const value_facts& a);
value_facts magnitude(const value_facts& a);
value_facts sum(const value_facts& a, const value_facts& b);
value_facts difference(const value_facts& a, const value_facts& b);
value_facts product(const value_facts& a, const value_facts& b);
value_facts quotient(const value_facts& a, const value_facts& b);   // nothing unless b is known to be non-zero
value_facts remainder(const value_facts& a, const value_facts& b);  // of truncated division
value_facts power(const value_facts& base, const value_facts& exponent, const root_limits& limits = {});
value_facts root(const value_facts& index, const value_facts& radicand, const root_limits& limits = {});

// The exact root of a rational, where numerator and denominator are exact powers within the limits.
std::optional<exact> exact_root(const exact& radicand, std::int64_t index, const root_limits& limits = {});

// What follows for oper(a) and oper(a, b); nothing for an operator that is not one of those above.
value_facts apply(oper_type oper, const value_facts& a, const root_limits& limits = {});
value_facts apply(oper_type oper, const value_facts& a, const value_facts& b, const root_limits& limits = {});

// The signs of left less right that make a comparison of reals true; nothing for another relation.
std::optional<sign_class> signs_admitted(pred_type pred);

// What a constant says by itself.
value_facts facts_of_constant(term_ptr constant);

}  // namespace vetro

// Fingerprints of expressions: their value modulo a prime, with a fixed pseudo-random value for every opaque part.
//
// Equal rational forms have equal fingerprints, so that two different ones end a comparison before anything is
// expanded. Equal ones prove nothing. A fingerprint may be unknown (a division by zero, a root that the field does not
// have).
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>

#include "number/cnum.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "term/ast.h"

namespace vetro {

// value is taken modulo the prime P = 2Q + 1, exponent modulo the prime Q. Opaque parts get squares as values, whose
// order divides Q: a power of them depends on the exponent modulo Q alone and obeys the laws of powers, fractional and
// symbolic exponents included.
struct fingerprint {
  std::uint64_t value = 0;
  std::uint64_t exponent = 0;
  cnum constant = cnum_nan();  // the number itself, where the term is built of numbers only
  bool has_value = false;
  bool has_exponent = false;
  bool fails = false;  // the exact form is certainly not a number

  bool is_nonzero() const { return has_value && value != 0; }

  static fingerprint of_number(const cnum& c);
  static fingerprint of_hash(std::uint64_t hash);  // of an opaque part
};

fingerprint fingerprint_sum(std::span<const signed_value<fingerprint>> addends);
fingerprint fingerprint_product(std::span<const fingerprint> factors);
fingerprint fingerprint_quotient(const fingerprint& numerator, const fingerprint& denominator);
fingerprint fingerprint_power(const fingerprint& base, const fingerprint& exponent);
fingerprint fingerprint_compound(compound_kind kind, std::span<const fingerprint> parts);
fingerprint fingerprint_leaf(term_ptr t);
fingerprint fingerprint_opaque(term_ptr t);

// The domain for expression_reader. Remembers what it has read as long as it lives.
class fingerprint_domain {
 public:
  using value = fingerprint;

  const value* recall(term_ptr t) const {
    const auto known = known_.find(t);
    return known == known_.end() ? nullptr : &known->second;
  }
  void remember(term_ptr t, const value& v) { known_.emplace(t, v); }
  std::size_t remembered() const { return known_.size(); }

  static bool gave_up() { return false; }
  static value failed() { return {}; }
  static value number(const cnum& c) { return fingerprint::of_number(c); }
  static value leaf(term_ptr t) { return fingerprint_leaf(t); }
  static value opaque(term_ptr t) { return fingerprint_opaque(t); }
  static value compound(compound_kind kind, std::span<const value> parts) { return fingerprint_compound(kind, parts); }
  static value sum(std::span<const signed_value<value>> addends) { return fingerprint_sum(addends); }
  static value product(std::span<const value> factors) { return fingerprint_product(factors); }
  static value quotient(const value& n, const value& d) { return fingerprint_quotient(n, d); }
  static value power(const value& base, const value& exponent, std::span<const signed_value<value>>) {
    return fingerprint_power(base, exponent);
  }

 private:
  std::unordered_map<term_ptr, value> known_;
};

}  // namespace vetro

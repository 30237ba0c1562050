// Fingerprints of expressions: their value modulo a prime, with a fixed pseudo-random value for every opaque part.
//
// Equal rational forms have equal fingerprints where both have one, so that two different ones end a comparison before
// anything is expanded. Equal ones prove nothing, and a missing one says nothing: a fingerprint lacks where the field
// does not have the value, as after a division by zero, or where it has two, as for the root of a sum.
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>

#include "number/exact.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "term/ast.h"

namespace vetro {

// value is taken modulo the prime P = 2Q + 1, exponent modulo the prime Q. The squares modulo P are a group of order Q,
// so a power of a square depends on the exponent modulo Q alone and obeys the laws of powers, with fractional and
// symbolic exponents too. -1 is no square: every number is a square or the negative of one.
struct fingerprint {
  std::uint64_t value = 0;
  std::uint64_t exponent = 0;
  // The value as a number where all opaque parts are zero; beyond where that is nothing. Its parity is that of the
  // exponent as far as the sign of a base goes.
  exact at_zero = exact::beyond();
  bool is_number = false;  // built of numbers only, so that at_zero is the number itself
  bool has_value = false;
  bool has_exponent = false;
  // A product of powers of opaque parts and of numbers whose prime factors are squares: the forms know no other root
  // of it than the power in the group.
  bool is_square = false;

  static fingerprint of_number(const exact& c);
  static fingerprint of_hash(std::uint64_t hash);  // of an opaque part
};

fingerprint fingerprint_sum(std::span<const signed_value<fingerprint>> addends);
fingerprint fingerprint_product(std::span<const fingerprint> factors);
fingerprint fingerprint_quotient(const fingerprint& numerator, const fingerprint& denominator);
fingerprint fingerprint_power(const fingerprint& base, const fingerprint& exponent);
fingerprint fingerprint_root(const fingerprint& radicand, std::int64_t index);
fingerprint fingerprint_compound(compound_kind kind, std::span<const fingerprint> parts);
fingerprint fingerprint_leaf(term_ptr t);
fingerprint fingerprint_opaque(term_ptr t);

// The domain for expression_reader. Remembers what it has read as long as it lives.
class fingerprint_domain {
 public:
  using value = fingerprint;

  const value* recall(term_ptr t) const { return known_.find(t); }
  const value* recall_equal(term_ptr t) const { return known_.find_equal(t); }
  void remember(term_ptr t, const value& v) { known_.keep(t, v); }
  std::size_t remembered() const { return known_.size(); }

  static bool gave_up() { return false; }
  static value failed() { return {}; }
  static value number(const exact& c) { return fingerprint::of_number(c); }
  static value leaf(term_ptr t) { return fingerprint_leaf(t); }
  static value opaque(term_ptr t) { return fingerprint_opaque(t); }
  static value compound(compound_kind kind, std::span<const value> parts, bool /*special*/) {
    return fingerprint_compound(kind, parts);
  }
  static bool arrange(std::vector<value>& parts);
  static value sum(std::span<const signed_value<value>> addends) { return fingerprint_sum(addends); }
  static value product(std::span<const value> factors) { return fingerprint_product(factors); }
  static value quotient(const value& n, const value& d) { return fingerprint_quotient(n, d); }
  static value power(const value& base, const value& exponent, std::span<const signed_value<value>>) {
    return fingerprint_power(base, exponent);
  }
  static value root(const value& radicand, std::int64_t index) { return fingerprint_root(radicand, index); }

 private:
  values_of_terms<value> known_;
};

}  // namespace vetro

// Whole numbers that are combined in place: up to three words inline, longer ones on the heap. For tables of integers,
// where most of the work is a * x + b * y; whoever needs fractions takes exact.
#pragma once

#include <gmp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "number/exact.h"

namespace vetro {

// A result of more than limits::exact_bits is `beyond`, which spreads through arithmetic, as in exact.
class whole {
 public:
  whole() = default;                     // 0
  whole(std::int64_t value);             // NOLINT(google-explicit-constructor): an integer is a number
  explicit whole(const exact& integer);  // beyond for anything that is no integer

  bool is_known() const { return known_; }
  bool is_zero() const { return size_ == 0 && known_; }
  bool is_one() const { return size_ == 1 && !negative_ && words()[0] == 1; }
  int sign() const { return size_ == 0 ? 0 : negative_ ? -1 : 1; }
  std::size_t size() const { return size_; }  // words

  void negate() { negative_ = !negative_ && size_ != 0; }
  void multiply(const whole& factor);
  // *this = a * *this + b * y
  void combine(const whole& a, const whole& b, const whole& y);
  // By a divisor that is not 0 and leaves no remainder.
  void divide(const whole& divisor);

  friend whole gcd(const whole& a, const whole& b);  // not negative
  // a / b; beyond for b = 0.
  friend exact ratio(const whole& a, const whole& b);

 private:
  static constexpr std::size_t inline_words = 3;
  using word = mp_limb_t;

  const word* words() const { return large_.empty() ? small_.data() : large_.data(); }
  bool is_short() const { return size_ <= 1 && known_ && (size_ == 0 || words()[0] <= INT64_MAX); }
  std::int64_t short_value() const;
  void set(wide_uint magnitude, bool negative);
  void set(const word* words, std::size_t size, bool negative);
  void lose();

  std::array<word, inline_words> small_{};
  std::vector<word> large_;  // when it has more words than that
  std::uint32_t size_ = 0;
  bool negative_ = false;
  bool known_ = true;
};

whole gcd(const whole& a, const whole& b);
exact ratio(const whole& a, const whole& b);

}  // namespace vetro

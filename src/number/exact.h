// Exact rational numbers of any size up to a limit: 64 bits inline, longer ones behind a pointer. Where cnum must keep
// its range, this is the number to calculate with.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "number/cnum.h"

namespace vetro {

struct great_rational;  // exact.cpp

// A value of two words. Instead of wrapping or rounding, a result whose numerator or denominator would take more than
// limits::exact_bits, and a quotient by zero, is `beyond`: it spreads through arithmetic, equals nothing (itself
// included) and is ordered with nothing, so that it can prove nothing.
class exact {
 public:
  exact() = default;                          // 0
  exact(std::int64_t value) : num_(value) {}  // NOLINT(google-explicit-constructor): an integer is a number
  explicit exact(const cnum& value) : num_(value.num), den_(value.den) {}  // not-a-number gives beyond
  exact(const exact& other) : num_(other.num_), den_(other.den_) {
    if (is_great()) {
      own_copy();
    }
  }
  exact(exact&& other) noexcept : num_(std::exchange(other.num_, 0)), den_(std::exchange(other.den_, 1)) {}
  exact& operator=(exact other) noexcept {
    std::swap(num_, other.num_);
    std::swap(den_, other.den_);
    return *this;
  }
  ~exact() {
    if (is_great()) {
      release();
    }
  }

  static exact beyond() { return exact(cnum_nan()); }

  bool is_known() const { return den_ != 0 || num_ != 0; }
  bool is_zero() const { return num_ == 0 && den_ != 0; }
  bool is_one() const { return num_ == 1 && den_ == 1; }
  bool is_integer() const { return den_ == 1 || (is_great() && great_is_integer()); }
  int sign() const { return is_great() ? great_sign() : static_cast<int>(num_ > 0) - static_cast<int>(num_ < 0); }
  exact numerator() const;
  exact denominator() const;  // positive
  std::optional<std::int64_t> to_int64() const { return den_ == 1 ? std::optional(num_) : std::nullopt; }
  std::size_t limbs() const { return is_great() ? great_limbs() : 2; }  // words of numerator and denominator
  std::size_t hash() const;

  exact operator-() const;
  friend exact operator+(const exact& a, const exact& b) {
    std::int64_t sum = 0;
    return a.den_ == 1 && b.den_ == 1 && !__builtin_add_overflow(a.num_, b.num_, &sum) ? exact(sum) : add(a, b);
  }
  friend exact operator-(const exact& a, const exact& b) {
    std::int64_t difference = 0;
    return a.den_ == 1 && b.den_ == 1 && !__builtin_sub_overflow(a.num_, b.num_, &difference) ? exact(difference)
                                                                                              : add(a, -b);
  }
  friend exact operator*(const exact& a, const exact& b) {
    std::int64_t product = 0;
    return a.den_ == 1 && b.den_ == 1 && !__builtin_mul_overflow(a.num_, b.num_, &product) ? exact(product)
                                                                                           : multiply(a, b);
  }
  friend exact operator/(const exact& a, const exact& b) { return b.is_one() ? a : divide(a, b); }
  exact& operator+=(const exact& other) { return *this = *this + other; }
  exact& operator-=(const exact& other) { return *this = *this - other; }
  exact& operator*=(const exact& other) { return *this = *this * other; }
  exact& operator/=(const exact& other) { return *this = *this / other; }
  exact& addmul(const exact& a, const exact& b) { return *this = *this + a * b; }

  friend bool operator==(const exact& a, const exact& b) { return (a <=> b) == 0; }
  friend std::partial_ordering operator<=>(const exact& a, const exact& b) {
    return a.den_ == 1 && b.den_ == 1 ? std::partial_ordering(a.num_ <=> b.num_) : compare(a, b);
  }

 private:
  friend struct great_rational;
  bool is_great() const { return den_ == 0 && num_ != 0; }
  const great_rational& great() const;
  void own_copy();
  void release();
  bool great_is_integer() const;
  int great_sign() const;
  std::size_t great_limbs() const;
  cnum small() const { return den_ == 0 ? cnum_nan() : cnum{num_, den_}; }
  static exact add(const exact& a, const exact& b);
  static exact multiply(const exact& a, const exact& b);
  static exact divide(const exact& a, const exact& b);
  static std::partial_ordering compare(const exact& a, const exact& b);

  // Reduced, den at least 1. Or den 0, and num the address of a value that needs more than 64 bits; 0 for beyond.
  std::int64_t num_ = 0;
  std::int64_t den_ = 1;
};

// Nothing for a zero divisor and for a result that is beyond.
std::optional<exact> quotient(const exact& a, const exact& b);

// base^0 is 1. Nothing for a negative power of 0 and for a result that is beyond.
std::optional<exact> power(const exact& base, std::int64_t exponent);

// The rational number whose index-th power is the value: of the value's sign, where that may be negative. Nothing where
// there is none, and for index 0.
std::optional<exact> root(const exact& value, std::uint32_t index);

// The greatest integer that is not above the value; beyond for beyond.
exact floor(const exact& value);

// The greatest common divisor of two integers, not negative; gcd(a, 0) is |a|. Beyond where one is beyond or no
// integer.
exact gcd(const exact& a, const exact& b);

// The value of an integer modulo m, from 0 on; 0 for beyond. m must be positive.
std::uint64_t residue(const exact& integer, std::uint64_t m);

// The magnitude of an integer as words, the lowest first, none for 0; and the fraction with these magnitudes, reduced,
// where that of the denominator is not 0. Without leading words of 0.
std::vector<std::uint64_t> magnitude_words(const exact& integer);
exact exact_from_words(bool negative, std::span<const std::uint64_t> num, std::span<const std::uint64_t> den);

// The value of an optional sign, digits and an optional point with digits; nothing for anything else.
std::optional<exact> exact_from_decimal(std::string_view text);

cnum to_cnum(const exact& value);           // not-a-number when it does not fit
std::string to_string(const exact& value);  // "5", "-2/3", "beyond"

}  // namespace vetro

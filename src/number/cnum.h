// Exact rational numbers of two signed 64-bit integers, with one failure value: not-a-number. Nothing rounds and
// nothing grows beyond 64 bits; a result that does not fit is not-a-number, and whoever meets it gives up.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vetro {

__extension__ typedef __int128 wide_int;
__extension__ typedef unsigned __int128 wide_uint;

enum class cnum_tag : std::uint8_t { CNUM_FINITE = 0, CNUM_NAN = 1 };
using enum cnum_tag;

// A finite value is reduced, with den at least 1 (zero is 0/1), so that equal values have equal fields. Not-a-number is
// 0/0. num may be the least 64-bit value.
struct cnum {
  std::int64_t num = 0;
  std::int64_t den = 1;

  cnum_tag tag() const { return den == 0 ? CNUM_NAN : CNUM_FINITE; }
  bool operator==(const cnum&) const = default;
};

constexpr cnum cnum_nan() { return {0, 0}; }
constexpr cnum cnum_from_int(std::int64_t x) { return {x, 1}; }
cnum cnum_from_frac(std::int64_t num, std::int64_t den);  // reduced; den 0 gives not-a-number

// The value of an optional sign, digits and an optional point with digits, white space around it allowed. An exponent,
// a value out of range, anything else gives not-a-number.
cnum cnum_from_decimal_str(std::string_view text);

constexpr bool cnum_is_finite(const cnum& a) { return a.den != 0; }
constexpr bool cnum_is_zero(const cnum& a) { return a.num == 0 && a.den != 0; }
constexpr bool cnum_is_one(const cnum& a) { return a.num == a.den && a.den != 0; }
bool cnum_is_int(const cnum& a, std::int64_t* out);                      // out may be null
constexpr bool cnum_eq(const cnum& a, const cnum& b) { return a == b; }  // two not-a-numbers are equal
int cnum_cmp(const cnum& a, const cnum& b);  // not-a-number is greater than every finite value

// Not-a-number where an operand is, and where the numerator or the denominator does not fit 64 bits before it is
// reduced: 1/2^40 + 1/2^40 is not-a-number.
cnum cnum_neg(const cnum& a);
cnum cnum_add(const cnum& a, const cnum& b);
cnum cnum_sub(const cnum& a, const cnum& b);
cnum cnum_mul(const cnum& a, const cnum& b);
cnum cnum_div(const cnum& a, const cnum& b);  // a zero divisor gives not-a-number

// The same where only the reduced result must fit, so that 1/2^40 + 1/2^40 is 1/2^39. Sums of many fractions go
// further.
cnum cnum_add_reduced(const cnum& a, const cnum& b);
cnum cnum_mul_reduced(const cnum& a, const cnum& b);
cnum cnum_div_reduced(const cnum& a, const cnum& b);

// base^exponent by repeated squaring; base^0 is 1 also for not-a-number.
cnum cnum_power(cnum base, std::uint64_t exponent);

// The greatest integer that is not above a. a must be finite.
std::int64_t cnum_floor(const cnum& a);

std::string cnum_to_string(const cnum& a);  // "nan", "5", "-2/3"

}  // namespace vetro

// Natural numbers of any size as little-endian limbs, for exact.cpp. GMP's lowest layer does the work on memory of
// ours, so that a failed allocation is an exception like any other and not the end of the process.
#pragma once

#include <gmp.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vetro {

using natural = std::vector<mp_limb_t>;  // without leading zeros; zero is the empty list

static_assert(sizeof(mp_limb_t) == sizeof(std::uint64_t) && GMP_NAIL_BITS == 0);

natural natural_from(std::uint64_t value);
natural natural_from_digits(std::string_view digits);  // decimal digits only
std::string natural_to_digits(const natural& n);

std::size_t natural_bits(const natural& n);  // 0 for zero
bool natural_is_one(const natural& n);
int natural_compare(const natural& a, const natural& b);  // -1, 0 or 1

natural natural_add(const natural& a, const natural& b);
natural natural_subtract(const natural& a, const natural& b);  // a must not be below b
natural natural_multiply(const natural& a, const natural& b);
natural natural_power(natural base, std::uint64_t exponent);

struct natural_division {
  natural quotient;
  natural remainder;
};
natural_division natural_divide(const natural& a, const natural& b);  // b must not be zero
std::uint64_t natural_residue(const natural& n, std::uint64_t m);     // m must not be zero
natural natural_gcd(natural a, natural b);

// The greatest number whose index-th power is not above n. index must not be zero.
natural natural_root(const natural& n, std::uint64_t index);

}  // namespace vetro

// Small primes, factorisation by small primes, and exact integer roots.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "number/exact.h"

namespace vetro {

// True for the primes up to 1000000; false for every other value, also for a greater prime.
bool solver_exact_is_small_prime_i64(std::int64_t value);

// True if value is the index-th power of an integer, which goes to *out. 0 and 1 are their own roots for every positive
// index; another value has no root of an index above 63. A null out gives false.
bool solver_exact_nth_root_u64(std::uint64_t value, int index, std::uint64_t* out);

// A positive number as a product of powers, in ascending order for the numerator and then the denominator, whose
// exponents are negative. Bases are primes, but for a factor without prime factors below 10,000, which may be left
// whole.
std::vector<std::pair<exact, std::int64_t>> prime_powers(const exact& value);

}  // namespace vetro

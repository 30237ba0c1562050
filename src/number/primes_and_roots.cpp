// Primes by trial division, roots by bisection; powers are compared in wide integers.
#include "number/primes_and_roots.h"

namespace vetro {
namespace {

// -1, 0 or 1 as base^exponent is below, equal to or above target; stops before it could overflow.
int exact_power_cmp_u64(std::uint64_t base, int exponent, std::uint64_t target) {
  std::uint64_t value = 1;
  for (int i = 0; i < exponent; ++i) {
    if (value > target / base) {
      return 1;
    }
    value *= base;
  }
  return value < target ? -1 : static_cast<int>(value > target);
}

}  // namespace

bool solver_exact_is_small_prime_i64(std::int64_t value) {
  if (value < 2 || value >= 1000001) {
    return false;
  }
  if (value % 2 == 0) {
    return value == 2;
  }
  for (std::int64_t divisor = 3; divisor <= value / divisor; divisor += 2) {
    if (value % divisor == 0) {
      return false;
    }
  }
  return true;
}

bool solver_exact_nth_root_u64(std::uint64_t value, int index, std::uint64_t* out) {
  if (out == nullptr || index < 1) {
    return false;
  }
  if (index == 1 || value < 2) {
    *out = value;
    return true;
  }
  if (index > 63) {
    return false;
  }
  std::uint64_t low = 1;
  std::uint64_t high = value;
  while (low <= high) {
    const std::uint64_t middle = low + (high - low) / 2;
    const int order = exact_power_cmp_u64(middle, index, value);
    if (order == 0) {
      *out = middle;
      return true;
    }
    if (order < 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return false;
}

}  // namespace vetro

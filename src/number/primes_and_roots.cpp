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

namespace {

constexpr std::int64_t greatest_divisor = 10'000;

using powers = std::vector<std::pair<exact, std::int64_t>>;

// What is left of a number without small prime factors: the greatest root of it that is whole.
void append_rest(const exact& rest, std::int64_t sign, powers& out) {
  if (rest.is_one()) {
    return;
  }
  for (std::uint32_t index = 64; index > 1; --index) {
    if (const auto base = rest < *power(greatest_divisor, index) ? std::nullopt : root(rest, index)) {
      out.emplace_back(*base, sign * index);
      return;
    }
  }
  out.emplace_back(rest, sign);
}

void append_prime_powers(exact rest, std::int64_t sign, powers& out) {
  for (std::int64_t divisor = 2; divisor < greatest_divisor; divisor += divisor == 2 ? 1 : 2) {
    const auto small = rest.to_int64();
    if (small && divisor > *small / divisor) {
      if (*small > 1) {
        out.emplace_back(rest, sign);
      }
      return;
    }
    std::int64_t count = 0;
    for (; residue(rest, static_cast<std::uint64_t>(divisor)) == 0; ++count) {
      rest /= divisor;
    }
    if (count > 0) {
      out.emplace_back(divisor, sign * count);
    }
  }
  append_rest(rest, sign, out);
}

}  // namespace

std::vector<std::pair<exact, std::int64_t>> prime_powers(const exact& value) {
  powers result;
  append_prime_powers(value.numerator(), 1, result);
  append_prime_powers(value.denominator(), -1, result);
  return result;
}

}  // namespace vetro

// Thin wrappers that keep the limb lists without leading zeros.
#include "number/natural.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace vetro {
namespace {

void trim(natural& n) {
  while (!n.empty() && n.back() == 0) {
    n.pop_back();
  }
}

mp_size_t size_of(const natural& n) { return static_cast<mp_size_t>(n.size()); }

std::size_t trailing_zeros(const natural& n) { return static_cast<std::size_t>(mpn_scan1(n.data(), 0)); }

// Shifts that keep the number's length rules; n must not be zero.
natural shifted_right(const natural& n, std::size_t bits) {
  const std::size_t limbs = bits / GMP_NUMB_BITS;
  natural result(n.begin() + static_cast<std::ptrdiff_t>(limbs), n.end());
  if (bits % GMP_NUMB_BITS != 0) {
    mpn_rshift(result.data(), result.data(), size_of(result), bits % GMP_NUMB_BITS);
  }
  trim(result);
  return result;
}

natural shifted_left(const natural& n, std::size_t bits) {
  natural result(bits / GMP_NUMB_BITS, 0);
  result.insert(result.end(), n.begin(), n.end());
  result.push_back(0);
  if (bits % GMP_NUMB_BITS != 0) {
    mpn_lshift(result.data(), result.data(), size_of(result), bits % GMP_NUMB_BITS);
  }
  trim(result);
  return result;
}

}  // namespace

natural natural_from(std::uint64_t value) { return value == 0 ? natural{} : natural{value}; }

natural natural_from_digits(std::string_view digits) {
  std::vector<unsigned char> values;
  values.reserve(digits.size() + 1);
  for (const char digit : digits) {
    values.push_back(static_cast<unsigned char>(digit - '0'));
  }
  if (values.empty()) {
    return {};
  }
  natural result(digits.size() / 16 + 2, 0);
  const mp_size_t used = mpn_set_str(result.data(), values.data(), values.size(), 10);
  result.resize(static_cast<std::size_t>(used));
  trim(result);
  return result;
}

std::string natural_to_digits(const natural& n) {
  if (n.empty()) {
    return "0";
  }
  natural spent = n;  // the conversion destroys its source
  std::vector<unsigned char> values(n.size() * 20 + 1);
  values.resize(mpn_get_str(values.data(), 10, spent.data(), size_of(spent)));
  std::string text;
  for (const unsigned char value : values) {
    if (value != 0 || !text.empty()) {
      text += static_cast<char>('0' + value);
    }
  }
  return text;
}

std::size_t natural_bits(const natural& n) {
  return n.empty() ? 0 : n.size() * GMP_NUMB_BITS - static_cast<std::size_t>(std::countl_zero(n.back()));
}

bool natural_is_one(const natural& n) { return n.size() == 1 && n.front() == 1; }

int natural_compare(const natural& a, const natural& b) {
  if (a.size() != b.size()) {
    return a.size() < b.size() ? -1 : 1;
  }
  return a.empty() ? 0 : std::clamp(mpn_cmp(a.data(), b.data(), size_of(a)), -1, 1);
}

natural natural_add(const natural& a, const natural& b) {
  if (a.size() < b.size()) {
    return natural_add(b, a);
  }
  if (b.empty()) {
    return a;
  }
  natural sum(a.size() + 1);
  sum.back() = mpn_add(sum.data(), a.data(), size_of(a), b.data(), size_of(b));
  trim(sum);
  return sum;
}

natural natural_subtract(const natural& a, const natural& b) {
  if (b.empty()) {
    return a;
  }
  natural difference(a.size());
  mpn_sub(difference.data(), a.data(), size_of(a), b.data(), size_of(b));
  trim(difference);
  return difference;
}

namespace {

// Of two numbers up to this length GMP multiplies with temporary memory on the stack alone.
constexpr std::size_t block = 1024;

natural piece(const natural& n, std::size_t from, std::size_t length) {
  from = std::min(from, n.size());
  natural result(n.begin() + static_cast<std::ptrdiff_t>(from),
                 n.begin() + static_cast<std::ptrdiff_t>(std::min(from + length, n.size())));
  trim(result);
  return result;
}

void add_at(natural& sum, std::size_t place, const natural& n) {
  if (!n.empty()) {
    mp_limb_t* at = sum.data() + place;
    mpn_add(at, at, size_of(sum) - static_cast<mp_size_t>(place), n.data(), size_of(n));
  }
}

// Where b is the shorter one by far, a is cut into pieces of its length; else both are halved:
// (a1 w + a0)(b1 w + b0) = a1 b1 w^2 + ((a1 + a0)(b1 + b0) - a1 b1 - a0 b0) w + a0 b0.
natural multiply_long(const natural& a, const natural& b) {
  natural product(a.size() + b.size());
  if (a.size() > b.size() + b.size() / 2) {
    for (std::size_t place = 0; place < a.size(); place += b.size()) {
      add_at(product, place, natural_multiply(piece(a, place, b.size()), b));
    }
  } else {
    const std::size_t half = (a.size() + 1) / 2;
    const natural a0 = piece(a, 0, half);
    const natural a1 = piece(a, half, half);
    const natural b0 = piece(b, 0, half);
    const natural b1 = piece(b, half, half);
    const natural low = natural_multiply(a0, b0);
    const natural high = natural_multiply(a1, b1);
    const natural all = natural_multiply(natural_add(a0, a1), natural_add(b0, b1));
    add_at(product, 0, low);
    add_at(product, half, natural_subtract(natural_subtract(all, low), high));
    add_at(product, 2 * half, high);
  }
  trim(product);
  return product;
}

}  // namespace

natural natural_multiply(const natural& a, const natural& b) {
  if (a.size() < b.size()) {
    return natural_multiply(b, a);
  }
  if (b.empty()) {
    return {};
  }
  if (b.size() > block) {
    return multiply_long(a, b);
  }
  natural product(a.size() + b.size());
  mpn_mul(product.data(), a.data(), size_of(a), b.data(), size_of(b));
  trim(product);
  return product;
}

natural natural_power(natural base, std::uint64_t exponent) {
  natural result = natural_from(1);
  for (; exponent > 0; exponent >>= 1U) {
    if ((exponent & 1U) != 0) {
      result = natural_multiply(result, base);
    }
    if (exponent > 1) {
      base = natural_multiply(base, base);
    }
  }
  return result;
}

natural_division natural_divide(const natural& a, const natural& b) {
  if (a.size() < b.size()) {
    return {{}, a};
  }
  natural_division result{natural(a.size() - b.size() + 1), natural(b.size())};
  mpn_tdiv_qr(result.quotient.data(), result.remainder.data(), 0, a.data(), size_of(a), b.data(), size_of(b));
  trim(result.quotient);
  trim(result.remainder);
  return result;
}

std::uint64_t natural_residue(const natural& n, std::uint64_t m) {
  return n.empty() ? 0 : mpn_mod_1(n.data(), size_of(n), m);
}

natural natural_gcd(natural a, natural b) {
  if (a.empty() || b.empty()) {
    return a.empty() ? b : a;
  }
  // GMP wants odd numbers, the longer first, and destroys both.
  const std::size_t twos = std::min(trailing_zeros(a), trailing_zeros(b));
  a = shifted_right(a, trailing_zeros(a));
  b = shifted_right(b, trailing_zeros(b));
  if (natural_compare(a, b) < 0) {
    a.swap(b);
  }
  natural divisor(b.size());
  const mp_size_t used = mpn_gcd(divisor.data(), a.data(), size_of(a), b.data(), size_of(b));
  divisor.resize(static_cast<std::size_t>(used));
  return shifted_left(divisor, twos);
}

// Newton's iteration from above: it falls until it has reached the root.
natural natural_root(const natural& n, std::uint64_t index) {
  const std::size_t bits = natural_bits(n);
  if (index == 1 || bits <= 1) {
    return n;
  }
  if (index >= bits) {
    return natural_from(1);
  }
  natural root = shifted_left(natural_from(1), (bits + index - 1) / index);
  for (;;) {
    const natural rest = natural_divide(n, natural_power(root, index - 1)).quotient;
    const natural weighted = natural_add(natural_multiply(root, natural_from(index - 1)), rest);
    natural next = natural_divide(weighted, natural_from(index)).quotient;
    if (natural_compare(next, root) >= 0) {
      return root;
    }
    root = std::move(next);
  }
}

}  // namespace vetro

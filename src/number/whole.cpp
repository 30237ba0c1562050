// Signs and lengths around GMP's lowest layer, with a short cut for what fits into one word.
#include "number/whole.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "number/limits.h"
#include "number/natural.h"

namespace vetro {
namespace {

using word = mp_limb_t;

constexpr std::size_t most_words = limits::exact_bits / GMP_NUMB_BITS;

// Room for a result under construction.
class scratch {
 public:
  explicit scratch(std::size_t size) {
    if (size > near_.size()) {
      far_.resize(size);
    }
  }
  word* data() { return far_.empty() ? near_.data() : far_.data(); }

 private:
  std::array<word, 32> near_;  // not filled
  std::vector<word> far_;
};

std::size_t trimmed(const word* words, std::size_t size) {
  while (size > 0 && words[size - 1] == 0) {
    --size;
  }
  return size;
}

// Neither is empty. Gives the number of words of the product.
std::size_t multiply_words(word* result, const word* a, std::size_t a_size, const word* b, std::size_t b_size) {
  if (a_size < b_size) {
    std::swap(a, b);
    std::swap(a_size, b_size);
  }
  mpn_mul(result, a, static_cast<mp_size_t>(a_size), b, static_cast<mp_size_t>(b_size));
  return trimmed(result, a_size + b_size);
}

int compare_words(const word* a, std::size_t a_size, const word* b, std::size_t b_size) {
  if (a_size != b_size) {
    return a_size < b_size ? -1 : 1;
  }
  return a_size == 0 ? 0 : mpn_cmp(a, b, static_cast<mp_size_t>(a_size));
}

}  // namespace

whole::whole(std::int64_t value) {
  const bool negative = value < 0;
  const auto bits = static_cast<std::uint64_t>(value);
  set(static_cast<wide_uint>(negative ? ~bits + 1 : bits), negative);
}

whole::whole(const exact& integer) {
  if (const auto value = integer.to_int64()) {
    *this = whole(*value);
  } else if (integer.is_integer()) {
    const auto magnitude = magnitude_words(integer);
    set(magnitude.data(), magnitude.size(), integer.sign() < 0);
  } else {
    lose();
  }
}

std::int64_t whole::short_value() const {
  const auto value = size_ == 0 ? 0 : static_cast<std::int64_t>(words()[0]);
  return negative_ ? -value : value;
}

void whole::set(wide_uint magnitude, bool negative) {
  large_.clear();
  small_[0] = static_cast<word>(magnitude);
  small_[1] = static_cast<word>(magnitude >> 64U);
  size_ = small_[1] != 0 ? 2 : small_[0] != 0 ? 1 : 0;
  negative_ = negative && size_ != 0;
}

void whole::set(const word* words, std::size_t size, bool negative) {
  if (size > most_words) {
    lose();
    return;
  }
  if (size > inline_words) {
    large_.assign(words, words + size);
  } else {
    std::copy(words, words + size, small_.begin());
    large_.clear();
  }
  size_ = static_cast<std::uint32_t>(size);
  negative_ = negative && size != 0;
}

void whole::lose() {
  *this = whole();
  known_ = false;
}

void whole::multiply(const whole& factor) {
  if (!known_ || !factor.known_) {
    lose();
  } else if (is_short() && factor.is_short()) {
    const wide_int product = static_cast<wide_int>(short_value()) * factor.short_value();
    set(static_cast<wide_uint>(product < 0 ? -product : product), product < 0);
  } else if (size_ == 0 || factor.size_ == 0) {
    *this = whole();
  } else {
    scratch product(size_ + factor.size_);
    const std::size_t size = multiply_words(product.data(), words(), size_, factor.words(), factor.size_);
    set(product.data(), size, negative_ != factor.negative_);
  }
}

void whole::combine(const whole& a, const whole& b, const whole& y) {
  if (!known_ || !a.known_ || !b.known_ || !y.known_) {
    lose();
    return;
  }
  if (is_short() && a.is_short() && b.is_short() && y.is_short()) {
    const wide_int sum = static_cast<wide_int>(a.short_value()) * short_value() +
                         static_cast<wide_int>(b.short_value()) * y.short_value();
    set(static_cast<wide_uint>(sum < 0 ? -sum : sum), sum < 0);
    return;
  }
  if (b.size_ == 0 || y.size_ == 0) {
    multiply(a);
    return;
  }
  const std::size_t room = std::max(a.size_ + size_, b.size_ + y.size_) + 1;
  scratch left(room);
  scratch right(room);
  word* l = left.data();
  word* r = right.data();
  std::size_t l_size = a.size_ == 0 || size_ == 0 ? 0 : multiply_words(l, a.words(), a.size_, words(), size_);
  std::size_t r_size = multiply_words(r, b.words(), b.size_, y.words(), y.size_);
  bool l_negative = a.negative_ != negative_;
  bool r_negative = b.negative_ != y.negative_;
  if (compare_words(l, l_size, r, r_size) < 0) {
    std::swap(l, r);
    std::swap(l_size, r_size);
    std::swap(l_negative, r_negative);
  }
  if (r_size != 0) {
    const auto longer = static_cast<mp_size_t>(l_size);
    const auto shorter = static_cast<mp_size_t>(r_size);
    if (l_negative == r_negative) {
      l[l_size] = mpn_add(l, l, longer, r, shorter);
      ++l_size;
    } else {
      mpn_sub(l, l, longer, r, shorter);
    }
  }
  set(l, trimmed(l, l_size), l_negative);
}

void whole::divide(const whole& divisor) {
  if (!known_ || !divisor.known_ || divisor.size_ == 0) {
    lose();
    return;
  }
  const bool negative = negative_ != divisor.negative_;
  if (size_ == 0) {
    return;
  }
  const auto size = static_cast<mp_size_t>(size_);
  scratch quotient(size_ + 1);
  if (divisor.size_ == 1) {
    mpn_divrem_1(quotient.data(), 0, words(), size, divisor.words()[0]);
    set(quotient.data(), trimmed(quotient.data(), size_), negative);
    return;
  }
  scratch remainder(divisor.size_);
  const std::size_t length = size_ + 1 - divisor.size_;
  mpn_tdiv_qr(quotient.data(), remainder.data(), 0, words(), size, divisor.words(),
              static_cast<mp_size_t>(divisor.size_));
  set(quotient.data(), trimmed(quotient.data(), length), negative);
}

whole gcd(const whole& a, const whole& b) {
  whole result;
  if (!a.known_ || !b.known_) {
    result.lose();
  } else if (a.size_ == 0 || b.size_ == 0) {
    result = a.size_ == 0 ? b : a;
    result.negative_ = false;
  } else if (a.size_ == 1 || b.size_ == 1) {
    const whole& one_word = a.size_ == 1 ? a : b;
    const whole& other = a.size_ == 1 ? b : a;
    result.set(mpn_gcd_1(other.words(), static_cast<mp_size_t>(other.size_), one_word.words()[0]), false);
  } else {
    const natural divisor =
        natural_gcd(natural(a.words(), a.words() + a.size_), natural(b.words(), b.words() + b.size_));
    result.set(divisor.data(), divisor.size(), false);
  }
  return result;
}

exact ratio(const whole& a, const whole& b) {
  if (!a.known_ || !b.known_ || b.size_ == 0) {
    return exact::beyond();
  }
  if (a.is_short() && b.is_short()) {
    const exact numerator(a.short_value());
    return b.is_one() ? numerator : numerator / exact(b.short_value());
  }
  return exact_from_words(a.negative_ != b.negative_, {a.words(), a.size_}, {b.words(), b.size_});
}

}  // namespace vetro

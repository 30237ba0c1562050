// Products of powers of polynomials. Each term's exponents are packed into one 64-bit word, mixed radix with room for
// the result, so that a product of terms is an addition; coefficients are 64-bit or 128-bit integers as long as the
// bound of the result shows that they suffice. Like terms meet in an array, slice by slice where the words are many,
// else in a hash table. Polynomials with greater coefficients are multiplied as numbers where that is less work.
#include <algorithm>
#include <bit>
#include <deque>
#include <limits>
#include <numeric>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

#include "number/limits.h"
#include "number/natural.h"
#include "number/poly.h"

namespace vetro {
namespace {

using packed_word = std::uint64_t;

template <class Coef>
struct packed_term {
  packed_word word;
  Coef coef;
};
template <class Coef>
using packed_poly = std::vector<packed_term<Coef>>;

template <class Coef>
void sort_words(packed_poly<Coef>& p) {
  std::sort(p.begin(), p.end(), [](const auto& a, const auto& b) { return a.word < b.word; });
}

// How the exponents of one key stand in a word: (exponent * scale - low) * stride.
struct key_layout {
  std::int32_t key;
  std::int64_t scale = 1;  // makes all exponents whole
  std::int64_t low = 0;    // least scaled exponent of the result
  packed_word stride = 0;
  packed_word range = 1;  // least to greatest scaled exponent of the result
};

bool add_to(std::int64_t& sum, std::int64_t value) { return !__builtin_add_overflow(sum, value, &sum); }

bool times(std::int64_t a, std::uint64_t b, std::int64_t& out) { return !__builtin_mul_overflow(a, b, &out); }

// ---- Coefficients.

exact exact_of(std::int64_t value) { return value; }
exact exact_of(exact value) { return value; }
exact exact_of(wide_int value) {
  if (const auto small = static_cast<std::int64_t>(value); small == value) {
    return small;
  }
  constexpr std::int64_t base = std::int64_t{1} << 32U;
  const auto high = static_cast<std::int64_t>(value / base / base);
  const auto low = static_cast<std::int64_t>(value / base % base);
  return (exact(high) * base + low) * base + static_cast<std::int64_t>(value % base);
}

template <class Coef>
Coef coef_of(const exact& integer) {
  if constexpr (std::is_same_v<Coef, exact>) {
    return integer;
  } else {
    return *integer.to_int64();
  }
}

// The least number that makes all coefficients whole.
exact common_denominator(const poly& p) {
  exact common = 1;
  for (const poly_term& t : p) {
    if (!t.coef.is_integer()) {
      common *= (t.coef * common).denominator();
    }
  }
  return common;
}

// The greatest sums for which 64 or 128 bits suffice.
const wide_int most_small = std::numeric_limits<std::int64_t>::max();
const wide_int most_wide = ((wide_int{1} << 126U) - 1) * 2;  // one less than the greatest value

// A bound for the sum of the magnitudes of the coefficients, which are integers. That of a product is at most the
// product of those of the factors.
class coefficient_bound {
 public:
  static coefficient_bound of(const poly& p) {
    coefficient_bound result;
    result.sum_ = 0;
    exact sum = 0;
    for (const poly_term& t : p) {
      const auto coef = t.coef.to_int64();
      result.sum_ = coef && result.sum_ <= most_wide ? result.sum_ + (*coef < 0 ? -wide_int{*coef} : wide_int{*coef})
                                                     : most_wide + 1;
      sum = t.coef.sign() < 0 ? sum - t.coef : sum + t.coef;
    }
    const std::vector<std::uint64_t> words = magnitude_words(sum);
    result.bits_ = words.size() * 64;
    if (!words.empty()) {
      result.bits_ -= static_cast<std::uint64_t>(std::countl_zero(words.back()));
    }
    return result;
  }
  coefficient_bound& operator*=(const coefficient_bound& other) {
    sum_ = other.sum_ != 0 && sum_ > most_wide / other.sum_ ? most_wide + 1 : sum_ * other.sum_;
    bits_ += other.bits();
    return *this;
  }
  coefficient_bound to_the(std::uint64_t exp) const {
    coefficient_bound result;
    result.bits_ = bits() > most_bits / exp ? most_bits : bits() * exp;
    for (; exp > 0 && result.is_wide() && sum_ != 1; --exp) {
      result.sum_ = sum_ > most_wide / result.sum_ ? most_wide + 1 : result.sum_ * sum_;
    }
    return result;
  }
  bool is_small() const { return sum_ <= most_small; }
  bool is_wide() const { return sum_ <= most_wide; }
  // That the magnitude of a coefficient takes, at most.
  std::uint64_t bits() const { return is_wide() ? static_cast<std::uint64_t>(bit_length(sum_)) : bits_; }

 private:
  static int bit_length(wide_int value) {
    const auto high = static_cast<std::uint64_t>(static_cast<wide_uint>(value) >> 64U);
    return high != 0 ? 64 + std::bit_width(high) : std::bit_width(static_cast<std::uint64_t>(value));
  }

  static constexpr std::uint64_t most_bits = std::uint64_t{1} << 40U;

  wide_int sum_ = 1;  // more than most_wide where it is unknown
  std::uint64_t bits_ = 0;
};

// ---- Layout.

class layout {
 public:
  // Nothing when the words would not hold the exponents of the product.
  static std::optional<layout> of(const poly_data& pdata, std::span<const poly_power> powers) {
    layout result(pdata);
    const bool fits = result.collect_keys(powers) &&
                      std::all_of(powers.begin(), powers.end(), [&](const poly_power& p) { return result.widen(p); }) &&
                      result.set_strides();
    return fits ? std::optional(std::move(result)) : std::nullopt;
  }

  // Words with the same quotient by one of these are a slice: the keys from some place on have the same exponents
  // there. The greatest comes first; all words are one slice.
  std::vector<packed_word> slices() const {
    std::vector<packed_word> result;
    for (const key_layout& key : keys_) {
      result.insert(result.begin(), key.stride);
    }
    result.insert(result.begin(), keys_.empty() ? 1 : keys_.back().stride * keys_.back().range);
    return result;
  }

  // The word of a term of base, relative to the least exponents of base.
  template <class Coef>
  packed_poly<Coef> pack(const poly& base) const {
    const std::vector<bounds> least = bounds_of(base);
    packed_poly<Coef> result;
    result.reserve(base.size());
    for (const poly_term& t : base) {
      packed_word word = 0;
      std::size_t k = 0;
      const factor_view factors = pdata_->factors(t.monomial);
      auto f = factors.begin();
      for (const key_layout& key : keys_) {
        const bool present = f != factors.end() && (*f).key == key.key;
        word += static_cast<packed_word>((present ? scaled(*f, key) : 0) - least[k].low) * key.stride;
        if (present) {
          ++f;
        }
        ++k;
      }
      result.push_back({word, coef_of<Coef>(t.coef)});
    }
    sort_words(result);
    return result;
  }

  void unpack(packed_word word, std::vector<factor>& out) const {
    out.clear();
    for (const key_layout& key : keys_) {
      const auto digit = static_cast<std::int64_t>(word / key.stride % key.range);
      const cnum exp = cnum_from_frac(digit + key.low, key.scale);
      if (!cnum_is_zero(exp)) {
        out.push_back({key.key, exp});
      }
    }
  }

 private:
  struct bounds {
    std::int64_t low = 0;
    std::int64_t high = 0;
  };

  explicit layout(const poly_data& pdata) : pdata_(&pdata) {}

  static std::int64_t scaled(const factor& f, const key_layout& key) { return f.exp.num * (key.scale / f.exp.den); }

  // The keys, each with the common denominator of its exponents. False when there is too much of something.
  bool collect_keys(std::span<const poly_power> powers) {
    for (const poly_power& power : powers) {
      for (const poly_term& t : *power.base) {
        for (const factor& f : pdata_->factors(t.monomial)) {
          if (!add_key(f) || keys_.size() > most_keys) {
            return false;
          }
        }
      }
    }
    return true;
  }

  bool add_key(const factor& f) {
    if (f.exp.den > most_scale || f.exp.num > most_exponent || f.exp.num < -most_exponent) {
      return false;
    }
    const auto at = std::lower_bound(keys_.begin(), keys_.end(), f.key,
                                     [](const key_layout& known, std::int32_t key) { return known.key < key; });
    if (at == keys_.end() || at->key != f.key) {
      keys_.insert(at, {.key = f.key, .scale = f.exp.den});
      return true;
    }
    at->scale = at->scale % f.exp.den == 0 ? at->scale : std::lcm(at->scale, f.exp.den);
    return at->scale <= most_scale;
  }

  // Least and greatest scaled exponents of each key in base, where a missing key has exponent 0.
  std::vector<bounds> bounds_of(const poly& base) const {
    std::vector<bounds> result(keys_.size());
    std::vector<std::size_t> terms_with(keys_.size(), 0);
    for (const poly_term& t : base) {
      std::size_t k = 0;
      for (const factor& f : pdata_->factors(t.monomial)) {
        while (keys_[k].key != f.key) {
          ++k;
        }
        const std::int64_t exp = scaled(f, keys_[k]);
        bounds& b = result[k];
        b.low = terms_with[k] == 0 ? exp : std::min(b.low, exp);
        b.high = terms_with[k] == 0 ? exp : std::max(b.high, exp);
        ++terms_with[k];
      }
    }
    for (std::size_t k = 0; k < keys_.size(); ++k) {
      if (terms_with[k] < base.size()) {
        result[k].low = std::min<std::int64_t>(result[k].low, 0);
        result[k].high = std::max<std::int64_t>(result[k].high, 0);
      }
    }
    return result;
  }

  bool widen(const poly_power& power) {
    const std::vector<bounds> own = bounds_of(*power.base);
    for (std::size_t k = 0; k < keys_.size(); ++k) {
      std::int64_t low = 0;
      std::int64_t room = 0;
      auto range = static_cast<std::int64_t>(keys_[k].range);
      if (!times(own[k].low, power.exp, low) || !add_to(keys_[k].low, low) ||
          !times(own[k].high - own[k].low, power.exp, room) || !add_to(range, room)) {
        return false;
      }
      keys_[k].range = static_cast<packed_word>(range);
    }
    return true;
  }

  bool set_strides() {
    packed_word words = 1;  // all words of the result lie below
    for (key_layout& key : keys_) {
      key.stride = words;
      if (__builtin_mul_overflow(words, key.range, &words) || words > most_words) {
        return false;
      }
    }
    return true;
  }

  static constexpr std::size_t most_keys = 62;
  static constexpr std::int64_t most_scale = std::int64_t{1} << 20U;
  static constexpr std::int64_t most_exponent = std::int64_t{1} << 40U;
  static constexpr packed_word most_words = packed_word{1} << 62U;

  const poly_data* pdata_;
  std::vector<key_layout> keys_;
};

// ---- Like terms.

template <class Coef>
bool is_zero(const Coef& c) {
  if constexpr (std::is_same_v<Coef, exact>) {
    return c.is_zero();
  } else {
    return c == 0;
  }
}

// Sums by word. An open hash table that holds word + 1, so that 0 is free.
template <class Coef>
class word_table {
 public:
  explicit word_table(std::size_t expected) { reserve(std::bit_ceil(std::max<std::size_t>(expected, 64) * 2)); }

  std::size_t size() const { return used_; }

  template <class Left, class Right>
  void add(packed_word word, const Left& a, const Right& b) {
    std::size_t slot = slot_of(word);
    while (words_[slot] != word + 1) {
      if (words_[slot] == 0) {
        words_[slot] = word + 1;
        if (++used_ * 2 > words_.size()) {
          grow();
          add(word, a, b);
          return;
        }
        break;
      }
      slot = (slot + 1) & mask_;
    }
    sums_[slot] += Coef(a) * b;
  }

  packed_poly<Coef> take() {
    packed_poly<Coef> result;
    result.reserve(used_);
    for (std::size_t slot = 0; slot < words_.size(); ++slot) {
      if (words_[slot] != 0 && !is_zero(sums_[slot])) {
        result.push_back({words_[slot] - 1, std::move(sums_[slot])});
      }
    }
    return result;
  }

 private:
  std::size_t slot_of(packed_word word) const { return (word * 0x9e3779b97f4a7c15ULL) >> shift_; }

  void reserve(std::size_t size) {
    words_.assign(size, 0);
    sums_.assign(size, Coef(0));
    mask_ = size - 1;
    shift_ = static_cast<unsigned>(64 - std::countr_zero(size));
  }

  void grow() {
    std::vector<packed_word> words = std::move(words_);
    std::vector<Coef> sums = std::move(sums_);
    reserve(words.size() * 2);
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (words[i] == 0) {
        continue;
      }
      std::size_t slot = slot_of(words[i] - 1);
      while (words_[slot] != 0) {
        slot = (slot + 1) & mask_;
      }
      words_[slot] = words[i];
      sums_[slot] = std::move(sums[i]);
    }
  }

  std::vector<packed_word> words_;
  std::vector<Coef> sums_;
  std::size_t mask_ = 0;
  unsigned shift_ = 0;
  std::size_t used_ = 0;
};

// ---- Multiplication.

// Against a product of two terms with small coefficients.
constexpr std::uint64_t cost_of_term = 4;
constexpr std::uint64_t cost_of_great_product = 32;

constexpr packed_word most_dense_bytes = packed_word{1} << 23U;
constexpr packed_word words_of_product = 4;  // of an array that take as long as a product of two terms
constexpr std::uint64_t work_of_part = 16;   // of two slices, in products of two terms
constexpr packed_word most_slice_bytes = packed_word{1} << 18U;  // what a second-level cache holds with ease

template <class Sum, class Left, class Right>
std::optional<packed_poly<Sum>> multiply_by_table(const packed_poly<Left>& a, const packed_poly<Right>& b) {
  word_table<Sum> table(a.size() + b.size());
  for (const auto& left : a) {
    for (const auto& right : b) {
      table.add(left.word + right.word, left.coef, right.coef);
    }
    if (table.size() > limits::poly_terms) {
      return std::nullopt;
    }
  }
  packed_poly<Sum> result = table.take();
  sort_words(result);
  return result;
}

// The terms of one slice, with words inside it.
template <class Coef>
struct slice_of_terms {
  packed_word number;
  packed_poly<Coef> terms;
};

// p must be sorted.
template <class Coef>
std::vector<slice_of_terms<Coef>> slices_of(const packed_poly<Coef>& p, packed_word slice) {
  std::vector<slice_of_terms<Coef>> result;
  for (const auto& t : p) {
    const packed_word number = t.word / slice;
    if (result.empty() || result.back().number != number) {
      result.push_back({number, {}});
    }
    result.back().terms.push_back({t.word % slice, t.coef});
  }
  return result;
}

// A product by slices: each slice of the result is the sum of products of slices.
template <class Sum, class Left, class Right>
class sliced_product {
 public:
  sliced_product(const packed_poly<Left>& a, const packed_poly<Right>& b, packed_word slice)
      : slice_(slice), left_(slices_of(a, slice)), right_(slices_of(b, slice)) {}

  std::size_t parts() const { return left_.size() * right_.size(); }

  // How many words the slices of the result have.
  packed_word pair_up() {
    parts_.reserve(parts());
    for (const auto& left : left_) {
      for (const auto& right : right_) {
        parts_.push_back({left.number + right.number, &left.terms, &right.terms});
      }
    }
    std::stable_sort(parts_.begin(), parts_.end(), [](const part& x, const part& y) { return x.number < y.number; });
    packed_word slices = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      slices += i == 0 || parts_[i].number != parts_[i - 1].number ? 1 : 0;
    }
    return slices * slice_;
  }

  // Nothing when the limit of terms is used up.
  std::optional<packed_poly<Sum>> run(packed_word slice_words) const {
    packed_poly<Sum> result;
    std::vector<Sum> sums(slice_words, Sum(0));
    for (auto p = parts_.begin(); p != parts_.end();) {
      const packed_word number = p->number;
      for (; p != parts_.end() && p->number == number; ++p) {
        add(*p, sums.data());
      }
      for (packed_word word = 0; word < slice_words; ++word) {
        if (!is_zero(sums[word])) {
          result.push_back({number * slice_ + word, std::exchange(sums[word], Sum(0))});
        }
      }
      if (result.size() > limits::poly_terms) {
        return std::nullopt;
      }
    }
    return result;
  }

 private:
  struct part {
    packed_word number;
    const packed_poly<Left>* left;
    const packed_poly<Right>* right;
  };

  static void add(const part& p, Sum* sums) {
    for (const auto& left : *p.left) {
      Sum* row = sums + left.word;
      for (const auto& right : *p.right) {
        row[right.word] += Sum(left.coef) * right.coef;
      }
    }
  }

  packed_word slice_;
  std::vector<slice_of_terms<Left>> left_;
  std::vector<slice_of_terms<Right>> right_;
  std::vector<part> parts_;
};

// Nothing when the limit of terms is used up.
template <class Sum, class Left, class Right>
std::optional<packed_poly<Sum>> like_terms_collected(const layout& words, const packed_poly<Left>& a,
                                                     const packed_poly<Right>& b) {
  const std::uint64_t products = std::uint64_t{a.size()} * b.size();
  const packed_word all = a.back().word + b.back().word + 1;
  for (const packed_word slice : words.slices()) {
    const packed_word slice_words = std::min(slice, all);
    if (slice_words > most_slice_bytes / sizeof(Sum)) {
      continue;
    }
    sliced_product<Sum, Left, Right> product(a, b, slice);
    if (slice < all && product.parts() * work_of_part > products) {
      break;  // smaller slices are more
    }
    if (product.pair_up() <= products * words_of_product + 256) {
      return product.run(slice_words);
    }
  }
  if (all <= most_dense_bytes / sizeof(Sum) && all <= products * words_of_product + 256) {
    sliced_product<Sum, Left, Right> product(a, b, all);
    product.pair_up();
    return product.run(all);
  }
  return multiply_by_table<Sum>(a, b);
}

// Nothing when the budget or the limit of terms is used up. Both must be sorted by word, and so is the result.
template <class Sum, class Left, class Right>
std::optional<packed_poly<Sum>> multiply(poly_data& pdata, const layout& words, const packed_poly<Left>& a,
                                         const packed_poly<Right>& b, std::uint64_t cost) {
  if (!pdata.charge(std::uint64_t{a.size()} * b.size() * cost)) {
    return std::nullopt;
  }
  return like_terms_collected<Sum>(words, a, b);
}

// ---- Polynomials as numbers: with room for every coefficient of the result, words are places of digits.

class numeral {
 public:
  // Digits must hold a coefficient and its sign.
  static numeral of(const packed_poly<exact>& p, std::size_t digit_limbs) {
    const std::size_t limbs = (p.back().word + 1) * digit_limbs;
    natural parts[2] = {natural(limbs), natural(limbs)};  // the positive digits, the negative ones
    for (const auto& t : p) {
      const std::vector<std::uint64_t> digit = magnitude_words(t.coef);
      std::copy(digit.begin(), digit.end(),
                parts[t.coef.sign() < 0 ? 1 : 0].begin() + static_cast<std::ptrdiff_t>(t.word * digit_limbs));
    }
    for (natural& part : parts) {
      while (!part.empty() && part.back() == 0) {
        part.pop_back();
      }
    }
    const bool negative = natural_compare(parts[0], parts[1]) < 0;
    return {negative, negative ? natural_subtract(parts[1], parts[0]) : natural_subtract(parts[0], parts[1])};
  }
  numeral operator*(const numeral& other) const {
    return {negative_ != other.negative_, natural_multiply(value_, other.value_)};
  }
  numeral to_the(std::uint64_t exp) const { return {negative_ && exp % 2 != 0, natural_power(value_, exp)}; }

  packed_poly<exact> digits(std::size_t digit_limbs) const {
    packed_poly<exact> result;
    natural rest = value_;
    rest.resize((rest.size() / digit_limbs + 2) * digit_limbs);
    constexpr std::uint64_t one[] = {1};
    bool carry = false;  // a digit in the upper half is a negative one and takes 1 from the next
    for (packed_word word = 0; (word + 1) * digit_limbs <= rest.size(); ++word) {
      mp_limb_t* digit = rest.data() + word * digit_limbs;
      const auto count = static_cast<mp_size_t>(digit_limbs);
      carry = carry && mpn_add_1(digit, digit, count, 1) != 0;
      const bool upper = (digit[digit_limbs - 1] >> 63U) != 0;
      if (upper) {
        mpn_neg(digit, digit, count);
      }
      const exact coef = exact_from_words(upper != negative_, trimmed({digit, digit_limbs}), one);
      if (!coef.is_zero()) {
        result.push_back({word, coef});
      }
      carry = carry || upper;
    }
    return result;
  }

 private:
  numeral(bool negative, natural value) : negative_(negative), value_(std::move(value)) {}

  static std::span<const std::uint64_t> trimmed(std::span<const std::uint64_t> words) {
    while (!words.empty() && words.back() == 0) {
      words = words.first(words.size() - 1);
    }
    return words;
  }

  bool negative_;
  natural value_;
};

std::size_t digit_limbs_for(std::uint64_t bits) { return bits / 64 + 1; }

std::uint64_t cost_of_numbers(std::uint64_t left_limbs, std::uint64_t right_limbs) {
  return left_limbs * right_limbs / 32 + (left_limbs + right_limbs) * 4;
}

constexpr packed_word most_limbs = packed_word{1} << 20U;

// Nothing where that is more work than multiplying by the base again and again. exp must be 2 or more.
std::optional<packed_poly<exact>> power_as_number(poly_data& pdata, const packed_poly<exact>& base, std::uint64_t exp,
                                                  std::uint64_t bits) {
  const std::size_t digit_limbs = digit_limbs_for(bits);
  const packed_word words = base.back().word * exp + 1;
  if (words > most_limbs / digit_limbs || words > 4 * exp * base.size()) {
    return std::nullopt;
  }
  const std::uint64_t limbs = words * digit_limbs;
  const std::uint64_t cost = cost_of_numbers(limbs / 2, limbs / 2);
  if (cost > exp * base.size() * words * cost_of_great_product / 2 || !pdata.charge(cost)) {
    return std::nullopt;
  }
  return numeral::of(base, digit_limbs).to_the(exp).digits(digit_limbs);
}

// bits are those of the coefficients of the result.
std::optional<packed_poly<exact>> multiply_great(poly_data& pdata, const layout& words, const packed_poly<exact>& a,
                                                 const packed_poly<exact>& b, std::uint64_t bits) {
  const std::size_t digit_limbs = digit_limbs_for(bits);
  const packed_word left_words = a.back().word + 1;
  const packed_word right_words = b.back().word + 1;
  const std::uint64_t cost = cost_of_great_product + bits / 16;
  if (std::max(left_words, right_words) <= most_limbs / digit_limbs) {
    const std::uint64_t as_numbers = cost_of_numbers(left_words * digit_limbs, right_words * digit_limbs);
    if (as_numbers < a.size() * b.size() * cost) {
      return pdata.charge(as_numbers)
                 ? std::optional((numeral::of(a, digit_limbs) * numeral::of(b, digit_limbs)).digits(digit_limbs))
                 : std::nullopt;
    }
  }
  return multiply<exact>(pdata, words, a, b, cost);
}

// ---- Products.

poly unpacked(poly_data& pdata, const layout& words, auto& packed) {
  poly result;
  result.reserve(packed.size());
  std::vector<factor> factors;
  for (auto& t : packed) {
    words.unpack(t.word, factors);
    result.push_back({pdata.intern_monomial(factors), exact_of(std::move(t.coef))});
    if (!result.back().coef.is_known()) {
      return poly_nan();
    }
  }
  poly_sort(result);
  return result;
}

template <class To, class From>
packed_poly<To> converted(const packed_poly<From>& p) {
  packed_poly<To> result;
  result.reserve(p.size());
  for (const auto& t : p) {
    if constexpr (std::is_same_v<To, exact>) {
      result.push_back({t.word, exact_of(t.coef)});
    } else {
      result.push_back({t.word, To(t.coef)});
    }
  }
  return result;
}

// A product in the making, with coefficients as short as they may be.
class packed_product {
 public:
  packed_product(poly_data& pdata, const layout& words) : pdata_(pdata), words_(words) {}

  // False when the budget or the limit of terms is used up.
  bool multiply_by(const poly_power& power) {
    const coefficient_bound bound = coefficient_bound::of(*power.base);
    return bound.is_wide() ? multiply_by(words_.pack<std::int64_t>(*power.base), power.exp, bound)
                           : multiply_by(words_.pack<exact>(*power.base), power.exp, bound);
  }

  poly take() {
    return std::visit(
        [this](auto& terms) {
          return pdata_.charge(terms.size() * cost_of_term) ? unpacked(pdata_, words_, terms) : poly_nan();
        },
        terms_);
  }

 private:
  void make_great() {
    if (const auto* small = std::get_if<packed_poly<std::int64_t>>(&terms_)) {
      terms_ = converted<exact>(*small);
    } else if (const auto* wide = std::get_if<packed_poly<wide_int>>(&terms_)) {
      terms_ = converted<exact>(*wide);
    }
  }
  bool keep(auto product) {
    if (product) {
      terms_ = std::move(*product);
    }
    return product.has_value();
  }

  template <class Coef>
  bool multiply_by(const packed_poly<Coef>& base, std::uint64_t exp, const coefficient_bound& bound) {
    if (const coefficient_bound whole = bound.to_the(exp); exp > 1 && !whole.is_wide()) {
      if (const auto power = power_as_number(pdata_, converted<exact>(base), exp, whole.bits())) {
        bound_ *= whole;
        return multiply_by_great(*power);
      }
    }
    for (; exp > 0; --exp) {
      bound_ *= bound;
      if (!multiply_once(base)) {
        return false;
      }
    }
    return true;
  }

  bool multiply_once(const packed_poly<exact>& base) { return multiply_by_great(base); }
  bool multiply_once(const packed_poly<std::int64_t>& base) {
    if (!bound_.is_wide()) {
      return multiply_by_great(converted<exact>(base));
    }
    if (const auto* small = std::get_if<packed_poly<std::int64_t>>(&terms_)) {
      return bound_.is_small() ? keep(multiply<std::int64_t>(pdata_, words_, *small, base, 1))
                               : keep(multiply<wide_int>(pdata_, words_, *small, base, 1));
    }
    return keep(multiply<wide_int>(pdata_, words_, std::get<packed_poly<wide_int>>(terms_), base, 1));
  }

  bool multiply_by_great(const packed_poly<exact>& base) {
    make_great();
    auto& terms = std::get<packed_poly<exact>>(terms_);
    return keep(multiply_great(pdata_, words_, terms, base, bound_.bits())) &&
           std::all_of(terms.begin(), terms.end(), [](const auto& t) { return t.coef.is_known(); });
  }

  poly_data& pdata_;
  const layout& words_;
  coefficient_bound bound_;
  std::variant<packed_poly<std::int64_t>, packed_poly<wide_int>, packed_poly<exact>> terms_ =
      packed_poly<std::int64_t>{{0, 1}};
};

// Where exponents do not fit a word.
poly plain_product(poly_data& pdata, std::span<const poly_power> powers) {
  poly result = poly_const(1);
  for (const poly_power& power : powers) {
    for (std::uint64_t left = power.exp; left > 0; --left) {
      poly_sum sum(pdata);
      for (const poly_term& t : result) {
        if (!pdata.charge(power.base->size() * cost_of_term)) {
          return poly_nan();
        }
        sum.add(*power.base, t.monomial, t.coef);
      }
      result = sum.take();
      if (poly_is_nan(result) || result.size() > limits::poly_terms) {
        return poly_nan();
      }
    }
  }
  return result;
}

// The factors of a product with whole coefficients and several terms; what single terms and denominators contribute
// stands aside.
class prepared_product {
 public:
  explicit prepared_product(poly_data& pdata) : pdata_(pdata) {}

  poly run(std::span<const poly_power> powers) {
    for (const poly_power& power : powers) {
      if (power.exp != 0 && power.base->empty()) {
        return {};
      }
    }
    for (const poly_power& power : powers) {
      if (power.exp != 0 && !add(power)) {
        return poly_nan();
      }
    }
    const poly product = of_sums();
    return monomial_ == 0 && coef_.is_one() ? product : poly_scale(pdata_, product, monomial_, coef_);
  }

 private:
  bool add(const poly_power& power) {
    if (poly_is_nan(*power.base)) {
      return false;
    }
    if (power.base->size() == 1) {
      return take_aside(power.base->front(), power.exp);
    }
    const exact common = common_denominator(*power.base);
    const poly* base = power.base;
    if (!common.is_one()) {
      whole_.push_back(poly_scale(pdata_, *power.base, 0, common));
      base = &whole_.back();
      if (!take_aside({0, 1 / common}, power.exp)) {
        return false;
      }
    }
    sums_.push_back({base, power.exp});
    return true;
  }

  bool take_aside(const poly_term& t, std::uint64_t exp) {
    if (exp > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return false;
    }
    const auto whole = static_cast<std::int64_t>(exp);
    const auto power = vetro::power(t.coef, whole);
    const auto monomial = pdata_.power(t.monomial, cnum_from_int(whole));
    const auto product = monomial ? pdata_.multiply(monomial_, *monomial) : std::nullopt;
    coef_ *= power.value_or(exact::beyond());
    monomial_ = product.value_or(0);
    return product && coef_.is_known();
  }

  poly of_sums() {
    if (sums_.empty()) {
      return poly_const(1);
    }
    if (sums_.size() == 1 && sums_.front().exp == 1) {
      return *sums_.front().base;
    }
    std::stable_sort(sums_.begin(), sums_.end(),
                     [](const poly_power& a, const poly_power& b) { return a.base->size() > b.base->size(); });
    const auto words = layout::of(pdata_, sums_);
    if (!words) {
      return plain_product(pdata_, sums_);
    }
    packed_product product(pdata_, *words);
    const bool done =
        std::all_of(sums_.begin(), sums_.end(), [&](const poly_power& p) { return product.multiply_by(p); });
    return done ? product.take() : poly_nan();
  }

  poly_data& pdata_;
  exact coef_ = 1;
  monomial_id monomial_ = 0;
  std::deque<poly> whole_;  // bases with their denominators taken out
  std::vector<poly_power> sums_;
};

}  // namespace

poly poly_product(poly_data& pdata, std::span<const poly_power> powers) { return prepared_product(pdata).run(powers); }

}  // namespace vetro

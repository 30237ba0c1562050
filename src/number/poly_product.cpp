// Products of powers of polynomials. Each term's exponents are packed into one 64-bit word, mixed radix with room for
// the result, so that a product of terms is an addition; coefficients are 64-bit or 128-bit integers where the bound of
// the result shows that they suffice. Where the words of the result are few, like terms meet in an array, else in a
// hash table.
#include <algorithm>
#include <bit>
#include <deque>
#include <limits>
#include <numeric>
#include <optional>
#include <type_traits>
#include <utility>

#include "number/limits.h"
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

// The sum of the magnitudes of the coefficients, which are integers. The sum of a product is at most the product of the
// sums.
exact size_of(const poly& p) {
  exact sum = 0;
  for (const poly_term& t : p) {
    sum += t.coef.sign() < 0 ? -t.coef : t.coef;
  }
  return sum;
}

std::uint64_t bits_of(const exact& integer) {
  const auto small = integer.to_int64();
  return small ? static_cast<std::uint64_t>(64 - std::countl_zero(static_cast<std::uint64_t>(*small))) : 128;
}

// The greatest sums for which 64 or 128 bits suffice.
const wide_int most_small = std::numeric_limits<std::int64_t>::max();
const wide_int most_wide = ((wide_int{1} << 126U) - 1) * 2;  // one less than the greatest value

// bound * size^exp for the sum of the magnitudes of p's coefficients, which are integers; more than most_wide where one
// of them does not fit 64 bits, or the result is more.
wide_int raised(wide_int bound, const poly& p, std::uint64_t exp) {
  wide_int size = 0;
  for (const poly_term& t : p) {
    const auto coef = t.coef.to_int64();
    if (!coef) {
      return most_wide + 1;
    }
    size += *coef < 0 ? -wide_int{*coef} : wide_int{*coef};
  }
  for (; exp > 0 && bound <= most_wide && size > 1; --exp) {
    bound = bound > most_wide / size ? most_wide + 1 : bound * size;
  }
  return bound;
}

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

template <class Coef>
void add_product(Coef& sum, const Coef& a, const Coef& b) {
  sum += a * b;
}

// Sums by word. An open hash table that holds word + 1, so that 0 is free.
template <class Coef>
class word_table {
 public:
  explicit word_table(std::size_t expected) { reserve(std::bit_ceil(std::max<std::size_t>(expected, 64) * 2)); }

  std::size_t size() const { return used_; }

  void add(packed_word word, const Coef& a, const Coef& b) {
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
    add_product(sums_[slot], a, b);
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

constexpr packed_word most_dense_bytes = packed_word{1} << 23U;  // what a second-level cache holds, about

template <class Coef>
packed_poly<Coef> multiply_dense(const packed_poly<Coef>& a, const packed_poly<Coef>& b, packed_word words) {
  std::vector<Coef> sums(words, Coef(0));
  for (const auto& left : a) {
    Coef* row = sums.data() + left.word;
    for (const auto& right : b) {
      add_product(row[right.word], left.coef, right.coef);
    }
  }
  packed_poly<Coef> result;
  for (packed_word word = 0; word < words; ++word) {
    if (!is_zero(sums[word])) {
      result.push_back({word, std::move(sums[word])});
    }
  }
  return result;
}

// Nothing when the budget or the limit of terms is used up.
template <class Coef>
std::optional<packed_poly<Coef>> multiply(poly_data& pdata, const packed_poly<Coef>& a, const packed_poly<Coef>& b,
                                          packed_word words, std::uint64_t cost) {
  const std::uint64_t products = std::uint64_t{a.size()} * b.size();
  if (!pdata.charge(products * cost)) {
    return std::nullopt;
  }
  if (words <= most_dense_bytes / sizeof(Coef) && words <= products * 8 + 256) {
    return multiply_dense(a, b, words);
  }
  word_table<Coef> table(a.size() + b.size());
  for (const auto& left : a) {
    for (const auto& right : b) {
      table.add(left.word + right.word, left.coef, right.coef);
    }
    if (table.size() > limits::poly_terms) {
      return std::nullopt;
    }
  }
  return table.take();
}

// The least and greatest word of a product are sums of those of its factors.
template <class Coef>
packed_word words_of(const packed_poly<Coef>& p) {
  packed_word greatest = 0;
  for (const auto& t : p) {
    greatest = std::max(greatest, t.word);
  }
  return greatest + 1;
}

// ---- Products.

template <class Coef>
poly unpacked(poly_data& pdata, const layout& words, packed_poly<Coef> packed) {
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

template <class Coef>
poly packed_product(poly_data& pdata, const layout& words, std::span<const poly_power> powers) {
  std::uint64_t bits = 0;  // of the coefficients so far, at most
  packed_poly<Coef> result;
  for (const poly_power& power : powers) {
    const packed_poly<Coef> base = words.pack<Coef>(*power.base);
    const packed_word range = words_of(base) - 1;
    const std::uint64_t base_bits = bits_of(size_of(*power.base));
    std::uint64_t left = power.exp;
    if (result.empty()) {
      result = base;
      --left;
    }
    for (; left > 0; --left) {
      bits += base_bits;
      const std::uint64_t cost = std::is_same_v<Coef, exact> ? cost_of_great_product + bits / 16 : 1;
      auto product = multiply(pdata, result, base, words_of(result) + range, cost);
      if (!product) {
        return poly_nan();
      }
      result = std::move(*product);
    }
  }
  return pdata.charge(result.size() * cost_of_term) ? unpacked(pdata, words, std::move(result)) : poly_nan();
}

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
    bound_ = raised(bound_, *base, power.exp);
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
    if (bound_ <= most_small) {
      return packed_product<std::int64_t>(pdata_, *words, sums_);
    }
    return bound_ <= most_wide ? packed_product<wide_int>(pdata_, *words, sums_)
                               : packed_product<exact>(pdata_, *words, sums_);
  }

  poly_data& pdata_;
  exact coef_ = 1;
  monomial_id monomial_ = 0;
  std::deque<poly> whole_;  // bases with their denominators taken out
  std::vector<poly_power> sums_;
  wide_int bound_ = 1;  // for the coefficients of the product
};

}  // namespace

poly poly_product(poly_data& pdata, std::span<const poly_power> powers) { return prepared_product(pdata).run(powers); }

}  // namespace vetro

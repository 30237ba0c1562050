// Arithmetic of generalized polynomials. Like terms are collected through one slot for each monomial number, so that a
// sum or product costs what its terms cost, and sorting costs at most the sorting of the result.
#include "number/poly.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "number/limits.h"

namespace vetro {
namespace {

std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9e3779b97f4a7c15ULL;
  return hash ^ (hash >> 29U);
}

std::uint64_t hash_factors(std::span<const factor> factors) {
  std::uint64_t hash = factors.size();
  for (const factor& f : factors) {
    hash = mix(hash, static_cast<std::uint64_t>(f.key));
    hash = mix(hash, static_cast<std::uint64_t>(f.exp.num) ^ (static_cast<std::uint64_t>(f.exp.den) << 32U));
  }
  return hash;
}

// Collects terms by monomial. The registry's slots hold 1 + the position of each monomial's term.
class collector {
 public:
  explicit collector(poly_data& pdata) : slots_(pdata.slots()) {}
  collector(const collector&) = delete;
  collector& operator=(const collector&) = delete;
  ~collector() { clear_slots(); }

  void add(monomial_id m, const cnum& coef) {
    if (m >= slots_.size()) {
      slots_.resize(std::max<std::size_t>(m + 1, slots_.size() * 2), 0);
    }
    std::uint32_t& slot = slots_[m];
    if (slot == 0) {
      terms_.push_back({m, coef});
      slot = static_cast<std::uint32_t>(terms_.size());
      failed_ = failed_ || !cnum_is_finite(coef);
    } else if (!add_to(terms_[slot - 1], coef)) {
      postponed_.push_back({m, coef});
      failed_ = failed_ || !cnum_is_finite(coef) || postponed_.size() > most_postponed;
    }
  }
  void fail() { failed_ = true; }
  bool failed() const { return failed_; }

  poly take() {
    add_postponed();
    clear_slots();
    if (failed_) {
      return poly_nan();
    }
    std::erase_if(terms_, [](const poly_term& t) { return cnum_is_zero(t.coef); });
    std::sort(terms_.begin(), terms_.end(),
              [](const poly_term& a, const poly_term& b) { return a.monomial < b.monomial; });
    return std::exchange(terms_, {});
  }

 private:
  static constexpr std::size_t most_postponed = 64;

  static bool add_to(poly_term& t, const cnum& coef) {
    const cnum sum = cnum_add_reduced(t.coef, coef);
    t.coef = cnum_is_finite(sum) ? sum : t.coef;
    return cnum_is_finite(sum);
  }

  // 2^62 + (2^62 - 1) fits, though 2^62 + 2^62 on the way to it doesn't: what overflows waits for the others.
  void add_postponed() {
    std::size_t before = postponed_.size() + 1;
    while (!failed_ && !postponed_.empty() && postponed_.size() < before) {
      before = postponed_.size();
      std::erase_if(postponed_, [&](const poly_term& t) { return add_to(terms_[slots_[t.monomial] - 1], t.coef); });
    }
    failed_ = failed_ || !postponed_.empty();
  }

  void clear_slots() {
    for (const poly_term& t : terms_) {
      slots_[t.monomial] = 0;
    }
  }

  std::vector<std::uint32_t>& slots_;
  poly terms_;
  poly postponed_;  // terms that did not fit into the sum of their monomial so far
  bool failed_ = false;
};

}  // namespace

// ---- The registry.

poly_data::poly_data(std::uint64_t budget) : budget_(budget), table_(256, 0) {}

std::size_t poly_data::words_hash::operator()(const key_words& words) const {
  std::uint64_t hash = words.size();
  for (const std::uint64_t word : words) {
    hash = mix(hash, word);
  }
  return hash;
}

bool poly_data::charge(std::uint64_t work) {
  if (work > budget_ || work_ > budget_ - work) {
    work_ = budget_ + 1;
    return false;
  }
  work_ += work;
  return true;
}

std::int32_t poly_data::intern_key(factor_kind kind, const key_words& words) {
  const auto [entry, fresh] = keys_.try_emplace(words, static_cast<std::int32_t>(kinds_.size()));
  if (fresh) {
    kinds_.push_back(kind);
  }
  return entry->second;
}

std::span<const factor> poly_data::factors(monomial_id m) const {
  return {pool_.data() + monomials_[m].begin, monomials_[m].count};
}

void poly_data::grow_table() {
  std::vector<monomial_id> wider(table_.size() * 2, 0);
  for (const monomial_id m : table_) {
    if (m == 0) {
      continue;
    }
    std::size_t slot = hash_factors(factors(m)) & (wider.size() - 1);
    while (wider[slot] != 0) {
      slot = (slot + 1) & (wider.size() - 1);
    }
    wider[slot] = m;
  }
  table_.swap(wider);
}

monomial_id poly_data::intern_monomial(std::span<const factor> list) {
  if (list.empty()) {
    return 0;
  }
  std::size_t slot = hash_factors(list) & (table_.size() - 1);
  for (; table_[slot] != 0; slot = (slot + 1) & (table_.size() - 1)) {
    const std::span<const factor> known = factors(table_[slot]);
    if (std::equal(known.begin(), known.end(), list.begin(), list.end())) {
      return table_[slot];
    }
  }
  charge(list.size());
  const auto id = static_cast<monomial_id>(monomials_.size());
  const bool whole_root = std::any_of(list.begin(), list.end(), [&](const factor& f) {
    return kind_of(f.key) == F_POW && (f.exp.num < 0 || f.exp.num >= f.exp.den);
  });
  monomials_.push_back({static_cast<std::uint32_t>(pool_.size()), static_cast<std::uint32_t>(list.size()), whole_root});
  pool_.insert(pool_.end(), list.begin(), list.end());
  table_[slot] = id;
  if (monomials_.size() * 2 > table_.size()) {
    grow_table();
  }
  return id;
}

std::optional<monomial_id> poly_data::multiply(monomial_id a, monomial_id b) {
  if (a == 0 || b == 0) {
    return a + b;
  }
  const std::span<const factor> left = factors(a);
  const std::span<const factor> right = factors(b);
  scratch_.clear();
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < left.size() && j < right.size()) {
    if (left[i].key != right[j].key) {
      scratch_.push_back(left[i].key < right[j].key ? left[i++] : right[j++]);
      continue;
    }
    const cnum sum = cnum_add_reduced(left[i].exp, right[j].exp);
    if (!cnum_is_finite(sum)) {
      return std::nullopt;
    }
    if (!cnum_is_zero(sum)) {
      scratch_.push_back({left[i].key, sum});
    }
    ++i;
    ++j;
  }
  scratch_.insert(scratch_.end(), left.begin() + static_cast<std::ptrdiff_t>(i), left.end());
  scratch_.insert(scratch_.end(), right.begin() + static_cast<std::ptrdiff_t>(j), right.end());
  return intern_monomial(scratch_);
}

std::optional<monomial_id> poly_data::power(monomial_id m, const cnum& exponent) {
  if (cnum_is_zero(exponent)) {
    return 0;
  }
  const std::span<const factor> list = factors(m);
  scratch_.assign(list.begin(), list.end());
  for (factor& f : scratch_) {
    f.exp = cnum_mul_reduced(f.exp, exponent);
    if (!cnum_is_finite(f.exp)) {
      return std::nullopt;
    }
  }
  return intern_monomial(scratch_);
}

// ---- Polynomials.

poly poly_nan() { return {{0, cnum_nan()}}; }

bool poly_is_nan(const poly& p) { return p.size() == 1 && !cnum_is_finite(p.front().coef); }

poly poly_monomial(monomial_id m, const cnum& coef) {
  if (!cnum_is_finite(coef)) {
    return poly_nan();
  }
  return cnum_is_zero(coef) ? poly{} : poly{{m, coef}};
}

poly poly_const(const cnum& c) { return poly_monomial(0, c); }

poly poly_atom(poly_data& pdata, std::int32_t key, const cnum& exp) {
  if (!cnum_is_finite(exp)) {
    return poly_nan();
  }
  if (cnum_is_zero(exp)) {
    return poly_const(cnum_from_int(1));
  }
  const factor f{key, exp};
  return poly_monomial(pdata.intern_monomial({&f, 1}), cnum_from_int(1));
}

poly poly_sum(poly_data& pdata, std::span<const signed_poly> summands) {
  collector out(pdata);
  for (const auto& [p, negative] : summands) {
    if (poly_is_nan(*p) || !pdata.charge(p->size())) {
      out.fail();
      break;
    }
    for (const poly_term& t : *p) {
      out.add(t.monomial, negative ? cnum_neg(t.coef) : t.coef);
    }
  }
  return out.take();
}

poly poly_add(poly_data& pdata, const poly& a, const poly& b) {
  const signed_poly both[] = {{&a, false}, {&b, false}};
  return poly_sum(pdata, both);
}

poly poly_sub(poly_data& pdata, const poly& a, const poly& b) {
  const signed_poly both[] = {{&a, false}, {&b, true}};
  return poly_sum(pdata, both);
}

poly poly_neg(const poly& a) {
  poly result = a;
  for (poly_term& t : result) {
    t.coef = cnum_neg(t.coef);
    if (!cnum_is_finite(t.coef)) {
      return poly_nan();
    }
  }
  return result;
}

poly poly_mul(poly_data& pdata, const poly& a, const poly& b) {
  if (a.empty() || b.empty()) {
    return {};
  }
  if (poly_is_nan(a) || poly_is_nan(b)) {
    return poly_nan();
  }
  if (poly_is_one(a) || poly_is_one(b)) {
    return poly_is_one(a) ? b : a;
  }
  if (a.size() > limits::poly_operation / b.size()) {
    return poly_nan();
  }
  collector out(pdata);
  for (const poly_term& left : a) {
    if (out.failed() || !pdata.charge(b.size())) {
      return poly_nan();
    }
    for (const poly_term& right : b) {
      const std::optional<monomial_id> m = pdata.multiply(left.monomial, right.monomial);
      if (!m) {
        return poly_nan();
      }
      out.add(*m, cnum_mul_reduced(left.coef, right.coef));
    }
  }
  return pdata.exhausted() ? poly_nan() : out.take();
}

poly poly_scale(poly_data& pdata, const poly& a, monomial_id m, const cnum& coef) {
  return poly_mul(pdata, a, poly_monomial(m, coef));
}

namespace {

poly pow_of_one_term(poly_data& pdata, const poly_term& t, std::uint64_t k) {
  if (k > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return poly_nan();
  }
  const std::optional<monomial_id> m = pdata.power(t.monomial, cnum_from_int(static_cast<std::int64_t>(k)));
  return m ? poly_monomial(*m, cnum_power(t.coef, k)) : poly_nan();
}

// previous * up / down, where that is exact: a step along a row or a diagonal of binomial coefficients. In 128 bits
// nothing overflows that fits in the end.
cnum next_binomial(const cnum& previous, std::uint64_t up, std::uint64_t down) {
  const wide_uint next = static_cast<wide_uint>(previous.num) * up / down;
  const bool fits = next <= static_cast<wide_uint>(std::numeric_limits<std::int64_t>::max());
  return fits ? cnum_from_int(static_cast<std::int64_t>(next)) : cnum_nan();
}

// The power by the multinomial theorem: one product of monomials for each term of the result. Right for every
// polynomial, and the cheapest way where no two products of its monomials coincide.
class multinomial_power {
 public:
  multinomial_power(poly_data& pdata, const poly& base) : pdata_(pdata), base_(base), out_(pdata) {}

  poly run(std::uint64_t k) {
    if (!worth_running(k)) {
      return poly_nan();
    }
    walk(0, k, 0, cnum_from_int(1));
    return pdata_.exhausted() ? poly_nan() : out_.take();
  }

 private:
  // The number of ways to write k as a sum of one exponent for each term is within the limit.
  bool worth_running(std::uint64_t k) const {
    cnum ways = cnum_from_int(1);
    for (std::uint64_t i = 1; i < base_.size() && cnum_is_finite(ways); ++i) {
      ways = next_binomial(ways, k + i, i);
    }
    return cnum_is_finite(ways) && static_cast<std::uint64_t>(ways.num) <= limits::poly_operation;
  }

  // Chooses the exponents of the terms from `index` on, which add up to `left`.
  void walk(std::size_t index, std::uint64_t left, monomial_id m, const cnum& coef) {
    const poly_term& t = base_[index];
    const bool last = index + 1 == base_.size();
    cnum choices = cnum_from_int(1);  // binomial coefficient of left and e
    for (std::uint64_t e = last ? left : 0; e <= left && !out_.failed(); ++e) {
      if (!last && e > 0) {
        choices = next_binomial(choices, left - e + 1, e);
      }
      const poly power = pow_of_one_term(pdata_, t, e);
      const cnum product = cnum_mul_reduced(cnum_mul_reduced(coef, choices), power.front().coef);
      const std::optional<monomial_id> next = pdata_.multiply(m, power.front().monomial);
      if (!pdata_.charge(1) || !next || !cnum_is_finite(product)) {
        out_.fail();
      } else if (last) {
        out_.add(*next, product);
      } else {
        walk(index + 1, left - e, *next, product);
      }
    }
  }

  poly_data& pdata_;
  const poly& base_;
  collector out_;
};

poly pow_by_steps(poly_data& pdata, const poly& a, poly result, std::uint64_t steps) {
  for (; steps > 0 && !poly_is_nan(result); --steps) {
    result = poly_mul(pdata, result, a);
  }
  return result;
}

}  // namespace

// The power of a sum takes at least as many products as its exponent says; a great exponent is hopeless.
poly poly_pow_int(poly_data& pdata, const poly& a, std::uint64_t k) {
  if (k == 0) {
    return poly_const(cnum_from_int(1));
  }
  if (a.empty() || k == 1 || poly_is_nan(a)) {
    return a;
  }
  if (a.size() == 1) {
    return pow_of_one_term(pdata, a.front(), k);
  }
  if (k > limits::poly_operation) {
    return poly_nan();
  }
  poly square = poly_mul(pdata, a, a);
  if (k == 2 || poly_is_nan(square)) {
    return square;
  }
  const bool all_products_differ = square.size() == a.size() * (a.size() + 1) / 2;
  return all_products_differ ? multinomial_power(pdata, a).run(k) : pow_by_steps(pdata, a, std::move(square), k - 2);
}

bool poly_eq(const poly& a, const poly& b) { return a == b && !poly_is_nan(a); }

bool poly_is_const(const poly& p, cnum* out) {
  if (p.size() > 1 || (p.size() == 1 && p.front().monomial != 0)) {
    return false;
  }
  if (out != nullptr) {
    *out = p.empty() ? cnum_from_int(0) : p.front().coef;
  }
  return true;
}

bool poly_is_one(const poly& p) { return p.size() == 1 && p.front().monomial == 0 && cnum_is_one(p.front().coef); }

// ---- Texts.

namespace {

std::vector<factor> text_order(const poly_data& pdata, monomial_id m) {
  const std::span<const factor> list = pdata.factors(m);
  std::vector<factor> sorted(list.begin(), list.end());
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](const factor& a, const factor& b) { return pdata.kind_of(a.key) < pdata.kind_of(b.key); });
  return sorted;
}

bool factors_before(const poly_data& pdata, const std::vector<factor>& a, const std::vector<factor>& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [&](const factor& x, const factor& y) {
    if (x.key != y.key) {
      return std::pair(pdata.kind_of(x.key), x.key) < std::pair(pdata.kind_of(y.key), y.key);
    }
    return cnum_cmp(x.exp, y.exp) < 0;
  });
}

}  // namespace

std::string poly_to_string(const poly_data& pdata, const poly& p) {
  std::vector<std::pair<std::vector<factor>, cnum>> terms;
  for (const poly_term& t : p) {
    terms.emplace_back(text_order(pdata, t.monomial), t.coef);
  }
  std::sort(terms.begin(), terms.end(),
            [&](const auto& a, const auto& b) { return factors_before(pdata, a.first, b.first); });
  std::string text;
  for (const auto& [factors, coef] : terms) {
    text += text.empty() ? "" : "+";
    text += cnum_to_string(coef);
    for (const factor& f : factors) {
      text += pdata.kind_of(f.key) == F_ATOM ? "*A" : "*P";
      text += std::to_string(f.key);
      if (!cnum_is_one(f.exp)) {
        text += "^(" + cnum_to_string(f.exp) + ")";
      }
    }
  }
  return text.empty() ? "0" : text;
}

}  // namespace vetro

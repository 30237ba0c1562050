// Registry and linear arithmetic of generalized polynomials. Like terms are collected through one slot for each
// monomial number, so that a sum costs what its terms cost, and sorting costs at most the sorting of the result.
#include "number/poly.h"

#include <algorithm>
#include <utility>

#include "number/hash_mix.h"
#include "number/limits.h"

namespace vetro {
namespace {

// Monomials whose last factors are neighbours are neighbours in the table, eight to a cache line, as products by the
// terms of a sum come in that order.
std::uint32_t hash_of(std::span<const packed_factor> factors) {
  std::uint64_t hash = factors.size();
  const auto add = [&hash](std::uint32_t key, std::uint32_t exp) { hash = mix(hash, std::uint64_t{key} << 32U | exp); };
  for (const packed_factor& f : factors.first(factors.size() - 1)) {
    add(static_cast<std::uint32_t>(f.key), static_cast<std::uint32_t>(f.exp));
  }
  const auto key = static_cast<std::uint32_t>(factors.back().key);
  const auto exp = static_cast<std::uint32_t>(factors.back().exp);
  add(key >> 3U, exp >> 4U);
  return static_cast<std::uint32_t>(hash >> 16U) << 3U | ((key + (exp >> 1U)) & 7U);
}

}  // namespace

// ---- The registry.

std::size_t poly_data::words_hash::operator()(const key_words& words) const {
  std::uint64_t hash = words.size();
  for (const std::uint64_t word : words) {
    hash = mix(hash, word);
  }
  return hash;
}

std::size_t poly_data::exponent_hash::operator()(const cnum& exponent) const {
  return mix(mix(0, static_cast<std::uint64_t>(exponent.num)), static_cast<std::uint64_t>(exponent.den));
}

std::int32_t poly_data::intern_key(factor_kind kind, const key_words& words) {
  const auto [entry, fresh] = keys_.try_emplace(words, static_cast<std::int32_t>(kinds_.size()));
  if (fresh) {
    kinds_.push_back(kind);
  }
  return entry->second;
}

std::int32_t poly_data::pack(const cnum& exponent) {
  constexpr std::int64_t most = std::int64_t{1} << 30U;
  if (exponent.den == 1 && exponent.num >= -most && exponent.num < most) {
    return static_cast<std::int32_t>(exponent.num * 2);
  }
  const auto [entry, fresh] = exponent_places_.try_emplace(exponent, static_cast<std::int32_t>(exponents_.size()));
  if (fresh) {
    exponents_.push_back(exponent);
  }
  return entry->second * 2 + 1;
}

cnum poly_data::unpack(std::int32_t exponent) const {
  const packed_factor f{0, exponent};
  return factor_view({&f, 1}, exponents_).front().exp;
}

// False when the exponent overflows.
bool poly_data::add_exponent(packed_factor& sum, std::int32_t exponent) {
  if (std::int32_t both = 0; ((sum.exp | exponent) & 1) == 0 && !__builtin_add_overflow(sum.exp, exponent, &both)) {
    sum.exp = both;
    return true;
  }
  const cnum exact_sum = cnum_add_reduced(unpack(sum.exp), unpack(exponent));
  if (cnum_is_finite(exact_sum)) {
    sum.exp = pack(exact_sum);
  }
  return cnum_is_finite(exact_sum);
}

void poly_data::grow_table() {
  std::vector<table_slot> wider(table_.size() * 2, table_slot{0, 0});
  for (const table_slot& known : table_) {
    if (known.m == 0) {
      continue;
    }
    std::size_t slot = known.hash & (wider.size() - 1);
    while (wider[slot].m != 0) {
      slot = (slot + 1) & (wider.size() - 1);
    }
    wider[slot] = known;
  }
  table_.swap(wider);
}

monomial_id poly_data::intern_monomial(std::span<const factor> list) {
  scratch_.clear();
  for (const factor& f : list) {
    scratch_.push_back({f.key, pack(f.exp)});
  }
  return intern_packed(scratch_);
}

monomial_id poly_data::intern_packed(std::span<const packed_factor> list) {
  if (list.empty()) {
    return 0;
  }
  const std::uint32_t hash = hash_of(list);
  std::size_t slot = hash & (table_.size() - 1);
  for (; table_[slot].m != 0; slot = (slot + 1) & (table_.size() - 1)) {
    if (table_[slot].hash == hash && std::ranges::equal(packed(table_[slot].m), list)) {
      return table_[slot].m;
    }
  }
  charge(4 + list.size());  // an eighth of its bytes, with those of its places in lists
  const auto id = static_cast<monomial_id>(monomials_.size());
  monomial added{static_cast<std::uint32_t>(pool_.size()), static_cast<std::uint32_t>(list.size()), false, false};
  for (const packed_factor& f : list) {
    if (kind_of(f.key) == F_POW) {
      const cnum exp = unpack(f.exp);
      added.root = true;
      added.whole_root = added.whole_root || exp.num < 0 || exp.num >= exp.den;
    }
  }
  monomials_.push_back(added);
  pool_.insert(pool_.end(), list.begin(), list.end());
  table_[slot] = {id, hash};
  if (monomials_.size() * 2 > table_.size()) {
    grow_table();
  }
  return id;
}

std::optional<monomial_id> poly_data::multiply(monomial_id a, monomial_id b) {
  if (a == 0 || b == 0) {
    return a + b;
  }
  const std::span<const packed_factor> left = packed(a);
  const std::span<const packed_factor> right = packed(b);
  scratch_.clear();
  auto l = left.begin();
  auto r = right.begin();
  while (l != left.end() && r != right.end()) {
    if (l->key != r->key) {
      scratch_.push_back(l->key < r->key ? *l++ : *r++);
      continue;
    }
    packed_factor sum = *l++;
    if (!add_exponent(sum, r++->exp)) {
      return std::nullopt;
    }
    if (sum.exp != 0) {
      scratch_.push_back(sum);
    }
  }
  scratch_.insert(scratch_.end(), l, left.end());
  scratch_.insert(scratch_.end(), r, right.end());
  return intern_packed(scratch_);
}

// All at once, so that a product of many names costs its length.
std::optional<monomial_id> poly_data::product(std::span<const monomial_id> list) {
  if (list.size() <= 2) {
    return list.empty() ? 0 : multiply(list.front(), list.size() == 2 ? list.back() : 0);
  }
  std::vector<packed_factor>& all = scratch_;
  all.clear();
  for (const monomial_id m : list) {
    const std::span<const packed_factor> some = packed(m);
    all.insert(all.end(), some.begin(), some.end());
  }
  std::sort(all.begin(), all.end(), [](const packed_factor& a, const packed_factor& b) { return a.key < b.key; });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < all.size();) {
    packed_factor sum = all[i];
    for (++i; i < all.size() && all[i].key == sum.key; ++i) {
      if (!add_exponent(sum, all[i].exp)) {
        return std::nullopt;
      }
    }
    if (sum.exp != 0) {
      all[kept++] = sum;
    }
  }
  return intern_packed({all.data(), kept});
}

std::optional<monomial_id> poly_data::power(monomial_id m, const cnum& exponent) {
  if (cnum_is_zero(exponent)) {
    return 0;
  }
  if (cnum_is_one(exponent)) {
    return m;
  }
  const std::span<const packed_factor> list = packed(m);
  scratch_.assign(list.begin(), list.end());
  for (packed_factor& f : scratch_) {
    const cnum exp = cnum_mul_reduced(unpack(f.exp), exponent);
    if (!cnum_is_finite(exp)) {
      return std::nullopt;
    }
    f.exp = pack(exp);
  }
  return intern_packed(scratch_);
}

// ---- Sums.

void poly_sum::add(monomial_id m, const exact& coef) {
  if (m >= slots_.size()) {
    slots_.resize(std::max<std::size_t>(m + 1, slots_.size() * 2), 0);
  }
  std::uint32_t& slot = slots_[m];
  if (slot == 0) {
    terms_.push_back({m, coef});
    slot = static_cast<std::uint32_t>(terms_.size());
  } else {
    terms_[slot - 1].coef += coef;
  }
}

void poly_sum::add(const poly& p) {
  for (const poly_term& t : p) {
    add(t.monomial, t.coef);
  }
}

void poly_sum::add(const poly& p, monomial_id m, const exact& coef) {
  for (const poly_term& t : p) {
    const std::optional<monomial_id> product = pdata_.multiply(t.monomial, m);
    if (!product) {
      fail();
      return;
    }
    add(*product, t.coef * coef);
  }
}

void poly_sum::clear_slots() {
  for (const poly_term& t : terms_) {
    slots_[t.monomial] = 0;
  }
}

poly poly_sum::take() {
  clear_slots();
  poly sum = std::exchange(terms_, {});
  std::erase_if(sum, [](const poly_term& t) { return t.coef.is_zero(); });
  if (failed_ || pdata_.exhausted() ||
      std::any_of(sum.begin(), sum.end(), [](const poly_term& t) { return !t.coef.is_known(); })) {
    return poly_nan();
  }
  poly_sort(sum);
  return sum;
}

// ---- Polynomials.

// What was added is nearly in order as a rule: it is the order in which the monomials were met first.
void poly_sort(poly& p) {
  const auto before = [](const poly_term& a, const poly_term& b) { return a.monomial < b.monomial; };
  const auto sorted = std::is_sorted_until(p.begin(), p.end(), before);
  std::sort(sorted, p.end(), before);
  std::inplace_merge(p.begin(), sorted, p.end(), before);
}

poly poly_nan() { return {{0, exact::beyond()}}; }

bool poly_is_nan(const poly& p) { return p.size() == 1 && !p.front().coef.is_known(); }

poly poly_monomial(monomial_id m, const exact& coef) {
  if (!coef.is_known()) {
    return poly_nan();
  }
  return coef.is_zero() ? poly{} : poly{{m, coef}};
}

poly poly_const(const exact& c) { return poly_monomial(0, c); }

poly poly_atom(poly_data& pdata, std::int32_t key, const cnum& exp) {
  if (!cnum_is_finite(exp)) {
    return poly_nan();
  }
  if (cnum_is_zero(exp)) {
    return poly_const(1);
  }
  const factor f{key, exp};
  return poly_monomial(pdata.intern_monomial({&f, 1}), 1);
}

poly poly_add(poly_data& pdata, const poly& a, const poly& b) {
  poly_sum sum(pdata);
  sum.add(a);
  sum.add(b);
  return sum.take();
}

poly poly_sub(poly_data& pdata, const poly& a, const poly& b) {
  poly_sum sum(pdata);
  sum.add(a);
  sum.add(b, 0, -1);
  return sum.take();
}

poly poly_neg(const poly& a) {
  poly result = a;
  for (poly_term& t : result) {
    t.coef = -t.coef;
  }
  return result;
}

poly poly_scale(poly_data& pdata, const poly& a, monomial_id m, const exact& coef) {
  if (a.empty() || coef.is_zero()) {
    return {};
  }
  if (poly_is_nan(a) || !coef.is_known()) {
    return poly_nan();
  }
  poly result;
  result.reserve(a.size());
  for (const poly_term& t : a) {
    const std::optional<monomial_id> product = pdata.multiply(t.monomial, m);
    if (!product) {
      return poly_nan();
    }
    result.push_back({*product, t.coef * coef});
    if (!result.back().coef.is_known()) {
      return poly_nan();
    }
  }
  poly_sort(result);
  return result;
}

poly poly_mul(poly_data& pdata, const poly& a, const poly& b) {
  const poly_power both[] = {{&a, 1}, {&b, 1}};
  return poly_product(pdata, both);
}

poly poly_pow_int(poly_data& pdata, const poly& a, std::uint64_t k) {
  const poly_power power{&a, k};
  return poly_product(pdata, {&power, 1});
}

bool poly_eq(const poly& a, const poly& b) { return a == b; }

bool poly_is_const(const poly& p, exact* out) {
  if (p.size() > 1 || (p.size() == 1 && p.front().monomial != 0)) {
    return false;
  }
  if (out != nullptr) {
    *out = p.empty() ? exact(0) : p.front().coef;
  }
  return true;
}

bool poly_is_one(const poly& p) { return p.size() == 1 && p.front().monomial == 0 && p.front().coef.is_one(); }

// ---- Texts.

namespace {

std::vector<factor> text_order(const poly_data& pdata, monomial_id m) {
  const factor_view list = pdata.factors(m);
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
  std::vector<std::pair<std::vector<factor>, exact>> terms;
  for (const poly_term& t : p) {
    terms.emplace_back(text_order(pdata, t.monomial), t.coef);
  }
  std::sort(terms.begin(), terms.end(),
            [&](const auto& a, const auto& b) { return factors_before(pdata, a.first, b.first); });
  std::string text;
  for (const auto& [factors, coef] : terms) {
    text += text.empty() ? "" : "+";
    text += coef.is_known() ? to_string(coef) : "nan";
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

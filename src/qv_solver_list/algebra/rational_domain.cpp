// Keys for opaque parts, and powers. The laws of powers that hold wherever both sides are defined:
//
//   b^(m + n) = b^m b^n    b^(k n) = (b^n)^k for an integer k
//
// (b^m)^n = b^(m n) is not among them: ((-1)^2)^(1/2) is 1. A power with a symbolic exponent is therefore a product of
// keys, one for each addend of the exponent with its numeric coefficient taken out, and a base that is itself a power
// is a new base.
#include "qv_solver_list/algebra/rational_domain.h"

#include <algorithm>

#include "number/limits.h"

namespace vetro {
namespace {

// First words of keys; 1 is a root.
enum key_tag : std::uint64_t { tag_leaf = 2, tag_opaque, tag_symbolic_power, tag_compound };

std::uint64_t address_word(term_ptr t) { return reinterpret_cast<std::uintptr_t>(t); }

void hash_poly(std::size_t& hash, const poly& p) {
  for (const poly_term& t : p) {
    for (const std::uint64_t word :
         {std::uint64_t{t.monomial}, static_cast<std::uint64_t>(t.coef.num), static_cast<std::uint64_t>(t.coef.den)}) {
      hash = (hash ^ word) * 0x9e3779b97f4a7c15ULL;
      hash ^= hash >> 31U;
    }
  }
}

}  // namespace

std::size_t rational_domain::rat_hash::operator()(const rat& r) const {
  std::size_t hash = r.num.size();
  hash_poly(hash, r.num);
  hash_poly(hash, r.den);
  return hash;
}

void rational_domain::remember(term_ptr t, const value& v) {
  registry_.pdata.charge(1);
  known_.emplace(t, v);
}

// ---- Numbers of forms.

std::optional<std::uint32_t> rational_domain::number_of_rat(const rat& r) {
  if (rat_is_nan(r)) {
    return std::nullopt;
  }
  const auto [entry, fresh] = numbers_.try_emplace(r, last_number_ + 1);
  last_number_ += fresh ? 1 : 0;
  return entry->second;
}

// Forms that differ only by common factors that no normal form sees are found by their fingerprints.
std::optional<std::uint32_t> rational_domain::form_number(const value& v) {
  if (v->number != 0) {
    return v->number;
  }
  if (rat_is_nan(v->r)) {
    return std::nullopt;
  }
  const auto known = numbers_.find(v->r);
  if (known != numbers_.end()) {
    v->number = known->second;
    representatives_.emplace(v->number, v);
    return v->number;
  }
  if (v->print.has_value) {
    const auto [first, last] = by_fingerprint_.equal_range(v->print.value);
    const auto same = std::find_if(first, last, [&](const auto& entry) { return equal(v, entry.second); });
    if (same != last) {
      v->number = same->second->number;
      numbers_.emplace(v->r, v->number);
      return v->number;
    }
    by_fingerprint_.emplace(v->print.value, v);
  }
  v->number = *number_of_rat(v->r);
  representatives_.emplace(v->number, v);
  return v->number;
}

// ---- Opaque parts.

rational_domain::value rational_domain::atom(const key_words& words, const fingerprint& print) {
  poly_data& pdata = registry_.pdata;
  const std::int32_t key = pdata.intern_key(F_ATOM, words);
  return make({poly_atom(pdata, key, cnum_from_int(1))}, print);
}

rational_domain::value rational_domain::leaf(term_ptr t) {
  return atom({tag_leaf, address_word(t)}, fingerprint_leaf(t));
}

rational_domain::value rational_domain::opaque(term_ptr t) {
  return atom({tag_opaque, address_word(t)}, fingerprint_opaque(t));
}

rational_domain::value rational_domain::compound(compound_kind kind, std::span<const value> parts) {
  key_words words{tag_compound, static_cast<std::uint64_t>(kind)};
  std::vector<fingerprint> prints;
  for (const value& part : parts) {
    const auto number = form_number(part);
    if (!number) {
      return failed();
    }
    words.push_back(*number);
    prints.push_back(part->print);
  }
  return atom(words, fingerprint_compound(kind, prints));
}

// ---- Arithmetic.

rational_domain::value rational_domain::sum(std::span<const signed_value<value>> addends) {
  std::vector<signed_rat> rats;
  std::vector<signed_value<fingerprint>> prints;
  for (const auto& [v, negative] : addends) {
    rats.push_back({&v->r, negative});
    prints.push_back({v->print, negative});
  }
  return make(rat_sum(registry_, rats), fingerprint_sum(prints));
}

namespace {

constexpr std::size_t most_postponed = 64;

// Takes the coefficients out of the factors that are one term, and multiplies them, each as soon as it fits: of
// 2^40 * (2^40 / 2^40) the first two are not multiplied. Nothing, and the factors unchanged, when no order will do.
std::optional<cnum> take_coefficients(std::vector<rat>& factors) {
  const auto is_term = [](const rat& r) { return rat_is_polynomial(r) && r.num.size() == 1; };
  std::vector<cnum> open;
  for (const rat& r : factors) {
    if (is_term(r) && !cnum_is_one(r.num.front().coef)) {
      open.push_back(r.num.front().coef);
    }
  }
  cnum product = cnum_from_int(1);
  for (std::size_t before = open.size() + 1; !open.empty() && open.size() < before;) {
    before = std::min(open.size(), most_postponed);
    std::erase_if(open, [&](const cnum& coef) {
      const cnum next = cnum_mul_reduced(product, coef);
      product = cnum_is_finite(next) ? next : product;
      return cnum_is_finite(next);
    });
  }
  if (!open.empty()) {
    return std::nullopt;
  }
  for (rat& r : factors) {
    if (is_term(r)) {
      r.num.front().coef = cnum_from_int(1);
    }
  }
  return product;
}

}  // namespace

// Neighbours are multiplied in rounds, so that a long product of names costs little more than its length.
rat rational_domain::multiply_all(std::vector<rat> factors) {
  if (factors.empty()) {
    return rat_const(cnum_from_int(1));
  }
  const std::optional<cnum> coef = factors.size() > 2 ? take_coefficients(factors) : std::nullopt;
  for (std::size_t count = factors.size(); count > 1; count = (count + 1) / 2) {
    for (std::size_t i = 0; i < count / 2; ++i) {
      factors[i] = rat_mul(registry_, factors[2 * i], factors[2 * i + 1]);
    }
    if (count % 2 != 0) {
      factors[count / 2] = std::move(factors[count - 1]);
    }
  }
  rat& product = factors.front();
  if (coef && !cnum_is_one(*coef)) {
    product.num = poly_scale(registry_.pdata, product.num, 0, *coef);
  }
  return std::move(product);
}

rational_domain::value rational_domain::product(std::span<const value> factors) {
  std::vector<rat> rats;
  std::vector<fingerprint> prints;
  for (const value& v : factors) {
    rats.push_back(v->r);
    prints.push_back(v->print);
  }
  return make(multiply_all(std::move(rats)), fingerprint_product(prints));
}

rational_domain::value rational_domain::quotient(const value& numerator, const value& denominator) {
  return make(rat_div(registry_, numerator->r, denominator->r),
              fingerprint_quotient(numerator->print, denominator->print));
}

rational_domain::value rational_domain::power(const value& base, const value& exponent,
                                              std::span<const signed_value<value>> addends) {
  const fingerprint print = fingerprint_power(base->print, exponent->print);
  if (rat_is_nan(exponent->r)) {
    return failed();
  }
  cnum constant;
  if (rat_is_const(exponent->r, &constant)) {
    return make(number_power(base, constant), print);
  }
  return make(symbolic_power(base, addends), print);
}

// base^exponent for a number: the whole part is multiplied out, the rest is a root. A plain name needs no root key: its
// exponent tells all. Of equal bases, the one that was met first stands for all.
rat rational_domain::number_power(const value& base, const cnum& exponent) {
  poly_data& pdata = registry_.pdata;
  std::int64_t k = 0;
  if (cnum_is_int(exponent, &k)) {
    return rat_pow_int(registry_, base->r, k);
  }
  const auto number = form_number(base);
  if (!number) {
    return rat_nan();
  }
  if (!cnum_is_finite(exponent)) {
    return rat_nan();
  }
  const rat& first = representatives_.at(*number)->r;
  const auto name = plain_name(first);
  const std::int32_t key = name ? *name : registry_.root_key(*number, first);
  return rat_normalize(registry_, {poly_atom(pdata, key, exponent)});
}

// The key that is all of r, if it stands for an opaque value.
std::optional<std::int32_t> rational_domain::plain_name(const rat& r) const {
  if (!rat_is_polynomial(r) || r.num.size() != 1 || !cnum_is_one(r.num.front().coef)) {
    return std::nullopt;
  }
  const std::span<const factor> factors = registry_.pdata.factors(r.num.front().monomial);
  const bool plain =
      factors.size() == 1 && cnum_is_one(factors.front().exp) && registry_.pdata.kind_of(factors.front().key) == F_ATOM;
  return plain ? std::optional(factors.front().key) : std::nullopt;
}

// The product over the addends of the exponent. An addend N/D counts with each term of N alone.
rat rational_domain::symbolic_power(const value& base, std::span<const signed_value<value>> addends) {
  const auto number = form_number(base);
  if (!number) {
    return rat_nan();
  }
  std::vector<rat> powers;
  for (const auto& [addend, negative] : addends) {
    for (const poly_term& t : addend->r.num) {
      const cnum coef = negative ? cnum_neg(t.coef) : t.coef;
      powers.push_back(
          power_of_part(base, *number, {poly_monomial(t.monomial, cnum_from_int(1)), addend->r.den}, coef));
    }
  }
  return multiply_all(std::move(powers));
}

// base^(coef * part).
rat rational_domain::power_of_part(const value& base, std::uint32_t base_number, const rat& part, const cnum& coef) {
  const rat normal = rat_normalize(registry_, part);
  cnum constant;
  if (rat_is_const(normal, &constant)) {
    return number_power(base, cnum_mul_reduced(coef, constant));
  }
  const auto part_number = number_of_rat(normal);
  if (!part_number) {
    return rat_nan();
  }
  poly_data& pdata = registry_.pdata;
  const std::int32_t key = pdata.intern_key(F_SYMBOLIC, {tag_symbolic_power, base_number, *part_number});
  return {poly_atom(pdata, key, coef)};
}

// ---- One comparison.

rational_forms::rational_forms(std::uint64_t budget) : domain_(budget), reader_(domain_) {}

rational_forms::~rational_forms() = default;

std::optional<std::uint32_t> rational_forms::key(term_ptr t) {
  return t == nullptr ? std::nullopt : domain_.form_number(reader_.read(t));
}

std::string rational_forms::text(term_ptr t) {
  return t == nullptr ? "" : rat_to_string(domain_.registry(), reader_.read(t)->r);
}

bool rational_forms::equal(term_ptr a, term_ptr b) {
  const rational_domain::value left = reader_.read(a);
  const rational_domain::value right = reader_.read(b);
  return domain_.equal(left, right);
}

bool rational_forms::equal_differences(term_ptr a1, term_ptr a2, term_ptr b1, term_ptr b2) {
  const signed_value<rational_domain::value> left[] = {{reader_.read(a1), false}, {reader_.read(a2), true}};
  const signed_value<rational_domain::value> right[] = {{reader_.read(b1), false}, {reader_.read(b2), true}};
  const rational_domain::value difference = domain_.sum(left);
  return domain_.equal(difference, domain_.sum(right));
}

}  // namespace vetro

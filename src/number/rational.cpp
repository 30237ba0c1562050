// The normal form of quotients. What makes it terminate: a root's base was read before the root got its key, so that
// putting the base in its place brings only keys with smaller numbers.
#include "number/rational.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace vetro {
namespace {

constexpr std::uint64_t root_tag = 1;  // first word of the keys of roots; other keys begin with other words

// Greatest whole exponent of a base that is multiplied out. Far above what the budget lets a sum of terms reach.
constexpr std::int64_t most_whole_power = std::int64_t{1} << 40U;

poly one() { return poly_const(cnum_from_int(1)); }

// ---- Roots: base^(7/2) is base^3 * base^(1/2).

std::optional<std::int32_t> greatest_whole_root(const poly_data& pdata, const poly& p) {
  std::optional<std::int32_t> greatest;
  for (const poly_term& t : p) {
    if (!pdata.has_whole_root(t.monomial)) {
      continue;
    }
    for (const factor& f : pdata.factors(t.monomial)) {
      if (pdata.kind_of(f.key) == F_POW && (f.exp.num < 0 || f.exp.num >= f.exp.den)) {
        greatest = std::max(greatest.value_or(0), f.key);
      }
    }
  }
  return greatest;
}

cnum exponent_of(const poly_data& pdata, monomial_id m, std::int32_t key) {
  for (const factor& f : pdata.factors(m)) {
    if (f.key == key) {
      return f.exp;
    }
  }
  return cnum_from_int(0);
}

// The terms of p, sorted by the whole part of the key's exponent, which is taken out of them.
using parts_by_power = std::map<std::int64_t, poly>;

std::optional<parts_by_power> split_by_whole_power(poly_data& pdata, const poly& p, std::int32_t key) {
  parts_by_power parts;
  for (const poly_term& t : p) {
    const std::int64_t whole = cnum_floor(exponent_of(pdata, t.monomial, key));
    if (whole < -most_whole_power || whole > most_whole_power) {
      return std::nullopt;
    }
    monomial_id rest = t.monomial;
    if (whole != 0) {
      const factor taken{key, cnum_from_int(-whole)};
      const monomial_id divisor = pdata.intern_monomial({&taken, 1});
      const std::optional<monomial_id> product = pdata.multiply(rest, divisor);
      if (!product) {
        return std::nullopt;
      }
      rest = *product;
    }
    parts[whole].push_back({rest, t.coef});
  }
  for (auto& [whole, part] : parts) {
    std::sort(part.begin(), part.end(), [](const poly_term& a, const poly_term& b) { return a.monomial < b.monomial; });
  }
  return parts;
}

// p with base^k in place of the whole powers of the key, as a quotient: the least power in front, the others over the
// greatest difference.
rat expand_whole_powers(rational_registry& registry, const poly& p, std::int32_t key) {
  poly_data& pdata = registry.pdata;
  const auto parts = split_by_whole_power(pdata, p, key);
  if (!parts) {
    return rat_nan();
  }
  const rat base = registry.root_base(key);
  const std::int64_t least = parts->begin()->first;
  const auto range = static_cast<std::uint64_t>(parts->rbegin()->first - least);
  rat result{{}, poly_pow_int(pdata, base.den, range)};
  for (const auto& [whole, part] : *parts) {
    const auto above = static_cast<std::uint64_t>(whole - least);
    const poly power =
        poly_mul(pdata, poly_pow_int(pdata, base.num, above), poly_pow_int(pdata, base.den, range - above));
    result.num = poly_add(pdata, result.num, poly_mul(pdata, part, power));
  }
  const auto front = static_cast<std::uint64_t>(least < 0 ? -least : least);
  const poly& up = least < 0 ? base.den : base.num;
  const poly& down = least < 0 ? base.num : base.den;
  result.num = poly_mul(pdata, result.num, poly_pow_int(pdata, up, front));
  result.den = poly_mul(pdata, result.den, poly_pow_int(pdata, down, front));
  return result;
}

// One step towards roots between 0 and 1; false when there is none to make.
bool settle_roots(rational_registry& registry, rat& r) {
  poly_data& pdata = registry.pdata;
  if (const auto key = greatest_whole_root(pdata, r.num)) {
    const rat num = expand_whole_powers(registry, r.num, *key);
    r = {num.num, poly_mul(pdata, num.den, r.den)};
    return true;
  }
  if (const auto key = greatest_whole_root(pdata, r.den)) {
    const rat den = expand_whole_powers(registry, r.den, *key);
    r = {poly_mul(pdata, r.num, den.den), den.num};
    return true;
  }
  return false;
}

// ---- Denominators.

// The factors that all terms of p have, each with its least exponent.
std::vector<factor> common_factors(const poly_data& pdata, const poly& p) {
  const std::span<const factor> first = pdata.factors(p.front().monomial);
  std::vector<factor> common(first.begin(), first.end());
  for (const poly_term& t : p) {
    std::vector<factor> both;
    const std::span<const factor> other = pdata.factors(t.monomial);
    auto f = other.begin();
    for (const factor& known : common) {
      f = std::find_if(f, other.end(), [&](const factor& candidate) { return candidate.key >= known.key; });
      if (f != other.end() && f->key == known.key) {
        both.push_back(cnum_cmp(f->exp, known.exp) < 0 ? *f : known);
      }
    }
    common.swap(both);
    if (common.empty()) {
      break;
    }
  }
  return common;
}

// p divided by coefficient and monomial; nothing when that does not fit.
std::optional<poly> divided(poly_data& pdata, const poly& p, monomial_id divisor, const cnum& coef) {
  const std::optional<monomial_id> inverse = pdata.power(divisor, cnum_from_int(-1));
  if (!inverse) {
    return std::nullopt;
  }
  poly result;
  result.reserve(p.size());
  for (const poly_term& t : p) {
    const std::optional<monomial_id> m = pdata.multiply(t.monomial, *inverse);
    const cnum c = cnum_div_reduced(t.coef, coef);
    if (!m || !cnum_is_finite(c)) {
      return std::nullopt;
    }
    result.push_back({*m, c});
  }
  std::sort(result.begin(), result.end(),
            [](const poly_term& a, const poly_term& b) { return a.monomial < b.monomial; });
  return result;
}

bool divide_both(poly_data& pdata, rat& r, monomial_id divisor, const cnum& coef) {
  std::optional<poly> num = divided(pdata, r.num, divisor, coef);
  std::optional<poly> den = num ? divided(pdata, r.den, divisor, coef) : std::nullopt;
  if (!den) {
    return false;
  }
  r = {std::move(*num), std::move(*den)};
  return true;
}

// Takes the common factors and the first coefficient out of the denominator. What does not fit 64 bits stays.
void reduce_denominator(poly_data& pdata, rat& r) {
  if (poly_is_one(r.den)) {
    return;
  }
  const std::vector<factor> common = common_factors(pdata, r.den);
  const monomial_id divisor = pdata.intern_monomial(common);
  if (divisor != 0) {
    divide_both(pdata, r, divisor, cnum_from_int(1));
  }
  const cnum first = r.den.front().coef;
  if (!cnum_is_one(first) && !divide_both(pdata, r, 0, first) && cnum_cmp(first, cnum_from_int(0)) < 0) {
    divide_both(pdata, r, 0, cnum_from_int(-1));
  }
}

// True, with the factor, when both are multiples of each other by a number.
bool proportional(const poly& a, const poly& b, cnum& ratio) {
  if (a.size() != b.size()) {
    return false;
  }
  ratio = cnum_div_reduced(a.front().coef, b.front().coef);
  return std::equal(a.begin(), a.end(), b.begin(), [&](const poly_term& x, const poly_term& y) {
    const cnum product = cnum_mul_reduced(y.coef, ratio);
    return x.monomial == y.monomial && cnum_is_finite(product) && x.coef == product;
  });
}

}  // namespace

std::int32_t rational_registry::root_key(std::uint32_t base_number, const rat& base) {
  const std::int32_t key = pdata.intern_key(F_POW, {root_tag, base_number});
  root_bases_.try_emplace(key, base);
  return key;
}

rat rat_nan() { return {poly_nan(), one()}; }

bool rat_is_nan(const rat& r) { return poly_is_nan(r.num) || poly_is_nan(r.den); }

rat rat_const(const cnum& c) { return {poly_const(c), one()}; }

bool rat_is_polynomial(const rat& r) { return poly_is_one(r.den); }

bool rat_is_const(const rat& r, cnum* out) { return rat_is_polynomial(r) && poly_is_const(r.num, out); }

rat rat_normalize(rational_registry& registry, rat r) {
  poly_data& pdata = registry.pdata;
  for (;;) {
    if (r.num.empty()) {
      return rat_const(cnum_from_int(0));
    }
    if (rat_is_nan(r) || pdata.exhausted()) {
      return rat_nan();
    }
    if (r.den.empty()) {
      return r;
    }
    if (settle_roots(registry, r)) {
      continue;
    }
    cnum ratio;
    if (r.den.size() > 1 && proportional(r.num, r.den, ratio)) {
      return rat_const(ratio);
    }
    reduce_denominator(pdata, r);
    if (!greatest_whole_root(pdata, r.num) && !greatest_whole_root(pdata, r.den)) {
      return r;
    }
  }
}

// Addends over one denominator are added before denominators are multiplied.
rat rat_sum(rational_registry& registry, std::span<const signed_rat> addends) {
  poly_data& pdata = registry.pdata;
  std::vector<std::pair<const poly*, std::vector<signed_poly>>> groups;
  for (const auto& [r, negative] : addends) {
    const auto group =
        std::find_if(groups.begin(), groups.end(), [&, den = &r->den](const auto& g) { return *g.first == *den; });
    if (group != groups.end()) {
      group->second.push_back({&r->num, negative});
    } else {
      groups.push_back({&r->den, {{&r->num, negative}}});
    }
  }
  rat sum = rat_const(cnum_from_int(0));
  for (const auto& [den, numerators] : groups) {
    const poly num = poly_sum(pdata, numerators);
    if (num.empty()) {
      continue;
    }
    if (sum.num.empty() && poly_is_one(sum.den)) {
      sum = {num, *den};
      continue;
    }
    const poly left = poly_mul(pdata, sum.num, *den);
    const poly right = poly_mul(pdata, num, sum.den);
    sum = {poly_add(pdata, left, right), poly_mul(pdata, sum.den, *den)};
  }
  return rat_normalize(registry, std::move(sum));
}

rat rat_mul(rational_registry& registry, const rat& a, const rat& b) {
  if (rat_is_nan(a) || rat_is_nan(b)) {
    return a.num.empty() || b.num.empty() ? rat_const(cnum_from_int(0)) : rat_nan();
  }
  poly_data& pdata = registry.pdata;
  const bool left_cancels = a.num == b.den && !a.num.empty();
  const bool right_cancels = b.num == a.den && !b.num.empty();
  const poly unit = one();
  const poly num = poly_mul(pdata, left_cancels ? unit : a.num, right_cancels ? unit : b.num);
  const poly den = poly_mul(pdata, right_cancels ? unit : a.den, left_cancels ? unit : b.den);
  return rat_normalize(registry, {num, den});
}

rat rat_div(rational_registry& registry, const rat& a, const rat& b) {
  return a.num.empty() ? rat_const(cnum_from_int(0)) : rat_mul(registry, a, {b.den, b.num});
}

rat rat_pow_int(rational_registry& registry, const rat& a, std::int64_t k) {
  if (k == 0) {
    return rat_const(cnum_from_int(1));
  }
  const std::uint64_t magnitude = k < 0 ? ~static_cast<std::uint64_t>(k) + 1 : static_cast<std::uint64_t>(k);
  poly num = poly_pow_int(registry.pdata, a.num, magnitude);
  poly den = poly_pow_int(registry.pdata, a.den, magnitude);
  if (k < 0) {
    num.swap(den);
  }
  return rat_normalize(registry, {std::move(num), std::move(den)});
}

bool rat_eq(rational_registry& registry, const rat& a, const rat& b) {
  if (rat_is_nan(a) || rat_is_nan(b)) {
    return false;
  }
  if (a.den == b.den && !a.den.empty()) {
    return a.num == b.num;
  }
  poly_data& pdata = registry.pdata;
  const poly left = poly_mul(pdata, a.num, b.den);
  const poly right = poly_mul(pdata, b.num, a.den);
  return rat_normalize(registry, {poly_sub(pdata, left, right), one()}).num.empty();
}

std::string rat_to_string(const rational_registry& registry, const rat& r) {
  const std::string num = poly_to_string(registry.pdata, r.num);
  const std::string den = poly_to_string(registry.pdata, r.den);
  return den == "1" ? num : "(" + num + ")/(" + den + ")";
}

}  // namespace vetro

// Arithmetic of products of powers. What makes it terminate: a root's base was read before the root got its key, so
// that putting the base in its place brings only keys with smaller numbers.
#include "number/rational.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

#include "number/hash_mix.h"

namespace vetro {
namespace {

constexpr std::uint64_t root_tag = 1;  // first word of the keys of roots; other keys begin with other words

// Greatest whole exponent of a base that is put in place of its root. Far above what the budget lets a sum reach.
constexpr std::int64_t most_whole_power = std::int64_t{1} << 40U;

// ---- Roots: base^(7/2) is base^3 * base^(1/2).

bool is_whole_root(const poly_data& pdata, const factor& f) {
  return pdata.kind_of(f.key) == F_POW && (f.exp.num < 0 || f.exp.num >= f.exp.den);
}

std::int32_t greatest_whole_root(const poly_data& pdata, monomial_id m) {
  std::int32_t greatest = 0;
  for (const factor& f : pdata.factors(m)) {
    greatest = is_whole_root(pdata, f) ? std::max(greatest, f.key) : greatest;
  }
  return greatest;
}

// The whole part of the key's exponent in m, taken out of m.
std::optional<std::int64_t> take_whole_power(poly_data& pdata, monomial_id& m, std::int32_t key) {
  std::int64_t whole = 0;
  for (const factor& f : pdata.factors(m)) {
    whole = f.key == key ? cnum_floor(f.exp) : whole;
  }
  if (whole < -most_whole_power || whole > most_whole_power) {
    return std::nullopt;
  }
  if (whole != 0) {
    const factor taken{key, cnum_from_int(-whole)};
    const monomial_id divisor = pdata.intern_monomial({&taken, 1});
    const std::optional<monomial_id> rest = pdata.multiply(m, divisor);
    if (!rest) {
      return std::nullopt;
    }
    m = *rest;
  }
  return whole;
}

// r with bases in place of the whole powers of roots in its monomial.
rat settled(rational_registry& registry, rat r) {
  poly_data& pdata = registry.pdata;
  while (pdata.has_whole_root(r.monomial) && !rat_is_nan(r)) {
    const std::int32_t key = greatest_whole_root(pdata, r.monomial);
    const auto whole = take_whole_power(pdata, r.monomial, key);
    if (!whole) {
      return rat_nan();
    }
    const rat base = rat_pow_int(registry, registry.root_base(key), *whole);
    r = rat_mul(registry, r, base);
  }
  return r;
}

// p as the sum of its parts with equal whole powers of the key, each times that power of the base.
rat settled_sum(rational_registry& registry, const poly& p, std::int32_t key) {
  std::map<std::int64_t, poly> parts;
  for (poly_term t : p) {
    const auto whole = take_whole_power(registry.pdata, t.monomial, key);
    if (!whole) {
      return rat_nan();
    }
    parts[*whole].push_back(std::move(t));
  }
  std::vector<rat> addends;
  for (auto& [whole, part] : parts) {
    std::sort(part.begin(), part.end(), [](const poly_term& a, const poly_term& b) { return a.monomial < b.monomial; });
    const rat base = rat_pow_int(registry, registry.root_base(key), whole);
    addends.push_back(rat_mul(registry, rat_from_poly(registry, std::move(part)), base));
  }
  std::vector<signed_rat> list;
  for (const rat& addend : addends) {
    list.push_back({&addend, false});
  }
  return rat_sum(registry, list);
}

// ---- The normal form of sums.

// The factors that all terms share: the least exponent of each key, which is 0 where a term lacks it.
std::vector<factor> common_factors(const poly_data& pdata, const poly& p) {
  const auto first = pdata.factors(p.front().monomial);
  std::vector<factor> common(first.begin(), first.end());
  std::vector<factor> both;
  for (std::size_t i = 1; i < p.size(); ++i) {
    const factor_view other = pdata.factors(p[i].monomial);
    both.clear();
    auto f = other.begin();
    const auto keep_negative = [&both](const factor& alone) {
      if (alone.exp.num < 0) {
        both.push_back(alone);
      }
    };
    for (const factor& known : common) {
      for (; f != other.end() && (*f).key < known.key; ++f) {
        keep_negative(*f);
      }
      if (f != other.end() && (*f).key == known.key) {
        both.push_back(cnum_cmp((*f).exp, known.exp) < 0 ? *f : known);
        ++f;
      } else {
        keep_negative(known);
      }
    }
    std::for_each(f, other.end(), keep_negative);
    common.swap(both);
  }
  return common;
}

// The number that leaves whole coefficients without common divisor, the first positive.
exact common_number(const poly& p) {
  exact num = 0;
  exact den = 1;
  for (const poly_term& t : p) {
    if (t.coef.is_integer() && den.is_one()) {
      const auto a = num.to_int64();
      const auto b = t.coef.to_int64();
      const bool small = a && b && *b != std::numeric_limits<std::int64_t>::min();
      num = small ? exact(std::gcd(*a, *b)) : gcd(num, t.coef);
    } else {
      // Of a/b and c/d: gcd(a d, c b) / (b d), reduced.
      const exact divisor = gcd(num * t.coef.denominator(), t.coef.numerator() * den) / (den * t.coef.denominator());
      num = divisor.numerator();
      den = divisor.denominator();
    }
  }
  const exact common = num / den;
  return p.front().coef.sign() < 0 ? -common : common;
}

std::uint64_t hash_of(const poly& p) {
  std::uint64_t hash = p.size();
  for (const poly_term& t : p) {
    hash = mix(mix(hash, t.monomial), t.coef.hash());
  }
  return hash;
}

// ---- Powers of sums.

using sum_powers = std::vector<sum_power>;

// Sorted by sum, each once, without zeros; false when an exponent overflows.
bool combine(sum_powers& list) {
  std::sort(list.begin(), list.end(), [](const sum_power& a, const sum_power& b) { return a.sum < b.sum; });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < list.size();) {
    sum_power combined = list[i];
    for (++i; i < list.size() && list[i].sum == combined.sum; ++i) {
      if (__builtin_add_overflow(combined.exp, list[i].exp, &combined.exp)) {
        return false;
      }
    }
    if (combined.exp != 0) {
      list[kept++] = combined;
    }
  }
  list.resize(kept);
  return true;
}

// Addends with the same powers of sums: q times these.
struct addend_group {
  const sum_powers* powers;
  poly q;
};

struct powers_hash {
  std::size_t operator()(const sum_powers* list) const {
    std::uint64_t hash = list->size();
    for (const sum_power& power : *list) {
      hash = mix(mix(hash, power.sum), static_cast<std::uint64_t>(power.exp));
    }
    return hash;
  }
};
struct powers_equal {
  bool operator()(const sum_powers* a, const sum_powers* b) const { return *a == *b; }
};

// The groups that do not vanish, in the order of their first addends.
std::vector<addend_group> grouped(poly_data& pdata, std::span<const signed_rat> addends) {
  std::unordered_map<const sum_powers*, std::size_t, powers_hash, powers_equal> places;
  std::vector<std::vector<const signed_rat*>> members;
  for (const signed_rat& addend : addends) {
    const auto [place, added] = places.try_emplace(&addend.r->sums, members.size());
    if (added) {
      members.emplace_back();
    }
    members[place->second].push_back(&addend);
  }
  std::vector<addend_group> groups;
  for (const auto& list : members) {
    poly_sum sum(pdata);
    for (const signed_rat* addend : list) {
      sum.add(addend->r->monomial, addend->negative ? -addend->r->coef : addend->r->coef);
    }
    poly q = sum.take();
    if (!q.empty()) {
      groups.push_back({&list.front()->r->sums, std::move(q)});
    }
  }
  return groups;
}

// What all groups share: the least exponent of each sum, which is 0 where a group lacks it. Sums with roots are
// multiplied out where they can: with r^2 = x^2, (r + x)(r - x) is zero.
sum_powers shared_powers(const rational_registry& registry, const std::vector<addend_group>& groups) {
  struct seen {
    std::int64_t least;
    std::size_t count;
  };
  std::map<std::uint32_t, seen> all;
  for (const addend_group& group : groups) {
    for (const sum_power& power : *group.powers) {
      const auto [entry, added] = all.try_emplace(power.sum, seen{power.exp, 0});
      entry->second.least = std::min(entry->second.least, power.exp);
      ++entry->second.count;
    }
  }
  sum_powers shared;
  for (const auto& [sum, found] : all) {
    const std::int64_t least = found.count < groups.size() ? std::min<std::int64_t>(found.least, 0) : found.least;
    if (least < 0 || (least > 0 && !registry.sum_has_roots(sum))) {
      shared.push_back({sum, least});
    }
  }
  return shared;
}

// q times the powers over the shared ones, multiplied out.
poly multiplied_out(rational_registry& registry, const addend_group& group, const sum_powers& shared) {
  sum_powers rest = *group.powers;
  for (const sum_power& power : shared) {
    if (power.exp == std::numeric_limits<std::int64_t>::min()) {
      return poly_nan();
    }
    rest.push_back({power.sum, -power.exp});
  }
  if (!combine(rest)) {
    return poly_nan();
  }
  std::vector<poly_power> powers{{&group.q, 1}};
  for (const sum_power& power : rest) {
    powers.push_back({&registry.sum(power.sum), static_cast<std::uint64_t>(power.exp)});
  }
  return poly_product(registry.pdata, powers);
}

// A product of sums with roots may be zero though none of them is.
bool vanishes(rational_registry& registry, const rat& r) {
  if (r.coef.is_zero()) {
    return true;
  }
  std::vector<poly_power> with_roots;
  std::uint64_t count = 0;
  for (const sum_power& power : r.sums) {
    if (power.exp > 0 && registry.sum_has_roots(power.sum)) {
      with_roots.push_back({&registry.sum(power.sum), static_cast<std::uint64_t>(power.exp)});
      count += static_cast<std::uint64_t>(std::min<std::int64_t>(power.exp, 2));
    }
  }
  return count > 1 && rat_is_zero(rat_from_poly(registry, poly_product(registry.pdata, with_roots)));
}

}  // namespace

// ---- The registry.

std::int32_t rational_registry::root_key(std::uint32_t base_number, const rat& base) {
  const std::int32_t key = pdata.intern_key(F_POW, {root_tag, base_number});
  root_bases_.try_emplace(key, base);
  return key;
}

std::uint32_t rational_registry::sum_number(poly p) {
  const std::uint64_t hash = hash_of(p);
  const auto [first, last] = sum_numbers_.equal_range(hash);
  const auto known = std::find_if(first, last, [&](const auto& entry) { return sums_[entry.second].terms == p; });
  if (known != last) {
    return known->second;
  }
  const auto number = static_cast<std::uint32_t>(sums_.size());
  const bool has_roots =
      std::any_of(p.begin(), p.end(), [this](const poly_term& t) { return pdata.has_root(t.monomial); });
  const bool has_whole_roots =
      std::any_of(p.begin(), p.end(), [this](const poly_term& t) { return pdata.has_whole_root(t.monomial); });
  const bool special =
      std::any_of(p.begin(), p.end(), [this](const poly_term& t) { return is_special_monomial(t.monomial); });
  sums_.push_back({std::move(p), has_roots, has_whole_roots, special});
  sum_numbers_.emplace(hash, number);
  return number;
}

void rational_registry::mark_special(std::int32_t key) {
  const auto place = static_cast<std::size_t>(key);
  special_keys_.resize(std::max(special_keys_.size(), place + 1), false);
  special_keys_[place] = true;
}

bool rational_registry::is_special_monomial(monomial_id m) const {
  const factor_view factors = pdata.factors(m);
  return !special_keys_.empty() && std::any_of(factors.begin(), factors.end(), [this](const factor& f) {
    const auto place = static_cast<std::size_t>(f.key);
    return place < special_keys_.size() && special_keys_[place];
  });
}

bool rational_registry::is_special(const rat& r) const {
  return is_special_monomial(r.monomial) || std::any_of(r.sums.begin(), r.sums.end(), [this](const sum_power& power) {
           return sums_[power.sum].is_special;
         });
}

// ---- Forms.

rat rat_nan() { return {.coef = exact::beyond()}; }

rat rat_pole() { return {.coef = 1, .pole = true}; }

bool rat_is_nan(const rat& r) { return !r.coef.is_known(); }

rat rat_const(const exact& c) { return {.coef = c}; }

rat rat_atom(rational_registry& registry, std::int32_t key, const cnum& exp) {
  return rat_from_poly(registry, poly_atom(registry.pdata, key, exp));
}

bool rat_is_zero(const rat& r) { return r.coef.is_zero() && !r.pole; }

bool rat_is_const(const rat& r, exact* out) {
  if (r.monomial != 0 || !r.sums.empty() || r.pole) {
    return false;
  }
  if (out != nullptr) {
    *out = r.coef;
  }
  return true;
}

bool rat_is_canonical(const rational_registry& registry, const rat& r) {
  return r.sums.empty() ||
         (r.sums.size() == 1 && r.sums.front().exp == 1 && !registry.sum_has_roots(r.sums.front().sum));
}

bool rat_surely_differ(const rational_registry& registry, const rat& a, const rat& b) {
  const auto roots_in_one_sum = [&registry](const rat& r) {
    return !r.pole && !registry.pdata.has_root(r.monomial) &&
           (r.sums.empty() ||
            (r.sums.size() == 1 && r.sums.front().exp == 1 && !registry.sum_has_whole_roots(r.sums.front().sum)));
  };
  return (rat_is_canonical(registry, a) && rat_is_canonical(registry, b)) ||
         (roots_in_one_sum(a) && roots_in_one_sum(b));
}

rat rat_from_poly(rational_registry& registry, poly p) {
  poly_data& pdata = registry.pdata;
  if (p.empty()) {
    return rat_const(0);
  }
  if (poly_is_nan(p) || pdata.exhausted()) {
    return rat_nan();
  }
  std::int32_t whole_root = 0;
  for (const poly_term& t : p) {
    whole_root =
        pdata.has_whole_root(t.monomial) ? std::max(whole_root, greatest_whole_root(pdata, t.monomial)) : whole_root;
  }
  if (whole_root != 0) {
    return settled_sum(registry, p, whole_root);
  }
  if (p.size() == 1) {
    return {.coef = p.front().coef, .monomial = p.front().monomial};
  }
  rat result{.coef = common_number(p)};
  const std::vector<factor> common = common_factors(pdata, p);
  if (!common.empty()) {
    result.monomial = pdata.intern_monomial(common);
    const auto inverse = pdata.power(result.monomial, cnum_from_int(-1));
    p = inverse ? poly_scale(pdata, p, *inverse, 1) : poly_nan();
    if (poly_is_nan(p)) {
      return rat_nan();
    }
    // The order of the terms may be another now, and with it the first.
    result.coef = p.front().coef.sign() == result.coef.sign() ? result.coef : -result.coef;
  }
  if (!result.coef.is_known()) {
    return rat_nan();
  }
  if (!result.coef.is_one()) {
    for (poly_term& t : p) {
      t.coef /= result.coef;
    }
  }
  result.sums.push_back({registry.sum_number(std::move(p)), 1});
  return result;
}

poly rat_numerator(rational_registry& registry, const rat& r, rat* denominator) {
  if (rat_is_nan(r) || r.pole) {
    return poly_nan();
  }
  const poly term = poly_monomial(r.monomial, r.coef);
  std::vector<poly_power> powers{{&term, 1}};
  *denominator = rat_const(1);
  for (const sum_power& power : r.sums) {
    if (power.exp > 0) {
      powers.push_back({&registry.sum(power.sum), static_cast<std::uint64_t>(power.exp)});
    } else {
      denominator->sums.push_back({power.sum, -power.exp});
    }
  }
  return poly_product(registry.pdata, powers);
}

// ---- Arithmetic.

rat rat_sum(rational_registry& registry, std::span<const signed_rat> addends) {
  bool pole = false;
  for (const signed_rat& addend : addends) {
    if (rat_is_nan(*addend.r)) {
      return rat_nan();
    }
    pole = pole || addend.r->pole;
  }
  if (pole) {
    return rat_pole();
  }
  poly_data& pdata = registry.pdata;
  std::vector<addend_group> groups = grouped(pdata, addends);
  if (groups.empty()) {
    return rat_const(0);
  }
  if (groups.size() == 1) {
    const rat powers{.coef = 1, .sums = *groups.front().powers};
    return rat_mul(registry, rat_from_poly(registry, std::move(groups.front().q)), powers);
  }
  const sum_powers shared = shared_powers(registry, groups);
  std::vector<poly> parts;
  for (const addend_group& group : groups) {
    parts.push_back(multiplied_out(registry, group, shared));
    if (poly_is_nan(parts.back())) {
      return rat_nan();
    }
  }
  poly_sum total(pdata);
  for (const poly& part : parts) {
    total.add(part);
  }
  const rat powers{.coef = 1, .sums = shared};
  return rat_mul(registry, rat_from_poly(registry, total.take()), powers);
}

rat rat_product(rational_registry& registry, std::span<const rat> factors) {
  rat product = rat_const(1);
  bool nan = false;
  std::vector<monomial_id> monomials;
  for (const rat& r : factors) {
    if (rat_is_zero(r)) {
      return rat_const(0);
    }
    nan = nan || rat_is_nan(r);
    product.pole = product.pole || r.pole;
    product.coef *= r.coef;
    product.sums.insert(product.sums.end(), r.sums.begin(), r.sums.end());
    if (r.monomial != 0) {
      monomials.push_back(r.monomial);
    }
  }
  if (nan) {
    return rat_nan();
  }
  if (product.pole) {
    return rat_pole();
  }
  const auto monomial = registry.pdata.product(monomials);
  if (!monomial || !product.coef.is_known() || !combine(product.sums)) {
    return rat_nan();
  }
  product.monomial = *monomial;
  return settled(registry, std::move(product));
}

rat rat_mul(rational_registry& registry, const rat& a, const rat& b) {
  const rat both[] = {a, b};
  return rat_product(registry, both);
}

rat rat_div(rational_registry& registry, const rat& a, const rat& b) {
  return rat_is_zero(a) ? rat_const(0) : rat_mul(registry, a, rat_pow_int(registry, b, -1));
}

rat rat_pow_int(rational_registry& registry, const rat& a, std::int64_t k) {
  if (k == 0) {
    return rat_const(1);
  }
  if (a.pole || rat_is_zero(a)) {
    return a.pole == (k > 0) ? rat_pole() : rat_const(0);
  }
  const auto coef = power(a.coef, k);
  const auto monomial = registry.pdata.power(a.monomial, cnum_from_int(k));
  if (!coef || !monomial) {
    return rat_nan();
  }
  rat result{.coef = *coef, .monomial = *monomial, .sums = a.sums};
  for (sum_power& power : result.sums) {
    if (__builtin_mul_overflow(power.exp, k, &power.exp)) {
      return rat_nan();
    }
  }
  return settled(registry, std::move(result));
}

bool rat_eq(rational_registry& registry, const rat& a, const rat& b) {
  if (rat_is_nan(a) || rat_is_nan(b) || a.pole != b.pole) {
    return false;
  }
  if (a.pole || a == b) {
    return true;
  }
  if (rat_surely_differ(registry, a, b)) {
    return false;
  }
  const signed_rat difference[] = {{&a, false}, {&b, true}};
  return vanishes(registry, rat_sum(registry, difference));
}

std::string rat_to_string(const rational_registry& registry, const rat& r) {
  if (rat_is_nan(r) || r.pole) {
    return r.pole ? "pole" : "nan";
  }
  std::string text = poly_to_string(registry.pdata, poly_monomial(r.monomial, r.coef));
  for (const sum_power& power : r.sums) {
    text += "*(" + poly_to_string(registry.pdata, registry.sum(power.sum)) + ")";
    if (power.exp != 1) {
      text += "^(" + std::to_string(power.exp) + ")";
    }
  }
  return text;
}

}  // namespace vetro

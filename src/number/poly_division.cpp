// Long division by the greatest monomial in the lexicographic order of keys: with one divisor, the remainder is zero
// exactly when it divides.
#include "number/poly_division.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>

namespace vetro {
namespace {

// a comes before b: the first key with different exponents has the smaller one in a.
class monomial_order {
 public:
  explicit monomial_order(const poly_data& pdata) : pdata_(&pdata) {}

  bool operator()(monomial_id a, monomial_id b) const {
    const factor_view left = pdata_->factors(a);
    const factor_view right = pdata_->factors(b);
    const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    if (l == left.end() || r == right.end()) {
      return l == left.end() && r != right.end();
    }
    // The key that comes first stands in one of them only, with a positive exponent, or in both.
    return (*l).key == (*r).key ? cnum_cmp((*l).exp, (*r).exp) < 0 : (*l).key > (*r).key;
  }

 private:
  const poly_data* pdata_;
};

using ordered_poly = std::map<monomial_id, exact, monomial_order>;

// m / divisor; nothing where an exponent would be negative.
std::optional<monomial_id> quotient(poly_data& pdata, monomial_id m, monomial_id divisor) {
  const auto inverse = pdata.power(divisor, cnum_from_int(-1));
  const auto result = inverse ? pdata.multiply(m, *inverse) : std::nullopt;
  if (!result) {
    return std::nullopt;
  }
  const factor_view factors = pdata.factors(*result);
  const bool whole = std::all_of(factors.begin(), factors.end(), [](const factor& f) { return f.exp.num > 0; });
  return whole ? result : std::nullopt;
}

}  // namespace

bool poly_divides(poly_data& pdata, const poly& divisor, const poly& dividend) {
  if (divisor.empty() || poly_is_nan(divisor) || poly_is_nan(dividend)) {
    return false;
  }
  const monomial_order order(pdata);
  const auto leading = *std::max_element(divisor.begin(), divisor.end(), [&](const poly_term& a, const poly_term& b) {
    return order(a.monomial, b.monomial);
  });
  ordered_poly rest(order);
  for (const poly_term& t : dividend) {
    rest.emplace(t.monomial, t.coef);
  }
  while (!rest.empty()) {
    const auto greatest = std::prev(rest.end());
    const auto monomial = quotient(pdata, greatest->first, leading.monomial);
    const exact coef = greatest->second / leading.coef;
    if (!monomial || !coef.is_known() || !pdata.charge(divisor.size() * coef.limbs())) {
      return false;
    }
    for (const poly_term& t : divisor) {
      const auto place = pdata.multiply(t.monomial, *monomial);
      if (!place) {
        return false;
      }
      const auto entry = rest.try_emplace(*place, 0).first;
      entry->second -= t.coef * coef;
      if (entry->second.is_zero()) {
        rest.erase(entry);
      }
    }
  }
  return true;
}

}  // namespace vetro

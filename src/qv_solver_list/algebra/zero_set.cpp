#include "qv_solver_list/algebra/zero_set.h"

#include <algorithm>

#include "number/limits.h"
#include "number/poly_division.h"

namespace vetro {
namespace {

template <class T>
bool contains(const std::vector<T>& list, const T& value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

}  // namespace

zero_set::zero_set() : work_(limits::zero_set_work), domain_(work_), reader_(domain_) {}

// The form of t; null where there is none.
const rat* zero_set::read(term_ptr t) {
  const rational_domain::value form = reader_.read(t);
  const bool usable = !rat_is_nan(form->r) && !form->r.pole && !rat_is_zero(form->r);
  return usable && domain_.recall(t) != nullptr ? &(*domain_.recall(t))->r : nullptr;
}

void zero_set::add(term_ptr t) { keep_factors(t, sums_); }

void zero_set::ignore(term_ptr t) { keep_factors(t, ignored_sums_); }

void zero_set::keep_factors(term_ptr t, std::vector<std::uint32_t>& sums) {
  const rat* form = read(t);
  if (form == nullptr) {
    return;
  }
  for (const factor& f : domain_.registry().pdata.factors(form->monomial)) {
    keys_.push_back(f.key);
  }
  for (const sum_power& power : form->sums) {
    sums.push_back(power.sum);
  }
}

bool zero_set::covers(term_ptr t) {
  const rat* form = read(t);
  if (form == nullptr) {
    return false;
  }
  const factor_view factors = domain_.registry().pdata.factors(form->monomial);
  return std::all_of(factors.begin(), factors.end(),
                     [this](const factor& f) { return f.exp.num < 0 || holds_key(f.key); }) &&
         std::all_of(form->sums.begin(), form->sums.end(),
                     [this](const sum_power& power) { return power.exp < 0 || covers_sum(power.sum); });
}

// A root is 0 where its base is.
bool zero_set::holds_key(std::int32_t key) const { return contains(keys_, key); }

// The sum divides a product of powers of the sums of the set.
bool zero_set::covers_sum(std::uint32_t sum) {
  if (contains(sums_, sum) || contains(ignored_sums_, sum)) {
    return true;
  }
  rational_registry& registry = domain_.registry();
  poly_data& pdata = registry.pdata;
  const poly& divisor = registry.sum(sum);
  poly product = poly_const(1);
  for (const std::uint32_t known : sums_) {
    if (poly_divides(pdata, divisor, registry.sum(known))) {
      return true;
    }
    product = poly_mul(pdata, product, registry.sum(known));
  }
  return sums_.size() > 0 &&
         (poly_divides(pdata, divisor, product) || poly_divides(pdata, divisor, poly_mul(pdata, product, product)));
}

}  // namespace vetro

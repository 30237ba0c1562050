// Reading rational functions bottom-up; a function is kept as it was built, so that degrees are those of the text.
#include "qv_solver_list/univariate.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "number/limits.h"
#include "qv_solver_list/number_reading.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

constexpr allowed_forms constant_forms{.powers = true, .absolute = true};

ratio constant_ratio(const exact& value) { return {constant_polynomial(value), constant_polynomial(1)}; }

std::optional<ratio> made(std::optional<dense_polynomial> num, std::optional<dense_polynomial> den) {
  if (!num || !den || den->empty()) {
    return std::nullopt;
  }
  return ratio{*std::move(num), *std::move(den)};
}

std::optional<ratio> multiplied(const ratio& a, const ratio& b, budget& work) {
  return made(product(a.num, b.num, work), product(a.den, b.den, work));
}

std::optional<ratio> added(const ratio& a, const ratio& b, budget& work) {
  if (a.den == b.den) {
    return made(sum(a.num, b.num, work), a.den);
  }
  const auto left = product(a.num, b.den, work);
  const auto right = product(b.num, a.den, work);
  return left && right ? made(sum(*left, *right, work), product(a.den, b.den, work)) : std::nullopt;
}

ratio opposite(const ratio& r) { return {negated(r.num), r.den}; }

}  // namespace

univariate_reader::univariate_reader(term_ptr var) : var_(var), work_(limits::univariate_work) {}

const ratio* univariate_reader::read(term_ptr t) {
  auto found = known_.find(t);
  if (found == known_.end()) {
    std::optional<ratio> computed = compute(t);
    found = known_.emplace(t, std::move(computed)).first;
  }
  return found->second ? &*found->second : nullptr;
}

std::optional<ratio> univariate_reader::compute(term_ptr t) {
  if (term_eqb(t, var_)) {
    return ratio{monomial(1), constant_polynomial(1)};
  }
  if (t->type() == Const) {
    const auto value = number_literal(t);
    return value ? std::optional(constant_ratio(*value)) : std::nullopt;
  }
  const auto view = composed_term_split(t);
  if (!view || t->scope() != nullptr) {
    return std::nullopt;
  }
  if (view->t2 != nullptr) {
    return binary(view->oper, view->t1, view->t2);
  }
  if (view->oper == Neg) {
    const ratio* operand = read(view->t1);
    return operand == nullptr ? std::nullopt : std::optional(opposite(*operand));
  }
  const auto value = view->oper == Abs ? constant_rational(t) : std::nullopt;
  return value ? std::optional(constant_ratio(*value)) : std::nullopt;
}

// References into the table stay valid while other terms are read.
std::optional<ratio> univariate_reader::binary(oper_type oper, term_ptr left, term_ptr right) {
  const bool known = oper == Plus || oper == Minus || oper == Mult || oper == Div || oper == Frac || oper == Power;
  const ratio* a = known ? read(left) : nullptr;
  if (a == nullptr) {
    return std::nullopt;
  }
  if (oper == Power) {
    return power(*a, right);
  }
  const ratio* b = read(right);
  if (b == nullptr) {
    return std::nullopt;
  }
  switch (oper) {
    case Plus:
      return added(*a, *b, work_);
    case Minus:
      return added(*a, opposite(*b), work_);
    case Mult:
      return multiplied(*a, *b, work_);
    default:
      return multiplied(*a, ratio{b->den, b->num}, work_);
  }
}

std::optional<ratio> univariate_reader::power(const ratio& base, term_ptr exponent) {
  const auto value = constant_rational(exponent);
  const auto count = value ? value->to_int64() : std::nullopt;
  constexpr auto most = static_cast<std::int64_t>(limits::univariate_degree);
  const auto places = static_cast<std::int64_t>(std::max(base.num.size(), base.den.size()));
  if (!count || *count < 0 || *count > most || (places - 1) * *count > most) {
    return std::nullopt;
  }
  std::optional<ratio> out = constant_ratio(1);
  for (std::int64_t bit = std::int64_t{1} << 40; bit != 0 && out; bit >>= 1) {
    out = multiplied(*out, *out, work_);
    if (out && (*count & bit) != 0) {
      out = multiplied(*out, base, work_);
    }
  }
  return out;
}

std::optional<exact> constant_rational(term_ptr t) { return evaluate(t, constant_forms); }

int eventual_sign(const ratio& r) { return r.num.empty() ? 0 : r.num.back().sign() * r.den.back().sign(); }

std::optional<int> growth(const ratio& r) {
  if (r.num.empty()) {
    return std::nullopt;
  }
  return static_cast<int>(r.num.size()) - static_cast<int>(r.den.size());
}

std::optional<exact> limit_at_infinity(const ratio& r) {
  if (r.num.size() > r.den.size()) {
    return std::nullopt;
  }
  return r.num.size() < r.den.size() ? exact(0) : quotient(r.num.back(), r.den.back());
}

}  // namespace vetro

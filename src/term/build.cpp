#include "term/build.h"

#include <limits>
#include <optional>

#include "term/term_split_combine.h"

namespace vetro {
namespace {

// The value of an integer constant.
std::optional<std::int32_t> integer_of(term_ptr t) {
  return is_constant(t, Integer) ? std::optional(t->integer()) : std::nullopt;
}

// Both sides are integer constants, and the result of the overflow-checked operation fits one.
template <class Operation>
term_ptr folded(term_ptr l, term_ptr r, Operation overflows) {
  const auto a = integer_of(l);
  const auto b = integer_of(r);
  std::int32_t result = 0;
  return a && b && !overflows(*a, *b, &result) ? mk_integer(result) : nullptr;
}

term_ptr mk_ratio(oper_type oper, term_ptr l, term_ptr r) {
  if (l == nullptr || r == nullptr) {
    return nullptr;
  }
  return is_integer(l, 0) || is_integer(r, 1) ? l : make_binOp_term(oper, l, r);
}

}  // namespace

term_ptr mk_neg(term_ptr a) {
  if (a == nullptr) {
    return nullptr;
  }
  const auto value = integer_of(a);
  const bool fits = value && *value != std::numeric_limits<std::int32_t>::min();
  return fits ? mk_integer(-*value) : make_unOp_term(Neg, a);
}

term_ptr mk_sum(term_ptr l, term_ptr r) {
  if (l == nullptr || r == nullptr) {
    return nullptr;
  }
  if (is_integer(l, 0)) {
    return r;
  }
  if (is_integer(r, 0)) {
    return l;
  }
  term_ptr value = folded(l, r, [](auto a, auto b, auto* sum) { return __builtin_add_overflow(a, b, sum); });
  return value != nullptr ? value : make_binOp_term(Plus, l, r);
}

term_ptr mk_difference(term_ptr l, term_ptr r) {
  if (l == nullptr || r == nullptr) {
    return nullptr;
  }
  if (is_integer(r, 0)) {
    return l;
  }
  if (is_integer(l, 0)) {
    return mk_neg(r);
  }
  term_ptr value =
      folded(l, r, [](auto a, auto b, auto* difference) { return __builtin_sub_overflow(a, b, difference); });
  return value != nullptr ? value : make_binOp_term(Minus, l, r);
}

term_ptr mk_product(term_ptr l, term_ptr r) {
  if (l == nullptr || r == nullptr) {
    return nullptr;
  }
  if (is_integer(l, 0) || is_integer(r, 1)) {
    return l;
  }
  if (is_integer(r, 0) || is_integer(l, 1)) {
    return r;
  }
  term_ptr value = folded(l, r, [](auto a, auto b, auto* product) { return __builtin_mul_overflow(a, b, product); });
  return value != nullptr ? value : make_binOp_term(Mult, l, r);
}

term_ptr mk_quotient(term_ptr l, term_ptr r) { return mk_ratio(Div, l, r); }

term_ptr mk_fraction(term_ptr l, term_ptr r) { return mk_ratio(Frac, l, r); }

term_ptr mk_power(term_ptr b, term_ptr e) {
  if (b == nullptr || e == nullptr) {
    return nullptr;
  }
  if (is_integer(e, 0)) {
    return mk_integer(1);
  }
  return is_integer(e, 1) ? b : make_binOp_term(Power, b, e);
}

}  // namespace vetro

// The named number sets, each as a class of numbers and a set of signs.
#pragma once

#include <cstdint>
#include <optional>

#include "term/ast.h"

namespace vetro {

// From the smallest class to the largest.
enum class number_class : std::uint8_t { integer, rational, real, complex };

// A set of signs, as bits. For complex numbers only `any` is in use.
enum class sign_class : std::uint8_t {
  none = 0,
  negative = 1,
  zero = 2,
  nonpositive = 3,
  positive = 4,
  nonzero = 5,
  nonnegative = 6,
  any = 7,
};

constexpr sign_class operator|(sign_class a, sign_class b) {
  return static_cast<sign_class>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr sign_class operator&(sign_class a, sign_class b) {
  return static_cast<sign_class>(static_cast<unsigned>(a) & static_cast<unsigned>(b));
}
// Whether every sign of a is one of b.
constexpr bool within(sign_class a, sign_class b) { return (a & b) == a; }
// The sign of the negated number.
constexpr sign_class mirrored(sign_class s) {
  const auto bits = static_cast<unsigned>(s);
  return static_cast<sign_class>((bits & 2U) | (bits & 1U) << 2U | (bits & 4U) >> 2U);
}

struct number_set {
  number_class c;
  sign_class s;
  bool operator==(const number_set&) const = default;
};

// The set that a constant names, without a scope on it; nothing for any other term. The primes are no such set.
std::optional<number_set> number_set_of(term_ptr t);

// The same for lambda types and other places that name the sets by their kind.
std::optional<number_set> number_set_of(const_type kind);

// Whether every number of `inner` is one of `outer`.
bool contains(const number_set& outer, const number_set& inner);

// What membership of a real x in a signed set says of its size: x pred bound. For integers the bound is sharp: x ≥ 1
// for the positive ones. Nothing for a set of numbers of any sign.
struct set_comparison {
  pred_type pred;
  std::int32_t bound;
};
std::optional<set_comparison> comparison_of(const number_set& set);

}  // namespace vetro

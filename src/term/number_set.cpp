// The constants of the number sets stand in one run: integers, rationals, reals, each plain, positive, negative,
// nonpositive and nonnegative, then the complex numbers.
#include "term/number_set.h"

#include <array>

namespace vetro {
namespace {

constexpr std::array<sign_class, 5> signs_in_order = {sign_class::any, sign_class::positive, sign_class::negative,
                                                      sign_class::nonpositive, sign_class::nonnegative};
static_assert(RationalSet - IntegerSet == 5 && RealSet - RationalSet == 5 && ComplexSet - RealSet == 5);
static_assert(PosRealSet - RealSet == 1 && NegRealSet - RealSet == 2 && NonPosRealSet - RealSet == 3);

}  // namespace

std::optional<number_set> number_set_of(const_type kind) {
  if (kind == ComplexSet) {
    return number_set{number_class::complex, sign_class::any};
  }
  if (kind < IntegerSet || kind > NonNegRealSet) {
    return std::nullopt;
  }
  const int place = kind - IntegerSet;
  return number_set{static_cast<number_class>(place / 5), signs_in_order[static_cast<std::size_t>(place % 5)]};
}

std::optional<number_set> number_set_of(term_ptr t) {
  return t != nullptr && t->type() == Const && !t->has_meta() ? number_set_of(t->constant()) : std::nullopt;
}

bool contains(const number_set& outer, const number_set& inner) {
  return inner.c <= outer.c && within(inner.s, outer.s);
}

std::optional<set_comparison> comparison_of(const number_set& set) {
  const bool whole = set.c == number_class::integer;
  switch (set.s) {
    case sign_class::positive:
      return whole ? set_comparison{Ge, 1} : set_comparison{Gt, 0};
    case sign_class::negative:
      return whole ? set_comparison{Le, -1} : set_comparison{Lt, 0};
    case sign_class::nonpositive:
      return set_comparison{Le, 0};
    case sign_class::nonnegative:
      return set_comparison{Ge, 0};
    default:
      return std::nullopt;
  }
}

}  // namespace vetro

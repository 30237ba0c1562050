// Intervals whose ends are written as rational numbers or infinities.
#pragma once

#include <compare>
#include <optional>

#include "number/exact.h"
#include "term/ast.h"
#include "term/functions.h"

namespace vetro {

enum class bound_kind : std::int8_t { negative_infinity = -1, finite = 0, positive_infinity = 1 };

struct interval_bound {
  bound_kind kind = bound_kind::finite;
  exact value = 0;  // of a finite bound
  bool closed = false;
};

struct rational_interval {
  interval_bound lower;
  interval_bound upper;
};

// Reads (a, b), [a, b) and the like; nothing where an end is no number, and where the lower one is above the upper.
std::optional<rational_interval> read_rational_interval(term_ptr set);

// Whether the condition holds at every point of the interval.
bool holds_on(const rational_interval& interval, const domain_condition& condition);

}  // namespace vetro

// Comparisons of points of an interval with an integer need its ends alone.
#include "qv_solver_list/calculus/rational_interval.h"

#include "qv_solver_list/number_reading.h"
#include "term/pattern_match.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

std::partial_ordering compare(const interval_bound& a, const interval_bound& b) {
  if (a.kind == bound_kind::finite && b.kind == bound_kind::finite) {
    return a.value <=> b.value;
  }
  return static_cast<int>(a.kind) <=> static_cast<int>(b.kind);
}

interval_bound opposite(interval_bound bound) {
  bound.kind = static_cast<bound_kind>(-static_cast<int>(bound.kind));
  bound.value = -bound.value;
  return bound;
}

std::optional<exact> integer_constant(term_ptr t) {
  return is_constant(t, Integer) ? std::optional<exact>(t->integer()) : std::nullopt;
}

// An integer, a quotient of integers, an infinity, or the negation of one of these.
std::optional<interval_bound> read_bound(term_ptr t) {
  if (const auto integer = integer_constant(t)) {
    return interval_bound{.value = *integer};
  }
  if (is_constant(t, NegInfty)) {
    return interval_bound{.kind = bound_kind::negative_infinity};
  }
  if (is_constant(t, PosInfty) || is_constant(t, Infty)) {
    return interval_bound{.kind = bound_kind::positive_infinity};
  }
  const auto view = composed_term_split(t);
  if (!view || t->scope() != nullptr) {
    return std::nullopt;
  }
  if (view->oper == Neg && view->t2 == nullptr) {
    const auto inner = read_bound(view->t1);
    return inner ? std::optional(opposite(*inner)) : std::nullopt;
  }
  if (view->oper == Div || view->oper == Frac) {
    const auto numerator = integer_constant(view->t1);
    const auto denominator = view->t2 == nullptr ? std::nullopt : integer_constant(view->t2);
    const auto value = numerator && denominator ? quotient(*numerator, *denominator) : std::nullopt;
    return value ? std::optional(interval_bound{.value = *value}) : std::nullopt;
  }
  return std::nullopt;
}

struct ends {
  term_ptr lower;
  term_ptr upper;
  bool lower_closed;
  bool upper_closed;
};

std::optional<ends> interval_ends(term_ptr set) {
  ends out{};
  if (match(set, "IntervalLoRo(?, ?)", out.lower, out.upper)) {
    return out;
  }
  if (match(set, "IntervalLcRo(?, ?)", out.lower, out.upper)) {
    out.lower_closed = true;
    return out;
  }
  if (match(set, "IntervalLoRc(?, ?)", out.lower, out.upper)) {
    out.upper_closed = true;
    return out;
  }
  if (match(set, "IntervalLcRc(?, ?)", out.lower, out.upper)) {
    out.lower_closed = out.upper_closed = true;
    return out;
  }
  return std::nullopt;
}

// lower > value, or at least so, for every point; an open end is above itself.
bool above(const interval_bound& lower, const exact& value, bool strictly) {
  const auto order = compare(lower, interval_bound{.value = value});
  return order > 0 || (order == 0 && !(strictly && lower.closed));
}

}  // namespace

std::optional<rational_interval> read_rational_interval(term_ptr set) {
  const auto parts = set->scope() == nullptr ? interval_ends(set) : std::nullopt;
  auto lower = parts ? read_bound(parts->lower) : std::nullopt;
  auto upper = lower ? read_bound(parts->upper) : std::nullopt;
  if (!upper || !(compare(*lower, *upper) <= 0)) {
    return std::nullopt;
  }
  lower->closed = parts->lower_closed;
  upper->closed = parts->upper_closed;
  return rational_interval{*lower, *upper};
}

bool holds_on(const rational_interval& interval, const domain_condition& condition) {
  const exact value = condition.value;
  switch (condition.pred) {
    case Ge:
    case Gt:
      return above(interval.lower, value, condition.pred == Gt);
    case Le:
    case Lt:
      return above(opposite(interval.upper), -value, condition.pred == Lt);
    case Neq:
      return above(interval.lower, value, true) || above(opposite(interval.upper), -value, true);
    default:
      return false;
  }
}

}  // namespace vetro

#include "smt_solver/src/simplex.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <utility>

namespace vetro::smt {
namespace {

// Exchanges in one check, each for one variable that is out of bounds, before all of them are looked at together.
constexpr std::size_t patient_pivots = 20;

// Exchanges that change no value before the choice of variables falls back to the least number, which cannot go in
// circles.
constexpr std::size_t patient_stalls = 20;

// Longer rows imply no bounds: each of their variables would have to be bounded.
constexpr std::size_t longest_implying_row = 24;

// Work for one operation on a number: about ten nanoseconds each.
std::uint64_t cost_of(const exact& number) { return number.limbs() <= 2 ? 2 : 16 * number.limbs(); }
std::uint64_t cost_of(const whole& number) { return 2 + 2 * number.size(); }

}  // namespace

// ---- Tableau.

linear_var simplex::add_variable() {
  const auto x = static_cast<linear_var>(vars_.size());
  vars_.emplace_back();
  place_in_row_.push_back(0);
  is_suspect_.push_back(0);
  is_watched_.push_back(0);
  dense_.emplace_back();
  return x;
}

linear_var simplex::add_sum(std::span<const summand> sum) {
  const linear_var x = add_variable();
  const auto r = static_cast<std::int32_t>(rows_.size());
  express(sum);
  exact scale(1);
  for (const auto& [y, coefficient] : expression_) {
    const exact denominator = coefficient.denominator();
    scale = scale / gcd(scale, denominator) * denominator;
  }
  rows_.push_back({x, whole(scale), {}});
  is_touched_.push_back(0);
  rows_.back().entries.reserve(expression_.size() + 1);
  vars_[at(x)].row = r;
  delta_number value;
  add_entry(r, x, whole(-scale));
  for (const auto& [y, coefficient] : expression_) {
    value.add_multiple(coefficient, vars_[at(y)].value);
    add_entry(r, y, whole(coefficient * scale));
    work_.charge(cost_of(coefficient));
  }
  broken_ = broken_ || !scale.is_known();
  note(value);
  vars_[at(x)].value = std::move(value);
  return x;
}

void simplex::add_entry(std::int32_t r, linear_var x, whole coefficient) {
  auto& column = vars_[at(x)].column;
  auto& entries = rows_[at(r)].entries;
  column.push_back({r, static_cast<std::int32_t>(entries.size())});
  entries.push_back({x, static_cast<std::int32_t>(column.size()) - 1, std::move(coefficient)});
}

// The last entries of row and column take the places of the removed one.
void simplex::remove_entry(std::int32_t r, std::int32_t place) {
  auto& entries = rows_[at(r)].entries;
  const row_entry& removed = entries[at(place)];
  auto& column = vars_[at(removed.var)].column;
  const column_entry last_in_column = column.back();
  column[at(removed.place)] = last_in_column;
  rows_[at(last_in_column.row)].entries[at(last_in_column.place)].place = removed.place;
  column.pop_back();
  if (at(place) + 1 != entries.size()) {
    entries[at(place)] = std::move(entries.back());
    const row_entry& moved = entries[at(place)];
    vars_[at(moved.var)].column[at(moved.place)].place = place;
  }
  entries.pop_back();
}

// Multiplies the target by a positive number and adds a multiple of the source, so that x goes.
void simplex::eliminate(linear_var x, std::int32_t target, std::int32_t source) {
  auto& entries = rows_[at(target)].entries;
  const auto& added = rows_[at(source)].entries;
  whole multiple = coefficient_in(rows_[at(source)], x);  // below 0
  whole factor = coefficient_in(rows_[at(target)], x);
  const whole common = gcd(multiple, factor);
  multiple.divide(common);
  multiple.negate();
  factor.divide(common);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    place_in_row_[at(entries[i].var)] = static_cast<std::int32_t>(i) + 1;
  }
  rows_[at(target)].scale.multiply(multiple);
  bool vanished = false;
  std::uint64_t cost = 0;
  for (const row_entry& e : added) {
    const std::int32_t place = place_in_row_[at(e.var)];
    cost += cost_of(e.coefficient);
    if (place == 0) {
      add_entry(target, e.var, e.coefficient);
      entries.back().coefficient.multiply(factor);
      continue;
    }
    whole& coefficient = entries[at(place - 1)].coefficient;
    coefficient.combine(multiple, factor, e.coefficient);
    vanished = vanished || coefficient.is_zero();
    place_in_row_[at(e.var)] = 0;
  }
  for (row_entry& e : entries) {
    if (place_in_row_[at(e.var)] != 0) {  // not in the source
      e.coefficient.multiply(multiple);
      place_in_row_[at(e.var)] = 0;
    }
    cost += cost_of(e.coefficient);
    broken_ = broken_ || !e.coefficient.is_known();
  }
  for (std::size_t i = entries.size(); vanished && i > 0; --i) {
    if (entries[i - 1].coefficient.is_zero()) {
      remove_entry(target, static_cast<std::int32_t>(i - 1));
    }
  }
  work_.charge(cost);
  reduce(rows_[at(target)]);
}

void simplex::reduce(row& r) {
  whole common = r.scale;
  for (std::size_t i = 0; i < r.entries.size() && !common.is_one(); ++i) {
    common = gcd(common, r.entries[i].coefficient);
  }
  if (!common.is_one() && common.is_known()) {
    r.scale.divide(common);
    for (row_entry& e : r.entries) {
      e.coefficient.divide(common);
    }
  }
}

const whole& simplex::coefficient_in(const row& r, linear_var x) const {
  return std::find_if(r.entries.begin(), r.entries.end(), [&](const row_entry& e) { return e.var == x; })->coefficient;
}

exact simplex::rate_of(const column_entry& c) const {
  const row& r = rows_[at(c.row)];
  exact rate = ratio(r.entries[at(c.place)].coefficient, r.scale);
  work_.charge(cost_of(rate));
  return rate;
}

// The entering variable is expressed by the row of the leaving one, and put in wherever it stands.
void simplex::pivot(linear_var leaving, linear_var entering) {
  ++pivots_;
  const std::int32_t r = vars_[at(leaving)].row;
  row& pivot_row = rows_[at(r)];
  if (coefficient_in(pivot_row, entering).sign() > 0) {
    for (row_entry& e : pivot_row.entries) {
      e.coefficient.negate();
    }
  }
  pivot_row.scale = coefficient_in(pivot_row, entering);
  pivot_row.scale.negate();
  pivot_row.basic = entering;
  vars_[at(leaving)].row = -1;
  vars_[at(entering)].row = r;
  touch_row(r);
  auto& column = vars_[at(entering)].column;
  for (std::size_t i = column.size(); i > 0; --i) {  // entries vanish behind the place of the walk
    if (column[i - 1].row != r) {
      touch_row(column[i - 1].row);
      eliminate(entering, column[i - 1].row, r);
    }
  }
}

// ---- Bounds and values.

bool simplex::is_fixed(linear_var x) const {
  const variable& v = vars_[at(x)];
  return v.lower.present && v.upper.present && v.lower.value == v.upper.value;
}

bool simplex::can_move(linear_var x, int direction) const {
  const variable& v = vars_[at(x)];
  return direction > 0 ? !v.upper.present || v.value < v.upper.value : !v.lower.present || v.lower.value < v.value;
}

bool simplex::assert_bound(linear_var x, bound_side side, const delta_number& value, bound_reason why) {
  variable& v = vars_[at(x)];
  bound& own = side == bound_side::lower ? v.lower : v.upper;
  const bound& other = side == bound_side::lower ? v.upper : v.lower;
  const auto beyond = [&](const delta_number& limit) {
    return side == bound_side::lower ? limit < value : value < limit;
  };
  note(value);
  if (own.present && !beyond(own.value)) {
    return true;
  }
  if (other.present && beyond(other.value)) {
    conflict_.assign({why, other.why});
    return false;
  }
  undo_.push_back({x, side, own});
  own = {value, why, true};
  touch_rows(x);
  if (is_basic(x)) {
    suspect(x);
  } else if (beyond(v.value)) {
    move(x, value - v.value);
  }
  return true;
}

void simplex::back_to_level(int level) {
  const std::size_t start = level_starts_[at(level)];
  level_starts_.resize(at(level));
  while (undo_.size() > start) {
    bound_change& change = undo_.back();
    variable& v = vars_[at(change.var)];
    (change.side == bound_side::lower ? v.lower : v.upper) = std::move(change.before);
    undo_.pop_back();
  }
}

void simplex::suspect(linear_var x) {
  if (is_suspect_[at(x)] == 0 && (below(x) || above(x))) {
    is_suspect_[at(x)] = 1;
    suspects_.push_back(x);
    std::push_heap(suspects_.begin(), suspects_.end(), std::greater<>());
  }
}

void simplex::move(linear_var x, const delta_number& by) {
  vars_[at(x)].value += by;
  note(vars_[at(x)].value);
  work_.charge(vars_[at(x)].column.size());
  for (const column_entry& c : vars_[at(x)].column) {
    const linear_var y = rows_[at(c.row)].basic;
    variable& basic = vars_[at(y)];
    basic.value.add_multiple(rate_of(c), by);
    work_.charge(cost_of(basic.value.real));
    note(basic.value);
    suspect(y);
  }
}

// ---- Feasibility.

linear_var simplex::next_violated() {
  while (!suspects_.empty()) {
    const linear_var x = suspects_.front();
    std::pop_heap(suspects_.begin(), suspects_.end(), std::greater<>());
    suspects_.pop_back();
    is_suspect_[at(x)] = 0;
    if (is_basic(x) && (below(x) || above(x))) {
      return x;
    }
  }
  return -1;
}

simplex::answer simplex::check() {
  std::size_t exchanges = 0;
  while (!broken_ && work_.charge(1)) {
    const linear_var leaving = next_violated();
    if (leaving < 0) {
      return answer::feasible;
    }
    if (exchanges == patient_pivots) {
      suspect(leaving);
      return reduce_violations();
    }
    const row& r = rows_[at(vars_[at(leaving)].row)];
    const int direction = below(leaving) ? 1 : -1;
    const linear_var entering = choose_entering(r, direction);
    if (entering < 0) {
      explain_row(r, direction);
      suspect(leaving);
      return answer::conflict;
    }
    ++exchanges;
    const variable& v = vars_[at(leaving)];
    const delta_number target = direction > 0 ? v.lower.value : v.upper.value;
    pivot_and_set(leaving, entering, target);
  }
  return answer::exhausted;
}

// A variable of the row that can move the basic one in the direction; -1 when there is none. First choice: one without
// bounds, which never has to leave again; then the one in the fewest rows.
linear_var simplex::choose_entering(const row& r, int direction) const {
  linear_var best = -1;
  for (const row_entry& e : r.entries) {
    if (e.var == r.basic || !can_move(e.var, direction * e.coefficient.sign())) {
      continue;
    }
    const auto rank = [&](linear_var x) {
      return std::pair((is_free(x) ? 0 : std::size_t{1} << 32) + vars_[at(x)].column.size(), x);
    };
    if (best < 0 || rank(e.var) < rank(best)) {
      best = e.var;
    }
  }
  return best;
}

// The basic variable cannot move in the direction: its own bound, and those that stop the others.
void simplex::explain_row(const row& r, int direction) {
  conflict_.clear();
  for (const row_entry& e : r.entries) {
    const variable& v = vars_[at(e.var)];
    const int sign = direction * e.coefficient.sign();
    conflict_.push_back(sign > 0 ? v.upper.why : v.lower.why);  // the coefficient of the basic variable is below 0
  }
}

void simplex::pivot_and_set(linear_var leaving, linear_var entering, const delta_number& target) {
  const row& r = rows_[at(vars_[at(leaving)].row)];
  const exact inverse = ratio(r.scale, coefficient_in(r, entering));
  const delta_number by = (target - vars_[at(leaving)].value) * inverse;
  move(entering, by);
  vars_[at(leaving)].value = target;
  pivot(leaving, entering);
  suspect(entering);
}

// ---- Implied bounds.

void simplex::watch(linear_var x) {
  is_watched_[at(x)] = 1;
  watching_ = true;
}

void simplex::touch_row(std::int32_t r) {
  if (watching_ && is_touched_[at(r)] == 0) {
    is_touched_[at(r)] = 1;
    touched_rows_.push_back(r);
  }
}

void simplex::touch_rows(linear_var x) {
  if (!watching_) {
    return;
  }
  work_.charge(vars_[at(x)].column.size());
  for (const column_entry& c : vars_[at(x)].column) {
    touch_row(c.row);
  }
}

void simplex::imply_bounds(listener& out) {
  for (const std::int32_t r : touched_rows_) {
    is_touched_[at(r)] = 0;
    if (rows_[at(r)].entries.size() <= longest_implying_row) {
      imply_bounds_in(rows_[at(r)], out);
    }
  }
  touched_rows_.clear();
}

void simplex::imply_bounds_in(const row& r, listener& out) {
  const auto is_watched = [this](const row_entry& e) { return is_watched_[at(e.var)] != 0; };
  work_.charge(r.entries.size());
  if (std::none_of(r.entries.begin(), r.entries.end(), is_watched)) {
    return;
  }
  for (const int direction : {1, -1}) {
    row_end end;
    for (const row_entry& e : r.entries) {
      add_to_end(end, e, direction);
    }
    for (const row_entry& e : r.entries) {
      if (is_watched(e) && end.without <= 1 && (end.without == 0 || end.last_without == e.var)) {
        imply(r, e, direction, end, out);
      }
    }
  }
}

// Direction 1 for the greatest value.
void simplex::add_to_end(row_end& end, const row_entry& e, int direction) const {
  const variable& v = vars_[at(e.var)];
  const bound& b = direction * e.coefficient.sign() > 0 ? v.upper : v.lower;
  if (!b.present) {
    ++end.without;
    end.last_without = e.var;
  } else if (end.without <= 1) {
    work_.charge(cost_of(b.value.real) + cost_of(e.coefficient));
    end.value.add_multiple(ratio(e.coefficient, 1), b.value);
  }
}

// The sum is 0, so that the summand of one variable is at least what is left when all others are as great as they can
// be, and at most so where they are as small.
void simplex::imply(const row& r, const row_entry& e, int direction, const row_end& end, listener& out) {
  const variable& v = vars_[at(e.var)];
  const int own = direction * e.coefficient.sign();
  const exact coefficient = ratio(e.coefficient, 1);
  delta_number others = end.value;
  if (end.without == 0) {
    others.add_multiple(-coefficient, (own > 0 ? v.upper : v.lower).value);
  }
  const delta_number value = others * (exact(-1) / coefficient);
  const bound_side side = own > 0 ? bound_side::lower : bound_side::upper;
  const bound& known = own > 0 ? v.lower : v.upper;
  const bool tighter = !known.present || (own > 0 ? known.value < value : value < known.value);
  if (!tighter || !value.is_known() || !out.is_news(e.var, side, value)) {
    return;
  }
  reasons_.clear();
  for (const row_entry& other : r.entries) {
    if (other.var != e.var) {
      const variable& w = vars_[at(other.var)];
      reasons_.push_back((direction * other.coefficient.sign() > 0 ? w.upper : w.lower).why);
    }
  }
  out.learn(reasons_);
}

// ---- All violations together.
//
// The sum of all distances to the bounds falls until it is 0 or no variable can make it fall, which refutes the bounds:
// the same combination of rows that gives the sum shows that it cannot be 0.

simplex::answer simplex::reduce_violations() {
  std::size_t stalls = 0;
  while (!broken_ && work_.charge(1)) {
    add_up_violations();
    if (violated_.empty()) {
      return answer::feasible;
    }
    for (const linear_var x : violated_) {
      const row& r = rows_[at(vars_[at(x)].row)];
      const int direction = below(x) ? 1 : -1;
      if (choose_entering(r, direction) < 0) {
        explain_row(r, direction);
        return answer::conflict;
      }
    }
    const bool stalled = stalls > patient_stalls;
    const auto useful = [&](const std::pair<linear_var, exact>& e) { return can_move(e.first, e.second.sign()); };
    auto best = expression_.end();
    for (auto e = expression_.begin(); e != expression_.end(); ++e) {
      if (useful(*e) && (best == expression_.end() || (stalled ? e->first < best->first : steeper(*e, *best)))) {
        best = e;
      }
    }
    if (best == expression_.end()) {
      explain_violations();
      return answer::conflict;
    }
    const auto [entering, slope] = *best;
    stalls = step_down(entering, slope, stalled) ? 0 : stalls + 1;
  }
  return answer::exhausted;
}

// Greater slopes first, then lesser numbers.
bool simplex::steeper(const std::pair<linear_var, exact>& a, const std::pair<linear_var, exact>& b) {
  const exact x = a.second.sign() < 0 ? -a.second : a.second;
  const exact y = b.second.sign() < 0 ? -b.second : b.second;
  return x == y ? a.first < b.first : y < x;
}

// Into violated_, and the sum of the violations, with what lies below counted upwards, into expression_.
void simplex::add_up_violations() {
  violated_.clear();
  std::size_t kept = 0;
  for (const linear_var x : suspects_) {
    if (is_basic(x) && (below(x) || above(x))) {
      suspects_[kept++] = x;
    } else {
      is_suspect_[at(x)] = 0;
    }
  }
  suspects_.resize(kept);
  std::sort(suspects_.begin(), suspects_.end());  // a heap
  violated_ = suspects_;
  std::vector<summand> sum;
  for (const linear_var x : violated_) {
    sum.emplace_back(x, exact(below(x) ? 1 : -1));
  }
  express(sum);
}

void simplex::explain_violations() {
  conflict_.clear();
  for (const linear_var x : violated_) {
    const variable& v = vars_[at(x)];
    conflict_.push_back(below(x) ? v.lower.why : v.upper.why);
  }
  for (const auto& [x, slope] : expression_) {
    const variable& v = vars_[at(x)];
    conflict_.push_back(slope.sign() > 0 ? v.upper.why : v.lower.why);
  }
}

// Moves x, which is not basic, in the direction of the slope as far as the sum of violations falls; only to the first
// bound in the way when stalled. False when nothing moves.
bool simplex::step_down(linear_var x, const exact& slope, bool stalled) {
  const int direction = slope.sign();
  breakpoints_.clear();
  const auto add = [&](linear_var y, const bound& b, int way, const exact& rate) {
    const delta_number& value = vars_[at(y)].value;
    const delta_number distance = (way > 0 ? b.value - value : value - b.value) * (exact(1) / rate);
    breakpoints_.push_back({distance, y, &b == &vars_[at(y)].upper, rate});
  };
  for (const column_entry& c : vars_[at(x)].column) {
    const linear_var y = rows_[at(c.row)].basic;
    const variable& v = vars_[at(y)];
    exact rate = rate_of(c);
    const int way = direction * rate.sign();
    rate = rate.sign() < 0 ? -rate : rate;
    const bound& first = way > 0 ? v.lower : v.upper;
    const bound& second = way > 0 ? v.upper : v.lower;
    const bool outside_behind = way > 0 ? above(y) : below(y);
    const bool outside_before = way > 0 ? below(y) : above(y);
    if (outside_before) {
      add(y, first, way, rate);
    }
    if (second.present && !outside_behind) {
      add(y, second, way, rate);
    }
  }
  const auto nearer = [](const breakpoint& a, const breakpoint& b) {
    return a.distance == b.distance ? a.basic < b.basic : a.distance < b.distance;
  };
  std::sort(breakpoints_.begin(), breakpoints_.end(), nearer);
  exact left = direction > 0 ? slope : -slope;
  auto stop = breakpoints_.begin();
  for (; stop != breakpoints_.end(); ++stop) {
    left -= stop->change;
    if (left.sign() <= 0 || stalled) {
      break;
    }
  }
  const variable& v = vars_[at(x)];
  const bound& own = direction > 0 ? v.upper : v.lower;
  if (own.present) {
    const delta_number to_own = direction > 0 ? own.value - v.value : v.value - own.value;
    if (stop == breakpoints_.end() || !(stop->distance < to_own)) {
      move(x, own.value - v.value);
      return true;
    }
  }
  if (stop == breakpoints_.end()) {  // not reached: what is out of bounds comes to its bound
    broken_ = true;
    return false;
  }
  const breakpoint here = *stop;
  const variable& leaving = vars_[at(here.basic)];
  const delta_number target = here.at_upper ? leaving.upper.value : leaving.lower.value;
  pivot_and_set(here.basic, x, target);
  return !here.distance.is_zero();
}

// ---- Forced values.

void simplex::express(std::span<const summand> sum) {
  expression_.clear();
  std::vector<linear_var> used;
  const auto add = [&](linear_var x, const exact& coefficient) {
    if (place_in_row_[at(x)] == 0) {
      place_in_row_[at(x)] = 1;
      used.push_back(x);
      dense_[at(x)] = exact(0);
    }
    dense_[at(x)] += coefficient;
  };
  for (const auto& [x, coefficient] : sum) {
    if (!is_basic(x)) {
      add(x, coefficient);
      continue;
    }
    const row& r = rows_[at(vars_[at(x)].row)];
    for (const row_entry& e : r.entries) {
      work_.charge(cost_of(e.coefficient));
      if (e.var != x) {
        add(e.var, coefficient * ratio(e.coefficient, r.scale));
      }
    }
  }
  for (const linear_var x : used) {
    place_in_row_[at(x)] = 0;
    broken_ = broken_ || !dense_[at(x)].is_known();
    if (!dense_[at(x)].is_zero()) {
      expression_.emplace_back(x, std::move(dense_[at(x)]));
    }
  }
}

// How far x, which is not basic, can move in the direction before a bound stops it; nothing: without end. blocking is
// the basic variable that stops it, or x itself.
std::optional<delta_number> simplex::room(linear_var x, int direction, linear_var* blocking) const {
  std::optional<delta_number> least;
  const auto stop = [&](linear_var y, int way, const exact& rate) {
    const variable& v = vars_[at(y)];
    const bound& b = way > 0 ? v.upper : v.lower;
    if (!b.present) {
      return;
    }
    const delta_number distance = (way > 0 ? b.value - v.value : v.value - b.value) * (exact(1) / rate);
    if (!least || distance < *least || (distance == *least && y < *blocking)) {
      least = distance;
      *blocking = y;
    }
  };
  stop(x, direction, exact(1));
  for (const column_entry& c : vars_[at(x)].column) {
    const exact rate = rate_of(c);
    stop(rows_[at(c.row)].basic, direction * rate.sign(), rate.sign() > 0 ? rate : -rate);
  }
  return least;
}

// A step into the room that seldom leads to a value that is there already: small numbers that change from call to call.
delta_number simplex::step_within(const std::optional<delta_number>& room) {
  random_ = random_ * 1103515245U + 12345U;
  const auto draw = static_cast<std::int64_t>(random_ >> 16U & 1023U) + 1;
  if (!room || exact(draw) < room->real) {
    return {exact(draw), exact(0)};
  }
  const exact part = exact(1) / exact(draw % 61 + 2);
  return *room * part;
}

simplex::forced simplex::is_forced(std::span<const summand> sum, std::vector<bound_reason>& why) {
  express(sum);
  bool all_fixed = true;
  for (std::size_t i = 0; i < expression_.size(); ++i) {
    const linear_var x = expression_[i].first;
    if (is_fixed(x)) {
      continue;
    }
    all_fixed = false;
    for (const int direction : {1, -1}) {
      linear_var blocking = -1;
      const auto free_room = room(x, direction, &blocking);
      if (!free_room || free_room->sign() > 0) {
        delta_number step = step_within(free_room);
        move(x, direction > 0 ? step : step * exact(-1));
        return broken_ ? forced::exhausted : forced::no;
      }
    }
  }
  if (all_fixed) {
    for (const auto& [x, coefficient] : expression_) {
      why.push_back(vars_[at(x)].lower.why);
      why.push_back(vars_[at(x)].upper.why);
    }
    return broken_ ? forced::exhausted : forced::yes;
  }
  const forced up = cannot_move(sum, 1, why);
  return up == forced::yes ? cannot_move(sum, -1, why) : up;
}

// Is the present value of the sum its greatest (direction 1) or least one? Exchanges variables at a standstill, always
// the least possible ones, until the sum can move or no variable could move it.
simplex::forced simplex::cannot_move(std::span<const summand> sum, int direction, std::vector<bound_reason>& why) {
  while (!broken_ && work_.charge(1)) {
    express(sum);
    linear_var entering = -1;
    int way = 0;
    for (const auto& [x, coefficient] : expression_) {
      const int useful = direction * coefficient.sign();
      if (can_move(x, useful) && (entering < 0 || x < entering)) {
        entering = x;
        way = useful;
      }
    }
    if (entering < 0) {
      for (const auto& [x, coefficient] : expression_) {
        const variable& v = vars_[at(x)];
        why.push_back(direction * coefficient.sign() > 0 ? v.upper.why : v.lower.why);
      }
      return forced::yes;
    }
    linear_var blocking = -1;
    const auto free_room = room(entering, way, &blocking);
    if (!free_room || free_room->sign() > 0) {
      const delta_number step = step_within(free_room);
      move(entering, way > 0 ? step : step * exact(-1));
      return forced::no;
    }
    pivot(blocking, entering);
  }
  return forced::exhausted;
}

void simplex::scatter() {
  for (linear_var x = 0; x < size() && !broken_ && !work_.exhausted(); ++x) {
    if (is_basic(x) || is_fixed(x)) {
      continue;
    }
    for (const int direction : {1, -1}) {
      linear_var blocking = -1;
      const auto free_room = room(x, direction, &blocking);
      if (!free_room || free_room->sign() > 0) {
        const delta_number step = step_within(free_room);
        move(x, direction > 0 ? step : step * exact(-1));
        break;
      }
    }
  }
}

}  // namespace vetro::smt

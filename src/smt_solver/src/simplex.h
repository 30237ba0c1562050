// Linear arithmetic over the rationals: is there a value for every variable within bounds that come and go, where some
// variables are fixed combinations of others?
//
// A tableau expresses the basic variables by the others. Every variable that is not basic has a value within its bounds
// at all times; check moves the basic ones into theirs by exchanging them, or finds a row that cannot be satisfied.
// Values and the shape of the tableau survive going back: only bounds are taken back, and weaker bounds do no harm.
//
// All numbers are exact. When one outgrows its limit, or the work is used up, check answers exhausted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "number/budget.h"
#include "number/whole.h"
#include "smt_solver/src/delta_number.h"

namespace vetro::smt {

using linear_var = std::int32_t;

// Why a bound holds; what the numbers mean is the owner's business.
struct bound_reason {
  std::int32_t first;
  std::int32_t second;
  bool operator==(const bound_reason&) const = default;
};

enum class bound_side : std::uint8_t { lower, upper };

class simplex {
 public:
  enum class answer : unsigned char { feasible, conflict, exhausted };
  using summand = std::pair<linear_var, exact>;

  explicit simplex(budget& work) : work_(work) {}

  linear_var add_variable();
  // A variable that is the sum; at any time. No variable twice, no zero coefficients.
  linear_var add_sum(std::span<const summand> sum);

  // False: contradiction with the opposite bound. A weaker bound than the present one changes nothing.
  bool assert_bound(linear_var x, bound_side side, const delta_number& value, bound_reason why);
  answer check();
  const std::vector<bound_reason>& conflict() const { return conflict_; }

  // Who is told what follows for a variable from the bounds of the others in one row.
  class listener {
   public:
    listener() = default;
    listener(const listener&) = delete;
    listener& operator=(const listener&) = delete;
    virtual ~listener() = default;
    // Whether the bound is news; it is explained then.
    virtual bool is_news(linear_var x, bound_side side, const delta_number& value) = 0;
    virtual void learn(std::span<const bound_reason> why) = 0;
  };
  // Bounds of x are of interest to the listener.
  void watch(linear_var x);
  // After a feasible check: tells what follows in the rows that changed since the last time.
  void imply_bounds(listener& out);

  void open_level() { level_starts_.push_back(undo_.size()); }
  void back_to_level(int level);

  // ---- After a feasible check.

  int size() const { return static_cast<int>(vars_.size()); }
  const delta_number& value(linear_var x) const { return vars_[at(x)].value; }
  bool has_bounds(linear_var x) const { return vars_[at(x)].lower.present || vars_[at(x)].upper.present; }

  // Does every solution give the sum the value that it has now? If so, adds the reasons. If not, the values may have
  // changed to ones that also satisfy everything, and in which the sum mostly has another value.
  enum class forced : unsigned char { no, yes, exhausted };
  forced is_forced(std::span<const summand> sum, std::vector<bound_reason>& why);

  // Moves variables that are free to move to other values, so that fewer are equal by accident.
  void scatter();

  std::size_t pivots() const { return pivots_; }

 private:
  struct bound {
    delta_number value;
    bound_reason why{};
    bool present = false;
  };
  struct column_entry {
    std::int32_t row;
    std::int32_t place;
  };
  struct variable {
    delta_number value;
    bound lower;
    bound upper;
    std::int32_t row = -1;  // the row that expresses it, if it is basic
    std::vector<column_entry> column;
  };
  struct row_entry {
    linear_var var;
    std::int32_t place;  // in the column of the variable
    whole coefficient;
  };
  // The sum of all entries is 0. The coefficients are integers without a common factor, and that of the basic variable
  // is -scale, below 0.
  struct row {
    linear_var basic;
    whole scale;
    std::vector<row_entry> entries;
  };
  struct bound_change {
    linear_var var;
    bound_side side;
    bound before;
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }
  bool is_basic(linear_var x) const { return vars_[at(x)].row >= 0; }
  bool is_free(linear_var x) const { return !has_bounds(x); }
  bool is_fixed(linear_var x) const;
  bool below(linear_var x) const { return vars_[at(x)].lower.present && vars_[at(x)].value < vars_[at(x)].lower.value; }
  bool above(linear_var x) const { return vars_[at(x)].upper.present && vars_[at(x)].upper.value < vars_[at(x)].value; }
  bool can_move(linear_var x, int direction) const;

  void add_entry(std::int32_t r, linear_var x, whole coefficient);
  void remove_entry(std::int32_t r, std::int32_t place);
  void eliminate(linear_var x, std::int32_t target, std::int32_t source);
  void reduce(row& r);
  void pivot(linear_var leaving, linear_var entering);
  void move(linear_var x, const delta_number& by);  // x is not basic
  void suspect(linear_var x);
  linear_var next_violated();
  linear_var choose_entering(const row& r, int direction) const;
  void explain_row(const row& r, int direction);
  void pivot_and_set(linear_var leaving, linear_var entering, const delta_number& target);
  const whole& coefficient_in(const row& r, linear_var x) const;
  exact rate_of(const column_entry& c) const;  // of the basic variable of the row, as the one of the column grows

  // What is out of bounds, added up, as a function of one variable that is not basic: how it falls at first, and where
  // it falls less.
  struct breakpoint {
    delta_number distance;
    linear_var basic;
    bool at_upper;
    exact change;
  };
  // The least and the greatest value of a row, by the bounds of its variables.
  struct row_end {
    delta_number value;
    std::size_t without = 0;  // variables without the bound
    linear_var last_without = -1;
  };
  void touch_row(std::int32_t r);
  void touch_rows(linear_var x);
  void imply_bounds_in(const row& r, listener& out);
  void add_to_end(row_end& end, const row_entry& e, int direction) const;
  void imply(const row& r, const row_entry& e, int direction, const row_end& end, listener& out);

  answer reduce_violations();
  void add_up_violations();
  static bool steeper(const std::pair<linear_var, exact>& a, const std::pair<linear_var, exact>& b);
  void explain_violations();
  bool step_down(linear_var x, const exact& slope, bool stalled);

  void express(std::span<const summand> sum);  // over variables that are not basic, into expression_
  std::optional<delta_number> room(linear_var x, int direction, linear_var* blocking) const;
  delta_number step_within(const std::optional<delta_number>& room);
  forced cannot_move(std::span<const summand> sum, int direction, std::vector<bound_reason>& why);
  void note(const delta_number& value) { broken_ = broken_ || !value.is_known(); }

  budget& work_;
  bool broken_ = false;  // some number is beyond its limit
  std::vector<variable> vars_;
  std::vector<row> rows_;
  std::vector<std::int32_t> place_in_row_;  // scratch of add_row, by variable: place + 1
  std::vector<linear_var> suspects_;        // heap of basic variables that may be out of bounds, least first
  std::vector<std::uint8_t> is_suspect_;
  std::vector<bound_reason> conflict_;
  std::vector<bound_change> undo_;
  std::vector<std::size_t> level_starts_;
  std::vector<std::pair<linear_var, exact>> expression_;
  std::vector<std::uint8_t> is_watched_;  // by variable
  bool watching_ = false;
  std::vector<std::int32_t> touched_rows_;
  std::vector<std::uint8_t> is_touched_;
  std::vector<bound_reason> reasons_;
  std::vector<linear_var> violated_;
  std::vector<breakpoint> breakpoints_;
  std::vector<exact> dense_;
  std::uint32_t random_ = 1;
  std::size_t pivots_ = 0;
};

}  // namespace vetro::smt

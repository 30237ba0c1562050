// Linear arithmetic behind one door: sums of unknowns with bounds on them, decided by the differences alone where
// nothing else occurs, and by the tableau otherwise.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "number/budget.h"
#include "number/linear_form.h"
#include "smt_solver/src/difference_graph.h"
#include "smt_solver/src/hash_index.h"
#include "smt_solver/src/simplex.h"

namespace vetro::smt {

using linear_terms = std::vector<std::pair<atom_id, exact>>;

// A form divided by what its coefficients have in common, with a positive first coefficient and without the constant:
// all multiples and shifts of a form share it. form = scale * terms + constant.
struct primitive_form {
  linear_terms terms;
  exact scale;
  exact constant;
};
primitive_form primitive(const linear_form& form);

class linear_arithmetic {
 public:
  using sum_id = std::int32_t;
  enum class answer : unsigned char { feasible, conflict, exhausted };

  explicit linear_arithmetic(budget& work) : tableau_(work), graph_(work) {}

  // The sum of a primitive form; the same one for the same terms. At any time.
  sum_id sum(const linear_terms& terms);
  // Every sum is of the form x or x - y so far.
  bool only_differences() const { return only_differences_; }
  // Once, before the first bound. With the graph, no other sums than differences may follow.
  void start(bool with_graph);

  bool assert_bound(sum_id s, bound_side side, const delta_number& value, bound_reason why);
  answer check();
  const std::vector<bound_reason>& conflict() const { return *conflict_; }
  // Bounds that follow for sums, as simplex.h has it, by its variables; nothing where differences suffice.
  void watch(sum_id s);
  void imply_bounds(simplex::listener& out);
  bool implies_bounds() const { return !with_graph_; }
  linear_var variable_of_sum(sum_id s) const { return in_tableau_[at(s)]; }
  void open_level();
  void back_to_level(int level);

  // ---- After a feasible check.

  const linear_terms& terms(sum_id s) const { return terms_[at(s)]; }
  delta_number value(sum_id s) const;
  // Before the places are asked for.
  void find_places();
  // Gives sums that are not forced to be equal different places, as far as that costs nothing. True when places
  // changed.
  bool spread();
  // Sums that are forced to be equal have one place.
  struct place {
    std::int32_t component;
    delta_number value;
    bool operator==(const place&) const = default;
  };
  place place_of(sum_id s) const;
  place place_of_number(const exact& value) const;
  // Does every solution give the form the value 0? If so, adds the reasons. The form has the value 0 now.
  simplex::forced is_forced_to_zero(const linear_form& form, std::vector<bound_reason>& why);

  std::size_t pivots() const { return tableau_.pivots(); }

 private:
  struct difference {
    int x;
    int y;
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }
  void make(sum_id s);
  int variable_of(atom_id unknown);
  difference difference_of(const linear_terms& terms);

  simplex tableau_;
  difference_graph graph_;
  bool started_ = false;
  bool with_graph_ = false;
  bool only_differences_ = true;
  std::vector<linear_terms> terms_;       // by sum
  std::vector<linear_var> in_tableau_;    // by sum
  std::vector<difference> in_graph_;      // by sum
  std::vector<int> variable_of_unknown_;  // in the engine
  hash_index index_;
  const std::vector<bound_reason>* conflict_ = nullptr;
  bool unchecked_ = false;  // bounds were asserted since the last feasible check
};

}  // namespace vetro::smt

// Differences: constraints x - y <= c over the rationals, which come and go with the levels of the search.
//
// A constraint is an edge; a potential that no edge contradicts is a solution, and there is one as long as no circle of
// edges sums up to less than 0. A new edge repairs the potential from its end onwards, nearest first, and meets its own
// start again exactly when it closes such a circle. The potential stays when edges are taken back. Circles that sum up
// to 0 are what forces differences: two variables have a fixed difference when they lie on one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "number/budget.h"
#include "smt_solver/src/delta_number.h"
#include "smt_solver/src/simplex.h"

namespace vetro::smt {

class difference_graph {
 public:
  explicit difference_graph(budget& work) : work_(work) {}

  int add_variable();
  int size() const { return static_cast<int>(potential_.size()); }

  // x - y <= bound. False: contradiction, with conflict() filled; the constraint is not there then.
  bool assert_at_most(int x, int y, const delta_number& bound, bound_reason why);
  const std::vector<bound_reason>& conflict() const { return conflict_; }
  bool is_known() const { return !broken_; }

  void open_level() { level_starts_.push_back(edges_.size()); }
  void back_to_level(int level);

  const delta_number& value(int x) const { return potential_[at(x)]; }

  // Two variables with the same number have a forced difference, the present one; others can be moved apart. The
  // numbers are for the constraints at the time of the call.
  void find_components();
  int component(int x) const { return component_[at(x)]; }
  // Why two variables of one component have their difference.
  void explain_forced(int x, int y, std::vector<bound_reason>& why);

 private:
  struct edge {  // value(to) <= value(from) + length
    int from;
    int to;
    delta_number length;
    bound_reason why;
  };
  struct candidate {
    delta_number change;  // below 0
    int variable;
  };

  static std::size_t at(int i) { return static_cast<std::size_t>(i); }
  bool repair(int new_edge);
  void relax(int variable, int by_edge, const delta_number& target);
  bool is_tight(const edge& e) const { return potential_[at(e.to)] == potential_[at(e.from)] + e.length; }
  void remove_last_edge();
  void explain_path(int from, int to, std::vector<bound_reason>& why);

  budget& work_;
  bool broken_ = false;
  std::vector<edge> edges_;
  std::vector<std::vector<int>> leaving_;  // by variable, numbers of edges
  std::vector<delta_number> potential_;
  std::vector<std::size_t> level_starts_;
  std::vector<bound_reason> conflict_;

  // Of one repair.
  std::vector<delta_number> change_;  // by variable: how much its value has to fall; 0 when it may stay
  std::vector<int> reached_by_;       // the edge
  std::vector<std::uint8_t> settled_;
  std::vector<int> touched_;
  std::vector<candidate> queue_;
  std::vector<std::pair<int, delta_number>> before_;

  std::vector<int> component_;
};

}  // namespace vetro::smt

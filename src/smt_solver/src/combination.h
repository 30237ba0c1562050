// The two theories together: equality with functions, and linear arithmetic, over one set of nodes.
//
// A node with a linear meaning (a variable of the arithmetic, a linear term, a number) is shared. Equations that the
// congruence closure finds between shared nodes go to the arithmetic at once. In the other direction the arithmetic is
// asked only where an equation could matter, when every atom has a value: for nodes whose applications would become
// congruent, and for the sides of disequations, and only if they have the same value in its present solution. Linear
// arithmetic is convex: what it does not force one by one it does not force together, so no case split is needed.
#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "number/linear_form.h"
#include "smt_solver/src/congruence.h"
#include "smt_solver/src/linear_arithmetic.h"
#include "smt_solver/src/search.h"

namespace vetro::smt {

class combination final : public theory, private simplex::listener {
 public:
  explicit combination(budget& work) : work_(work), equality_(work), arithmetic_(work) {}

  // ---- Building, before the search.

  congruence& nodes() { return equality_; }
  // The node's equations concern arithmetic; its value is the form over nodes. A node that is a variable of the
  // arithmetic stands for itself.
  void set_meaning(node n, linear_form form);
  bool has_meaning(node n) const { return at(n) < meanings_.size() && meanings_[at(n)].known; }
  // The literal says that the sum of a primitive form is at most the bound, or that it has the value.
  void add_at_most(literal l, const linear_terms& terms, const delta_number& bound);
  void add_equal(literal l, const linear_terms& terms, const exact& value);
  // The literal says that the nodes are equal: to the arithmetic too, if both have a meaning there.
  void connect_equation(literal l, node a, node b);
  // For each equation of sums that is open: atoms for its two bounds, which carry what follows from rows.
  void add_bounds_of_equations(search& into);
  // What atoms about one arithmetic variable say of each other, as clauses for the search.
  void add_order_clauses(search& into) const;
  // Everything has been added.
  void start();

  // ---- The theory.

  void open_level() override;
  void back_to_level(int level) override;
  theory_answer assert_literal(literal l) override;
  theory_answer propagate() override;
  theory_answer final_check() override;
  void explain(literal l, std::vector<literal>& premises) override;

  const linear_arithmetic& arithmetic() const { return arithmetic_; }
  // The value of a node with a meaning, in the present solution.
  delta_number value_of(node n) const;

 private:
  enum class atom_kind : unsigned char { none, at_most, equal };
  struct arithmetic_atom {
    atom_kind kind = atom_kind::none;
    linear_arithmetic::sum_id sum = -1;
    delta_number bound;
  };
  struct meaning {
    bool known = false;
    linear_arithmetic::sum_id sum = -1;  // of the primitive form; -1 for a number
    exact scale;
    linear_form form;
  };
  // Two nodes that are to be compared, or a linear atom that is false (with b the literal).
  struct question {
    node a;
    node b;
    literal why;
  };

  // An "at most" atom of one variable of the tableau.
  struct bound_atom {
    delta_number bound;
    int variable;
  };
  // Why a literal follows from bounds.
  struct implication {
    literal implied;
    std::size_t begin;  // of the reasons
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }
  bool simple_meanings() const;
  void watch_bounds();
  bool is_news(linear_var x, bound_side side, const delta_number& value) override;
  void learn(std::span<const bound_reason> why) override;
  void note(int variable);
  arithmetic_atom& atom_of(literal l);
  bool is_arithmetic(literal l) const {
    return at(variable_of(l)) < atoms_.size() && atoms_[at(variable_of(l))].kind != atom_kind::none;
  }
  bool assert_arithmetic(literal l, const arithmetic_atom& atom);
  bool assert_bound(linear_arithmetic::sum_id s, bound_side side, const delta_number& value, bound_reason why);
  bool assert_equal_values(node a, node b);
  bool is_covered(const congruence::shared_merge& m) const;
  linear_arithmetic::place place_of(node n) const;
  linear_form difference(node a, node b) const;
  void to_literals(std::span<const bound_reason> reasons, std::vector<literal>& literals);
  theory_answer refused_by_arithmetic();
  theory_answer refused_by_equality();

  // Which questions are collected: one of them, if there is any; those with the first argument of each value, and about
  // disequations; the rest.
  enum class which : std::uint8_t { one, with_first, among_others };
  void collect_questions(which asked);
  void ask_about_disequations();
  void ask_about_arguments(which asked);
  theory_answer settle_all();
  theory_answer settle(const question& q);

  budget& work_;
  congruence equality_;
  linear_arithmetic arithmetic_;
  std::vector<meaning> meanings_;       // by node
  std::vector<arithmetic_atom> atoms_;  // by variable of the search
  std::vector<literal> false_equations_;
  std::vector<std::vector<bound_atom>> bound_atoms_;  // by variable of the tableau, by bound
  std::vector<std::uint8_t> noted_;                   // by variable of the search: it has a value or is implied
  std::vector<std::int32_t> implication_of_;          // by variable of the search; -1: not from bounds
  std::vector<int> noted_order_;
  std::vector<implication> implications_;
  std::vector<bound_reason> implication_reasons_;
  literal news_ = -1;
  struct level_start {
    std::size_t false_equations;
    std::size_t noted;
    std::size_t implications;
  };
  std::vector<level_start> level_starts_;
  std::vector<question> questions_;
  std::vector<bound_reason> reasons_;
  std::vector<literal> premises_;
};

}  // namespace vetro::smt

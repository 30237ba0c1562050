// From a formula of the language to what the search works on: atoms of the theories, and clauses.
//
// Equal atoms share one variable, whatever they look like: all comparisons are brought to a bound on a primitive linear
// form. Connectives become clauses; a part inside gets a name that is defined only in the direction in which it is
// used.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "number/linear_form.h"
#include "smt_solver/src/combination.h"
#include "smt_solver/src/common_bounds.h"
#include "smt_solver/src/purify.h"
#include "smt_solver/src/search.h"
#include "smt_solver/src/smt_lang.h"

namespace vetro::smt {

class preprocessor {
 public:
  preprocessor(const smt_language& language, combination& theories, search& clauses, budget& work)
      : language_(language), theories_(theories), search_(clauses), work_(work), terms_(language, theories, work) {}

  // Puts the formula in. Yes or no when it is true or false without any search, open otherwise. Once.
  truth add(smt_prop formula);
  // Some number left what exact numbers hold, so that nothing may be concluded.
  bool beyond() const { return beyond_; }
  // After the search has found a model: the values in it of the names that are variables of the arithmetic.
  std::vector<std::pair<smt_term, delta_number>> values_of_names() const;

 private:
  enum class atom_kind : std::uint8_t { always, never, equal_nodes, at_most, equal_value };
  // A proposition that is not composed, in the form in which equal ones are recognised.
  struct atom {
    atom_kind kind = atom_kind::never;
    bool negated = false;
    node a = no_node;  // equal_nodes
    node b = no_node;
    std::vector<std::pair<atom_id, exact>> terms = {};  // the others
    delta_number bound = {};
  };
  struct known_atom {
    atom content;
    literal name = -1;  // given at the first use in a clause
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

  void find_reachable(smt_prop formula);
  atom read_atom(const smt_prop_row& row);
  atom read_equation(smt_term t1, smt_term t2);
  atom nodes_equal(node a, node b) const;
  std::int32_t keep(atom content);
  void evaluate();
  truth evaluate(const smt_prop_row& row) const;
  void connect_atoms();
  void connect(const known_atom& known);

  void assert_true(smt_prop p, bool positive);
  void gather(smt_prop p, bool positive, std::vector<literal>& clause);
  void gather_parts(smt_prop p, bool positive, std::vector<literal>& clause);
  literal use(smt_prop p, bool positive);
  literal use_atom(smt_prop p, bool positive);
  void define(smt_prop p, bool positive, literal name);

  struct signed_prop {
    smt_prop p;
    bool positive;
  };
  void learn_common_equations(smt_prop disjunction, bool positive);
  void learn_common_bounds(smt_prop disjunction, bool positive);
  bool add_constraint(const signed_prop& part, sum_case& to) const;
  void take_parts(signed_prop whole, bool of_disjunction, std::vector<signed_prop>& parts) const;
  literal name_of(known_atom& known);

  const smt_language& language_;
  combination& theories_;
  search& search_;
  budget& work_;
  bool beyond_ = false;
  purifier terms_;

  // By proposition.
  std::vector<std::int32_t> uses_;  // by others that are reached; 0 for what is not reached
  std::vector<truth> values_;       // what is true or false by itself
  std::vector<std::int32_t> atom_of_;
  std::vector<std::uint8_t> atom_negated_;
  std::vector<std::int32_t> names_;
  std::vector<std::uint8_t> done_;  // bits: asserted or defined in each direction

  std::vector<known_atom> atoms_;
  hash_index atom_index_;
};

}  // namespace vetro::smt

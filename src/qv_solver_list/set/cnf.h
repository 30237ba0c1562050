// Propositional formulas over numbered atoms, and their clauses.
#pragma once

#include <cstddef>
#include <vector>

#include "smt_solver/src/cdcl.h"

namespace vetro {

enum class sat_term_type : unsigned char {
  SAT_VAR = 0,
  SAT_NOT = 1,
  SAT_AND = 2,
  SAT_OR = 3,
  SAT_IMPLY = 4,
  SAT_IFF = 5
};
using enum sat_term_type;

// One node. Operands are positions in the formula.
struct sat_term {
  sat_term_type type;
  int left;   // SAT_VAR: the atom's id, from 1; SAT_NOT: the operand
  int right;  // the second operand of a binary connective
};

// A formula as its nodes, operands before their connective, left before right. The last node is the whole.
class sat_formula {
 public:
  int atom(int id) { return add(SAT_VAR, id, 0); }
  int negation(int operand) { return add(SAT_NOT, operand, 0); }
  int connective(sat_term_type type, int left, int right) { return add(type, left, right); }
  const std::vector<sat_term>& nodes() const { return nodes_; }

 private:
  int add(sat_term_type type, int left, int right) {
    nodes_.push_back({type, left, right});
    return static_cast<int>(nodes_.size()) - 1;
  }
  std::vector<sat_term> nodes_;
};

// A set of clauses over the variables 1 to var_count.
class CNF {
 public:
  explicit CNF(int atoms) : var_count_(atoms) {}

  int fresh_var() { return ++var_count_; }
  // Adds a clause without its repeated literals; one that holds a literal and its negation is always true and dropped.
  void add_clause(std::initializer_list<int> literals);

  int var_count() const { return var_count_; }
  int clause_count() const { return static_cast<int>(end_.size()); }
  literal_span clause(int i) const;  // in the order of adding

 private:
  int var_count_;
  std::vector<int> literals_;
  std::vector<std::size_t> end_;
};

// Clauses that are satisfiable exactly if the formula is: each connective gets a fresh variable that stands for it, and
// the whole is asserted.
CNF build_cnf(const sat_formula& formula, int atoms);

// The clauses as a problem for the clause-learning core, the newest first: the search meets the whole formula before
// its parts.
sat_data init_solver(const CNF& cnf);

}  // namespace vetro

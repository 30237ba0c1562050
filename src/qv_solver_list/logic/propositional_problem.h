// One propositional question in the making: formulas over numbered atoms.
#pragma once

#include <optional>

#include "qv_solver_list/set/cnf.h"
#include "term/term_numbers.h"

namespace vetro {

// Every step gives the position of its node, or nothing when a term is missing or the formula has grown beyond its
// limit.
class propositional_problem {
 public:
  using position = std::optional<int>;

  propositional_problem() = default;
  virtual ~propositional_problem() = default;
  propositional_problem(const propositional_problem&) = delete;
  propositional_problem& operator=(const propositional_problem&) = delete;

  position translate(term_ptr t);
  // And(And(a1, a2), ...); nothing for the empty list.
  position conjunction(term_span list);
  position negation(position operand) { return operand ? position(formula_.negation(*operand)) : std::nullopt; }
  position connective(sat_term_type type, position left, position right) {
    return left && right ? position(formula_.connective(type, *left, *right)) : std::nullopt;
  }

  bool mentions(term_ptr atom) { return atoms_.contains(atom); }
  bool is_full() const;

  // Whether the last formula that was made can be true.
  cdcl_result solve() const;

 protected:
  // What a term without connective stands for: an atom of its own.
  virtual position translate_atom(term_ptr t) { return own_atom(t); }
  position own_atom(term_ptr t) { return formula_.atom(atoms_.of(t) + 1); }

 private:
  sat_formula formula_;
  term_numbers atoms_;  // from 0 on; those of the formula from 1
};

}  // namespace vetro

// One propositional question in the making: formulas over numbered atoms.
#pragma once

#include <optional>
#include <unordered_map>

#include "qv_solver_list/set/cnf.h"
#include "term/compare.h"

namespace vetro {

// Terms as they are written: without what is recorded about implicit binders. Scopes are written, so that only terms
// with scopes have to be walked; their nodes may be shared, and each is walked once.
class writing {
 public:
  term_ptr of(term_ptr t);

 private:
  std::unordered_map<term_ptr, term_ptr> known_;
};

// Numbers the atoms of one question, from 1 in order of first occurrence. Two terms are one atom when they are equal up
// to bound names, scopes included. Terms that merely print alike are different atoms.
class atom_table {
 public:
  int id(term_ptr atom) {
    int& number = atom->has(fact_binding) ? by_meaning_[atom] : by_text_[writing_.of(atom)];
    number = number == 0 ? ++count_ : number;
    return number;
  }
  bool contains(term_ptr atom) {
    return atom->has(fact_binding) ? by_meaning_.count(atom) != 0 : by_text_.count(writing_.of(atom)) != 0;
  }
  int count() const { return count_; }

 private:
  int count_ = 0;
  writing writing_;
  std::unordered_map<term_ptr, int> by_text_;                                // of atoms that bind nothing
  std::unordered_map<term_ptr, int, alpha_hasher, alpha_equal> by_meaning_;  // of the others
};

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
  position own_atom(term_ptr t) { return formula_.atom(atoms_.id(t)); }

 private:
  sat_formula formula_;
  atom_table atoms_;
};

}  // namespace vetro

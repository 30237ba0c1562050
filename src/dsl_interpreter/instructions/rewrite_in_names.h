// Names for the variables of binders that rewrite_in opens: both sides of a step get the same one, and it means nothing
// in the rule, in the proof state or around the place.
#pragma once

#include <unordered_set>

#include "dsl_interpreter/instructions/rewrite_in_rule.h"
#include "qv_solver_list/solver.h"

namespace vetro {

class opened_names {
 public:
  // The free names of the rule and of the proof state are collected once.
  opened_names(const forall_equation_rule& rule, const solve_data& sdata);

  // The common name for the binders of two sides: the first one's own where the second has the same and it is not
  // taken, else a fresh one that occurs in none of the parts. Null where a fresh one is needed and `from` is no plain
  // name.
  term_ptr choose(term_ptr from, term_ptr to, term_span parts);

  // Binders in force, from the outside in.
  std::size_t count() const { return active_.size(); }
  term_ptr newest() const { return active_.back(); }
  void enter(term_ptr var) { active_.push_back(var->bare()); }
  void leave_to(std::size_t count) { active_.resize(count); }

 private:
  bool taken(term_ptr var) const;
  void add_free_names(term_ptr t);

  std::unordered_set<term_ptr> free_;
  term_list active_;
};

// t, a part that its binder binds, with the bound variable under another name; t itself where the names are the same.
term_ptr rewrite_in_alpha_rename_active_binder(term_ptr old_var, term_ptr new_var, term_ptr t);

}  // namespace vetro

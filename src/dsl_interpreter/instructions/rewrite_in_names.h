// Names for the variables of binders that rewrite_in opens: both sides of a step get the same one, and it means nothing
// in the rule, in the proof state or around the place.
#pragma once

#include <memory>
#include <unordered_set>
#include <utility>

#include "dsl_interpreter/instructions/rewrite_in_rule.h"
#include "qv_solver_list/solver.h"
#include "term/substitute/fresh.h"

namespace vetro {

class opened_names {
 public:
  // The free names of the rule and of the proof state, and the names that the two forms hold, are collected once.
  opened_names(const forall_equation_rule& rule, const solve_data& sdata, term_ptr from, term_ptr to);

  // The common name for the binders of two sides: the first one's own where the second has the same and it is not
  // taken, else a fresh one that occurs in none of the parts. Null where a fresh one is needed and `from` is no plain
  // name. The parts are parts of the two forms.
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
  name_collection written_;  // anywhere in the two forms
  term_list active_;
};

// A part of a form below opened binders. The common names are put in when the part is looked at as a whole: a long body
// below many binders is not rewritten for each of them.
class opened_part {
 public:
  opened_part(term_ptr t) : t_(t) {}  // NOLINT(google-explicit-constructor): a form without opened binders

  // With the names of the form. Its shape is that of the part.
  term_ptr written() const { return t_; }
  // With the common names.
  term_ptr term() const;
  // The same part with the common names put in.
  opened_part settled() const { return term(); }
  // Settled where the form has a new name for this variable, which the part binds again.
  opened_part settled_for(term_ptr var) const;

  opened_part part(term_ptr below) const { return {below, renamed_}; }
  // The body of a binder of old_var, which has the common name new_var.
  opened_part under(term_ptr old_var, term_ptr new_var, term_ptr body) const;

 private:
  struct renaming {
    term_ptr old_var;
    term_ptr new_var;
    std::shared_ptr<const renaming> outer;
  };
  opened_part(term_ptr t, std::shared_ptr<const renaming> renamed) : t_(t), renamed_(std::move(renamed)) {}

  term_ptr t_;
  std::shared_ptr<const renaming> renamed_;
};

}  // namespace vetro

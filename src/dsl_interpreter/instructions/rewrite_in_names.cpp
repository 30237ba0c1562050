// Choosing and putting in the names of opened binders.
#include "dsl_interpreter/instructions/rewrite_in_names.h"

#include <algorithm>
#include <string>

#include "term/state.h"
#include "term/substitute/fresh.h"
#include "term/substitute/instantiate.h"
#include "term/traverse.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

// The base name with the next number of the counter for copies of binders.
term_ptr make_fresh_limit_var_like(term_ptr base) {
  return mk_var(std::string(base->name()) + std::to_string(++state().binder_copy_counter));
}

}  // namespace

opened_names::opened_names(const forall_equation_rule& rule, const solve_data& sdata, term_ptr from, term_ptr to) {
  written_.add(from);
  written_.add(to);
  add_free_names(rule.lhs);
  add_free_names(rule.rhs);
  std::for_each(rule.conditions.begin(), rule.conditions.end(), [this](term_ptr t) { add_free_names(t); });
  free_.erase(rule.qvar->bare());
  std::for_each(sdata.assum.begin(), sdata.assum.end(), [this](term_ptr t) { add_free_names(t); });
  add_free_names(sdata.target);
}

void opened_names::add_free_names(term_ptr t) {
  if (t != nullptr) {
    const term_list names = plain_free_variables(t);
    free_.insert(names.begin(), names.end());
  }
}

bool opened_names::taken(term_ptr var) const {
  return free_.contains(var->bare()) || std::find(active_.begin(), active_.end(), var->bare()) != active_.end();
}

term_ptr opened_names::choose(term_ptr from, term_ptr to, term_span parts) {
  if (from->bare() == to->bare() && !taken(from)) {
    return from;
  }
  if (!is_var(from)) {
    return nullptr;
  }
  for (;;) {
    const term_ptr name = make_fresh_limit_var_like(from);
    const auto occurs = [name](term_ptr part) { return name_occurs(name->name(), part); };
    if (!taken(name) && !(written_.contains(name->name()) && std::any_of(parts.begin(), parts.end(), occurs))) {
      return name;
    }
  }
}

term_ptr opened_part::term() const {
  term_ptr t = t_;
  for (const renaming* r = renamed_.get(); r != nullptr && t != nullptr; r = r->outer.get()) {
    const auto is_old = [r](term_ptr node) { return node->bare() == r->old_var; };
    if (any_subterm(t, walk_children | walk_scope | walk_binders, is_old)) {
      t = instantiate_term(r->old_var, r->new_var, t);
    }
  }
  return t;
}

opened_part opened_part::settled_for(term_ptr var) const {
  for (const renaming* r = renamed_.get(); r != nullptr; r = r->outer.get()) {
    if (r->old_var == var->bare()) {
      return settled();
    }
  }
  return *this;
}

opened_part opened_part::under(term_ptr old_var, term_ptr new_var, term_ptr body) const {
  if (old_var->bare() == new_var->bare()) {
    return part(body);
  }
  return {body, std::make_shared<const renaming>(renaming{old_var->bare(), new_var->bare(), renamed_})};
}

}  // namespace vetro

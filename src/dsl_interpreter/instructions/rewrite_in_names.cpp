// Choosing and putting in the names of opened binders.
#include "dsl_interpreter/instructions/rewrite_in_names.h"

#include <algorithm>
#include <string>

#include "term/state.h"
#include "term/substitute.h"

namespace vetro {
namespace {

// The base name with the next number of the counter for copies of binders.
term_ptr make_fresh_limit_var_like(term_ptr base) {
  return mk_var(std::string(base->name()) + std::to_string(++state().binder_copy_counter));
}

}  // namespace

opened_names::opened_names(const forall_equation_rule& rule, const solve_data& sdata) {
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
    if (!taken(name) && std::none_of(parts.begin(), parts.end(), occurs)) {
      return name;
    }
  }
}

term_ptr rewrite_in_alpha_rename_active_binder(term_ptr old_var, term_ptr new_var, term_ptr t) {
  return old_var->bare() == new_var->bare() ? t : instantiate_term(old_var, new_var, t);
}

}  // namespace vetro

// Reading the entries of quantifiers.
#include "term/bound_variables.h"

#include <algorithm>

#include "term/free_variable.h"
#include "term/index_variables.h"
#include "term/substitute.h"
#include "term/term_split_combine.h"
#include "term/walk_tools.h"

namespace vetro {
bool is_proposition_entry(term_ptr entry) { return !term_is_var(entry); }

term_ptr entry_left_side(term_ptr entry) {
  if (is_predchain(entry)) {
    const bool has_operands = entry->right()->type() == TermList && !entry->right()->elements().empty();
    return has_operands ? entry->right()->elements()[0] : nullptr;
  }
  const auto view = pred_split(entry);
  return view ? view->left : nullptr;
}

term_list entry_right_sides(term_ptr entry) {
  if (is_predchain(entry)) {
    if (entry_left_side(entry) == nullptr) {
      return {};
    }
    const term_span operands = entry->right()->elements();
    return {operands.begin() + 1, operands.end()};
  }
  const auto view = pred_split(entry);
  return view ? term_list{view->right} : term_list{};
}

bool entry_binds_left_side(term_ptr entry) {
  const term_ptr left = entry_left_side(entry);
  return left != nullptr && left->name_mask() != 0 && (is_var(left) || !plain_free_variables(left).empty());
}

term_list entry_bound_variables(term_ptr entry) {
  if (!is_proposition_entry(entry)) {
    return {entry};
  }
  return plain_free_variables(entry_binds_left_side(entry) ? entry_left_side(entry) : entry);
}

bool occurs_free(term_ptr var, term_ptr t) { return is_var(var) && t != nullptr && free_occurrences(var, true).in(t); }

// ---- Free occurrences.

free_occurrences::free_occurrences(term_ptr var, bool in_scopes) : var_(var->bare()), in_scopes_(in_scopes) {}

bool free_occurrences::in(term_ptr t) {
  if ((var_->name_mask() & ~t->name_mask()) != 0 || t->size() < var_->size()) {
    return false;
  }
  if (t->size() < worth_remembering) {
    return in_node(t);
  }
  const auto found = known_.find(t);
  if (found != known_.end()) {
    return found->second;
  }
  const bool answer = in_node(t);
  known_.emplace(t, answer);
  return answer;
}

bool free_occurrences::in_any(term_span list) {
  return std::any_of(list.begin(), list.end(), [this](term_ptr t) { return t != nullptr && in(t); });
}

bool free_occurrences::in_node(term_ptr t) {
  if (t->bare() == var_) {
    return true;
  }
  const term_list& binders = t->binders();
  if (std::any_of(binders.begin(), binders.end(), [this](term_ptr b) { return b->bare() == var_; })) {
    return stands_for_itself(var_, t);
  }
  if (in_scopes_ && t->scope() != nullptr && in(t->scope())) {
    return true;
  }
  return t->type() == Quant || t->type() == Lambda ? in_binding(t) : in_any(t->children());
}

bool free_occurrences::bound_by(term_ptr entry) {
  if (!is_proposition_entry(entry)) {
    return entry->bare() == var_;
  }
  return in(entry_binds_left_side(entry) ? entry_left_side(entry) : entry);
}

bool free_occurrences::beside(term_ptr entry) {
  return (var_->name_mask() & ~entry->name_mask()) == 0 && is_proposition_entry(entry) &&
         entry_binds_left_side(entry) && in_any(entry_right_sides(entry));
}

// The set of an entry belongs to the surroundings; what the entry binds is bound in all that follows it.
bool free_occurrences::in_binding(term_ptr t) {
  for (term_ptr entry : t->vars()) {
    if ((var_->name_mask() & ~entry->name_mask()) != 0) {
      continue;
    }
    if (beside(entry)) {
      return true;
    }
    if (bound_by(entry)) {
      return false;
    }
  }
  return in(t->body()) || (t->type() == Lambda && t->condition() != nullptr && in(t->condition()));
}

}  // namespace vetro

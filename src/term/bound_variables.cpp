// Reading the entries of quantifiers.
#include "term/bound_variables.h"

#include <algorithm>

#include "term/compare.h"
#include "term/free_variable.h"
#include "term/substitute.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

bool contains_pure(term_span list, term_ptr t) {
  return std::any_of(list.begin(), list.end(), [t](term_ptr element) { return term_eqb_pure(element, t); });
}

bool free_in(term_ptr var, term_ptr t);

bool free_in_any(term_ptr var, term_span list) {
  return std::any_of(list.begin(), list.end(), [var](term_ptr t) { return t != nullptr && free_in(var, t); });
}

// The set of an entry belongs to the surroundings; what the entry binds is bound in all that follows it.
bool free_in_quant(term_ptr var, term_ptr t) {
  for (term_ptr entry : t->vars()) {
    if (is_proposition_entry(entry) && free_in_any(var, entry_right_sides(entry))) {
      return true;
    }
    if (contains_pure(entry_bound_variables(entry), var)) {
      return false;
    }
  }
  return free_in(var, t->body());
}

bool free_in(term_ptr var, term_ptr t) {
  if ((t->name_mask() & name_bit(var->name())) == 0 || contains_pure(t->binders(), var)) {
    return false;
  }
  if (t->scope() != nullptr && free_in(var, t->scope())) {
    return true;
  }
  switch (t->type()) {
    case Var:
      return t->name() == var->name();
    case Quant:
      return free_in_quant(var, t);
    case Lambda:
      return !contains_pure(t->vars(), var) && free_in_any(var, t->children().first(2));
    default:
      return free_in_any(var, t->children());
  }
}

}  // namespace

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
  term_ptr left = entry_left_side(entry);
  return left != nullptr && !plain_free_variables(left).empty();
}

term_list entry_bound_variables(term_ptr entry) {
  if (!is_proposition_entry(entry)) {
    return {entry};
  }
  return plain_free_variables(entry_binds_left_side(entry) ? entry_left_side(entry) : entry);
}

bool occurs_free(term_ptr var, term_ptr t) { return is_var(var) && t != nullptr && free_in(var, t); }

}  // namespace vetro

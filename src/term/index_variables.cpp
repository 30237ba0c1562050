// Reading the index part of a big operator.
#include "term/index_variables.h"

#include <algorithm>

#include "term/substitute.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

bool contains_bare(term_span list, term_ptr var) {
  return std::any_of(list.begin(), list.end(), [var](term_ptr t) { return t->bare() == var->bare(); });
}

bool names_index_on_the_left(pred_type pred) {
  return pred == Eq || pred == IdentEq || pred == Belong || pred == Subset || pred == Divides;
}

// Finds the indices among the variables that the operator binds; the others of the index part come from outside.
class index_part {
 public:
  explicit index_part(const term_list& binders) : binders_(binders) {}

  term_list indices_of(term_ptr part) const {
    if (is_predchain(part)) {
      return indices_of_chain(part);
    }
    if (const auto relation = pred_split(part)) {
      return indices_of_relation(*relation);
    }
    const auto connected = composed_prop_split(part);
    if (!connected) {
      return bound(plain_free_variables(part));
    }
    if (connected->connect != And || connected->t2 == nullptr) {
      return {};
    }
    term_list indices = indices_of(connected->t1);
    const term_list more = indices_of(connected->t2);
    indices.insert(indices.end(), more.begin(), more.end());
    return indices;
  }

 private:
  term_list bound(term_list vars) const {
    std::erase_if(vars, [this](term_ptr var) {
      return std::none_of(binders_.begin(), binders_.end(), [var](term_ptr b) { return b->bare() == var->bare(); });
    });
    return vars;
  }

  term_list indices_of_relation(const prop& relation) const {
    const term_list left = plain_free_variables(relation.left);
    if (!left.empty() && names_index_on_the_left(relation.pred)) {
      return bound(left);
    }
    const term_list bound_left = bound(left);
    const term_list bound_right = bound(plain_free_variables(relation.right));
    if (bound_left.empty()) {
      return bound_right;
    }
    return bound_right.empty() ? bound_left : term_list{};
  }

  term_list indices_of_chain(term_ptr chain) const {
    if (chain->right()->type() != TermList) {
      return {};
    }
    const term_span operands = chain->right()->elements();
    for (std::size_t i = 0; i < operands.size(); ++i) {
      const term_list vars = bound(plain_free_variables(operands[i]));
      if (!vars.empty()) {
        return i == 0 ? term_list{} : vars;
      }
    }
    return {};
  }

  const term_list& binders_;
};

}  // namespace

std::optional<term_list> big_operator_indices(term_ptr t) {
  // Two arguments without an upper bound, three with one; the index part is the first.
  if (!is_apply(t) || !is_apply(t->left())) {
    return std::nullopt;
  }
  term_ptr first = t->left();
  if (is_apply(first->left())) {
    first = first->left();
  }
  if (first->left()->type() != Oper || !is_big_operator(first->left()->oper())) {
    return std::nullopt;
  }
  return index_part(t->binders()).indices_of(first->right());
}

bool stands_for_itself(term_ptr binder, term_ptr t) {
  const std::optional<term_list> indices = is_var(binder) ? big_operator_indices(t) : std::nullopt;
  return indices.has_value() && !contains_bare(*indices, binder);
}

term_list bound_here(term_ptr t) {
  term_list bound = t->binders();
  if (bound.empty()) {
    return bound;
  }
  if (const std::optional<term_list> indices = big_operator_indices(t); indices.has_value()) {
    const auto stays = [&](term_ptr binder) { return is_var(binder) && !contains_bare(*indices, binder); };
    bound.erase(std::remove_if(bound.begin(), bound.end(), stays), bound.end());
  }
  return bound;
}

}  // namespace vetro

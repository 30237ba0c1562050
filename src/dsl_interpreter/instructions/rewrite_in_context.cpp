// Views of limits, sums and set descriptions for rewrite_in.
#include "dsl_interpreter/instructions/rewrite_in_context.h"

#include <algorithm>
#include <utility>

#include "lib/application.h"
#include "term/bound_variables.h"
#include "term/index_variables.h"
#include "term/term_split_combine.h"
#include "term/variables/views.h"

namespace vetro {
namespace {

bool is_plain(term_ptr t) { return is_var(t) && !t->has_meta(); }

// True when the node binds this variable and no other.
bool binds_only(term_ptr var, term_ptr t) {
  const term_list bound = bound_here(t);
  return bound.size() == 1 && bound.front()->bare() == var->bare();
}

// Operators and predicates below which nothing is rewritten.
struct kind_range {
  int first;
  int last;
};
constexpr kind_range closed_kinds[] = {
    {SetDesc, SetDesc},
    {ValDeri, ValDeri},
    {D, PD},
    {EvalBar, Bar},
    {VecGrad, Nabla},
    {Dom, Dom},
    {BigSum, RightLittleO},
    {RadiusOfConvergence, RadiusOfConvergence},
    {TendsToWithoutIndex, RightAsymEquiv},
    {Defined, Defined},
};

bool is_closed_kind(int head) {
  return std::any_of(std::begin(closed_kinds), std::end(closed_kinds),
                     [head](const kind_range& range) { return range.first <= head && head <= range.last; });
}

// Equal functions have equal derivatives, but an equation between values says nothing about the derivative of one:
// f''(a) is a function's value, (a^2)' is not a matter of the value of a.
bool differentiates_expression(const application& app) {
  const int head = app.head_number();
  if ((head != SingleDeri && (head < NthDeri || FunDeri < head)) || app.count == 0) {
    return false;
  }
  const term_ptr operand = app.args[0];
  if (!is_apply(operand)) {
    return !is_plain(operand);
  }
  const application inner = application_of(operand);
  return inner.head_number() != SingleDeri || inner.count != 1 || differentiates_expression(inner);
}

}  // namespace

std::optional<limit_context> limit_context_of(term_ptr t) {
  const auto view = limit_of(t);
  if (!view || view->kind != limit_kind::plain || (view->of_sequence && view->side != approach_side::both)) {
    return std::nullopt;
  }
  return limit_context{view->oper, view->var, view->point, view->body};
}

std::optional<sum_context> sum_context_of(term_ptr t) {
  const auto view = sum_of(t);
  const auto sides = view && view->oper == BigSumSup ? pred_split(view->index_part) : std::nullopt;
  if (!sides || sides->pred != Eq || view->index_part->has_meta()) {
    return std::nullopt;
  }
  sum_context sum{.var = sides->left, .lower = sides->right, .upper = view->upper, .body = view->body};
  const auto is_index = [](term_ptr side, term_ptr other) { return is_plain(side) && !occurs_free(side, other); };
  if (!is_index(sum.var, sum.lower)) {
    std::swap(sum.var, sum.lower);
  }
  const bool has_index = is_index(sum.var, sum.lower) && !occurs_free(sum.var, sum.upper) && binds_only(sum.var, t);
  return has_index ? std::optional(sum) : std::nullopt;
}

std::optional<set_context> set_context_of(term_ptr t) {
  const auto view = set_description_of(t);
  const term_list bound = view ? bound_here(t) : term_list{};
  if (bound.size() != 1 || !is_plain(bound.front())) {
    return std::nullopt;
  }
  return set_context{bound.front(), view->element, {view->conditions.begin(), view->conditions.end()}};
}

bool is_sum_operator_term(term_ptr t) {
  const int head = application_of(t).head_number();
  return head == BigSum || head == BigSumSup;
}

bool is_setdesc_operator_term(term_ptr t) { return application_of(t).head_number() == SetDesc; }

bool is_closed_to_rewriting(term_ptr t) {
  if (t->type() != Apply) {
    return !t->binders().empty();
  }
  const application app = application_of(t);
  if (!t->binders().empty() || is_closed_kind(app.head_number()) || differentiates_expression(app)) {
    return true;
  }
  if (!t->has(fact_ellipsis)) {
    return false;
  }
  term_ptr head = t;
  while (head->type() == Apply) {
    head = head->left();
  }
  return head->type() == Oper;
}

}  // namespace vetro

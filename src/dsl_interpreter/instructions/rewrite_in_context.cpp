// Views of limits, sums and set descriptions for rewrite_in.
#include "dsl_interpreter/instructions/rewrite_in_context.h"

#include <algorithm>
#include <utility>

#include "lib/application.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/variables/views.h"

namespace vetro {
namespace {

bool is_plain(term_ptr t) { return is_var(t) && !t->has_meta(); }

// True when the node binds this variable and no other.
bool binds_only(term_ptr var, term_ptr t) {
  const binding b(t);
  return b.indices().size() == 1 && b.binds(var) && !b.guards_any();
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
  if (!view) {
    return std::nullopt;
  }
  const binding b(t);
  if (b.indices().size() != 1 || !is_var(b.indices().front())) {
    return std::nullopt;
  }
  return set_context{b.indices().front(), view->element, {view->conditions.begin(), view->conditions.end()}};
}

bool is_sum_operator_term(term_ptr t) {
  const int head = application_of(t).head_number();
  return head == BigSum || head == BigSumSup;
}

bool is_setdesc_operator_term(term_ptr t) { return application_of(t).head_number() == SetDesc; }

bool is_closed_to_rewriting(term_ptr t) {
  if (t->type() != Apply) {
    return false;
  }
  if (is_closed_kind(t->head()) || protects(t)) {
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

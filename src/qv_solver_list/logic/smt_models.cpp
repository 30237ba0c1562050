// What the kernel accepts as a solution may hold two names equal by chance where their functions differ: a solution
// beside it, as near as one likes, has them apart. So only a comparison that is missed by a distance counts.
#include "qv_solver_list/logic/smt_models.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "term/kinds.h"
#include "term/relation.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

using smt::delta_number;

// More than enough for the questions about one goal, which ask for signs of a few kinds.
constexpr std::size_t most_models = 8;

// Larger sides are left to the solver.
constexpr std::uint32_t largest_side = 64;

bool is_literal(term_ptr t) { return is_constant(t, Integer) && !t->has_meta(); }

bool is_linear(term_ptr t) {
  if (t->has_meta() || t->size() > largest_side) {
    return false;
  }
  if (t->type() == Var || is_literal(t)) {
    return true;
  }
  const auto view = composed_term_split(t);
  if (!view || t->left()->has_meta() || (view->t2 == nullptr && view->oper != Neg)) {
    return false;
  }
  if (view->t2 == nullptr) {
    return is_linear(view->t1);
  }
  const bool sum = view->oper == Plus || view->oper == Minus;
  const bool multiple = view->oper == Mult && (is_literal(view->t1) || is_literal(view->t2));
  return (sum || multiple) && is_linear(view->t1) && is_linear(view->t2);
}

// The value of a linear term whose parts are all real numbers.
class evaluation {
 public:
  evaluation(value_kinds& kinds, const smt_models::values& of_names) : kinds_(kinds), of_names_(of_names) {}

  std::optional<delta_number> of(term_ptr t) {
    if (kinds_.of(t) != value_kind::real) {
      return std::nullopt;
    }
    if (t->type() == Const) {
      return delta_number{exact(t->integer()), exact(0)};
    }
    if (t->type() == Var) {
      const auto found = of_names_.find(t->name());
      return found == of_names_.end() ? std::nullopt : std::optional(found->second);
    }
    const auto view = composed_term_split(t);
    const auto left = of(view->t1);
    const auto right = view->t2 == nullptr || !left ? std::nullopt : of(view->t2);
    if (!left || (view->t2 != nullptr && !right)) {
      return std::nullopt;
    }
    switch (view->oper) {
      case Neg:
        return *left * exact(-1);
      case Plus:
        return *left + *right;
      case Minus:
        return *left - *right;
      default:
        return is_literal(view->t1) ? *right * left->real : *left * right->real;
    }
  }

 private:
  value_kinds& kinds_;
  const smt_models::values& of_names_;
};

bool is_missed(pred_type pred, int sign_of_difference) {
  return pred == Gt || pred == Ge ? sign_of_difference < 0 : sign_of_difference > 0;
}

}  // namespace

bool is_linear_comparison(term_ptr target) {
  const auto view = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  const bool order = view && (view->pred == Gt || view->pred == Ge || view->pred == Lt || view->pred == Le);
  return order && !target->left()->has_meta() && is_linear(view->left) && is_linear(view->right);
}

bool smt_models::refute(term_span assumptions, term_ptr target) {
  if (models_.empty() || !is_linear_comparison(target)) {
    return false;
  }
  const auto view = pred_split(target);
  return std::any_of(models_.begin(), models_.end(), [&](model& m) {
    if (!std::ranges::equal(m.assumptions, assumptions)) {
      return false;
    }
    evaluation value(m.kinds, m.of_names);
    const auto left = value.of(view->left);
    const auto right = left ? value.of(view->right) : std::nullopt;
    const auto difference = right ? std::optional(*left - *right) : std::nullopt;
    return difference && difference->is_known() && is_missed(view->pred, difference->sign());
  });
}

void smt_models::keep(term_span assumptions, value_kinds kinds, values of_names) {
  if (models_.size() == most_models) {
    models_.pop_back();
  }
  models_.push_front({term_list(assumptions.begin(), assumptions.end()), std::move(kinds), std::move(of_names)});
}

}  // namespace vetro

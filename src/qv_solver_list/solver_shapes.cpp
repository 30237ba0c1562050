// One row per solver: its title, and a question to the goal's shape.
#include "qv_solver_list/solver_shapes.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "lib/application.h"
#include "term/node_memo.h"
#include "term/relation.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// What the questions look at: the relation of the goal, and the heads of all applications in it.
class goal_shape {
 public:
  explicit goal_shape(term_ptr goal) {
    if (const auto view = atomic_prop_split(goal); view && view->t2 != nullptr) {
      pred_ = view->pred;
      atomic_ = true;
    } else if (goal->type() == Apply) {
      head_ = application_of(goal).head_number();
    }
    visit(goal);
  }

  bool equation() const { return atomic_ && pred_ == Eq; }
  bool comparison() const { return atomic_ && is_order_relation(pred_); }
  bool order() const { return comparison() && pred_ != Eq && pred_ != Neq; }
  bool is(pred_type pred) const { return (atomic_ && pred_ == pred) || head_ == pred; }
  bool between(pred_type first, pred_type last) const {
    const int head = atomic_ ? pred_ : head_;
    return head >= first && head <= last;
  }
  // Whether an operator from first to last stands anywhere in the goal.
  bool holds(int first, int last) const {
    return std::any_of(heads_.begin(), heads_.end(), [&](int head) { return head >= first && head <= last; });
  }
  bool holds(int head) const { return heads_.contains(head); }
  bool names() const { return names_; }
  bool applies_name() const { return applies_name_; }

 private:
  void visit(term_ptr t) {
    if (t == nullptr || !seen_.insert(t)) {
      return;
    }
    if (t->type() == Oper) {
      heads_.insert(t->oper());
    }
    names_ = names_ || t->type() == Var;
    applies_name_ = applies_name_ || (t->type() == Apply && t->left()->type() == Var);
    for (term_ptr child : t->children()) {
      visit(child);
    }
  }

  node_set seen_;
  std::unordered_set<int> heads_;
  pred_type pred_{};
  int head_ = -1;
  bool atomic_ = false;
  bool names_ = false;
  bool applies_name_ = false;
};

struct shape_row {
  solver_id id;
  std::string_view title;
  bool (*recognises)(const goal_shape& goal);  // null for a solver that takes any proposition
};

using shape = const goal_shape&;
bool holds_root(shape g) { return g.holds(Sqrt, Cbrt) || g.holds(Power); }
bool holds_derivative(shape g) { return g.holds(SingleDeri, PD); }
bool holds_limit(shape g) { return g.holds(SeqLim, RightLimInf) || g.between(TendsToWithoutIndex, RightTendsTo); }

constexpr auto rows = std::to_array<shape_row>({
    {solver_id::eqb, "EqbSolver", nullptr},
    {solver_id::reflexivity, "Reflexivity", nullptr},
    {solver_id::context_poly_rat, "ContextPolyRatSolver", [](shape g) { return g.comparison(); }},
    {solver_id::func_apply, "FunctionApplySolver", [](shape g) { return g.comparison() && g.applies_name(); }},
    {solver_id::deriv, "DerivSolver", [](shape g) { return g.equation() && holds_derivative(g); }},
    {solver_id::continuous_func, "ContinuousFuncSolver",
     [](shape g) { return g.between(ContinuousFunc, ContinuousFuncAt); }},
    {solver_id::integrable_func, "IntegrableFuncSolver", [](shape g) { return g.is(IntegrableFuncOn); }},
    {solver_id::const_type, "ConstTypeSolver", [](shape g) { return g.is(Belong) && !g.names(); }},
    {solver_id::domain_type, "domains and types", [](shape g) { return g.is(Belong) && g.names(); }},
    {solver_id::integral, "IntegralSolver", [](shape g) { return g.holds(IndefInt); }},
    {solver_id::eval_bar, "EvalBarSolver", [](shape g) { return g.equation() && g.holds(EvalBar); }},
    {solver_id::rootfrac, "RootFracSolver", [](shape g) { return g.comparison() && holds_root(g) && g.holds(Div); }},
    {solver_id::numeric_calc, "numbers", [](shape g) { return g.comparison() && !g.names(); }},
    {solver_id::limit_calc, "LimitCalcSolver", holds_limit},
    {solver_id::root_power, "RootPowerSolver", [](shape g) { return g.equation() && holds_root(g); }},
    {solver_id::poly_rat, "PolyRatSolver", [](shape g) { return g.equation() || g.is(Le) || g.is(Ge); }},
    {solver_id::sat, "propositional logic", nullptr},
    {solver_id::interval, "IntervalSolver", [](shape g) { return g.comparison(); }},
    {solver_id::squeeze, "SqueezeSolver", [](shape g) { return g.order(); }},
    {solver_id::sgn, "SgnSolver", [](shape g) { return g.comparison() && !g.equation(); }},
    {solver_id::smt_lra, "SmtLraSolver", [](shape g) { return g.comparison(); }},
    {solver_id::sgn_pure, "SgnPureSolver", nullptr},
});

consteval bool rows_stand_at_their_ids() {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (static_cast<std::size_t>(rows[i].id) != i) {
      return false;
    }
  }
  return true;
}
static_assert(rows_stand_at_their_ids());

}  // namespace

std::string_view solver_title(solver_id id) { return rows[static_cast<std::size_t>(id)].title; }

std::vector<std::string_view> solvers_for_shape(term_ptr goal) {
  std::vector<std::string_view> titles;
  if (goal != nullptr) {
    const goal_shape shape_of_goal(goal);
    for (const shape_row& row : rows) {
      if (row.recognises != nullptr && row.recognises(shape_of_goal)) {
        titles.push_back(row.title);
      }
    }
  }
  return titles;
}

}  // namespace vetro

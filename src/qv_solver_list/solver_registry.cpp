// Adding a solver is its file, its declaration and its row here.
#include "qv_solver_list/solver_registry.h"

#include <algorithm>
#include <array>

#include "qv_solver_list/solvers.h"

namespace vetro {
namespace {

constexpr std::array decision_solvers = std::to_array<solver_row>({
    {solver_id::eqb, "EqbSolver", solver_eqb},                                       // 0
    {solver_id::reflexivity, "Reflexivity", solver_reflexivity},                     // 1
    {solver_id::context_poly_rat, "ContextPolyRatSolver", solver_context_poly_rat},  // 2
    {solver_id::func_apply, "FunctionApplySolver", solver_func_apply_eqb},           // 3
    {solver_id::deriv, "DerivSolver", solver_deriv_eqb},                             // 4
    {solver_id::continuous_func, "ContinuousFuncSolver", solver_continuous_func},    // 5
    {solver_id::integrable_func, "IntegrableFuncSolver", solver_integrable_func},    // 6
    {solver_id::const_type, "ConstTypeSolver", solver_const_type},                   // 7
    {solver_id::domain_type, "", solver_domain_type},                                // 8
    {solver_id::integral, "IntegralSolver", solver_integral},                        // 9
    {solver_id::eval_bar, "EvalBarSolver", solver_eval_bar},                         // 10
    {solver_id::rootfrac, "RootFracSolver", solver_rootfrac},                        // 11
    {solver_id::numeric_calc, "", solver_numeric_calc},                              // 12
    {solver_id::limit_calc, "LimitCalcSolver", solver_limit_calc},                   // 13
    {solver_id::root_power, "RootPowerSolver", solver_root_power},                   // 14
    {solver_id::poly_rat, "PolyRatSolver", solver_poly_rat_eqb},                     // 15
    {solver_id::sat, "", solver_sat},                                                // 16
    {solver_id::interval, "IntervalSolver", solver_interval},                        // 17
    {solver_id::squeeze, "SqueezeSolver", solver_squeeze},                           // 18
    {solver_id::sgn, "SgnSolver", solver_sgn},                                       // 19
    {solver_id::smt_lra, "SmtLraSolver", solver_smt_lra},                            // 20
    {solver_id::sgn_pure, "SgnPureSolver", solver_sgn_pure},                         // 21
});

consteval bool rows_stand_at_their_ids() {
  for (std::size_t i = 0; i < decision_solvers.size(); ++i) {
    if (static_cast<std::size_t>(decision_solvers[i].id) != i) {
      return false;
    }
  }
  return decision_solvers.size() >= battery_size;
}
static_assert(rows_stand_at_their_ids());

constexpr std::array<solver_func_t, 3> one_step_solvers_traditional = {{
    solver_or_split,            // 0
    solver_bwd_saturation_set,  // 1
    solver_shape_simpl,         // 2
}};

}  // namespace

std::span<const solver_row> solver_registry() { return decision_solvers; }

std::span<const solver_func_t> one_step_solvers() { return one_step_solvers_traditional; }

}  // namespace vetro

// The handlers stand in the order of dsl_type.
#include "dsl_interpreter/dsl_instruction_table.h"

#include <array>
#include <cstddef>

namespace vetro {
namespace {

struct handler_row {
  dsl_type type;
  instruction_handler execute;
};

constexpr std::array<handler_row, dsl_type_count> handlers = {{
    {GET_PROP_INST, execute_get_prop},
    {EXISTS_INST, execute_exists},
    {DESTRUCT_AND_INST, execute_destruct_and},
    {REWRITE_INST, execute_rewrite},
    {REWRITE_IN_INST, execute_rewrite_in},
    {APPLY_INST, execute_apply},
    {ASSERT_INST, execute_assert},
    {CASE_ANALYSIS_INST, execute_case_analysis},
    {OR_INTRO_INST, execute_or_intro},
    {USE_CONDITION_INST, execute_use_condition},
    {GET_EXISTS_INST, execute_get_exists},
    {GET_FORALL_INST, execute_get_forall},
    {GET_CONDITION_INST, execute_get_condition},
    {AUTO_REPLACE_INST, execute_autoreplace},
    {NOT_NORMALIZE_INST, execute_not_normalize},
    {AUTO_SOLVE_INST, execute_solver},
    {SOLVER_INST, nullptr},
}};

consteval bool rows_cover_all_types() {
  for (std::size_t i = 0; i < handlers.size(); ++i) {
    if (handlers[i].type != i) {
      return false;
    }
  }
  return true;
}
static_assert(rows_cover_all_types());

}  // namespace

instruction_handler instruction_handler_of(dsl_type type) { return handlers[type].execute; }

}  // namespace vetro

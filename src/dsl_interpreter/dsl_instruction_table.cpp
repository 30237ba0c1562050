// The rows stand in the order of dsl_type.
#include "dsl_interpreter/dsl_instruction_table.h"

#include <array>
#include <cstddef>

namespace vetro {
namespace {

template <class Content, std::size_t Index = 0>
consteval dsl_type type_of() {
  if constexpr (std::is_same_v<Content, std::variant_alternative_t<Index, dsl_content>>) {
    return static_cast<dsl_type>(Index);
  } else {
    return type_of<Content, Index + 1>();
  }
}

template <class Content>
consteval instruction_row row(instruction_handler execute) {
  return {
      type_of<Content>(),
      [](std::string& out, const dsl_instruction& inst) { trace_header(out, *std::get_if<Content>(&inst.content)); },
      [](trace_lines& out, const dsl_instruction& inst) { trace_fields(out, *std::get_if<Content>(&inst.content)); },
      execute};
}

constexpr std::array<instruction_row, dsl_type_count> instruction_rows = {{
    row<dsl_get_prop>(execute_get_prop),
    row<dsl_exists>(execute_exists),
    row<dsl_destruct_and>(execute_destruct_and),
    row<dsl_rewrite>(execute_rewrite),
    row<dsl_rewrite_in>(execute_rewrite_in),
    row<dsl_apply>(execute_apply),
    row<dsl_assert>(execute_assert),
    row<dsl_case_analysis>(execute_case_analysis),
    row<dsl_or_intro>(execute_or_intro),
    row<dsl_use_condition>(execute_use_condition),
    row<dsl_get_exists>(execute_get_exists),
    row<dsl_get_forall>(execute_get_forall),
    row<dsl_get_condition>(execute_get_condition),
    row<dsl_auto_replace>(nullptr),
    row<dsl_not_normalize>(nullptr),
    row<dsl_auto_solve>(execute_solver),
    {SOLVER_INST, nullptr, nullptr, nullptr},
}};

consteval bool rows_cover_all_types() {
  for (std::size_t i = 0; i < instruction_rows.size(); ++i) {
    if (instruction_rows[i].type != i) {
      return false;
    }
  }
  return true;
}
static_assert(rows_cover_all_types());
static_assert(std::variant_size_v<dsl_content> == SOLVER_INST, "every instruction with a syntax has a content");

}  // namespace

const instruction_row& instruction_row_of(dsl_type type) { return instruction_rows[type]; }

}  // namespace vetro

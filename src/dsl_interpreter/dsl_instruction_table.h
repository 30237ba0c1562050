// One row for each instruction type: how the trace shows it and what executes it. Adding an instruction is a file with
// its handler and a row.
#pragma once

#include <string>

#include "dsl_interpreter/dsl_execute.h"
#include "dsl_interpreter/dsl_trace_instruction.h"

namespace vetro {

using instruction_handler = dsl_result (*)(dsl_execute_data& data);

struct instruction_row {
  dsl_type type;
  void (*trace_header)(std::string& out, const dsl_instruction& inst);  // null: nothing behind the step id
  void (*trace_fields)(trace_lines& out, const dsl_instruction& inst);  // null: no fields
  instruction_handler execute;                                          // null: cannot be executed
};

const instruction_row& instruction_row_of(dsl_type type);

}  // namespace vetro

// What executes an instruction: one handler for each type. How it is written and shown stands in its form
// (lib/dsl_form.h).
#pragma once

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

using instruction_handler = dsl_result (*)(dsl_execute_data& data);

// Null for a type that cannot be executed.
instruction_handler instruction_handler_of(dsl_type type);

}  // namespace vetro

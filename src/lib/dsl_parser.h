// Reads a script file into instructions: one instruction a line, only proof blocks of assert span lines.
#pragma once

#include <optional>
#include <string>

#include "lib/dsl_ast.h"

namespace vetro {

// The first failure of a parse. line 0 with an empty text: none recorded (an empty script).
struct dsl_parser_error {
  int line = 0;
  std::string text;
};

// The instructions in file order. Nothing on failure and for a script without any instruction; then *error says where.
std::optional<dsl_instruction_list> parse_dsl_instructions(const std::string& filename, dsl_parser_error* error);

}  // namespace vetro

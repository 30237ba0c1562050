// Reads a script file into instructions: one instruction a line, only proof blocks of assert span lines.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include "lib/dsl_ast.h"

namespace vetro {

// Proof blocks may stand inside each other so deep.
inline constexpr int max_proof_block_depth = 16;

// The first failure of a parse. line 0 with an empty text: none recorded (an empty script).
struct dsl_parser_error {
  int line = 0;
  std::string text;
};

// The instructions in file order. Nothing on failure and for a script without any instruction; then *error says where.
std::optional<dsl_instruction_list> parse_dsl_instructions(const std::string& filename, dsl_parser_error* error);

// The same for a file that is open. It is read to its end, or to the first failure, and stays open.
std::optional<dsl_instruction_list> parse_dsl_instructions(std::FILE* file, dsl_parser_error* error);

}  // namespace vetro

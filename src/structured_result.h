// The result document: a JSON file with the outcome, every top-level step, the branches of a split and the admitted
// propositions. It is written once, after the script has run.
#pragma once

#include <string>

#include "program_context.h"

namespace vetro {

struct run_outcome {
  const ProgramContext& context;
  dsl_execute_data& data;
  const proof_gap_full& initial_gap;
  dsl_exe_code code;
};

// Removes the document of an earlier run, where there is one. Only a regular file is removed.
void discard_structured_result_file(const std::string& path);

// False, with a message on standard error, when the file cannot be opened or written or there is no memory
// for the document.
bool write_structured_result_file(const std::string& path, const run_outcome& outcome);

}  // namespace vetro

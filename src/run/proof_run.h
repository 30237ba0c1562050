// One run of a proof: reads the gap and the script, executes the script, and reports the outcome. The programs differ
// in where the library and the logs come from, and in what they make of the outcome.
#pragma once

#include <functional>

#include "run/program_context.h"

namespace vetro {

struct run_outcome {
  const ProgramContext& context;
  dsl_execute_data& data;
  const proof_gap_full& initial_gap;
  dsl_exe_code code;
};

struct run_environment {
  log_stream& err_log;
  // The library, asked for when the inputs are read; null ends the run.
  std::function<const thm_lib*()> library = {};
  // The open execute log, asked for when the library is there; null ends the run.
  std::function<log_stream*()> execute_log = {};
  // Gets the outcome when it is reported; false fails the run.
  std::function<bool(const run_outcome&)> observe = {};
};

inline constexpr int run_failed = -1;  // beside the values of dsl_exe_code

// The dsl_exe_code of the run, or run_failed, with messages on standard error and in the error log.
int run_proof(const ProgramContext& context, const run_environment& environment);

}  // namespace vetro

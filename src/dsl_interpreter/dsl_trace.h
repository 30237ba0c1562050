// The readable record of a run: every step in the execute log, one progress line for each step on standard output.
// Headers stand at the run's level of indentation, fields and results one level below.
#pragma once

#include <cstddef>
#include <string>

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

// "3" at top level, "2.3" in the block of step 2; cut at 128 bytes.
std::string dsl_trace_make_step_id(const dsl_execute_data& data, std::size_t index);

std::string dsl_trace_capture_instruction(const dsl_instruction& inst, bool internal);

// "== Step 2.3 | apply ==" on standard output, flushed.
void dsl_trace_print_instruction_progress(const std::string& step_id, const dsl_instruction& inst);

// The gap that a run begins with; nothing in a proof block.
void dsl_trace_print_initial_context(const dsl_execute_data& data);

void dsl_trace_print_header(const dsl_execute_data& data, const dsl_instruction& inst);
void dsl_trace_print_instruction_fields(const dsl_execute_data& data, const dsl_instruction& inst);
void dsl_trace_print_result(dsl_execute_data& data, const dsl_result& result, const proof_gap_full& gap_before,
                            bool goal_changed, bool assumption_changed);

// dsl_type_name under the name that the trace and the result document use.
const char* dsl_trace_type_name(int type);

const char* dsl_exe_code_name(int code);        // "success", "fail", "gap_split", "finish", else "unknown"
const char* dsl_redundant_name(int redundant);  // "ignore", "fail", "success", else "unknown"
const char* dsl_mode_name(int mode);            // "fast_mode", "debug_mode", "strong_check_mode", else "unknown"

}  // namespace vetro

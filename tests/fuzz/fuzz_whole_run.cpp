// A whole run on any bytes: a proof gap, a line "====", a script. A finished run leaves a finished gap, and any other a
// gap that is not.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "dsl_interpreter/dsl_execute.h"
#include "lib/dsl_parser.h"
#include "lib/proof_gap_parser.h"
#include "parser/parser_api.h"
#include "platform/large_stack.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"
#include "term/state.h"

namespace {

using namespace vetro;

using memory_file = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

memory_file open_text(std::string& text) { return {fmemopen(text.data(), text.size(), "r"), &std::fclose}; }

void run(std::string gap_text, std::string script_text) {
  const memory_file gap_file = open_text(gap_text);
  auto gap = read_proof_gap(gap_file.get());
  if (!gap) {
    return;
  }
  dsl_parser_error error;
  const memory_file script_file = open_text(script_text);
  const auto script = parse_dsl_instructions(script_file.get(), &error);
  if (!script) {
    return;
  }
  std::string errors;
  std::string trace;
  log_stream err_log(&errors);
  log_stream execute_log(&trace);
  const thm_lib library;
  dsl_execute_data data = dsl_execute_data_init(execute_log, err_log, &library, debug_mode, *gap);
  data.print_internal = true;
  const dsl_exe_code code = execute_instruction_list(data, *script);
  if ((code == exe_finish) != proof_gap_full_is_finished(*gap)) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string separator = "\n====\n";
  const std::size_t cut = text.find(separator);
  if (cut == std::string::npos || cut == 0 || cut + separator.size() == size) {
    return 0;
  }
  return run_on_large_stack([&] {
    reset_state();
    match_init(read_pattern);
    install_solvers(solver_registry());
    run(text.substr(0, cut), text.substr(cut + separator.size()));
    return 0;
  });
}

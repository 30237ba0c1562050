// The fixed sequence of a run, with the lines that a person who watches it sees.
#include "run/proof_run.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "lib/dsl_parser.h"
#include "lib/proof_gap_parser.h"
#include "platform/memory_end.h"
#include "term/print/pretty.h"
#include "term/report.h"

namespace vetro {
namespace {

// ---- Inputs.

// A text that stands in the place of a file.
struct close_file {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
std::unique_ptr<std::FILE, close_file> open_text(const std::string& text) {
  std::unique_ptr<std::FILE, close_file> file(fmemopen(const_cast<char*>(text.data()), text.size(), "r"));
  if (file == nullptr) {
    out_of_memory();
  }
  return file;
}

std::optional<proof_gap_full> gap_of(const ProgramContext& context) {
  if (!context.proof_gap_text.has_value()) {
    return parse_proof_gap(context.proof_gap_file);
  }
  const auto file = open_text(*context.proof_gap_text);
  return read_proof_gap(file.get());
}

std::optional<dsl_instruction_list> script_of(const ProgramContext& context, dsl_parser_error& error) {
  if (!context.dsl_text.has_value()) {
    return parse_dsl_instructions(context.dsl_file, &error);
  }
  const auto file = open_text(*context.dsl_text);
  return parse_dsl_instructions(file.get(), &error);
}

std::optional<proof_gap_full> read_proof_gap(const ProgramContext& context, log_stream& err_log) {
  print_progress("================start parse proof gap===================\n");
  std::optional<proof_gap_full> gap = gap_of(context);
  if (!gap.has_value()) {
    err_log.write("proof gap parse failed: " + context.proof_gap_file + "\n");
    err_log.flush();
    report_error("Error: Failed to parse proof gap file: %s\n", context.proof_gap_file.c_str());
  }
  return gap;
}

std::optional<dsl_instruction_list> read_script(const ProgramContext& context, log_stream& err_log) {
  print_progress("==================start parse dsl_file==================\n");
  dsl_parser_error error;
  std::optional<dsl_instruction_list> script = script_of(context, error);
  if (!script.has_value()) {
    std::string message = "dsl parse failed: " + context.dsl_file + "\n";
    if (error.line >= 1) {
      message += "line " + std::to_string(error.line) + (error.text.empty() ? "" : ": " + error.text) + "\n";
    }
    err_log.write(message);
    err_log.flush();
    report_error("Error: Failed to parse DSL instructions\n");
  }
  return script;
}

void print_inputs(const ProgramContext& context, const proof_gap_full& gap, const dsl_instruction_list& script) {
  if (!progress_is_shown()) {
    return;
  }
  std::string out = "==================start print proof gap=================\n";
  print_proof_gap_full(out, gap);
  if (context.print_internal) {
    out += "\n[INTERNAL]\n";
    print_proof_gap_full_internal(out, gap);
  }
  out += "\n==================start print dsl file=================\n";
  print_dsl_instruction_list(out, script, false);
  if (context.print_internal) {
    out += "[INTERNAL]\n";
    print_dsl_instruction_list(out, script, true);
  }
  print_progress(out);
}

// ---- Execution and report.

const char* outcome_line(dsl_exe_code code) {
  switch (code) {
    case exe_success:
      return "dsl interpret success\n";
    case exe_fail:
      return "dsl interpret failed\n";
    case exe_gap_split:
      return "dsl gap split\n";
    case exe_finish:
      return "dsl proof finished\n";
  }
  return "";
}

// No line ends stand around the formulas.
std::string pending_goal_notice(const proof_gap_full& gap) {
  std::string notice = "Proof is not finished. Remaining goal:\n";
  print_term(notice, gap.goal);
  notice += "[INTERNAL]\n";
  print_term_internal(notice, gap.goal);
  return notice;
}

std::string admitted_propositions(const dsl_execute_data& data) {
  std::string report;
  for (std::size_t i = 0; i < data.admits.size(); ++i) {
    report += i == 0 ? "\nAdmitted assertions (not proved):\n" : "";
    report += std::to_string(i + 1) + ". ";
    print_term(report, data.admits[i].proposition);
    report += "\n";
  }
  return report;
}

void report_outcome(const dsl_execute_data& data, dsl_exe_code code) {
  print_progress(outcome_line(code));
  if (proof_gap_full_is_pending(*data.cur_gap)) {
    const std::string notice = pending_goal_notice(*data.cur_gap);
    print_progress(notice);
    data.execute_log->write(notice);
  }
  data.execute_log->write(admitted_propositions(data));
}

int run_script(const ProgramContext& context, const run_environment& environment, dsl_execute_data data,
               const dsl_instruction_list& script) {
  data.print_internal = context.print_internal;
  data.keep_records = context.result_json_file.has_value();
  data.keep_admit_gaps = data.keep_records;
  const proof_gap_full initial_gap = *data.cur_gap;
  const dsl_exe_code code = execute_instruction_list(data, script);
  report_outcome(data, code);
  return environment.observe({context, data, initial_gap, code}) ? code : run_failed;
}

}  // namespace

int run_proof(const ProgramContext& context, const run_environment& environment) {
  std::optional<proof_gap_full> gap = read_proof_gap(context, environment.err_log);
  if (!gap.has_value()) {
    return run_failed;
  }
  print_progress("=======================parse finished===================\n");
  const std::optional<dsl_instruction_list> script = read_script(context, environment.err_log);
  if (!script.has_value()) {
    return run_failed;
  }
  print_inputs(context, *gap, *script);
  const thm_lib* library = environment.library();
  if (library == nullptr) {
    return run_failed;
  }
  log_stream* execute_log = environment.execute_log();
  if (execute_log == nullptr) {
    return run_failed;
  }
  print_progress("log File open success\n");
  return run_script(context, environment,
                    dsl_execute_data_init(*execute_log, environment.err_log, library, context.mode, *gap), *script);
}

}  // namespace vetro

// The program: command line, its files and logs around the run, and the exit status. Text in and out is UTF-8,
// which the C locale that the program stays in passes through byte by byte.
#include <fcntl.h>
#include <getopt.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "lib/log_stream.h"
#include "lib/thm_lib.h"
#include "parser/parser_api.h"
#include "platform/file_identity.h"
#include "platform/large_stack.h"
#include "qv_solver_list/solver_registry.h"
#include "run/proof_run.h"
#include "run/structured_result.h"
#include "term/pattern_match.h"
#include "term/report.h"

namespace vetro {
namespace {

// ---- Command line.

enum class command_line { bad_usage, config_failed, help, ready };

void print_usage(const char* program) {
  print_progress(std::string("Usage: ") + program +
                 " [OPTIONS] PROOF_GAP_FILE DSL_FILE\n"
                 "Options:\n"
                 "  -c, --config FILE    Specify configuration file\n"
                 "  -d, --debug          Print before/after proof gaps in execute_log\n"
                 "  -i, --print-internal Print internal format alongside standard output\n"
                 "  -j, --result-json FILE Write machine-readable execution result to FILE\n"
                 "  -h, --help           Display this help message\n");
}

command_line parse_options(int argc, char** argv, ProgramContext& context, const char*& config_path) {
  static constexpr option long_options[] = {
      {"config", required_argument, nullptr, 'c'},   {"debug", no_argument, nullptr, 'd'},
      {"print-internal", no_argument, nullptr, 'i'}, {"result-json", required_argument, nullptr, 'j'},
      {"help", no_argument, nullptr, 'h'},           {nullptr, 0, nullptr, 0},
  };
  for (int choice = 0; (choice = getopt_long(argc, argv, "c:dij:h", long_options, nullptr)) != -1;) {
    switch (choice) {
      case 'c':
        config_path = optarg;
        break;
      case 'd':
        context.mode = debug_mode;
        break;
      case 'i':
        context.print_internal = true;
        break;
      case 'j':
        context.result_json_file = optarg;
        break;
      case 'h':
        return command_line::help;
      default:
        return command_line::bad_usage;
    }
  }
  return command_line::ready;
}

command_line parse_command_line(int argc, char** argv, ProgramContext& context) {
  const char* program = argc > 0 ? argv[0] : "vetro";
  const char* config_path = nullptr;
  const command_line options = parse_options(argc, argv, context, config_path);
  if (options != command_line::ready) {
    print_usage(program);
    return options;
  }
  if (argc - optind != 2) {
    report_error("Error: Expected PROOF_GAP_FILE and DSL_FILE arguments\n");
    print_usage(program);
    return command_line::bad_usage;
  }
  context.proof_gap_file = argv[optind];
  context.dsl_file = argv[optind + 1];
  context.config_file = config_path == nullptr ? "" : config_path;
  return parse_config(config_path, context.config) ? command_line::ready : command_line::config_failed;
}

// ---- Files.

struct named_file {
  named_file(const char* role, const std::string& where) : purpose(role), path(where), identity(where) {}
  const char* purpose;
  std::string path;
  file_identity identity;
};

std::vector<named_file> input_files(const ProgramContext& context) {
  std::vector<named_file> files = {{"the configuration", context.config_file},
                                   {"the proof gap", context.proof_gap_file},
                                   {"the script", context.dsl_file}};
  const TheoremLibrary& libraries = context.config.theorem_library;
  files.push_back({"the theorem library", libraries.lib_index_file.value_or("")});
  for (const ExternalTheoremLibrary& external : libraries.external_libs) {
    files.push_back({"an external theorem library", external.path});
  }
  return files;
}

// False, with a message, when an output would overwrite an input or another output.
bool outputs_are_apart(const ProgramContext& context) {
  std::vector<named_file> files = input_files(context);
  const named_file outputs[] = {{"the error log", context.config.dsl_responses.err_log.value_or("")},
                                {"the execute log", context.config.dsl_responses.execute_log.value_or("")},
                                {"the result document", context.result_json_file.value_or("")}};
  for (const named_file& output : outputs) {
    for (const named_file& other : files) {
      if (output.identity.same_file(other.identity)) {
        report_text(std::string("Error: ") + other.purpose + " and " + output.purpose +
                    " are one file: " + output.path + "\n");
        return false;
      }
    }
    files.push_back(output);
  }
  return true;
}

// A run that ends early must not leave the document of an earlier one.
void discard_earlier_result(const ProgramContext& context) {
  if (!context.result_json_file.has_value()) {
    return;
  }
  const std::string& path = *context.result_json_file;
  const auto inputs = input_files(context);
  const file_identity document(path);
  if (std::none_of(inputs.begin(), inputs.end(),
                   [&](const named_file& input) { return input.identity.same_file(document); })) {
    discard_structured_result_file(path);
  }
}

// ---- Logs.

// One of the two logs, with the words for what went wrong.
struct log_purpose {
  const char* cannot_open;
  const char* not_configured;  // stands in place of the path
  const char* cannot_write;
};
constexpr log_purpose error_log_purpose = {"Error: Cannot open log file: %s\n",
                                           "no error log configured (DSL_ERROR_LOG in [DSL_RESPONSES])",
                                           "Error: Cannot write log file: %s\n"};
constexpr log_purpose execute_log_purpose = {"Error: Cannot open execute log file: %s\n",
                                             "no execute log configured (DSL_EXECUTE_LOG in [DSL_RESPONSES])",
                                             "Error: Cannot write execute log file: %s\n"};

void report_with_path(const char* format, const char* path) {
  std::string message = format;
  message.replace(message.find("%s"), 2, path);
  report_text(message);
}

bool open_log(log_stream& log, const config_text& path, const log_purpose& purpose) {
  if (path.has_value() && log.open(*path)) {
    return true;
  }
  report_with_path(purpose.cannot_open, path.has_value() ? path->c_str() : purpose.not_configured);
  return false;
}

// The code of a run, or a failure when its log lost something.
int close_log(log_stream& log, const config_text& path, const log_purpose& purpose, int code) {
  if (log.close()) {
    return code;
  }
  report_with_path(purpose.cannot_write, path->c_str());
  return run_failed;
}

// ---- The run.

std::unique_ptr<thm_lib> load_library(const FileConfig& config) {
  print_progress("thm_lib load ...\n");
  std::unique_ptr<thm_lib> library = thm_lib_load_from_config(config);
  if (library != nullptr) {
    print_progress("thm_lib load success\n");
    return library;
  }
  const config_text& path = config.theorem_library.lib_index_file;
  report_error(
      "thm_lib_file: %s load fail\n",
      path.has_value() ? path->c_str() : "no theorem library configured (THMEOREM_LIB_SET in [THEOREM_LIBRARY])");
  return nullptr;
}

int run_with_error_log(const ProgramContext& context, log_stream& err_log) {
  std::unique_ptr<thm_lib> library;
  log_stream execute_log;
  const config_text& path = context.config.dsl_responses.execute_log;
  bool opened = false;
  run_environment environment{.err_log = err_log};
  environment.library = [&] {
    library = load_library(context.config);
    return library.get();
  };
  environment.execute_log = [&]() -> log_stream* {
    opened = open_log(execute_log, path, execute_log_purpose);
    return opened ? &execute_log : nullptr;
  };
  environment.observe = [&](const run_outcome& outcome) {
    return !context.result_json_file.has_value() || write_structured_result_file(*context.result_json_file, outcome);
  };
  const int code = run_proof(context, environment);
  return opened ? close_log(execute_log, path, execute_log_purpose, code) : code;
}

// The dsl_exe_code of the run, or run_failed.
int execute_program(const ProgramContext& context) {
  if (!outputs_are_apart(context)) {
    return run_failed;
  }
  discard_earlier_result(context);
  log_stream err_log;
  const config_text& path = context.config.dsl_responses.err_log;
  if (!open_log(err_log, path, error_log_purpose)) {
    return run_failed;
  }
  const int code = run_with_error_log(context, err_log);
  return close_log(err_log, path, error_log_purpose, code);
}

int exit_status(int code) { return code == run_failed || code == exe_fail ? 1 : 0; }

int run_program(int argc, char** argv) {
  match_init(read_pattern);
  install_solvers(solver_registry());
  ProgramContext context;
  switch (parse_command_line(argc, argv, context)) {
    case command_line::help:
      return 0;
    case command_line::ready:
      return exit_status(execute_program(context));
    case command_line::config_failed:
      discard_earlier_result(context);
      return 1;
    default:
      return 1;
  }
}

// ---- Standard streams.

// A closed standard stream would give its number to the next file that is opened, and what is meant for standard output
// would end up in a log. A descriptor of the wrong direction makes every use an error instead.
void occupy_closed_standard_streams() {
  for (int descriptor = 0; descriptor <= 2; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF) {
      (void)open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
    }
  }
}

int status_of_standard_output(int status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
    return status;
  }
  report_error("Error: Cannot write to standard output\n");
  return 1;
}

int guarded_run(int argc, char** argv) {
  int status = 1;
  try {
    status = run_program(argc, argv);
  } catch (const std::bad_alloc&) {
    report_error("Error: Out of memory\n");
  }
  return status_of_standard_output(status);
}

}  // namespace
}  // namespace vetro

int main(int argc, char** argv) {
  vetro::occupy_closed_standard_streams();
  // A reader of standard output that goes away must not take the logs with it.
  std::signal(SIGPIPE, SIG_IGN);
  // Nor may a limit on the size of files: like a full disk it is an error of the one file that it meets.
  std::signal(SIGXFSZ, SIG_IGN);
  return vetro::run_on_large_stack([&] { return vetro::guarded_run(argc, argv); });
}

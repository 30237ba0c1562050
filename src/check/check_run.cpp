// The library is read, the proofs are run or read from events, and every result goes to all who show it.
#include "check/check_run.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

#include "check/build_reports.h"
#include "check/event_files.h"
#include "check/html_pages.h"
#include "check/json_object.h"
#include "check/output_file.h"
#include "check/person.h"
#include "check/pool.h"
#include "check/progress_bar.h"
#include "check/run_head.h"
#include "config/config_load.h"
#include "diagnostics/diagnostics.h"
#include "lib/log_stream.h"
#include "platform/large_stack.h"
#include "term/report.h"

namespace vetro {
namespace {

namespace fs = std::filesystem;

// ---- The library.

// The shipped library: where it is installed beside the program, or in the folder that the program was built in.
std::string shipped_library() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  const fs::path installed = program.parent_path().parent_path() / "share/vetro/library/analysis.txt";
  if (fs::exists(installed, error)) {
    return installed.string();
  }
  for (fs::path folder = program.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
    const fs::path built = folder / "examples/library/analysis.txt";
    if (fs::exists(built, error)) {
      return built.string();
    }
  }
  return {};
}

struct run_library {
  std::string path;
  std::unique_ptr<thm_lib> theorems;
  diagnostics said;
};

// Null theorems, with a message, when a library cannot be read.
run_library read_library(const check_options& options) {
  run_library library;
  FileConfig config;
  if (!options.config.empty()) {
    if (!parse_config(options.config.c_str(), config)) {
      return library;
    }
    library.path = config.theorem_library.lib_index_file.value_or("");
  } else {
    library.path = options.library.empty() ? shipped_library() : options.library;
    config.theorem_library.lib_index_file = library.path;
  }
  if (library.path.empty()) {
    report_error("vetro-check: no theorem library is found; --library FILE names one\n");
    return library;
  }
  run_on_large_stack([&] {
    const diagnostics_collection collection(library.said);
    library.theorems = thm_lib_load_from_config(config);
    return 0;
  });
  if (library.theorems == nullptr) {
    report_error("vetro-check: the theorem library %s cannot be read\n", library.path.c_str());
  }
  return library;
}

// ---- Events of the run itself.

std::string line_of(const json_object& object) {
  const json_text text(object.get() == nullptr ? nullptr : cJSON_PrintUnformatted(object.get()));
  return text == nullptr ? std::string() : std::string(text.get()) + "\n";
}

std::string summary_event(const person_report& counts, int status) {
  json_object object;
  object.word("event", "summary");
  std::size_t all = 0;
  for (const std::size_t count : counts.counts()) {
    all += count;
  }
  object.number("proofs", all);
  for (const outcome_row& row : outcome_rows) {
    object.number(row.name.data(), counts.counts()[static_cast<std::size_t>(row.value)]);
  }
  object.number("exit_status", status);
  return line_of(object);
}

// ---- Those who show results.

// NO_COLOR counts where it is set to anything.
bool wants_colour() {
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == '\0');
}

class result_display {
 public:
  explicit result_display(const check_options& options)
      : options_(options), person_({.colour = wants_colour(), .quiet = options.quiet, .explain = options.explain}) {}

  // False, with a message, when a file cannot be opened.
  bool open() {
    if ((!options_.junit.empty() && !junit_file_.open(options_.junit)) ||
        (!options_.sarif.empty() && !sarif_file_.open(options_.sarif))) {
      return false;
    }
    if ((!options_.html.empty() && !pages_.open(options_.html)) ||
        (!options_.logs.empty() && !make_folder(options_.logs))) {
      return false;
    }
    junit_file_.write(junit_.begin());
    sarif_file_.write(sarif_report::begin());
    return true;
  }

  void begin(const std::string& event) {
    if (options_.json) {
      print(event);
    }
  }

  // False when standard output takes no more.
  bool show(const std::string& events, const proof_report& report) {
    status_ = graver_status(status_, row_of(report.result).exit_status);
    if (report.has(row_of(diagnostic_code::log_lost).name)) {
      fail(exit_input_error);
    }
    const std::string text = person_.proof(report);
    if (isatty(STDOUT_FILENO) != 0 && !(options_.json ? events : text).empty()) {
      progress_.hide();
    }
    print(options_.json ? events : text);
    junit_file_.write(junit_.proof(report));
    sarif_file_.write(sarif_.proof(report));
    pages_.proof(report);
    ++seen_;
    const bool written = std::fflush(stdout) == 0;
    show_progress();
    return written;
  }

  progress_bar& progress() { return progress_; }
  void show_progress() { progress_.update(seen_, seen_ - person_.counts()[0]); }

  // The exit status.
  int end() {
    progress_.hide();
    print(options_.json ? summary_event(person_, status_) : person_.summary());
    junit_file_.write(junit_report::end());
    junit_file_.replace_beginning(junit_.begin());
    sarif_file_.write(sarif_report::end());
    bool written = junit_file_.finish();
    written = sarif_file_.finish() && written;
    written = pages_.finish() && written;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
      report_error("vetro-check: standard output cannot be written: %s\n", std::strerror(errno));
      written = false;
    }
    return written ? status_ : graver_status(status_, exit_input_error);
  }

  std::string summary_line() const { return summary_event(person_, status_); }
  void fail(int status) { status_ = graver_status(status_, status); }

 private:
  static void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

  const check_options& options_;
  person_report person_;
  junit_report junit_;
  sarif_report sarif_;
  html_pages pages_;
  output_file junit_file_;
  output_file sarif_file_;
  int status_ = 0;
  progress_bar progress_;
  std::size_t seen_ = 0;
};

// ---- The two kinds of run.

constexpr int interrupted_status = 130;  // as a shell says it of a program that SIGINT ended

int check_proofs(const check_options& options, result_display& display) {
  const run_library library = read_library(options);
  if (library.theorems == nullptr) {
    return exit_input_error;
  }
  for (const diagnostic& d : library.said.records) {
    report_text(library.path + ":" + std::to_string(d.place.line) + ":" + std::to_string(std::max(d.place.column, 1)) +
                ": " + std::string(severity_name(d.level)) + "[" + std::string(row_of(d.code).name) +
                "]: " + d.message + "\n");
  }
  const std::string head = run_head(options, library.path, *library.theorems);
  event_journal journal;
  task_source source(options);
  if (!options.resume.empty() && !journal.open(options.resume, head)) {
    return exit_input_error;
  }
  display.begin(head);
  const auto show = [&](const std::string& events) {
    event_reader reader;
    std::size_t begin = 0;
    for (std::size_t end = events.find('\n'); end != std::string::npos; end = events.find('\n', begin)) {
      reader.take(events.substr(begin, end - begin));
      begin = end + 1;
    }
    return display.show(events, reader.report());
  };
  // Proofs that the journal holds are taken from it, in step with the source.
  while (const auto earlier = journal.next_earlier()) {
    const auto task = source.next();
    if (!task.has_value() || task->number != earlier->number || task->id != earlier->id) {
      report_error("vetro-check: %s holds the events of another run\n", options.resume.c_str());
      return exit_input_error;
    }
    show(earlier->events);
  }
  if (!journal.begin_appending()) {
    return exit_input_error;
  }
  const bool with_pages = !options.html.empty();
  if (display.progress().may_show()) {
    if (const auto all = count_tasks(options)) {
      display.progress().expect(*all);
    }
  }
  const pool_settings settings{
      options.jobs,
      {.explain = options.explain || with_pages, .times = options.times, .pages = with_pages, .logs = options.logs},
      [&display] { display.show_progress(); }};
  bool journal_lost = false;
  const pool_end end = run_pool(
      settings, library.theorems.get(), [&source] { return source.next(); },
      [&](const finished_proof& proof) {
        journal_lost = !journal.append(proof.events);
        return show(proof.events) && !journal_lost;
      });
  display.progress().hide();
  if (end == pool_end::interrupted) {
    report_error("vetro-check: interrupted\n");
    return interrupted_status;
  }
  if (end == pool_end::stopped && !journal_lost && std::ferror(stdout) == 0) {
    report_error("vetro-check: no process can be started: %s\n", std::strerror(errno));
    return exit_fault;
  }
  if (journal_lost || !journal.append(display.summary_line())) {
    report_error("vetro-check: %s: not everything was written\n", options.resume.c_str());
    return exit_input_error;
  }
  return 0;
}

int merge_events(const check_options& options, result_display& display) {
  event_merge merge(options.proofs);
  if (!merge.open()) {
    return exit_input_error;
  }
  display.begin(head_of_whole(merge.head()));
  while (const auto proof = merge.next()) {
    if (!display.show(events_of(*proof), *proof)) {
      return exit_input_error;
    }
  }
  return merge.failed() ? exit_input_error : 0;
}

}  // namespace

int run_check(const check_options& options) {
  result_display display(options);
  if (!display.open()) {
    return exit_input_error;
  }
  const int status = options.merge ? merge_events(options, display) : check_proofs(options, display);
  if (status == interrupted_status) {
    display.end();
    return status;
  }
  display.fail(status);
  return display.end();
}

}  // namespace vetro

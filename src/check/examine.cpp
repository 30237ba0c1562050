// One run with a collector, and its records as a report.
#include "check/examine.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <new>

#include "diagnostics/diagnostics.h"
#include "dsl_interpreter/advice.h"
#include "lib/line_reader.h"
#include "platform/text_file.h"
#include "qv_solver_list/solver_shapes.h"
#include "run/proof_run.h"
#include "run/structured_result.h"
#include "term/print/mathml.h"
#include "term/print/pretty.h"
#include "term/state.h"

namespace vetro {
namespace {

using steady_clock = std::chrono::steady_clock;

// ---- The process between two proofs.

// Counters that show in the output start where they stood, and what was remembered is forgotten: the next proof finds
// the process as the first one did. Terms stay, because a term is the same whenever it is built.
class fresh_process {
 public:
  fresh_process()
      : fresh_(state().fresh_counter),
        placeholder_(state().placeholder_counter),
        binder_copy_(state().binder_copy_counter) {}
  ~fresh_process() {
    process_state& s = state();
    s.fresh_counter = fresh_;
    s.placeholder_counter = placeholder_;
    s.binder_copy_counter = binder_copy_;
    s.alpha_hashes = {};
    s.whole_parts = {};
    s.slots = {};
    s.store.set_call_limit(UINT64_MAX);
  }
  fresh_process(const fresh_process&) = delete;
  fresh_process& operator=(const fresh_process&) = delete;

 private:
  int fresh_;
  int placeholder_;
  int binder_copy_;
};

// ---- The end of memory.

bool memory_ran_out = false;

[[noreturn]] void note_end_of_memory() {
  memory_ran_out = true;
  throw std::bad_alloc();
}

// Notes an allocation that failed, also where a reader or a solver answers it by giving up alone.
class memory_watch {
 public:
  memory_watch() : before_(std::set_new_handler(note_end_of_memory)) { memory_ran_out = false; }
  ~memory_watch() { std::set_new_handler(before_); }
  memory_watch(const memory_watch&) = delete;
  memory_watch& operator=(const memory_watch&) = delete;

 private:
  std::new_handler before_;
};

// ---- Lines of files.

class source_lines {
 public:
  source_lines(const std::string& path, const std::optional<std::string>& text) : path_(path), text_(text) {}

  std::string line(int number) {
    if (lines_.empty()) {
      read();
    }
    const auto index = static_cast<std::size_t>(number) - 1;
    return number >= 1 && index < lines_.size() ? lines_[index] : std::string();
  }

 private:
  void read() {
    std::string line;
    if (text_.has_value()) {
      std::size_t begin = 0;
      for (std::size_t end = text_->find('\n'); begin < text_->size(); end = text_->find('\n', begin)) {
        end = std::min(end, text_->size());
        take(text_->substr(begin, end - begin));
        begin = end + 1;
      }
      return;
    }
    const text_file file = open_text_file(path_.c_str());
    for (int c = file == nullptr ? EOF : next_character(file.get()); c != EOF; c = next_character(file.get())) {
      if (c == '\n') {
        take(line);
        line.clear();
      } else {
        line.push_back(static_cast<char>(c));
      }
    }
    take(line);
  }
  void take(const std::string& line) { lines_.emplace_back(without_line_end(line)); }

  const std::string& path_;
  const std::optional<std::string>& text_;
  std::vector<std::string> lines_;
};

// ---- From records to plain data.

shown_formula shown(term_ptr t, bool as_mathml) {
  if (t == nullptr) {
    return {};
  }
  return {print_term_to_string(t), print_term_internal_to_string(t), as_mathml ? print_term_mathml(t) : std::string()};
}

std::vector<open_piece> shown_pieces(const term_list& pieces, bool as_mathml) {
  constexpr std::size_t most = 16;
  std::vector<open_piece> list;
  for (term_ptr t : pieces) {
    const auto titles = solvers_for_shape(t);
    list.push_back({shown(t, as_mathml), {titles.begin(), titles.end()}});
    if (list.size() == most) {
      break;
    }
  }
  return list;
}

class report_writer {
 public:
  report_writer(const proof_task& task, const diagnostics& d, bool as_mathml, proof_report& report)
      : task_(task),
        d_(d),
        as_mathml_(as_mathml),
        report_(report),
        gap_(task.gap, task.gap_text),
        script_(task.script, task.script_text) {}

  void write_diagnostics() {
    for (const diagnostic& record : d_.records) {
      report_.diagnostics.push_back(shown_diagnostic(record));
    }
  }

  void write_steps() {
    for (const executed_step& step : d_.executed) {
      report_.explained.push_back(shown_step(step));
    }
    std::stable_sort(report_.explained.begin(), report_.explained.end(),
                     [](const report_step& a, const report_step& b) { return a.line < b.line; });
  }

 private:
  report_diagnostic shown_diagnostic(const diagnostic& record) {
    report_diagnostic d;
    d.step = record.step;
    d.level = severity_name(record.level);
    d.code = row_of(record.code).name;
    d.message = record.message;
    d.line = record.place.line;
    d.column = record.place.column;
    d.length = record.place.length;
    if (record.place.file == source_file::gap) {
      d.file = task_.gap;
      d.source = gap_.line(d.line);
    } else if (record.place.file == source_file::script) {
      d.file = task_.script;
      d.source = script_.line(d.line);
    } else if (record.place.file == source_file::library) {
      d.file = task_.library;
    }
    count_characters(d);
    d.needed = shown(record.needed, as_mathml_);
    d.given = shown(record.given, as_mathml_);
    d.suggestion = record.suggestion;
    if (record.attempt >= 0) {
      const proof_attempt& attempt = d_.attempts[static_cast<std::size_t>(record.attempt)];
      d.solver = attempt.requested_solver;
      d.open = shown_pieces(attempt.open, as_mathml_);
      d.unfolded = shown_pieces(attempt.unfolded, as_mathml_);
      for (std::string_view solver : attempt.budget_ended) {
        if (std::find(d.budget_ended.begin(), d.budget_ended.end(), solver) == d.budget_ended.end()) {
          d.budget_ended.emplace_back(solver);
        }
      }
    }
    return d;
  }

  // Places are kept in bytes; a reader counts characters.
  static void count_characters(report_diagnostic& d) {
    const auto characters = [&](std::size_t from, std::size_t to) {
      const auto bytes = std::string_view(d.source).substr(std::min(from, d.source.size()), to - from);
      return static_cast<int>(std::count_if(bytes.begin(), bytes.end(),
                                            [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
    };
    if (d.column > 0) {
      const auto begin = static_cast<std::size_t>(d.column) - 1;
      d.length = characters(begin, begin + static_cast<std::size_t>(d.length));
      d.column = characters(0, begin) + 1;
    }
    // A huge line is shown by its beginning.
    constexpr std::size_t shown = 4'000;
    if (d.source.size() > shown) {
      std::size_t end = shown;
      while ((static_cast<unsigned char>(d.source[end]) & 0xC0U) == 0x80U) {
        --end;
      }
      d.source.resize(end);
    }
  }

  report_step shown_step(const executed_step& step) const {
    report_step shown_one;
    shown_one.step = step.id;
    shown_one.line = step.line;
    shown_one.instruction = step.instruction;
    shown_one.text = step.header;
    shown_one.result = step.result;
    shown_one.goal = shown(step.new_goal, as_mathml_);
    for (const executed_step::change& change : step.changed) {
      shown_one.hypotheses.push_back({change.number, shown(change.t, as_mathml_)});
    }
    for (std::size_t i = step.first_attempt; i < step.behind_attempts; ++i) {
      for (const closed_piece& piece : d_.attempts[i].closed) {
        shown_one.closed.push_back({shown(piece.piece, as_mathml_), piece.solver});
      }
    }
    shown_one.work = step.work;
    shown_one.microseconds = step.microseconds;
    return shown_one;
  }

  const proof_task& task_;
  const diagnostics& d_;
  bool as_mathml_;
  proof_report& report_;
  source_lines gap_;
  source_lines script_;
};

// ---- What vetro writes.

// The two logs and the result document of a proof, in a folder of their own, or logs that nobody reads.
class proof_logs {
 public:
  proof_logs(const std::string& folder, const proof_task& task) {
    if (folder.empty()) {
      return;
    }
    folder_ = folder + "/" + file_stem(task.number, task.id);
    std::error_code error;
    std::filesystem::create_directory(folder_, error);
    for (const std::string& path : {path_of_errors(), path_of_trace(), path_of_document()}) {
      discard_structured_result_file(path);
    }
    if (!errors.open(path_of_errors())) {
      lose(path_of_errors());
    }
  }

  log_stream* open_trace() {
    if (!folder_.empty() && !trace.open(path_of_trace())) {
      lose(path_of_trace());
    }
    return &trace;
  }
  bool wanted() const { return !folder_.empty(); }
  std::string path_of_document() const { return folder_ + "/result.json"; }
  void write_document(const run_outcome& run) {
    if (wanted() && !write_structured_result_file(path_of_document(), run)) {
      lose(path_of_document());
    }
  }

  // The files that were not written.
  std::vector<std::string> close() {
    if (wanted() && !errors.close()) {
      lose(path_of_errors());
    }
    if (wanted() && !trace.close()) {
      lose(path_of_trace());
    }
    return std::move(lost_);
  }

  log_stream errors;

 private:
  std::string path_of_errors() const { return folder_ + "/error.log"; }
  std::string path_of_trace() const { return folder_ + "/execute.log"; }
  void lose(const std::string& path) {
    if (std::find(lost_.begin(), lost_.end(), path) == lost_.end()) {
      lost_.push_back(path);
    }
  }

  std::string folder_;
  log_stream trace;
  std::vector<std::string> lost_;
};

// ---- The run.

proof_report empty_report(const proof_task& task) {
  proof_report report;
  report.number = task.number;
  report.id = task.id;
  report.gap = task.gap;
  report.script = task.script;
  return report;
}

// Codes that --strict does not count.
bool breaks_strictness(diagnostic_code code) {
  return code == diagnostic_code::rule_premise || code == diagnostic_code::goal_replaced ||
         code == diagnostic_code::denominator;
}

outcome outcome_of_run(const run_outcome& run) {
  switch (run.code) {
    case exe_fail:
      return outcome::failed;
    case exe_gap_split:
      return outcome::split;
    default:
      break;
  }
  if (!proof_gap_full_is_finished(*run.data.cur_gap)) {
    return outcome::open_goal;
  }
  return run.data.admits.empty() ? outcome::verified : outcome::admitted;
}

class examination {
 public:
  examination(const proof_task& task, library_shelf& libraries, const examine_settings& settings)
      : task_(task), libraries_(libraries), settings_(settings), report_(empty_report(task)) {}

  proof_report run() {
    const fresh_process process;
    const auto begun = steady_clock::now();
    const std::uint64_t calls = counted_work();
    if (task_.work != 0) {
      state().store.set_call_limit(state().store.calls() + task_.work);
    }
    try {
      const memory_watch watch;
      run_collecting();
    } catch (const std::bad_alloc&) {  // noted below
    }
    report_.work = counted_work() - calls;
    state().store.set_call_limit(UINT64_MAX);
    const auto time = std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - begun);
    report_.microseconds = static_cast<std::uint64_t>(time.count());
    report_.with_times = settings_.times;
    note_limits();
    note_strictness();
    report_writer writer(task_, collected_, settings_.pages, report_);
    writer.write_diagnostics();
    if (settings_.explain) {
      writer.write_steps();
    }
    return std::move(report_);
  }

 private:
  void run_collecting() {
    const diagnostics_collection collection(collected_);
    proof_logs logs(settings_.logs, task_);
    ProgramContext context;
    context.proof_gap_file = task_.gap;
    context.dsl_file = task_.script;
    context.proof_gap_text = task_.gap_text;
    context.dsl_text = task_.script_text;
    if (logs.wanted()) {
      context.result_json_file = logs.path_of_document();
    }
    run_environment environment{.err_log = logs.errors};
    environment.library = [this] { return library(); };
    environment.execute_log = [&logs] { return logs.open_trace(); };
    environment.observe = [&](const run_outcome& run) {
      logs.write_document(run);
      observe(run);
      return true;
    };
    if (run_proof(context, environment) == run_failed && !observed_) {
      report_.result = unreadable_ || has(diagnostic_code::file_unreadable) ? outcome::unreadable : outcome::unparsed;
    }
    for (const std::string& lost : logs.close()) {
      collected_.add({.code = diagnostic_code::log_lost, .message = lost + " cannot be written", .place = {}});
    }
  }

  const thm_lib* library() {
    const thm_lib* found = libraries_.find(task_.library);
    if (found == nullptr) {
      unreadable_ = true;
      collected_.add({.code = diagnostic_code::file_unreadable,
                      .message = "the theorem library " + task_.library + " cannot be read",
                      .place = {source_file::library, 0, 0, 0}});
    }
    return found;
  }

  void observe(const run_outcome& run) {
    observed_ = true;
    const proof_gap_full& gap = *run.data.cur_gap;
    report_.result = outcome_of_run(run);
    report_.finished = proof_gap_full_is_finished(gap);
    report_.steps = run.data.summary.steps.size();
    report_.admits = run.data.admits.size();
    report_.branches = run.data.split_gaps.size();
    if (!report_.finished) {
      report_.goal = shown(gap.goal, settings_.pages);
    }
    if (settings_.pages) {
      show_gap(run.initial_gap);
    }
    note_open_end(run);
    if (report_.finished && assumptions_contradict(run.data, run.initial_gap)) {
      collected_.add({.code = diagnostic_code::contradiction,
                      .level = severity::warning,
                      .message = "the assumptions contradict one another, so that everything follows from them",
                      .place = {source_file::gap, 0, 0, 0}});
    }
  }

  void show_gap(const proof_gap_full& gap) {
    for (int number = 1; number <= gap.assu_num(); ++number) {
      report_.assumptions.push_back(shown(gap.hypothesis(number), true));
    }
    report_.target = shown(gap.goal, true);
  }

  // The script has ended, and something is left.
  void note_open_end(const run_outcome& run) {
    const int last = run.data.inst == nullptr ? 0 : run.data.inst->number;
    const text_span place = run.data.inst == nullptr ? text_span() : run.data.inst->place;
    const source_span end = {source_file::script, last, place.column, place.length};
    if (report_.result == outcome::open_goal) {
      collected_.add({.code = diagnostic_code::open_goal,
                      .message = "the script ends here, and the goal is open",
                      .place = end,
                      .needed = run.data.cur_gap->goal});
    } else if (report_.result == outcome::split) {
      collected_.add({.code = diagnostic_code::gap_split,
                      .message = "the script ends with a case analysis into " +
                                 std::to_string(run.data.split_gaps.size()) +
                                 " branches, each of which needs a proof of its own",
                      .place = end});
    }
  }

  void note_limits() {
    const bool work_ended = task_.work != 0 && report_.work >= task_.work;
    if ((!memory_ran_out && !work_ended) || report_.finished) {
      return;
    }
    report_.result = outcome::limit;
    collected_.add(
        {.code = work_ended ? diagnostic_code::work_limit : diagnostic_code::memory_limit,
         .message = work_ended ? "the limit of counted work was met: " + std::to_string(task_.work) : "memory ran out",
         .place = {}});
  }

  void note_strictness() {
    if (task_.strict && (report_.result == outcome::verified || report_.result == outcome::admitted) &&
        (report_.admits > 0 || std::any_of(collected_.records.begin(), collected_.records.end(),
                                           [](const diagnostic& d) { return breaks_strictness(d.code); }))) {
      report_.result = outcome::not_strict;
    }
  }

  bool has(diagnostic_code code) const {
    return std::any_of(collected_.records.begin(), collected_.records.end(),
                       [code](const diagnostic& d) { return d.code == code; });
  }

  const proof_task& task_;
  library_shelf& libraries_;
  const examine_settings& settings_;
  proof_report report_;
  diagnostics collected_;
  bool observed_ = false;
  bool unreadable_ = false;
};

}  // namespace

const thm_lib* library_shelf::find(const std::string& path) {
  if (path.empty()) {
    return main_;
  }
  auto [place, is_new] = others_.try_emplace(path);
  if (is_new) {
    if (std::optional<thm_lib> loaded = thm_lib_load(path)) {
      place->second = std::make_unique<thm_lib>(std::move(*loaded));
    }
  }
  return place->second.get();
}

proof_report examine(const proof_task& task, library_shelf& libraries, const examine_settings& settings) {
  return examination(task, libraries, settings).run();
}

proof_report report_without_run(const proof_task& task, outcome result, const char* code, std::string message) {
  proof_report report = empty_report(task);
  report.result = result;
  report_diagnostic d;
  d.level = "error";
  d.code = code;
  d.message = std::move(message);
  d.file = task.problem_file.empty() ? task.script : task.problem_file;
  d.line = task.problem_line;
  report.diagnostics.push_back(std::move(d));
  return report;
}

}  // namespace vetro

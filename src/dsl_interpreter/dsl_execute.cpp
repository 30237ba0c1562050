// The loop over the instructions: announce a step, execute it, compare the gap before and after, record it.
#include "dsl_interpreter/dsl_execute.h"

#include <algorithm>
#include <chrono>

#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/dsl_instruction_table.h"
#include "dsl_interpreter/dsl_trace.h"
#include "dsl_interpreter/dsl_trace_instruction.h"
#include "term/compare.h"
#include "term/report.h"
#include "term/state.h"

namespace vetro {
namespace {

// Terms are unique, so that equal addresses need no walk.
bool same_formula(term_ptr a, term_ptr b) { return a == b || term_eqb(a, b); }

void begin_step(dsl_execute_data& data, const dsl_instruction& inst, bool first) {
  data.current_step_id = dsl_trace_make_step_id(data, data.summary.steps.size() + 1);
  data.inst = &inst;
  dsl_trace_print_instruction_progress(data.current_step_id, inst);
  if (!first) {
    data.execute_log->write("\n");
  }
  dsl_trace_print_header(data, inst);
  dsl_trace_print_instruction_fields(data, inst);
  data.execute_log->flush();
}

void compare_gaps(dsl_execution_step& step, const dsl_execute_data& data, const proof_gap_full& before) {
  const bool split = step.result_flag == exe_gap_split;
  step.goal_changed = split || goal_changed_between(before, *data.cur_gap);
  step.assumption_changed = assumption_changed_between(before, *data.cur_gap);
  step.split_gap_count = split ? data.split_gaps.size() : 0;
  step.effect_class = effect_class_for_step(step.result_flag, step.goal_changed);
}

std::string signature_of(const dsl_instruction& inst) {
  return instruction_signature_from_text(dsl_trace_capture_instruction(inst, true));
}

// A snapshot of the gap: the earlier one where that shows the same.
gap_snapshot snapshot(const proof_gap_full& gap, const gap_snapshot& earlier) {
  return earlier != nullptr && same_gap(*earlier, gap) ? earlier : std::make_shared<const proof_gap_full>(gap);
}

// The picture after a split is the first branch.
void keep_gaps(dsl_execution_step& step, const dsl_execute_data& data, const proof_gap_full& before) {
  const std::vector<dsl_execution_step>& steps = data.summary.steps;
  const bool split = step.result_flag == exe_gap_split && !data.split_gaps.empty();
  step.gap_before = snapshot(before, steps.empty() ? nullptr : steps.back().gap_after);
  step.gap_after = snapshot(split ? data.split_gaps.front() : *data.cur_gap, step.gap_before);
}

dsl_execution_step describe_step(dsl_execute_data& data, const dsl_result& result, const proof_gap_full& before) {
  dsl_execution_step step;
  step.step_index = static_cast<int>(data.summary.steps.size()) + 1;
  step.step_id = data.current_step_id;
  step.instruction_type = data.inst->type();
  step.result_flag = result.flag;
  step.redundant_flag = result.redundant_flag;
  compare_gaps(step, data, before);
  if (data.keep_records) {
    step.instruction = data.inst;
    step.repeated_input = !data.summary.signatures.insert(*data.inst);
    keep_gaps(step, data, before);
  }
  return step;
}

void summary_append_step(dsl_execution_summary& summary, dsl_execution_step step) {
  summary.repeated_input_count += step.repeated_input ? 1U : 0U;
  summary.final_code = step.result_flag;
  summary.steps.push_back(std::move(step));
}

// The record of a step for whoever collects diagnostics.
class step_record {
 public:
  step_record(const dsl_execute_data& data, const dsl_instruction& inst) {
    if (collecting_diagnostics == nullptr) {
      return;
    }
    step_.id = data.current_step_id;
    step_.line = inst.number;
    step_.instruction = dsl_type_name(inst.type());
    trace_print_header(step_.header, inst);
    step_.first_attempt = collecting_diagnostics->attempts.size();
    step_.work = counted_work();
    begun_ = std::chrono::steady_clock::now();
    collecting_diagnostics->open_step(data.current_step_id, inst.number);
  }
  ~step_record() {
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->close_step();
    }
  }
  step_record(const step_record&) = delete;
  step_record& operator=(const step_record&) = delete;

  void keep(const dsl_execution_step& step, const proof_gap_full& before, const proof_gap_full& after) {
    if (collecting_diagnostics == nullptr) {
      return;
    }
    const auto time = std::chrono::steady_clock::now() - begun_;
    step_.microseconds =
        static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(time).count());
    step_.work = counted_work() - step_.work;
    step_.result = dsl_exe_code_name(step.result_flag);
    step_.behind_attempts = collecting_diagnostics->attempts.size();
    if (step.goal_changed && proof_gap_full_is_pending(after)) {
      step_.new_goal = after.goal;
    }
    for (std::size_t i = 0; i < after.assum.size(); ++i) {
      if (i >= before.assum.size() || !same_formula(before.assum[i], after.assum[i])) {
        step_.changed.push_back({static_cast<int>(i) + 1, after.assum[i]});
      }
    }
    collecting_diagnostics->executed.push_back(std::move(step_));
  }

 private:
  executed_step step_;
  std::chrono::steady_clock::time_point begun_;
};

// Whoever collects diagnostics hears of what stands behind the end of the proof.
void note_rest(const dsl_instruction_list& list, const dsl_instruction& last) {
  if (collecting_diagnostics == nullptr || &last == &list.back()) {
    return;
  }
  const dsl_instruction& next = *(&last + 1);
  collecting_diagnostics->add({.code = diagnostic_code::already_finished,
                               .level = row_of(diagnostic_code::already_finished).level,
                               .message = "the proof ends in front of this instruction, which is not carried out",
                               .place = {source_file::script, next.number, next.place.column, next.place.length}});
}

}  // namespace

bool instruction_signatures::insert(const dsl_instruction& inst) {
  return known_.insert({&inst, std::hash<std::string>()(signature_of(inst))}).second;
}

bool instruction_signatures::entry::operator==(const entry& other) const {
  return hash == other.hash && signature_of(*instruction) == signature_of(*other.instruction);
}

dsl_execute_data dsl_execute_data_init(log_stream& execute_log, log_stream& err_log, const thm_lib* lib,
                                       dsl_execute_mode mode, proof_gap_full& gap) {
  dsl_execute_data data;
  data.execute_log = &execute_log;
  data.err_log = &err_log;
  data.thmlib = lib;
  data.mode = mode;
  data.cur_gap = &gap;
  return data;
}

dsl_execute_data dsl_nested_execute_data(const dsl_execute_data& parent, proof_gap_full& local_gap) {
  dsl_execute_data data =
      dsl_execute_data_init(*parent.execute_log, *parent.err_log, parent.thmlib, parent.mode, local_gap);
  data.print_internal = parent.print_internal;
  data.texts = parent.texts;
  data.keep_admit_gaps = parent.keep_admit_gaps;
  dsl_execute_data_set_trace_parent(data, parent.current_step_id, parent.trace_depth + 1);
  return data;
}

void dsl_execute_data_set_trace_parent(dsl_execute_data& data, const std::string& parent_step_id, int trace_depth) {
  data.trace_depth = trace_depth;
  data.current_step_id.clear();
  data.trace_prefix = parent_step_id.substr(0, step_id_size);
}

dsl_exe_code execute_instruction_list(dsl_execute_data& data, const dsl_instruction_list& list) {
  dsl_trace_print_initial_context(data);
  proof_gap_full before;
  for (const dsl_instruction& inst : list) {
    before = *data.cur_gap;
    begin_step(data, inst, &inst == &list.front());
    step_record record(data, inst);
    const std::optional<dsl_result> result = execute_instruction(data);
    if (!result.has_value()) {
      data.err_log->write("execute_instruction returned NULL\n");
      return exe_fail;
    }
    dsl_execution_step step = describe_step(data, *result, before);
    dsl_trace_print_result(data, *result, before, step.goal_changed, step.assumption_changed);
    record.keep(step, before, *data.cur_gap);
    summary_append_step(data.summary, std::move(step));
    if (result->flag == exe_finish || result->flag == exe_gap_split) {
      note_rest(list, inst);
    }
    if (result->flag != exe_success) {
      return result->flag;
    }
  }
  return exe_success;
}

std::optional<dsl_result> execute_instruction(dsl_execute_data& data) {
  if (proof_gap_full_is_finished(*data.cur_gap)) {
    log_error(data, fault(diagnostic_code::already_finished), "current proof gap is already finished\n");
    return dsl_result{};
  }
  const instruction_handler handler = instruction_handler_of(data.inst->type());
  if (handler == nullptr) {
    report_error("Error: invalid instruction type: %d\n", static_cast<int>(data.inst->type()));
    return std::nullopt;
  }
  return handler(data);
}

gap_texts& dsl_gap_texts(dsl_execute_data& data) {
  if (data.texts == nullptr) {
    data.texts = std::make_shared<gap_texts>();
  }
  return *data.texts;
}

std::string instruction_signature_from_text(const std::string& text) {
  std::size_t start = std::min(text.find_first_not_of("0123456789"), text.size());
  start += start < text.size() && text[start] == '.' ? 1U : 0U;
  start = std::min(text.find_first_not_of(" \t", start), text.size());
  return text.substr(start);
}

bool goal_changed_between(const proof_gap_full& before, const proof_gap_full& after) {
  if (before.finished != after.finished) {
    return true;
  }
  if (before.finished) {
    return false;
  }
  if (before.goal == nullptr || after.goal == nullptr) {
    return before.goal != after.goal;
  }
  return !same_formula(before.goal, after.goal);
}

bool assumption_changed_between(const proof_gap_full& before, const proof_gap_full& after) {
  const auto common = static_cast<std::ptrdiff_t>(before.assum.common_beginning(after.assum));
  return !std::equal(before.assum.begin() + common, before.assum.end(), after.assum.begin() + common, after.assum.end(),
                     same_formula);
}

const char* effect_class_for_step(dsl_exe_code flag, bool goal_changed) {
  switch (flag) {
    case exe_finish:
      return "proof_finish";
    case exe_gap_split:
      return "gap_split";
    case exe_success:
      return goal_changed ? "goal_progress" : "context_progress";
    case exe_fail:
      return "execution_fail";
  }
  return "execution_fail";
}

}  // namespace vetro

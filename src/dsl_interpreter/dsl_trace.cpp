// Each public function builds its text as a whole and writes it at once.
#include "dsl_interpreter/dsl_trace.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "dsl_interpreter/dsl_trace_instruction.h"
#include "term/compare.h"
#include "term/report.h"

namespace vetro {
namespace {

// A gap in the initial context: all lines at level 1.
void print_context_sections(std::string& out, const proof_gap_full& gap, bool internal) {
  const auto print = internal ? trace_print_term_internal_inline : trace_print_term_inline;
  const auto line = [&](std::string_view text) {
    trace_indent(out, 1);
    out += text;
  };
  line("ASSUM:\n");
  for (int i = 0; i < gap.assu_num(); ++i) {
    trace_indent(out, 1);
    out += internal ? "hypothesis " : "";
    out += std::to_string(i + 1);
    out += ". ";
    print(out, gap.assum[static_cast<std::size_t>(i)]);
    out += "\n";
  }
  line("GOAL:\n");
  if (proof_gap_full_is_finished(gap)) {
    line("[finished]\n");
  } else {
    line("");
    print(out, gap.goal);
    out += "\n";
  }
  line("METHOD:\n");
}

template <std::size_t Count>
const char* name_at(const char* const (&names)[Count], int index) {
  return index >= 0 && static_cast<std::size_t>(index) < Count ? names[index] : "unknown";
}

// Writes the result of one step.
class result_writer {
 public:
  result_writer(dsl_execute_data& data, const proof_gap_full& before) : data_(data), before_(before) {}

  void write(const dsl_result& result, bool goal_changed, bool assumption_changed) {
    line(std::string("result: ") + dsl_exe_code_name(result.flag) + "\n");
    switch (result.flag) {
      case exe_finish:
        line("effect: proof finished\n");
        break;
      case exe_gap_split:
        line("effect: split into " + std::to_string(data_.split_gaps.size()) + " branch(es)\n");
        break;
      case exe_fail:
        line("effect: instruction failed\n");
        break;
      case exe_success:
        success_effects(goal_changed, assumption_changed);
        break;
    }
    if (shows_gaps()) {
      gap_sections(result.flag == exe_gap_split);
    }
    data_.execute_log->write(out_);
  }

 private:
  bool shows_gaps() const { return data_.mode != fast_mode; }

  void line(std::string_view text) {
    trace_indent(out_, level_);
    out_ += text;
  }

  void success_effects(bool goal_changed, bool assumption_changed) {
    if (goal_changed) {
      line("effect: goal changed\n");
      if (!proof_gap_full_is_finished(*data_.cur_gap)) {
        formula_line("new_goal: ", data_.cur_gap->goal, "new_goal");
      }
    }
    if (assumption_changed) {
      assumption_effects();
    }
    if (!goal_changed && !assumption_changed) {
      line("effect: no proof state change\n");
    }
  }

  void formula_line(std::string_view text, term_ptr t, std::string_view internal_label) {
    line(text);
    trace_print_term_inline(out_, t);
    out_ += "\n";
    // The gap sections of the other modes show the internal form already.
    if (data_.print_internal && !shows_gaps()) {
      trace_print_internal_term_line(out_, level_, internal_label, t);
    }
  }

  void assumption_effects() {
    const shared_terms& before = before_.assum;
    const shared_terms& after = data_.cur_gap->assum;
    if (after.size() > before.size()) {
      for (std::size_t i = before.size(); i < after.size(); ++i) {
        formula_line("effect: add H" + std::to_string(i + 1) + ": ", after[i], "added");
      }
      return;
    }
    for (std::size_t i = before.common_beginning(after); i < after.size(); ++i) {
      if (before[i] != after[i] && !term_eqb(before[i], after[i])) {
        formula_line("effect: update H" + std::to_string(i + 1) + ": ", after[i], "updated");
      }
    }
  }

  void gap_sections(bool split) {
    gap_section("gap before", before_);
    if (!split) {
      gap_section("gap after", *data_.cur_gap);
      return;
    }
    for (std::size_t i = 0; i < data_.split_gaps.size(); ++i) {
      gap_section("branch " + std::to_string(i + 1), data_.split_gaps[i]);
    }
  }

  void gap_section(std::string_view label, const proof_gap_full& gap) {
    gap_texts& texts = dsl_gap_texts(data_);
    line(label);
    out_ += ":\n";
    gap_lines("pretty:\n", *texts.pretty(gap));
    if (data_.print_internal) {
      gap_lines("internal:\n", *texts.internal(gap));
    }
  }

  // Empty lines stay empty; the text's last line end opens no further line.
  void gap_lines(std::string_view heading, std::string_view text) {
    trace_indent(out_, level_ + 1);
    out_ += heading;
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      if (end > 0) {
        trace_indent(out_, level_ + 2);
        out_ += text.substr(0, end);
      }
      out_ += "\n";
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }

  dsl_execute_data& data_;
  const proof_gap_full& before_;
  int level_ = data_.trace_depth + 1;
  std::string out_;
};

}  // namespace

std::string dsl_trace_make_step_id(const dsl_execute_data& data, std::size_t index) {
  std::string id = data.trace_prefix.empty() ? std::string() : data.trace_prefix + ".";
  id += std::to_string(index);
  id.resize(std::min(id.size(), step_id_size));
  return id;
}

std::string dsl_trace_capture_instruction(const dsl_instruction& inst, bool internal) {
  std::string text;
  print_dsl_instruction(text, inst, internal);
  return text;
}

void dsl_trace_print_instruction_progress(const std::string& step_id, const dsl_instruction& inst) {
  print_progress("== Step " + step_id + " | " + dsl_trace_type_name(inst.type()) + " ==\n");
  std::fflush(stdout);
}

void dsl_trace_print_initial_context(const dsl_execute_data& data) {
  if (!data.trace_prefix.empty()) {
    return;
  }
  std::string out = "[context] initial proof gap\n";
  print_context_sections(out, *data.cur_gap, false);
  if (data.print_internal) {
    trace_indent(out, 1);
    out += "INTERNAL:\n";
    print_context_sections(out, *data.cur_gap, true);
  }
  out += "\n";
  data.execute_log->write(out);
}

void dsl_trace_print_header(const dsl_execute_data& data, const dsl_instruction& inst) {
  std::string out;
  trace_indent(out, data.trace_depth);
  out += "[" + data.current_step_id + "] ";
  trace_print_header(out, inst);
  out += "\n";
  data.execute_log->write(out);
}

void dsl_trace_print_instruction_fields(const dsl_execute_data& data, const dsl_instruction& inst) {
  std::string out;
  trace_print_fields(out, data.trace_depth + 1, inst);
  if (data.print_internal) {
    trace_print_internal_fields(out, data.trace_depth + 1, inst);
  }
  data.execute_log->write(out);
}

void dsl_trace_print_result(dsl_execute_data& data, const dsl_result& result, const proof_gap_full& gap_before,
                            bool goal_changed, bool assumption_changed) {
  result_writer(data, gap_before).write(result, goal_changed, assumption_changed);
}

const char* dsl_trace_type_name(int type) { return dsl_type_name(type); }

const char* dsl_exe_code_name(int code) {
  constexpr const char* names[] = {"success", "fail", "gap_split", "finish"};
  return name_at(names, code);
}

const char* dsl_redundant_name(int redundant) {
  constexpr const char* names[] = {"ignore", "fail", "success"};
  return name_at(names, redundant);
}

const char* dsl_mode_name(int mode) {
  constexpr const char* names[] = {"fast_mode", "debug_mode", "strong_check_mode"};
  return name_at(names, mode);
}

}  // namespace vetro

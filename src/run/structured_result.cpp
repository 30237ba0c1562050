// The document holds every gap several times over, so that for a long run it is far larger than everything else. It is
// written from front to back, and of its texts only the lines of the assumptions are kept, escaped, as long as the next
// gap has them too. A text that is not UTF-8 (a path, an alias) gets U+FFFD in place of each bad byte.
#include "run/structured_result.h"

#include <cstdio>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

#include "dsl_interpreter/dsl_trace.h"
#include "platform/file_identity.h"
#include "platform/json_text.h"
#include "term/print/pretty.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr const char* schema_version = "vetro_structured_v2";

void print_form(std::string& out, term_ptr t, bool internal) {
  internal ? print_term_internal(out, t) : print_term(out, t);
}

// The file, with small pieces gathered and great ones passed on.
class output {
 public:
  explicit output(std::FILE* file) : file_(file) { gathered_.reserve(2 * enough); }
  ~output() { flush(); }
  output(const output&) = delete;
  output& operator=(const output&) = delete;

  // Small pieces may be appended here, if write() follows.
  std::string& gathered() { return gathered_; }

  void write(std::string_view text) {
    if (text.size() < enough) {
      gathered_ += text;
    }
    if (gathered_.size() >= enough || text.size() >= enough) {
      flush();
    }
    if (text.size() >= enough) {
      pass_on(text);
    }
  }

 private:
  static constexpr std::size_t enough = 1U << 16U;

  void flush() {
    pass_on(gathered_);
    gathered_.clear();
  }
  // An empty view may have no address, which fwrite must not be given.
  void pass_on(std::string_view text) {
    if (!text.empty()) {
      std::fwrite(text.data(), 1, text.size(), file_);
    }
  }

  std::FILE* file_;
  std::string gathered_;
};

// The texts of gaps in one of the two forms, as they stand in a JSON string. The lines of the last gap's assumptions
// are kept: the next gap mostly has them as well, and perhaps one more.
class escaped_gaps {
 public:
  explicit escaped_gaps(bool internal) : internal_(internal) {
    print_gap_heading(plain_);
    append_json_text(heading_, plain_);
  }

  void write(output& out, const proof_gap_full& gap) {
    out.write(heading_);
    out.write(lines_of(gap.assum));
    plain_.clear();
    print_gap_rest(plain_, gap, internal_, [this](std::string& text, term_ptr t) { print_form(text, t, internal_); });
    rest_.clear();
    append_json_text(rest_, plain_);
    out.write(rest_);
  }

 private:
  std::string_view lines_of(const shared_terms& list) {
    const std::size_t kept = list.common_beginning(shown_);
    if (kept < list.size()) {
      show(list, kept);
    }
    return std::string_view(lines_).substr(0, end_of(list.size()));
  }

  // Lines behind a change are taken over where they show the same formula.
  void show(const shared_terms& list, std::size_t kept) {
    const std::string old_lines = lines_.substr(end_of(kept));
    const std::vector<std::size_t> old_ends(ends_.begin() + static_cast<std::ptrdiff_t>(kept), ends_.end());
    const std::size_t shift = end_of(kept);
    lines_.resize(shift);
    ends_.resize(kept);
    for (std::size_t i = kept; i < list.size(); ++i) {
      if (i < shown_.size() && shown_[i] == list[i]) {
        const std::size_t begin = i == kept ? shift : old_ends[i - kept - 1];
        lines_.append(old_lines, begin - shift, old_ends[i - kept] - begin);
      } else {
        append_line(i + 1, list[i]);
      }
      ends_.push_back(lines_.size());
    }
    shown_ = list;
  }

  void append_line(std::size_t number, term_ptr t) {
    plain_.clear();
    print_gap_assumption(plain_, number, t, internal_,
                         [this](std::string& text, term_ptr formula) { print_form(text, formula, internal_); });
    append_json_text(lines_, plain_);
  }

  std::size_t end_of(std::size_t count) const { return count == 0 ? 0 : ends_[count - 1]; }

  bool internal_;
  std::string heading_;
  shared_terms shown_;             // the assumptions of the lines
  std::string lines_;              // one after the other
  std::vector<std::size_t> ends_;  // of each line
  std::string plain_;              // scratch
  std::string rest_;
};

// Writes the members of the objects and the elements of the arrays in the order in which they stand, each on a line of
// its own at the object's depth.
class document_writer {
 public:
  explicit document_writer(std::FILE* file) : out_(file) {}

  void open_object() {
    out_.write("{");
    ++depth_;
    first_ = true;
  }
  void close_object() {
    --depth_;
    line_end();
    out_.write("}");
    first_ = false;
  }

  void text(const char* key, std::string_view value) {
    open_text(key);
    append_json_text(out_.gathered(), value);
    out_.write("\"");
  }
  void boolean(const char* key, bool value) { raw(key, value ? "true" : "false"); }
  template <class Integer>
  void number(const char* key, Integer value) {
    raw(key, std::to_string(value));
  }
  void pretty(const char* key, const proof_gap_full& gap) { gap_text(key, pretty_, gap); }
  void internal(const char* key, const proof_gap_full& gap) { gap_text(key, internal_, gap); }

  // An object for each element of the list, whose members describe() writes.
  template <class List, class Describe>
  void array(const char* key, const List& list, Describe describe) {
    member(key);
    out_.write("[");
    ++depth_;
    for (std::size_t i = 0; i < list.size(); ++i) {
      out_.write(i == 0 ? "" : ", ");
      open_object();
      describe(i, list[i]);
      close_object();
    }
    --depth_;
    out_.write("]");
  }

  void end() { out_.write("\n"); }

 private:
  void line_end() {
    out_.gathered() += '\n';
    out_.gathered().append(static_cast<std::size_t>(depth_), '\t');
  }
  void member(const char* key) {
    out_.write(first_ ? "" : ",");
    first_ = false;
    line_end();
    out_.gathered() += '"';
    out_.gathered() += key;
    out_.write("\":\t");
  }
  void raw(const char* key, std::string_view value) {
    member(key);
    out_.write(value);
  }
  void open_text(const char* key) {
    member(key);
    out_.write("\"");
  }
  void gap_text(const char* key, escaped_gaps& form, const proof_gap_full& gap) {
    open_text(key);
    form.write(out_, gap);
    out_.write("\"");
  }

  output out_;
  int depth_ = 0;
  bool first_ = true;  // no member of the object at hand has been written
  escaped_gaps pretty_{false};
  escaped_gaps internal_{true};
};

void write_summary(document_writer& out, const run_outcome& outcome) {
  const auto& [context, data, initial_gap, code] = outcome;
  const bool finished = proof_gap_full_is_finished(*data.cur_gap);
  out.text("schema_version", schema_version);
  out.text("proof_gap_file", context.proof_gap_file);
  out.text("dsl_file", context.dsl_file);
  out.text("mode", dsl_mode_name(context.mode));
  out.boolean("print_internal", context.print_internal);
  out.text("final_status", dsl_exe_code_name(code));
  out.boolean("proof_finished", finished);
  out.boolean("proof_verified", finished && data.admits.empty());
  out.number("admit_count", data.admits.size());
  out.number("split_gap_count", data.split_gaps.size());
  out.number("repeated_input_count", data.summary.repeated_input_count);
  out.number("step_count", data.summary.steps.size());
  out.pretty("initial_gap_text", initial_gap);
  out.pretty("final_gap_text", *data.cur_gap);
  out.internal("final_gap_internal", *data.cur_gap);
}

void write_step(document_writer& out, const dsl_execution_step& step) {
  out.number("step_index", step.step_index);
  out.text("step_id", step.step_id);
  out.text("instruction_type", dsl_trace_type_name(step.instruction_type));
  out.text("result_flag", dsl_exe_code_name(step.result_flag));
  out.text("redundant_flag", dsl_redundant_name(step.redundant_flag));
  out.boolean("repeated_input", step.repeated_input);
  out.boolean("goal_changed", step.goal_changed);
  out.boolean("assumption_changed", step.assumption_changed);
  out.number("split_gap_count", step.split_gap_count);
  out.text("effect_class", step.effect_class);
  const std::string internal = dsl_trace_capture_instruction(*step.instruction, true);
  out.text("instruction_signature", instruction_signature_from_text(internal));
  out.text("instruction_text", dsl_trace_capture_instruction(*step.instruction, false));
  out.text("instruction_internal", internal);
  out.pretty("gap_before_text", *step.gap_before);
  out.internal("gap_before_internal", *step.gap_before);
  out.pretty("gap_after_text", *step.gap_after);
  out.internal("gap_after_internal", *step.gap_after);
}

void write_split_gap(document_writer& out, std::size_t index, const proof_gap_full& branch) {
  out.number("index", index);
  out.pretty("gap_text", branch);
  out.internal("gap_internal", branch);
}

void write_admit(document_writer& out, std::size_t index, const dsl_admit_obligation& admit) {
  out.number("index", index);
  out.number("source_line", admit.source_line);
  out.text("step_id", admit.step_id);
  out.number("hypothesis_num", admit.hypothesis_num);
  out.text("proposition", print_term_to_string(admit.proposition));
  out.pretty("gap_text", admit.gap);
}

void write_members(document_writer& out, const run_outcome& outcome) {
  const dsl_execute_data& data = outcome.data;
  write_summary(out, outcome);
  out.array("steps", data.summary.steps, [&](std::size_t, const dsl_execution_step& step) { write_step(out, step); });
  out.array("split_gaps", data.split_gaps,
            [&](std::size_t i, const proof_gap_full& branch) { write_split_gap(out, i + 1, branch); });
  out.array("admits", data.admits,
            [&](std::size_t i, const dsl_admit_obligation& admit) { write_admit(out, i + 1, admit); });
}

// False when there is no memory for the texts.
bool write_document(std::FILE* file, const run_outcome& outcome) {
  try {
    document_writer out(file);
    out.open_object();
    write_members(out, outcome);
    out.close_object();
    out.end();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// The file behind links, whether it exists or not.
std::string result_target(const std::string& path) {
  constexpr int most_links = 40;  // as many as the platform follows
  std::filesystem::path target = path;
  std::error_code error;
  for (int i = 0; i < most_links && std::filesystem::is_symlink(target, error); ++i) {
    target = target.parent_path() / std::filesystem::read_symlink(target, error);
  }
  return target.string();
}

bool replaceable(const std::string& path) {
  std::error_code error;
  return !path.empty() && (!std::filesystem::exists(path, error) || is_regular_file(path));
}

}  // namespace

bool write_structured_result_file(const std::string& path, const run_outcome& outcome) {
  // A document is complete or not there: it is written beside its place and moved. Devices are written in place, and so
  // is what stands in a folder that takes no further file.
  const std::string target = result_target(path);
  const std::string beside = target + ".part";
  std::FILE* file = replaceable(target) ? std::fopen(beside.c_str(), "w") : nullptr;
  const bool moves = file != nullptr;
  if (!moves) {
    file = std::fopen(path.c_str(), "w");
  }
  if (file == nullptr) {
    report_error("Error: Cannot open result JSON file: %s\n", path.c_str());
    return false;
  }
  const bool serialised = write_document(file, outcome);
  const bool lost = std::ferror(file) != 0;
  bool written = std::fclose(file) == 0 && !lost;
  if (moves) {
    written = written && serialised && std::rename(beside.c_str(), target.c_str()) == 0;
    if (!written) {
      std::remove(beside.c_str());
    }
  }
  if (!serialised) {
    report_error("Error: Failed to serialize result JSON\n");
  } else if (!written) {
    report_error("Error: Cannot write result JSON file: %s\n", path.c_str());
  }
  return serialised && written;
}

void discard_structured_result_file(const std::string& path) {
  if (is_regular_file(path)) {
    std::remove(result_target(path).c_str());
  }
}

}  // namespace vetro

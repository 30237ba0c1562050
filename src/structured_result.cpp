// The document holds every gap several times over, so that for a long run it is far larger than everything else. Its
// scalar keys are one cJSON object; the elements of its arrays are built, serialised and written one after the other. A
// text that is not UTF-8 (a path, an alias) gets U+FFFD in place of each bad byte, so that the document is valid JSON.
#include "structured_result.h"

#include <cjson/cJSON.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

#include "dsl_interpreter/dsl_trace.h"
#include "platform/file_identity.h"
#include "platform/utf8.h"
#include "term/print.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr const char* schema_version = "vetro_structured_v2";

struct json_deleter {
  void operator()(cJSON* item) const { cJSON_Delete(item); }
  void operator()(char* text) const { cJSON_free(text); }
};
using json_text = std::unique_ptr<char, json_deleter>;

// One object under construction. A member for which there is no memory makes the object a failure.
class json_object {
 public:
  json_object() : object_(cJSON_CreateObject()) {}

  const cJSON* get() const { return failed_ ? nullptr : object_.get(); }

  // The object refers to the value, which must outlive it.
  void text(const char* key, const std::string& value) {
    if (is_utf8_text(value)) {
      word(key, value.c_str());
    } else {
      add(key, cJSON_CreateString(utf8_with_replacements(value).c_str()));
    }
  }

  void text(const char* key, const shared_text& value) {
    kept_.push_back(value);
    text(key, *value);
  }

  void word(const char* key, const char* literal) { add(key, cJSON_CreateStringReference(literal)); }
  void boolean(const char* key, bool value) { add(key, cJSON_CreateBool(value ? 1 : 0)); }

  // Written digit by digit: a hypothesis number of 19 digits does not fit the library's number type.
  template <class Integer>
  void number(const char* key, Integer value) {
    add(key, cJSON_CreateRaw(std::to_string(value).c_str()));
  }

 private:
  // The key must be a literal: it is not copied.
  void add(const char* key, cJSON* item) {
    if (item == nullptr || cJSON_AddItemToObjectCS(object_.get(), key, item) == 0) {
      cJSON_Delete(item);
      failed_ = true;
    }
  }

  std::vector<shared_text> kept_;
  std::unique_ptr<cJSON, json_deleter> object_;
  bool failed_ = false;
};

shared_text term_text(term_ptr t) { return std::make_shared<const std::string>(print_term_to_string(t)); }

json_object build_structured_summary(const run_outcome& outcome) {
  const auto& [context, data, initial_gap, code] = outcome;
  const bool finished = proof_gap_full_is_finished(*data.cur_gap);
  gap_texts& texts = dsl_gap_texts(data);
  json_object root;
  root.word("schema_version", schema_version);
  root.text("proof_gap_file", context.proof_gap_file);
  root.text("dsl_file", context.dsl_file);
  root.word("mode", dsl_mode_name(context.mode));
  root.boolean("print_internal", context.print_internal);
  root.word("final_status", dsl_exe_code_name(code));
  root.boolean("proof_finished", finished);
  root.boolean("proof_verified", finished && data.admits.empty());
  root.number("admit_count", data.admits.size());
  root.number("split_gap_count", data.split_gaps.size());
  root.number("repeated_input_count", data.summary.repeated_input_count);
  root.number("step_count", data.summary.steps.size());
  root.text("initial_gap_text", texts.pretty(initial_gap));
  root.text("final_gap_text", texts.pretty(*data.cur_gap));
  root.text("final_gap_internal", texts.internal(*data.cur_gap));
  return root;
}

json_object step_object(const dsl_execution_step& step, gap_texts& texts) {
  json_object object;
  object.number("step_index", step.step_index);
  object.text("step_id", step.step_id);
  object.word("instruction_type", dsl_trace_type_name(step.instruction_type));
  object.word("result_flag", dsl_exe_code_name(step.result_flag));
  object.word("redundant_flag", dsl_redundant_name(step.redundant_flag));
  object.boolean("repeated_input", step.repeated_input);
  object.boolean("goal_changed", step.goal_changed);
  object.boolean("assumption_changed", step.assumption_changed);
  object.number("split_gap_count", step.split_gap_count);
  object.word("effect_class", step.effect_class);
  object.text("instruction_signature", step.instruction_signature);
  object.text("instruction_text", step.instruction_text);
  object.text("instruction_internal", step.instruction_internal);
  object.text("gap_before_text", texts.pretty(*step.gap_before));
  object.text("gap_before_internal", texts.internal(*step.gap_before));
  object.text("gap_after_text", texts.pretty(*step.gap_after));
  object.text("gap_after_internal", texts.internal(*step.gap_after));
  return object;
}

json_object split_gap_object(std::size_t index, const proof_gap_full& branch, gap_texts& texts) {
  json_object object;
  object.number("index", index);
  object.text("gap_text", texts.pretty(branch));
  object.text("gap_internal", texts.internal(branch));
  return object;
}

json_object admit_object(std::size_t index, const dsl_admit_obligation& admit, gap_texts& texts) {
  json_object object;
  object.number("index", index);
  object.number("source_line", admit.source_line);
  object.text("step_id", admit.step_id);
  object.number("hypothesis_num", admit.hypothesis_num);
  object.text("proposition", term_text(admit.proposition));
  object.text("gap_text", texts.pretty(admit.gap));
  return object;
}

// Writes the document in the library's own format, as if it were serialised as a whole.
class document_writer {
 public:
  explicit document_writer(std::FILE* file) : file_(file) {}

  bool serialised() const { return serialised_; }

  // The root without its closing brace, to which the arrays are added.
  void open(const json_object& root) {
    const json_text text = print(root);
    std::string_view members = text != nullptr ? text.get() : "";
    constexpr std::string_view closing = "\n}";
    members.remove_suffix(std::min(closing.size(), members.size()));
    write(members);
  }

  template <class List, class Build>
  void array(const char* key, const List& list, Build build) {
    write(",\n\t\"");
    write(key);
    write("\":\t[");
    std::string_view separator;
    for (std::size_t i = 0; i < list.size() && serialised_; ++i) {
      write(separator);
      element(build(i, list[i]));
      separator = ", ";
    }
    write("]");
  }

  void close() { write("\n}\n"); }

 private:
  // An object two levels down. Line ends stand only between members, never in a text.
  void element(const json_object& object) {
    const json_text printed = print(object);
    std::string_view text = printed != nullptr ? printed.get() : "";
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
      write(text.substr(0, end + 1));
      write("\t\t");
      text.remove_prefix(end + 1);
    }
    write(text);
  }

  json_text print(const json_object& object) {
    json_text text(object.get() != nullptr ? cJSON_Print(object.get()) : nullptr);
    serialised_ = serialised_ && text != nullptr;
    return text;
  }

  // An empty view may have no address, which fwrite must not be given.
  void write(std::string_view text) {
    if (!text.empty()) {
      std::fwrite(text.data(), 1, text.size(), file_);
    }
  }

  std::FILE* file_;
  bool serialised_ = true;
};

bool write_document(std::FILE* file, const run_outcome& outcome) {
  dsl_execute_data& data = outcome.data;
  gap_texts& texts = dsl_gap_texts(data);
  document_writer writer(file);
  writer.open(build_structured_summary(outcome));
  writer.array("steps", data.summary.steps,
               [&](std::size_t, const dsl_execution_step& step) { return step_object(step, texts); });
  writer.array("split_gaps", data.split_gaps, [&](std::size_t index, const proof_gap_full& branch) {
    return split_gap_object(index + 1, branch, texts);
  });
  writer.array("admits", data.admits, [&](std::size_t index, const dsl_admit_obligation& admit) {
    return admit_object(index + 1, admit, texts);
  });
  writer.close();
  return writer.serialised();
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
  return !std::filesystem::exists(path, error) || is_regular_file(path);
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

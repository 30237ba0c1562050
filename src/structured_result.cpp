// Texts of the step records are large and many, so the document refers to them instead of copying; a text that is not
// UTF-8 (a path, an alias) is copied with U+FFFD in place of each bad byte, so that the document is valid JSON.
#include "structured_result.h"

#include <cjson/cJSON.h>

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "dsl_interpreter/dsl_trace.h"
#include "term/print.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr const char* schema_version = "vetro_structured_v2";
constexpr std::string_view replacement_character = "\xEF\xBF\xBD";

// Bytes of the character that text begins with; 0 when it is not well-formed, and for NUL, which would end the text.
std::size_t utf8_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0U; };
  const auto continues = [&](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned lead = byte(0);
  if (lead < 0x80) {
    return lead != 0 ? 1 : 0;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return continues(1) ? 2 : 0;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool overlong = lead == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = lead == 0xED && byte(1) > 0x9F;
    return !overlong && !surrogate && continues(1) && continues(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool overlong = lead == 0xF0 && byte(1) < 0x90;
    const bool too_large = lead == 0xF4 && byte(1) > 0x8F;
    return !overlong && !too_large && continues(1) && continues(2) && continues(3) ? 4 : 0;
  }
  return 0;
}

std::size_t valid_prefix(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = utf8_length(text.substr(at));
    if (length == 0) {
      break;
    }
    at += length;
  }
  return at;
}

std::string with_replacements(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t good = valid_prefix(text);
    result += text.substr(0, good);
    text.remove_prefix(good);
    if (!text.empty()) {
      result += replacement_character;
      text.remove_prefix(1);
    }
  }
  return result;
}

// Adds items to one document. The first item for which there is no memory makes the whole document a failure.
class json_builder {
 public:
  bool failed() const { return failed_; }

  cJSON* object() { return checked(cJSON_CreateObject()); }
  cJSON* array() { return checked(cJSON_CreateArray()); }

  void append(cJSON* array, cJSON* item) {
    if (item == nullptr || cJSON_AddItemToArray(array, item) == 0) {
      reject(item);
    }
  }

  // The key must be a literal: it is not copied.
  void add(cJSON* object, const char* key, cJSON* item) {
    if (item == nullptr || cJSON_AddItemToObjectCS(object, key, item) == 0) {
      reject(item);
    }
  }

  void text(cJSON* object, const char* key, const std::string& value) {
    const bool valid = valid_prefix(value) == value.size();
    add(object, key, cJSON_CreateString(valid ? value.c_str() : with_replacements(value).c_str()));
  }

  // For a text that outlives the document.
  void kept_text(cJSON* object, const char* key, const std::string& value) {
    if (valid_prefix(value) == value.size()) {
      add(object, key, cJSON_CreateStringReference(value.c_str()));
    } else {
      text(object, key, value);
    }
  }

  void kept_text(cJSON* object, const char* key, const shared_text& value) {
    if (value != nullptr) {
      kept_text(object, key, *value);
    } else {
      add(object, key, cJSON_CreateNull());
    }
  }

  void word(cJSON* object, const char* key, const char* literal) {
    add(object, key, cJSON_CreateStringReference(literal));
  }

  void boolean(cJSON* object, const char* key, bool value) { add(object, key, cJSON_CreateBool(value ? 1 : 0)); }

  // Written digit by digit: a hypothesis number of 19 digits does not fit the library's number type.
  template <class Integer>
  void number(cJSON* object, const char* key, Integer value) {
    add(object, key, cJSON_CreateRaw(std::to_string(value).c_str()));
  }

 private:
  cJSON* checked(cJSON* item) {
    failed_ = failed_ || item == nullptr;
    return item;
  }
  void reject(cJSON* item) {
    cJSON_Delete(item);
    failed_ = true;
  }

  bool failed_ = false;
};

std::string capture_gap_snapshot(const proof_gap_full& gap, bool internal) {
  std::string text;
  internal ? print_proof_gap_full_internal(text, gap) : print_proof_gap_full(text, gap);
  return text;
}

std::string capture_term_snapshot(term_ptr t) { return print_term_to_string(t); }

void add_outcome(json_builder& json, cJSON* root, const dsl_execute_data& data, const proof_gap_full& gap,
                 dsl_exe_code code) {
  const bool finished = proof_gap_full_is_finished(gap);
  json.word(root, "final_status", dsl_exe_code_name(code));
  json.boolean(root, "proof_finished", finished);
  json.boolean(root, "proof_verified", finished && data.admits.empty());
  json.number(root, "admit_count", data.admits.size());
  json.number(root, "split_gap_count", data.split_gaps.size());
  json.number(root, "repeated_input_count", data.summary.repeated_input_count);
  json.number(root, "step_count", data.summary.steps.size());
}

cJSON* step_object(json_builder& json, const dsl_execution_step& step) {
  cJSON* object = json.object();
  json.number(object, "step_index", step.step_index);
  json.kept_text(object, "step_id", step.step_id);
  json.word(object, "instruction_type", dsl_trace_type_name(step.instruction_type));
  json.word(object, "result_flag", dsl_exe_code_name(step.result_flag));
  json.word(object, "redundant_flag", dsl_redundant_name(step.redundant_flag));
  json.boolean(object, "repeated_input", step.repeated_input);
  json.boolean(object, "goal_changed", step.goal_changed);
  json.boolean(object, "assumption_changed", step.assumption_changed);
  json.number(object, "split_gap_count", step.split_gap_count);
  json.word(object, "effect_class", step.effect_class);
  json.kept_text(object, "instruction_signature", step.instruction_signature);
  json.kept_text(object, "instruction_text", step.instruction_text);
  json.kept_text(object, "instruction_internal", step.instruction_internal);
  json.kept_text(object, "gap_before_text", step.gap_before_text);
  json.kept_text(object, "gap_before_internal", step.gap_before_internal);
  json.kept_text(object, "gap_after_text", step.gap_after_text);
  json.kept_text(object, "gap_after_internal", step.gap_after_internal);
  return object;
}

cJSON* steps_array(json_builder& json, const dsl_execution_summary& summary) {
  cJSON* array = json.array();
  for (const dsl_execution_step& step : summary.steps) {
    json.append(array, step_object(json, step));
  }
  return array;
}

cJSON* split_gaps_array(json_builder& json, const std::vector<proof_gap_full>& branches) {
  cJSON* array = json.array();
  for (std::size_t i = 0; i < branches.size(); ++i) {
    cJSON* object = json.object();
    json.number(object, "index", i + 1);
    json.text(object, "gap_text", capture_gap_snapshot(branches[i], false));
    json.text(object, "gap_internal", capture_gap_snapshot(branches[i], true));
    json.append(array, object);
  }
  return array;
}

cJSON* admits_array(json_builder& json, const std::vector<dsl_admit_obligation>& admits) {
  cJSON* array = json.array();
  for (std::size_t i = 0; i < admits.size(); ++i) {
    const dsl_admit_obligation& admit = admits[i];
    cJSON* object = json.object();
    json.number(object, "index", i + 1);
    json.number(object, "source_line", admit.source_line);
    json.kept_text(object, "step_id", admit.step_id);
    json.number(object, "hypothesis_num", admit.hypothesis_num);
    json.text(object, "proposition", capture_term_snapshot(admit.proposition));
    json.text(object, "gap_text", capture_gap_snapshot(admit.gap, false));
    json.append(array, object);
  }
  return array;
}

bool write_text(std::FILE* file, const char* text) {
  const bool written = std::fputs(text, file) >= 0 && std::fputs("\n", file) >= 0;
  return std::fclose(file) == 0 && written;
}

}  // namespace

void json_deleter::operator()(cJSON* document) const { cJSON_Delete(document); }

json_document build_structured_summary(const ProgramContext& context, dsl_execute_data& data, const proof_gap_full& gap,
                                       dsl_exe_code code, const shared_text& initial_gap) {
  json_builder json;
  json_document document(json.object());
  cJSON* root = document.get();
  json.word(root, "schema_version", schema_version);
  json.kept_text(root, "proof_gap_file", context.proof_gap_file);
  json.kept_text(root, "dsl_file", context.dsl_file);
  json.word(root, "mode", dsl_mode_name(context.mode));
  json.boolean(root, "print_internal", context.print_internal);
  add_outcome(json, root, data, gap, code);
  json.kept_text(root, "initial_gap_text", initial_gap);
  gap_texts& texts = dsl_gap_texts(data);
  json.text(root, "final_gap_text", *texts.pretty(gap));
  json.text(root, "final_gap_internal", *texts.internal(gap));
  json.add(root, "steps", steps_array(json, data.summary));
  json.add(root, "split_gaps", split_gaps_array(json, data.split_gaps));
  json.add(root, "admits", admits_array(json, data.admits));
  return json.failed() ? nullptr : std::move(document);
}

bool write_structured_result_file(const std::string& path, json_document document) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (file == nullptr) {
    report_error("Error: Cannot open result JSON file: %s\n", path.c_str());
    return false;
  }
  char* text = document != nullptr ? cJSON_Print(document.get()) : nullptr;
  if (text == nullptr) {
    std::fclose(file);
    report_error("Error: Failed to serialize result JSON\n");
    return false;
  }
  const bool written = write_text(file, text);
  cJSON_free(text);
  if (!written) {
    report_error("Error: Cannot write result JSON file: %s\n", path.c_str());
  }
  return written;
}

}  // namespace vetro

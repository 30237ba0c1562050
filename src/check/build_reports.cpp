// Both are written as text around escaped values; the parts of SARIF that hold values are JSON objects.
#include "check/build_reports.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "check/json_object.h"
#include "diagnostics/codes.h"
#include "lib/log_stream.h"
#include "platform/xml_text.h"

namespace vetro {
namespace {

// ---- XML.

std::string place_of(const report_diagnostic& d) {
  return d.line == 0 ? d.file : d.file + ":" + std::to_string(d.line) + ":" + std::to_string(std::max(d.column, 1));
}

std::string text_of(const report_diagnostic& d) {
  std::string text = place_of(d) + ": " + d.level + "[" + d.code + "]: " + d.message;
  text += d.needed.empty() ? "" : "\nneeded: " + d.needed.pretty;
  text += d.given.empty() ? "" : "\ngiven: " + d.given.pretty;
  text += d.suggestion.empty() ? "" : "\nhelp: " + d.suggestion;
  return text + "\n";
}

// ---- SARIF.

std::string json_line(const json_object& object) {
  const json_text text(object.get() == nullptr ? nullptr : cJSON_PrintUnformatted(object.get()));
  return text == nullptr ? "{}" : std::string(text.get());
}

json_object message_object(std::string text) {
  json_object message;
  message.own_text("text", std::move(text));
  return message;
}

json_object location_object(const report_diagnostic& d) {
  json_object artifact;
  artifact.text("uri", d.file);
  json_object place;
  place.object("artifactLocation", std::move(artifact));
  if (d.line > 0) {
    json_object region;
    region.number("startLine", d.line);
    region.number("startColumn", std::max(d.column, 1));
    if (d.length > 0) {
      region.number("endColumn", std::max(d.column, 1) + d.length);
    }
    place.object("region", std::move(region));
  }
  json_object location;
  location.object("physicalLocation", std::move(place));
  return location;
}

json_object result_object(const report_diagnostic& d) {
  json_object result;
  result.text("ruleId", d.code);
  result.text("level", d.level);
  std::string text = d.message;
  text += d.needed.empty() ? "" : "; needed: " + d.needed.pretty;
  text += d.given.empty() ? "" : "; given: " + d.given.pretty;
  text += d.suggestion.empty() ? "" : "; " + d.suggestion;
  result.object("message", message_object(std::move(text)));
  if (!d.file.empty()) {
    std::vector<json_object> locations;
    locations.push_back(location_object(d));
    result.objects("locations", std::move(locations));
  }
  return result;
}

json_object rule_object(const diagnostic_row& row) {
  json_object rule;
  rule.own_text("id", std::string(row.name));
  rule.object("shortDescription", message_object(std::string(row.meaning)));
  return rule;
}

}  // namespace

std::string junit_report::begin() const {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n" +
         format_text("<testsuite name=\"vetro-check\" tests=\"%12zu\" failures=\"%12zu\" errors=\"%12zu\">\n", tests_,
                     failures_, errors_);
}

std::string junit_report::proof(const proof_report& report) {
  ++tests_;
  std::string out = "<testcase name=\"" + xml_text(report.id) + "\" classname=\"proof\"";
  if (report.result == outcome::verified) {
    return out + "/>\n";
  }
  const int status = row_of(report.result).exit_status;
  const bool is_error = status >= exit_input_error;
  ++(is_error ? errors_ : failures_);
  const char* element = is_error ? "error" : "failure";
  std::string text;
  for (const report_diagnostic& d : report.diagnostics) {
    text += text_of(d);
  }
  out += std::string(">\n<") + element + " message=\"" + std::string(row_of(report.result).words) + "\">" +
         xml_text(text) + "</" + element + ">\n</testcase>\n";
  return out;
}

std::string junit_report::end() { return "</testsuite>\n</testsuites>\n"; }

std::string sarif_report::begin() {
  std::vector<json_object> rules;
  for (const diagnostic_row& row : diagnostic_rows()) {
    rules.push_back(rule_object(row));
  }
  json_object driver;
  driver.word("name", "vetro-check");
  driver.word("version", VETRO_VERSION);
  driver.objects("rules", std::move(rules));
  json_object tool;
  tool.object("driver", std::move(driver));
  return "{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\",\"runs\":[{\"tool\":" +
         json_line(tool) + ",\"columnKind\":\"unicodeCodePoints\",\"results\":[";
}

std::string sarif_report::proof(const proof_report& report) {
  std::string out;
  for (const report_diagnostic& d : report.diagnostics) {
    out += first_ ? "\n" : ",\n";
    out += json_line(result_object(d));
    first_ = false;
  }
  return out;
}

std::string sarif_report::end() { return "\n]}]}\n"; }

}  // namespace vetro

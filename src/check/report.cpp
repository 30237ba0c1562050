// The keys of the events, in the order of docs/check.schema.json.
#include "check/report.h"

#include <algorithm>
#include <cctype>

#include "check/json_object.h"
#include "check/json_reading.h"

namespace vetro {
namespace {

// ---- Writing. A key whose value is empty is left out, but for those that every event of the kind has.

void put(json_object& object, const char* key, const std::string& text) {
  if (!text.empty()) {
    object.text(key, text);
  }
}

json_object formula_object(const shown_formula& formula) {
  json_object object;
  object.text("formula", formula.pretty);
  object.text("internal", formula.internal);
  put(object, "mathml", formula.mathml);
  return object;
}

void put(json_object& object, const char* key, const shown_formula& formula) {
  if (!formula.empty()) {
    object.object(key, formula_object(formula));
  }
}

void put(json_object& object, const char* key, const std::vector<open_piece>& pieces) {
  std::vector<json_object> list;
  for (const open_piece& piece : pieces) {
    list.push_back(formula_object(piece.formula));
    list.back().texts("solvers", piece.solvers);
  }
  if (!list.empty()) {
    object.objects(key, std::move(list));
  }
}

json_object event(const char* kind, const proof_report& report) {
  json_object object;
  object.word("event", kind);
  object.text("proof", report.id);
  return object;
}

json_object diagnostic_event(const proof_report& report, const report_diagnostic& d) {
  json_object object = event("diagnostic", report);
  put(object, "step", d.step);
  object.text("severity", d.level);
  object.text("code", d.code);
  object.text("message", d.message);
  put(object, "file", d.file);
  if (d.line > 0) {
    object.number("line", d.line);
    object.number("column", std::max(d.column, 1));
    object.number("length", d.length);
    put(object, "source", d.source);
  }
  put(object, "needed", d.needed);
  put(object, "given", d.given);
  put(object, "solver", d.solver);
  put(object, "suggestion", d.suggestion);
  put(object, "open", d.open);
  put(object, "unfolded", d.unfolded);
  if (!d.budget_ended.empty()) {
    object.texts("budget_ended", d.budget_ended);
  }
  return object;
}

json_object gap_event(const proof_report& report) {
  json_object object = event("gap", report);
  std::vector<json_object> assumptions;
  for (const shown_formula& formula : report.assumptions) {
    assumptions.push_back(formula_object(formula));
  }
  object.objects("assumptions", std::move(assumptions));
  put(object, "goal", report.target);
  return object;
}

json_object step_event(const proof_report& report, const report_step& step) {
  json_object object = event("step", report);
  object.text("step", step.step);
  object.number("line", step.line);
  object.text("instruction", step.instruction);
  object.text("text", step.text);
  object.text("result", step.result);
  put(object, "goal", step.goal);
  std::vector<json_object> hypotheses;
  for (const report_step::hypothesis& h : step.hypotheses) {
    hypotheses.emplace_back();
    hypotheses.back().number("number", h.number);
    hypotheses.back().text("formula", h.formula.pretty);
    hypotheses.back().text("internal", h.formula.internal);
    put(hypotheses.back(), "mathml", h.formula.mathml);
  }
  if (!hypotheses.empty()) {
    object.objects("hypotheses", std::move(hypotheses));
  }
  std::vector<json_object> closed;
  for (const report_step::closing& c : step.closed) {
    closed.push_back(formula_object(c.formula));
    closed.back().text("solver", c.solver);
  }
  if (!closed.empty()) {
    object.objects("closed", std::move(closed));
  }
  object.number("work", step.work);
  if (report.with_times) {
    object.number("microseconds", step.microseconds);
  }
  return object;
}

json_object proof_event(const proof_report& report) {
  json_object object = event("proof", report);
  object.number("number", report.number);
  object.text("gap", report.gap);
  object.text("script", report.script);
  object.own_text("outcome", std::string(row_of(report.result).name));
  object.boolean("finished", report.finished);
  object.number("steps", report.steps);
  object.number("admits", report.admits);
  object.number("branches", report.branches);
  object.number("errors", report.count("error"));
  object.number("warnings", report.count("warning"));
  object.number("work", report.work);
  put(object, "goal", report.goal);
  if (report.with_times) {
    object.number("microseconds", report.microseconds);
  }
  return object;
}

void append_line(std::string& lines, const json_object& object) {
  const json_text text(object.get() == nullptr ? nullptr : cJSON_PrintUnformatted(object.get()));
  if (text != nullptr) {
    lines += text.get();
    lines += '\n';
  }
}

// ---- Reading.

shown_formula formula_in(const cJSON* object) {
  return {json_text_of(object, "formula"), json_text_of(object, "internal"), json_text_of(object, "mathml")};
}

std::vector<std::string> texts_in(const cJSON* list) {
  std::vector<std::string> texts;
  const cJSON* item = nullptr;
  cJSON_ArrayForEach(item, list) {
    const char* text = cJSON_GetStringValue(item);
    texts.emplace_back(text == nullptr ? "" : text);
  }
  return texts;
}

std::vector<open_piece> pieces_in(const cJSON* list) {
  std::vector<open_piece> pieces;
  const cJSON* item = nullptr;
  cJSON_ArrayForEach(item, list) { pieces.push_back({formula_in(item), texts_in(json_member(item, "solvers"))}); }
  return pieces;
}

int small_number(const cJSON* object, const char* key) { return static_cast<int>(json_number(object, key)); }

report_diagnostic read_diagnostic(const cJSON* e) {
  report_diagnostic d;
  d.step = json_text_of(e, "step");
  d.level = json_text_of(e, "severity");
  d.code = json_text_of(e, "code");
  d.message = json_text_of(e, "message");
  d.file = json_text_of(e, "file");
  d.line = small_number(e, "line");
  d.column = small_number(e, "column");
  d.length = small_number(e, "length");
  d.source = json_text_of(e, "source");
  d.needed = formula_in(json_member(e, "needed"));
  d.given = formula_in(json_member(e, "given"));
  d.solver = json_text_of(e, "solver");
  d.suggestion = json_text_of(e, "suggestion");
  d.open = pieces_in(json_member(e, "open"));
  d.unfolded = pieces_in(json_member(e, "unfolded"));
  d.budget_ended = texts_in(json_member(e, "budget_ended"));
  return d;
}

report_step read_step(const cJSON* e) {
  report_step step;
  step.step = json_text_of(e, "step");
  step.line = small_number(e, "line");
  step.instruction = json_text_of(e, "instruction");
  step.text = json_text_of(e, "text");
  step.result = json_text_of(e, "result");
  step.goal = formula_in(json_member(e, "goal"));
  const cJSON* item = nullptr;
  cJSON_ArrayForEach(item, json_member(e, "hypotheses")) {
    step.hypotheses.push_back({small_number(item, "number"), formula_in(item)});
  }
  cJSON_ArrayForEach(item, json_member(e, "closed")) {
    step.closed.push_back({formula_in(item), json_text_of(item, "solver")});
  }
  step.work = json_number(e, "work");
  step.microseconds = json_number(e, "microseconds");
  return step;
}

void read_gap(const cJSON* e, proof_report& report) {
  const cJSON* item = nullptr;
  cJSON_ArrayForEach(item, json_member(e, "assumptions")) { report.assumptions.push_back(formula_in(item)); }
  report.target = formula_in(json_member(e, "goal"));
}

bool read_result(const cJSON* e, proof_report& report) {
  const auto result = outcome_of_name(json_text_of(e, "outcome"));
  report.number = json_number(e, "number");
  report.gap = json_text_of(e, "gap");
  report.script = json_text_of(e, "script");
  report.result = result.value_or(outcome::fault);
  report.finished = json_true(e, "finished");
  report.steps = json_number(e, "steps");
  report.admits = json_number(e, "admits");
  report.branches = json_number(e, "branches");
  report.work = json_number(e, "work");
  report.goal = formula_in(json_member(e, "goal"));
  report.with_times = json_member(e, "microseconds") != nullptr;
  report.microseconds = json_number(e, "microseconds");
  return result.has_value() && report.number > 0;
}

}  // namespace

std::size_t proof_report::count(std::string_view level) const {
  return static_cast<std::size_t>(std::count_if(diagnostics.begin(), diagnostics.end(),
                                                [&](const report_diagnostic& d) { return d.level == level; }));
}

bool proof_report::has(std::string_view code) const {
  return std::any_of(diagnostics.begin(), diagnostics.end(),
                     [code](const report_diagnostic& d) { return d.code == code; });
}

std::string file_stem(std::size_t number, std::string_view id) {
  constexpr std::size_t longest = 80;
  std::string stem = std::to_string(number);
  bool gap = true;
  for (const char c : id) {
    const bool safe = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    if (safe && stem.size() < longest) {
      stem += gap ? "-" : "";
      stem += c;
    }
    gap = !safe;
  }
  return stem;
}

std::string events_of(const proof_report& report) {
  std::string lines;
  if (!report.target.empty()) {
    append_line(lines, gap_event(report));
  }
  for (const report_step& step : report.explained) {
    append_line(lines, step_event(report, step));
  }
  for (const report_diagnostic& d : report.diagnostics) {
    append_line(lines, diagnostic_event(report, d));
  }
  append_line(lines, proof_event(report));
  return lines;
}

bool event_reader::take(const std::string& line) {
  const json_tree tree = parse_json(line);
  event_ = json_text_of(tree.get(), "event");
  if (event_ == "run" || event_ == "summary") {
    return json_number(tree.get(), "format") == event_format || event_ == "summary";
  }
  if (complete_) {
    report_ = {};
    complete_ = false;
  }
  const std::string id = json_text_of(tree.get(), "proof");
  if (json_member(tree.get(), "proof") == nullptr || (!report_.id.empty() && id != report_.id)) {
    return false;
  }
  report_.id = id;
  if (event_ == "diagnostic") {
    report_.diagnostics.push_back(read_diagnostic(tree.get()));
  } else if (event_ == "gap") {
    read_gap(tree.get(), report_);
  } else if (event_ == "step") {
    report_.explained.push_back(read_step(tree.get()));
  } else if (event_ == "proof") {
    complete_ = true;
    return read_result(tree.get(), report_);
  } else {
    return false;
  }
  return true;
}

}  // namespace vetro

// A page is written from the report alone, so that it can be made of events, too.
#include "check/html_pages.h"

#include <algorithm>

#include "check/html_style.h"
#include "lib/log_stream.h"
#include "platform/xml_text.h"
#include "term/report.h"

namespace vetro {
namespace {

// ---- Elements.

std::string head_of(const std::string& title) {
  return "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n<meta "
         "charset=\"utf-8\"/>\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n<title>" +
         xml_text(title) + "</title>\n<link rel=\"stylesheet\" href=\"style.css\"/>\n</head>\n<body>\n";
}

constexpr std::string_view foot = "</body>\n</html>\n";

std::string formula_html(const shown_formula& formula) {
  if (formula.mathml.empty()) {
    return "<div class=\"formula\"><code>" + xml_text(formula.pretty) + "</code></div>";
  }
  return "<div class=\"formula\"><math displaystyle=\"true\" alttext=\"" + xml_text(formula.pretty) + "\">" +
         formula.mathml + "</math></div>";
}

std::string entry(const std::string& term, const std::string& description) {
  return "<dt>" + xml_text(term) + "</dt><dd>" + description + "</dd>\n";
}

// The entries as a list; nothing without any.
std::string list_of(const std::string& entries) { return entries.empty() ? "" : "<dl>\n" + entries + "</dl>\n"; }

std::string outcome_html(outcome o) {
  const int status = row_of(o).exit_status;
  const char* mood = status == 0 ? " good" : status == exit_not_clean ? " warn" : "";
  return std::string("<span class=\"outcome") + mood + "\">" + std::string(row_of(o).words) + "</span>";
}

// Time with a unit that leaves one to four digits.
std::string time_text(std::uint64_t microseconds) {
  if (microseconds < 10'000) {
    return std::to_string(microseconds) + " µs";
  }
  return microseconds < 10'000'000 ? std::to_string(microseconds / 1'000) + " ms"
                                   : std::to_string(microseconds / 1'000'000) + " s";
}

// A bar of value in most. What is more than nothing shows.
std::string bar(const char* kind, std::uint64_t value, std::uint64_t most, const std::string& text) {
  const std::uint64_t scale = std::max<std::uint64_t>(most / 1'000, 1);
  const std::uint64_t whole = std::max<std::uint64_t>(most / scale, 1);
  const std::uint64_t width = value == 0 ? 0 : std::clamp<std::uint64_t>(value / scale * 1'000 / whole, 4, 1'000);
  return std::string("<div class=\"bar") + kind +
         "\"><svg viewBox=\"0 0 1000 1\" preserveAspectRatio=\"none\" aria-hidden=\"true\"><rect width=\"" +
         std::to_string(width) + "\" height=\"1\"/></svg><span>" + text + "</span></div>\n";
}

// A bar that is to the width of its place as value is to the largest of all proofs, which the table knows.
std::string share(const char* kind, std::uint64_t value) {
  return value == 0
             ? ""
             : std::string("<span class=\"share") + kind + "\" style=\"--part: " + std::to_string(value) + "\"></span>";
}

// ---- What was said.

// The line with the place in it marked. Columns count characters.
std::string source_html(const report_diagnostic& d) {
  std::size_t cuts[2] = {d.source.size(), d.source.size()};
  int character = 0;
  for (std::size_t i = 0; i < d.source.size(); ++i) {
    if ((static_cast<unsigned char>(d.source[i]) & 0xC0U) != 0x80U) {
      ++character;
      if (character == d.column) {
        cuts[0] = i;
      }
      if (character == d.column + d.length) {
        cuts[1] = i;
        break;
      }
    }
  }
  const std::string_view line = d.source;
  std::string out = "<pre>" + xml_text(line.substr(0, cuts[0]));
  if (cuts[0] < cuts[1]) {
    out += "<mark>" + xml_text(line.substr(cuts[0], cuts[1] - cuts[0])) + "</mark>";
  }
  return out + xml_text(line.substr(cuts[1])) + "</pre>\n";
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() ? "" : ", ") + word;
  }
  return text;
}

// The pieces; of one that is shown already only the solvers.
std::string pieces_entries(const char* term, const std::vector<open_piece>& pieces, const shown_formula& known) {
  std::string out;
  for (const open_piece& piece : pieces) {
    if (piece.formula.internal != known.internal) {
      out += entry(term, formula_html(piece.formula));
    }
    if (!piece.solvers.empty()) {
      out += entry("tried for its shape", xml_text(joined(piece.solvers)));
    }
  }
  return out;
}

std::string diagnostic_html(const report_diagnostic& d) {
  std::string out = "<div class=\"said " + xml_text(d.level) + "\">\n<p><b>" + xml_text(d.level) + " <code>" +
                    xml_text(d.code) + "</code></b> " + xml_text(d.message) + "</p>\n";
  if (!d.file.empty()) {
    const std::string place =
        d.line > 0 ? ":" + std::to_string(d.line) + ":" + std::to_string(std::max(d.column, 1)) : std::string();
    out += "<p class=\"soft\">" + xml_text(d.file + place) + "</p>\n";
  }
  if (!d.source.empty()) {
    out += source_html(d);
  }
  std::string entries;
  entries += d.needed.empty() ? "" : entry("needed", formula_html(d.needed));
  entries += d.given.empty() ? "" : entry("given", formula_html(d.given));
  entries += pieces_entries("open", d.open, d.needed);
  entries += pieces_entries("comes down to", d.unfolded, {});
  entries += d.solver.empty() ? "" : entry("solver asked for", xml_text(d.solver));
  entries += d.budget_ended.empty() ? "" : entry("at its limit of work", xml_text(joined(d.budget_ended)));
  entries += d.suggestion.empty() ? "" : entry("help", xml_text(d.suggestion));
  return out + list_of(entries) + "</div>\n";
}

// ---- The page.

class page_writer {
 public:
  explicit page_writer(const proof_report& report) : report_(report) {
    for (const report_step& step : report.explained) {
      most_work_ = std::max(most_work_, step.work);
      most_time_ = std::max(most_time_, step.microseconds);
    }
  }

  std::string page() {
    out_ = head_of(report_.id);
    write_title();
    write_gap();
    write_said_outside_of_steps();
    write_steps();
    if (!report_.goal.empty()) {
      out_ += "<h2>Left to prove</h2>\n<div class=\"card\">" + formula_html(report_.goal) + "</div>\n";
    }
    out_ += foot;
    return std::move(out_);
  }

 private:
  void write_title() {
    out_ += "<p><a href=\"index.html\">All proofs</a></p>\n<h1>" + xml_text(report_.id) + "</h1>\n<p>" +
            outcome_html(report_.result) + "</p>\n<p class=\"soft\">";
    if (!report_.gap.empty() || !report_.script.empty()) {
      out_ += xml_text(report_.gap) + ", " + xml_text(report_.script) + "<br/>";
    }
    out_ += "steps: " + std::to_string(report_.steps) + ", work: " + std::to_string(report_.work);
    out_ += report_.with_times ? ", time: " + time_text(report_.microseconds) : "";
    out_ += "</p>\n";
  }

  void write_gap() {
    if (report_.target.empty()) {
      return;
    }
    std::string entries;
    for (std::size_t i = 0; i < report_.assumptions.size(); ++i) {
      entries += entry("hypothesis " + std::to_string(i + 1), formula_html(report_.assumptions[i]));
    }
    entries += entry("goal", formula_html(report_.target));
    out_ += "<h2>Gap</h2>\n<div class=\"card\">\n" + list_of(entries) + "</div>\n";
  }

  bool has_step(const std::string& id) const {
    return std::any_of(report_.explained.begin(), report_.explained.end(),
                       [&](const report_step& step) { return step.step == id; });
  }

  void write_said_outside_of_steps() {
    for (const report_diagnostic& d : report_.diagnostics) {
      if (d.step.empty() || !has_step(d.step)) {
        out_ += diagnostic_html(d);
      }
    }
  }

  void write_steps() {
    out_ += report_.explained.empty() ? "" : "<h2>Steps</h2>\n";
    for (const report_step& step : report_.explained) {
      write_step(step);
    }
  }

  void write_step(const report_step& step) {
    const bool inner = step.step.find('.') != std::string::npos;
    const bool failed = step.result == "fail";
    out_ += std::string("<div class=\"step") + (inner ? " inner" : "") + (failed ? " failed" : "") +
            "\">\n<div class=\"head\"><span class=\"number\">" + xml_text(step.step) + "</span><span>" +
            xml_text(step.text) + "</span>" + (failed ? "<span class=\"outcome\">failed</span>" : "") +
            "<span class=\"soft\">line " + std::to_string(step.line) + "</span></div>\n";
    std::string entries;
    for (const report_step::hypothesis& h : step.hypotheses) {
      entries += entry("hypothesis " + std::to_string(h.number), formula_html(h.formula));
    }
    entries += step.goal.empty() ? "" : entry("goal", formula_html(step.goal));
    for (const report_step::closing& c : step.closed) {
      entries += entry(c.solver + " closes", formula_html(c.formula));
    }
    out_ += list_of(entries);
    for (const report_diagnostic& d : report_.diagnostics) {
      if (!d.step.empty() && d.step == step.step) {
        out_ += diagnostic_html(d);
      }
    }
    out_ += "<div class=\"bars\">\n" + bar("", step.work, most_work_, "work " + std::to_string(step.work));
    if (report_.with_times) {
      out_ += bar(" time", step.microseconds, most_time_, time_text(step.microseconds));
    }
    out_ += "</div>\n</div>\n";
  }

  const proof_report& report_;
  std::string out_;
  std::uint64_t most_work_ = 0;
  std::uint64_t most_time_ = 0;
};

}  // namespace

std::string html_page(const proof_report& report) { return page_writer(report).page(); }

// The counts and the largest values stand in the beginning, in as many bytes before the first proof as behind the last.
std::string html_pages::index_beginning() const {
  std::string out = head_of("Proofs") + "<h1>Proofs</h1>\n<ul class=\"counts\">\n";
  for (const outcome_row& row : outcome_rows) {
    const std::size_t count = counts_[static_cast<std::size_t>(row.value)];
    out += std::string("<li class=\"") + (count == 0 ? "none" : "some") + "\">" + outcome_html(row.value) +
           format_text(" %12zu</li>\n", count);
  }
  return out +
         format_text("</ul>\n<table class=\"%s\" style=\"--most-work: %20llu; --most-time: %20llu\">\n",
                     timed_ ? "timed  " : "untimed", static_cast<unsigned long long>(most_work_),
                     static_cast<unsigned long long>(most_time_)) +
         "<thead><tr><th>Outcome</th><th>Proof</th><th class=\"count\">Errors</th>"
         "<th class=\"count wide\">Steps</th><th class=\"count wide\">Work</th>"
         "<th class=\"count wide time\">Time</th></tr></thead>\n<tbody>\n";
}

bool html_pages::write_file(const std::string& name, std::string_view text) {
  output_file file;
  if (!file.open(folder_ + "/" + name)) {
    return false;
  }
  file.write(text);
  return file.finish();
}

bool html_pages::open(const std::string& folder) {
  folder_ = folder;
  if (!make_folder(folder) || !write_file("style.css", html_style) || !index_.open(folder + "/index.html")) {
    return false;
  }
  index_.write(index_beginning());
  return true;
}

void html_pages::proof(const proof_report& report) {
  if (!index_.is_open()) {
    return;
  }
  ++counts_[static_cast<std::size_t>(report.result)];
  most_work_ = std::max(most_work_, report.work);
  most_time_ = std::max(most_time_, report.microseconds);
  timed_ = timed_ || report.with_times;
  const std::string name = file_stem(report.number, report.id) + ".html";
  lost_ = lost_ || !write_file(name, html_page(report));
  index_.write("<tr><td>" + outcome_html(report.result) + "</td><td><a href=\"" + name + "\">" + xml_text(report.id) +
               "</a>" + share("", report.work) + share(" time", report.microseconds) + "</td><td class=\"count\">" +
               std::to_string(report.count("error")) + "</td><td class=\"count wide\">" + std::to_string(report.steps) +
               "</td><td class=\"count wide\">" + std::to_string(report.work) + "</td><td class=\"count wide time\">" +
               time_text(report.microseconds) + "</td></tr>\n");
}

bool html_pages::finish() {
  if (!index_.is_open()) {
    return !lost_;
  }
  index_.write("</tbody>\n</table>\n");
  index_.write(foot);
  index_.replace_beginning(index_beginning());
  return index_.finish() && !lost_;
}

}  // namespace vetro

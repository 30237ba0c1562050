// Places stand in front of messages in the form that editors and terminals know. Columns count characters.
#include "check/person.h"

#include <algorithm>
#include <numeric>

namespace vetro {
namespace {

constexpr std::string_view red = "\x1b[1;31m";
constexpr std::string_view green = "\x1b[32m";
constexpr std::string_view yellow = "\x1b[33m";
constexpr std::string_view bold = "\x1b[1m";
constexpr std::string_view plain = "\x1b[0m";

std::string_view colour_of(outcome o) {
  switch (row_of(o).exit_status) {
    case 0:
      return green;
    case exit_not_clean:
      return yellow;
    default:
      return red;
  }
}

bool continues_character(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// The byte at which a character stands, by its number from 0; the size of the text behind its end.
std::size_t byte_of(std::string_view text, std::size_t character) {
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    if (!continues_character(text[at]) && character-- == 0) {
      break;
    }
  }
  return at;
}

std::size_t characters_in(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !continues_character(c); }));
}

class painter {
 public:
  explicit painter(const person_settings& settings) : settings_(settings) {}

  void paint(std::string_view colour, std::string_view text) {
    out_ += settings_.colour ? colour : "";
    out_ += text;
    out_ += settings_.colour ? plain : "";
  }
  void write(std::string_view text) { out_ += text; }
  std::string take() { return std::move(out_); }

  void title(const proof_report& report) {
    constexpr std::size_t width = 15;
    std::string words(row_of(report.result).words);
    words.resize(std::max(words.size() + 1, width), ' ');
    paint(colour_of(report.result), words);
    write(report.id);
    write("\n");
  }

  void step(const report_step& step) {
    write("  [" + step.step + "] " + step.text + "\n");
    for (const report_step::hypothesis& h : step.hypotheses) {
      write("      H" + std::to_string(h.number) + ": " + h.formula.pretty + "\n");
    }
    if (!step.goal.empty()) {
      write("      goal: " + step.goal.pretty + "\n");
    }
    for (const report_step::closing& c : step.closed) {
      write("      " + c.solver + " closes " + c.formula.pretty + "\n");
    }
    if (step.result == "fail") {
      write("      failed\n");
    }
  }

  void diagnostic(const report_diagnostic& d) {
    std::string place = d.file;
    if (d.line > 0) {
      place += ":" + std::to_string(d.line) + ":" + std::to_string(std::max(d.column, 1));
    }
    paint(bold, place.empty() ? "" : place + ": ");
    paint(d.level == "error" ? red : yellow, d.level + "[" + d.code + "]");
    write(": " + d.message + "\n");
    excerpt(d);
    formula("needed", d.needed);
    formula("given", d.given);
    pieces("open", d.open, d.needed);
    pieces("comes down to", d.unfolded, {});
    for (const std::string& solver : d.budget_ended) {
      write("      budget: " + solver + " met a limit of work\n");
    }
    if (!d.suggestion.empty()) {
      write("      help: " + d.suggestion + "\n");
    }
  }

 private:
  // The line with a caret below the place. Of a long line the part around it.
  void excerpt(const report_diagnostic& d) {
    if (d.source.empty() || static_cast<std::size_t>(d.column) > characters_in(d.source) + 1) {
      return;
    }
    constexpr std::size_t shown = 140;
    constexpr std::size_t in_front = 60;
    const auto column = static_cast<std::size_t>(std::max(d.column, 1)) - 1;
    const std::size_t total = characters_in(d.source);
    const std::size_t first = total <= shown || column <= in_front ? 0 : std::min(column - in_front, total - shown);
    std::string text = d.source.substr(byte_of(d.source, first));
    const bool cut = characters_in(text) > shown;
    text.resize(byte_of(text, shown));
    // A terminal gets no tab, which has no fixed width, and no sign that would steer it.
    std::replace_if(
        text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }, ' ');
    const std::string number = std::to_string(d.line);
    const std::string margin(number.size() < 5 ? 5 - number.size() : 0, ' ');
    write(margin + number + " | " + (first > 0 ? "…" : "") + text + (cut ? "…" : "") + "\n");
    if (d.column > 0) {
      const std::size_t at = column - first + (first > 0 ? 1 : 0);
      const auto length = static_cast<std::size_t>(std::max(d.length, 1));
      const std::size_t room = std::max<std::size_t>(characters_in(text) + (first > 0 ? 1 : 0), at + 1) - at;
      write(std::string(std::max<std::size_t>(number.size(), 5), ' ') + " | " + std::string(at, ' '));
      paint(green, "^" + std::string(std::min(length, room) - 1, '~'));
      write("\n");
    }
  }

  // A huge formula by its beginning.
  void formula(const char* label, const shown_formula& f) {
    constexpr std::size_t shown = 1'000;
    if (!f.empty()) {
      const std::size_t end = byte_of(f.pretty, shown);
      write("      " + std::string(label) + ": " + f.pretty.substr(0, end) + (end < f.pretty.size() ? " …\n" : "\n"));
    }
  }

  // The pieces, but for one that is shown already.
  void pieces(const char* label, const std::vector<open_piece>& list, const shown_formula& known) {
    for (const open_piece& piece : list) {
      if (piece.formula.internal != known.internal) {
        formula(label, piece.formula);
      }
      if (!piece.solvers.empty()) {
        std::string names;
        for (const std::string& solver : piece.solvers) {
          names += (names.empty() ? "" : ", ") + solver;
        }
        write("        tried for its shape: " + names + "\n");
      }
    }
  }

  const person_settings& settings_;
  std::string out_;
};

}  // namespace

std::string person_report::proof(const proof_report& report) {
  ++counts_[static_cast<std::size_t>(report.result)];
  if (settings_.quiet && report.result == outcome::verified && report.diagnostics.empty()) {
    return {};
  }
  painter p(settings_);
  p.title(report);
  if (settings_.explain) {
    for (const report_step& step : report.explained) {
      p.step(step);
    }
  }
  for (const report_diagnostic& d : report.diagnostics) {
    p.diagnostic(d);
  }
  return p.take();
}

std::string person_report::summary() const {
  const std::size_t all = std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
  if (all <= 1) {
    return {};
  }
  std::string text = std::to_string(all) + " proofs";
  const char* separator = ": ";
  for (const outcome_row& row : outcome_rows) {
    if (const std::size_t count = counts_[static_cast<std::size_t>(row.value)]; count > 0) {
      text += separator + std::to_string(count) + " " + std::string(row.words);
      separator = ", ";
    }
  }
  return text + "\n";
}

}  // namespace vetro

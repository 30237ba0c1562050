// The proof gap file: numbered assumptions behind "ASSUM:", one goal behind "GOAL:", one formula to a line.
#include "lib/proof_gap_parser.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "diagnostics/diagnostics.h"
#include "lib/line_reader.h"
#include "lib/semantic_term.h"
#include "platform/text_file.h"
#include "term/report.h"

namespace vetro {
namespace {

// The text is written whole: a line may hold NUL bytes.
void report_line(std::string_view message, std::string_view text) {
  std::string line(message);
  line += text;
  line += '\n';
  report_text(line);
}

// Adds a record on a part of the line that is being read.
void diagnose(diagnostic_code code, std::string_view part, std::string message, std::string suggestion = {}) {
  if (diagnostics* d = collecting_diagnostics) {
    d->add({.code = code,
            .level = row_of(code).level,
            .message = std::move(message),
            .place = d->place_of(part),
            .suggestion = std::move(suggestion)});
  }
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  return begin == std::string_view::npos ? std::string_view()
                                         : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// The heading that a line nearly is: one in other letters, without its colon, or another usual word.
std::string_view heading_meant(std::string_view line) {
  constexpr std::pair<std::string_view, std::string_view> words[] = {
      {"assum", "ASSUM:"}, {"given", "ASSUM:"}, {"hypothes", "ASSUM:"}, {"goal", "GOAL:"},
      {"prove", "GOAL:"},  {"show", "GOAL:"},   {"claim", "GOAL:"},     {"conclusion", "GOAL:"},
  };
  std::string small;
  for (const char c : trimmed(line)) {
    small += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  for (const auto& [word, heading] : words) {
    if (small.starts_with(word)) {
      return heading;
    }
  }
  return {};
}

class gap_reader {
 public:
  // One line without its line end.
  void take(std::string_view line) {
    ++line_number_;
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->reads_line(source_file::gap, line_number_, line);
    }
    if (take_heading(line, "ASSUM:")) {
      section_ = section::assumptions;
    } else if (take_heading(line, "GOAL:")) {
      section_ = goal_seen_ ? section::none : section::goal;
    } else if (!line.empty() && section_ == section::assumptions) {
      take_assumption(line);
    } else if (!line.empty() && section_ == section::goal) {
      take_goal(line);
    } else if (!trimmed(line).empty()) {
      miss_line(line);
    }
  }

  std::optional<proof_gap_full> finish() {
    if (!goal_seen_ && collecting_diagnostics != nullptr) {
      collecting_diagnostics->add(
          {.code = diagnostic_code::gap_without_goal,
           .message = goal_heading_ == 0 ? "there is no line 'GOAL:' with a goal on the line behind it"
                                         : "no line behind 'GOAL:' states a goal",
           .place = {source_file::gap, goal_heading_ == 0 ? line_number_ + 1 : goal_heading_, 1, 0}});
    }
    if (failed_ || gap_.goal == nullptr) {
      return std::nullopt;
    }
    return std::move(gap_);
  }

 private:
  enum class section : unsigned char { none, assumptions, goal };

  // Whatever else stands on the line of a heading is not read.
  bool take_heading(std::string_view line, std::string_view heading) {
    const std::size_t at = line.find(heading);
    if (at == std::string_view::npos) {
      return false;
    }
    if (heading == "GOAL:" && goal_heading_ == 0) {
      goal_heading_ = line_number_;
    }
    const std::string_view behind = trimmed(line.substr(at + heading.size()));
    const std::string_view rest = behind.empty() ? trimmed(line.substr(0, at)) : behind;
    if (!rest.empty()) {
      diagnose(diagnostic_code::behind_goal, rest, "on the line of '" + std::string(heading) + "' nothing else is read",
               "put it on a line of its own");
    }
    return true;
  }

  // A line that no section holds. In front of the first heading one message says it for all, and one for each line that
  // may have been meant as a heading.
  void miss_line(std::string_view line) {
    if (goal_seen_) {
      diagnose(diagnostic_code::behind_goal, line, "this line behind the goal is not read");
      return;
    }
    const std::string_view meant = heading_meant(line);
    if (meant.empty() && said_of_front_) {
      return;
    }
    said_of_front_ = said_of_front_ || meant.empty();
    diagnose(diagnostic_code::behind_goal, line, "nothing in front of 'ASSUM:' is read",
             meant.empty() ? "" : "did you mean '" + std::string(meant) + "', alone on its line?");
  }

  void take_assumption(std::string_view line) {
    ++position_;
    const std::size_t start = parse_assumption_formula_start(line);
    if (start == std::string_view::npos) {
      failed_ = true;
      report_line("Error: Invalid assumption format: ", line);
      diagnose(diagnostic_code::gap_line_form, line,
               "an assumption is a number, perhaps a dot, and a formula on one line", numbered(line));
      return;
    }
    compare_number(line.substr(0, start));
    const std::string_view formula = line.substr(start);
    term_ptr t = parse_semantic_term_from_str(formula);
    if (t == nullptr) {
      failed_ = true;
      report_line("Error: Parse failed for: ", formula);
      return;
    }
    add_assumption(gap_, t);
  }

  void take_goal(std::string_view line) {
    goal_seen_ = true;
    section_ = section::none;
    gap_.goal = parse_semantic_term_from_str(line);
    if (gap_.goal == nullptr) {
      failed_ = true;
      report_line("Error: Goal parse failed: ", line);
    }
  }

  // The line as an assumption: without what other notations put in front of a formula.
  std::string numbered(std::string_view line) const {
    const std::string_view text = trimmed(line);
    if (heading_meant(text) == "GOAL:" || text.empty()) {
      return text.empty() ? "" : "did you mean 'GOAL:', alone on its line?";
    }
    // "(1) x > 0", "1) x > 0", "h1: x > 0", "- x > 0".
    constexpr std::size_t longest_mark = 4;
    std::string_view formula = text;
    const std::size_t mark = text.find_first_of(":)");
    if (mark <= longest_mark && text.substr(0, mark).find_first_of("0123456789") != std::string_view::npos) {
      formula = trimmed(text.substr(mark + 1));
    } else if (text.starts_with("- ") || text.starts_with("* ")) {
      formula = trimmed(text.substr(2));
    }
    return formula.empty() ? "" : "write '" + std::to_string(position_) + ". " + std::string(formula) + "'";
  }

  // Assumptions count by their position; the written number is for the reader. Where all are shifted alike, the first
  // says it.
  void compare_number(std::string_view head) {
    const std::size_t digits = head.find_first_of("0123456789");
    const std::string_view written = head.substr(digits, head.find_first_not_of("0123456789", digits) - digits);
    const std::string position = std::to_string(position_);
    if (collecting_diagnostics == nullptr) {
      return;
    }
    long long number = 0;
    std::from_chars(written.data(), written.data() + written.size(), number);
    const long long shift = written == position ? 0 : number - position_;
    if (written != position && (shift != shift_ || shift == 0)) {
      diagnose(diagnostic_code::gap_number, written,
               "this is hypothesis " + position + ", whatever number stands here");
    }
    shift_ = shift;
  }

  proof_gap_full gap_;
  int line_number_ = 0;
  int position_ = 0;      // of the assumption, also behind one that does not parse
  long long shift_ = 0;   // of the last written number against its position
  int goal_heading_ = 0;  // the first line with 'GOAL:'
  bool said_of_front_ = false;
  section section_ = section::none;
  bool goal_seen_ = false;
  bool failed_ = false;
};

}  // namespace

std::size_t parse_assumption_formula_start(std::string_view line) {
  std::size_t at = 0;
  const auto skip = [&](std::string_view characters) {
    const std::size_t from = at;
    at = std::min(line.find_first_not_of(characters, at), line.size());
    return at > from;
  };
  constexpr std::string_view keyword = "hypothesis";
  skip(" ");
  if (line.substr(at).starts_with(keyword)) {
    at += keyword.size();
    skip(" ");
  }
  if (!skip("0123456789")) {
    return std::string_view::npos;
  }
  skip(". ");
  return at == line.size() ? std::string_view::npos : at;
}

std::optional<proof_gap_full> parse_proof_gap(const std::string& filename) {
  const text_file file = open_text_file(filename.c_str());
  if (file == nullptr) {
    diagnose_unreadable(source_file::gap);
    std::perror("File open failed");
    return std::nullopt;
  }
  return read_proof_gap(file.get());
}

std::optional<proof_gap_full> read_proof_gap(std::FILE* file) {
  gap_reader reader;
  std::string line;
  line_status status = qv_read_line(file, line);
  for (; status == line_status::line; status = qv_read_line(file, line)) {
    reader.take(without_line_end(line));
  }
  if (status == line_status::failed) {
    diagnose_unreadable(source_file::gap);
    std::perror("File read failed");
    return std::nullopt;
  }
  return reader.finish();
}

}  // namespace vetro

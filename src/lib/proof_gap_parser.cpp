// The proof gap file: numbered assumptions behind "ASSUM:", one goal behind "GOAL:", one formula to a line.
#include "lib/proof_gap_parser.h"

#include <algorithm>
#include <cstdio>

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
void diagnose(diagnostic_code code, std::string_view part, std::string message) {
  if (diagnostics* d = collecting_diagnostics) {
    d->add({.code = code, .level = row_of(code).level, .message = std::move(message), .place = d->place_of(part)});
  }
}

class gap_reader {
 public:
  // One line without its line end.
  void take(std::string_view line) {
    ++line_number_;
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->reads_line(source_file::gap, line_number_, line);
    }
    if (line.find("ASSUM:") != std::string_view::npos) {
      section_ = section::assumptions;
    } else if (line.find("GOAL:") != std::string_view::npos) {
      section_ = goal_seen_ ? section::none : section::goal;
    } else if (!line.empty() && section_ == section::assumptions) {
      take_assumption(line);
    } else if (!line.empty() && section_ == section::goal) {
      take_goal(line);
    } else if (line.find_first_not_of(" \t") != std::string_view::npos) {
      diagnose(diagnostic_code::behind_goal, line,
               goal_seen_ ? "this line behind the goal is not read" : "this line in front of 'ASSUM:' is not read");
    }
  }

  std::optional<proof_gap_full> finish() {
    if (!goal_seen_ && collecting_diagnostics != nullptr) {
      collecting_diagnostics->add({.code = diagnostic_code::gap_without_goal,
                                   .message = "no line behind 'GOAL:' states a goal",
                                   .place = {source_file::gap, line_number_ + 1, 1, 0}});
    }
    if (failed_ || gap_.goal == nullptr) {
      return std::nullopt;
    }
    return std::move(gap_);
  }

 private:
  enum class section : unsigned char { none, assumptions, goal };

  void take_assumption(std::string_view line) {
    ++position_;
    const std::size_t start = parse_assumption_formula_start(line);
    if (start == std::string_view::npos) {
      failed_ = true;
      report_line("Error: Invalid assumption format: ", line);
      diagnose(diagnostic_code::gap_line_form, line,
               "an assumption is a number, perhaps a dot, and a formula on one line");
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

  // Assumptions count by their position; the written number is for the reader.
  void compare_number(std::string_view head) {
    const std::size_t digits = head.find_first_of("0123456789");
    const std::string_view written = head.substr(digits, head.find_first_not_of("0123456789", digits) - digits);
    const std::string position = std::to_string(position_);
    if (written != position && collecting_diagnostics != nullptr) {
      diagnose(diagnostic_code::gap_number, written,
               "this is hypothesis " + position + ", whatever number stands here");
    }
  }

  proof_gap_full gap_;
  int line_number_ = 0;
  int position_ = 0;  // of the assumption, also behind one that does not parse
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

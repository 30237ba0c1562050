// The proof gap file: numbered assumptions behind "ASSUM:", one goal behind "GOAL:", one formula to a line.
#include "lib/proof_gap_parser.h"

#include <algorithm>
#include <cstdio>

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

class gap_reader {
 public:
  // One line without its line end.
  void take(std::string_view line) {
    if (line.find("ASSUM:") != std::string_view::npos) {
      section_ = section::assumptions;
    } else if (line.find("GOAL:") != std::string_view::npos) {
      section_ = goal_seen_ ? section::none : section::goal;
    } else if (!line.empty() && section_ == section::assumptions) {
      take_assumption(line);
    } else if (!line.empty() && section_ == section::goal) {
      take_goal(line);
    }
  }

  std::optional<proof_gap_full> finish() {
    if (failed_ || gap_.goal == nullptr) {
      return std::nullopt;
    }
    return std::move(gap_);
  }

 private:
  enum class section : unsigned char { none, assumptions, goal };

  void take_assumption(std::string_view line) {
    const std::size_t start = parse_assumption_formula_start(line);
    if (start == std::string_view::npos) {
      failed_ = true;
      report_line("Error: Invalid assumption format: ", line);
      return;
    }
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

  proof_gap_full gap_;
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
    std::perror("File read failed");
    return std::nullopt;
  }
  return reader.finish();
}

}  // namespace vetro

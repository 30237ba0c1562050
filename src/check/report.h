// What there is to say of one proof, in plain data: the form in which it goes from the process of the proof to all that
// show it. It is written and read as events, JSON objects on a line each.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/outcome.h"

namespace vetro {

// The version of the events' format: it changes when a key changes its meaning or goes, not when one is added.
inline constexpr int event_format = 1;

// A formula in both forms, and as MathML where pages are made; empty texts where there is none.
struct shown_formula {
  std::string pretty;
  std::string internal;
  std::string mathml = {};
  bool empty() const { return pretty.empty(); }
};

// A formula that is left to prove, with the solvers that work on its shape.
struct open_piece {
  shown_formula formula;
  std::vector<std::string> solvers;
};

struct report_diagnostic {
  std::string step;
  std::string level;
  std::string code;
  std::string message;
  std::string file;
  int line = 0;
  int column = 0;
  int length = 0;
  std::string source;  // the line of the file
  shown_formula needed;
  shown_formula given;
  std::string solver;  // the one that the script asks for
  std::string suggestion;
  std::vector<open_piece> open;
  std::vector<open_piece> unfolded;
  std::vector<std::string> budget_ended;
};

struct report_step {
  std::string step;
  int line = 0;
  std::string instruction;
  std::string text;  // what it used
  std::string result;
  shown_formula goal;  // where it changed
  struct hypothesis {
    int number = 0;
    shown_formula formula;
  };
  std::vector<hypothesis> hypotheses;  // new ones, and those that changed
  struct closing {
    shown_formula formula;
    std::string solver;
  };
  std::vector<closing> closed;
  std::uint64_t work = 0;
  std::uint64_t microseconds = 0;
};

struct proof_report {
  std::size_t number = 0;
  std::string id;
  std::string gap;
  std::string script;
  outcome result = outcome::fault;
  bool finished = false;
  std::size_t steps = 0;
  std::size_t admits = 0;
  std::size_t branches = 0;
  std::uint64_t work = 0;
  std::uint64_t microseconds = 0;
  shown_formula goal;                      // where it is open
  std::vector<shown_formula> assumptions;  // these two only where pages are made
  shown_formula target;
  std::vector<report_diagnostic> diagnostics;
  std::vector<report_step> explained;  // only where steps were asked for
  bool with_times = false;

  std::size_t count(std::string_view level) const;
  bool has(std::string_view code) const;
};

// What files of a proof are called: its number, and those characters of its id that are safe everywhere.
std::string file_stem(std::size_t number, std::string_view id);

// The events of a proof, a line each: its gap, its steps, its diagnostics, its result.
std::string events_of(const proof_report& report);

// Puts events together again.
class event_reader {
 public:
  // False for a line that is no event of this format.
  bool take(const std::string& line);
  // Whether the last line completed a proof.
  bool complete() const { return complete_; }
  proof_report& report() { return report_; }
  // The kind of the last event.
  const std::string& event() const { return event_; }

 private:
  proof_report report_;
  std::string event_;
  bool complete_ = true;
};

}  // namespace vetro

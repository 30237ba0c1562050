// Diagnostics as records: what a run has to say beside its texts, for programs that collect it. Whoever has a fact (a
// reader, an instruction, a solver's dispatcher) adds it to the collector of the process. Where nobody collects, the
// cost is one test of a pointer, and the texts of a run are the same either way.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/codes.h"
#include "term/ast.h"

namespace vetro {

enum class source_file : std::uint8_t { none, gap, script, library };

// A stretch of one line. Lines and columns count from 1, columns in bytes; line 0 is no place.
struct source_span {
  source_file file = source_file::none;
  int line = 0;
  int column = 0;
  int length = 0;
};

// A stretch of a line that is known from elsewhere; column 0 is no place.
struct text_span {
  int column = 0;
  int length = 0;
};

struct diagnostic {
  diagnostic_code code{};
  severity level = severity::error;
  std::string message;  // without a line end behind it
  source_span place;
  std::string step = {};        // the id of the step; empty outside of all
  term_ptr needed = nullptr;    // the formula that had to stand there
  term_ptr given = nullptr;     // the formula that stood there
  std::string suggestion = {};  // what may have been meant
  int attempt = -1;             // the number of the search for a proof that failed, or none
};

// What the dispatcher found out while it worked on one target.
struct closed_piece {
  term_ptr piece;
  std::string solver;
};
struct proof_attempt {
  term_ptr target = nullptr;
  bool proved = false;
  std::string requested_solver = {};                // the one that was selected by name
  std::vector<closed_piece> closed = {};            // what was proved, and by which solver
  term_list open = {};                              // what was left behind splitting
  term_list unfolded = {};                          // what the open pieces came down to
  std::vector<std::string_view> budget_ended = {};  // solvers that ran out of their budget
};

// A step that was executed.
struct executed_step {
  std::string id;
  int line = 0;
  std::string_view instruction;  // its keyword
  std::string_view result;       // the word of the execute log
  std::string header;            // what it used, as the execute log says it
  term_ptr new_goal = nullptr;   // where the goal changed and is open
  struct change {
    int number;
    term_ptr t;
  };
  std::vector<change> changed;     // hypotheses that are new or other than before
  std::uint64_t work = 0;          // calls of the term factory
  std::uint64_t microseconds = 0;  // of the clock; the only thing here that differs from run to run
  std::size_t first_attempt = 0;   // those of the step, without those of its proof block's steps
  std::size_t behind_attempts = 0;
};

// Where the text that is being read comes from: pieces of it stand one behind the other in the buffer that is read.
struct text_piece {
  std::size_t offset;  // in the buffer
  int line;
  int column;
};

class diagnostics {
 public:
  // Adds a record; within a step (step_is_open) it gets the step's id, and its line where it has no place of its own.
  void add(diagnostic d);

  // ---- Places in texts.
  void reads_line(source_file file, int line, std::string_view text);
  void reads_pieces(source_file file, std::string_view buffer, const std::vector<text_piece>& pieces);
  // The place of a part of the text that is being read; no place for any other text.
  source_span place_of(std::string_view part) const;
  source_span place_in_line(text_span span) const;
  bool reads(source_file file) const { return file_ == file; }

  // How bad it is that a formula does not parse: some references stand without theirs.
  severity bad_formula = severity::error;

  // ---- Steps. A proof block's steps are inside the step of its assertion.
  struct step_place {
    std::string id;
    int line = 0;
  };
  void open_step(std::string id, int line) { steps_.push_back({std::move(id), line}); }
  void close_step() { steps_.pop_back(); }
  const step_place* open() const { return steps_.empty() ? nullptr : &steps_.back(); }

  std::vector<diagnostic> records;
  std::vector<proof_attempt> attempts;
  int attempts_under_way = 0;
  std::vector<executed_step> executed;  // in the order of their ends

 private:
  source_file file_ = source_file::none;
  std::string_view text_;
  std::vector<text_piece> pieces_;
  std::vector<step_place> steps_;
};

// The collector of this process; null while nobody asks.
inline diagnostics* collecting_diagnostics = nullptr;

// Records that a file cannot be read, with the platform's reason; errno stays.
void diagnose_unreadable(source_file file);

// Collects for as long as it lives.
class diagnostics_collection {
 public:
  explicit diagnostics_collection(diagnostics& d) : before_(collecting_diagnostics) { collecting_diagnostics = &d; }
  ~diagnostics_collection() { collecting_diagnostics = before_; }
  diagnostics_collection(const diagnostics_collection&) = delete;
  diagnostics_collection& operator=(const diagnostics_collection&) = delete;

 private:
  diagnostics* before_;
};

}  // namespace vetro

// The three states of a gap, and its two printed layouts.
#include "lib/proof_gap.h"

#include "term/print.h"

namespace vetro {
namespace {

struct gap_layout {
  const char* before_number;
  const char* method_heading;
};

constexpr gap_layout pretty_layout = {"", "\n\nMETHOD:\n"};
constexpr gap_layout internal_layout = {"hypothesis ", "\n\nMethod:\n"};

}  // namespace

void print_proof_gap_full_with(std::string& out, const proof_gap_full& gap, bool internal,
                               const gap_term_printer& print) {
  const gap_layout& layout = internal ? internal_layout : pretty_layout;
  out += "ASSUM:\n";
  int number = 0;
  for (term_ptr assumption : gap.assum) {
    out += layout.before_number;
    out += std::to_string(++number);
    out += ". ";
    print(out, assumption);
    out += '\n';
  }
  out += "\nGOAL:\n";
  if (proof_gap_full_is_finished(gap)) {
    out += "[finished]\n";
  } else {
    print(out, gap.goal);
  }
  out += layout.method_heading;
  for (const method& m : gap.meth_list) {
    out += "[@method ";
    out += m.text;
    out += " @]";
  }
}

bool proof_gap_full_is_finished(const proof_gap_full& gap) { return gap.goal != nullptr && gap.finished; }

bool proof_gap_full_is_pending(const proof_gap_full& gap) { return gap.goal != nullptr && !gap.finished; }

void proof_gap_full_mark_finished(proof_gap_full& gap) {
  if (gap.goal != nullptr) {
    gap.finished = true;
  }
}

void proof_gap_full_mark_unfinished(proof_gap_full& gap) {
  if (gap.goal != nullptr) {
    gap.finished = false;
  }
}

void add_assumption(proof_gap_full& gap, term_ptr t) { gap.assum.push_back(t); }

void print_proof_gap_full(std::string& out, const proof_gap_full& gap) {
  print_proof_gap_full_with(out, gap, false, print_term);
}

void print_proof_gap_full_internal(std::string& out, const proof_gap_full& gap) {
  print_proof_gap_full_with(out, gap, true, print_term_internal);
}

}  // namespace vetro

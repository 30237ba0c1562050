// The three states of a gap, and its two printed layouts.
#include "lib/proof_gap.h"

#include "term/print.h"

namespace vetro {
namespace {

struct gap_layout {
  const char* before_number;
  const char* method_heading;
  void (*print)(std::string& out, term_ptr t);
};

constexpr gap_layout pretty_layout = {"", "\n\nMETHOD:\n", print_term};
constexpr gap_layout internal_layout = {"hypothesis ", "\n\nMethod:\n", print_term_internal};

void print_gap(std::string& out, const proof_gap_full& gap, const gap_layout& layout) {
  out += "ASSUM:\n";
  int number = 0;
  for (term_ptr assumption : gap.assum) {
    out += layout.before_number;
    out += std::to_string(++number);
    out += ". ";
    layout.print(out, assumption);
    out += '\n';
  }
  out += "\nGOAL:\n";
  if (proof_gap_full_is_finished(gap)) {
    out += "[finished]\n";
  } else {
    layout.print(out, gap.goal);
  }
  out += layout.method_heading;
  for (const method& m : gap.meth_list) {
    out += "[@method ";
    out += m.text;
    out += " @]";
  }
}

}  // namespace

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

void print_proof_gap_full(std::string& out, const proof_gap_full& gap) { print_gap(out, gap, pretty_layout); }

void print_proof_gap_full_internal(std::string& out, const proof_gap_full& gap) {
  print_gap(out, gap, internal_layout);
}

}  // namespace vetro

// The three states of a gap, and its two printed layouts.
#include "lib/proof_gap.h"

#include "term/print/pretty.h"

namespace vetro {
namespace {

struct gap_layout {
  const char* before_number;
  const char* method_heading;
};

constexpr gap_layout pretty_layout = {"", "\n\nMETHOD:\n"};
constexpr gap_layout internal_layout = {"hypothesis ", "\n\nMethod:\n"};

const gap_layout& layout_of(bool internal) { return internal ? internal_layout : pretty_layout; }

}  // namespace

void print_gap_heading(std::string& out) { out += "ASSUM:\n"; }

void print_gap_assumption(std::string& out, std::size_t number, term_ptr t, bool internal,
                          const gap_term_printer& print) {
  out += layout_of(internal).before_number;
  out += std::to_string(number);
  out += ". ";
  print(out, t);
  out += '\n';
}

void print_gap_rest(std::string& out, const proof_gap_full& gap, bool internal, const gap_term_printer& print) {
  out += "\nGOAL:\n";
  if (proof_gap_full_is_finished(gap)) {
    out += "[finished]\n";
  } else {
    print(out, gap.goal);
  }
  out += layout_of(internal).method_heading;
  for (const method& m : gap.meth_list) {
    out += "[@method ";
    out += m.text;
    out += " @]";
  }
}

void print_proof_gap_full_with(std::string& out, const proof_gap_full& gap, bool internal,
                               const gap_term_printer& print) {
  print_gap_heading(out);
  std::size_t number = 0;
  for (term_ptr assumption : gap.assum) {
    print_gap_assumption(out, ++number, assumption, internal, print);
  }
  print_gap_rest(out, gap, internal, print);
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

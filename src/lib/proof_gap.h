// The proof state: numbered assumptions and one goal. A copy shares the assumptions.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "term/ast.h"
#include "term/shared_terms.h"

namespace vetro {

// A method that led to a gap. Nothing in this program fills the list; copying and printing carry it.
struct method {
  method_type type;
  std::string text;
};

struct proof_gap_full {
  shared_terms assum;  // hypothesis n is assum[n - 1]; never renumbered
  term_ptr goal = nullptr;
  bool finished = false;
  std::vector<method> meth_list;

  int assu_num() const { return static_cast<int>(assum.size()); }
  // The hypothesis of a number written in a script, or null when it is out of range.
  term_ptr hypothesis(std::int64_t number) const {
    return number >= 1 && number <= assu_num() ? assum[static_cast<std::size_t>(number - 1)] : nullptr;
  }
};

bool proof_gap_full_is_finished(const proof_gap_full& gap);  // has a goal and is closed
bool proof_gap_full_is_pending(const proof_gap_full& gap);   // has a goal and is open
void proof_gap_full_mark_finished(proof_gap_full& gap);      // nothing without a goal
void proof_gap_full_mark_unfinished(proof_gap_full& gap);
void add_assumption(proof_gap_full& gap, term_ptr t);

// The layout that the gap file reader also reads, and the same in internal form. They append to out.
void print_proof_gap_full(std::string& out, const proof_gap_full& gap);
void print_proof_gap_full_internal(std::string& out, const proof_gap_full& gap);
// The same layout, pretty or internal, with a term printer of the caller.
using gap_term_printer = std::function<void(std::string& out, term_ptr t)>;
void print_proof_gap_full_with(std::string& out, const proof_gap_full& gap, bool internal,
                               const gap_term_printer& print);

// Its three parts, for a caller who keeps some of them: what stands before the assumptions, the line of one, and what
// stands behind them.
void print_gap_heading(std::string& out);
void print_gap_assumption(std::string& out, std::size_t number, term_ptr t, bool internal,
                          const gap_term_printer& print);
void print_gap_rest(std::string& out, const proof_gap_full& gap, bool internal, const gap_term_printer& print);

}  // namespace vetro

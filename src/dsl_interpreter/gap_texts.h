// Texts of proof gaps, rendered once. A step record and the debug trace show the whole gap before and after every step,
// and from one step to the next nearly all of its formulas are the same.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "lib/proof_gap.h"

namespace vetro {

using shared_text = std::shared_ptr<const std::string>;

// Whether two gaps are the same to the letter. Terms are unique, so that addresses decide.
bool same_gap(const proof_gap_full& a, const proof_gap_full& b);

class gap_texts {
 public:
  // The text of print_proof_gap_full, or of print_proof_gap_full_internal. Never null.
  shared_text pretty(const proof_gap_full& gap) { return render(pretty_, gap, false); }
  shared_text internal(const proof_gap_full& gap) { return render(internal_, gap, true); }

 private:
  struct form {
    std::unordered_map<term_ptr, std::string> terms;
    proof_gap_full last_gap;  // the gap that last_text shows
    shared_text last_text;
  };
  static shared_text render(form& texts, const proof_gap_full& gap, bool internal);

  form pretty_;
  form internal_;
};

}  // namespace vetro

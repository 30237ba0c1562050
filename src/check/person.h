// The report for a person: a line for each proof, what is wrong with those that are not verified, and a last line that
// counts them.
#pragma once

#include <array>
#include <string>

#include "check/report.h"

namespace vetro {

struct person_settings {
  bool colour = false;
  bool quiet = false;    // verified proofs without warnings are left out
  bool explain = false;  // steps are shown
};

class person_report {
 public:
  explicit person_report(person_settings settings) : settings_(settings) {}
  std::string proof(const proof_report& report);
  // "3 proofs: 2 verified, 1 failed"; nothing for a single proof.
  std::string summary() const;
  const std::array<std::size_t, outcome_count>& counts() const { return counts_; }

 private:
  person_settings settings_;
  std::array<std::size_t, outcome_count> counts_{};
};

}  // namespace vetro

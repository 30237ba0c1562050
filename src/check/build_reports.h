// Reports for build servers: JUnit, where a proof is a test case, and SARIF, where a diagnostic is a result.
#pragma once

#include <string>

#include "check/report.h"

namespace vetro {

// Each is written from begin to end around the proofs' parts.
class junit_report {
 public:
  // The counts stand in the beginning; a beginning made behind the last proof is as long as one made before the first.
  std::string begin() const;
  std::string proof(const proof_report& report);
  static std::string end();

 private:
  std::size_t tests_ = 0;
  std::size_t failures_ = 0;
  std::size_t errors_ = 0;
};

class sarif_report {
 public:
  static std::string begin();
  std::string proof(const proof_report& report);
  static std::string end();

 private:
  bool first_ = true;
};

}  // namespace vetro

// Pages for a browser: one for each proof, and an index of them. They are well-formed XML as well as HTML, hold no
// script, and ask for nothing but the style sheet beside them.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "check/output_file.h"
#include "check/report.h"

namespace vetro {

class html_pages {
 public:
  // False, with a message, when the folder or a file in it cannot be made.
  bool open(const std::string& folder);
  // Writes the page of the proof and its line in the index; nothing before open.
  void proof(const proof_report& report);
  // False when something was lost. A message was or is given.
  bool finish();

 private:
  std::string index_beginning() const;
  bool write_file(const std::string& name, std::string_view text);

  std::string folder_;
  output_file index_;
  std::array<std::size_t, outcome_count> counts_{};
  std::uint64_t most_work_ = 1;  // of a proof
  std::uint64_t most_time_ = 1;  // in microseconds
  bool timed_ = false;
  bool lost_ = false;
};

// The page.
std::string html_page(const proof_report& report);

}  // namespace vetro

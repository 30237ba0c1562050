// How far a long run is, for a person at a terminal: a line on standard error that is gone when the run ends.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace vetro {

class progress_bar {
 public:
  // Shown only on a terminal that can take a line back.
  progress_bar();

  bool may_show() const { return columns_ > 0; }
  // How many proofs there are; without it there is a count and no bar.
  void expect(std::size_t all) { all_ = all; }
  // What is known so far. The line stands from then on that the run is a long one, and does not change with every
  // proof.
  void update(std::size_t done, std::size_t bad);
  // Takes the line away, so that something else can be written; the next update shows it again.
  void hide();

 private:
  using clock = std::chrono::steady_clock;

  std::size_t columns_ = 0;
  bool colour_ = false;
  std::optional<std::size_t> all_;
  std::string shown_;
  clock::time_point next_;
};

// The line for a count and what is known of the rest, at most so many columns wide.
std::string progress_line(std::size_t done, std::size_t bad, std::optional<std::size_t> all, std::size_t columns,
                          bool colour);

}  // namespace vetro

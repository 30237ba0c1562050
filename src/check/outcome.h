// What becomes of a proof, and of a run.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vetro {

enum class outcome : std::uint8_t {
  verified,
  open_goal,   // the script ran to its end, the goal is open
  split,       // the script ended with a case analysis
  admitted,    // finished with propositions that were admitted without proof
  not_strict,  // finished, and --strict does not count it
  failed,      // a step failed
  unparsed,    // gap or script does not parse
  unreadable,  // a file cannot be read, a line of a manifest is broken
  limit,       // time, memory, work or stack ran out
  fault,       // the process of the proof ended by a fault of the program
};
inline constexpr std::size_t outcome_count = 10;

struct outcome_row {
  outcome value;
  std::string_view name;   // in events
  std::string_view words;  // for a person
  int exit_status;
};

inline constexpr int exit_some_not = 1;
inline constexpr int exit_not_clean = 2;
inline constexpr int exit_input_error = 3;
inline constexpr int exit_limit = 4;
inline constexpr int exit_fault = 5;

inline constexpr outcome_row outcome_rows[outcome_count] = {
    {outcome::verified, "verified", "verified", 0},
    {outcome::open_goal, "open-goal", "open goal", exit_some_not},
    {outcome::split, "split", "split", exit_some_not},
    {outcome::admitted, "admitted", "admitted", exit_not_clean},
    {outcome::not_strict, "not-strict", "not strict", exit_not_clean},
    {outcome::failed, "failed", "failed", exit_some_not},
    {outcome::unparsed, "unparsed", "does not parse", exit_some_not},
    {outcome::unreadable, "unreadable", "unreadable", exit_input_error},
    {outcome::limit, "limit", "limit", exit_limit},
    {outcome::fault, "fault", "internal fault", exit_fault},
};

constexpr const outcome_row& row_of(outcome o) { return outcome_rows[static_cast<std::size_t>(o)]; }

std::optional<outcome> outcome_of_name(std::string_view name);

// The exit status of a run with proofs of both: the graver one.
int graver_status(int a, int b);

}  // namespace vetro

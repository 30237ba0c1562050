// Runs proofs in processes of their own, forked behind the loaded library, several at the same time. What one of them
// does (end by a fault, run into a limit, fill its memory) is that proof's own affair.
#pragma once

#include <functional>
#include <string>

#include "check/examine.h"
#include "check/task.h"

namespace vetro {

struct pool_settings {
  unsigned jobs = 1;
  examine_settings examine;
  std::function<void()> while_waiting;  // called some times in a second
};

// One proof's result: its events as text.
struct finished_proof {
  outcome result = outcome::fault;
  std::string events;
};

enum class pool_end : std::uint8_t { done, stopped, interrupted };

// Takes tasks from the source until it is empty, and gives their results in the order of the tasks. A result that is
// refused stops the run, as an interrupting signal does. Also holds few results at a time: a proof that takes long
// lets the others go only so far ahead.
pool_end run_pool(const pool_settings& settings, const thm_lib* library,
                  const std::function<std::optional<proof_task>()>& next_task,
                  const std::function<bool(const finished_proof&)>& take);

}  // namespace vetro

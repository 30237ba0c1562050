// The process-wide state.
#include "term/state.h"

#include "term/pattern_match.h"

namespace vetro {

constinit std::unique_ptr<process_state> current_state;

process_state& first_state() {
  current_state = std::make_unique<process_state>();
  return *current_state;
}

void reset_state() { current_state = std::make_unique<process_state>(); }

}  // namespace vetro

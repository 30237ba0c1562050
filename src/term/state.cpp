// The process-wide state.
#include "term/state.h"

#include "term/pattern_match.h"

namespace vetro {
namespace {

std::unique_ptr<process_state>& slot() {
  static std::unique_ptr<process_state> current = std::make_unique<process_state>();
  return current;
}

}  // namespace

process_state& state() { return *slot(); }

void reset_state() { slot() = std::make_unique<process_state>(); }

}  // namespace vetro

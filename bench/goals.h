// Goals as a proof has them, for benchmarks of solvers.
#pragma once

#include <string>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"
#include "term/state.h"

namespace vetro {

// An empty state of the process, in which every solver can be called.
inline void start() {
  reset_state();
  match_init(read_pattern);
  install_solvers(solver_registry());
}

inline term_ptr read(const std::string& text) { return parse_semantic_term_from_str(text); }

}  // namespace vetro

// All state that lives as long as the process: the store, the compiled patterns and the counters of fresh names.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "term/ast.h"
#include "term/memo.h"

namespace vetro {

struct pattern_cache;  // pattern_match.cpp

struct process_state {
  process_state();
  ~process_state();
  term_store store;
  std::unique_ptr<pattern_cache> patterns;
  node_memo<std::uint64_t> alpha_hashes;  // of the terms with bindings that were asked for
  node_memo<std::uint8_t> whole_parts;    // of large terms, as whole_parts.cpp found them
  typed_slots slots;                      // what layers above remember, each type for its owner
  std::uint64_t pattern_calls = 0;        // of the factory, for compiling patterns
  int fresh_counter = 0;                  // fresh(): never goes back
  int placeholder_counter = 1000000000;   // "qvar" numbers of get_prop
  int binder_copy_counter = 0;            // names of binders that rewrite_in opens
};

// The state of this process; made when it is first asked for.
extern constinit std::unique_ptr<process_state> current_state;
process_state& first_state();
inline process_state& state() { return current_state == nullptr ? first_state() : *current_state; }

// Calls of the factory that the questions of this process made. A pattern is compiled by the first question that meets
// it; that is nobody's work.
inline std::uint64_t counted_work() { return state().store.calls() - state().pattern_calls; }

// Throws away every term, pattern and counter. Only for tests: all term pointers become invalid.
void reset_state();

}  // namespace vetro

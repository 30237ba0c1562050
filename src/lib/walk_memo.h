// What a walk has already made of a node. Terms share their subterms, so a term of few nodes can be a huge tree; a
// walk over a small tree is faster without the table.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "term/ast.h"

namespace vetro {

class walk_memo {
 public:
  explicit walk_memo(term_ptr root) : active_(root != nullptr && root->size() >= least_size) {}

  // Null when the node has not been seen (under the same key).
  term_ptr find(term_ptr t) const {
    if (!active_ || t->children().empty()) {
      return nullptr;
    }
    const auto found = results_.find(t);
    return found == results_.end() ? nullptr : found->second;
  }
  term_ptr keep(term_ptr t, term_ptr result) {
    if (active_ && !t->children().empty()) {
      results_.emplace(t, result);
    }
    return result;
  }
  bool active() const { return active_; }

 private:
  static constexpr std::uint32_t least_size = 2048;
  bool active_;
  std::unordered_map<term_ptr, term_ptr> results_;
};

}  // namespace vetro

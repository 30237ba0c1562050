// What a walk has already made of a node. Terms share their subterms, so a term of few nodes can be a huge tree; a
// walk over a small tree is faster without the table.
#pragma once

#include <unordered_map>

#include "term/ast.h"
#include "term/walk_tools.h"

namespace vetro {

class walk_memo {
 public:
  explicit walk_memo(term_ptr root) : active_(root != nullptr && root->size() >= worth_remembering) {}

  // Null when the node has not been seen.
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

 private:
  bool active_;
  std::unordered_map<term_ptr, term_ptr> results_;
};

}  // namespace vetro

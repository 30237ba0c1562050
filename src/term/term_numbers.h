// Numbers for terms, in order of first occurrence.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "term/compare.h"
#include "term/node_memo.h"

namespace vetro {

// Terms that are equal up to bound names, scopes included, have one number. Terms that merely print alike have two.
class term_numbers {
 public:
  // From 0 on.
  std::int32_t of(term_ptr t) {
    return by_node_.get(t, [&] { return by_meaning_.try_emplace(t, count()).first->second; });
  }
  bool contains(term_ptr t) const { return by_node_.find(t) != nullptr || by_meaning_.contains(t); }
  std::int32_t count() const { return static_cast<std::int32_t>(by_meaning_.size()); }

 private:
  node_memo<std::int32_t> by_node_;
  std::unordered_map<term_ptr, std::int32_t, alpha_hasher, alpha_equal> by_meaning_;
};

}  // namespace vetro

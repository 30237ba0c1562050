// The size from which a walk remembers the nodes that it has met, and the table of what it has met.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>

#include "term/ast.h"
#include "term/variables/bound_names.h"

namespace vetro {

// A term is a graph of shared nodes, and as a tree it may be exponentially larger. A walk over a tree of this size or
// more remembers nodes; below, a table costs more than it saves.
inline constexpr std::uint32_t worth_remembering = 128;

// A node met under one state of the bindings.
struct node_visit {
  std::uint64_t bindings;
  term_ptr node;
  bool operator==(const node_visit&) const = default;
};
struct node_visit_hasher {
  std::size_t operator()(const node_visit& visit) const {
    return static_cast<std::size_t>((visit.node->hash() ^ visit.bindings) * 0x9e3779b97f4a7c15ULL);
  }
};
using visited_nodes = std::unordered_set<node_visit, node_visit_hasher>;

}  // namespace vetro

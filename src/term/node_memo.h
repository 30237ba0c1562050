// What a walk has found out about the nodes that it met.
//
// A term is a graph of shared nodes, and as a tree it may be exponentially larger. A walk over a large tree remembers
// nodes; over a small one, a table costs more than it saves.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "term/ast.h"

namespace vetro {

// The size of a tree from which a walk remembers what it met.
inline constexpr std::uint32_t worth_remembering = 128;

// Values by node, and by a number that tells the states or questions of a walk apart. A flat table without an order
// that could be seen: most nodes are met once, and those should cost little.
template <class Value>
class node_memo {
 public:
  // Null when there is none yet; good until the next keep.
  const Value* find(term_ptr t, std::uint64_t number = 0) const {
    if (places_.empty()) {
      return nullptr;
    }
    const place& found = places_[slot_of(t, number)];
    return found.node == nullptr ? nullptr : &found.value;
  }

  // The value, for use in place; default-made at the first time. Good until the next of, keep or get.
  Value& of(term_ptr t, std::uint64_t number = 0) {
    if (2 * (used_ + 1) > places_.size()) {
      grow();
    }
    place& found = places_[slot_of(t, number)];
    if (found.node == nullptr) {
      found.node = t;
      found.number = number;
      ++used_;
    }
    return found.value;
  }

  const Value& keep(term_ptr t, Value value, std::uint64_t number = 0) { return of(t, number) = std::move(value); }

  // The value, from make() at the first time; make may ask for other nodes.
  template <class Make>
  Value get(term_ptr t, Make&& make, std::uint64_t number = 0) {
    if (const Value* known = find(t, number); known != nullptr) {
      return *known;
    }
    return keep(t, make(), number);
  }

  std::size_t size() const { return used_; }
  void clear() {
    places_.clear();
    used_ = 0;
  }

 private:
  struct place {
    term_ptr node = nullptr;
    std::uint64_t number = 0;
    [[no_unique_address]] Value value{};
  };

  // Where the entry is or would be. Nodes built one after the other are met together, so they lie side by side.
  std::size_t slot_of(term_ptr t, std::uint64_t number) const {
    const std::size_t last = places_.size() - 1;
    const std::uint64_t group = ((t->serial() >> 3U) + number * 0x632be59bd9b4e019ULL) * 0x9e3779b97f4a7c15ULL;
    std::size_t slot = (((group >> shift_) << 3U) | (t->serial() & 7U)) & last;
    while (places_[slot].node != nullptr && (places_[slot].node != t || places_[slot].number != number)) {
      slot = (slot + 1) & last;
    }
    return slot;
  }

  void grow() {
    std::vector<place> old(places_.empty() ? 16 : 2 * places_.size());
    old.swap(places_);
    shift_ = 64U - static_cast<unsigned>(std::bit_width(places_.size() - 1)) + 3U;
    for (place& taken : old) {
      if (taken.node != nullptr) {
        places_[slot_of(taken.node, taken.number)] = std::move(taken);
      }
    }
  }

  std::vector<place> places_;
  std::size_t used_ = 0;
  unsigned shift_ = 0;
};

// The nodes that a walk has met, each under the states in which it was met.
class node_set {
 public:
  // True at the first time.
  bool insert(term_ptr t, std::uint64_t number = 0) {
    const std::size_t before = met_.size();
    met_.of(t, number);
    return met_.size() != before;
  }
  bool contains(term_ptr t, std::uint64_t number = 0) const { return met_.find(t, number) != nullptr; }
  std::size_t size() const { return met_.size(); }
  void clear() { met_.clear(); }

 private:
  struct nothing {};
  node_memo<nothing> met_;
};

// What a walk makes of the nodes of one term. Remembers nothing where the whole is small, nor the small parts of a
// large one: to walk such a part again costs no more than its size, and most nodes are parts of this kind.
template <class Value>
class walk_memo {
 public:
  explicit walk_memo(term_ptr root) : active_(root != nullptr && root->size() >= worth_remembering) {}

  template <class Make>
  Value get(term_ptr t, Make&& make, std::uint64_t number = 0) {
    return active_ && t->size() >= small_part ? known_.get(t, make, number) : make();
  }

 private:
  static constexpr std::uint32_t small_part = 12;
  bool active_;
  node_memo<Value> known_;
};

// Two nodes of terms that are walked in step, under one state of the walk.
struct node_pair {
  term_ptr a;
  term_ptr b;
  std::uint64_t number = 0;
  bool operator==(const node_pair&) const = default;
};
struct node_pair_hasher {
  std::size_t operator()(const node_pair& pair) const {
    const std::uint64_t ordered = (pair.a->hash() * 0x9e3779b97f4a7c15ULL) ^ pair.b->hash();
    return static_cast<std::size_t>((ordered ^ pair.number) * 0x9e3779b97f4a7c15ULL);
  }
};

}  // namespace vetro

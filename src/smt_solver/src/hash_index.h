// Finds rows of a table by their content: the table holds the rows, this index their hashes and numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "number/hash_mix.h"

namespace vetro::smt {

using vetro::mix;

class hash_index {
 public:
  // The number for which same(number) holds among those inserted under the hash; -1 when there is none.
  template <class Same>
  std::int32_t find(std::uint64_t hash, Same&& same) const {
    if (slots_.empty()) {
      return -1;
    }
    for (std::size_t i = hash & mask();; i = (i + 1) & mask()) {
      const slot& s = slots_[i];
      if (s.number < 0 || (s.hash == hash && same(s.number))) {
        return s.number;
      }
    }
  }

  void insert(std::uint64_t hash, std::int32_t number) {
    if (2 * (used_ + 1) > slots_.size()) {
      std::vector<slot> old(slots_.empty() ? 16 : 2 * slots_.size());
      old.swap(slots_);
      for (const slot& s : old) {
        if (s.number >= 0) {
          place(s);
        }
      }
    }
    place({hash, number});
    ++used_;
  }

 private:
  struct slot {
    std::uint64_t hash = 0;
    std::int32_t number = -1;
  };
  std::size_t mask() const { return slots_.size() - 1; }
  void place(const slot& s) {
    std::size_t i = s.hash & mask();
    while (slots_[i].number >= 0) {
      i = (i + 1) & mask();
    }
    slots_[i] = s;
  }

  std::vector<slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace vetro::smt

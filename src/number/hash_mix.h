// The one step by which hashes of parts become the hash of a whole. A hash says "different" and nothing else: no order
// and no text depends on one.
#pragma once

#include <cstdint>

namespace vetro {

constexpr std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9e3779b97f4a7c15ULL;
  return hash ^ (hash >> 31U);
}

}  // namespace vetro

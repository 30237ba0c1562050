// Linear forms over numbered atoms: a constant and a rational multiple of each atom.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "number/exact.h"

namespace vetro {

using atom_id = std::uint32_t;

// Terms sorted by atom, each atom once, no coefficient zero. Where a number is beyond its limit the form says nothing
// any more: is_known() is false.
struct linear_form {
  exact constant;
  std::vector<std::pair<atom_id, exact>> terms;

  bool is_constant() const { return terms.empty(); }
  bool is_known() const {
    return constant.is_known() &&
           std::all_of(terms.begin(), terms.end(), [](const auto& term) { return term.second.is_known(); });
  }
  bool operator==(const linear_form&) const = default;
};

inline linear_form linear_atom(atom_id atom) { return {0, {{atom, 1}}}; }

// a + scale * b.
inline linear_form linear_sum(const linear_form& a, const linear_form& b, const exact& scale) {
  linear_form sum{a.constant + scale * b.constant, {}};
  sum.terms.reserve(a.terms.size() + b.terms.size());
  auto left = a.terms.begin();
  auto right = b.terms.begin();
  while (left != a.terms.end() || right != b.terms.end()) {
    const bool from_left = right == b.terms.end() || (left != a.terms.end() && left->first <= right->first);
    const bool from_right = left == a.terms.end() || (right != b.terms.end() && right->first <= left->first);
    const atom_id atom = from_left ? left->first : right->first;
    exact coefficient = from_left ? left->second : exact(0);
    if (from_right) {
      coefficient.addmul(scale, right->second);
    }
    if (!coefficient.is_zero()) {
      sum.terms.emplace_back(atom, std::move(coefficient));
    }
    left += from_left ? 1 : 0;
    right += from_right ? 1 : 0;
  }
  return sum;
}

}  // namespace vetro

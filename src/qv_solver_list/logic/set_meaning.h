// What set-theoretic and relational propositions mean, one level deep: a table of laws.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "term/ast.h"

namespace vetro {

enum class set_rule : std::uint8_t {
  pair_equality,
  intersection,
  set_union,
  members_of_list,
  difference,
  product,
  inverse,
  power_set,
  family_union,
  composition,
  relation_composition,
  equivalence_class,
  countable,
  equivalence,
};

// A law in the formula language: its left side is a shape of propositions, its right side what they mean. Capital and
// small names but bound ones stand for any terms.
struct set_law {
  set_rule id;
  std::string_view law;
  // The propositions that together mean p; empty when p has not the shape.
  term_list (*meaning)(term_ptr p);
};

// In the order of trial. The set of a membership has one shape at most, so that one law at most applies.
std::span<const set_law> set_laws();

// The propositions that together mean p; empty when no law applies.
term_list set_equiv_saturation(term_ptr p);

}  // namespace vetro

// Negation normal form: a table of laws that push negations inward.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "term/ast.h"

namespace vetro {

enum class negation_rule : std::uint8_t {
  double_negation,
  universal,
  existential,
  conjunction,
  disjunction,
  implication,
  equivalence,
  equal,
  not_equal,
  greater,
  greater_or_equal,
  less,
  less_or_equal,
  member,
  not_member,
  implies_false,
};

// A law in the formula language; its left side is a shape of propositions and its right side what they become, with
// everything inside pushed inward as well.
struct negation_law {
  negation_rule id;
  std::string_view law;
};
std::span<const negation_law> negation_laws();

// Negations pushed inward. What no law fits stays: another predicate, existsUnique, the membership of a list, and what
// has a side condition. Null for null.
term_ptr solver_not_unfold_term(term_ptr t);

}  // namespace vetro

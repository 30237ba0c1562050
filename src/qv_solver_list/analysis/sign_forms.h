// How the sign tables see an expression: its form with the operands, and a sum with its summands.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "qv_solver_list/analysis/sign_rules.h"
#include "term/ast.h"

namespace vetro {

struct sign_view {
  sign_form form = sign_form::other;
  term_ptr first = nullptr;  // see sign_form
  term_ptr second = nullptr;
  std::optional<std::int64_t> number;  // of an integer; index of a root, if it is at least 1; exponent of a power
};

// A node under a scope, or one that binds variables, is no form.
sign_view sign_view_of(term_ptr t);

// A summand of a sum that is not opened further. In the sum, written out, it may stand several times.
struct sum_part {
  term_ptr t;
  std::int64_t coefficient = 0;  // how often it is added less how often it is subtracted
  bool added = false;
  bool subtracted = false;
};

struct sum_parts {
  std::int64_t constant = 0;  // all integer constants
  std::vector<sum_part> parts;
};

struct signed_root {
  term_ptr t;
  bool negative;
};

// The summands of the roots, each added or subtracted. Each node is read once, however often it stands in the sum.
// Nothing where a number leaves 64 bits.
std::optional<sum_parts> sum_parts_of(std::span<const signed_root> roots);
std::optional<sum_parts> sum_parts_of(term_ptr t);

}  // namespace vetro

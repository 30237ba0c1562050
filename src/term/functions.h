// What is known of the elementary functions of one variable: a row for each, which differentiation, continuity,
// definedness and calculation with angles read.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "term/ast.h"

namespace vetro {

// What a condition of a domain speaks of.
enum class domain_subject : std::uint8_t { argument, cosine, sine };

struct domain_condition {
  pred_type pred;
  std::int32_t value;
};

// At most two alternatives, each of conditions that hold together: none where there is a value for every argument.
struct natural_domain {
  domain_subject subject = domain_subject::argument;
  std::uint8_t alternatives = 1;
  std::uint8_t conditions = 0;  // of each alternative
  std::array<std::array<domain_condition, 2>, 2> rows = {};

  constexpr bool is_everything() const { return conditions == 0; }

  // Some alternative holds, by an answer for each of its conditions.
  template <class Holds>
  bool holds_by(Holds&& holds) const {
    return std::any_of(rows.begin(), rows.begin() + alternatives,
                       [&](const auto& row) { return std::all_of(row.begin(), row.begin() + conditions, holds); });
  }
};

enum class parity : std::uint8_t { neither, even, odd };

struct point_value {
  std::int32_t at;
  std::int32_t value;
};

// From low * π/2 to high * π/2.
struct angle_range {
  std::int32_t low;
  std::int32_t high;
  bool with_ends;
};

// A root or logarithm with an index or base is a function of its last operand; its derivative depends on the other one
// and stands with the rules of operators.
struct known_function {
  oper_type oper;
  bool has_index = false;
  natural_domain domain = {};
  bool jumps = false;  // else continuous wherever it is defined
  parity symmetry = parity::neither;
  std::optional<oper_type> inverts = {};   // the function f with f(g(v)) = v, for g of this row
  std::optional<angle_range> angles = {};  // all its values, of a function that gives angles
  std::optional<point_value> value = {};   // one that calculation with numbers does not find
  // g(u)' of the operand u and its derivative du; null where there is no rule.
  term_ptr (*derivative)(term_ptr u, term_ptr du) = nullptr;
  // What must not be 0 for the rule to hold where du is 0. Null where it always holds: then the function is analytic
  // wherever it is defined.
  term_ptr (*radicand)(term_ptr u) = nullptr;

  constexpr bool is_total() const { return domain.is_everything(); }
};

// All rows, in the order of the operators.
std::span<const known_function> known_functions();

// The row of the operator; null when it has none.
const known_function* find_function(oper_type oper);

// What the domain's conditions speak of, for the argument u: u, cos(u) or sin(u).
term_ptr subject_of(const natural_domain& domain, term_ptr u);

// du / (index * sqrtn(index, w)): the derivative of sqrtn(index, u), for w = u^(index - 1).
term_ptr over_root(term_ptr du, std::int32_t index, term_ptr w);

}  // namespace vetro

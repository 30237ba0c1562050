// The one table of notations that bind variables, or that speak of variables without binding them: a row for each
// operator and relation, with the part that every argument plays.
//
// Inside: a name that the notation binds or speaks of is meant there. Outside: upper and lower bounds, limit points,
// sets; a name that stands there is free, whatever it is called.
#pragma once

#include <array>
#include <cstdint>

#include "term/ast.h"

namespace vetro {

enum class region : std::uint8_t {
  inside,
  outside,
  index,  // says what is bound; index_part.h tells its sides apart
};

// Where the names come from.
enum class binding_kind : std::uint8_t {
  index_part,     // an index part: sums, limits, tendencies with an index
  differentials,  // what stands behind diff and pdiff in an integrand, integrals inside it excepted
  set_element,    // names of the element that the conditions speak of
  // Notations that speak of all names of their operand, and bind none.
  function_operand,  // nothing where the operand is a function itself: f', (fun x . x^2)'
  sequence_operand,  // the same, but a_n is no sequence itself
  any_operand,
  landau_term,  // the name in front of its point
  // Found by what stands inside, not by the head.
  landau_atom,     // a relation around Landau terms: their names
  tendency_chain,  // a chain with tendencies that have an index: their names
  nabla_product,   // a product with a bare nabla: all names
};

inline constexpr std::size_t most_binding_arguments = 4;

struct binding_row {
  int head;
  std::uint8_t arity;
  binding_kind kind;
  std::array<region, most_binding_arguments> regions;
};

// The row of a node that has a head and whose facts allow one.
const binding_row* binding_row_by_head(term_ptr t);

// The row of the node; null for one that neither binds nor speaks of variables. One step for most nodes.
inline const binding_row* binding_row_of(term_ptr t) {
  const bool excluded = t->head() < 0 || !t->has(static_cast<term_fact>(fact_binding | fact_guard));
  return excluded ? nullptr : binding_row_by_head(t);
}

// Whether the row's operators bind names that may be chosen freely.
constexpr bool binds_indices(binding_kind kind) {
  return kind == binding_kind::index_part || kind == binding_kind::differentials || kind == binding_kind::set_element ||
         kind == binding_kind::landau_atom;
}

// Whether the index part of the row stands in front of a limit point.
constexpr bool is_in_front_of_point(const binding_row& row) {
  return row.kind == binding_kind::index_part && row.regions[0] == region::index && row.head != ValDeri &&
         (row.head > RadiusOfConvergence || !is_big_operator(static_cast<oper_type>(row.head)));
}

// fact_binding, fact_guard and fact_landau of a leaf of that number.
unsigned facts_of_head(int head);

}  // namespace vetro

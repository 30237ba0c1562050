// Binding operators seen by the roles of their arguments. Each view borrows from the term and is given for the plain
// operator with its full number of arguments only; what stands on the node (binders, scope) is the caller's to look at.
#pragma once

#include <cstdint>
#include <optional>

#include "term/ast.h"

namespace vetro {

enum class approach_side : std::uint8_t { both, left, right };
enum class limit_kind : std::uint8_t { plain, upper, lower };  // lim, limsup, liminf

// lim_{var → point}(body), with its one-sided, upper, lower and sequence forms.
struct limit_view {
  oper_type oper;
  limit_kind kind;
  approach_side side;
  bool of_sequence;
  term_ptr var;
  term_ptr point;
  term_ptr body;
};
std::optional<limit_view> limit_of(term_ptr t);

// A sum, product, union or intersection over an index part, with or without an upper bound.
struct sum_view {
  oper_type oper;
  term_ptr index_part;
  term_ptr upper;  // null when the index part says all
  term_ptr body;
};
std::optional<sum_view> sum_of(term_ptr t);

// { element | conditions }, in the prepared form.
struct set_view {
  term_ptr element;
  term_span conditions;
};
std::optional<set_view> set_description_of(term_ptr t);

// The operator and the arguments behind it, up to four; no operator for any other shape.
struct operator_view {
  std::optional<oper_type> oper;
  std::uint8_t count = 0;
  term_ptr args[4] = {};
};
operator_view operator_of(term_ptr t);

}  // namespace vetro

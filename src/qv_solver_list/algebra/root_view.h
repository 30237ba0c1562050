// Roots in their three spellings: sqrt(x), cbrt(x), and sqrtn(n, x) with a number n from 1 on, which may be
// calculated first: sqrtn(1 + 1, x).
#pragma once

#include <cstdint>
#include <optional>

#include "term/ast.h"

namespace vetro {

struct root_view {
  std::int64_t index;
  term_ptr radicand;
};

// Nothing where t is no root.
std::optional<root_view> root_of(term_ptr t);
// sqrtn(n, x) alone.
std::optional<root_view> indexed_root_of(term_ptr t);

// t with sqrt(x) and cbrt(x) as sqrtn(2, x) and sqrtn(3, x), in all parts that stand for their value.
term_ptr with_indexed_roots(term_ptr t);

// t with sqrt and cbrt as functions of which nothing is known.
term_ptr with_opaque_roots(term_ptr t);

}  // namespace vetro

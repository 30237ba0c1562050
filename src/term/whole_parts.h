// Parts of a term on which calculation proves nothing.
//
// A term that holds one of them is one whole: it equals itself as it is written, and beyond that it is merged with no
// other term, cancelled, folded, simplified inside, or given bounds.
#pragma once

#include <cstdint>

#include "term/ast.h"

namespace vetro {

enum class whole_part : std::uint8_t {
  none = 0,
  ellipsis = 1,               // 1 + 2 + ... + n
  landau = 2,                 // bigO_{x → 0}(x)
  several_values = 4,         // ±x, a ± b
  indefinite_integral = 8,    // a family of functions
  infinity_value = 16,        // ∞ other than as a limit point, a bound, or an end of an interval
  set_size = 32,              // the size of a set
  differential_quotient = 64  // a quotient by, or a power of, something with diff or pdiff in it
};
constexpr whole_part operator|(whole_part a, whole_part b) {
  return static_cast<whole_part>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr whole_part operator&(whole_part a, whole_part b) {
  return static_cast<whole_part>(static_cast<unsigned>(a) & static_cast<unsigned>(b));
}

// Which of them occur in t, scopes and bound names aside; none for null. Most terms are answered by a stored fact, and
// the answers of large terms are remembered.
whole_part whole_parts_of(term_ptr t);

inline bool holds_any(term_ptr t, whole_part parts) { return (whole_parts_of(t) & parts) != whole_part::none; }

// Whether t holds any of them.
inline bool is_one_whole(term_ptr t) { return whole_parts_of(t) != whole_part::none; }

}  // namespace vetro

// How deep two terms may be compared part by part.
#pragma once

#include <cstdint>

#include "term/ast.h"

namespace vetro {

// What has to be the same of two parts, from the least to the most.
enum class likeness : std::uint8_t {
  value,       // as rational expressions
  everywhere,  // and defined at the same places: inside of a set description
  writing,     // as they are written: inside of Dom and Defined
};

// What the parts of t have to have in common where t itself has to be alike like that.
likeness likeness_inside(term_ptr t, likeness outside);

// Whether a and b may stand for each other where that likeness is asked for, provided that they are equal: neither may
// lack a value, and where the writing counts nothing in them is calculated.
bool may_replace(term_ptr a, term_ptr b, likeness asked);

// Equal but for their side conditions, and these equal too.
bool same_scope(term_ptr a, term_ptr b);

// Whether the variable stands anywhere in t, as itself or bound.
bool mentions(term_ptr t, term_ptr var);

}  // namespace vetro

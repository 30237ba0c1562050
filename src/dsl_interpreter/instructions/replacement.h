// Replacing a subterm by one that is equal to it whatever its variables stand for, wherever that keeps the meaning of
// what is around it.
#pragma once

#include "term/ast.h"

namespace vetro {

// A term of names and exact numbers, joined by sums, differences, products and natural powers: it has a value wherever
// its names have one.
bool is_total(term_ptr t);

struct replacement {
  term_ptr from;
  term_ptr to;
  // Also in domains, in the conditions of functions and in set descriptions, which depend on where an expression has a
  // value. Right where both sides have one, or both have none.
  bool in_domains;
};

// t with every occurrence replaced. Left alone are index parts, the entries of quantifiers, side conditions, parts of a
// sum with an ellipsis, and a variable where it is bound.
term_ptr replace_everywhere(const replacement& r, term_ptr t);

}  // namespace vetro

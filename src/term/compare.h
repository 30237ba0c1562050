// Equality of terms, and the list operations that rest on it.
#pragma once

#include <cstdint>

#include "term/ast.h"

namespace vetro {

// Equality up to renaming of bound variables; looks at binders and scopes, not at soft types. Both null is equal; one
// null reports "Error: alpha_eq_term visiting NULL pointer\n" and is not. Symmetric.
bool term_eqb(term_ptr a, term_ptr b);
bool alpha_equivalent(term_ptr a, term_ptr b);

// Exact equality of structure and names; ignores binders, scopes and soft types. Both null is equal; one null reports
// "Error: term_eqb_pure visiting NULL pointer\n" and is not.
bool term_eqb_pure(term_ptr a, term_ptr b);
bool term_list_eqb_pure(term_span a, term_span b);

// Equal for terms that are term_eqb; free variables count by name. Linear in the term at the first call, then cached.
std::uint64_t alpha_hash(term_ptr t);

bool term_list_contains(term_span list, term_ptr t);             // by term_eqb
bool term_list_overlaps(term_span a, term_span b);               // some element of b is in a
int term_list_nth(term_span list, term_ptr t);                   // 0-based, -1 when missing
void term_list_replace_nth(term_list& list, term_ptr t, int n);  // negative n: the first element
void term_list_remove(term_ptr t, term_list& list);              // every element term_eqb to t
void term_list_remove_multiple(term_span vars, term_list& list);
void term_list_dedup(term_list& list);  // by term_eqb_pure, first ones stay

// Hash and equality for tables keyed by terms up to bound names.
struct alpha_hasher {
  std::size_t operator()(term_ptr t) const { return alpha_hash(t); }
};
struct alpha_equal {
  bool operator()(term_ptr a, term_ptr b) const { return term_eqb(a, b); }
};

}  // namespace vetro

// What quantifier entries bind, and which names are free in the ordinary sense.
//
// An entry of a quantifier is a variable or a proposition such as y ∈ S, which binds y and speaks of S. Equality and
// substitution look at plain variables only; where a capture would change a meaning, entries have to be read too.
#pragma once

#include "term/ast.h"

namespace vetro {

// A proposition in place of a variable.
bool is_proposition_entry(term_ptr entry);

// The operand of a proposition entry that holds what it binds (the left side of a relation, the first operand of a
// chain); null when the entry has another shape.
term_ptr entry_left_side(term_ptr entry);

// The other operands of a proposition entry. They belong to the surroundings.
term_list entry_right_sides(term_ptr entry);

// The variables that an entry binds: a variable itself; a proposition the variables of its left side, or of all of it
// where the left side has none.
term_list entry_bound_variables(term_ptr entry);

// True when the entry's left side binds; false when the whole entry does.
bool entry_binds_left_side(term_ptr entry);

// True when the variable occurs free in t in the ordinary sense: also inside an index, and in the set of an entry.
bool occurs_free(term_ptr var, term_ptr t);

}  // namespace vetro

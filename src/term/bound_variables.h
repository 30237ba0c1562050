// What quantifier entries bind, and which names are free in the ordinary sense.
//
// An entry of a quantifier is a variable or a proposition such as y ∈ S, which binds y and speaks of S. Equality and
// substitution look at plain variables only; where a capture would change a meaning, entries have to be read too.
#pragma once

#include <cstdint>
#include <unordered_map>

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

// True when the variable occurs free in t in the ordinary sense: also inside an index, in the set of an entry, and
// where the index part of a sum names it beside the index.
bool occurs_free(term_ptr var, term_ptr t);

// Where one variable (a Var, or an indexed name such as a_n as a whole) occurs free. Answers are remembered by node, so
// that asking at every level of a deep term costs one walk.
class free_occurrences {
 public:
  // With in_scopes, an occurrence in a side condition counts too.
  free_occurrences(term_ptr var, bool in_scopes);

  bool in(term_ptr t);

  // True when an entry of a Quant or Lambda binds the variable.
  bool bound_by(term_ptr entry);

  // True when a side of the entry that belongs to the surroundings holds the variable.
  bool beside(term_ptr entry);

 private:
  bool in_node(term_ptr t);
  bool in_any(term_span list);
  bool in_binding(term_ptr t);

  term_ptr var_;
  bool in_scopes_;
  std::unordered_map<term_ptr, bool> known_;
};

}  // namespace vetro

// The entries of quantifiers and functions.
//
// An entry is a variable or a proposition. A proposition binds the plain name on its left, x in x ∈ S, and speaks of
// what stands beside it, which belongs to the surroundings: entries before it bind there, those behind it do not. Where
// the left side is no plain name, as in |x - a| < 1, the entry tells no name that it binds: it guards all its names.
#pragma once

#include "term/traverse.h"

namespace vetro {

// A proposition in place of a variable.
bool is_proposition_entry(term_ptr entry);

struct entry_view {
  term_list bound;       // a variable entry itself (indexed names as a whole); the plain names that a proposition binds
  term_list guarded;     // names that the entry speaks of and that may be bound by it or not
  bool cut = false;      // a proposition whose first operand is bound here and whose others stand outside
  unsigned operand = 0;  // which operand that is
};
entry_view entry_of(term_ptr entry);

// All names that entries of a quantifier or function bind or guard.
term_list entry_names(term_ptr binding_term);

// The entry with the side that holds what it binds changed by inner, and the others by outer, in text order. Null as
// soon as one of them gives null.
template <class Inner, class Outer>
term_ptr map_entry(term_ptr entry, const entry_view& view, Inner&& inner, Outer&& outer);

// Calls f(side, is_inner) for every operand of a proposition entry.
template <class F>
void for_each_side(term_ptr entry, const entry_view& view, F&& f);

// ---- Implementation.

template <class F>
void for_each_side(term_ptr entry, const entry_view& view, F&& f) {
  if (!view.cut) {
    f(entry, true);
    return;
  }
  if (entry->head() == PredChain) {
    unsigned i = 0;
    for (term_ptr operand : entry->argument(1)->elements()) {
      f(operand, i++ == view.operand);
    }
    return;
  }
  for (unsigned i = 0; i < entry->argument_count(); ++i) {
    f(entry->argument(i), i == view.operand);
  }
}

template <class Inner, class Outer>
term_ptr map_entry(term_ptr entry, const entry_view& view, Inner&& inner, Outer&& outer) {
  if (!view.cut) {
    return inner(entry);
  }
  const auto side = [&](term_ptr t, unsigned i) { return i == view.operand ? inner(t) : outer(t); };
  if (entry->head() != PredChain) {
    const term_ptr content = map_arguments(entry, entry->argument_count(), side);
    return content == entry ? entry : with_meta(content, entry->meta());
  }
  term_list operands;
  bool complete = true;
  for (term_ptr operand : entry->argument(1)->elements()) {
    operands.push_back(side(operand, static_cast<unsigned>(operands.size())));
    complete = complete && operands.back() != nullptr;
  }
  return complete ? with_meta(mk_apply(entry->left(), mk_term_list(operands)), entry->meta()) : nullptr;
}

}  // namespace vetro

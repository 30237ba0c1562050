// Pairs that static analysis would take for intervals.
#pragma once

#include "term/ast.h"

namespace vetro {

bool is_pair(term_ptr t);

// True when static analysis, which made `analyzed` of t, read a pair in t as an open interval. In a formula that was
// prepared before, only a pair that came in with a value can stand where a set is expected; that is a point.
bool reads_pair_as_interval(term_ptr t, term_ptr analyzed);

// What a written value means for the binder of a quantifier: a pair is the open interval where a set is expected at
// each place of the binder, as it would be if it were written there. Any other value is itself.
term_ptr value_in_place(term_ptr quantified, term_ptr binder, term_ptr value);

// True when a pair as the value of the binder is nowhere read as an interval, or stands elsewhere only where it can be
// meant as one: as what a function or a property of it is on.
bool pair_has_one_reading(term_ptr quantified, term_ptr binder);

}  // namespace vetro

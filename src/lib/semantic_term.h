// What every stored formula passes behind the parser: resolution of readings that only the context decides, the
// canonical set-builder, and the binders of each binding operator.
#pragma once

#include <string_view>

#include "term/ast.h"

namespace vetro {

// parse_term_from_str, then normalize_parsed_term. Null when the text does not parse (the message stands on standard
// error).
term_ptr parse_semantic_term_from_str(std::string_view src, int verbose_debug = 0, int debug = 0);

// parsed_static_analyze_term, then copy_term_with_binders. Null gives null.
term_ptr normalize_parsed_term(term_ptr raw);

// Pairs in set positions become open intervals, IdentEq becomes Eq, Log(e, x) becomes Ln(x), the imaginary unit as a
// bound variable becomes i. Null gives null.
term_ptr parsed_static_analyze_term(term_ptr raw);

// The canonical set-builder, then the record of binders. Null when a step gives null. A term that was prepared before
// and has not changed comes back as it is.
term_ptr copy_term_with_binders(term_ptr t);

// ---- The steps of copy_term_with_binders. Null gives null.

// Every set-builder in the form SetDesc(element, T(conditions)).
term_ptr normalize_setdesc_for_catch_binder(term_ptr t);

// What each node binds and guards (term/variables/binding.h), on nodes without such a record. global_var: the variables
// that are bound from outside. Null, with a message, when nested notations speak of too many variables.
term_ptr catch_binder_term(term_ptr t, term_span global_var);

}  // namespace vetro

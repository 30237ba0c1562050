// Instantiating bound variables without capture.
#pragma once

#include "term/ast.h"

namespace vetro {

// t with src (a variable, possibly indexed) replaced by dest. A binder (of a Quant, a Lambda, an entry such as y ∈ S,
// or implied by an operator) that would catch a name of dest is renamed where something is replaced, and one that is
// dest itself always; the sets of entries are replaced in, side conditions only follow the renaming. Null when an
// argument is null, and where a notation guards a name that would be replaced or caught; *refused, if given, then tells
// that name.
term_ptr instantiate_term(term_ptr src, term_ptr dest, term_ptr t, term_ptr* refused = nullptr);

// The Quant without the listed binders, which become the values, one after the other. What is left of it is a Quant
// over the other entries, or its body. Null when an instantiation fails.
term_ptr instantiate_binders(term_ptr quantified, term_span binders, term_span values, term_ptr* refused = nullptr);

// The body of the quantifier with all its binders replaced at once: the values may speak of what the binders are
// called. Only where nothing is bound, guarded or scoped in the body and the values, so that nothing is to be renamed
// or refused; else, and where a binder has no value, null.
term_ptr instantiate_plain_body(term_ptr quantified, term_span binders, term_span values);

}  // namespace vetro

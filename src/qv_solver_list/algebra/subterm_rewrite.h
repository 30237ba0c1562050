// Checked rewriting: whether one term is another with occurrences of a side of a rule replaced by the other side.
#pragma once

#include <cstddef>

#include "term/ast.h"

namespace vetro {

// True if to arises from `from` by replacing at least one occurrence of src by dest, binder-safely. On true,
// *rewrite_hits (may be null) is the number of places.
bool term_matches_subterm_rewrite(term_ptr from, term_ptr to, term_ptr src, term_ptr dest, std::size_t* rewrite_hits);

}  // namespace vetro

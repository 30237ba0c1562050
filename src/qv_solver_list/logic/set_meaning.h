// What set-theoretic and relational propositions mean, one level deep.
#pragma once

#include "term/ast.h"

namespace vetro {

// The propositions that together mean p; empty when no rule applies.
term_list set_equiv_saturation(term_ptr p);

}  // namespace vetro

// What follows from inclusions, equations, unions, intersections, differences and memberships of sets by logic alone.
#pragma once

#include "term/ast.h"

namespace vetro {

// Whether t holds, outside of quantifiers, something that set logic knows and propositional logic does not.
bool speaks_of_sets(term_ptr t);

// Whether the assumptions imply the target. Complete for combinations by connectives of A ⊆ B, A = B and x ∈ A over
// sets that are made by ∪, ∩ and \ of names and the empty set, up to a limit of size.
bool follows_by_set_logic(term_span assum, term_ptr target);

}  // namespace vetro

// Enriches assumptions before solving: memberships become comparisons, tuple equations equations of components,
// conjunctions their conjuncts. Given assumptions stand first, derived ones follow; nothing is removed.
#pragma once

#include "qv_solver_list/solver.h"

namespace vetro {

// False when a step failed; then the caller goes on with src.
bool solver_preprocess_build_augmented_sdata(const solve_data& src, solve_data& dst);

term_ptr solver_preprocess_expand_shared_membership(term_ptr t);
term_ptr solver_preprocess_expand_interval_membership(term_ptr t);
term_ptr solver_preprocess_lower_const_set_membership(term_ptr t);
term_ptr solver_preprocess_expand_tuple_equalities(term_ptr t);

}  // namespace vetro

// Enriches assumptions before solving: memberships become comparisons, tuple equations equations of components,
// conjunctions their conjuncts. Given assumptions stand first, derived ones follow; nothing is removed.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "qv_solver_list/solver.h"

namespace vetro {

// False when a step failed; then the caller goes on with src.
bool solver_preprocess_build_augmented_sdata(const solve_data& src, solve_data& dst);

enum class enrichment_rule : std::uint8_t {
  open_interval,
  left_closed_interval,
  right_closed_interval,
  closed_interval,
  positive_integers,
  negative_integers,
  nonpositive_integers,
  nonnegative_integers,
  positive_rationals,
  negative_rationals,
  nonpositive_rationals,
  nonnegative_rationals,
  positive_reals,
  negative_reals,
  nonpositive_reals,
  nonnegative_reals,
  members_of_list,
  tuple_equation,
};

// What an assumption of the shape to the left of ⇒ gives beside itself, in the formula language.
struct enrichment_law {
  enrichment_rule id;
  std::string_view law;
};
std::span<const enrichment_law> enrichment_laws();

term_ptr solver_preprocess_expand_shared_membership(term_ptr t);
term_ptr solver_preprocess_expand_interval_membership(term_ptr t);
term_ptr solver_preprocess_lower_const_set_membership(term_ptr t);
term_ptr solver_preprocess_expand_tuple_equalities(term_ptr t);

}  // namespace vetro

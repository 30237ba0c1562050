// Sets of functions of one real variable that are described by the derivatives of their members.
#pragma once

#include <optional>

#include "qv_solver_list/solver.h"
#include "term/ast.h"

namespace vetro {

// The names under which families are compared: the variable of the functions, and a member.
term_ptr family_variable();
term_ptr family_member();

// A set of functions whose members are, on every interval of the points that satisfy the antecedent, the primitives of
// one function there. Two shapes of description give one:
//
//   { F | forall (x), A ⇒ FunDeri(F, 1, 1, x) = g }
//
//   { F | exists (C)(G)(H), C ∈ Real ∧ forall (x), A ⇒ FunDeri(G, 1, 1, x) = g ∧ H(x) = h ∧ F(x) = 2 * G(x) + H(x) + C
//   }
//
// with any number of constants and helper functions, of which one at least enters F with a factor that is not zero.
struct function_family {
  term_ptr derivative;    // of the members
  term_list antecedent;   // the conjuncts that the variable must satisfy
  term_list memberships;  // further conjuncts, which speak of the member alone
  // Null for the first shape, which has all primitives by definition. For the second the formula of F without its
  // constants: the family has all primitives only where this and the derivatives of the helper functions are smooth.
  term_ptr formula = nullptr;
  term_list slopes;  // of the helper functions
};

// The family that the set is; nothing for any other set, and where a factor is not shown to be different from zero.
std::optional<function_family> read_function_family(term_ptr set, const solve_data& sdata);

}  // namespace vetro

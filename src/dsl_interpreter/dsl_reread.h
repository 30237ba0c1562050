// Formulas that lost a quantifier, read again as texts.
//
// What an operator binds depends on the quantifiers around it: under forall (k), sum_{i = k}^{n}(i) binds i, and at the
// top of a formula it binds k, too. Every formula of a gap has the binders of its text. One that came from under a
// quantifier gets them here, where that changes no meaning.
#pragma once

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

enum class reread_rule {
  // No name may change its binding: the name stands for something certain.
  exact,
  // A name may become bound where it then is free nowhere: the quantifier held for everything, so also for whatever
  // the operators that bind the name take it to be.
  any_instance,
};

// t with its binders as if it had been read from its text. Null for null, and after a message when that would be a
// formula with another meaning.
term_ptr reread(const dsl_execute_data& data, term_ptr t, reread_rule rule);

}  // namespace vetro

// Formulas made ready for substitution and for rewriting.
#include "dsl_interpreter/dsl_execute.h"
#include "lib/semantic_term.h"

namespace vetro {

term_ptr dsl_prepare_term_for_substitution(term_ptr t) { return t == nullptr ? nullptr : copy_term_with_binders(t); }

// Every binder stays: a rule must not reach under one that binds its variables, whatever the operator.
term_ptr dsl_prepare_term_for_rewrite(term_ptr t) { return dsl_prepare_term_for_substitution(t); }

}  // namespace vetro

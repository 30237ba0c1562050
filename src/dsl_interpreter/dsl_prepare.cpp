// Formulas made ready for substitution and for rewriting.
#include "dsl_interpreter/dsl_execute.h"
#include "lib/semantic_term.h"
#include "qv_solver_list/solver_shape_simpl.h"

namespace vetro {

term_ptr dsl_prepare_term_for_substitution(term_ptr t) { return t == nullptr ? nullptr : copy_term_with_binders(t); }

term_ptr dsl_prepare_term_for_rewrite(term_ptr t) {
  const term_ptr prepared = dsl_prepare_term_for_substitution(t);
  return prepared == nullptr ? nullptr : term_filter_rewrite_supported_binders(prepared);
}

}  // namespace vetro

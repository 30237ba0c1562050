// Set descriptions depend on where their parts are defined, and domains on how an expression is written.
#include "qv_solver_list/algebra/openable.h"

#include <algorithm>

#include "qv_solver_list/algebra/expression_reader.h"
#include "term/compare.h"
#include "term/substitute/fresh.h"
#include "term/traverse.h"

namespace vetro {
namespace {

bool calculates(term_ptr t) {
  return any_subterm(t, walk_children, [](term_ptr part) {
    const auto view = composed_term_split(part);
    return view && view->oper >= Plus && view->oper <= Power;
  });
}

}  // namespace

likeness likeness_inside(term_ptr t, likeness outside) {
  if (!is_apply(t)) {
    return outside;
  }
  if (depends_on_writing(t)) {
    return likeness::writing;
  }
  return describes_set(t) ? std::max(outside, likeness::everywhere) : outside;
}

bool may_replace(term_ptr a, term_ptr b, likeness asked) {
  if (asked == likeness::value) {
    return true;
  }
  const bool defined = !may_lack_value(a) && !may_lack_value(b);
  return defined && (asked == likeness::everywhere || (!calculates(a) && !calculates(b)));
}

bool same_scope(term_ptr a, term_ptr b) {
  return a->scope() == b->scope() ||
         (a->scope() != nullptr && b->scope() != nullptr && term_eqb(a->scope(), b->scope()));
}

bool mentions(term_ptr t, term_ptr var) {
  return is_var(var)
             ? name_occurs(var->name(), t)
             : any_subterm(t, walk_children | walk_scope, [var](term_ptr node) { return node->bare() == var->bare(); });
}

}  // namespace vetro

// What the written form of an opaque term keeps.
#include "qv_solver_list/expression_reader.h"

namespace vetro {
namespace {

term_ptr strip(term_ptr t, std::unordered_map<term_ptr, term_ptr>& done) {
  if (!t->has(fact_meta)) {
    return t;
  }
  const auto known = done.find(t);
  if (known != done.end()) {
    return known->second;
  }
  const unsigned kept = describes_set(t) ? keep_binders : 0U;
  term_ptr plain =
      map_children(t, walk_children | kept | always_rebuild, [&](term_ptr part) { return strip(part, done); });
  done.emplace(t, plain);
  return plain;
}

}  // namespace

term_ptr written_form(term_ptr t) {
  std::unordered_map<term_ptr, term_ptr> done;
  return strip(t, done);
}

bool describes_set(term_ptr t) { return is_apply(t) && is_apply(t->left()) && is_oper(t->left()->left(), SetDesc); }

bool depends_on_domain(term_ptr head) { return is_pred(head, Defined) || is_oper(head, Dom); }

}  // namespace vetro

// One walk over what carries metadata.
#include "term/written.h"

#include "term/traverse.h"

namespace vetro {

bool is_proposition_by_head(term_ptr t) {
  while (t->type() == Apply) {
    t = t->left();
  }
  return t->type() == Pred || t->type() == Connect || t->type() == Quant;
}

term_ptr as_written(term_ptr t) {
  return transform(t, [](term_ptr node, auto& below) {
    const unsigned scope = is_proposition_by_head(node) ? walk_scope : 0U;
    const unsigned parts = walk_children | keep_binders | always_rebuild | scope;
    return node->has(fact_meta) ? map_children(node, parts, below) : node;
  });
}

}  // namespace vetro

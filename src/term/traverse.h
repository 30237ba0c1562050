// The one traversal of terms. Operations supply what happens at a node; which parts are walked is an option that each
// names, because the documented operations differ in exactly that.
#pragma once

#include <utility>

#include "term/ast.h"
#include "term/node_memo.h"

namespace vetro {

// Parts of a node that map_children hands to the function. What is not handed over is kept as it is.
enum walk_part : unsigned {
  walk_apply = 1,      // both sides of an Apply
  walk_body = 2,       // bodies of Lambda, Quant, FreeVarTag
  walk_condition = 4,  // condition of a Lambda
  walk_lambda_vars = 8,
  walk_quant_vars = 16,
  walk_tag_vars = 32,
  walk_elements = 64,  // elements of a TermList
  walk_scope = 128,
  walk_binders = 256,
  // Metadata of a rebuilt node. Without the flag it is dropped where a child changed, and kept on an unchanged node.
  keep_binders = 512,
  keep_scope = 1024,  // not needed together with walk_scope
  keep_soft = 2048,
  // Drop what is not kept even where no child changed: the result is a new node in every case.
  always_rebuild = 4096,

  walk_children =
      walk_apply | walk_body | walk_condition | walk_lambda_vars | walk_quant_vars | walk_tag_vars | walk_elements,
  keep_meta = keep_binders | keep_scope | keep_soft,
  walk_all = walk_children | walk_scope | walk_binders | keep_meta,
};

// The node t with each selected part p replaced by f(p), parts in the order: children as stored in text order (an Apply
// left then right; a Lambda vars, condition, body; a Quant vars, body; a FreeVarTag vars, body), then binders, then
// scope. Null as soon as f gives null. A node whose parts all came back unchanged is t itself, unless always_rebuild
// says else.
template <class F>
term_ptr map_children(term_ptr t, unsigned parts, F&& f);

// The application with each of its last count arguments changed by f(argument, its number), from the left; without what
// stands on t itself, but with what stands on the nodes inside. t when nothing changed; null when an argument came out
// null, after all of them.
template <class F>
term_ptr map_arguments(term_ptr t, unsigned count, F&& f);

// True when pred holds for t or for any node below it (children, and with walk_scope and walk_binders metadata too).
// Comes to a shared node of a large term once.
template <class P>
bool any_subterm(term_ptr t, unsigned parts, P&& pred);

// What f(node, below) makes of t, where below(part) gives the same of a part. Comes to each node once, but for
// small ones; what has neither parts nor metadata stands for itself. Null gives null.
template <class F>
term_ptr transform(term_ptr t, F&& f);

// ---- Implementation.

namespace traverse_detail {

template <class F>
bool map_span(term_span in, term_list& out, bool& changed, F& f) {
  out.reserve(out.size() + in.size());
  for (term_ptr part : in) {
    term_ptr mapped = f(part);
    if (mapped == nullptr) {
      return false;
    }
    changed = changed || mapped != part;
    out.push_back(mapped);
  }
  return true;
}

inline term_ptr with_kept_meta(term_ptr t, term_ptr rebuilt, unsigned parts, term_meta&& mapped) {
  if (!t->has_meta()) {
    return rebuilt;
  }
  const term_meta& old = t->meta();
  term_meta meta;
  if ((parts & walk_binders) != 0) {
    meta.binders = std::move(mapped.binders);
    meta.guarded = old.guarded;
  } else if ((parts & keep_binders) != 0) {
    meta.binders = old.binders;
    meta.guarded = old.guarded;
  }
  if ((parts & walk_scope) != 0) {
    meta.scope = mapped.scope;
  } else if ((parts & keep_scope) != 0) {
    meta.scope = old.scope;
  }
  meta.soft = (parts & keep_soft) != 0 ? old.soft : nullptr;
  return with_meta(rebuilt, meta);
}

}  // namespace traverse_detail

template <class F>
term_ptr map_children(term_ptr t, unsigned parts, F&& f) {
  using traverse_detail::map_span;
  bool changed = false;
  term_ptr content = nullptr;
  switch (t->type()) {
    case Apply: {
      if ((parts & walk_apply) == 0) {
        content = t;
        break;
      }
      term_ptr left = f(t->left());
      if (left == nullptr) {
        return nullptr;
      }
      term_ptr right = f(t->right());
      if (right == nullptr) {
        return nullptr;
      }
      changed = left != t->left() || right != t->right();
      content = changed ? mk_apply(left, right) : t;
      break;
    }
    case Lambda: {
      term_list vars;
      if ((parts & walk_lambda_vars) == 0) {
        vars.assign(t->vars().begin(), t->vars().end());
      } else if (!map_span(t->vars(), vars, changed, f)) {
        return nullptr;
      }
      term_ptr condition = t->condition();
      if (condition != nullptr && (parts & walk_condition) != 0) {
        condition = f(condition);
        if (condition == nullptr) {
          return nullptr;
        }
        changed = changed || condition != t->condition();
      }
      term_ptr body = (parts & walk_body) != 0 ? f(t->body()) : t->body();
      if (body == nullptr) {
        return nullptr;
      }
      changed = changed || body != t->body();
      content = changed ? mk_lambda(vars, t->var_types(), condition, body) : t;
      break;
    }
    case Quant:
    case FreeVarTag: {
      const unsigned vars_flag = t->type() == Quant ? walk_quant_vars : walk_tag_vars;
      term_list vars;
      if ((parts & vars_flag) == 0) {
        vars.assign(t->vars().begin(), t->vars().end());
      } else if (!map_span(t->vars(), vars, changed, f)) {
        return nullptr;
      }
      term_ptr body = (parts & walk_body) != 0 ? f(t->body()) : t->body();
      if (body == nullptr) {
        return nullptr;
      }
      changed = changed || body != t->body();
      if (!changed) {
        content = t;
      } else {
        content = t->type() == Quant ? mk_quant(t->quant(), vars, body) : mk_free_var_tag(vars, body);
      }
      break;
    }
    case TermList: {
      content = t;
      if ((parts & walk_elements) != 0) {
        term_list elements;
        if (!map_span(t->elements(), elements, changed, f)) {
          return nullptr;
        }
        content = changed ? mk_term_list(elements) : t;
      }
      break;
    }
    default:
      content = t;
      break;
  }
  term_meta meta;
  if (t->has_meta()) {
    if ((parts & walk_binders) != 0 && !map_span(t->binders(), meta.binders, changed, f)) {
      return nullptr;
    }
    if ((parts & walk_scope) != 0 && t->scope() != nullptr) {
      meta.scope = f(t->scope());
      if (meta.scope == nullptr) {
        return nullptr;
      }
      changed = changed || meta.scope != t->scope();
    }
  }
  if (!changed && (parts & always_rebuild) == 0) {
    return t;
  }
  return traverse_detail::with_kept_meta(t, without_meta(content), parts, std::move(meta));
}

template <class F>
term_ptr map_arguments(term_ptr t, unsigned count, F&& f) {
  term_ptr left = t->left();
  if (count > 1) {
    left = map_arguments(t->left(), count - 1, f);
    left = left == t->left() || left == nullptr ? left : with_meta(left, t->left()->meta());
  }
  const term_ptr right = f(t->right(), count - 1);
  return left == t->left() && right == t->right() ? t : mk_apply(left, right);
}

namespace traverse_detail {

template <class P>
class subterm_search {
 public:
  subterm_search(unsigned parts, P& pred, bool remember) : parts_(parts), pred_(pred), remember_(remember) {}

  bool in(term_ptr t) {
    if (remember_ && !t->children().empty() && !met_.insert(t)) {
      return false;
    }
    return pred_(t) || in_content(t) || (t->has_meta() && in_meta(t));
  }

 private:
  bool walks(unsigned part) const { return (parts_ & part) != 0; }

  bool in_any(term_span list) {
    for (term_ptr part : list) {
      if (part != nullptr && in(part)) {
        return true;
      }
    }
    return false;
  }

  bool in_content(term_ptr t) {
    switch (t->type()) {
      case Apply:
        return walks(walk_apply) && (in(t->left()) || in(t->right()));
      case Lambda:
        return (walks(walk_lambda_vars) && in_any(t->vars())) ||
               (walks(walk_condition) && t->condition() != nullptr && in(t->condition())) ||
               (walks(walk_body) && in(t->body()));
      case Quant:
        return (walks(walk_quant_vars) && in_any(t->vars())) || (walks(walk_body) && in(t->body()));
      case FreeVarTag:
        return (walks(walk_tag_vars) && in_any(t->vars())) || (walks(walk_body) && in(t->body()));
      case TermList:
        return walks(walk_elements) && in_any(t->elements());
      default:
        return false;
    }
  }

  bool in_meta(term_ptr t) {
    return (walks(walk_binders) && in_any(t->binders())) ||
           (walks(walk_scope) && t->scope() != nullptr && in(t->scope()));
  }

  unsigned parts_;
  P& pred_;
  bool remember_;
  node_set met_;
};

template <class F>
class transformation {
 public:
  transformation(F& f, term_ptr root) : f_(f), known_(root) {}

  term_ptr operator()(term_ptr t) {
    if (t->children().empty() && !t->has_meta()) {
      return t;
    }
    return known_.get(t, [&] { return f_(t, *this); });
  }

 private:
  F& f_;
  walk_memo<term_ptr> known_;
};

}  // namespace traverse_detail

template <class P>
bool any_subterm(term_ptr t, unsigned parts, P&& pred) {
  return traverse_detail::subterm_search<P>(parts, pred, t->size() >= worth_remembering).in(t);
}

template <class F>
term_ptr transform(term_ptr t, F&& f) {
  return t == nullptr ? nullptr : traverse_detail::transformation<F>(f, t)(t);
}

}  // namespace vetro

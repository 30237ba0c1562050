// The one traversal of terms. Operations supply what happens at a node; which parts are walked is an option that each
// names, because the documented operations differ in exactly that.
#pragma once

#include <utility>

#include "term/ast.h"

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
template <class P>
bool any_subterm(term_ptr t, unsigned parts, P&& pred);

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

template <class P>
bool any_subterm(term_ptr t, unsigned parts, P&& pred) {
  if (pred(t)) {
    return true;
  }
  const auto below = [&](term_ptr part) { return part != nullptr && any_subterm(part, parts, pred); };
  const auto any_of = [&](term_span list) {
    for (term_ptr part : list) {
      if (below(part)) {
        return true;
      }
    }
    return false;
  };
  switch (t->type()) {
    case Apply:
      if ((parts & walk_apply) != 0 && (below(t->left()) || below(t->right()))) {
        return true;
      }
      break;
    case Lambda:
      if (((parts & walk_lambda_vars) != 0 && any_of(t->vars())) ||
          ((parts & walk_condition) != 0 && below(t->condition())) || ((parts & walk_body) != 0 && below(t->body()))) {
        return true;
      }
      break;
    case Quant:
    case FreeVarTag:
      if (((parts & (t->type() == Quant ? walk_quant_vars : walk_tag_vars)) != 0 && any_of(t->vars())) ||
          ((parts & walk_body) != 0 && below(t->body()))) {
        return true;
      }
      break;
    case TermList:
      if ((parts & walk_elements) != 0 && any_of(t->elements())) {
        return true;
      }
      break;
    default:
      break;
  }
  return ((parts & walk_binders) != 0 && any_of(t->binders())) || ((parts & walk_scope) != 0 && below(t->scope()));
}

}  // namespace vetro

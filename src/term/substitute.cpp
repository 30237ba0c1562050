// The two substitutions and the free variables that the second one needs.
//
// Both rename binders also where nothing is to be replaced, and a renaming draws a number of the process-wide counter.
// So a part is skipped only where a walk would neither change anything nor leave such a trace, and a result is
// remembered only where the counter stood still.
#include "term/substitute.h"

#include <algorithm>
#include <unordered_map>

#include "term/compare.h"
#include "term/index_variables.h"
#include "term/report.h"
#include "term/state.h"
#include "term/walk_tools.h"

namespace vetro {
namespace {

bool contains_bare(term_span list, term_ptr var) {
  return std::any_of(list.begin(), list.end(), [var](term_ptr t) { return t->bare() == var->bare(); });
}

// A variable is found whatever scope it carries, so that no binder is overlooked.
bool stands_in(term_span list, term_ptr t) { return contains_bare(list, t) || term_list_contains(list, t); }

// The list with every entry that is this variable replaced.
term_list replaced(term_span list, term_ptr var, term_ptr by) {
  term_list result(list.begin(), list.end());
  for (term_ptr& entry : result) {
    entry = entry->bare() == var->bare() ? by : entry;
  }
  return result;
}

// The node t with another condition and body.
term_ptr with_parts(term_ptr t, term_span vars, term_ptr condition, term_ptr body) {
  return t->type() == Lambda ? mk_lambda(vars, t->var_types(), condition, body) : mk_quant(t->quant(), vars, body);
}

// A subterm exactly equal to it may stand in a term only if this is true.
class occurrence_test {
 public:
  explicit occurrence_test(term_ptr t) : mask_(t->bare()->name_mask()), size_(t->bare()->size()) {}
  bool maybe_in(term_ptr t) const { return (mask_ & ~t->name_mask()) == 0 && size_ <= t->size(); }

 private:
  std::uint64_t mask_;
  std::uint32_t size_;
};

// What both walks share: the exact match, the remembering of results, and the way through the children.
template <class Walk>
class substitution_base {
 public:
  substitution_base(term_ptr src, term_ptr dest, bool remember)
      : src_(src), dest_(dest), src_bare_(src->bare()), src_test_(src), remember_(remember) {}

  term_ptr walk(term_ptr t) {
    if (t->bare() == src_bare_) {
      return dest_;
    }
    if (self().leaves_alone(t)) {
      return t;
    }
    return remember_ ? walk_remembering(t) : self().walk_node(t);
  }

 protected:
  Walk& self() { return static_cast<Walk&>(*this); }

  [[gnu::noinline]] term_ptr walk_remembering(term_ptr t) {
    const auto found = known_.find(t);
    if (found != known_.end()) {
      return found->second;
    }
    const int counter = state().fresh_counter;
    const term_ptr result = self().walk_node(t);
    if (result != nullptr && counter == state().fresh_counter) {
      known_.emplace(t, result);
    }
    return result;
  }

  // All parts are walked even when one of them failed: the others may draw names.
  bool walk_list(term_span list, term_list& out) {
    bool complete = true;
    out.reserve(list.size());
    for (term_ptr t : list) {
      out.push_back(walk(t));
      complete = complete && out.back() != nullptr;
    }
    return complete;
  }

  // Content without metadata; t itself when nothing changed.
  term_ptr walk_apply(term_ptr t) {
    const term_ptr left = walk(t->left());
    const term_ptr right = walk(t->right());
    return left == t->left() && right == t->right() ? t : mk_apply(left, right);
  }

  [[gnu::noinline]] term_ptr walk_elements(term_ptr t) {
    term_list elements;
    return walk_list(t->elements(), elements) ? mk_term_list(elements) : nullptr;
  }

  [[gnu::noinline]] term_ptr walk_tag(term_ptr t) {
    term_list vars;
    const bool complete = walk_list(t->vars(), vars);
    const term_ptr body = walk(t->body());
    return complete ? mk_free_var_tag(vars, body) : nullptr;
  }

  // The condition and the body of a Lambda or Quant under the given variables.
  term_ptr walk_bound_parts(term_ptr t, term_span vars, term_ptr condition, term_ptr body) {
    const term_ptr new_condition = condition == nullptr ? nullptr : walk(condition);
    const term_ptr new_body = walk(body);
    return condition != nullptr && new_condition == nullptr ? nullptr : with_parts(t, vars, new_condition, new_body);
  }

  // The binders of t after the walk. One that stands for itself, as the start of a sum, is replaced like any
  // occurrence, and one that is no longer a name is not listed.
  term_list walk_binders(term_ptr t) const {
    term_list binders = t->binders();
    if (contains_bare(binders, src_)) {
      if (is_var(dest_)) {
        return replaced(binders, src_, dest_);
      }
      const auto same = [this](term_ptr binder) { return binder->bare() == src_bare_; };
      binders.erase(std::remove_if(binders.begin(), binders.end(), same), binders.end());
    }
    return binders;
  }

  static term_ptr condition_of(term_ptr t) { return t->type() == Lambda ? t->condition() : nullptr; }

  term_ptr src_;
  term_ptr dest_;
  term_ptr src_bare_;
  occurrence_test src_test_;
  bool remember_;
  std::unordered_map<term_ptr, term_ptr> known_;
};

// ---- Plain substitution: a binder is renamed only where it is dest itself; binders and scopes are carried over.

class plain_substitution : public substitution_base<plain_substitution> {
 public:
  plain_substitution(term_ptr src, term_ptr dest, bool remember)
      : substitution_base(src, dest, remember), dest_test_(dest), dest_may_vary_(dest->has(fact_binding)) {}

  bool leaves_alone(term_ptr t) const {
    if (t->has(fact_empty_list) || src_test_.maybe_in(t)) {
      return false;
    }
    // A dest with bindings of its own could equal a binder under other bound names.
    return !t->has(fact_binding) || (!dest_may_vary_ && !dest_test_.maybe_in(t));
  }

  term_ptr walk_node(term_ptr t) {
    if (!t->has_meta()) {
      return walk_content(t);
    }
    if (const term_list bound = bound_here(t); !bound.empty()) {
      if (stands_in(bound, src_)) {
        return t;
      }
      if (stands_in(bound, dest_)) {
        return with_renamed_binder(t);
      }
    }
    const term_ptr content = walk_content(t);
    return content == nullptr || content == t
               ? content
               : with_meta(without_meta(content), {walk_binders(t), t->scope(), nullptr});
  }

 private:
  term_ptr with_renamed_binder(term_ptr t) {
    const term_ptr name = fresh(dest_, t);
    const term_ptr renamed = subst_term(dest_, name, with_binders(t, {}));
    const term_ptr result = subst_term(src_, dest_, renamed);
    return name == nullptr ? nullptr
                           : with_binders(result, walk_binders(with_binders(t, replaced(t->binders(), dest_, name))));
  }

  term_ptr walk_content(term_ptr t) {
    switch (t->type()) {
      case Apply:
        return walk_apply(t);
      case TermList:
        if (t->elements().empty()) {
          report_error("Error: subst_term visiting NULL pointer\n");
          return nullptr;
        }
        return walk_elements(t);
      case FreeVarTag:
        return walk_tag(t);
      case Lambda:
      case Quant:
        return walk_binding(t);
      default:
        return t;
    }
  }

  [[gnu::noinline]] term_ptr walk_binding(term_ptr t) {
    if (stands_in(t->vars(), src_)) {
      return t;
    }
    if (!stands_in(t->vars(), dest_)) {
      return walk_bound_parts(t, t->vars(), condition_of(t), t->body());
    }
    const term_ptr name = fresh(dest_, t);
    const term_ptr condition = condition_of(t) == nullptr ? nullptr : subst_term(dest_, name, condition_of(t));
    const term_ptr body = subst_term(dest_, name, t->body());
    if (name == nullptr || body == nullptr || (condition_of(t) != nullptr && condition == nullptr)) {
      return nullptr;
    }
    return walk_bound_parts(t, replaced(t->vars(), dest_, name), condition, body);
  }

  occurrence_test dest_test_;
  bool dest_may_vary_;
};

// ---- Capture-avoiding substitution: every binder that is free in dest is renamed; scopes are walked.

class careful_substitution : public substitution_base<careful_substitution> {
 public:
  careful_substitution(term_ptr src, term_ptr dest, bool remember)
      : substitution_base(src, dest, remember), free_(plain_free_variables(dest)) {
    for (term_ptr var : free_) {
      free_mask_ |= var->name_mask();
    }
  }

  bool leaves_alone(term_ptr t) const {
    return !src_test_.maybe_in(t) && (!t->has(fact_binding) || (free_mask_ & t->name_mask()) == 0);
  }

  term_ptr walk_node(term_ptr t) {
    if (!t->has_meta()) {
      return walk_content(t);
    }
    if (const term_list bound = bound_here(t); !bound.empty()) {
      if (stands_in(bound, src_)) {
        return t;
      }
      t = with_renamed_binders(t, bound);
    }
    return walk_with_meta(t);
  }

 private:
  bool captures(term_ptr var) const { return (var->name_mask() & free_mask_) != 0 && contains_bare(free_, var); }

  // A leaf is taken over with its scope; elsewhere the scope is walked after the content.
  [[gnu::noinline]] term_ptr walk_with_meta(term_ptr t) {
    const term_ptr content = walk_content(t);
    if (content == nullptr || (t->children().empty() && t->type() != TermList)) {
      return content;
    }
    const term_ptr scope = t->scope() == nullptr ? nullptr : walk(t->scope());
    if (scope == nullptr && t->scope() != nullptr) {
      return nullptr;
    }
    if (content == t && scope == t->scope()) {
      return t;
    }
    return with_meta(without_meta(content), {walk_binders(t), scope, nullptr});
  }

  term_ptr fresh_for(term_ptr var, term_ptr t) const {
    const term_ptr contexts[] = {t, dest_};
    return fresh_avoiding(var, contexts);
  }

  [[gnu::noinline]] term_ptr with_renamed_binders(term_ptr t, const term_list& bound) {
    for (term_ptr binder : bound) {
      if (!captures(binder) || !contains_bare(t->binders(), binder)) {
        continue;
      }
      const term_ptr name = fresh_for(binder, t);
      if (name == nullptr) {
        continue;
      }
      const term_ptr content = subst_term_capture_avoiding(binder, name, with_binders(t, {}));
      t = with_binders(content, replaced(t->binders(), binder, name));
    }
    return t;
  }

  term_ptr walk_content(term_ptr t) {
    switch (t->type()) {
      case Apply:
        return walk_apply(t);
      case TermList:
        return walk_elements(t);
      case FreeVarTag:
        return walk_tag(t);
      case Lambda:
      case Quant:
        return walk_binding(t);
      default:
        return t;
    }
  }

  [[gnu::noinline]] term_ptr walk_binding(term_ptr t) {
    if (stands_in(t->vars(), src_)) {
      return t;
    }
    const bool renames = std::any_of(t->vars().begin(), t->vars().end(), [this](term_ptr v) { return captures(v); });
    return renames ? walk_renaming(t) : walk_bound_parts(t, t->vars(), condition_of(t), t->body());
  }

  term_ptr walk_renaming(term_ptr t) {
    term_ptr current = t;
    term_list vars(t->vars().begin(), t->vars().end());
    term_ptr condition = condition_of(t);
    term_ptr body = t->body();
    for (std::size_t i = 0; i < vars.size(); ++i) {
      const term_ptr var = vars[i];
      const term_ptr name = captures(var) ? fresh_for(var, current) : nullptr;
      if (name == nullptr) {
        continue;
      }
      vars = replaced(vars, var, name);
      condition = condition == nullptr ? nullptr : subst_term_capture_avoiding(var, name, condition);
      body = subst_term_capture_avoiding(var, name, body);
      current = with_parts(t, vars, condition, body);
    }
    return walk_bound_parts(t, vars, condition, body);
  }

  term_list free_;
  std::uint64_t free_mask_ = 0;
};

// ---- Free variables in the ordinary sense.

class plain_free_walk {
 public:
  void walk(term_ptr t) {
    if (t->name_mask() == 0) {
      return;
    }
    if (t->size() >= worth_remembering && !met_.insert({bindings_, t}).second) {
      return;
    }
    const std::size_t before = bound_.size();
    const std::uint64_t bindings_before = bindings_;
    bind(bound_here(t));
    walk_content(t);
    if (t->scope() != nullptr) {
      walk(t->scope());
    }
    release(before, bindings_before);
  }

  const term_list& found() const { return found_.list(); }

 private:
  void walk_content(term_ptr t) {
    switch (t->type()) {
      case Var:
        if (!bound_.contains(t)) {
          found_.add(t->bare());
        }
        return;
      case Apply:
        walk(t->left());
        walk(t->right());
        return;
      case Lambda:
      case Quant:
        walk_binding(t);
        return;
      case TermList:
        walk_list(t->elements());
        return;
      case FreeVarTag:
        walk_list(t->vars());
        walk(t->body());
        return;
      default:
        return;
    }
  }

  void walk_list(term_span list) {
    for (term_ptr t : list) {
      walk(t);
    }
  }

  void walk_binding(term_ptr t) {
    const std::size_t before = bound_.size();
    const std::uint64_t bindings_before = bindings_;
    bind(t->vars());
    if (t->type() == Lambda && t->condition() != nullptr) {
      walk(t->condition());
    }
    walk(t->body());
    release(before, bindings_before);
  }

  // An entry such as x ∈ S is no variable and binds nothing.
  void bind(term_span vars) {
    for (term_ptr var : vars) {
      bound_.bind(var);
      bindings_ = ++last_bindings_;
    }
  }

  void release(std::size_t count, std::uint64_t bindings) {
    bound_.release(count);
    bindings_ = bindings;
  }

  bound_names bound_;
  ordered_terms found_;
  std::uint64_t bindings_ = 0;
  std::uint64_t last_bindings_ = 0;
  visited_nodes met_;
};

}  // namespace

term_ptr subst_term(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    report_error("Error: subst_term visiting NULL pointer\n");
    return nullptr;
  }
  return plain_substitution(src, dest, t->size() >= worth_remembering).walk(t);
}

term_list subst_term_list(term_ptr src, term_ptr dest, term_span list) {
  term_list result;
  bool complete = true;
  for (term_ptr t : list) {
    result.push_back(subst_term(src, dest, t));
    complete = complete && result.back() != nullptr;
  }
  return complete ? result : term_list{};
}

term_ptr subst_term_capture_avoiding(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    return nullptr;
  }
  return careful_substitution(src, dest, t->size() >= worth_remembering).walk(t);
}

term_list plain_free_variables(term_ptr t) {
  plain_free_walk walk;
  if (t != nullptr) {
    walk.walk(t);
  }
  return walk.found();
}

}  // namespace vetro

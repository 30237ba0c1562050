// Capture-free instantiation.
//
// The work is done in two walks. The first prepares the term: it renames every binder that would capture a variable of
// the value at a place where the replaced variable stands, and substitutes in the sets of quantifier entries, which the
// plain substitution never reads. The second is the plain substitution itself, so that all other results, fresh names
// included, are its own.
#include "dsl_interpreter/dsl_instantiate.h"

#include <algorithm>

#include "lib/semantic_term.h"
#include "term/bound_variables.h"
#include "term/compare.h"
#include "term/substitute.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

bool contains_pure(term_span list, term_ptr t) {
  return std::any_of(list.begin(), list.end(), [t](term_ptr element) { return term_eqb_pure(element, t); });
}

bool occurs_anywhere(term_ptr part, term_ptr t) {
  return any_subterm(t, walk_children | walk_scope, [part](term_ptr node) { return term_eqb_pure(node, part); });
}

// The entry with its bound side renamed by `rename` and its other side changed by `outer`.
template <class Rename, class Outer>
term_ptr map_entry(term_ptr entry, bool left_binds, Rename&& rename, Outer&& outer) {
  if (!left_binds) {
    return rename(entry);
  }
  if (is_predchain(entry)) {
    term_list operands;
    for (term_ptr operand : entry->right()->elements()) {
      term_ptr mapped = operands.empty() ? rename(operand) : outer(operand);
      if (mapped == nullptr) {
        return nullptr;
      }
      operands.push_back(mapped);
    }
    return with_meta(mk_apply(entry->left(), mk_term_list(operands)), entry->meta());
  }
  term_ptr left = rename(entry->left()->right());
  term_ptr right = outer(entry->right());
  term_ptr head = left == nullptr ? nullptr : with_meta(mk_apply(entry->left()->left(), left), entry->left()->meta());
  return with_meta(mk_apply(head, right), entry->meta());
}

class preparation {
 public:
  preparation(term_ptr src, term_ptr dest) : src_(src), dest_(dest), dest_free_(plain_free_variables(dest)) {}

  term_ptr run(term_ptr t) {
    // Nothing below binds, or the replaced term does not stand here: nothing can be captured.
    if (!t->has(fact_binding) || term_eqb_pure(t, src_) || !occurs_anywhere(src_, t)) {
      return t;
    }
    if (contains_pure(t->binders(), src_)) {
      return t;
    }
    for (term_ptr binder : term_list(t->binders())) {
      if (captures(binder)) {
        t = rename_implicit(t, binder);
      }
    }
    if (t->type() == Lambda) {
      return prepare_lambda(t);
    }
    if (t->type() == Quant) {
      return prepare_quant(t);
    }
    return map_children(t, walk_apply | walk_elements | walk_body | keep_meta,
                        [this](term_ptr part) { return run(part); });
  }

 private:
  // The plain substitution renames a binder that is the value itself, so only the other captures are for this walk.
  bool captures(term_ptr binder) const {
    return !term_eqb_pure(binder, dest_) && (contains_pure(dest_free_, binder) || occurs_anywhere(binder, dest_));
  }

  term_ptr fresh_for(term_ptr var, term_ptr t) const {
    term_ptr name = is_var(var) ? var : mk_var("v");
    const term_ptr parts[] = {t, src_, dest_};
    return fresh(name, mk_term_list(parts));
  }

  term_ptr rename_implicit(term_ptr t, term_ptr binder) {
    term_ptr name = fresh_for(binder, t);
    term_list binders = t->binders();
    std::replace_if(
        binders.begin(), binders.end(), [binder](term_ptr b) { return term_eqb_pure(b, binder); }, name);
    term_ptr renamed = subst_term(binder, name, with_binders(t, {}));
    return with_binders(renamed, binders);
  }

  term_ptr prepare_lambda(term_ptr t) {
    if (contains_pure(t->vars(), src_)) {
      return t;
    }
    term_list vars(t->vars().begin(), t->vars().end());
    term_ptr condition = t->condition();
    term_ptr body = t->body();
    for (term_ptr& var : vars) {
      if (captures(var)) {
        term_ptr name = fresh_for(var, t);
        condition = condition == nullptr ? nullptr : subst_term(var, name, condition);
        body = subst_term(var, name, body);
        var = name;
      }
    }
    condition = condition == nullptr ? nullptr : run(condition);
    body = body == nullptr ? nullptr : run(body);
    return with_meta(mk_lambda(vars, t->var_types(), condition, body), t->meta());
  }

  term_ptr prepare_quant(term_ptr t) {
    if (contains_pure(t->vars(), src_)) {
      return t;
    }
    term_list vars(t->vars().begin(), t->vars().end());
    term_ptr body = t->body();
    for (std::size_t i = 0; i < vars.size(); ++i) {
      term_list bound = entry_bound_variables(vars[i]);
      for (term_ptr var : bound) {
        // A variable that an entry binds shadows the replaced one; the plain substitution would not see that.
        const bool shadows = is_proposition_entry(vars[i]) && term_eqb_pure(var, src_);
        if (shadows || captures(var) || (is_proposition_entry(vars[i]) && term_eqb_pure(var, dest_))) {
          term_ptr name = fresh_for(var, t);
          rename_bound(vars, i, var, name);
          body = subst_term(var, name, body);
        }
      }
      if (is_proposition_entry(vars[i])) {
        const bool left_binds = entry_binds_left_side(vars[i]);
        vars[i] = map_entry(
            vars[i], left_binds, [](term_ptr side) { return side; },
            [this](term_ptr side) { return instantiate_term(src_, dest_, side); });
      }
      if (vars[i] == nullptr || body == nullptr) {
        return nullptr;
      }
    }
    body = run(body);
    return with_meta(mk_quant(t->quant(), vars, body), t->meta());
  }

  // Renames a variable in the entry that binds it and in the later entries, which may speak of it.
  static void rename_bound(term_list& vars, std::size_t i, term_ptr var, term_ptr name) {
    const auto rename = [var, name](term_ptr side) { return subst_term(var, name, side); };
    if (!is_proposition_entry(vars[i])) {
      vars[i] = name;
    } else {
      const bool left_binds = entry_binds_left_side(vars[i]);
      vars[i] = map_entry(vars[i], left_binds, rename, [](term_ptr side) { return side; });
    }
    for (std::size_t later = i + 1; later < vars.size(); ++later) {
      if (is_proposition_entry(vars[later])) {
        vars[later] = rename(vars[later]);
      }
    }
  }

  term_ptr src_;
  term_ptr dest_;
  term_list dest_free_;
};

}  // namespace

term_ptr instantiate_term(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    return nullptr;
  }
  term_ptr prepared = preparation(src, dest).run(t);
  return prepared == nullptr ? nullptr : subst_term(src, dest, prepared);
}

term_ptr strip_binders(term_ptr t) {
  if (t == nullptr || !t->has(fact_meta)) {
    return t;
  }
  term_ptr below =
      map_children(t, walk_children | walk_scope | keep_meta, [](term_ptr part) { return strip_binders(part); });
  return with_binders(below, {});
}

term_ptr with_binders_as_read(term_ptr t) {
  term_ptr plain = strip_binders(t);
  return plain == nullptr ? nullptr : copy_term_with_binders(plain);
}

}  // namespace vetro

// Free variables in one pass: what is bound on the way down is known at every variable, so nothing has to be taken out
// of a result again.
#include "term/variables/free_variable.h"

#include <algorithm>

#include "term/node_memo.h"
#include "term/report.h"
#include "term/variables/binding.h"
#include "term/variables/bound_names.h"

namespace vetro {

namespace {

class free_variable_walk {
 public:
  explicit free_variable_walk(term_span bound) { bound_.bind_all(bound); }

  void walk(term_ptr t) {
    if (t == nullptr) {
      report_error("Error: term_free_variable visiting NULL pointer\n");
      return;
    }
    if (t->size() >= worth_remembering && !t->has(fact_empty_list) && !met_.insert(t, bound_.number())) {
      return;  // its variables are all known, and no line would be printed
    }
    const binding b(t);
    if (b.row() == nullptr) {
      walk_content(t);
    } else {
      walk_parts(t, b);
    }
    if (t->scope() != nullptr) {
      walk_under(b.indices(), t->scope());
    }
  }

  void walk_list(term_span list) {
    if (list.empty()) {
      report_error("Error: term_list_free_variable visiting NULL pointer\n");
    }
    for (term_ptr t : list) {
      walk(t);
    }
  }

  const term_list& found() const { return found_.list(); }

 private:
  void walk_under(term_span indices, term_ptr t) {
    const bound_names::mark outside = bound_.here();
    bound_.bind_all(indices);
    walk(t);
    bound_.leave(outside);
  }

  [[gnu::noinline]] void walk_parts(term_ptr t, const binding& b) {
    for_each_part(t, b, [&](term_ptr part, bool is_inside) {
      if (is_inside) {
        walk_under(b.indices(), part);
      } else {
        walk(part);
      }
    });
  }

  void walk_content(term_ptr t) {
    if (term_is_var(t)) {
      if (!bound_.contains(t)) {
        found_.add(t->bare());
      }
      return;
    }
    switch (t->type()) {
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
        walk(t->body());
        return;
      default:
        return;
    }
  }

  // Every free variable of an entry is bound inside: x, and the x and the S of x ∈ S.
  [[gnu::noinline]] void walk_binding(term_ptr t) {
    const bound_names::mark outside = bound_.here();
    if (std::all_of(t->vars().begin(), t->vars().end(), [](term_ptr v) { return is_var(v) && !v->has_meta(); })) {
      bound_.bind_all(t->vars());
    } else {
      free_variable_walk entries({});
      for (term_ptr var : t->vars()) {
        entries.walk(var);
      }
      bound_.bind_all(entries.found());
    }
    if (t->type() == Lambda && t->condition() != nullptr) {
      walk(t->condition());
    }
    walk(t->body());
    bound_.leave(outside);
  }

  bound_names bound_;
  ordered_terms found_;
  node_set met_;
};

}  // namespace

bool term_is_var(term_ptr t) {
  if (t == nullptr) {
    report_error("Error: term_is_var visiting NULL pointer\n");
    return false;
  }
  if (t->type() != Apply || t->left()->type() != Apply) {
    return t->type() == Var;
  }
  const term_ptr head = t->left()->left();
  return head->type() == Oper && head->oper() == Index;
}

term_list term_free_variable(term_ptr t, term_span bound) {
  free_variable_walk walk(bound);
  walk.walk(t);
  return walk.found();
}

term_list term_list_free_variable(term_span list, term_span bound) {
  free_variable_walk walk(bound);
  walk.walk_list(list);
  return walk.found();
}

}  // namespace vetro

// Free variables in one pass: what is bound on the way down is known at every variable, so nothing has to be taken out
// of a result again.
#include "term/free_variable.h"

#include <algorithm>
#include <unordered_map>

#include "term/report.h"
#include "term/walk_tools.h"

namespace vetro {

struct free_variable_memo::answers {
  std::unordered_map<term_ptr, term_list> known;

  const term_list* find(term_ptr t) const {
    const auto found = t->size() < worth_remembering ? known.end() : known.find(t);
    return found == known.end() ? nullptr : &found->second;
  }
  // Long answers are not kept: a tower of them would cost the square of its height in memory. Neither is one that
  // comes with a line on standard error.
  void keep(term_ptr t, const term_list& list) {
    constexpr std::size_t longest = 64;
    if (t->size() >= worth_remembering && !t->has(fact_empty_list) && list.size() <= longest) {
      known.emplace(t, list);
    }
  }
};

namespace {

class free_variable_walk {
 public:
  explicit free_variable_walk(term_span bound, const free_variable_memo::answers* answers = nullptr)
      : answers_(answers) {
    for (term_ptr var : bound) {
      bound_.bind(var);
    }
  }

  void walk(term_ptr t) {
    if (t == nullptr) {
      report_error("Error: term_free_variable visiting NULL pointer\n");
      return;
    }
    if (t->size() >= worth_remembering && !t->has(fact_empty_list) && !met_.insert({bindings_, t}).second) {
      return;  // its variables are all known, and no line would be printed
    }
    if (const term_list* known = answers_ == nullptr ? nullptr : answers_->find(t); known != nullptr) {
      add_unbound(*known);
      return;
    }
    const std::size_t before = bound_.size();
    const std::uint64_t bindings_before = bindings_;
    bind(t->binders());
    walk_content(t);
    if (t->scope() != nullptr) {
      walk(t->scope());
    }
    bound_.release(before);
    bindings_ = bindings_before;
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
  void add_unbound(const term_list& variables) {
    for (term_ptr var : variables) {
      if (!bound_.contains(var)) {
        found_.add(var);
      }
    }
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
    const std::size_t before = bound_.size();
    const std::uint64_t bindings_before = bindings_;
    if (std::all_of(t->vars().begin(), t->vars().end(), [](term_ptr v) { return is_var(v) && !v->has_meta(); })) {
      bind(t->vars());
    } else {
      free_variable_walk entries({}, answers_);
      for (term_ptr var : t->vars()) {
        entries.walk(var);
      }
      bind(entries.found());
    }
    if (t->type() == Lambda && t->condition() != nullptr) {
      walk(t->condition());
    }
    walk(t->body());
    bound_.release(before);
    bindings_ = bindings_before;
  }

  void bind(term_span vars) {
    for (term_ptr var : vars) {
      bound_.bind(var);
      bindings_ = ++last_bindings_;
    }
  }

  const free_variable_memo::answers* answers_;
  bound_names bound_;
  ordered_terms found_;
  std::uint64_t bindings_ = 0;  // number of the present state of the bindings
  std::uint64_t last_bindings_ = 0;
  visited_nodes met_;
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

free_variable_memo::free_variable_memo() : answers_(std::make_unique<answers>()) {}

free_variable_memo::~free_variable_memo() = default;

term_list free_variable_memo::of(term_ptr t) {
  free_variable_walk walk({}, answers_.get());
  walk.walk(t);
  if (t != nullptr) {
    answers_->keep(t, walk.found());
  }
  return walk.found();
}

term_list free_variable_memo::of_list(term_span list) {
  ordered_terms result;
  for (term_ptr t : list) {
    for (term_ptr var : of(t)) {
      result.add(var);
    }
  }
  return result.list();
}

}  // namespace vetro

// Free variables in one pass: what is bound on the way down is known at every variable, so nothing has to be taken out
// of a result again.
#include "term/free_variable.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "term/report.h"
#include "term/walk_tools.h"

namespace vetro {

struct free_variable_memo::answers {
  const term_list* find(term_ptr t) const {
    if (t->size() < worth_remembering) {
      return nullptr;
    }
    for (const long_answer& recent : recent_) {
      if (recent.t == t) {
        return &recent.variables;
      }
    }
    const auto found = known_.find(t);
    return found == known_.end() ? nullptr : &found->second;
  }
  // Of long answers only the newest are kept, which a tower needs: all of them would cost the square of its height in
  // memory. One that comes with a line on standard error is not kept.
  void keep(term_ptr t, const term_list& list) {
    constexpr std::size_t longest = 64;
    if (t->size() < worth_remembering || t->has(fact_empty_list)) {
      return;
    }
    if (list.size() <= longest) {
      known_.emplace(t, list);
    } else {
      recent_[oldest_] = {t, list};
      oldest_ = (oldest_ + 1) % recent_.size();
    }
  }

  // Terms in which a variable is known not to be free.
  bool lacks(term_ptr t, term_ptr var) const {
    const auto found = lacking_.find(var);
    return found != lacking_.end() && found->second.contains(t);
  }
  void keep_lacking(term_ptr t, term_ptr var) {
    if (t->size() >= worth_remembering) {
      lacking_[var].insert(t);
    }
  }

 private:
  struct long_answer {
    term_ptr t = nullptr;
    term_list variables;
  };
  std::unordered_map<term_ptr, term_list> known_;
  std::array<long_answer, 4> recent_;
  std::size_t oldest_ = 0;
  std::unordered_map<term_ptr, std::unordered_set<term_ptr>> lacking_;
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

  // Whether var is free in t; the walk must be new.
  bool finds(term_ptr var, term_ptr t) {
    sought_ = var->bare();
    walk(t);
    return found_sought_;
  }

  void walk(term_ptr t) {
    if (sought_ != nullptr && cannot_find(t)) {
      return;
    }
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
      add_unless_bound(var);
    }
  }

  void add_unless_bound(term_ptr var) {
    if (bound_.contains(var)) {
      return;
    }
    if (sought_ == nullptr) {
      found_.add(var);
    } else {
      found_sought_ = found_sought_ || var == sought_;
    }
  }

  // A search does not go into what is without the variable, nor on once it has been found.
  bool cannot_find(term_ptr t) const {
    return found_sought_ || t == nullptr || (sought_->name_mask() & ~t->name_mask()) != 0 ||
           (t->size() >= worth_remembering && answers_->lacks(t, sought_));
  }

  void walk_content(term_ptr t) {
    if (term_is_var(t)) {
      add_unless_bound(t->bare());
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
  term_ptr sought_ = nullptr;  // the only variable of interest, or null
  bool found_sought_ = false;
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

bool free_variable_memo::has(term_ptr t, term_ptr var) {
  free_variable_walk walk({}, answers_.get());
  const bool found = walk.finds(var, t);
  if (!found && t != nullptr) {
    answers_->keep_lacking(t, var->bare());
  }
  return found;
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

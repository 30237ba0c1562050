// One walk finds the names of a term; another asks for one variable and remembers the answers.
#include "term/variables/free_names.h"

#include <algorithm>
#include <array>

#include "term/variables/binding.h"
#include "term/variables/bound_names.h"
#include "term/variables/entries.h"
#include "term/variables/free_variable.h"

namespace vetro {

// Of long answers only the newest are kept, which a tower needs: all of them would cost the square of its height in
// memory.
struct name_memo::answers {
  const term_list* find(term_ptr t) const {
    if (t->size() < worth_remembering) {
      return nullptr;
    }
    for (const long_answer& recent : recent_) {
      if (recent.t == t) {
        return &recent.names;
      }
    }
    const auto found = known_.find(t);
    return found == known_.end() ? nullptr : &found->second;
  }

  const term_list& keep(term_ptr t, const term_list& list) {
    constexpr std::size_t longest = 64;
    if (t->size() < worth_remembering) {
      return small_ = list;
    }
    if (list.size() <= longest) {
      return known_.emplace(t, list).first->second;
    }
    long_answer& slot = recent_[oldest_];
    slot = {t, list};
    oldest_ = (oldest_ + 1) % recent_.size();
    return slot.names;
  }

 private:
  struct long_answer {
    term_ptr t = nullptr;
    term_list names;
  };
  term_list small_;
  std::unordered_map<term_ptr, term_list> known_;
  std::array<long_answer, 4> recent_;
  std::size_t oldest_ = 0;
};

namespace {

class name_walk {
 public:
  explicit name_walk(free_occurrences::heads counted, const name_memo::answers* answers = nullptr)
      : heads_(counted), answers_(answers) {}

  void walk(term_ptr t) {
    if (t->name_mask() == 0) {
      return;
    }
    if (const term_list* known = answers_ == nullptr ? nullptr : answers_->find(t); known != nullptr) {
      add_unbound(*known);
      return;
    }
    if (t->size() >= worth_remembering && !met_.insert(t, bound_.number_for(t))) {
      return;
    }
    const binding b(t);
    if (b.row() == nullptr) {
      walk_content(t);
    } else {
      for_each_part(t, b, [&](term_ptr part, bool is_inside) {
        if (is_inside) {
          walk_under(b.indices(), part);
        } else {
          walk(part);
        }
      });
    }
    if (t->scope() != nullptr) {
      walk_under(b.indices(), t->scope());
    }
  }

  const term_list& found() const { return found_.list(); }

 private:
  void add_unbound(const term_list& names) {
    for (term_ptr name : names) {
      if (!bound_.contains(name)) {
        found_.add(name);
      }
    }
  }

  void walk_under(term_span indices, term_ptr part) {
    const bound_names::mark outside = bound_.here();
    bound_.bind_all(indices);
    walk(part);
    bound_.leave(outside);
  }

  void walk_content(term_ptr t) {
    switch (t->type()) {
      case Var:
        if (!bound_.contains(t)) {
          found_.add(t->bare());
        }
        return;
      case Apply:
        walk_apply(t);
        return;
      case Lambda:
      case Quant:
        walk_binding(t);
        return;
      default:
        for (term_ptr child : t->children()) {
          walk(child);
        }
        return;
    }
  }

  void walk_apply(term_ptr t) {
    const bool names_head = heads_ == free_occurrences::heads::skipped && t->left()->type() == Var;
    const bool names_base = heads_ == free_occurrences::heads::skipped && t->head() == Index &&
                            t->argument_count() == 2 && t->argument(0)->type() == Var;
    if (!names_head && !names_base) {
      walk(t->left());
    }
    walk(t->right());
  }

  void walk_binding(term_ptr t) {
    const bound_names::mark outside = bound_.here();
    for (term_ptr entry : t->vars()) {
      const entry_view view = entry_of(entry);
      if (is_proposition_entry(entry)) {
        walk_entry(entry, view);
      }
      bound_.bind_all(view.bound);
    }
    if (t->type() == Lambda && t->condition() != nullptr) {
      walk(t->condition());
    }
    walk(t->body());
    bound_.leave(outside);
  }

  // What stands beside the bound side belongs to the surroundings.
  void walk_entry(term_ptr entry, const entry_view& view) {
    for_each_side(entry, view, [&](term_ptr side, bool is_inner) {
      if (is_inner) {
        walk_under(view.bound, side);
      } else {
        walk(side);
      }
    });
  }

  free_occurrences::heads heads_;
  const name_memo::answers* answers_;
  bound_names bound_;
  ordered_terms found_;
  node_set met_;
};

term_list names_of(term_ptr t, free_occurrences::heads counted) {
  if (t == nullptr) {
    return {};
  }
  name_walk walk(counted);
  walk.walk(t);
  return walk.found();
}

}  // namespace

term_list plain_free_variables(term_ptr t) { return names_of(t, free_occurrences::heads::counted); }

term_list free_names_beside_heads(term_ptr t) { return names_of(t, free_occurrences::heads::skipped); }

bool occurs_free(term_ptr var, term_ptr t) {
  return is_var(var) && t != nullptr && free_occurrences(var, free_occurrences::in_scopes::yes).in(t);
}

// ---- One variable.

bool free_occurrences::in(term_ptr t) {
  if ((var_->name_mask() & ~t->name_mask()) != 0 || t->size() < var_->size()) {
    return false;
  }
  return t->size() < worth_remembering ? in_node(t) : known_.get(t, [&] { return in_node(t); });
}

bool free_occurrences::in_any(term_span list) {
  return std::any_of(list.begin(), list.end(), [this](term_ptr t) { return t != nullptr && in(t); });
}

bool free_occurrences::in_node(term_ptr t) {
  if (t->bare() == var_) {
    return true;
  }
  const binding b(t);
  const bool bound = b.binds(var_);
  if (scopes_ == in_scopes::yes && !bound && t->scope() != nullptr && in(t->scope())) {
    return true;
  }
  if (bound) {
    bool found = false;
    for_each_part(t, b, [&](term_ptr part, bool is_inside) { found = found || (!is_inside && in(part)); });
    return found;
  }
  if (t->type() == Apply) {
    return in_apply(t);
  }
  return t->type() == Quant || t->type() == Lambda ? in_binding(t) : in_any(t->children());
}

bool free_occurrences::in_apply(term_ptr t) {
  const bool skipped =
      heads_ == heads::skipped &&
      (t->left()->type() == Var || (t->head() == Index && t->argument_count() == 2 && t->argument(0)->type() == Var));
  return (!skipped && in(t->left())) || in(t->right());
}

bool free_occurrences::beside(term_ptr entry) {
  if ((var_->name_mask() & ~entry->name_mask()) != 0 || !is_proposition_entry(entry)) {
    return false;
  }
  const entry_view view = entry_of(entry);
  bool found = false;
  for_each_side(entry, view, [&](term_ptr side, bool is_inner) {
    found = found || (in(side) && (!is_inner || !contains_variable(view.bound, var_)));
  });
  return found;
}

// The set of an entry belongs to the surroundings; what the entry binds is bound in all that follows it.
bool free_occurrences::in_binding(term_ptr t) {
  for (term_ptr entry : t->vars()) {
    if ((var_->name_mask() & ~entry->name_mask()) != 0) {
      continue;
    }
    if (beside(entry)) {
      return true;
    }
    if (contains_variable(entry_of(entry).bound, var_)) {
      return false;
    }
  }
  return in(t->body()) || (t->type() == Lambda && t->condition() != nullptr && in(t->condition()));
}

// ---- Many terms.

name_memo::name_memo() : answers_(std::make_unique<answers[]>(2)) {}

name_memo::~name_memo() = default;

const term_list& name_memo::all(term_ptr t) { return names_of(t, free_occurrences::heads::counted); }

const term_list& name_memo::beside_heads(term_ptr t) { return names_of(t, free_occurrences::heads::skipped); }

const term_list& name_memo::names_of(term_ptr t, free_occurrences::heads counted) {
  answers& remembered = answers_[counted == free_occurrences::heads::counted ? 1 : 0];
  if (const term_list* known = remembered.find(t); known != nullptr) {
    return *known;
  }
  name_walk walk(counted, &remembered);
  walk.walk(t);
  return remembered.keep(t, walk.found());
}

bool name_memo::occurs(term_ptr var, term_ptr t) {
  return (var->name_mask() & ~t->name_mask()) == 0 &&
         occurrences_.try_emplace(var->bare(), var, free_occurrences::in_scopes::yes).first->second.in(t);
}

void free_names::add(term_ptr t) {
  if (t == nullptr || !added_.insert(t)) {
    return;
  }
  for (term_ptr name : plain_free_variables(t)) {
    names_.insert(name);
  }
}

}  // namespace vetro

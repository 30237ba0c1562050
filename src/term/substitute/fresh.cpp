// Fresh names, and the search for a name in a term. The mask of names that every node carries answers most questions.
#include "term/substitute/fresh.h"

#include <algorithm>
#include <string>

#include "term/report.h"
#include "term/state.h"

namespace vetro {
namespace {

class name_search {
 public:
  explicit name_search(std::string_view name) : name_(name), bit_(name_bit(name)) {}

  bool occurs(term_ptr t) {
    if ((t->name_mask() & bit_) == 0) {
      return false;
    }
    if (t->type() == Var && t->name() == name_) {
      return true;
    }
    if (t->size() >= worth_remembering && !searched_.insert(t)) {
      return false;
    }
    for (term_ptr child : t->children()) {
      if (child != nullptr && occurs(child)) {
        return true;
      }
    }
    return t->has_meta() && occurs_in_meta(t);
  }

 private:
  [[gnu::noinline]] bool occurs_in_meta(term_ptr t) {
    for (term_ptr binder : t->binders()) {
      if (occurs(binder)) {
        return true;
      }
    }
    return t->scope() != nullptr && occurs(t->scope());
  }

  std::string_view name_;
  std::uint64_t bit_;
  node_set searched_;
};

bool occurs_in_any(std::string_view name, term_span contexts) {
  return std::any_of(contexts.begin(), contexts.end(), [name](term_ptr t) { return name_occurs(name, t); });
}

}  // namespace

void name_collection::add(term_ptr t) {
  if (t == nullptr || t->name_mask() == 0 || !collected_.insert(t)) {
    return;
  }
  if (t->type() == Var) {
    names_.insert(t->name());
  }
  for (term_ptr child : t->children()) {
    add(child);
  }
  for (term_ptr binder : t->binders()) {
    add(binder);
  }
  add(t->scope());
}

bool name_occurs(std::string_view name, term_ptr t) { return t != nullptr && name_search(name).occurs(t); }

term_ptr fresh_avoiding(term_ptr var, term_span contexts) {
  if (!is_var(var)) {
    report_error("Error: fresh has invalid argument\n");
    return nullptr;
  }
  const auto next_name = [var] { return std::string(var->name()) + std::to_string(++state().fresh_counter); };
  std::string name = next_name();
  if (occurs_in_any(name, contexts)) {
    // Where one such name is taken, the next ones may be, too; the contexts are not to be searched for each.
    name_collection taken;
    std::for_each(contexts.begin(), contexts.end(), [&taken](term_ptr t) { taken.add(t); });
    while (taken.contains(name)) {
      name = next_name();
    }
  }
  return mk_var(name);
}

term_ptr fresh(term_ptr var, term_ptr context) { return fresh_avoiding(var, {&context, 1}); }

bool term_is_fresh_var(term_ptr var, term_ptr context) {
  return is_var(var) && context != nullptr && !name_occurs(var->name(), context);
}

}  // namespace vetro

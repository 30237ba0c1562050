// Fresh names, and the search for a name in a term. The mask of names that every node carries answers most questions.
#include <string>
#include <unordered_set>

#include "term/report.h"
#include "term/state.h"
#include "term/substitute.h"
#include "term/walk_tools.h"

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
    if (t->size() >= worth_remembering && !searched_.insert(t).second) {
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
  std::unordered_set<term_ptr> searched_;
};

}  // namespace

bool name_occurs(std::string_view name, term_ptr t) { return t != nullptr && name_search(name).occurs(t); }

term_ptr fresh_avoiding(term_ptr var, term_span contexts) {
  if (!is_var(var)) {
    report_error("Error: fresh has invalid argument\n");
    return nullptr;
  }
  std::string name;
  bool used = true;
  while (used) {
    name = var->name();
    name += std::to_string(++state().fresh_counter);
    used = false;
    for (std::size_t i = 0; i < contexts.size() && !used; ++i) {
      used = name_occurs(name, contexts[i]);
    }
  }
  return mk_var(name);
}

term_ptr fresh(term_ptr var, term_ptr context) { return fresh_avoiding(var, {&context, 1}); }

bool term_is_fresh_var(term_ptr var, term_ptr context) {
  return is_var(var) && context != nullptr && !name_occurs(var->name(), context);
}

}  // namespace vetro

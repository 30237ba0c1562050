// Names that are not in use.
#pragma once

#include <string_view>
#include <unordered_set>

#include "term/node_memo.h"

namespace vetro {

// A new variable: var's name with the next number of the process-wide counter, skipping names that occur anywhere in
// context (bound and free alike; null means no context). Null with "Error: fresh has invalid argument\n" for a non-Var.
term_ptr fresh(term_ptr var, term_ptr context);

// The same with several contexts, none of which may hold the name.
term_ptr fresh_avoiding(term_ptr var, term_span contexts);

// True when var is a Var whose name occurs nowhere in context. A null context gives false.
bool term_is_fresh_var(term_ptr var, term_ptr context);

// True when a variable of that name occurs in t, bound or free, metadata included.
bool name_occurs(std::string_view name, term_ptr t);

// All names in some terms, bound and free, metadata included: for asking about many names.
class name_collection {
 public:
  void add(term_ptr t);
  bool contains(std::string_view name) const { return names_.count(name) != 0; }

 private:
  node_set collected_;
  std::unordered_set<std::string_view> names_;
};

}  // namespace vetro

// Fresh names, the two substitutions and beta normalisation. The arguments stay as they are; results are terms of the
// store.
#pragma once

#include <string_view>
#include <unordered_set>

#include "term/ast.h"

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
  std::unordered_set<term_ptr> collected_;
  std::unordered_set<std::string_view> names_;
};

// Plain substitution: src (any subterm, compared exactly) becomes dest in t. Protects against capture only where dest
// is itself the bound variable; leaves scopes and quantifier entries alone. Null, with its message, for a null
// argument.
term_ptr subst_term(term_ptr src, term_ptr dest, term_ptr t);
term_list subst_term_list(term_ptr src, term_ptr dest, term_span list);

// Substitution that renames binders where dest would be captured. Null when an argument is null.
term_ptr subst_term_capture_avoiding(term_ptr src, term_ptr dest, term_ptr t);

// Every ready application of a Lambda reduced. Null for null, and when the result would exceed the work budget.
term_ptr beta_normalize_term(term_ptr t);

// The body with the parameters replaced by args, at once. Null unless lambda is a Lambda with as many parameters.
term_ptr beta_substitute_lambda(term_ptr lambda, term_span args);

// Free variables in the ordinary sense: every Var not bound around it, inside an Index too. Lambda and Quant bind their
// listed variables in condition and body; entries are not read. In order of first occurrence, without duplicates.
term_list plain_free_variables(term_ptr t);

}  // namespace vetro

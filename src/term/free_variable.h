// Free variables, where an indexed name such as a_n counts as one variable whose index is not looked at.
#pragma once

#include <memory>

#include "term/ast.h"

namespace vetro {

// A Var, or Index applied to two arguments. Null reports "Error: term_is_var visiting NULL pointer\n" and gives false.
bool term_is_var(term_ptr t);

// The variables of t that are free and not in bound, without duplicates, in order of first occurrence.
term_list term_free_variable(term_ptr t, term_span bound = {});
term_list term_list_free_variable(term_span list, term_span bound = {});

// The same answers for many subterms of one term: a subterm that has been asked about is not searched again for a term
// around it. Asked from the inside out, a tower of terms costs one walk.
class free_variable_memo {
 public:
  free_variable_memo();
  ~free_variable_memo();
  term_list of(term_ptr t);
  term_list of_list(term_span list);
  // Whether var is free in t. Ends at the first occurrence.
  bool has(term_ptr t, term_ptr var);

  struct answers;  // for the walk behind

 private:
  std::unique_ptr<answers> answers_;
};

}  // namespace vetro

// The three places that rewrite_in opens, seen by their parts, and what it may not open.
#pragma once

#include <optional>

#include "term/ast.h"

namespace vetro {

// lim_{var → point}(body), one-sided or of a sequence. The variable may be no plain name; then nothing is rewritten.
struct limit_context {
  oper_type op;
  term_ptr var;
  term_ptr point;
  term_ptr body;
};

// sum_{var = lower}^{upper}(body), where neither bound mentions the index.
struct sum_context {
  term_ptr var;
  term_ptr lower;
  term_ptr upper;
  term_ptr body;
};

// { body | conditions } over the one variable var.
struct set_context {
  term_ptr var;
  term_ptr body;
  term_list conditions;
};

// Nothing for any other term; a sum or a set description of another form has no view.
std::optional<limit_context> limit_context_of(term_ptr t);
std::optional<sum_context> sum_context_of(term_ptr t);
std::optional<set_context> set_context_of(term_ptr t);

bool is_sum_operator_term(term_ptr t);
bool is_setdesc_operator_term(term_ptr t);

// True for a term below which nothing may be rewritten from outside: one that binds variables, one that is more than
// its operands' values (a derivative, an evaluation bar, a Landau term, a domain), and one whose operands are no parts
// of it, as in 1 + 2 + ... + n.
bool is_closed_to_rewriting(term_ptr t);

}  // namespace vetro

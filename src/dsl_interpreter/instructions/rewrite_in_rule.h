// The rules that rewrite_in uses: for all x, premises imply an equation.
#pragma once

#include "lib/dsl_ast.h"
#include "term/ast.h"

namespace vetro {

struct forall_equation_rule {
  term_ptr qvar = nullptr;  // the one quantified variable
  term_list conditions;     // the premises, in order
  term_ptr lhs = nullptr;
  term_ptr rhs = nullptr;
};

// Reads the rule that a hypothesis is. Null on success, else the reason for the error log, in which %s stands for the
// context.
const char* extract_forall_equation_rule(term_ptr hypothesis, forall_equation_rule& rule);

// The two sides of a rule in the direction of use.
struct rewrite_sides {
  term_ptr source;
  term_ptr target;
};
rewrite_sides sides_in_direction(const forall_equation_rule& rule, rewrite_direction direction);

// The sides for one value of the variable, without capture.
rewrite_sides instantiate_sides(const rewrite_sides& sides, term_ptr qvar, term_ptr value);

}  // namespace vetro

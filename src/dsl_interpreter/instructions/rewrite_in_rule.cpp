// Taking a hypothesis apart into a rule.
#include "dsl_interpreter/instructions/rewrite_in_rule.h"

#include <algorithm>

#include "dsl_interpreter/instructions/single_value.h"
#include "term/substitute/instantiate.h"
#include "term/term_split_combine.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

constexpr const char* no_forall =
    "rewrite_in %s requires a forall equation hypothesis; use ordinary rewrite for bare equations.\n";
constexpr const char* several_variables = "rewrite_in %s currently supports exactly one forall variable.\n";
constexpr const char* no_equation = "rewrite_in %s forall hypothesis must conclude with an equation.\n";

// A proposition with a side condition says less than without, and is no rule; nor is one part of it.
bool has_scope(term_ptr t) { return t->scope() != nullptr; }

}  // namespace

const char* extract_forall_equation_rule(term_ptr hypothesis, forall_equation_rule& rule) {
  const term_ptr t = merge_quant_term(hypothesis);
  if (t == nullptr || t->type() != Quant || t->quant() != Forall || has_scope(t)) {
    return no_forall;
  }
  if (t->vars().size() != 1 || is_proposition_entry(t->vars().front())) {
    return several_variables;
  }
  rule.qvar = t->vars().front();
  term_ptr body = t->body();
  for (auto view = composed_prop_split(body); view && view->connect == Impl && view->t2 != nullptr && !has_scope(body);
       view = composed_prop_split(body)) {
    rule.conditions.push_back(view->t1);
    body = view->t2;
  }
  // An equation with binders speaks of Landau terms.
  const auto equation = pred_split(body);
  if (!equation || equation->pred != Eq || body->has_meta() || !has_one_value(equation->left) ||
      !has_one_value(equation->right) ||
      std::any_of(rule.conditions.begin(), rule.conditions.end(), holds_several_values)) {
    return no_equation;
  }
  rule.lhs = equation->left;
  rule.rhs = equation->right;
  return nullptr;
}

rewrite_sides sides_in_direction(const forall_equation_rule& rule, rewrite_direction direction) {
  return direction == re_left2right ? rewrite_sides{rule.lhs, rule.rhs} : rewrite_sides{rule.rhs, rule.lhs};
}

rewrite_sides instantiate_sides(const rewrite_sides& sides, term_ptr qvar, term_ptr value) {
  const term_ptr source = instantiate_term(qvar, value, sides.source);
  const term_ptr target = instantiate_term(qvar, value, sides.target);
  return {source, target};
}

}  // namespace vetro

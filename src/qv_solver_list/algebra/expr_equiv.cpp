// The default table of rules for equal expressions: powers of positive bases as powers of e, equality as terms,
// equality as rational expressions.
#include "qv_solver_list/algebra/expr_equiv.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "term/build.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// ---- a^b = e^(b * ln(a)) for a > 0.

// The terms that a conjunction states to be positive: a where a > 0 or 0 < a is one of its parts.
class positive_terms {
 public:
  explicit positive_terms(term_ptr condition) : condition_(condition) { read(condition); }

  bool contains(term_ptr t) const { return terms_.count(t) != 0; }
  bool empty() const { return terms_.empty(); }
  // A node that binds a variable of the condition speaks of another one below.
  bool speak_of(term_span binders) const {
    return std::any_of(binders.begin(), binders.end(),
                       [this](term_ptr b) { return (b->name_mask() & condition_->name_mask()) != 0; });
  }

 private:
  void read(term_ptr condition) {
    if (condition->scope() != nullptr) {
      return;
    }
    if (const auto view = composed_prop_split(condition); view && view->connect == And && view->t2 != nullptr) {
      read(view->t1);
      read(view->t2);
    } else if (const auto fact = pred_split(condition)) {
      if (fact->pred == Gt && is_integer(fact->right, 0)) {
        terms_.insert(fact->left);
      } else if (fact->pred == Lt && is_integer(fact->left, 0)) {
        terms_.insert(fact->right);
      }
    }
  }

  term_ptr condition_;
  std::unordered_set<term_ptr, alpha_hasher, alpha_equal> terms_;
};

// Rewrites all powers of positive terms, also below other operators and in lists. What stands below a quantifier, a
// `fun`, or an operator that binds a variable of the condition is left alone.
class exp_log_rewriter {
 public:
  explicit exp_log_rewriter(const positive_terms& positive) : positive_(positive) {}

  term_ptr rewrite(term_ptr t) {
    if ((t->type() != Apply && t->type() != TermList) || positive_.speak_of(t->binders())) {
      return t;
    }
    constexpr unsigned parts = walk_apply | walk_elements | keep_meta;
    const auto rewrite_part = [this](term_ptr part) { return rewrite(part); };
    return known_.get(t, [&] { return power_as_exponential(map_children(t, parts, rewrite_part)); });
  }

 private:
  term_ptr power_as_exponential(term_ptr t) const {
    const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
    if (!view || view->oper != Power || view->t2 == nullptr || !positive_.contains(view->t1)) {
      return t;
    }
    term_ptr logarithm = make_unOp_term(Ln, view->t1);
    term_ptr exponent = make_binOp_term(Mult, view->t2, logarithm);
    return make_binOp_term(Power, mk_const(E), exponent);
  }

  const positive_terms& positive_;
  node_memo<term_ptr> known_;
};

// An application with f applied to what its operator is applied to, or to both sides where no operator stands in front:
// the incomplete application inside a binary one is no term of its own.
template <class F>
term_ptr map_operands(term_ptr t, F f) {
  const auto view = composed_term_split(t);
  if (!view || view->t2 == nullptr) {
    return map_children(t, walk_apply, f);
  }
  term_ptr left = f(view->t1);
  term_ptr right = f(view->t2);
  return left == view->t1 && right == view->t2 ? t : make_binOp_term(view->oper, left, right);
}

// ---- e^(b * ln(a) + c) = a^b * e^c for a > 0.

class log_exponent_rewriter {
 public:
  explicit log_exponent_rewriter(const positive_terms& positive) : positive_(positive) {}

  term_ptr rewrite(term_ptr t) {
    if (t->type() != Apply || t->has_meta()) {
      return t;
    }
    return known_.get(t, [&] { return rewrite_node(t); });
  }

 private:
  term_ptr rewrite_node(term_ptr t) {
    const term_ptr result = map_operands(t, [this](term_ptr part) { return rewrite(part); });
    const auto view = composed_term_split(result);
    const bool exponent = view && view->oper == Power && view->t2 != nullptr && is_constant(view->t1, E);
    return exponent ? exponential(view->t2, false) : result;
  }

  // e^exponent, or e^(-exponent), as a product over the addends of the exponent.
  term_ptr exponential(term_ptr exponent, bool negative) const {
    const auto view = composed_term_split(exponent);
    if (view && view->oper == Neg) {
      return exponential(view->t1, !negative);
    }
    if (view && view->t2 != nullptr && (view->oper == Plus || view->oper == Minus)) {
      term_ptr left = exponential(view->t1, negative);
      term_ptr right = exponential(view->t2, negative != (view->oper == Minus));
      return mk_product(left, right);
    }
    term_ptr base = nullptr;
    term_ptr rest = without_logarithm(exponent, base);
    rest = base == nullptr ? exponent : rest;
    return mk_power(base == nullptr ? mk_const(E) : base, negative ? mk_neg(rest) : rest);
  }

  // The product without one factor ln(a) of a positive a, which becomes the base; the product itself where none is.
  term_ptr without_logarithm(term_ptr product, term_ptr& base) const {
    const auto view = composed_term_split(product);
    if (view && view->oper == Ln && positive_.contains(view->t1)) {
      base = view->t1;
      return mk_integer(1);
    }
    if (view && view->oper == Mult && view->t2 != nullptr) {
      term_ptr left = without_logarithm(view->t1, base);
      term_ptr right = base == nullptr ? without_logarithm(view->t2, base) : view->t2;
      return mk_product(left, right);
    }
    if (view && view->t2 != nullptr && (view->oper == Div || view->oper == Frac)) {
      return mk_quotient(without_logarithm(view->t1, base), view->t2);
    }
    return product;
  }

  const positive_terms& positive_;
  node_memo<term_ptr> known_;
};

// ---- Roots as powers with fractional exponents, for which calculation knows laws.

class root_rewriter {
 public:
  term_ptr rewrite(term_ptr t) {
    if (t->type() != Apply || t->has_meta()) {
      return t;
    }
    const auto rewrite_part = [this](term_ptr part) { return rewrite(part); };
    return known_.get(t, [&] { return root_as_power(map_operands(t, rewrite_part)); });
  }

 private:
  static term_ptr root_as_power(term_ptr t) {
    const auto view = composed_term_split(t);
    if (!view) {
      return t;
    }
    if (view->t2 == nullptr && (view->oper == Sqrt || view->oper == Cbrt)) {
      return power_of(view->t1, mk_integer(view->oper == Sqrt ? 2 : 3));
    }
    const bool root = view->oper == Sqrtn && view->t2 != nullptr;
    return root && is_constant(view->t1, Integer) && view->t1->integer() >= 1 ? power_of(view->t2, view->t1) : t;
  }

  static term_ptr power_of(term_ptr radicand, term_ptr index) {
    term_ptr exponent = make_binOp_term(Div, mk_integer(1), index);
    return make_binOp_term(Power, radicand, exponent);
  }

  node_memo<term_ptr> known_;
};

// ---- The rules.

bool expr_equiv_same_term(term_ptr a, term_ptr b) { return term_eqb(a, b); }

// The rewritten pair meets the rules behind this one. A pair that the rewriting leaves alone falls through.
template <class Rewriter>
bool holds_rewritten(const expr_equiv_question& q, Rewriter&& rewriter) {
  term_ptr left = rewriter.rewrite(q.left);
  term_ptr right = rewriter.rewrite(q.right);
  if (expr_equiv_same_term(left, q.left) && expr_equiv_same_term(right, q.right)) {
    return false;
  }
  return expr_equiv_under_config_from(left, right, q.antecedent, q.sdata, q.config, q.next_rule);
}

template <class Rewriter>
bool holds_rewritten_for_positive_terms(const expr_equiv_question& q) {
  if (q.antecedent == nullptr) {
    return false;
  }
  const positive_terms positive(q.antecedent);
  return !positive.empty() && holds_rewritten(q, Rewriter(positive));
}

bool expr_equiv_rule_exp_log_positive(const expr_equiv_question& q) {
  return holds_rewritten_for_positive_terms<exp_log_rewriter>(q);
}

bool expr_equiv_rule_log_exponents(const expr_equiv_question& q) {
  return holds_rewritten_for_positive_terms<log_exponent_rewriter>(q);
}

bool expr_equiv_rule_roots(const expr_equiv_question& q) { return holds_rewritten(q, root_rewriter()); }

bool expr_equiv_rule_syntax(const expr_equiv_question& q) { return expr_equiv_same_term(q.left, q.right); }

// Built of variables, constants and operators alone. A term that binds variables or carries a scope is not calculated
// with.
bool expr_equiv_poly_safe_term(term_ptr t, node_set& met) {
  if (t->has_meta()) {
    return false;
  }
  if (t->type() != Apply) {
    return t->type() == Var || t->type() == Const || t->type() == Oper;
  }
  return !met.insert(t) || (expr_equiv_poly_safe_term(t->left(), met) && expr_equiv_poly_safe_term(t->right(), met));
}

bool expr_equiv_rule_poly_rat(const expr_equiv_question& q) {
  node_set met;
  return expr_equiv_poly_safe_term(q.left, met) && expr_equiv_poly_safe_term(q.right, met) &&
         poly_rat_eqb(q.left, q.right);
}

constexpr std::array default_rules = std::to_array<expr_equiv_rule>({
    {"exp-log-positive", expr_equiv_rule_exp_log_positive},  // 0
    {"syntax", expr_equiv_rule_syntax},                      // 1
    {"poly-rat", expr_equiv_rule_poly_rat},                  // 2
});

constexpr expr_equiv_config default_config = {default_rules};

constexpr std::array derivative_rules = std::to_array<expr_equiv_rule>({
    {"roots-as-powers", expr_equiv_rule_roots},                  // 0
    {"logarithms-in-exponents", expr_equiv_rule_log_exponents},  // 1
    {"exp-log-positive", expr_equiv_rule_exp_log_positive},      // 2
    {"syntax", expr_equiv_rule_syntax},                          // 3
    {"poly-rat", expr_equiv_rule_poly_rat},                      // 4
});

constexpr expr_equiv_config derivative_config = {derivative_rules};

}  // namespace

const expr_equiv_config& expr_equiv_default_config() { return default_config; }

const expr_equiv_config& expr_equiv_derivative_config() { return derivative_config; }

bool expr_equiv_under_config(term_ptr left, term_ptr right, term_ptr antecedent, const solve_data& sdata,
                             const expr_equiv_config& config) {
  return expr_equiv_under_config_from(left, right, antecedent, sdata, config, 0);
}

bool expr_equiv_under_config_from(term_ptr left, term_ptr right, term_ptr antecedent, const solve_data& sdata,
                                  const expr_equiv_config& config, std::int32_t start_rule) {
  if (left == nullptr || right == nullptr) {
    return false;
  }
  const auto count = static_cast<std::int32_t>(config.rules.size());
  for (std::int32_t i = std::max(start_rule, 0); i < count; ++i) {
    const expr_equiv_rule& rule = config.rules[static_cast<std::size_t>(i)];
    if (rule.fn != nullptr && rule.fn({left, right, antecedent, sdata, config, i + 1})) {
      return true;
    }
  }
  return false;
}

}  // namespace vetro

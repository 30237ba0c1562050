// The default table of rules for equal expressions: powers of positive bases as powers of e, equality as terms,
// equality as rational expressions.
#include "qv_solver_list/algebra/expr_equiv.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
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
    const auto known = known_.find(t);
    if (known != known_.end()) {
      return known->second;
    }
    constexpr unsigned parts = walk_apply | walk_elements | keep_meta;
    term_ptr result = map_children(t, parts, [this](term_ptr part) { return rewrite(part); });
    result = power_as_exponential(result);
    known_.emplace(t, result);
    return result;
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
  std::unordered_map<term_ptr, term_ptr> known_;
};

bool expr_equiv_same_term(term_ptr a, term_ptr b) { return term_eqb(a, b); }

bool expr_equiv_rule_exp_log_positive(const expr_equiv_question& q) {
  if (q.antecedent == nullptr) {
    return false;
  }
  const positive_terms positive(q.antecedent);
  if (positive.empty()) {
    return false;
  }
  exp_log_rewriter rewriter(positive);
  term_ptr left = rewriter.rewrite(q.left);
  term_ptr right = rewriter.rewrite(q.right);
  if (expr_equiv_same_term(left, q.left) && expr_equiv_same_term(right, q.right)) {
    return false;
  }
  return expr_equiv_under_config_from(left, right, q.antecedent, q.sdata, q.config, q.next_rule);
}

// ---- As they are.

bool expr_equiv_rule_syntax(const expr_equiv_question& q) { return expr_equiv_same_term(q.left, q.right); }

// Built of variables, constants and operators alone. A term that binds variables or carries a scope is not calculated
// with.
bool expr_equiv_poly_safe_term(term_ptr t, std::unordered_set<term_ptr>& met) {
  if (t->has_meta()) {
    return false;
  }
  if (t->type() != Apply) {
    return t->type() == Var || t->type() == Const || t->type() == Oper;
  }
  return !met.insert(t).second ||
         (expr_equiv_poly_safe_term(t->left(), met) && expr_equiv_poly_safe_term(t->right(), met));
}

bool expr_equiv_rule_poly_rat(const expr_equiv_question& q) {
  std::unordered_set<term_ptr> met;
  return expr_equiv_poly_safe_term(q.left, met) && expr_equiv_poly_safe_term(q.right, met) &&
         poly_rat_eqb(q.left, q.right);
}

constexpr std::array default_rules = std::to_array<expr_equiv_rule>({
    {"exp-log-positive", expr_equiv_rule_exp_log_positive},  // 0
    {"syntax", expr_equiv_rule_syntax},                      // 1
    {"poly-rat", expr_equiv_rule_poly_rat},                  // 2
});

constexpr expr_equiv_config default_config = {default_rules};

}  // namespace

const expr_equiv_config& expr_equiv_default_config() { return default_config; }

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

// Roots as fractional powers: sqrtn(n, x) is x^(1/n). An equation that holds as written once this is done everywhere is
// proved; one without a root is somebody else's.

#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

class root_power_walk {
 public:
  term_ptr normalize(term_ptr t) {
    if (t->children().empty() || t->type() == Lambda) {
      return t;
    }
    return known_.get(t, [&] { return normalize_node(t); });
  }
  bool changed() const { return changed_; }

 private:
  term_ptr normalize_node(term_ptr t) {
    const auto root = composed_term_split(t);
    if (root && root->oper == Sqrtn && root->t2 != nullptr) {
      changed_ = true;
      const term_ptr index = normalize(root->t1);
      const term_ptr radicand = normalize(root->t2);
      const term_ptr power = make_binOp_term(Power, radicand, make_binOp_term(Frac, mk_integer(1), index));
      return with_meta(power, t->meta());
    }
    // a / b and frac(a, b) are the same exponent.
    if (root && root->oper == Power && root->t2 != nullptr) {
      const auto quotient = composed_term_split(root->t2);
      if (quotient && quotient->oper == Div && quotient->t2 != nullptr && !root->t2->has_meta()) {
        const term_ptr base = normalize(root->t1);
        const term_ptr numerator = normalize(quotient->t1);
        const term_ptr denominator = normalize(quotient->t2);
        return with_meta(make_binOp_term(Power, base, make_binOp_term(Frac, numerator, denominator)), t->meta());
      }
    }
    if (is_apply(t) && (is_pred(t->left(), Defined) || is_oper(t->left(), Dom) || describes_set(t))) {
      return t;
    }
    return map_children(t, walk_apply | walk_body | walk_elements | keep_meta,
                        [this](term_ptr part) { return normalize(part); });
  }

  static bool describes_set(term_ptr t) { return is_apply(t->left()) && is_oper(t->left()->left(), SetDesc); }

  node_memo<term_ptr> known_;
  bool changed_ = false;
};

}  // namespace

bool solver_root_power(term_ptr target, const solve_data& /*sdata*/) {
  const auto equation = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  if (!equation || equation->pred != Eq || is_one_whole(target)) {
    return false;
  }
  root_power_walk walk;
  const term_ptr left = walk.normalize(equation->left);
  const term_ptr right = walk.normalize(equation->right);
  return walk.changed() && term_eqb(left, right);
}

}  // namespace vetro

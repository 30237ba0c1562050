// Each conjunct that is understood is a fact for those that are not yet: a + b * x > 0 makes c * (a + b * x)^n > 0 a
// condition on c.
#include "qv_solver_list/calculus/interval_conditions.h"

#include <algorithm>

#include "qv_solver_list/calculus/variable_facts.h"
#include "term/build.h"
#include "term/relation.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// One look at the conjuncts with what is understood so far.
class condition_reader {
 public:
  condition_reader(term_ptr var, const solve_data& sdata, term_span understood)
      : var_(var), local_(under_condition(sdata, understood)), facts_(local_, var) {}

  bool understands(term_ptr conjunct) {
    if (!moves(conjunct)) {
      return true;
    }
    const auto relation = pred_split(conjunct);
    if (relation && relation->pred == Belong && conjunct->scope() == nullptr) {
      return relation->left == var_ && is_open(relation->right);
    }
    const auto order = as_order(conjunct);
    return order && order->ascending().pred == Lt && understands_less(order->ascending());
  }

 private:
  bool moves(term_ptr t) const { return facts_.moves(t); }

  bool is_open(term_ptr set) const {
    if (moves(set) || set->has_meta()) {
      return false;
    }
    const auto view = composed_term_split(set);
    return (view && view->oper == IntervalLoRo && view->t2 != nullptr) || is_constant(set, RealSet) ||
           is_constant(set, PosRealSet) || is_constant(set, NegRealSet);
  }

  bool understands_less(const order_fact& less) {
    if (is_linear(less.left) && is_linear(less.right)) {
      return true;
    }
    term_ptr difference = mk_difference(less.right, less.left);
    if (!facts_.defined(difference)) {
      return false;
    }
    term_ptr slope = facts_.derivatives().of(difference);
    term_ptr bend = facts_.derivatives().of(slope);
    // A cusp has no slope: cbrt(x^2) bends downwards on both sides of 0.
    return facts_.keeps_sign(difference) || (slope != nullptr && facts_.has_one_sign(slope)) ||
           (bend != nullptr && facts_.defined(slope) && facts_.nonpositive(bend));
  }

  bool is_linear(term_ptr t) const {
    if (!moves(t) || t == var_) {
      return true;
    }
    const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
    if (!view) {
      return false;
    }
    switch (view->oper) {
      case Neg:
        return is_linear(view->t1);
      case Plus:
      case Minus:
        return view->t2 != nullptr && is_linear(view->t1) && is_linear(view->t2);
      case Mult:
        return (!moves(view->t1) && is_linear(view->t2)) || (!moves(view->t2) && is_linear(view->t1));
      case Div:
      case Frac:
        return !moves(view->t2) && is_linear(view->t1);
      default:
        return false;
    }
  }

  term_ptr var_;
  solve_data local_;
  variable_facts facts_;
};

// Rounds over the conjuncts that are still open. Real conditions need two.
constexpr int most_rounds = 4;

}  // namespace

bool describe_an_interval(term_span conjuncts, term_ptr var, const solve_data& sdata) {
  term_list open(conjuncts.begin(), conjuncts.end());
  term_list understood;
  for (int round = 0; round < most_rounds && !open.empty(); ++round) {
    condition_reader reader(var, sdata, understood);
    const auto rest =
        std::stable_partition(open.begin(), open.end(), [&](term_ptr t) { return !reader.understands(t); });
    if (rest == open.end()) {
      return false;
    }
    understood.insert(understood.end(), rest, open.end());
    open.erase(rest, open.end());
  }
  return open.empty();
}

}  // namespace vetro

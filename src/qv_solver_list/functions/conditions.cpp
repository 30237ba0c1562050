// Both senses take a condition apart along its connectives; at a predicate, the first asks for it or for its negation,
// the second for a strict fact about the point. Truth and falsity are the two values of `want`.
#include "qv_solver_list/functions/conditions.h"

#include <algorithm>

#include "qv_solver_list/number_reading.h"
#include "term/compare.h"
#include "term/memo.h"
#include "term/number_set.h"
#include "term/relation.h"
#include "term/substitute/fresh.h"
#include "term/substitute/instantiate.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// The parameter, a name or a name with a subscript, stands somewhere in t.
bool occurs(term_ptr param, term_ptr t) {
  if (is_var(param)) {
    return name_occurs(param->name(), t);
  }
  return (param->name_mask() & ~t->name_mask()) == 0 &&
         any_subterm(t, walk_all, [param](term_ptr part) { return part->bare() == param->bare(); });
}

bool is_false(term_ptr t) { return is_constant(t, False); }

// Predicates that a condition is decided by.
bool is_decided_predicate(pred_type pred) { return is_order_relation(pred) || pred == Belong || pred == NotBelong; }

// One step down a condition, the same for both senses. `leaf` decides what is no connective.
template <class Whole, class Leaf>
class condition_walk {
 public:
  condition_walk(Whole whole, Leaf leaf) : whole_(whole), leaf_(leaf) {}

  bool decide(term_ptr c, bool want) {
    if (c == nullptr) {
      return false;
    }
    if (const auto known = answers_.known(c, want ? 1 : 0)) {
      return *known;
    }
    return answers_.keep(c, want ? 1 : 0, decide_new(c, want));
  }

 private:
  bool decide_new(term_ptr c, bool want) {
    if (whole_(c, want)) {
      return true;
    }
    const auto view = c->has_meta() ? std::nullopt : composed_prop_split(c);
    if (view && view->connect == Not && view->t2 == nullptr) {
      return decide(view->t1, !want);
    }
    if (view && view->t2 != nullptr && (view->connect == And || view->connect == Or)) {
      const bool both = (view->connect == And) == want;
      const bool first = decide(view->t1, want);
      return first == both ? decide(view->t2, want) : first;
    }
    return leaf_(c, want);
  }

  Whole whole_;
  Leaf leaf_;
  question_memo answers_;
};

// left pred right; numbers are compared on the spot.
bool prove_relation(pred_type pred, term_ptr left, term_ptr right, prover& premises) {
  if (left == nullptr || right == nullptr) {
    return false;
  }
  if (is_order_relation(pred)) {
    const std::optional<exact> a = evaluate(left, {});
    const std::optional<exact> b = a ? evaluate(right, {}) : std::nullopt;
    if (b) {
      return holds(pred, *a < *b ? -1 : *b < *a ? 1 : 0);
    }
  }
  return premises.relation(pred, left, right);
}

// Conditions that say the same wherever they stand, so that they may be taken apart and negated.
bool is_plain_condition(term_ptr c) {
  return c != nullptr && !c->has(fact_scope) &&
         !holds_any(c, whole_part::several_values | whole_part::landau | whole_part::ellipsis);
}

// ---- At a point.

// Membership of a real in a set of the reals with a sign, as a comparison with 0; nothing for other sets.
std::optional<pred_type> sign_of_set(term_ptr set, bool inside) {
  const auto numbers = number_set_of(set);
  const auto comparison = numbers && numbers->c == number_class::real ? comparison_of(*numbers) : std::nullopt;
  return !comparison ? std::nullopt : inside ? std::optional(comparison->pred) : negated(comparison->pred);
}

bool decide_at_point(term_ptr prepared, bool want, prover& premises) {
  const auto whole = [&](term_ptr c, bool wanted) {
    if (is_false(c)) {
      return !wanted;
    }
    return premises.proves(wanted ? c : mk_apply(mk_connect(Not), c));
  };
  const auto leaf = [&](term_ptr c, bool wanted) {
    const auto view = c->has_meta() ? std::nullopt : pred_split(c);
    if (!view || !is_decided_predicate(view->pred)) {
      return false;
    }
    if (!wanted && prove_relation(*negated(view->pred), view->left, view->right, premises)) {
      return true;
    }
    const bool membership = view->pred == Belong || view->pred == NotBelong;
    const auto sign = membership ? sign_of_set(view->right, (view->pred == Belong) == wanted) : std::nullopt;
    return sign && prove_relation(*sign, view->left, mk_integer(0), premises);
  };
  return is_plain_condition(prepared) && condition_walk(whole, leaf).decide(prepared, want);
}

term_ptr prepare_at_point(term_ptr condition, const solver_func_condition_context& context) {
  if (!context.params.empty() && !context.values.empty()) {
    condition = solver_func_substitute_args(condition, context.params, context.values);
  }
  if (condition != nullptr && context.normalizer && context.fuel > 0) {
    condition = context.normalizer(condition, context.fuel - 1);
  }
  return is_plain_condition(condition) ? elim_predchain(condition) : nullptr;
}

// ---- In a neighbourhood.

// What v pred e has to be strengthened to, so that it stays true when v varies a little; nothing where v = e is asked.
std::optional<pred_type> strict(pred_type pred, bool want) {
  switch (pred) {
    case Eq:
      return want ? std::nullopt : std::optional(Neq);
    case Neq:
      return want ? std::optional(Neq) : std::nullopt;
    case Gt:
    case Ge:
      return want ? Gt : Lt;
    case Lt:
    case Le:
      return want ? Lt : Gt;
    default:
      return std::nullopt;
  }
}

class open_decision {
 public:
  explicit open_decision(const premise_question& question) : question_(question) {}

  bool decide(term_ptr c, bool want) {
    const auto whole = [&](term_ptr part, bool wanted) {
      return (wanted && is_false(part)) || depends(part)
                 ? false
                 : decide_at_point(instantiated(part), wanted, question_.premises);
    };
    const auto leaf = [&](term_ptr part, bool wanted) {
      const auto view = part->has_meta() || !depends(part) ? std::nullopt : pred_split(part);
      return view && (is_order_relation(view->pred) ? order(*view, wanted) : membership(*view, wanted));
    };
    return is_plain_condition(c) && condition_walk(whole, leaf).decide(elim_predchain(c), want);
  }

 private:
  bool depends(term_ptr t) const {
    return solver_func_condition_depends_on_active_args(t, question_.params, question_.fixed);
  }

  term_ptr instantiated(term_ptr t) const { return solver_func_substitute_args(t, question_.params, question_.values); }

  // The value at which the active parameter t stands; null for any other term.
  term_ptr value_of(term_ptr t) const {
    for (std::size_t i = question_.fixed; i < question_.params.size(); ++i) {
      if (term_eqb(t, question_.params[i])) {
        return question_.values[i];
      }
    }
    return nullptr;
  }

  bool order(const prop& relation, bool want) const {
    const term_ptr left = value_of(relation.left);
    const term_ptr right = value_of(relation.right);
    if ((left == nullptr) == (right == nullptr)) {
      return false;
    }
    const bool turned = left == nullptr;
    const term_ptr other = turned ? relation.left : relation.right;
    const auto asked = strict(turned ? *mirrored(relation.pred) : relation.pred, want);
    return asked && !depends(other) &&
           prove_relation(*asked, turned ? right : left, instantiated(other), question_.premises);
  }

  bool membership(const prop& relation, bool want) const {
    if (relation.pred != Belong && relation.pred != NotBelong) {
      return false;
    }
    const bool inside = (relation.pred == Belong) == want;
    const term_ptr value = value_of(relation.left);
    const term_ptr set = relation.right;
    if (value == nullptr || set->type() != Const || set->has_meta()) {
      return false;
    }
    if (set->constant() == RealSet) {
      return inside;
    }
    const auto sign = sign_of_set(set, inside);
    const auto asked = sign ? strict(*sign, true) : std::nullopt;
    return asked && prove_relation(*asked, value, mk_integer(0), question_.premises);
  }

  const premise_question& question_;
};

bool decide_open(const premise_question& question, bool want) {
  return question.params.size() == question.values.size() && question.fixed < question.params.size() &&
         open_decision(question).decide(question.premise, want);
}

premise_question question_of(term_ptr condition, const solver_func_condition_context& context) {
  return {condition, context.params, 0, context.values, context.premises};
}

}  // namespace

bool solver_func_condition_true_at_point(term_ptr condition, const solver_func_condition_context& context) {
  return decide_at_point(prepare_at_point(condition, context), true, context.premises);
}

bool solver_func_condition_false_at_point(term_ptr condition, const solver_func_condition_context& context) {
  return decide_at_point(prepare_at_point(condition, context), false, context.premises);
}

bool solver_func_condition_true_open_at(term_ptr condition, const solver_func_condition_context& context) {
  return decide_open(question_of(condition, context), true);
}

bool solver_func_condition_false_open_at(term_ptr condition, const solver_func_condition_context& context) {
  return decide_open(question_of(condition, context), false);
}

bool solver_func_condition_true_open_for_view(const premise_question& question) { return decide_open(question, true); }

bool solver_func_condition_false_open_for_view(const premise_question& question) {
  return decide_open(question, false);
}

bool solver_func_condition_depends_on_active_args(term_ptr condition, term_span params, std::size_t fixed) {
  return condition != nullptr && fixed < params.size() &&
         std::any_of(params.begin() + static_cast<std::ptrdiff_t>(fixed), params.end(),
                     [condition](term_ptr param) { return occurs(param, condition); });
}

bool solver_func_lambda_applies(term_ptr lambda, term_span args, prover& premises) {
  const term_list asked = solver_func_lambda_premises(lambda, args);
  return std::all_of(asked.begin(), asked.end(), [&](term_ptr premise) { return premises.proves(premise); });
}

bool solver_func_lambda_applies_openly(term_ptr lambda, term_span args, prover& premises) {
  const term_list asked = solver_func_lambda_premises(lambda, lambda->vars());
  return std::all_of(asked.begin(), asked.end(), [&](term_ptr premise) {
    return solver_func_condition_true_open_for_view({premise, lambda->vars(), 0, args, premises});
  });
}

}  // namespace vetro

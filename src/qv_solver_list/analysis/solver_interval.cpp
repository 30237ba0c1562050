// Refutation by bounds: the assumptions and the negated target become relations between expressions, each expression
// has an interval, and the target is proved when propagation finds an interval empty. An equation is proved by itself,
// since its negation is no relation that intervals can hold: both sides are one expression or one value.
//
// What is not understood adds nothing and so only weakens an attempt: disjunctions, implications, quantifiers, anything
// under a scope. Intervals have no holes, so x ≠ 1 adds nothing either. Assumptions that contradict each other prove
// every target.
//
// Names stand for finite values unless an infinity occurs in what is asked.
//
// The graph of a list of assumptions is kept with the list, at rest. A target is added, refuted and taken away again,
// and so are the assumptions of the layers above the list, which are few as a rule.
#include <algorithm>
#include <iterator>

#include "qv_solver_list/analysis/interval_reader.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solvers.h"
#include "term/relation.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// The links of a chained comparison; t alone when it is none. Between 1 < ... < n stands what nobody wrote.
term_list links_of(term_ptr t) {
  term_list links = t->has(fact_ellipsis) || t->has(fact_scope) ? term_list{t} : long_order_split(t);
  std::ranges::reverse(links);
  return links;
}

class interval_problem {
 public:
  // complex is borrowed and must outlive the problem.
  interval_problem(complex_values& complex, bool infinite_values) : reader_(graph_, complex) {
    if (infinite_values) {
      graph_.expect_infinite_values();
    }
  }

  void assume(term_ptr assumption);
  void settle() { graph_.settle(); }
  bool contradiction() const { return graph_.contradiction(); }

  // Whether one conjunct follows from what is assumed, which is settled, and from more assumptions.
  bool proves(term_ptr conjunct, term_span more);
  bool contradicts(term_span more);

 private:
  // Takes everything back that is added while it lives.
  class attempt {
   public:
    explicit attempt(interval_problem& problem) : problem_(problem) {
      problem_.graph_.begin_attempt();
      problem_.reader_.begin_attempt();
    }
    ~attempt() {
      problem_.reader_.end_attempt();
      problem_.graph_.end_attempt();
    }
    attempt(const attempt&) = delete;
    attempt& operator=(const attempt&) = delete;

   private:
    interval_problem& problem_;
  };

  void add_constraints_from_term(term_ptr t, bool negated);
  void add_constraints_from_atom(term_ptr atom, bool negated);
  void add_pred_constraint(pred_type pred, term_ptr l, term_ptr r, bool asserted);
  bool direct_entails_eq(term_ptr l, term_ptr r);
  bool refutes_negation(term_ptr target);

  interval_graph graph_;
  interval_reader reader_;
};

void interval_problem::assume(term_ptr assumption) {
  if (!graph_.contradiction()) {
    add_constraints_from_term(solver_preprocess_expand_interval_membership(assumption), false);
  }
}

void interval_problem::add_constraints_from_term(term_ptr t, bool negated) {
  if (t == nullptr || t->has(fact_scope)) {
    return;
  }
  const auto view = composed_prop_split(t);
  if (!view && negated) {
    add_constraints_from_atom(t, true);
  } else if (!view) {
    std::ranges::for_each(links_of(t), [this](term_ptr link) { add_constraints_from_atom(link, false); });
  } else if (view->connect == Not && view->t2 == nullptr) {
    add_constraints_from_term(view->t1, !negated);
  } else if (view->connect == And && view->t2 != nullptr && !negated) {
    add_constraints_from_term(view->t1, false);
    add_constraints_from_term(view->t2, false);
  }
}

// A relation that intervals can hold: any comparison but ≠.
void interval_problem::add_constraints_from_atom(term_ptr atom, bool negated) {
  const auto relation = pred_split(atom);
  if (!relation || !is_order_relation(relation->pred)) {
    return;
  }
  const pred_type pred = negated ? *vetro::negated(relation->pred) : relation->pred;
  if (pred != Neq) {
    add_pred_constraint(pred, relation->left, relation->right, !negated);
  }
}

void interval_problem::add_pred_constraint(pred_type pred, term_ptr l, term_ptr r, bool asserted) {
  const auto lhs = reader_.parse_expr(l);
  const auto rhs = reader_.parse_expr(r);
  // Between a number and a variable the difference says no more than the variable; between a number and an expression
  // it may be the difference that another relation speaks of.
  const bool with_number = (graph_.is_number(lhs) && is_var(r)) || (graph_.is_number(rhs) && is_var(l));
  const auto diff = with_number ? interval_graph::no_node : reader_.parse_expr(make_binOp_term(Minus, l, r));
  graph_.relate(pred, lhs, rhs, diff, asserted);
}

bool interval_problem::proves(term_ptr conjunct, term_span more) {
  if (conjunct->has(fact_scope)) {
    return false;
  }
  const attempt here(*this);
  std::ranges::for_each(more, [this](term_ptr assumption) { assume(assumption); });
  const auto relation = pred_split(conjunct);
  return relation && relation->pred == Eq ? direct_entails_eq(relation->left, relation->right)
                                          : refutes_negation(conjunct);
}

bool interval_problem::contradicts(term_span more) {
  const attempt here(*this);
  std::ranges::for_each(more, [this](term_ptr assumption) { assume(assumption); });
  graph_.settle();
  return graph_.contradiction();
}

bool interval_problem::refutes_negation(term_ptr target) {
  add_constraints_from_term(target, true);
  graph_.settle();
  return graph_.contradiction();
}

bool interval_problem::direct_entails_eq(term_ptr l, term_ptr r) {
  const auto lhs = reader_.parse_expr(l);
  const auto rhs = reader_.parse_expr(r);
  graph_.settle();
  if (graph_.contradiction()) {
    return true;
  }
  if (!graph_.defined(lhs) || !graph_.defined(rhs)) {
    return false;
  }
  rational left;
  rational right;
  return graph_.representative(lhs) == graph_.representative(rhs) ||
         (interval_is_closed_point(graph_.value(lhs), &left) && interval_is_closed_point(graph_.value(rhs), &right) &&
          left == right);
}

void append_layers(const assumption_facts& facts, const assumption_facts* bottom, term_list& out) {
  if (&facts == bottom) {
    return;
  }
  if (facts.below() != nullptr) {
    append_layers(*facts.below(), bottom, out);
  }
  std::ranges::copy_if(facts.own(), std::back_inserter(out), [](term_ptr t) { return t != nullptr; });
}

term_list all_of(const assumption_facts& facts) {
  term_list all;
  append_layers(facts, nullptr, all);
  return all;
}

// What is kept with a list of assumptions.
template <bool infinite_values>
struct assumed_bounds {
  explicit assumed_bounds(assumption_facts& facts) : problem(facts.table<complex_values>(), infinite_values) {
    const term_list all = all_of(facts);
    std::ranges::for_each(all, [this](term_ptr assumption) { problem.assume(assumption); });
    problem.settle();
  }
  interval_problem problem;
};

// An end of an interval counts: b ∈ [1, +∞] lets b be infinite.
bool speaks_of_infinity(term_span list) {
  return std::ranges::any_of(list, [](term_ptr t) {
    return holds_any(solver_preprocess_expand_interval_membership(t), whole_part::infinity_value);
  });
}

struct assumed_infinities {
  explicit assumed_infinities(assumption_facts& facts) : any(speaks_of_infinity(all_of(facts))) {}
  bool any;
};

}  // namespace

bool solver_interval(term_ptr target, const solve_data& sdata) {
  assumption_facts& facts = facts_of(sdata);
  assumption_facts* list = &facts;
  while (list->below() != nullptr) {
    list = list->below();
  }
  term_list more;
  append_layers(facts, list, more);
  // A name that turns out to be no real was read as one below.
  if (!more.empty() && facts.table<complex_values>().adds_to(list->table<complex_values>())) {
    list = &facts;
    more.clear();
  }
  const bool infinite_values = list->table<assumed_infinities>().any || speaks_of_infinity(more) ||
                               (target != nullptr && speaks_of_infinity(term_list{target}));
  interval_problem& problem =
      infinite_values ? list->table<assumed_bounds<true>>().problem : list->table<assumed_bounds<false>>().problem;
  if (problem.contradiction() || target == nullptr) {
    return problem.contradiction() || (!more.empty() && problem.contradicts(more));
  }
  const term_list conjuncts = term_split_and(solver_preprocess_expand_interval_membership(target));
  return std::ranges::all_of(conjuncts, [&](term_ptr conjunct) {
    return std::ranges::all_of(links_of(conjunct), [&](term_ptr link) { return problem.proves(link, more); });
  });
}

}  // namespace vetro

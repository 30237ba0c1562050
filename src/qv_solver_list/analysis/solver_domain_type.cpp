// Memberships in number sets, from what the assumptions put into such sets: facts of the parts of an expression give
// facts of the whole. Comparisons among the assumptions are not read.
#include <cstddef>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solvers.h"
#include "qv_solver_list/value_facts.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

class domain_reader {
 public:
  explicit domain_reader(assumption_facts& assumed) : assumed_(assumed) {}

  value_facts analyze_expr(term_ptr t) { return analyze_at(t, 0); }

 private:
  static constexpr std::size_t most_nested = 64;

  // Of what lies deeper than that nothing is known.
  value_facts analyze_at(term_ptr t, std::size_t depth) {
    if (depth > most_nested) {
      return {};
    }
    return known_.get(
        t, [&] { return both(assumption_domain_for(t), by_form(t, depth)); }, depth);
  }

  value_facts assumption_domain_for(term_ptr t) {
    value_facts facts;
    assumed_.for_each_set_of(t, [&](const_type set) { facts = both(facts, facts_of_set(set)); });
    return facts;
  }

  value_facts by_form(term_ptr t, std::size_t depth) {
    if (t->has_meta()) {
      return {};
    }
    if (t->type() == Const) {
      return facts_of_constant(t);
    }
    const auto view = composed_term_split(t);
    if (!view) {
      return {};
    }
    const value_facts first = analyze_at(view->t1, depth + 1);
    return view->t2 == nullptr ? apply(view->oper, first) : apply(view->oper, first, analyze_at(view->t2, depth + 1));
  }

  assumption_facts& assumed_;
  node_memo<value_facts> known_;  // by depth
};

}  // namespace

bool solver_domain_type(term_ptr target, const solve_data& sdata) {
  const auto view = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  if (!view || view->pred != Belong || view->right->type() != Const || view->right->has_meta() ||
      is_one_whole(view->left)) {
    return false;
  }
  return lies_in(domain_reader(facts_of(sdata)).analyze_expr(view->left), view->right->constant());
}

}  // namespace vetro

// Atoms and connectives.
#include "qv_solver_list/logic/propositional_problem.h"

#include "number/budget.h"
#include "number/limits.h"
#include "qv_solver_list/solver_preprocess.h"
#include "term/term_split_combine.h"

namespace vetro {

namespace {

std::optional<sat_term_type> binary_connective(connect_type connect) {
  switch (connect) {
    case And:
      return SAT_AND;
    case Or:
      return SAT_OR;
    case Impl:
      return SAT_IMPLY;
    case Iff:
      return SAT_IFF;
    case Not:
      break;
  }
  return std::nullopt;
}

}  // namespace

bool propositional_problem::is_full() const { return formula_.nodes().size() >= limits::propositional_nodes; }

propositional_problem::position propositional_problem::translate(term_ptr t) {
  if (t == nullptr) {
    return std::nullopt;
  }
  if (is_full()) {
    ++ended_budgets;
    return std::nullopt;
  }
  const auto view = composed_prop_split(t);
  if (view && view->connect == Not && view->t2 == nullptr) {
    return negation(translate(view->t1));
  }
  const auto type = view && view->t2 != nullptr ? binary_connective(view->connect) : std::nullopt;
  if (!type) {
    return translate_atom(t);
  }
  const position left = translate(view->t1);
  const position right = left ? translate(view->t2) : std::nullopt;
  return connective(*type, left, right);
}

// Opening tuples part by part opens them in the whole.
propositional_problem::position propositional_problem::conjunction(term_span list) {
  position joined;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const position part = translate(solver_preprocess_expand_tuple_equalities(list[i]));
    joined = i == 0 ? part : connective(SAT_AND, joined, part);
    if (!joined) {
      return std::nullopt;
    }
  }
  return joined;
}

cdcl_result propositional_problem::solve() const {
  sat_data s = init_solver(build_cnf(formula_, atoms_.count()));
  return cdcl_solver(s);
}

}  // namespace vetro

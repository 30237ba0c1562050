// Comparisons by signs, with other solvers at the leaves. Where an expression must be known to have a value, the pure
// family shows it.
#include <cstdint>
#include <limits>
#include <unordered_map>

#include "qv_solver_list/analysis/sign_goal.h"
#include "qv_solver_list/analysis/sign_pure.h"
#include "qv_solver_list/constant_analysis.h"
#include "qv_solver_list/solvers.h"
#include "term/memo.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// Who is asked at the leaves, in this order.
constexpr std::array leaf_solvers = {solver_id::smt_lra, solver_id::sat, solver_id::poly_rat, solver_id::eqb,
                                     solver_id::reflexivity};

class full_signs {
 public:
  explicit full_signs(const solve_data& sdata) : sdata_(sdata), pure_(sdata) {}

  bool ask(term_ptr t, sign_question question) {
    if (question == sign_question::defined) {
      return pure_.ask(t, question);
    }
    const auto number = static_cast<std::uint32_t>(question);
    if (const auto known = known_.known(t, number)) {
      return *known;
    }
    return known_.keep(t, number, answer(t, question));
  }

  // Whether expr pred bound, by the other solvers. A bound that no literal holds is asked of nobody.
  bool by_others(term_ptr expr, pred_type pred, std::int64_t bound) {
    using literal = std::numeric_limits<std::int32_t>;
    if (bound < literal::min() || bound > literal::max()) {
      return false;
    }
    term_ptr goal = make_binPred_prop(pred, expr, mk_integer(static_cast<std::int32_t>(bound)));
    if (const auto known = leaves_.known(goal, 0)) {
      return *known;
    }
    // What is assumed as it stands needs no search.
    const bool proved =
        is_assumption(goal, sdata_) || std::any_of(leaf_solvers.begin(), leaf_solvers.end(), [&](solver_id id) {
          const solver_decide solve = find_solver(id);
          return solve != nullptr && solve(goal, sdata_);
        });
    return leaves_.keep(goal, 0, proved);
  }

 private:
  friend class sign_engine<full_signs>;

  bool answer(term_ptr t, sign_question question) {
    if (is_one_whole(t) || pure_.may_be_complex(t)) {
      return false;
    }
    return solver_const_prove_zero_relation(t, *comparison_of(question)) ||
           sign_engine(*this, full_sign_rules()).answer(t, question);
  }

  bool by_others(term_ptr t, sign_question question) { return by_others(t, *comparison_of(question), 0); }
  bool nonzero_by_others(term_ptr t) { return by_others(t, Neq, 0); }

  // A sum of one summand is a bound of it. Of several, each must be shown not to lower the sum.
  bool by_sum(term_ptr t, sign_question question) {
    const pred_type pred = *comparison_of(question);
    const auto sum = sum_parts_of(t);
    if (!sum || sum->constant == std::numeric_limits<std::int64_t>::min()) {
      return false;
    }
    if (sum->parts.size() == 1 && stands_once(sum->parts.front())) {
      const sum_part& only = sum->parts.front();
      return only.added ? by_others(only.t, pred, -sum->constant) : by_others(only.t, *mirrored(pred), sum->constant);
    }
    const bool none_lowers = std::all_of(sum->parts.begin(), sum->parts.end(), [this](const sum_part& part) {
      return (!part.added || ask(part.t, sign_question::obvious_ge0)) &&
             (!part.subtracted || ask(part.t, sign_question::obvious_le0));
    });
    if (!none_lowers) {
      return by_others(t, pred, 0);
    }
    return pred == Ge ? sum->constant >= 0 : sum->constant >= 1 || by_others(t, pred, 0);
  }

  static bool stands_once(const sum_part& part) {
    return part.added != part.subtracted && (part.coefficient == 1 || part.coefficient == -1);
  }

  const solve_data& sdata_;
  pure_signs pure_;
  question_memo known_;
  question_memo leaves_;
};

bool difference_has(pred_type pred, term_ptr difference, full_signs& signs) {
  switch (pred) {
    case Eq:
      return signs.ask(difference, sign_question::ge0) && signs.ask(difference, sign_question::le0);
    case Neq:
      return signs.ask(difference, sign_question::gt0) || signs.ask(difference, sign_question::lt0) ||
             signs.by_others(difference, Neq, 0);
    default:
      return signs.ask(difference, *question_of(pred));
  }
}

}  // namespace

bool solver_sgn(term_ptr target, const solve_data& sdata) {
  const sign_goal goal = sign_goal_of(target);
  if (goal.known != sign_goal::state::open) {
    return goal.known == sign_goal::state::proved;
  }
  full_signs signs(sdata);
  return difference_has(goal.pred, goal.difference, signs);
}

}  // namespace vetro

// The equality test on terms: terms first, then fingerprints, then exact forms. Nearly all comparisons that fail end at
// the fingerprints, which are remembered for each term as long as the process lives; that changes no answer.
#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "number/limits.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/fingerprint.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/rational_domain.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/state.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// What comparisons found out about terms. Each entry follows from the terms alone.
struct comparison_memory {
  fingerprint_domain prints;
  std::unordered_map<node_pair, bool, node_pair_hasher> answers;
};

comparison_memory& memory() { return state().slots.of<comparison_memory>(); }

// Forgets everything when much is remembered beside two such terms. What belongs to these may stay, so that the
// comparisons of all subterms of a large term do not read it anew each time.
void limit_memory(term_ptr a, term_ptr b) {
  const comparison_memory& known = memory();
  const std::size_t entries = known.prints.remembered() + known.answers.size();
  if (entries > limits::poly_remembered + 2 * (std::size_t{a->size()} + b->size())) {
    state().slots.forget<comparison_memory>();
  }
}

// Good as long as it is remembered.
const fingerprint& print_of(term_ptr t) {
  fingerprint_domain& prints = memory().prints;
  if (const fingerprint* known = prints.recall(t)) {
    return *known;
  }
  expression_reader<fingerprint_domain>(prints).read(t);
  return *prints.recall(t);
}

// The exact comparison would certainly fail.
bool certainly_open(const fingerprint& a, const fingerprint& b) {
  return a.has_value && b.has_value && a.value != b.value;
}

}  // namespace

bool poly_rat_eqb(term_ptr a, term_ptr b) {
  if (a == nullptr || b == nullptr) {
    return false;
  }
  if (term_eqb(a, b)) {
    return true;
  }
  limit_memory(a, b);
  if (certainly_open(print_of(a), print_of(b))) {
    return false;
  }
  comparison_memory& known = memory();
  const auto answer = known.answers.find({a, b});
  if (answer != known.answers.end()) {
    return answer->second;
  }
  const bool equal = rational_forms().equal_at_once(a, b);
  known.answers.emplace(node_pair{a, b}, equal);
  return equal;
}

poly_rat_comparisons::poly_rat_comparisons() : forms_(std::make_unique<rational_forms>()) {}

poly_rat_comparisons::~poly_rat_comparisons() = default;

bool poly_rat_comparisons::equal(term_ptr a, term_ptr b) {
  if (a == nullptr || b == nullptr) {
    return false;
  }
  if (term_eqb(a, b)) {
    return true;
  }
  limit_memory(a, b);
  return !certainly_open(print_of(a), print_of(b)) && forms_->equal(a, b);
}

bool poly_rat_comparisons::equal_everywhere(term_ptr a, term_ptr b) {
  if (a == nullptr || b == nullptr) {
    return false;
  }
  if (term_eqb(a, b)) {
    return true;
  }
  limit_memory(a, b);
  return !certainly_open(print_of(a), print_of(b)) && forms_->equal_everywhere(a, b);
}

// Of several values each is another one, so that equal sides are no reason for ≤ between them.
bool solver_poly_rat_eqb(term_ptr target, const solve_data& /*sdata*/) {
  const auto relation = pred_split(target);
  if (!relation || (relation->pred != Eq && relation->pred != Le && relation->pred != Ge) ||
      (relation->pred != Eq && holds_any(target, several_valued))) {
    return false;
  }
  return poly_rat_eqb(relation->left, relation->right);
}

// ---- From an assumption.

namespace {

enum class decision_rel_type : std::uint8_t { decision_rel_eq = 1, decision_rel_lt = 2, decision_rel_le = 3 };
using enum decision_rel_type;

// left - right rel 0.
struct decision_normal_form {
  decision_rel_type rel;
  term_ptr left;
  term_ptr right;
};

std::optional<decision_normal_form> decision_normalize_atomic(term_ptr t) {
  const auto relation = pred_split(t);
  if (!relation) {
    return std::nullopt;
  }
  const auto& [pred, left, right] = *relation;
  switch (pred) {
    case Eq:
      return decision_normal_form{decision_rel_eq, left, right};
    case Gt:
      return decision_normal_form{decision_rel_lt, right, left};
    case Ge:
      return decision_normal_form{decision_rel_le, right, left};
    case Lt:
      return decision_normal_form{decision_rel_lt, left, right};
    case Le:
      return decision_normal_form{decision_rel_le, left, right};
    default:
      return std::nullopt;
  }
}

fingerprint print_of_difference(term_ptr a, term_ptr b) {
  const fingerprint& left = print_of(a);
  const fingerprint& right = print_of(b);
  const signed_value<fingerprint> difference[] = {{left, false}, {right, true}};
  return fingerprint_sum(difference);
}

// goal.left - goal.right equals left - right.
bool differences_equal(const decision_normal_form& goal, term_ptr left, term_ptr right, rational_forms& forms) {
  if (term_eqb(goal.left, left) && term_eqb(goal.right, right)) {
    return true;
  }
  const fingerprint of_goal = print_of_difference(goal.left, goal.right);
  if (certainly_open(of_goal, print_of_difference(left, right))) {
    return false;
  }
  return forms.equal_differences(goal.left, goal.right, left, right);
}

bool decision_forms_match(const decision_normal_form& goal, const decision_normal_form& assumed,
                          rational_forms& forms) {
  if (goal.rel != assumed.rel) {
    return false;
  }
  if (differences_equal(goal, assumed.left, assumed.right, forms)) {
    return true;
  }
  // f = O(x) says that f is of that order; it does not turn round.
  const bool turns = goal.rel == decision_rel_eq && !holds_any(goal.left, whole_part::landau) &&
                     !holds_any(goal.right, whole_part::landau);
  return turns && differences_equal(goal, assumed.right, assumed.left, forms);
}

bool assumption_matches(const decision_normal_form& goal, term_ptr assumption, rational_forms& forms) {
  for (term_ptr conjunct : split_connect(assumption, And)) {
    for (term_ptr link : long_order_split(conjunct)) {
      const auto form = decision_normalize_atomic(link);
      if (form && decision_forms_match(goal, *form, forms)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

// All assumptions share the forms, so that the target is expanded once. Each comparison has a budget of its own.
bool solver_context_poly_rat(term_ptr target, const solve_data& sdata) {
  const auto goal = decision_normalize_atomic(target);
  if (!goal) {
    return false;
  }
  limit_memory(goal->left, goal->right);
  rational_forms forms;
  return std::any_of(sdata.assum.begin(), sdata.assum.end(), [&](term_ptr assumption) {
    return assumption != nullptr && assumption_matches(*goal, assumption, forms);
  });
}

}  // namespace vetro

// autoreplace replaces a subterm of the goal or of a hypothesis by one that is equal to it by calculation. The script
// states both subterms and the new proposition; the handler checks that the replacement gives it, and that the subterms
// are equal.
#include "dsl_interpreter/advice.h"
#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/instructions/replacement.h"
#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "qv_solver_list/logic/negation.h"
#include "term/compare.h"
#include "term/pattern_match.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

enum class simpl_solver : std::uint8_t { poly = 0, deri = 1, integral = 2, not_normalize = 3 };

bool terms_match_not_normalize(term_ptr a, term_ptr b) {
  const term_ptr normal_a = solver_not_unfold_term(a);
  const term_ptr normal_b = normal_a == nullptr ? nullptr : solver_not_unfold_term(b);
  return normal_b != nullptr && alpha_equivalent(normal_a, normal_b);
}

// What shows that the two subterms are equal. A derivative written as deri(...) has no solver.
simpl_solver solver_select(term_ptr from, term_ptr to) {
  if (terms_match_not_normalize(from, to)) {
    return simpl_solver::not_normalize;
  }
  const bool is_derivative = (match(from, "deri(_)") || match(to, "deri(_)")) && !match(from, "deri(_)'");
  return is_derivative ? simpl_solver::deri : simpl_solver::poly;
}

// The proposition that is rewritten. A null source is reported by who prepares it; false after a message.
bool take_source(const dsl_execute_data& data, const dsl_auto_replace& inst, term_ptr& source) {
  if (inst.from_prop.type != inst.to_prop.type) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.to_prop),
              "The from_prop and to_prop must be of the same type (both GOAL or both HYPOTHESIS).\n");
    return false;
  }
  const proof_gap_full& gap = *data.cur_gap;
  source = nullptr;
  if (inst.from_prop.type == dsl_goal) {
    source = gap.goal;
  } else if (inst.from_prop.type == dsl_hypo) {
    source = gap.hypothesis(inst.from_prop.num);
    if (source == nullptr) {
      log_error(data, fault(diagnostic_code::no_such_hypothesis).at(inst.from_prop),
                "Invalid from_prop hypothesis number: %lld\n", static_cast<long long>(inst.from_prop.num));
      return false;
    }
    if (inst.to_prop.num <= gap.assu_num()) {
      log_error(data, fault(diagnostic_code::number_taken).at(inst.to_prop),
                "Invalid to_prop hypothesis number: %lld\n", static_cast<long long>(inst.to_prop.num));
      return false;
    }
  }
  return true;
}

// The result in its place: what the analysis of the whole proposition makes of it. Null where a pair came to stand in
// the place of a set.
term_ptr autoreplace_prepare_contextual_result(term_ptr t) {
  const term_ptr analyzed = parsed_static_analyze_term(t);
  return analyzed == nullptr || reads_pair_as_interval(t, analyzed) ? nullptr : dsl_prepare_term_for_rewrite(analyzed);
}

// The written new form against the old one, both with all occurrences replaced.
class replacement_check {
 public:
  replacement_check(const dsl_execute_data& data, const dsl_auto_replace& inst, bool by_negation)
      : data_(data),
        inst_(inst),
        by_negation_(by_negation),
        rule_{inst.from_term, inst.to_term, by_negation || (is_total(inst.from_term) && is_total(inst.to_term))} {}

  // False after a message.
  bool holds(term_ptr source) const {
    const term_ptr old_form = dsl_prepare_term_for_rewrite(source);
    const term_ptr new_form = dsl_prepare_term_for_rewrite(inst_.to_prop.t);
    if (old_form == nullptr || new_form == nullptr) {
      log_error(data_, fault(diagnostic_code::preparation_failed),
                "Auto-replace failed: cannot prepare bound variables for replacement.\n");
      return false;
    }
    const term_ptr from = autoreplace_prepare_contextual_result(replace_everywhere(rule_, old_form));
    const term_ptr to = autoreplace_prepare_contextual_result(replace_everywhere(rule_, new_form));
    if (from == nullptr || to == nullptr) {
      log_error(data_, fault(diagnostic_code::preparation_failed),
                "Auto-replace failed: cannot analyze the replacement result in its target context.\n");
      return false;
    }
    if (term_eqb(from, to) || (by_negation_ && is_new_form(from))) {
      return true;
    }
    log_error_text(data_,
                   fault(diagnostic_code::rewrite_mismatch).at_formula(inst_.to_prop).differs(from, inst_.to_prop.t),
                   "The transformation does not reflect the replacement:\nAfter replacing " + pretty(inst_.from_term) +
                       " with " + pretty(inst_.to_term) + ",\nthe from_prop becomes:\n" + pretty(from) +
                       "\nwhich does not match the to_prop:\n" + pretty(inst_.to_prop.t));
    return false;
  }

 private:
  // The new form as it is written: a replacement that holds the replaced part must not be made in it again.
  bool is_new_form(term_ptr replaced) const {
    const term_ptr written = autoreplace_prepare_contextual_result(inst_.to_prop.t);
    return written != nullptr && alpha_equivalent(replaced, written);
  }

  const dsl_execute_data& data_;
  const dsl_auto_replace& inst_;
  bool by_negation_;
  replacement rule_;
};

// For all values of the variables, which may be bound around a replaced place: the assumptions are not asked.
bool equal_by_calculation(const dsl_execute_data& data, const dsl_auto_replace& inst) {
  const term_ptr equation = make_binPred_prop(Eq, inst.from_term, inst.to_term);
  if (equation->has(fact_pattern)) {
    return false;
  }
  const solve_data sdata{.assum = {}, .target = equation, .lib = data.thmlib, .log_file = data.execute_log};
  return call_decision_solver(find_solver(solver_id::poly_rat), equation, sdata) ||
         call_decision_solver(find_solver(solver_id::root_power), equation, sdata);
}

// False after a message.
bool subterms_are_equal(const dsl_execute_data& data, const dsl_auto_replace& inst, simpl_solver solver) {
  switch (solver) {
    case simpl_solver::not_normalize:
      return true;
    case simpl_solver::deri:
    case simpl_solver::integral:
      log_error(data, fault(diagnostic_code::not_equal).differs(inst.from_term, inst.to_term),
                "Auto-replace currently only supports polynomial simplification and root-power conversion.\n");
      return false;
    case simpl_solver::poly:
      break;
  }
  if (equal_by_calculation(data, inst)) {
    return true;
  }
  log_error_text(
      data, fault(diagnostic_code::not_equal).differs(inst.from_term, inst.to_term),
      "Auto-replace failed: cannot simplify " + pretty(inst.from_term) + " to " + pretty(inst.to_term) + ".\n");
  return false;
}

}  // namespace

dsl_result execute_autoreplace(dsl_execute_data& data) {
  dsl_result result;
  const dsl_auto_replace& inst = instruction_as<dsl_auto_replace>(data);
  term_ptr source = nullptr;
  if (!take_source(data, inst, source)) {
    return result;
  }
  const simpl_solver solver = solver_select(inst.from_term, inst.to_term);
  const replacement_check check(data, inst, solver == simpl_solver::not_normalize);
  if (!check.holds(source) || !subterms_are_equal(data, inst, solver)) {
    return result;
  }
  if (solver == simpl_solver::poly) {
    warn_of_denominators(data, fault(diagnostic_code::denominator), inst.from_term, inst.to_term);
  }
  if (inst.to_prop.type == dsl_goal) {
    install_goal(data, inst.to_prop.t);
  } else {
    add_assumption(*data.cur_gap, inst.to_prop.t);
    compare_written(data, inst.to_prop, inst.to_prop.t, data.cur_gap->assu_num());
  }
  result.flag = exe_success;
  return result;
}

}  // namespace vetro

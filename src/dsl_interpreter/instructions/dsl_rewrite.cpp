// rewrite replaces the goal or a hypothesis by what rewriting with an equation or equivalence among the hypotheses
// gives. The script states both forms; the handler checks that one arises from the other by binder-safe subterm
// replacement.
#include "dsl_interpreter/advice.h"
#include "dsl_interpreter/dsl_handler.h"
#include "qv_solver_list/algebra/subterm_rewrite.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

struct rule_sides {
  term_ptr left;
  term_ptr right;
};

// Further lines of a message.
void log_term_line(const dsl_execute_data& data, const char* label, term_ptr t) {
  data.err_log->write(label + (t == nullptr ? std::string("<null>") : pretty(t)) + "\n");
}

// The written old form against the gap. Only the goal and hypotheses are compared.
bool source_matches(const dsl_execute_data& data, const dsl_term& from) {
  const proof_gap_full& gap = *data.cur_gap;
  if (from.type == dsl_goal) {
    if (from.t != nullptr && term_eqb(gap.goal, from.t)) {
      return true;
    }
    log_error(data, fault(diagnostic_code::formula_mismatch).at_formula(from).differs(gap.goal, from.t),
              "mismatch goal in rewrite dsl\n");
    log_term_line(data, "current_goal: ", gap.goal);
    log_term_line(data, "dsl_from: ", from.t);
    return false;
  }
  if (from.type == dsl_hypo) {
    term_ptr hypothesis = gap.hypothesis(from.num);
    if (hypothesis != nullptr && from.t != nullptr && term_eqb(hypothesis, from.t)) {
      return true;
    }
    log_error(data,
              fault(hypothesis == nullptr ? diagnostic_code::no_such_hypothesis : diagnostic_code::formula_mismatch)
                  .at_formula(from)
                  .differs(hypothesis, from.t),
              "mismatch hypothesis in rewrite dsl\n");
    if (hypothesis != nullptr) {
      log_term_line(data, "current_hypothesis: ", hypothesis);
    }
    log_term_line(data, "dsl_from: ", from.t);
    return false;
  }
  return true;
}

// The two sides of an equivalence, or of an equation. One with Landau terms, which binds their variables, is none, nor
// is one that holds ±: from x = ±1 and y = ±1 follows nothing about x and y.
std::optional<rule_sides> sides_of(term_ptr t, rewrite_hypo_type kind) {
  if (kind == re_iff) {
    const auto view = composed_prop_split(t);
    return view && view->connect == Iff && view->t2 != nullptr ? std::optional(rule_sides{view->t1, view->t2})
                                                               : std::nullopt;
  }
  const auto view = atomic_prop_split(t);
  return view && view->pred == Eq && view->t2 != nullptr && !protects(t) &&
                 !holds_any(t, whole_part::several_values | whole_part::landau)
             ? std::optional(rule_sides{view->t1, view->t2})
             : std::nullopt;
}

// The premise of an implication that serves as a rule is not looked at; whoever collects diagnostics hears of it unless
// it is proved.
void warn_of_premise(const dsl_execute_data& data, const dsl_rewrite& inst, term_ptr premise) {
  if (collecting_diagnostics != nullptr && !is_seen_to_hold(data, premise)) {
    note_fault(data, fault(diagnostic_code::rule_premise).at(inst.hypo).differs(premise, nullptr),
               "the rule's premise is not looked at, and nobody proved it");
  }
}

// The rule of a hypothesis: its own sides, or those of an implication's conclusion, whose premise is not looked at.
// Nothing after a message.
std::optional<rule_sides> rewrite_rule(const dsl_execute_data& data, const dsl_rewrite& inst) {
  if (inst.hypo.type != dsl_hypo) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.hypo),
              "Rewrite instruction requires a hypothesis as the rewriting source.\n");
    return std::nullopt;
  }
  term_ptr hypothesis = data.cur_gap->hypothesis(inst.hypo.num);
  if (hypothesis == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(inst.hypo),
              "Invalid hypothesis number: %lld, current proof gap has %d hypotheses\n",
              static_cast<long long>(inst.hypo.num), data.cur_gap->assu_num());
    return std::nullopt;
  }
  std::optional<rule_sides> sides = sides_of(hypothesis, inst.htype);
  const auto implication = separate_imply(hypothesis);
  if (!sides && implication) {
    sides = sides_of(implication->second, inst.htype);
    if (sides) {
      warn_of_premise(data, inst, implication->first);
    }
  }
  if (!sides) {
    log_error(data, fault(diagnostic_code::rule_unusable).at(inst.hypo).differs(nullptr, hypothesis), "%s",
              inst.htype == re_iff ? "Hypothesis is not an iff for rewriting.\n"
                                   : "Hypothesis is not an equation for rewriting.\n");
  }
  return sides;
}

// One orientation. On a match the execute log says what was replaced.
bool rewrite_matches_with_rule(const dsl_execute_data& data, const dsl_rewrite& inst, term_ptr rule_from,
                               term_ptr rule_to, const char* label) {
  term_ptr from = dsl_prepare_term_for_rewrite(inst.from_prop.t);
  term_ptr to = dsl_prepare_term_for_rewrite(inst.to_prop.t);
  term_ptr src = dsl_prepare_term_for_rewrite(rule_from);
  term_ptr dest = dsl_prepare_term_for_rewrite(rule_to);
  std::size_t hits = 0;
  if (from == nullptr || to == nullptr || src == nullptr || dest == nullptr ||
      !term_matches_subterm_rewrite(from, to, src, dest, &hits)) {
    return false;
  }
  data.execute_log->write(format_text("rewrite matched by replacing %zu occurrence(s) using %s:\n", hits, label) +
                          pretty(rule_from) + " -> " + pretty(rule_to) + "\n");
  return true;
}

void print_rewrite_failure_context(const dsl_execute_data& data, const dsl_rewrite& inst, const rule_sides& rule) {
  log_error(data, fault(diagnostic_code::rewrite_mismatch).at_formula(inst.to_prop).differs(nullptr, inst.to_prop.t),
            "The target form cannot be obtained by subterm rewriting with the hypothesis %s.\n",
            rewrite_hypo_type_name(inst.htype));
  data.err_log->write(std::string("requested_direction: ") + rewrite_direction_name(inst.direction) + "\n");
  log_term_line(data, "rule_left: ", rule.left);
  log_term_line(data, "rule_right: ", rule.right);
  log_term_line(data, "from: ", inst.from_prop.t);
  log_term_line(data, "to: ", inst.to_prop.t);
  data.err_log->write(
      "note: ordinary rewrite is binder-safe. It will not rewrite through implicit binders such as limit or sum "
      "when that could capture or change the meaning of free variables. For rewriting under a limit binder with "
      "a forall equation, use rewrite_in limit.\n");
}

// Puts the new form in its place; false after a message.
bool install_rewritten(dsl_execute_data& data, const dsl_rewrite& inst) {
  proof_gap_full& gap = *data.cur_gap;
  const dsl_term& from = inst.from_prop;
  const dsl_term& to = inst.to_prop;
  const bool from_gap = from.type == dsl_hypo || (from.type == dsl_goal && to.type == dsl_goal);
  if (!from_gap) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(to),
              "rewrite to hypothesis is only allowed when rewriting from a hypothesis.\n");
    return false;
  }
  if (to.type == dsl_goal) {
    install_goal(data, to.t);
    data.goal_was_given_up = data.goal_was_given_up || from.type == dsl_hypo;
    if (from.type == dsl_hypo) {
      note_fault(
          data, fault(diagnostic_code::goal_replaced).at(to).differs(nullptr, to.t),
          "a rewritten hypothesis takes the place of the goal: what is proved from here on is another statement");
    }
    return true;
  }
  if (install_hypothesis(gap, from, to)) {
    return true;
  }
  log_error(data, fault(diagnostic_code::number_not_next).at(to),
            "invalid rewrite target hypothesis number: %lld, expected %lld (overwrite rewritten hypothesis) or %d "
            "(append new hypothesis)\n",
            static_cast<long long>(to.num), static_cast<long long>(from.num), gap.assu_num() + 1);
  return false;
}

}  // namespace

dsl_result execute_rewrite(dsl_execute_data& data) {
  dsl_result result;
  const dsl_rewrite& inst = instruction_as<dsl_rewrite>(data);
  if (!source_matches(data, inst.from_prop)) {
    return result;
  }
  const std::optional<rule_sides> rule = rewrite_rule(data, inst);
  if (!rule) {
    return result;
  }
  const bool forward = inst.direction == re_left2right;
  term_ptr source = forward ? rule->left : rule->right;
  term_ptr target = forward ? rule->right : rule->left;
  const bool iff = inst.htype == re_iff;
  if (!rewrite_matches_with_rule(data, inst, source, target, iff ? "iff" : "equation") &&
      !rewrite_matches_with_rule(data, inst, target, source,
                                 iff ? "iff (reversed orientation)" : "equation (reversed orientation)")) {
    print_rewrite_failure_context(data, inst, *rule);
    return result;
  }
  if (install_rewritten(data, inst)) {
    result.flag = exe_success;
  }
  return result;
}

}  // namespace vetro

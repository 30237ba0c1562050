// The instructions that open quantifiers: exists gives witnesses to the goal, get_exists and get_forall introduce fresh
// names for a hypothesis or theorem and for the goal. All three instantiate one binder at a time, in the written order.
#include <algorithm>

#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/instructions/single_value.h"
#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "term/compare.h"
#include "term/substitute/instantiate.h"
#include "term/variables/free_names.h"
#include "term/variables/free_variable.h"

namespace vetro {
namespace {

bool is_quantifier(term_ptr t, quant_type kind) { return t->type() == Quant && t->quant() == kind; }

bool free_in_assumptions(term_ptr var, const proof_gap_full& gap) {
  return std::any_of(gap.assum.begin(), gap.assum.end(), [var](term_ptr t) { return occurs_free(var, t); });
}

// The words in which one of the three instructions reports a pair that does not fit.
struct pair_messages {
  const char* not_quantified;
  const char* bad_binder;
  const char* not_a_name;  // null: any value may stand for the binder
  const char* not_fresh;
};

constexpr pair_messages exists_messages = {"Error: Target is not an exists quantifier\n",
                                           "binder type error, binder should be a variable or indexed variable\n",
                                           nullptr, nullptr};
constexpr pair_messages get_exists_messages = {
    "Target is not an exists quantifier at this point\n",
    "Invalid binder term in substitution: expected a variable or indexed variable\n",
    "get_exists replacement must be a variable name\n",
    "get_exists replacement var '%s' must be fresh among free variables in the current proof gap\n"};
constexpr pair_messages get_forall_messages = {
    "Target is not a forall quantifier at this point\n",
    "Invalid binder term in substitution: expected a variable or indexed variable\n",
    "get_forall replacement must be a variable name\n",
    "get_forall replacement var '%s' must be fresh among free variables in the current proof gap\n"};

// Writes a message that may name a term; the rest of the format is literal text.
void report_pair(const dsl_execute_data& data, dsl_result& result, const fault& about, const char* message,
                 term_ptr named) {
  std::string text = message;
  const std::size_t place = text.find("%s");
  if (place != std::string::npos) {
    text.replace(place, 2, pretty(named));
  }
  log_error_text(data, about, text);
  result.redundant_flag = redundant_fail;
}

// Instantiates all pairs; null after a message. A name is fresh when it is free neither in an assumption, nor in the
// term being built, nor (for get_exists, whose term is not the goal) in the goal.
term_ptr instantiate_pairs(const dsl_execute_data& data, dsl_result& result, term_ptr working, quant_type kind,
                           const dsl_sub_list& pairs, const pair_messages& messages) {
  for (const dsl_sub_pair& pair : pairs) {
    if (!is_quantifier(working, kind)) {
      log_error_text(data, fault(diagnostic_code::wrong_shape).at(pair).differs(nullptr, working),
                     messages.not_quantified);
      return nullptr;
    }
    if (!term_is_var(pair.binder)) {
      report_pair(data, result, fault(diagnostic_code::bad_binder).at(pair), messages.bad_binder, pair.binder);
      return nullptr;
    }
    if (!term_list_contains(working->vars(), pair.binder)) {
      report_pair(data, result, fault(diagnostic_code::bad_binder).at(pair).differs(working, nullptr),
                  "quant var don't have '%s'\n", pair.binder);
      return nullptr;
    }
    if (messages.not_a_name == nullptr && !has_one_value(pair.sub_term)) {
      log_value_refused(data, pair);
      return nullptr;
    }
    if (messages.not_a_name != nullptr) {
      if (!is_var(pair.sub_term)) {
        report_pair(data, result, fault(diagnostic_code::value_refused).at(pair), messages.not_a_name, pair.sub_term);
        return nullptr;
      }
      const proof_gap_full& gap = *data.cur_gap;
      if (free_in_assumptions(pair.sub_term, gap) || occurs_free(pair.sub_term, working) ||
          (kind == Exists && occurs_free(pair.sub_term, gap.goal))) {
        report_pair(data, result, fault(diagnostic_code::not_fresh).at(pair).differs(nullptr, pair.sub_term),
                    messages.not_fresh, pair.sub_term);
        return nullptr;
      }
    }
    term_ptr value = value_in_place(working, pair.binder, pair.sub_term);
    if (is_pair(value) && !pair_has_one_reading(working, pair.binder)) {
      log_pair_refused(data);
      return nullptr;
    }
    term_ptr refused = nullptr;
    working = instantiate_binders(working, {&pair.binder, 1}, {&value, 1}, &refused);
    if (working == nullptr) {
      log_failed_instantiation(data, pair, refused);
      return nullptr;
    }
  }
  return working;
}

// The hypothesis or theorem that get_exists opens; null after a message.
term_ptr get_exists_source(const dsl_execute_data& data, const dsl_term& target) {
  if (target.type == dsl_hypo) {
    term_ptr source = data.cur_gap->hypothesis(target.num);
    if (source == nullptr) {
      log_error(data, fault(diagnostic_code::no_such_hypothesis).at(target),
                "Invalid target hypothesis number: %lld, current proof gap has %d hypotheses\n",
                static_cast<long long>(target.num), data.cur_gap->assu_num());
    }
    return source;
  }
  if (target.type != dsl_thm) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(target),
              "get_exists target must be a hypothesis or theorem\n");
    return nullptr;
  }
  const theorem* found = theorem_by_number(data, target);
  return found == nullptr ? nullptr : found->content();
}

}  // namespace

dsl_result execute_exists(dsl_execute_data& data) {
  dsl_result result;
  if (data.cur_gap->goal == nullptr) {
    log_error(data, fault(diagnostic_code::wrong_shape), "Error: No current goal to instantiate exists quantifier\n");
    return result;
  }
  term_ptr working = dsl_prepare_term_for_substitution(data.cur_gap->goal);
  if (working == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed),
              "Error: Failed to prepare goal for exists instantiation\n");
    return result;
  }
  working = instantiate_pairs(data, result, working, Exists, instruction_as<dsl_exists>(data).list, exists_messages);
  if (working == nullptr) {
    return result;
  }
  term_ptr analyzed = parsed_static_analyze_term(working);
  if (analyzed == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed),
              "Error: Failed to run static analysis after exists instantiation\n");
    return result;
  }
  term_ptr goal = dsl_prepare_term_for_substitution(analyzed);
  if (goal == nullptr) {
    return result;
  }
  install_goal(data, goal);
  succeed(data, result);
  return result;
}

dsl_result execute_get_exists(dsl_execute_data& data) {
  dsl_result result;
  const dsl_get_exists& inst = instruction_as<dsl_get_exists>(data);
  term_ptr source = get_exists_source(data, inst.target);
  if (source == nullptr) {
    return result;
  }
  strong_compare(data, result, source, inst.target.t, "Mismatched target: actual ", " but expected ");
  term_ptr working = dsl_prepare_term_for_substitution(source);
  if (working == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed),
              "Failed to prepare target for get_exists instantiation\n");
    return result;
  }
  working = instantiate_pairs(data, result, working, Exists, inst.list, get_exists_messages);
  working = dsl_prepare_term_for_substitution(working);
  if (working == nullptr) {
    return result;
  }
  add_assumption(*data.cur_gap, working);
  succeed(data, result);
  return result;
}

dsl_result execute_get_forall(dsl_execute_data& data) {
  dsl_result result;
  const dsl_get_forall& inst = instruction_as<dsl_get_forall>(data);
  if (inst.goal.type != dsl_goal) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.goal), "get_forall target must be goal\n");
    return result;
  }
  strong_compare(data, result, data.cur_gap->goal, inst.goal.t, "Mismatched goal: actual ", " but expected ");
  term_ptr working = dsl_prepare_term_for_substitution(data.cur_gap->goal);
  if (working == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed),
              "Failed to prepare goal for get_forall instantiation\n");
    return result;
  }
  working = instantiate_pairs(data, result, working, Forall, inst.list, get_forall_messages);
  working = dsl_prepare_term_for_substitution(working);
  if (working == nullptr) {
    return result;
  }
  install_goal(data, working);
  succeed(data, result);
  return result;
}

}  // namespace vetro

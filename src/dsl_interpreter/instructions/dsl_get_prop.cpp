// get_prop brings a fact into the proof state: a theorem or hypothesis, instantiated, compared with the formula that
// the script expects, and appended in the script's own wording.
#include <algorithm>
#include <unordered_set>

#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/instructions/single_value.h"
#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "term/compare.h"
#include "term/state.h"
#include "term/substitute/beta.h"
#include "term/substitute/fresh.h"
#include "term/substitute/instantiate.h"
#include "term/term_split_combine.h"
#include "term/variables/free_variable.h"
#include "term/variables/record.h"

namespace vetro {
namespace {

struct get_prop_subst {
  term_ptr src;
  term_ptr dest;
  term_ptr placeholder;
};

std::string theorem_ref_text(const dsl_term& ref) {
  std::string text = ref.lib_alias.empty()
                         ? format_text("Thm %lld", static_cast<long long>(ref.num))
                         : format_text("@%s:%lld", ref.lib_alias.c_str(), static_cast<long long>(ref.num));
  if (!ref.name.empty()) {
    text += ". (" + ref.name + ")";
  }
  return text;
}

// The message for a reference whose name decides and names no single theorem.
void report_unresolved_name(const dsl_execute_data& data, const dsl_term& ref, const theorem* by_number, int matches) {
  std::string text = "Invalid theorem reference " + theorem_ref_text(ref);
  if (by_number != nullptr) {
    text += ": theorem number resolves to " + format_text("Thm %d", by_number->id);
    if (!by_number->name.empty()) {
      text += ". (" + by_number->name + ")";
    }
    text += ", but the quoted name does not match";
  } else {
    text += ": theorem number was not found";
  }
  if (matches > 0) {
    text += format_text(", and theorem name '%s' is ambiguous (%d matches)\n", ref.name.c_str(), matches);
  } else {
    text += format_text(", and no theorem named '%s' was found\n", ref.name.c_str());
  }
  log_error_text(data, fault(diagnostic_code::no_such_theorem).at(ref), text);
}

// The theorem of a reference: by its number where the name agrees or is absent, else by its name. Null after a message.
const theorem* get_prop_resolve_theorem(const dsl_execute_data& data, const dsl_term& ref, bool& used_name_fallback) {
  used_name_fallback = false;
  if (ref.name.empty()) {
    return theorem_by_number(data, ref);
  }
  const theorem* by_number = thm_lib_find_by_ref(data.thmlib, ref.lib_alias, ref.num);
  if (by_number != nullptr && by_number->name == ref.name) {
    return by_number;
  }
  int matches = 0;
  const theorem* by_name = thm_lib_find_unique_by_name_ref(data.thmlib, ref.lib_alias, ref.name, &matches);
  if (by_name == nullptr) {
    report_unresolved_name(data, ref, by_number, matches);
    return nullptr;
  }
  used_name_fallback = true;
  return by_name;
}

// The formula that is to be instantiated; false after a message. A reference of another kind gives a null source, which
// the normalisation reports.
bool get_prop_source(const dsl_execute_data& data, const dsl_term& ref, term_ptr& source) {
  source = nullptr;
  if (ref.type == dsl_hypo) {
    source = data.cur_gap->hypothesis(ref.num);
    if (source == nullptr) {
      log_error(data, fault(diagnostic_code::no_such_hypothesis).at(ref),
                "Invalid hypothesis number: %lld, current proof gap has %d hypotheses\n",
                static_cast<long long>(ref.num), data.cur_gap->assu_num());
    }
    return source != nullptr;
  }
  if (ref.type != dsl_thm) {
    return true;
  }
  bool used_name_fallback = false;
  const theorem* found = get_prop_resolve_theorem(data, ref, used_name_fallback);
  if (found == nullptr) {
    return false;
  }
  if (used_name_fallback && ref.t != nullptr && !term_eqb(found->content(), ref.t)) {
    log_error_text(data, fault(diagnostic_code::formula_mismatch).at_formula(ref).differs(found->content(), ref.t),
                   "get_prop theorem name fallback formula mismatch for " + theorem_ref_text(ref) +
                       "\nselected theorem:\n" + pretty(found->content()) + "\nquoted formula:\n" + pretty(ref.t) +
                       "\n");
    return false;
  }
  source = found->content();
  return true;
}

// A placeholder is a name that the program alone uses; one that a user has taken is passed over.
class placeholder_source {
 public:
  placeholder_source(term_ptr source, const dsl_sub_list& pairs) {
    taken_.add(source);
    for (const dsl_sub_pair& pair : pairs) {
      taken_.add(pair.sub_term);
    }
  }

  term_ptr next() {
    term_ptr placeholder = make_var(state().placeholder_counter++);
    while (taken_.contains(placeholder->name())) {
      placeholder = make_var(state().placeholder_counter++);
    }
    return placeholder;
  }

 private:
  name_collection taken_;
};

// Checks every pair against the quantifier; false after a message.
bool collect_substitutions(const dsl_execute_data& data, dsl_result& result, term_ptr quantified,
                           const dsl_sub_list& pairs, std::vector<get_prop_subst>& substs) {
  if (quantified->type() != Quant || quantified->quant() != Forall) {
    log_error_text(data, fault(diagnostic_code::wrong_shape).differs(nullptr, quantified),
                   "invalid term for get_prop instantiation\n" + pretty(quantified) + "\n");
    return false;
  }
  placeholder_source placeholders(quantified, pairs);
  const term_span vars = quantified->vars();
  const std::unordered_set<term_ptr, alpha_hasher, alpha_equal> binders(vars.begin(), vars.end());
  std::unordered_set<term_ptr, alpha_hasher, alpha_equal> substituted;
  for (const dsl_sub_pair& pair : pairs) {
    if (!term_is_var(pair.binder) || binders.count(pair.binder) == 0) {
      log_error_text(data, fault(diagnostic_code::bad_binder).at(pair).differs(quantified, nullptr),
                     "quant var don't have '" + pretty(pair.binder) + "'\n");
      result.redundant_flag = redundant_fail;
      return false;
    }
    if (!substituted.insert(pair.binder).second) {
      log_error_text(data, fault(diagnostic_code::bad_binder).at(pair).differs(quantified, nullptr),
                     "duplicate substitution for quant var '" + pretty(pair.binder) + "'\n");
      result.redundant_flag = redundant_fail;
      return false;
    }
    if (holds_several_values(pair.sub_term)) {
      log_value_refused(data, pair);
      return false;
    }
    substs.push_back({pair.binder, value_in_place(quantified, pair.binder, pair.sub_term), placeholders.next()});
  }
  return true;
}

// The quantifier with all pairs substituted at once: in one walk where names do not get in the way, else binders by
// placeholders, then placeholders by values.
term_ptr substitute_at_once(term_ptr quantified, const std::vector<get_prop_subst>& substs, term_ptr& refused) {
  term_list binders;
  term_list placeholders;
  term_list values;
  for (const get_prop_subst& subst : substs) {
    binders.push_back(subst.src);
    placeholders.push_back(subst.placeholder);
    values.push_back(subst.dest);
  }
  if (term_ptr plain = instantiate_plain_body(quantified, binders, values); plain != nullptr) {
    return plain;
  }
  term_ptr t = instantiate_binders(quantified, binders, placeholders, &refused);
  for (const get_prop_subst& subst : substs) {
    t = instantiate_term(subst.placeholder, subst.dest, t, &refused);
  }
  return t;
}

// Names of the three normalisation steps in messages.
struct normalize_messages {
  const char* prepare;
  const char* beta;
  const char* analyze;
};

constexpr normalize_messages result_messages = {
    "failed to prepare get_prop instantiation result before beta-normalization\n",
    "failed to beta-normalize get_prop instantiation result\n",
    "failed to run static analysis after get_prop beta-normalization\n"};
constexpr normalize_messages target_messages = {
    "failed to prepare get_prop target formula in 'as (...)'\n",
    "failed to beta-normalize get_prop target formula in 'as (...)'\n",
    "failed to run static analysis on get_prop target after beta-normalization\n"};

// Binders as read from text, beta normal form, static analysis. Null after a message.
term_ptr normalize_for_comparison(const dsl_execute_data& data, term_ptr t, const normalize_messages& messages) {
  term_ptr prepared = dsl_prepare_term_for_substitution(t);
  if (prepared == nullptr) {
    log_error_text(data, fault(diagnostic_code::preparation_failed), messages.prepare);
    return nullptr;
  }
  term_ptr reduced = beta_normalize_term(prepared);
  if (reduced == nullptr) {
    log_error_text(data, fault(diagnostic_code::preparation_failed), messages.beta);
    return nullptr;
  }
  term_ptr analyzed = parsed_static_analyze_term(reduced);
  if (analyzed == nullptr) {
    log_error_text(data, fault(diagnostic_code::preparation_failed), messages.analyze);
    return nullptr;
  }
  if (reads_pair_as_interval(reduced, analyzed)) {
    log_pair_refused(data);
    return nullptr;
  }
  return dsl_prepare_term_for_substitution(analyzed);
}

bool pairs_have_one_reading(term_ptr quantified, const std::vector<get_prop_subst>& substs) {
  return std::all_of(substs.begin(), substs.end(), [quantified](const get_prop_subst& subst) {
    return !is_pair(subst.dest) || pair_has_one_reading(quantified, subst.src);
  });
}

// The instantiated and normalised source. Null after a message.
term_ptr instantiate_source(const dsl_execute_data& data, dsl_result& result, term_ptr source,
                            const dsl_sub_list& pairs) {
  term_ptr merged = source == nullptr ? nullptr : merge_quant_term(source);
  if (merged == nullptr) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(instruction_as<dsl_get_prop>(data).thm),
              "failed to normalize theorem before instantiation\n");
    return nullptr;
  }
  term_ptr prepared = dsl_prepare_term_for_substitution(merged);
  if (prepared == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed),
              "failed to prepare theorem binders before instantiation\n");
    return nullptr;
  }
  if (!pairs.empty()) {
    std::vector<get_prop_subst> substs;
    if (!collect_substitutions(data, result, prepared, pairs, substs)) {
      return nullptr;
    }
    term_ptr quantified = prepared;
    term_ptr refused = nullptr;
    term_ptr substituted = substitute_at_once(quantified, substs, refused);
    if (refused != nullptr) {
      log_failed_instantiation(data, pairs.front(), refused);
      return nullptr;
    }
    const auto at_infinity = std::find_if(pairs.begin(), pairs.end(), [](const dsl_sub_pair& pair) {
      return holds_any(pair.sub_term, whole_part::infinity_value);
    });
    if (at_infinity != pairs.end() && holds_any(substituted, whole_part::infinity_value)) {
      log_value_refused(data, *at_infinity);
      return nullptr;
    }
    prepared = substituted == nullptr ? nullptr : parsed_static_analyze_term(substituted);
    if (prepared == nullptr) {
      log_error(data, fault(diagnostic_code::preparation_failed),
                "failed to run static analysis after get_prop substitution\n");
      return nullptr;
    }
    if (reads_pair_as_interval(substituted, prepared) && !pairs_have_one_reading(quantified, substs)) {
      log_pair_refused(data);
      return nullptr;
    }
  }
  return normalize_for_comparison(data, prepared, result_messages);
}

// The formula behind `as`, normalised, when it is what the source gives. Null after a message.
term_ptr checked_target(const dsl_execute_data& data, const dsl_term& target, term_ptr actual) {
  if (target.type != dsl_hypo) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(target),
              "get_prop requires an explicit target hypothesis in 'as (...)'\n");
    return nullptr;
  }
  if (target.num != data.cur_gap->assu_num() + 1) {
    log_error(data, fault(diagnostic_code::number_not_next).at(target),
              "invalid get_prop target hypothesis number: %lld, expected %d\n", static_cast<long long>(target.num),
              data.cur_gap->assu_num() + 1);
    return nullptr;
  }
  term_ptr expected = normalize_for_comparison(data, target.t, target_messages);
  if (expected == nullptr) {
    return nullptr;
  }
  expected = with_record_of(expected, actual);
  if (!term_eqb(actual, expected)) {
    log_error_text(data, fault(diagnostic_code::formula_mismatch).at_formula(target).differs(actual, expected),
                   "get_prop target formula mismatch in 'as (...)'. expected alpha-equivalent formula.\nactual:\n" +
                       pretty(actual) + "\nactual_internal:\n" + internal(actual) + "\nexpected:\n" + pretty(expected) +
                       "\nexpected_internal:\n" + internal(expected) + "\n");
    return nullptr;
  }
  return expected;
}

}  // namespace

dsl_result execute_get_prop(dsl_execute_data& data) {
  dsl_result result;
  const dsl_get_prop& inst = instruction_as<dsl_get_prop>(data);
  term_ptr source = nullptr;
  if (!get_prop_source(data, inst.thm, source)) {
    return result;
  }
  term_ptr actual = instantiate_source(data, result, source, inst.list);
  if (actual == nullptr) {
    return result;
  }
  term_ptr expected = checked_target(data, inst.new_hypo, actual);
  if (expected == nullptr) {
    result.redundant_flag = redundant_fail;
    return result;
  }
  add_assumption(*data.cur_gap, expected);
  if (strong_checks(data) && !term_eqb(expected, inst.new_hypo.t)) {
    result.redundant_flag = redundant_fail;
    log_error_text(data, fault(diagnostic_code::written_differs),
                   "error get_prop instance result prop, new hypothesis should be :" + pretty(expected) + "\n");
  }
  succeed(data, result);
  return result;
}

}  // namespace vetro

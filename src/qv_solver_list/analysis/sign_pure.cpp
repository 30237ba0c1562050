// The memory of the pure family, its rules of sums and its way in.
#include "qv_solver_list/analysis/sign_pure.h"

#include "qv_solver_list/constant_analysis.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

constexpr int most_nested = 200;

}  // namespace

pure_signs::pure_signs(const solve_data& sdata) {
  assumption_facts& facts = facts_of(sdata);
  assumed_ = &facts.table<assumed_signs>();
  complex_ = &facts.table<complex_values>();
}

bool pure_signs::ask(term_ptr t, sign_question question) {
  const bool counts = question != sign_question::defined;
  if (counts && depth_ > most_nested) {
    cut_ = true;
    return false;
  }
  const auto asked = static_cast<std::uint64_t>(question);
  if (const remembered* found = known_.find(t, asked); found != nullptr && (!found->cut || depth_ >= found->depth)) {
    cut_ = cut_ || found->cut;
    return found->answer;
  }
  const bool cut_outside = cut_;
  cut_ = false;
  depth_ += counts ? 1 : 0;
  const bool proved = answer(t, question);
  depth_ -= counts ? 1 : 0;
  cut_ = cut_ && !proved;
  known_.keep(t, {proved, cut_, depth_}, asked);
  cut_ = cut_ || cut_outside;
  return proved;
}

bool pure_signs::answer(term_ptr t, sign_question question) {
  if (is_one_whole(t)) {
    return false;
  }
  if (question == sign_question::defined) {
    return defined_leaf_or_form(t);
  }
  const pred_type pred = *comparison_of(question);
  if (pred != Neq && may_be_complex(t)) {
    return false;
  }
  return within(assumed_->of(t), *signs_admitted(pred)) || solver_const_prove_zero_relation(t, pred) ||
         sign_engine(*this, pure_sign_rules()).answer(t, question);
}

bool pure_signs::defined_leaf_or_form(term_ptr t) {
  if (may_be_complex(t)) {
    return false;
  }
  switch (t->type()) {
    case Const:
      return solver_const_matches_set(t, RealSet);
    case Var:
      return !t->has_meta();
    default:
      return sign_engine(*this, pure_sign_rules()).answer(t, sign_question::defined);
  }
}

namespace {

// A sum of the wanted sign: each summand has it, or is zero, and for a strict one something is not zero.
struct sum_rule {
  sign_question asked;
  int sign;  // of the constant, where it is not zero
  bool strict;
  sign_question added_strict, added_weak;            // of a summand that is added
  sign_question subtracted_strict, subtracted_weak;  // of one that is subtracted
};

constexpr std::array sum_rules = std::to_array<sum_rule>({
    {sign_question::ge0, 1, false, sign_question::gt0, sign_question::ge0, sign_question::lt0, sign_question::le0},
    {sign_question::le0, -1, false, sign_question::lt0, sign_question::le0, sign_question::gt0, sign_question::ge0},
    {sign_question::gt0, 1, true, sign_question::gt0, sign_question::ge0, sign_question::lt0, sign_question::le0},
    {sign_question::lt0, -1, true, sign_question::lt0, sign_question::le0, sign_question::gt0, sign_question::ge0},
});

}  // namespace

bool pure_signs::by_sum(term_ptr t, sign_question question) {
  const auto* rule = std::find_if(sum_rules.begin(), sum_rules.end(),
                                  [question](const sum_rule& row) { return row.asked == question; });
  const auto sum = sum_parts_of(t);
  if (rule == sum_rules.end() || !sum || (rule->sign > 0 ? sum->constant < 0 : sum->constant > 0)) {
    return false;
  }
  bool strict = sum->constant != 0;
  const auto passes = [&](term_ptr part, sign_question strictly, sign_question weakly) {
    if (rule->strict && ask(part, strictly)) {
      strict = true;
      return true;
    }
    return ask(part, weakly);
  };
  const bool all = std::all_of(sum->parts.begin(), sum->parts.end(), [&](const sum_part& part) {
    return (!part.added || passes(part.t, rule->added_strict, rule->added_weak)) &&
           (!part.subtracted || passes(part.t, rule->subtracted_strict, rule->subtracted_weak));
  });
  return all && (strict || !rule->strict);
}

}  // namespace vetro

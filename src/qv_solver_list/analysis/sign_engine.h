// Carrying out the rules of signs. A family supplies what the rules refer to:
//
//   bool ask(term_ptr, sign_question)               a question about a part
//   bool by_sum(term_ptr, sign_question)            its rules of sums
//   bool by_others(term_ptr, sign_question)         other solvers, asked about the whole
//   bool nonzero_by_others(term_ptr)                other solvers, asked whether a part is not zero
#pragma once

#include <algorithm>

#include "qv_solver_list/analysis/sign_forms.h"
#include "qv_solver_list/value_facts.h"

namespace vetro {

// The comparison with zero that a question stands for; nothing for the question of definedness.
constexpr std::optional<pred_type> comparison_of(sign_question question) {
  switch (question) {
    case sign_question::ge0:
    case sign_question::obvious_ge0:
      return Ge;
    case sign_question::gt0:
      return Gt;
    case sign_question::le0:
    case sign_question::obvious_le0:
      return Le;
    case sign_question::lt0:
      return Lt;
    case sign_question::neq0:
      return Neq;
    case sign_question::defined:
      return std::nullopt;
  }
  return std::nullopt;
}

// The question that a comparison with zero is; nothing for the others.
constexpr std::optional<sign_question> question_of(pred_type pred) {
  switch (pred) {
    case Ge:
      return sign_question::ge0;
    case Gt:
      return sign_question::gt0;
    case Le:
      return sign_question::le0;
    case Lt:
      return sign_question::lt0;
    case Neq:
      return sign_question::neq0;
    default:
      return std::nullopt;
  }
}

template <class Family>
class sign_engine {
 public:
  sign_engine(Family& family, std::span<const sign_rules::rule> rules) : family_(family), rules_(rules) {}

  bool answer(term_ptr t, sign_question question) const {
    const sign_view view = sign_view_of(t);
    if (view.form == sign_form::integer) {
      const auto pred = comparison_of(question);
      return !pred || holds(*pred, *view.number < 0 ? -1 : (*view.number > 0 ? 1 : 0));
    }
    for (const sign_rules::rule& rule : rules_) {
      if (rule.asked != question || (rule.form != view.form && rule.form != sign_form::other)) {
        continue;
      }
      const outcome result = try_rule(rule, t, view);
      if (result != outcome::open || rule.then == sign_rules::otherwise::no) {
        return result == outcome::proved;
      }
    }
    return false;
  }

 private:
  enum class outcome : std::uint8_t { open, proved, refused };

  outcome try_rule(const sign_rules::rule& rule, term_ptr t, const sign_view& view) const {
    for (std::size_t i = 0; i < rule.count; ++i) {
      const outcome result = try_way(rule.ways[i], rule.asked, t, view);
      if (result != outcome::open) {
        return result;
      }
    }
    return outcome::open;
  }

  outcome try_way(const sign_rules::way& way, sign_question asked, term_ptr t, const sign_view& view) const {
    outcome failure = outcome::open;
    for (const sign_rules::need& need : way.needs) {
      if (need.kind == sign_rules::need_kind::cut) {
        failure = outcome::refused;
      } else if (!holds_true(need, asked, t, view)) {
        return failure;
      }
    }
    return outcome::proved;
  }

  bool holds_true(const sign_rules::need& need, sign_question asked, term_ptr t, const sign_view& view) const {
    using sign_rules::need_kind;
    switch (need.kind) {
      case need_kind::nothing:
      case need_kind::cut:
        return true;
      case need_kind::never:
        return false;
      case need_kind::first:
        return family_.ask(view.first, need.question);
      case need_kind::second:
        return family_.ask(view.second, need.question);
      case need_kind::whole:
        return family_.ask(t, need.question);
      case need_kind::undefined:
        return !family_.ask(t, sign_question::defined);
      case need_kind::first_nonzero_by_others:
        return family_.nonzero_by_others(view.first);
      case need_kind::by_sum:
        return family_.by_sum(t, asked);
      case need_kind::by_others:
        return family_.by_others(t, asked);
      case need_kind::base_is_e:
        return is_constant(view.first, E);
      case need_kind::no_number:
        return !view.number;
      default:
        return view.number && number_is(need.kind, *view.number);
    }
  }

  static bool number_is(sign_rules::need_kind kind, std::int64_t number) {
    using sign_rules::need_kind;
    switch (kind) {
      case need_kind::number:
        return true;
      case need_kind::even:
        return number % 2 == 0;
      case need_kind::even_from_2:
        return number % 2 == 0 && number >= 2;
      case need_kind::odd:
        return number % 2 != 0;
      case need_kind::zero:
        return number == 0;
      case need_kind::above_zero:
        return number > 0;
      default:
        return false;
    }
  }

  Family& family_;
  std::span<const sign_rules::rule> rules_;
};

}  // namespace vetro

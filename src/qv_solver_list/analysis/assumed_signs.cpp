// Forms of assumptions, and the look-up.
#include "qv_solver_list/analysis/assumed_signs.h"

#include <algorithm>
#include <limits>

#include "number/hash_mix.h"
#include "qv_solver_list/analysis/sign_forms.h"
#include "qv_solver_list/value_facts.h"
#include "term/whole_parts.h"

namespace vetro {

std::size_t assumed_signs::linear_sum_hasher::operator()(const linear_sum& sum) const {
  std::size_t hash = static_cast<std::size_t>(sum.constant);
  for (const auto& [summand, coefficient] : sum.terms) {
    for (const std::uint64_t word : {std::uint64_t{summand}, static_cast<std::uint64_t>(coefficient)}) {
      hash = mix(hash, word);
    }
  }
  return hash;
}

// number_of gives nothing for a summand that stands in no assumption.
template <class NumberOf>
std::optional<assumed_signs::oriented_sum> assumed_signs::form_of(const sum_parts& parts, NumberOf number_of) {
  oriented_sum out{{parts.constant, {}}, false};
  for (const sum_part& part : parts.parts) {
    if (part.coefficient == 0) {
      continue;
    }
    const std::optional<std::uint32_t> number = number_of(part.t);
    if (!number) {
      return std::nullopt;
    }
    out.sum.terms.emplace_back(*number, part.coefficient);
  }
  auto& terms = out.sum.terms;
  std::sort(terms.begin(), terms.end());
  // Equal up to bound names only: two nodes, one number.
  std::size_t kept = 0;
  for (std::size_t i = 0; i < terms.size(); ++i) {
    if (kept > 0 && terms[kept - 1].first == terms[i].first) {
      if (__builtin_add_overflow(terms[kept - 1].second, terms[i].second, &terms[kept - 1].second)) {
        return std::nullopt;
      }
      kept -= terms[kept - 1].second == 0 ? 1 : 0;
    } else {
      terms[kept++] = terms[i];
    }
  }
  terms.resize(kept);
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  const bool negatable = out.sum.constant != least &&
                         std::all_of(terms.begin(), terms.end(), [](const auto& term) { return term.second != least; });
  if (!terms.empty() && terms.front().second < 0 && negatable) {
    out.turned = true;
    out.sum.constant = -out.sum.constant;
    for (auto& term : terms) {
      term.second = -term.second;
    }
  }
  return out;
}

assumed_signs::assumed_signs(assumption_facts& facts) {
  if (facts.below() != nullptr) {
    below_ = &facts.below()->table<assumed_signs>();
    numbers_ = below_->numbers_;
  } else {
    numbers_ = std::make_shared<summand_numbers>();
  }
  for (const order_fact& fact : facts.comparisons()) {
    read(fact);
  }
}

void assumed_signs::read(const order_fact& fact) {
  if (is_one_whole(fact.left) || is_one_whole(fact.right)) {
    return;
  }
  const signed_root difference[] = {{fact.left, false}, {fact.right, true}};
  const auto parts = sum_parts_of(difference);
  const auto form = !parts ? std::nullopt : form_of(*parts, [&](term_ptr summand) {
    const auto next = static_cast<std::uint32_t>(numbers_->size());
    return std::optional(numbers_->try_emplace(summand, next).first->second);
  });
  if (!form) {
    return;
  }
  const sign_class said = *signs_admitted(fact.pred);
  auto& known = signs_.try_emplace(form->sum, sign_class::any).first->second;
  known = known & (form->turned ? mirrored(said) : said);
}

sign_class assumed_signs::of(term_ptr t) const {
  if ((signs_.empty() && below_ == nullptr) || is_one_whole(t)) {
    return sign_class::any;
  }
  const auto parts = sum_parts_of(t);
  const auto form = !parts ? std::nullopt : form_of(*parts, [&](term_ptr summand) {
    const auto known = numbers_->find(summand);
    return known == numbers_->end() ? std::nullopt : std::optional(known->second);
  });
  if (!form) {
    return sign_class::any;
  }
  sign_class signs = sign_class::any;
  for (const assumed_signs* layer = this; layer != nullptr; layer = layer->below_) {
    if (const auto known = layer->signs_.find(form->sum); known != layer->signs_.end()) {
      signs = signs & known->second;
    }
  }
  return form->turned ? mirrored(signs) : signs;
}

}  // namespace vetro

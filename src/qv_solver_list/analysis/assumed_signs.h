// The signs that assumptions give to differences: for each comparison left pred right, the linear form of left - right
// with integer coefficients, under which a question looks up what is known.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "qv_solver_list/assumption_facts.h"
#include "term/number_set.h"

namespace vetro {

// One table for each layer of assumptions, as table<assumed_signs>().
class assumed_signs {
 public:
  explicit assumed_signs(assumption_facts& facts);

  // The signs that t may have by some comparison whose difference is the same sum of the same summands. Nothing said:
  // any sign.
  sign_class of(term_ptr t) const;

 private:
  struct linear_sum {
    std::int64_t constant = 0;
    std::vector<std::pair<std::uint32_t, std::int64_t>> terms;  // summand numbers, ascending; no coefficient is zero
    bool operator==(const linear_sum&) const = default;
  };
  struct linear_sum_hasher {
    std::size_t operator()(const linear_sum& sum) const;
  };
  // Sums that are equal as opposite numbers share a form: that whose first coefficient is positive.
  struct oriented_sum {
    linear_sum sum;
    bool turned;
  };
  // Summands that are equal up to bound names have one number; shared by all layers of a list.
  using summand_numbers = std::unordered_map<term_ptr, std::uint32_t, alpha_hasher, alpha_equal>;

  void read(const order_fact& fact);
  template <class NumberOf>
  static std::optional<oriented_sum> form_of(const struct sum_parts& parts, NumberOf number_of);

  std::shared_ptr<summand_numbers> numbers_;
  assumed_signs* below_ = nullptr;
  std::unordered_map<linear_sum, sign_class, linear_sum_hasher> signs_;
};

}  // namespace vetro

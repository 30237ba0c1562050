// Parts that make a term one whole, and where an infinity is a point and no value.
#include "term/whole_parts.h"

#include <gtest/gtest.h>

#include <string_view>

#include "lib/semantic_term.h"
#include "support/term_tools.h"
#include "term/state.h"

namespace vetro {
namespace {

using enum whole_part;

TEST(whole_parts, are_found_by_kind) {
  reset_state();
  struct row {
    std::string_view text;
    whole_part expected;
  };
  constexpr row rows[] = {
      {"f(x, 1 / y)^2 + sum_{i = 1}^{n}(a_i)", none},
      {"1 + ... + n", ellipsis},
      {"g(bigO_{x → 0}(x)) + 1", landau},
      {"x = 1 ± y", several_values},
      {"f(±1)", several_values},
      {"int(x * diff(x))", indefinite_integral},
      {"int_{0}^{1}(x * diff(x)) / 2", none},
      {"∞ - 1", infinity_value},
      {"f(x) = -∞", infinity_value},
      {"lim_{n → ∞}(a_n)", none},
      {"lim_{n → ∞}(∞)", infinity_value},
      {"lim_{n → ∞ + 1}(a_n)", infinity_value},
      {"sum_{i = -∞}^{∞}(a_i)", none},
      {"int_{-∞}^{∞}(f(x) * diff(x))", none},
      {"x ∈ (0, ∞)", none},
      {"x ∈ { 0, ∞ }", infinity_value},
      {"a_n seqTendsTo_{n → ∞} ∞", none},
      {"x → ∞", none},
      {"Cardinal(A) + 1", set_size},
      {"diff(y) / diff(x)", differential_quotient},
      {"x^2 * (pdiff(y) * 2)^2", differential_quotient},
      {"1 / int_{0}^{1}(x * diff(x))", none},
      {"±∞ + 1", several_values | infinity_value},
  };
  for (const row& r : rows) {
    const term_ptr t = parse_semantic_term_from_str(r.text);
    ASSERT_NE(t, nullptr) << r.text;
    EXPECT_EQ(whole_parts_of(t), r.expected) << r.text;
    // The answer for a term that is large enough to be remembered, asked twice.
    const term_ptr large = build::plus(build::doubled(build::var("x"), 40), t);
    EXPECT_EQ(whole_parts_of(large), r.expected) << r.text;
    EXPECT_EQ(whole_parts_of(large), r.expected) << r.text;
  }
  EXPECT_FALSE(is_one_whole(nullptr));
}

}  // namespace
}  // namespace vetro

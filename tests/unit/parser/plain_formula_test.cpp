// What passes for a plain formula must parse without a word, whatever it is; most everyday formulas should pass.
#include "parser/plain_formula.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "parser/parser_api.h"

namespace vetro {
namespace {

// Texts that are mostly near a formula: pieces put together without regard to whether a term or a proposition fits.
class random_texts {
 public:
  explicit random_texts(unsigned seed) : engine_(seed) {}

  std::string text(int depth) {
    if (depth == 0 || one_of(6) == 0) {
      static const std::vector<std::string> leaves = {"x", "n", "2", "1.5", "∞", "`a b`", "sin", "Lt", "False", "S"};
      return leaves[one_of(leaves.size())];
    }
    static const std::vector<std::string> shapes = {"(#)",
                                                    "#(#)",
                                                    "#(#, #)",
                                                    "{#}",
                                                    "{#, #}",
                                                    "(#, #)",
                                                    "-#",
                                                    "# + #",
                                                    "# * #",
                                                    "# = #",
                                                    "# < #",
                                                    "# ∈ #",
                                                    "# ⊆ #",
                                                    "#^2",
                                                    "#^{#}",
                                                    "#^(#)",
                                                    "#_{#}",
                                                    "#_n",
                                                    "#'",
                                                    "#!",
                                                    "¬#",
                                                    "# ∧ #",
                                                    "# ⇒ #",
                                                    "forall (#), #",
                                                    "exists (#)(#), #",
                                                    "sum_{#}^{#}(#)",
                                                    "lim_{# → #}(#)",
                                                    "lim_{# → #^+}(#)",
                                                    "|#|",
                                                    "# | #",
                                                    "#|_{#}^{#}",
                                                    "# → #",
                                                    "# →_{# → #} #",
                                                    "[#, #)",
                                                    "# [@scope # @]",
                                                    "{# | #}",
                                                    "# ≡ # (mod #)",
                                                    "fun # . #",
                                                    "# #",
                                                    "#^",
                                                    "# ∘ #",
                                                    "union_{#}(#)",
                                                    "# : # → #",
                                                    "#^{# ∧",
                                                    "#_{(#",
                                                    "+ #",
                                                    "cases{# if #}",
                                                    "# mod #",
                                                    "# \\ #"};
    std::string result;
    for (const char c : shapes[one_of(shapes.size())]) {
      result += c == '#' ? text(depth - 1) : std::string(1, c);
    }
    return result;
  }

 private:
  std::size_t one_of(std::size_t count) { return engine_() % count; }
  std::mt19937 engine_;
};

TEST(plain_formula, what_passes_parses_without_a_message) {
  random_texts source(7);
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  int passed = 0;
  std::string refused;
  for (int i = 0; i < 60000; ++i) {
    const std::string text = source.text(1 + i % 4);
    if (is_plain_formula(text)) {
      ++passed;
      refused += parse_term_from_str(text, 0, 0) == nullptr ? text + "\n" : "";
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(refused, "");
  EXPECT_GT(passed, 5000);
}

TEST(plain_formula, everyday_formulas_pass) {
  for (const char* text : {
           "forall (a)(b), (a + b)^2 = a^2 + 2 * a * b + b^2",
           "forall (x)(y ∈ S), x ∈ Real ∧ -y ≤ 0 ⇒ (x < y < 2 ∨ ¬ (x = {1, 2})) ⇔ exists (n), f(x, n) = n!",
           "forall (f)(g)(n), sum_{i = 1}^{n + 1}(f(i) + g_i) = union_{i ∈ I}(A(i)) \\ (B ∪ ∅)",
           "lim_{x → ∞}(sin(x)'^{2} / (1.5, x_{n + 1})) = seqlim_{n → a}(a_n)",
       }) {
    EXPECT_TRUE(is_plain_formula(text)) << text;
  }
}

// Here a message depends on the reading, or a second reading might exist.
TEST(plain_formula, other_texts_are_left_to_the_parser) {
  for (const char* text :
       {"", "x +", "x = 1 = ", "(x = 1) + 2", "x ∧ y", "f(a, b ∈ S)", "a | f(x)", "-x|_{0}^{1}", "x # 1", "x\xC3",
        "x\xFF", "x = 1)", "forall x, x = 1", "x^-1", "f()", "f ∘ g ∘ h", "x^{∧ (a)"}) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(is_plain_formula(text)) << text;
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "") << text;
  }
}

}  // namespace
}  // namespace vetro

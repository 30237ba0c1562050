// Numbers read from terms and written as terms.
#include "qv_solver_list/number_reading.h"

#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class number_reading : public solver_test {
 protected:
  static std::string value(std::string_view text, const allowed_forms& allowed = {}) {
    const auto result = evaluate(read(text), allowed);
    return result ? to_string(*result) : "none";
  }
};

TEST_F(number_reading, integer_literals) {
  EXPECT_EQ(integer_literal(read("-(-7)")), 7);
  EXPECT_EQ(integer_literal(make_unOp_term(Neg, mk_integer(-2147483647 - 1))), 2147483648);
  for (const char* text : {"0.5", "1 + 1", "x", "-x"}) {
    EXPECT_FALSE(integer_literal(read(text))) << text;
  }
  EXPECT_FALSE(integer_literal(nullptr));
}

TEST_F(number_reading, calculations) {
  EXPECT_EQ(value("(1 - 3) * 0.25 / frac(-1, 2)"), "1");
  EXPECT_EQ(value("100000000000000000000 / 3"), "100000000000000000000/3");
  EXPECT_EQ(value("2^(-3)", {.powers = true}), "1/8");
  EXPECT_EQ(value("|1 - 3|", {.absolute = true}), "2");
  for (const char* text : {"1 / 0", "2^(-3)", "|1|", "x - x", "`e`", "1 ± 2", "(1, 2)"}) {
    EXPECT_EQ(value(text), "none") << text;
  }
  EXPECT_EQ(value("0.5", {.decimals = false}), "none");
  EXPECT_EQ(value("2^(1/2)", {.powers = true}), "none");
  EXPECT_EQ(value("0^(-1)", {.powers = true}), "none");
  EXPECT_EQ(value("2^99999", {.powers = true}), "none");
}

TEST_F(number_reading, shared_parts_are_read_once) {
  term_ptr doubled = mk_integer(1);
  for (int i = 0; i < 200; ++i) {
    doubled = make_binOp_term(Plus, doubled, doubled);
  }
  EXPECT_EQ(evaluate(doubled, {}), power(2, 200));
}

TEST_F(number_reading, numbers_as_terms) {
  EXPECT_EQ(number_term(-7), mk_integer(-7));
  EXPECT_EQ(number_term(exact(2) / 6), read("frac(1, 3)"));
  EXPECT_EQ(number_term(std::int64_t{1} << 31), nullptr);
  EXPECT_EQ(number_term(1 / (exact(1) + (std::int64_t{1} << 31))), nullptr);
  EXPECT_EQ(number_term(exact::beyond()), nullptr);
}

}  // namespace
}  // namespace vetro

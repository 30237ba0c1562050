// Which binders of a big operator may be renamed: its indices, and nothing else that the index part speaks of.
#include <gtest/gtest.h>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "term/compare.h"
#include "term/pattern_match.h"

namespace vetro {
namespace {

bool same(const char* a, const char* b) {
  match_init(read_pattern);
  term_ptr left = parse_semantic_term_from_str(a);
  term_ptr right = parse_semantic_term_from_str(b);
  EXPECT_NE(left, nullptr) << a;
  EXPECT_NE(right, nullptr) << b;
  const bool equal = term_eqb(left, right);
  EXPECT_EQ(equal, term_eqb(right, left)) << a << "  " << b;
  if (equal) {
    EXPECT_EQ(alpha_hash(left), alpha_hash(right)) << a << "  " << b;
  }
  return equal;
}

TEST(index_variables, indices_are_names_to_choose) {
  EXPECT_TRUE(same("sum_{i = k}^{n}(i)", "sum_{j = k}^{n}(j)"));
  EXPECT_TRUE(same("prod_{i ∈ S}(f(i))", "prod_{j ∈ S}(f(j))"));
  EXPECT_TRUE(same("sum_{i, j ∈ S}(i + j)", "sum_{a, b ∈ S}(a + b)"));
  EXPECT_TRUE(same("sum_{0 < i < n}(i)", "sum_{0 < j < n}(j)"));
  EXPECT_TRUE(same("sum_{1 ≤ i}(i)", "sum_{1 ≤ j}(j)"));
  EXPECT_TRUE(same("sum_{i < 9}(i)", "sum_{j < 9}(j)"));
  EXPECT_TRUE(same("sum_{d | n}(d)", "sum_{t | n}(t)"));
  EXPECT_TRUE(same("sum_{i}(i)", "sum_{j}(j)"));
  EXPECT_TRUE(same("sum_{i ∈ S ∧ i > 0}(i)", "sum_{j ∈ S ∧ j > 0}(j)"));
}

TEST(index_variables, what_the_index_part_speaks_of_is_not) {
  EXPECT_FALSE(same("sum_{i = k}^{n}(i)", "sum_{i = m}^{n}(i)"));
  EXPECT_FALSE(same("prod_{i ∈ S}(f(i))", "prod_{i ∈ T}(f(i))"));
  EXPECT_FALSE(same("sum_{0 < i < n}(i)", "sum_{0 < i < m}(i)"));
  EXPECT_FALSE(same("sum_{d | n}(d)", "sum_{d | m}(d)"));
  EXPECT_FALSE(same("sum_{k < i}(i)", "sum_{m < i}(i)"));
  EXPECT_FALSE(same("sum_{i = k}^{n}(i + k)", "sum_{i = m}^{n}(i + m)"));
}

// A start bound further out is a bound name like any other.
TEST(index_variables, a_start_bound_outside_follows_its_binder) {
  EXPECT_TRUE(same("sum_{k = 1}^{n}(sum_{i = k}^{n}(i))", "sum_{l = 1}^{n}(sum_{j = l}^{n}(j))"));
  EXPECT_TRUE(same("forall (k), sum_{i = k}^{n}(i) = 1", "forall (m), sum_{j = m}^{n}(j) = 1"));
  EXPECT_TRUE(same("forall (k), sum_{k < i}(i) = 1", "forall (m), sum_{m < j}(j) = 1"));
  EXPECT_FALSE(same("forall (i), sum_{i = k}^{n}(i) = 1", "forall (j), sum_{j = m}^{n}(j) = 1"));
  EXPECT_FALSE(same("sum_{k = 1}^{n}(sum_{i = k}^{n}(i))", "sum_{l = 1}^{n}(sum_{j = q}^{n}(j))"));
}

}  // namespace
}  // namespace vetro

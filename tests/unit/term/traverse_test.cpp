// Walks over shared terms, and what they remember of nodes.
#include "term/traverse.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "term/state.h"

namespace vetro {
namespace {

term_ptr doubled(term_ptr t, int times) {
  for (; times > 0; --times) {
    t = mk_apply(mk_apply(mk_oper(Plus), t), t);
  }
  return t;
}

TEST(traverse, shared_parts_are_visited_once) {
  reset_state();
  const term_ptr x = mk_var("x");
  const term_ptr y = mk_var("y");
  const term_ptr t = doubled(with_scope(x, y), 200);
  EXPECT_FALSE(any_subterm(t, walk_children, [y](term_ptr part) { return part == y; }));
  EXPECT_TRUE(any_subterm(t, walk_children | walk_scope, [y](term_ptr part) { return part == y; }));
  int visits = 0;
  const auto y_for_x = [&](term_ptr node, auto& below) {
    ++visits;
    return node->type() == Var ? y : map_children(node, walk_children, below);
  };
  EXPECT_EQ(transform(t, y_for_x), doubled(y, 200));
  EXPECT_LE(visits, 2 * 200 + 20) << "only the smallest parts are walked again";
}

TEST(traverse, node_memo_keeps_each_value_under_its_node_and_number) {
  reset_state();
  node_memo<int> memo;
  std::map<std::pair<term_ptr, std::uint64_t>, int> expected;
  term_ptr t = mk_var("x");
  for (int i = 0; i < 3000; ++i) {
    t = mk_apply(mk_var("f"), t);
    const auto number = static_cast<std::uint64_t>(i % 3) << (i % 2 == 0 ? 0U : 40U);
    memo.keep(t, i, number);
    expected[{t, number}] = i;
    EXPECT_EQ(memo.find(t, number + 1), nullptr);
  }
  for (const auto& [key, value] : expected) {
    ASSERT_NE(memo.find(key.first, key.second), nullptr);
    EXPECT_EQ(*memo.find(key.first, key.second), value);
  }
  EXPECT_EQ(memo.size(), expected.size());
}

}  // namespace
}  // namespace vetro

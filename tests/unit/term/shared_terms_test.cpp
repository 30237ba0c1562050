// Lists that share their elements: who changes one changes no other, and common beginnings are what a scan would find.
#include "term/shared_terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace vetro {
namespace {

TEST(shared_terms, copies_do_not_see_each_others_changes) {
  shared_terms first = {mk_integer(1), mk_integer(2)};
  const shared_terms before = first;
  first.push_back(mk_integer(3));
  shared_terms branch = first.beginning(2);
  branch.push_back(mk_integer(4));
  first.push_back(mk_integer(5));
  const shared_terms grown = first;
  first.replace(0, mk_integer(6));
  EXPECT_EQ(before, (shared_terms{mk_integer(1), mk_integer(2)}));
  EXPECT_EQ(branch, (shared_terms{mk_integer(1), mk_integer(2), mk_integer(4)}));
  EXPECT_EQ(grown, (shared_terms{mk_integer(1), mk_integer(2), mk_integer(3), mk_integer(5)}));
  EXPECT_EQ(first, (shared_terms{mk_integer(6), mk_integer(2), mk_integer(3), mk_integer(5)}));
  EXPECT_EQ(shared_terms(), shared_terms(term_list{}));
}

TEST(shared_terms, agree_with_plain_lists) {
  std::mt19937 random(1);
  const auto below = [&random](std::size_t n) { return random() % n; };
  std::vector<std::pair<shared_terms, term_list>> lists(6);
  for (int change = 0; change < 20'000; ++change) {
    auto& [shared, plain] = lists[below(lists.size())];
    const auto& [other_shared, other_plain] = lists[below(lists.size())];
    switch (below(8)) {
      case 0:
        shared = other_shared;
        plain = other_plain;
        break;
      case 1: {
        const std::size_t length = below(plain.size() + 1);
        shared = shared.beginning(length);
        plain.resize(length);
        break;
      }
      case 2:
        if (!plain.empty()) {
          const std::size_t place = below(plain.size());
          shared.replace(place, mk_integer(0));
          plain[place] = mk_integer(0);
        }
        break;
      default:
        shared.push_back(mk_integer(static_cast<int>(below(3))));
        plain.push_back(shared.back());
    }
    ASSERT_TRUE(std::equal(shared.begin(), shared.end(), plain.begin(), plain.end()));
    const auto differs = std::mismatch(plain.begin(), plain.end(), other_plain.begin(), other_plain.end());
    ASSERT_EQ(shared.common_beginning(other_shared), static_cast<std::size_t>(differs.first - plain.begin()));
  }
}

}  // namespace
}  // namespace vetro

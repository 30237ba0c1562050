// A cheap look at an application: its head and up to four arguments. For walks that test every node of a term, where
// following a left spine of any length to its end at each of its nodes would cost the square of its length.
#pragma once

#include <array>
#include <cstddef>

#include "term/ast.h"

namespace vetro {

struct application {
  static constexpr std::size_t most_args = 4;

  term_ptr head = nullptr;  // null when there are more than most_args arguments
  std::size_t count = 0;
  std::array<term_ptr, most_args> args{};  // in text order, count of them

  // The number of the head's kind; -1 for a head that is no plain leaf of an operator, a predicate or a connective.
  int head_number() const {
    if (head == nullptr || head->has_meta()) {
      return -1;
    }
    switch (head->type()) {
      case Oper:
        return head->oper();
      case Pred:
        return head->pred();
      case Connect:
        return head->connect();
      default:
        return -1;
    }
  }
};

inline application application_of(term_ptr t) {
  application result;
  std::size_t count = 0;
  term_ptr head = t;
  while (head->type() == Apply) {
    if (++count > application::most_args) {
      return result;
    }
    head = head->left();
  }
  result.head = head;
  result.count = count;
  for (term_ptr node = t; count > 0; node = node->left()) {
    result.args[--count] = node->right();
  }
  return result;
}

// The application t with other sides and its own metadata; t itself when both sides are the old ones.
inline term_ptr reapplied(term_ptr t, term_ptr left, term_ptr right) {
  return left == t->left() && right == t->right() ? t : with_meta(mk_apply(left, right), t->meta());
}

}  // namespace vetro

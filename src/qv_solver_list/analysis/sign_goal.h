// What both sign solvers make of a goal: the difference of its sides, of which the sign is asked.
#pragma once

#include "term/relation.h"

namespace vetro {

struct sign_goal {
  enum class state : unsigned char { none, proved, open };
  state known;          // none: no goal of theirs; proved: settled by constants
  pred_type pred = Eq;  // of an open goal: difference pred 0
  term_ptr difference = nullptr;
};

// A comparison without a scope whose sides are ordinary expressions.
sign_goal sign_goal_of(term_ptr target);

}  // namespace vetro

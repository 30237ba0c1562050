// The signs of expressions by the pure rules: from assumptions and constants alone, without any other solver.
#pragma once

#include <cstdint>

#include "qv_solver_list/analysis/assumed_signs.h"
#include "qv_solver_list/analysis/sign_engine.h"
#include "qv_solver_list/complex_values.h"
#include "term/node_memo.h"

namespace vetro {

// The questions about one list of assumptions, each answered once.
class pure_signs {
 public:
  explicit pure_signs(const solve_data& sdata);

  bool ask(term_ptr t, sign_question question);
  bool may_be_complex(term_ptr t) { return complex_->may_be_complex(t); }

 private:
  friend class sign_engine<pure_signs>;

  // A question was not settled because it lay too deep. The same question from a place less deep may be.
  struct remembered {
    bool answer;
    bool cut;
    int depth;
  };

  bool answer(term_ptr t, sign_question question);
  bool defined_leaf_or_form(term_ptr t);
  bool by_sum(term_ptr t, sign_question question);
  bool by_others(term_ptr /*t*/, sign_question /*question*/) { return false; }
  bool nonzero_by_others(term_ptr /*t*/) { return false; }

  assumed_signs* assumed_;
  complex_values* complex_;
  node_memo<remembered> known_;  // by question
  int depth_ = 0;
  bool cut_ = false;
};

}  // namespace vetro

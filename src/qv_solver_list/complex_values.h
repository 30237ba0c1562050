// Which expressions may stand for numbers that are not real: they have no sign, no bounds and no place in an order.
#pragma once

#include <memory>
#include <unordered_set>

#include "qv_solver_list/assumption_facts.h"
#include "term/node_memo.h"

namespace vetro {

// One table for each layer of assumptions, as table<complex_values>(). Complex are the imaginary unit, what an
// assumption puts into the set of complex numbers and not into a set of reals, what an assumption equates with
// something complex, and every expression around one of these. A magnitude is real.
class complex_values {
 public:
  explicit complex_values(assumption_facts& facts);

  bool may_be_complex(term_ptr t);

 private:
  bool holds_complex(term_ptr t);
  bool is_named(term_ptr t) const;
  void spread();
  void name_complex(term_ptr t);
  void name_unless_real(term_ptr name);
  void name_inside(term_ptr statement);
  void name_operands(term_ptr t);

  assumption_facts* facts_;
  std::unordered_set<term_ptr> named_;  // bare
  bool sets_may_be_complex_ = false;    // some set with a name of its own may hold complex numbers
  std::uint64_t names_ = 0;             // bits of the names in them
  node_memo<bool> known_;
};

}  // namespace vetro

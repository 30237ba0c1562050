// Equality of expressions by their rational normal form.
//
// The test is algebraic: no domain is looked at, x/x is 1, and two quotients by zero are equal. Beyond that it is
// exact. It proves nothing from an exhausted budget; what expression_reader.h keeps whole is equal to itself alone.
#pragma once

#include <memory>

#include "term/ast.h"

namespace vetro {

class rational_forms;

// True only if both terms have the same rational normal form. Null terms give false.
bool poly_rat_eqb(term_ptr a, term_ptr b);

// Many such tests: what was read for one serves the next, so that comparing all parts of two terms costs their size.
class poly_rat_comparisons {
 public:
  poly_rat_comparisons();
  ~poly_rat_comparisons();
  bool equal(term_ptr a, term_ptr b);
  // Equal, and defined at the same places: x/x is not 1.
  bool equal_everywhere(term_ptr a, term_ptr b);

 private:
  std::unique_ptr<rational_forms> forms_;
};

}  // namespace vetro

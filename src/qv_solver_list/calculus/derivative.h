// Symbolic derivatives with respect to a variable, by a table of rules.
#pragma once

#include <cstdint>
#include <vector>

#include "term/ast.h"
#include "term/node_memo.h"

namespace vetro {

// A place where a rule divides by a root of `radicand`, which has the derivative `slope` there. Where both are 0 the
// rule's quotient is 0/0 and tells nothing: cbrt(x^3) has the derivative 1 at 0.
struct branch_point {
  term_ptr radicand;
  term_ptr slope;
};

// Derivatives of terms with respect to one variable. The derivative of a subterm is computed once, so that the work is
// linear in the distinct subterms; a product of 200 factors costs no more than its text.
class differentiator {
 public:
  explicit differentiator(term_ptr var);  // a Var

  // The derivative of t, lightly simplified. It holds wherever the formula has a value: domains are not looked at, and
  // parameters that a `fun` restricts to integers are differentiated like real ones. Null where no rule applies, for
  // terms without a single finite value, and beyond the work budget.
  term_ptr of(term_ptr t);

  // The same applied order times; null for an order below 1.
  term_ptr nth(term_ptr t, std::int32_t order);

  // Of all derivatives computed so far.
  const std::vector<branch_point>& branch_points() const { return branch_points_; }

 private:
  bool depends(term_ptr t);
  bool depends_inside(term_ptr t);
  term_ptr derive(term_ptr t);
  term_ptr derive_new(term_ptr t);
  term_ptr derive_unary(oper_type oper, term_ptr u);
  term_ptr derive_binary(oper_type oper, term_ptr l, term_ptr r);
  term_ptr derive_power(term_ptr b, term_ptr e);
  term_ptr derive_root(term_ptr index, term_ptr radicand);
  term_ptr derive_function_value(const spine& value);

  term_ptr var_;
  node_memo<bool> depends_;
  node_memo<term_ptr> known_;
  std::vector<branch_point> branch_points_;
  std::uint64_t work_ = 0;
};

// The derivative of t with respect to the Var.
term_ptr derivative(term_ptr t, term_ptr var);

// FunDeri(f, index, order, ...) taken apart: the function, which parameter (from 1 on), how often, and the point, which
// is empty where the derived function itself is named. Nothing for another term, and where index or order is no integer
// constant or below 1.
struct function_derivative {
  term_ptr function;
  std::int32_t index;
  std::int32_t order;
  term_list point;
};
bool as_function_derivative(const spine& applied, function_derivative& out);

}  // namespace vetro

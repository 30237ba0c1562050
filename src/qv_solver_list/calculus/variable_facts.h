// What is shown of expressions for all values that a variable may take.
#pragma once

#include "qv_solver_list/calculus/derivative.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/univariate.h"

namespace vetro {

// The assumptions with the conjuncts of a condition behind them, memberships also as comparisons, and each also with
// its numeric parts worked out: solvers look for facts in that form, too.
solve_data under_condition(const solve_data& sdata, term_span conjuncts);

// Under one list of assumptions, which may speak of the variable. Beyond what the side solvers show, cosh and sech are
// positive, polynomials without real roots keep their sign, and t + (t^2 + c)^(1/2) is positive for positive c.
class variable_facts {
 public:
  // sdata is borrowed and must outlive the record.
  variable_facts(const solve_data& sdata, term_ptr var);

  bool moves(term_ptr t) const;  // the variable occurs in t

  bool defined(term_ptr t);
  bool nonzero(term_ptr t);
  bool positive(term_ptr t);
  bool nonpositive(term_ptr t);
  // Whenever `given` is negative, `asked` is.
  bool negative_with(term_ptr asked, term_ptr given);
  // t is positive everywhere or nowhere, whichever of the two the values of other names make it.
  bool keeps_sign(term_ptr t);
  // t is nowhere negative or nowhere positive, whichever of the two the values of other names make it.
  bool has_one_sign(term_ptr t);
  // A linear or quadratic expression that changes its sign at each zero, unless it is 0 everywhere.
  bool has_simple_zeros(term_ptr t);
  // A polynomial that changes its sign at each zero, but for special values of the other names.
  bool has_simple_zeros_mostly(term_ptr t);

  domain_prover& facts() { return facts_; }
  differentiator& derivatives() { return by_var_; }  // with respect to the variable

 private:
  // A polynomial of degree 2 at most: its value and its slope at 0, and its second derivative.
  struct quadratic {
    term_ptr constant;
    term_ptr slope;
    term_ptr bend;

    // The discriminant is square - product: negative where the polynomial has no root, positive where its roots are
    // simple.
    term_ptr square() const;
    term_ptr product() const;
    term_ptr discriminant() const;
  };

  template <class Test>
  bool each_factor(term_ptr t, Test test) const;
  bool has_no_root(term_ptr t);
  bool has_no_root(const quadratic& q);
  std::optional<quadratic> as_quadratic(term_ptr t);
  bool exceeds_by_root(term_ptr t);
  term_ptr at_zero(term_ptr t) const;

  const solve_data& sdata_;
  term_ptr var_;
  domain_prover facts_;
  differentiator by_var_;
  univariate_reader polynomials_;
};

}  // namespace vetro

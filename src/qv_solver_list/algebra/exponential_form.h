// Trigonometric, hyperbolic and exponential functions as powers of e and of e^i, for which calculation knows laws.
#pragma once

#include <memory>

#include "qv_solver_list/algebra/root_form.h"
#include "term/ast.h"

namespace vetro {

// t with hyperbolic functions and their inverses written by powers of e and by logarithms, and powers with an exponent
// that is no number as powers of e or of one base. What is used holds wherever both sides are defined:
//   a^b = e^(b * ln(a))       for a known not to be negative; for every a where ln(a) stands in the exponent of e
//   arcsinh(u) = ln(u + (u^2 + 1)^(1/2)), and alike
term_ptr exponential_form(term_ptr t, root_normalizer& normalizer);

// Functions of angles by z = e^(i * x): sin(x) is (z - 1/z) / (2 * i), so that sin(x)^2 + cos(x)^2 = 1 is an identity
// of rational functions. i is (-1)^(1/2) and e^i a constant of its own. What is written so is for the comparison as
// rational expressions alone, whose laws hold for complex numbers too.
class circular_form {
 public:
  circular_form();
  ~circular_form();
  circular_form(const circular_form&) = delete;
  circular_form& operator=(const circular_form&) = delete;

  // t with sin, cos, tan, cot, sec and csc rewritten. Multiples of π are powers of -1, and those of π/12 roots.
  term_ptr of(term_ptr t);

  // e^(i * angle).
  term_ptr turned(term_ptr angle);

  // A number other than zero by which a sum of powers of -1 may have to be multiplied to show that it is zero, as
  // 1 - z + z^2 for z = (-1)^(1/3) times 1 + z. Null where no such powers were written.
  term_ptr cofactor() const;

 private:
  class writer;
  std::unique_ptr<writer> writer_;
};

}  // namespace vetro

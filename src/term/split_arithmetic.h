// Sums and products taken apart: the summands with their signs, the factors of numerator and denominator.
#pragma once

#include <vector>

#include "term/ast.h"

namespace vetro {

struct signed_term {
  term_ptr t;
  bool negative;
};

// What is opened beside a + b and a - b.
struct sum_forms {
  bool negation = true;  // -a
};

// The summands of t from left to right; t itself when it is no sum. A node with a scope or with bound variables is one
// summand, and so are the parts that are left when more than limits::arithmetic_parts have been opened.
std::vector<signed_term> summands(term_ptr t, sum_forms forms = {});

// What is opened beside a * b.
struct product_forms {
  bool quotients = true;  // a / b, frac(a, b)
  bool negation = true;   // -a, as the sign of the whole
};

struct quotient_parts {
  term_list num;
  term_list den;
  bool negative = false;
};

// The factors of t from left to right, as above; ({t}, {}) when it is no product.
quotient_parts factors(term_ptr t, product_forms forms = {});

}  // namespace vetro

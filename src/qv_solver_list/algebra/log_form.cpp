// The argument of a logarithm is read as a product of powers, like a product with roots.
#include "qv_solver_list/algebra/log_form.h"

#include "qv_solver_list/number_reading.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

term_ptr times(const exact& factor, term_ptr t) {
  return factor.is_one() ? t : make_binOp_term(Mult, number_of_any_size(factor), t);
}

class log_writer {
 public:
  explicit log_writer(root_normalizer& normalizer) : normalizer_(normalizer) {}

  term_ptr write(term_ptr t) {
    if ((t->type() != Apply && t->type() != TermList) || t->has_meta()) {
      return t;
    }
    return known_.get(t, [&] { return write_node(t); });
  }

 private:
  term_ptr write_node(term_ptr t) {
    const auto view = composed_term_split(t);
    if (view && view->t2 == nullptr && (view->oper == Ln || view->oper == Lg)) {
      const term_ptr ln = logarithm(write(view->t1));
      return view->oper == Ln ? ln : make_binOp_term(Div, ln, logarithm(mk_integer(10)));
    }
    if (view && view->t2 != nullptr && view->oper == Log) {
      const auto number = evaluate(view->t1, {.powers = true});
      if (number && (number->sign() <= 0 || number->is_one())) {
        return t;
      }
      const term_ptr base = logarithm(write(view->t1));
      const term_ptr value = logarithm(write(view->t2));
      return make_binOp_term(Div, value, base);
    }
    if (!stands_for_its_value(t)) {
      return t;
    }
    return map_children(t, walk_apply | walk_elements | keep_meta, [this](term_ptr part) { return write(part); });
  }

  // ln(a), for a whose own logarithms are written already.
  term_ptr logarithm(term_ptr a) {
    const auto product = normalizer_.powers_of(a);
    if (!product || product->zero_above || product->zero_below || product->coefficient.sign() < 0) {
      return make_unOp_term(Ln, a);
    }
    term_list summands;
    for (const auto& [prime, exponent] : product->primes) {
      summands.push_back(times(exponent, make_unOp_term(Ln, number_of_any_size(exact(prime)))));
    }
    for (const auto& [prime, exponent] : prime_exponents(product->coefficient)) {
      summands.push_back(times(exponent, make_unOp_term(Ln, number_of_any_size(prime))));
    }
    std::vector<power_factor> open;  // of unknown sign; their product is positive
    for (const power_factor& factor : product->factors) {
      const bool even = (factor.exponent.numerator() / exact(2)).is_integer();
      const auto power = factor.base->has_meta() ? std::nullopt : composed_term_split(factor.base);
      const bool raised = power && power->oper == Power && power->t2 != nullptr;
      if (raised && is_constant(power->t1, E)) {
        summands.push_back(times(factor.exponent, power->t2));
      } else if (raised && normalizer_.nonnegative(power->t1)) {
        summands.push_back(times(factor.exponent, make_binOp_term(Mult, power->t2, logarithm(power->t1))));
      } else if (is_constant(factor.base, E)) {
        summands.push_back(number_of_any_size(factor.exponent));
      } else if (normalizer_.nonnegative(factor.base)) {
        summands.push_back(times(factor.exponent, make_unOp_term(Ln, factor.base)));
      } else if (even) {
        const term_ptr size = make_unOp_term(Abs, factor.base);
        summands.push_back(times(factor.exponent, make_unOp_term(Ln, size)));
      } else {
        open.push_back(factor);
      }
    }
    if (open.size() == 1) {
      summands.push_back(times(open[0].exponent, make_unOp_term(Ln, open[0].base)));
    } else if (!open.empty()) {
      summands.push_back(make_unOp_term(Ln, product_of(open)));
    }
    return sum_of(summands);
  }

  static term_ptr product_of(const std::vector<power_factor>& factors) {
    term_ptr product = nullptr;
    for (const auto& [base, exponent] : factors) {
      const term_ptr power = exponent.is_one() ? base : make_binOp_term(Power, base, number_of_any_size(exponent));
      product = product == nullptr ? power : make_binOp_term(Mult, product, power);
    }
    return product;
  }

  static term_ptr sum_of(const term_list& summands) {
    term_ptr sum = nullptr;
    for (term_ptr part : summands) {
      sum = sum == nullptr ? part : make_binOp_term(Plus, sum, part);
    }
    return sum == nullptr ? mk_integer(0) : sum;
  }

  root_normalizer& normalizer_;
  node_memo<term_ptr> known_;
};

}  // namespace

term_ptr log_form(term_ptr t, root_normalizer& normalizer) {
  return t == nullptr ? nullptr : log_writer(normalizer).write(t);
}

}  // namespace vetro

// What the tests of the term operations share: more short forms, deep terms, and terms that are large only as trees.
#pragma once

#include <string>

#include "support/build_terms.h"
#include "term/state.h"

namespace vetro::build {

inline constexpr int deep_levels = 300'000;

inline term_ptr plus(term_ptr a, term_ptr b) { return app(Plus, {a, b}); }
inline term_ptr gt(term_ptr a, term_ptr b) { return app(Gt, {a, b}); }
inline term_ptr conj(term_ptr a, term_ptr b) { return app(And, {a, b}); }
inline term_ptr forall(std::initializer_list<term_ptr> vars, term_ptr body) { return quant(Forall, vars, body); }
inline term_ptr lambda(std::initializer_list<term_ptr> vars, term_ptr body, term_ptr condition = nullptr) {
  return mk_lambda(term_span(vars.begin(), vars.size()), {}, condition, body);
}

// sum_{index = 1}^{n}(body) with its binder.
inline term_ptr sum(term_ptr index, term_ptr body) {
  return with_binders(app(BigSumSup, {app(Eq, {index, num(1)}), var("n"), body}), {index});
}

// -(-(...leaf)) of that many levels.
inline term_ptr tower(term_ptr leaf, int levels = deep_levels) {
  const term_ptr neg = mk_oper(Neg);
  for (int i = 0; i < levels; ++i) {
    leaf = mk_apply(neg, leaf);
  }
  return leaf;
}

// leaf(1)(1)...(1) with that many arguments.
inline term_ptr left_spine(term_ptr head, int levels = deep_levels) {
  const term_ptr one = num(1);
  for (int i = 0; i < levels; ++i) {
    head = mk_apply(head, one);
  }
  return head;
}

// f(t, t) nested: a few nodes, 2^levels leaves.
inline term_ptr doubled(term_ptr leaf, int levels = 60) {
  for (int i = 0; i < levels; ++i) {
    leaf = plus(leaf, leaf);
  }
  return leaf;
}

}  // namespace vetro::build

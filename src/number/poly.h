// Sparse generalized polynomials: sums of rational multiples of products of keys with rational exponents.
//
// A key stands for something that the caller cannot expand, or for a root or symbolic power of it. Keys and monomials
// are numbered in a registry (poly_data) in the order in which they are first met, and polynomials of one registry are
// compared and merged by these numbers. Two polynomials are equal exactly when their lists are.
//
// A result that overflows 64 bits, or whose computation would pass the registry's budget, is the not-a-number
// polynomial; it takes every result that it enters with it, except that zero times it is zero and its power 0 is one.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "number/cnum.h"

namespace vetro {

enum factor_kind : std::uint8_t {
  F_ATOM = 0,      // an opaque value; its power with a rational exponent is its exponent here
  F_POW = 1,       // a base that has a form of its own, under a fractional exponent
  F_SYMBOLIC = 2,  // a base under an exponent that is no number
};

struct factor {
  std::int32_t key;  // from 1 on
  cnum exp;          // finite, not zero
  bool operator==(const factor&) const = default;
};

using monomial_id = std::uint32_t;  // 0 is the empty product
using key_words = std::vector<std::uint64_t>;

struct poly_term {
  monomial_id monomial;
  cnum coef;  // not zero
  bool operator==(const poly_term&) const = default;
};

// Sorted by monomial, each monomial once; the constant term comes first. Zero is the empty list, not-a-number the one
// constant term with that coefficient.
using poly = std::vector<poly_term>;

// The registry of one comparison.
class poly_data {
 public:
  explicit poly_data(std::uint64_t budget);

  // The key's number; the same words and kind always give the same number.
  std::int32_t intern_key(factor_kind kind, const key_words& words);
  factor_kind kind_of(std::int32_t key) const { return kinds_[static_cast<std::size_t>(key)]; }

  // Factors must be sorted by key, each once.
  monomial_id intern_monomial(std::span<const factor> factors);
  // Valid until the next monomial is interned.
  std::span<const factor> factors(monomial_id m) const;
  // Some F_POW key stands in it with an exponent outside of [0, 1).
  bool has_whole_root(monomial_id m) const { return monomials_[m].whole_root; }

  // Nothing when an exponent overflows.
  std::optional<monomial_id> multiply(monomial_id a, monomial_id b);
  std::optional<monomial_id> power(monomial_id m, const cnum& exponent);

  // Counts work; false once the budget is used up.
  bool charge(std::uint64_t work);
  bool exhausted() const { return work_ > budget_; }

  // For sums: a slot for each monomial, all empty between operations. See poly.cpp.
  std::vector<std::uint32_t>& slots() { return slots_; }

 private:
  struct monomial {
    std::uint32_t begin;
    std::uint32_t count;
    bool whole_root;
  };
  struct words_hash {
    std::size_t operator()(const key_words& words) const;
  };
  void grow_table();

  std::uint64_t budget_;
  std::uint64_t work_ = 0;
  std::unordered_map<key_words, std::int32_t, words_hash> keys_;
  std::vector<factor_kind> kinds_{F_ATOM};  // key 0 is never issued
  std::vector<factor> pool_;                // the factors of all monomials
  std::vector<monomial> monomials_{{0, 0, false}};
  std::vector<monomial_id> table_;  // open addressing, 0 is free
  std::vector<factor> scratch_;
  std::vector<std::uint32_t> slots_;
};

poly poly_nan();
bool poly_is_nan(const poly& p);
poly poly_const(const cnum& c);
poly poly_monomial(monomial_id m, const cnum& coef);
poly poly_atom(poly_data& pdata, std::int32_t key, const cnum& exp);

poly poly_add(poly_data& pdata, const poly& a, const poly& b);
poly poly_sub(poly_data& pdata, const poly& a, const poly& b);
poly poly_mul(poly_data& pdata, const poly& a, const poly& b);
poly poly_neg(const poly& a);
poly poly_scale(poly_data& pdata, const poly& a, monomial_id m, const cnum& coef);
poly poly_pow_int(poly_data& pdata, const poly& a, std::uint64_t k);  // exponent 0 gives 1 for every base

// A summand of poly_sum.
struct signed_poly {
  const poly* p;
  bool negative;
};
poly poly_sum(poly_data& pdata, std::span<const signed_poly> summands);

// True if both are the same list and no not-a-number takes part.
bool poly_eq(const poly& a, const poly& b);
bool poly_is_const(const poly& p, cnum* out);  // out may be null
bool poly_is_one(const poly& p);

// Terms in the lexicographic order of their factors (kind, key, exponent), each with its coefficient: 1/2+3*A1^(2).
std::string poly_to_string(const poly_data& pdata, const poly& p);

}  // namespace vetro

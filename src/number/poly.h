// Sparse generalized polynomials: sums of rational multiples of products of keys with rational exponents.
//
// A key stands for something that the caller cannot expand, or for a root or symbolic power of it. Keys and monomials
// are numbered in a registry (poly_data) in the order in which they are first met, and polynomials of one registry are
// compared and merged by these numbers. Two polynomials are equal exactly when their lists are.
//
// A result that is beyond the limit of exact numbers, whose exponents leave 64 bits, or whose computation would pass
// the budget, is the not-a-number polynomial; it takes every result that it enters with it, except that zero times it
// is zero and its power 0 is one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "number/budget.h"
#include "number/cnum.h"
#include "number/exact.h"

namespace vetro {

enum class factor_kind : std::uint8_t {
  F_ATOM = 0,      // an opaque value; its power with a rational exponent is its exponent here
  F_POW = 1,       // a base that has a form of its own, under a fractional exponent
  F_SYMBOLIC = 2,  // a base under an exponent that is no number
};
using enum factor_kind;

struct factor {
  std::int32_t key;  // from 1 on
  cnum exp;          // finite, not zero
  bool operator==(const factor&) const = default;
};

// A factor in eight bytes. The exponent is twice a whole number, or an odd number that tells its place in a list.
struct packed_factor {
  std::int32_t key;
  std::int32_t exp;
  bool operator==(const packed_factor&) const = default;
};

// The factors of a monomial, unpacked one by one as they are looked at.
class factor_view {
 public:
  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::random_access_iterator_tag;
    using value_type = factor;
    using difference_type = std::ptrdiff_t;
    using pointer = const factor*;
    using reference = factor;

    iterator(const packed_factor* at, const std::vector<cnum>* exponents) : at_(at), exponents_(exponents) {}
    factor operator*() const {
      return {at_->key, (at_->exp & 1) == 0 ? cnum_from_int(at_->exp / 2)
                                            : (*exponents_)[static_cast<std::size_t>(at_->exp / 2)]};
    }
    iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator==(const iterator& other) const { return at_ == other.at_; }

   private:
    const packed_factor* at_;
    const std::vector<cnum>* exponents_;
  };

  factor_view(std::span<const packed_factor> packed, const std::vector<cnum>& exponents)
      : packed_(packed), exponents_(&exponents) {}
  iterator begin() const { return {packed_.data(), exponents_}; }
  iterator end() const { return {packed_.data() + packed_.size(), exponents_}; }
  std::size_t size() const { return packed_.size(); }
  bool empty() const { return packed_.empty(); }
  factor front() const { return *begin(); }

 private:
  std::span<const packed_factor> packed_;
  const std::vector<cnum>* exponents_;
};

using monomial_id = std::uint32_t;  // 0 is the empty product
using key_words = std::vector<std::uint64_t>;

struct poly_term {
  monomial_id monomial;
  exact coef;  // not zero
  bool operator==(const poly_term&) const = default;
};

// Sorted by monomial, each monomial once; the constant term comes first. Zero is the empty list, not-a-number the one
// constant term with a coefficient beyond.
using poly = std::vector<poly_term>;

// The registry of one comparison or of one caller's table.
class poly_data {
 public:
  explicit poly_data(budget& work) : work_(&work), table_(256, table_slot{0, 0}) {}

  // What follows is charged to this budget, which must live until the next one is given.
  void charge_to(budget& work) { work_ = &work; }
  bool charge(std::uint64_t work) { return work_->charge(work); }
  bool exhausted() const { return work_->exhausted(); }

  // The key's number; the same words and kind always give the same number.
  std::int32_t intern_key(factor_kind kind, const key_words& words);
  factor_kind kind_of(std::int32_t key) const { return kinds_[static_cast<std::size_t>(key)]; }

  // Factors must be sorted by key, each once.
  monomial_id intern_monomial(std::span<const factor> factors);
  // Valid until the next monomial is interned.
  factor_view factors(monomial_id m) const { return {packed(m), exponents_}; }
  // Some F_POW key stands in it with an exponent outside of [0, 1).
  bool has_whole_root(monomial_id m) const { return monomials_[m].whole_root; }
  // Some F_POW key stands in it.
  bool has_root(monomial_id m) const { return monomials_[m].root; }

  // Nothing when an exponent overflows.
  std::optional<monomial_id> multiply(monomial_id a, monomial_id b);
  std::optional<monomial_id> product(std::span<const monomial_id> list);
  std::optional<monomial_id> power(monomial_id m, const cnum& exponent);

 private:
  friend class poly_sum;
  struct monomial {
    std::uint32_t begin;
    std::uint32_t count : 30;
    bool root : 1;
    bool whole_root : 1;
  };
  // Of the table of monomials. A free slot has the monomial 0, which is not in the table.
  struct table_slot {
    monomial_id m;
    std::uint32_t hash;
  };
  struct words_hash {
    std::size_t operator()(const key_words& words) const;
  };
  struct exponent_hash {
    std::size_t operator()(const cnum& exponent) const;
  };
  std::span<const packed_factor> packed(monomial_id m) const {
    return {pool_.data() + monomials_[m].begin, monomials_[m].count};
  }
  std::int32_t pack(const cnum& exponent);
  cnum unpack(std::int32_t exponent) const;
  bool add_exponent(packed_factor& sum, std::int32_t exponent);
  monomial_id intern_packed(std::span<const packed_factor> factors);
  void grow_table();

  budget* work_;
  std::unordered_map<key_words, std::int32_t, words_hash> keys_;
  std::vector<factor_kind> kinds_{F_ATOM};  // key 0 is never issued
  std::vector<packed_factor> pool_;         // the factors of all monomials
  std::vector<monomial> monomials_{{0, 0, false, false}};
  std::vector<table_slot> table_;  // open addressing
  std::vector<cnum> exponents_;    // those that are not whole, and great ones
  std::unordered_map<cnum, std::int32_t, exponent_hash> exponent_places_;
  std::vector<packed_factor> scratch_;
  std::vector<std::uint32_t> slots_;  // for poly_sum: one for each monomial, all empty between sums
};

// Puts the terms of a sum in their order.
void poly_sort(poly& p);

poly poly_nan();
bool poly_is_nan(const poly& p);
poly poly_const(const exact& c);
poly poly_monomial(monomial_id m, const exact& coef);
poly poly_atom(poly_data& pdata, std::int32_t key, const cnum& exp);

// A sum in the making. One at a time for each registry.
class poly_sum {
 public:
  explicit poly_sum(poly_data& pdata) : pdata_(pdata), slots_(pdata.slots_) {}
  poly_sum(const poly_sum&) = delete;
  poly_sum& operator=(const poly_sum&) = delete;
  ~poly_sum() { clear_slots(); }

  void add(monomial_id m, const exact& coef);
  void add(const poly& p);
  // coef * m * p.
  void add(const poly& p, monomial_id m, const exact& coef);
  void fail() { failed_ = true; }
  bool failed() const { return failed_; }
  poly take();

 private:
  void clear_slots();

  poly_data& pdata_;
  std::vector<std::uint32_t>& slots_;  // 1 + the position of each monomial's term, 0 where there is none
  poly terms_;
  bool failed_ = false;
};

poly poly_add(poly_data& pdata, const poly& a, const poly& b);
poly poly_sub(poly_data& pdata, const poly& a, const poly& b);
poly poly_mul(poly_data& pdata, const poly& a, const poly& b);
poly poly_neg(const poly& a);
poly poly_scale(poly_data& pdata, const poly& a, monomial_id m, const exact& coef);
poly poly_pow_int(poly_data& pdata, const poly& a, std::uint64_t k);  // exponent 0 gives 1 for every base

struct poly_power {
  const poly* base;
  std::uint64_t exp;
};
// The product of powers, multiplied out. poly_product.cpp
poly poly_product(poly_data& pdata, std::span<const poly_power> powers);

// True if both are the same list and no not-a-number takes part.
bool poly_eq(const poly& a, const poly& b);
bool poly_is_const(const poly& p, exact* out);  // out may be null
bool poly_is_one(const poly& p);

// Terms in the lexicographic order of their factors (kind, key, exponent), each with its coefficient: 1/2+3*A1^(2).
std::string poly_to_string(const poly_data& pdata, const poly& p);

}  // namespace vetro

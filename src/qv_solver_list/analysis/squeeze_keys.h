// Canonical keys of expressions: equal for expressions that differ only in the order and grouping of products, in
// factors 1, and in the names of bound variables. Keys are numbers, told apart by structure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "term/ast.h"
#include "term/compare.h"
#include "term/node_memo.h"

namespace vetro {

class squeeze_keys {
 public:
  using key_id = std::uint32_t;
  static constexpr key_id zero = 0;
  static constexpr key_id one = 1;

  squeeze_keys();

  key_id of(term_ptr t);
  key_id product(key_id a, key_id b);
  // The factors of a product, sorted, none of which is one; k itself for any other key but one, which has none.
  std::span<const key_id> parts(key_id k) const { return {part_pool_.data() + keys_[k].begin, keys_[k].count}; }
  // k without the parts f and g, which it has; g may be one. Nothing when no expression had that key so far.
  std::optional<key_id> without(key_id k, key_id f, key_id g) const;

  bool is_product(key_id k) const { return keys_[k].count > 1; }
  bool is_quotient(key_id k) const { return keys_[k].quotient; }

 private:
  struct key {
    std::uint32_t begin;  // of its parts
    std::uint32_t count;
    std::uint64_t hash;  // the sum of the hashes of its parts
    bool quotient;
  };
  struct compound {
    oper_type oper;
    key_id a;
    key_id b;  // or one operand
    bool operator==(const compound&) const = default;
  };
  struct compound_hasher {
    std::size_t operator()(const compound& c) const;
  };
  static constexpr key_id no_operand = UINT32_MAX;

  key_id of_new(term_ptr t);
  key_id of_compound(oper_type oper, key_id a, key_id b);
  key_id add_single(bool quotient);

  std::vector<key> keys_;
  std::vector<key_id> part_pool_;
  node_memo<key_id> known_;
  std::unordered_map<term_ptr, key_id, alpha_hasher, alpha_equal> opaque_;
  std::unordered_map<compound, key_id, compound_hasher> compounds_;
  std::unordered_multimap<std::uint64_t, key_id> products_;  // by hash
};

}  // namespace vetro

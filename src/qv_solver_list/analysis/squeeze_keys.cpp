// Products are found by the sum of their parts' hashes, so that a product without some factors is looked up without
// being built; what is found is compared part by part.
#include "qv_solver_list/analysis/squeeze_keys.h"

#include <algorithm>
#include <numeric>

#include "term/term_split_combine.h"

namespace vetro {
namespace {

using key_id = squeeze_keys::key_id;

std::uint64_t hash_of_part(key_id k) {
  std::uint64_t hash = k * 0x9e3779b97f4a7c15ULL + 0x632be59bd9b4e019ULL;
  hash = (hash ^ hash >> 30U) * 0xbf58476d1ce4e5b9ULL;
  return hash ^ hash >> 27U;
}

// all without one f and one g (g may be one), against rest; both sorted.
bool is_rest(std::span<const key_id> all, key_id f, key_id g, std::span<const key_id> rest) {
  auto next = rest.begin();
  for (const key_id part : all) {
    if (part == f) {
      f = squeeze_keys::one;
    } else if (part == g) {
      g = squeeze_keys::one;
    } else if (next == rest.end() || *next++ != part) {
      return false;
    }
  }
  return next == rest.end();
}

}  // namespace

std::size_t squeeze_keys::compound_hasher::operator()(const compound& c) const {
  const std::uint64_t operands = (std::uint64_t{c.a} << 32U | c.b) ^ static_cast<std::uint64_t>(c.oper) << 24U;
  return static_cast<std::size_t>((operands ^ operands >> 29U) * 0x9e3779b97f4a7c15ULL);
}

squeeze_keys::squeeze_keys() {
  add_single(false);
  keys_.push_back({0, 0, 0, false});
}

key_id squeeze_keys::add_single(bool quotient) {
  const auto id = static_cast<key_id>(keys_.size());
  keys_.push_back({static_cast<std::uint32_t>(part_pool_.size()), 1, hash_of_part(id), quotient});
  part_pool_.push_back(id);
  return id;
}

key_id squeeze_keys::of(term_ptr t) {
  return known_.get(t, [&] { return of_new(t); });
}

// What binds variables, or carries a scope, is compared as a whole.
key_id squeeze_keys::of_new(term_ptr t) {
  if (is_integer(t, 0) || is_integer(t, 1)) {
    return is_integer(t, 0) ? zero : one;
  }
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  if (!view) {
    const auto found = opaque_.find(t);
    return found != opaque_.end() ? found->second : opaque_.emplace(t, add_single(false)).first->second;
  }
  const key_id a = of(view->t1);
  if (view->t2 == nullptr) {
    return of_compound(view->oper, a, no_operand);
  }
  const key_id b = of(view->t2);
  return view->oper == Mult ? product(a, b) : of_compound(view->oper == Frac ? Div : view->oper, a, b);
}

key_id squeeze_keys::of_compound(oper_type oper, key_id a, key_id b) {
  const compound c{oper, a, b};
  const auto found = compounds_.find(c);
  return found != compounds_.end() ? found->second : compounds_.emplace(c, add_single(oper == Div)).first->second;
}

key_id squeeze_keys::product(key_id a, key_id b) {
  if (a == zero || b == zero) {
    return zero;
  }
  if (a == one || b == one) {
    return a == one ? b : a;
  }
  std::vector<key_id> all(keys_[a].count + keys_[b].count);
  std::ranges::merge(parts(a), parts(b), all.begin());
  const std::uint64_t hash = keys_[a].hash + keys_[b].hash;
  const auto [first, last] = products_.equal_range(hash);
  for (auto entry = first; entry != last; ++entry) {
    if (std::ranges::equal(parts(entry->second), all)) {
      return entry->second;
    }
  }
  const auto id = static_cast<key_id>(keys_.size());
  keys_.push_back({static_cast<std::uint32_t>(part_pool_.size()), static_cast<std::uint32_t>(all.size()), hash, false});
  part_pool_.insert(part_pool_.end(), all.begin(), all.end());
  products_.emplace(hash, id);
  return id;
}

std::optional<key_id> squeeze_keys::without(key_id k, key_id f, key_id g) const {
  const std::span<const key_id> all = parts(k);
  const std::size_t left = all.size() - (g == one ? 1 : 2);
  if (left == 0) {
    return one;
  }
  if (left == 1) {  // the sum of all numbers less those taken away is the number that is left
    key_id rest = std::accumulate(all.begin(), all.end(), key_id{0});
    rest -= f;
    rest -= g == one ? 0 : g;
    return rest;
  }
  const std::uint64_t hash = keys_[k].hash - hash_of_part(f) - (g == one ? 0 : hash_of_part(g));
  const auto [first, last] = products_.equal_range(hash);
  for (auto entry = first; entry != last; ++entry) {
    if (is_rest(all, f, g, parts(entry->second))) {
      return entry->second;
    }
  }
  return std::nullopt;
}

}  // namespace vetro

// Sturm's theorem on the whole line: the number of different real roots is the difference between the changes of sign
// in the chain p, p', and the negated remainders of division, taken at -∞ and at +∞. The last of the chain is the
// greatest common divisor of p and p'.
#include "number/real_roots.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace vetro {
namespace {

dense_polynomial slope_of(const dense_polynomial& p) {
  dense_polynomial out;
  for (std::size_t i = 1; i < p.size(); ++i) {
    out.push_back(p[i] * exact(static_cast<std::int64_t>(i)));
  }
  return out;
}

// The remainder of a by b, negated, with a leading coefficient of 1 or -1: positive factors change no sign.
std::optional<dense_polynomial> next_of_chain(dense_polynomial a, const dense_polynomial& b, budget& work) {
  while (a.size() >= b.size()) {
    const exact factor = a.back() / b.back();
    const std::size_t shift = a.size() - b.size();
    a.pop_back();
    for (std::size_t i = 0; i + 1 < b.size(); ++i) {
      a[i + shift] -= factor * b[i];
      if (!a[i + shift].is_known() || !work.charge(a[i + shift].limbs())) {
        return std::nullopt;
      }
    }
    while (!a.empty() && a.back().is_zero()) {
      a.pop_back();
    }
  }
  if (!a.empty()) {
    const exact scale = a.back().sign() > 0 ? a.back() : -a.back();
    for (exact& coefficient : a) {
      coefficient = -(coefficient / scale);
    }
  }
  return a;
}

int sign_at_infinity(const dense_polynomial& p, bool negative) {
  const bool flips = negative && p.size() % 2 == 0;
  return flips ? -p.back().sign() : p.back().sign();
}

int changes_of_sign(const std::vector<dense_polynomial>& chain, bool negative) {
  int changes = 0;
  for (std::size_t i = 1; i < chain.size(); ++i) {
    changes += sign_at_infinity(chain[i - 1], negative) != sign_at_infinity(chain[i], negative) ? 1 : 0;
  }
  return changes;
}

std::optional<std::vector<dense_polynomial>> chain_of(const dense_polynomial& p, budget& work) {
  std::vector<dense_polynomial> chain{p, slope_of(p)};
  while (!chain.back().empty()) {
    auto next = next_of_chain(chain[chain.size() - 2], chain.back(), work);
    if (!next) {
      return std::nullopt;
    }
    chain.push_back(*std::move(next));
  }
  chain.pop_back();
  return chain;
}

}  // namespace

std::optional<bool> has_real_root(const dense_polynomial& p, budget& work) {
  if (p.empty() || p.size() % 2 == 0) {  // zero, or an odd degree
    return true;
  }
  const auto chain = chain_of(p, work);
  return chain ? std::optional(changes_of_sign(*chain, true) != changes_of_sign(*chain, false)) : std::nullopt;
}

std::optional<bool> has_multiple_root(const dense_polynomial& p, budget& work) {
  if (p.empty()) {
    return true;
  }
  const auto chain = chain_of(p, work);
  return chain ? std::optional(chain->back().size() > 1) : std::nullopt;
}

}  // namespace vetro

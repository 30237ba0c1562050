// The search goes from both ends at once and ends as soon as one of them has nothing more to offer, so that assumptions
// about other expressions cost nothing. Zero is the meeting point of all signs: a path that comes through it is found
// from both ends, and it is left only to look for 0 < ... ≤ 0, when nothing but strictness is missing.
#include "qv_solver_list/analysis/squeeze_search.h"

#include <algorithm>
#include <iterator>

namespace vetro {

squeeze_search::level squeeze_search::side::of(key_id k) const {
  const auto found = levels.find(k);
  return found == levels.end() ? unreached : found->second;
}

bool squeeze_search::has_path(key_id src, key_id dst, bool need_strict) {
  if (src == dst && !need_strict) {
    return true;
  }
  need_strict_ = need_strict;
  proved_ = false;
  side up{true};
  side down{false};
  visit(up, down, src, reached);
  visit(down, up, dst, reached);
  const auto stuck = [](const side& end) { return end.done() && end.of(squeeze_keys::zero) == unreached; };
  while (!proved_ && !(up.done() && down.done()) && !stuck(up) && !stuck(down) && charge()) {
    expand_next(up, down);
    expand_next(down, up);
  }
  if (!proved_ && need_strict && up.of(squeeze_keys::zero) != unreached && down.of(squeeze_keys::zero) != unreached) {
    expand_zero(up, down);
    while (!proved_ && !up.done() && charge()) {
      expand_next(up, down);
    }
  }
  return proved_;
}

void squeeze_search::visit(side& here, const side& there, key_id k, level found) {
  level& known = here.levels[k];
  if (found <= known) {
    return;
  }
  known = found;
  if (k != squeeze_keys::zero) {
    here.open.push_back(k);
  }
  const level other = there.of(k);
  proved_ = proved_ || (other != unreached && (!need_strict_ || std::max(found, other) == reached_strictly));
}

// The edges at k: for each choice of factors among its parts, those at the rest, multiplied by them.
void squeeze_search::expand_next(side& here, const side& there) {
  if (here.done()) {
    return;
  }
  const key_id k = here.open[here.next++];
  const level so_far = here.of(k);
  follow(here, there, so_far, k, squeeze_keys::one, squeeze_keys::one);
  std::vector<key_id> factors;
  std::ranges::copy_if(keys_.parts(k), std::back_inserter(factors), [this](key_id f) { return facts_.is_factor(f); });
  const std::size_t count = factors.size();
  for (std::size_t i = 0; i < count && !proved_; ++i) {
    if (i > 0 && factors[i] == factors[i - 1]) {
      continue;
    }
    for (std::size_t j = i; j < count && !proved_ && charge(); ++j) {
      const bool alone = j == i;
      if (!alone && j > i + 1 && factors[j] == factors[j - 1]) {
        continue;
      }
      const key_id g = alone ? squeeze_keys::one : factors[j];
      if (const auto rest = keys_.without(k, factors[i], g)) {
        follow(here, there, so_far, *rest, factors[i], g);
      }
    }
  }
}

// 0 times anything is 0.
void squeeze_search::expand_zero(side& here, const side& there) {
  const level so_far = here.of(squeeze_keys::zero);
  const std::vector<key_id> factors = facts_.factors();
  follow(here, there, so_far, squeeze_keys::zero, squeeze_keys::one, squeeze_keys::one);
  for (std::size_t i = 0; i < factors.size() && !proved_; ++i) {
    follow(here, there, so_far, squeeze_keys::zero, factors[i], squeeze_keys::one);
    for (std::size_t j = i; j < factors.size() && !proved_ && charge(); ++j) {
      follow(here, there, so_far, squeeze_keys::zero, factors[i], factors[j]);
    }
  }
}

// Visits what the edges at rest lead to when they are multiplied by f and g.
void squeeze_search::follow(side& here, const side& there, level so_far, key_id rest, key_id f, key_id g) {
  for (const effect& by : effects_of(f, g)) {
    facts_.for_each_edge(rest, here.leaving != by.turns, [&](const squeeze_edge& edge) {
      if (proved_ || !charge()) {
        return;
      }
      const key_id other = keys_.product(keys_.product(edge.other, f), g);
      const bool strict = so_far == reached_strictly || (edge.strict && by.keeps_strict);
      visit(here, there, other, strict ? reached_strictly : reached);
    });
  }
}

squeeze_search::effects squeeze_search::effects_of(key_id f) const {
  if (f == squeeze_keys::one) {
    return {{false, true}};
  }
  const unsigned signs = facts_.signs(f);
  effects all;
  if ((signs & sq_nonnegative) != 0) {
    all.push_back({false, (signs & sq_positive) != 0});
  }
  if ((signs & sq_nonpositive) != 0) {
    all.push_back({true, (signs & sq_negative) != 0});
  }
  return all;
}

squeeze_search::effects squeeze_search::effects_of(key_id f, key_id g) const {
  effects all;
  for (const effect& first : effects_of(f)) {
    for (const effect& second : effects_of(g)) {
      all.push_back({first.turns != second.turns, first.keeps_strict && second.keeps_strict});
    }
  }
  return all;
}

}  // namespace vetro

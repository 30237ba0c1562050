// Slow and plain procedures to compare the theories with: elimination of variables one by one, and a closure that is
// filled until nothing changes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "number/exact.h"

namespace vetro::oracle {

// sum of coefficients times variables + constant, below 0 or at most 0
struct inequality {
  std::vector<exact> coefficients;
  exact constant;
  bool strict = false;
};

// Fourier-Motzkin elimination.
inline bool feasible(std::vector<inequality> system, std::size_t variables) {
  for (std::size_t v = 0; v < variables; ++v) {
    std::vector<inequality> rest, upper, lower;
    for (auto& c : system) {
      const int sign = c.coefficients[v].sign();
      (sign == 0 ? rest : sign > 0 ? upper : lower).push_back(std::move(c));
    }
    for (const auto& u : upper) {
      for (const auto& l : lower) {
        inequality sum{{}, u.constant / u.coefficients[v] - l.constant / l.coefficients[v], u.strict || l.strict};
        for (std::size_t i = 0; i < variables; ++i) {
          sum.coefficients.push_back(u.coefficients[i] / u.coefficients[v] - l.coefficients[i] / l.coefficients[v]);
        }
        rest.push_back(std::move(sum));
      }
    }
    system = std::move(rest);
  }
  return std::all_of(system.begin(), system.end(),
                     [](const inequality& c) { return c.strict ? c.constant.sign() < 0 : c.constant.sign() <= 0; });
}

inline inequality negated(inequality c) {
  for (exact& coefficient : c.coefficients) {
    coefficient = -coefficient;
  }
  return {std::move(c.coefficients), -c.constant, !c.strict};
}

// Classes of terms 0 .. n - 1, of which the last ones are applications (function, argument) of earlier ones.
class closure {
 public:
  closure(std::size_t n, std::vector<std::array<std::size_t, 3>> applications)
      : class_(n), applications_(std::move(applications)) {
    for (std::size_t i = 0; i < n; ++i) {
      class_[i] = i;
    }
  }
  void merge(std::size_t a, std::size_t b) {
    rename(class_[a], class_[b]);
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto& x : applications_) {
        for (const auto& y : applications_) {
          if (equal(x[0], y[0]) && equal(x[1], y[1]) && !equal(x[2], y[2])) {
            rename(class_[x[2]], class_[y[2]]);
            changed = true;
          }
        }
      }
    }
  }
  bool equal(std::size_t a, std::size_t b) const { return class_[a] == class_[b]; }

 private:
  void rename(std::size_t from, std::size_t to) { std::replace(class_.begin(), class_.end(), from, to); }
  std::vector<std::size_t> class_;
  std::vector<std::array<std::size_t, 3>> applications_;  // function, argument, the application
};

}  // namespace vetro::oracle

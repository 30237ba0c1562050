// A number with a multiple of a positive infinitesimal: x < 5 is x <= 5 - delta.
#pragma once

#include <cstddef>

#include "number/exact.h"

namespace vetro::smt {

struct delta_number {
  exact real;
  exact delta;

  bool is_known() const { return real.is_known() && delta.is_known(); }
  bool is_zero() const { return real.is_zero() && delta.is_zero(); }
  int sign() const { return real.is_zero() ? delta.sign() : real.sign(); }

  delta_number& operator+=(const delta_number& other) {
    real += other.real;
    if (!other.delta.is_zero()) {
      delta += other.delta;
    }
    return *this;
  }
  // *this + factor * other
  void add_multiple(const exact& factor, const delta_number& other) {
    real.addmul(factor, other.real);
    if (!other.delta.is_zero()) {
      delta.addmul(factor, other.delta);
    }
  }
  friend delta_number operator+(delta_number a, const delta_number& b) {
    a += b;
    return a;
  }
  friend delta_number operator-(const delta_number& a, const delta_number& b) {
    return {a.real - b.real, a.delta.is_zero() && b.delta.is_zero() ? exact(0) : a.delta - b.delta};
  }
  friend delta_number operator*(const delta_number& a, const exact& factor) {
    return {a.real * factor, a.delta.is_zero() ? exact(0) : a.delta * factor};
  }
  friend bool operator==(const delta_number& a, const delta_number& b) {
    return a.real == b.real && a.delta == b.delta;
  }
  friend bool operator<(const delta_number& a, const delta_number& b) {
    return a.real < b.real || (a.real == b.real && a.delta < b.delta);
  }
  std::size_t hash() const { return real.hash() * 31 + delta.hash(); }
};

}  // namespace vetro::smt

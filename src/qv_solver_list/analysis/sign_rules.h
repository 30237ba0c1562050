// The rules of signs as data: which questions about the parts of an expression answer a question about the whole.
//
// A rule stands for one form and one question. Its ways are tried in their order, each from left to right; the first
// that goes through proves the answer. `cut` inside a way commits to it: if what stands before holds and what stands
// behind does not, the answer is no.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vetro {

// Forms in the order in which they are recognised. The number of a root is its index, that of a power its exponent,
// where it is an integer constant.
enum class sign_form : std::uint8_t {
  integer,   // a constant v
  absolute,  // |first|
  negated,   // -first
  root,      // of first
  power,     // first^second
  quotient,  // first / second
  product,   // first * second
  sum,       // first + second, first - second
  other,
};

enum class sign_question : std::uint8_t { ge0, gt0, le0, lt0, neq0, obvious_ge0, obvious_le0, defined };

namespace sign_rules {

enum class need_kind : std::uint8_t {
  nothing,  // ends the list
  first,
  second,
  whole,
  first_nonzero_by_others,  // other solvers prove it
  base_is_e,
  number,  // there is one
  no_number,
  even,
  even_from_2,  // even and at least 2
  odd,
  zero,
  above_zero,
  undefined,  // the whole is not shown defined
  cut,
  never,
  by_sum,     // the rules of sums decide
  by_others,  // other solvers are asked about the whole
};

struct need {
  need_kind kind = need_kind::nothing;
  sign_question question = sign_question::ge0;
};

struct way {
  std::array<need, 6> needs{};
};

enum class otherwise : std::uint8_t { no, go_on };  // when no way goes through: answered, or on to the next rule

struct rule {
  sign_form form;
  sign_question asked;
  otherwise then;
  std::array<way, 4> ways;
  std::size_t count;
};

// ---- Short forms for the tables.

constexpr need first(sign_question q) { return {need_kind::first, q}; }
constexpr need second(sign_question q) { return {need_kind::second, q}; }
constexpr need whole(sign_question q) { return {need_kind::whole, q}; }
constexpr need is(need_kind kind) { return {kind}; }

template <class... Needs>
constexpr way all(Needs... needs) {
  return {{needs...}};
}

template <class... Ways>
constexpr rule when(sign_form form, sign_question asked, otherwise then, Ways... ways) {
  return {form, asked, then, {ways...}, sizeof...(ways)};
}

}  // namespace sign_rules

// The table of the full family, which asks other solvers at its leaves, and that of the pure one, which asks nobody.
// What no rule answers is not proved. Integer constants stand for themselves and need no rows.
std::span<const sign_rules::rule> full_sign_rules();
std::span<const sign_rules::rule> pure_sign_rules();

}  // namespace vetro

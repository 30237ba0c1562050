// Where the elementary functions of one variable are defined and continuous.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "term/kinds.h"

namespace vetro {

// What a condition of a domain speaks of.
enum class domain_subject : std::uint8_t { argument, cosine, sine };

struct domain_condition {
  pred_type pred;
  std::int32_t value;
};

// At most two alternatives, each of one or two conditions that hold together.
struct natural_domain {
  oper_type oper;
  domain_subject subject;
  std::uint8_t alternatives;
  std::uint8_t conditions;  // of each alternative
  std::array<std::array<domain_condition, 2>, 2> rows;
};

// clang-format off
inline constexpr std::array natural_domains = std::to_array<natural_domain>({
    // operator   subject                    alternatives, conditions
    {Sqrt,        domain_subject::argument,  1, 1, {{{{{Ge, 0}}}}}},
    {Sqrtn,       domain_subject::argument,  1, 1, {{{{{Ge, 0}}}}}},
    {Ln,          domain_subject::argument,  1, 1, {{{{{Gt, 0}}}}}},
    {Log,         domain_subject::argument,  1, 1, {{{{{Gt, 0}}}}}},
    {Tan,         domain_subject::cosine,    1, 1, {{{{{Neq, 0}}}}}},
    {Sec,         domain_subject::cosine,    1, 1, {{{{{Neq, 0}}}}}},
    {Cot,         domain_subject::sine,      1, 1, {{{{{Neq, 0}}}}}},
    {Csc,         domain_subject::sine,      1, 1, {{{{{Neq, 0}}}}}},
    {Arcsin,      domain_subject::argument,  1, 2, {{{{{Ge, -1}, {Le, 1}}}}}},
    {Arccos,      domain_subject::argument,  1, 2, {{{{{Ge, -1}, {Le, 1}}}}}},
    {Arcsec,      domain_subject::argument,  2, 1, {{{{{Ge, 1}}}, {{{Le, -1}}}}}},
    {Arccsc,      domain_subject::argument,  2, 1, {{{{{Ge, 1}}}, {{{Le, -1}}}}}},
    {Arccosh,     domain_subject::argument,  1, 1, {{{{{Ge, 1}}}}}},
    {Arctanh,     domain_subject::argument,  1, 2, {{{{{Gt, -1}, {Lt, 1}}}}}},
    {Arccoth,     domain_subject::argument,  2, 1, {{{{{Gt, 1}}}, {{{Lt, -1}}}}}},
    {Arcsech,     domain_subject::argument,  1, 2, {{{{{Gt, 0}, {Le, 1}}}}}},
    {Arccsch,     domain_subject::argument,  1, 1, {{{{{Neq, 0}}}}}},
});
// clang-format on

// The row of the operator; null when it is not on the page.
constexpr const natural_domain* find_natural_domain(oper_type oper) {
  for (const natural_domain& row : natural_domains) {
    if (row.oper == oper) {
      return &row;
    }
  }
  return nullptr;
}

}  // namespace vetro

// The page. A textbook can be held beside it: a column that a row leaves out has its plain value (defined for every
// argument, continuous, neither even nor odd), or says that nothing is known.
#include "term/functions.h"

#include "term/build.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// ---- Domains.

constexpr natural_domain where(domain_condition c) { return {.conditions = 1, .rows = {{{{c}}}}}; }

constexpr natural_domain both(domain_condition a, domain_condition b) {
  return {.conditions = 2, .rows = {{{{a, b}}}}};
}

constexpr natural_domain either(domain_condition a, domain_condition b) {
  return {.alternatives = 2, .conditions = 1, .rows = {{{{a}}, {{b}}}}};
}

constexpr natural_domain not_zero_of(domain_subject subject) {
  return {.subject = subject, .conditions = 1, .rows = {{{{{Neq, 0}}}}}};
}

// ---- Derivatives.

term_ptr of(oper_type oper, term_ptr u) { return make_unOp_term(oper, u); }

term_ptr square(term_ptr u) { return mk_power(u, mk_integer(2)); }

term_ptr root(std::int32_t index, term_ptr u) {
  term_ptr k = mk_integer(index);
  return make_binOp_term(Sqrtn, k, u);
}

term_ptr one_minus_square(term_ptr u) {
  term_ptr squared = square(u);
  return mk_difference(mk_integer(1), squared);
}

term_ptr one_plus_square(term_ptr u) {
  term_ptr squared = square(u);
  return mk_sum(mk_integer(1), squared);
}

term_ptr itself(term_ptr u) { return u; }

// ---- The page.

// clang-format off
constexpr std::array page = std::to_array<known_function>({
    {.oper = Abs, .symmetry = parity::even},
    {.oper = Sqrt, .domain = where({Ge, 0}), .value = {{1, 1}},
     .derivative = [](term_ptr u, term_ptr du) { return over_root(du, 2, u); }, .radicand = itself},
    {.oper = Sqrtn, .has_index = true, .domain = where({Ge, 0})},  // for an even index
    {.oper = Cbrt, .symmetry = parity::odd, .value = {{1, 1}},
     .derivative = [](term_ptr u, term_ptr du) { return over_root(du, 3, square(u)); }, .radicand = itself},
    {.oper = Ln, .domain = where({Gt, 0}),
     .derivative = [](term_ptr u, term_ptr du) { return mk_fraction(du, u); }},
    {.oper = Lg, .domain = where({Gt, 0})},
    {.oper = Log, .has_index = true, .domain = where({Gt, 0})},

    {.oper = Sin, .symmetry = parity::odd,
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(of(Cos, u), du); }},
    {.oper = Cos, .symmetry = parity::even,
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(mk_neg(of(Sin, u)), du); }},
    {.oper = Tan, .domain = not_zero_of(domain_subject::cosine), .symmetry = parity::odd,
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(square(of(Sec, u)), du); }},
    {.oper = Cot, .domain = not_zero_of(domain_subject::sine), .symmetry = parity::odd,
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(mk_neg(square(of(Csc, u))), du); }},
    {.oper = Sec, .domain = not_zero_of(domain_subject::cosine), .symmetry = parity::even, .value = {{0, 1}},
     .derivative = [](term_ptr u, term_ptr du) {
       term_ptr sec = of(Sec, u);
       term_ptr tan = of(Tan, u);
       return mk_product(mk_product(sec, tan), du);
     }},
    {.oper = Csc, .domain = not_zero_of(domain_subject::sine), .symmetry = parity::odd,
     .derivative = [](term_ptr u, term_ptr du) {
       term_ptr csc = of(Csc, u);
       term_ptr cot = of(Cot, u);
       return mk_product(mk_neg(mk_product(csc, cot)), du);
     }},

    {.oper = Arcsin, .domain = both({Ge, -1}, {Le, 1}), .symmetry = parity::odd, .inverts = Sin,
     .angles = {{-1, 1, true}}, .value = {{0, 0}},
     .derivative = [](term_ptr u, term_ptr du) { return mk_fraction(du, root(2, one_minus_square(u))); },
     .radicand = one_minus_square},
    {.oper = Arccos, .domain = both({Ge, -1}, {Le, 1}), .inverts = Cos,
     .angles = {{0, 2, true}}, .value = {{1, 0}},
     .derivative = [](term_ptr u, term_ptr du) {
       term_ptr negative = mk_neg(du);
       return mk_fraction(negative, root(2, one_minus_square(u)));
     },
     .radicand = one_minus_square},
    {.oper = Arctan, .symmetry = parity::odd, .inverts = Tan, .angles = {{-1, 1, false}}, .value = {{0, 0}},
     .derivative = [](term_ptr u, term_ptr du) { return mk_fraction(du, one_plus_square(u)); }},
    {.oper = Arccot, .inverts = Cot, .angles = {{0, 2, false}},
     .derivative = [](term_ptr u, term_ptr du) {
       term_ptr negative = mk_neg(du);
       return mk_fraction(negative, one_plus_square(u));
     }},
    {.oper = Arcsec, .domain = either({Ge, 1}, {Le, -1}), .inverts = Sec},
    {.oper = Arccsc, .domain = either({Ge, 1}, {Le, -1}), .symmetry = parity::odd, .inverts = Csc},

    {.oper = Sinh, .symmetry = parity::odd, .value = {{0, 0}},
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(of(Cosh, u), du); }},
    {.oper = Cosh, .symmetry = parity::even, .value = {{0, 1}},
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(of(Sinh, u), du); }},
    {.oper = Tanh, .symmetry = parity::odd, .value = {{0, 0}},
     .derivative = [](term_ptr u, term_ptr du) { return mk_product(square(of(Sech, u)), du); }},
    {.oper = Coth, .domain = where({Neq, 0}), .symmetry = parity::odd},
    {.oper = Sech, .symmetry = parity::even},
    {.oper = Csch, .domain = where({Neq, 0}), .symmetry = parity::odd},

    {.oper = Arcsinh, .symmetry = parity::odd, .inverts = Sinh},
    {.oper = Arccosh, .domain = where({Ge, 1}), .inverts = Cosh},
    {.oper = Arctanh, .domain = both({Gt, -1}, {Lt, 1}), .symmetry = parity::odd, .inverts = Tanh},
    {.oper = Arccoth, .domain = either({Gt, 1}, {Lt, -1}), .symmetry = parity::odd, .inverts = Coth},
    {.oper = Arcsech, .domain = both({Gt, 0}, {Le, 1}), .inverts = Sech},
    {.oper = Arccsch, .domain = where({Neq, 0}), .symmetry = parity::odd, .inverts = Csch},

    {.oper = Sgn, .jumps = true, .symmetry = parity::odd},
    {.oper = Floor, .jumps = true},
    {.oper = Ceil, .jumps = true},
});
// clang-format on

constexpr bool comes_before(const known_function& row, oper_type oper) { return row.oper < oper; }

static_assert(std::is_sorted(page.begin(), page.end(),
                             [](const known_function& a, const known_function& b) { return comes_before(a, b.oper); }));

}  // namespace

std::span<const known_function> known_functions() { return page; }

const known_function* find_function(oper_type oper) {
  const auto* row = std::lower_bound(page.begin(), page.end(), oper, comes_before);
  return row != page.end() && row->oper == oper ? row : nullptr;
}

term_ptr subject_of(const natural_domain& domain, term_ptr u) {
  switch (domain.subject) {
    case domain_subject::cosine:
      return of(Cos, u);
    case domain_subject::sine:
      return of(Sin, u);
    default:
      return u;
  }
}

term_ptr over_root(term_ptr du, std::int32_t index, term_ptr w) {
  term_ptr divisor = root(index, w);
  divisor = mk_product(mk_integer(index), divisor);
  return mk_fraction(du, divisor);
}

}  // namespace vetro

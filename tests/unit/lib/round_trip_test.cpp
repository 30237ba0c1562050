// A printed formula reads back as the same term: on formulas as people write them, and on random ones. Left out is what
// the notation gives up on purpose: right-nested chains of operators that group to the left, names of notations used as
// variables, heads that need parentheses, and signs that stand for two operators.
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "support/build_terms.h"
#include "term/pattern_match.h"
#include "term/print/pretty.h"
#include "term/state.h"

namespace vetro {
namespace {

using build::app;
using build::list;
using build::num;
using build::var;

class round_trip : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
  }
};

void expect_same_after_printing(term_ptr t) {
  const std::string text = print_term_to_string(t);
  EXPECT_EQ(parse_semantic_term_from_str(text), t) << text << "\n  " << print_term_internal_to_string(t);
}

TEST_F(round_trip, formulas_as_people_write_them) {
  const char* const formulas[] = {
      // Algebra.
      "(a + b)^2 = a^2 + 2*a*b + b^2",
      "a - (b - c) - (d + e1) * (f - g) / (h / k) = -(-a) + (-b)^3",
      "x^{-1/2} * y^(n + 1) ≤ (x^2)^3 * (a_n)^2 - (-x)^2",
      "a mod (b mod c) = (a * b) mod c ∧ a * (b mod c) = a * (b / c)",
      "|x + y| ≤ |x| + |y| ∧ ||x| - |y|| ≤ |x - y|",
      "frac(n * (n + 1), 2) + sqrt(2) - cbrt(x) * sqrtn(3, x + 1) = log(2, 8) + ln(e) + log(e, x)",
      "n! = n * (n - 1)! ∧ (n + 1)! > (2 * n)!^2 ∧ (-n)! = 0",
      "x ± 1 - (y ± 2) = ±x * ±(y * z)",
      "1.50 + 007 = 12345678901234567890 * 2147483647",
      "max(a, b, c) ≥ min(a, b) ∧ floor(x) ≤ x ∧ ceil(-x) = -floor(x)",
      "p · q + r · s = 0 ∧ (a · b) / c = 1 ∧ (a + b) · c = 0",
      "1 + 2 + ... + n = frac(n * (n + 1), 2)",
      // Relations.
      "0 < x ≤ y < 1 ∧ a = b ≠ c",
      "a | b * c ∧ ¬(a | (f(b))) ∧ a + b | a^2 - b^2",
      "a ≡ b (mod n) ⇒ a^2 ≡ b^2 (mod n)",
      "a ≈ b ∧ f(x) ≡ g(x)",
      "2 | n | 4 * m ∧ a | (f(x)) | b",
      "x, y ∈ RealSet ∧ x ∉ { 0, 1 } ∧ A, B ⊆ C ∧ (a, b) ∈ R ∧ (a, b) ∉ R",
      "x ∈ (0, 1) ∪ [1, 2) ∪ (2, 3] \\ [2, +∞) ∧ y ∈ (-∞, 0]",
      "p = (0, 1) ∧ q = (1, 2, 3) ∧ x ∈ { (0, 1) }",
      "A ∪ B ∩ C \\ (D \\ E1) ⊆ A ∪ B \\ (C ∩ D) ∧ CartesianProd(A, B) ⊆ PowerSet(C)",
      // Logic.
      "a = 1 ∨ b = 2 ∧ c = 3 ⇒ (a = 1 ⇔ ¬(b = 2 ∨ ¬c = 3))",
      "a = 1 ⇒ b = 2 ⇒ c = 3 ⇔ d = 4 ⇔ False",
      "(a = 1 ⇒ b = 2) ∧ (b = 2 ∨ c = 3) ∧ ¬(¬a = 1)",
      "forall (x)(y ∈ S)(z > 0), x < y ⇒ exists (w), x < w ∧ w < y",
      "forall (x, y ∈ S), existsUnique (z), x + z = y",
      "(forall (x), x > 0) ∧ (exists (y ∈ A), ¬(forall (z), z < y)) ⇒ existsUnique (n), n = 1",
      "¬(forall (x), x = 0) ∨ ¬(x = 0 ∧ y = 0)",
      "forall (ε), ε > 0 ⇒ exists (δ), δ > 0 ∧ (forall (x), |x - a| < δ ⇒ |f(x) - f(a)| < ε)",
      "f(0) = 0 ∧ (forall (n ∈ Nat), f(n) = 0 ⇒ f(n + 1) = 0) ⇒ (forall (n ∈ Nat), f(n) = 0)",
      // Functions, sequences, sets.
      "f : A → B ∪ C ∧ InjectiveFunc(f) ∧ ContinuousFuncOn(f, (0, 1)) ∧ DiffableFuncOn(f, [a, b])",
      "f'(x) = f''(x) + (f + g)'(0) - f(x)' ∧ (f ∘ g)'(x) = 1 ∧ a_n(x) = |f|(x)",
      "(f ∘ g) ∘ h = f ∘ (g ∘ h) ∧ f ∘ g + h = (f ∘ g) + h",
      "(fun x . x^2 + 1) = g ∧ f = (fun x: RealSet, n: NonNegIntegerSet [x > 0, n ≠ x] . n * x)",
      "f = (fun g: RealSet -> (RealSet -> IntegerSet) -> RealSet . g(0))",
      "(fun x . fun y . x - y) ≠ h",
      "a_{n + 1} = a_n + a_{n - 1} ∧ a_{n_k} → 0 ∧ a_1 = 1 ∧ (a_n)_m = b_{(n, m)}",
      "S = { x | x > 0, x < 1 } ∪ { x^2 + y | x ∈ A } ∧ T = { n | 2 | n } ∧ U = { |x| | |x| < 1 }",
      "{ { a }, { a, b } } = PowerSet({ c }) ∧ ∅ ⊆ { ∅ }",
      "f = cases{ x if x ≥ 0; -x if x < 0 } ∧ g = cases{ 1 if x = 1; 2 if x = 2 ∨ x = 3; otherwise x + 3 }",
      "f(x)(y) = frac(a, b)(c) ∧ NthDeri(f, 2)(x) = FunDeri(f, 1, 2)(a, b) + ValDeri(f, x, 2)(a)",
      "f(a = b, x > 0, c) = 1 + f(g(h(x)), ∅, +∞, π, e, __IMAGINARY_UNIT__)",
      // Operators that bind.
      "sum_{i = 1}^{n}(i) = frac(n * (n + 1), 2) ∧ prod_{i ∈ S}(a_i) > 0 ∧ (sum_{i = 1}^{n}(i)) + 1 = 2",
      "sum_{i = 1}^{n}(sum_{j = i}^{n}(a_i * (sum_{k = 1}^{j}(k)) + 1)) = 0",
      "sum_{n = 1}^{∞}(1 / n^2) = π^2 / 6 ∧ union_{i ∈ I}(A_i) ⊆ inter_{i = 1}^{n}(B(i))",
      "lim_{x → 0}(sin(x) / x) = 1 ∧ lim_{x → +∞}(1 / x) = 0 ∧ lim_{x → a^+}(f(x)) = lim_{x → (-1)^-}(f(x))",
      "lim_{x → (a + b)^-}(f(x)) = limsup_{x → 0}(f(x)) ∧ liminf_{x → -∞}(f(x)) = lim_{x → (-∞)^+}(f(x))",
      "seqlim_{n → ∞}(a_n) = seqlimsup_{n → ∞}(a_n) ∧ seqliminf_{n → ∞}(a_n) = 0",
      "f(x) = x + bigO_{x → 0}(x^2) ∧ g(x) = littleo_{x → a^+}(x - a)",
      "int_{0}^{1}(x^2 * diff(x)) = (x^3 / 3)|_{0}^{1} ∧ int(cos(x) * diff(x)) = sin(x)",
      "(x^2 + 1)|_{0}^{1} = f(x)|_{a}^{b} - 1 ∧ |x|^2|_{0}^{1} = 0 ∧ Defined(x)",
      "x → 0 ∧ x → 0^+ ∧ y → (-1)^- ∧ (f(x)) → (g(x))",
      "(f(x)) →_{x → 0} (g(x)) ∧ a_n seqTendsTo_{n → ∞} 0 ∧ u ∼_{x → 0^+} v ∧ u + 1 →_{x → a^-} v * w",
      "x → a →_{t → 0} b = c ∧ u ∼_{n → ∞} v ∼_{n → ∞} w",
      // Names and side conditions.
      "`e` + `sin` + `a b` + `1` + `x\\`y` = ɛ1 + αβ2 + Γ",
      "(1 / x [@scope x ≠ 0 @]) * y = 1 ∧ (a = b [@scope a > 0 @])",
      "a + b = c [@scope a > 0 [@scope b > 0 @] @]",
      "Lt(a, b) ∧ Eq(x, x) ∧ f(Lt, Plus, Impl) = 0",
  };
  for (const char* const text : formulas) {
    const term_ptr t = parse_semantic_term_from_str(text);
    EXPECT_NE(t, nullptr) << text;
    if (t != nullptr) {
      expect_same_after_printing(t);
    }
  }
}

// ---- Random formulas. A right operand never is of the group that its operator prints without parentheses.

enum class group { add, mult, set, conjunction, disjunction, implication, equivalence, other };

struct grouped {
  term_ptr t;
  group of = group::other;
};

class random_formulas {
 public:
  term_ptr proposition(int depth) { return prop(depth).t; }

 private:
  grouped prop(int depth) {
    switch (depth <= 0 ? 0 : pick(9)) {
      case 0:
      case 1:
        return {pick(4) == 0 ? scoped(comparison(depth)) : comparison(depth)};
      case 2:
        return {special_relation(depth - 1)};
      case 3:
        return {app(Not, {prop(depth - 1).t})};
      case 4:
        return joined(And, group::conjunction, depth);
      case 5:
        return joined(Or, group::disjunction, depth);
      case 6:
        return joined(Impl, group::implication, depth);
      case 7:
        return joined(Iff, group::equivalence, depth);
      default: {
        term_list entries;
        for (std::uint32_t i = pick(3) + 1; i > 0; --i) {
          entries.push_back(pick(2) == 0 ? name() : membership(depth - 1));
        }
        const quant_type kind = any_of({Forall, Exists, ExistsUnique});
        return {mk_quant(kind, entries, prop(depth - 1).t)};
      }
    }
  }

  grouped joined(connect_type connective, group own, int depth) {
    const term_ptr left = prop(depth - 1).t;
    grouped right = prop(depth - 1);
    while (right.of == own) {
      right = prop(depth - 1);
    }
    return {app(connective, {left, right.t}), own};
  }

  term_ptr scoped(term_ptr t) { return with_scope(t, comparison(0)); }

  term_ptr comparison(int depth) {
    const term_ptr left = expr(depth);
    const term_ptr right = pick(6) == 0 ? app(EvalBar, {expr(depth), expr(0), expr(0)}) : expr(depth);
    const pred_type relation = any_of({Eq, Neq, Lt, Le, Gt, Ge, Appro, NotBelong});
    return app(relation, {left, right});
  }

  term_ptr membership(int depth) {
    const term_ptr set = expr(depth);
    const term_ptr left = pick(3) == 0 ? list({name(), name()}) : name();
    return app(pick(2) == 0 ? Belong : Subset, {left, set});
  }

  // Relations that guard their operands, have an index, or are chains.
  term_ptr special_relation(int depth) {
    const term_ptr a = expr(depth);
    const term_ptr b = expr(depth);
    const term_ptr c = expr(depth);
    switch (pick(8)) {
      case 0:
        return app(any_of({Divides, TendsToWithoutIndex, LeftTendsToWithoutIndex, RightTendsToWithoutIndex}), {a, b});
      case 1:
        return app(any_of({TendsTo, LeftSeqTendsTo, RightAsymEquiv}), {var("n"), c, a, b});
      case 2:
        return app(CongruentMod, {a, var("b"), c});
      case 3:
        return app(IsFuncOn, {a, b, c});
      case 4:
        return membership(depth);
      case 5:
        return app(PredChain, {list({app(TendsTo, {var("n"), a}), mk_pred(Lt)}), list({a, b, c})});
      default: {
        const term_ptr first = mk_pred(any_of({Eq, Lt, Divides, Belong, TendsToWithoutIndex}));
        const term_ptr second = mk_pred(any_of({Neq, Ge, Divides, Subset, TendsToWithoutIndex}));
        return app(PredChain, {list({first, second}), list({a, b, c})});
      }
    }
  }

  term_ptr expr(int depth) { return expression(depth).t; }

  grouped expression(int depth) {
    switch (depth <= 0 ? 0 : pick(12)) {
      case 0:
        return {leaf()};
      case 1:
        return arithmetic(any_of({Plus, Plus, Minus, PlusMinus}), group::add, depth);
      case 2:
        return arithmetic(any_of({Mult, Mult, DotProd, Div, Mod}), group::mult, depth);
      case 3:
        return arithmetic(any_of({Union, Inter, SetMinus}), group::set, depth);
      case 4:
        return {unary(any_of({Neg, PosNeg, Fact, SingleDeri, Abs}), depth)};
      case 5:
        return {binary(any_of({Power, Index, Compose, IntervalLcRo, IntervalLoRc, IntervalLcRc}), depth)};
      case 6:
      case 7:
        return {application(depth)};
      case 8:
        return {collection(depth)};
      case 9:
        return {binding(depth)};
      case 10:
        return {build_lambda(depth)};
      default:
        return {cases(depth)};
    }
  }

  // The head is drawn before the operands: an argument list has no order of evaluation, a braced list has one.
  term_ptr unary(oper_type oper, int depth) { return app(oper, {expr(depth - 1)}); }
  term_ptr binary(oper_type oper, int depth) { return app(oper, {expr(depth - 1), expr(depth - 1)}); }

  grouped arithmetic(oper_type oper, group own, int depth) {
    const term_ptr left = expr(depth - 1);
    grouped right = expression(depth - 1);
    while (right.of == own) {
      right = expression(depth - 1);
    }
    return {app(oper, {left, right.t}), own};
  }

  term_ptr application(int depth) {
    const term_ptr argument = expr(depth - 1);
    const term_ptr f = var("f");
    switch (pick(6)) {
      case 0:
        return app(any_of({Sin, Sqrt, Ln, PowerSet}), {argument});
      case 1:
        return binary(any_of({Frac, Log, Sqrtn}), depth);
      case 2:
        return app(f, {comparison(0), argument});
      case 3:
        return app(SingleDeri, {f, argument});
      case 4:
        return app(Index, {f, name(), argument});
      default:
        return app(f, {argument});
    }
  }

  term_ptr collection(int depth) {
    const term_ptr first = expr(depth - 1);
    const term_ptr second = expr(depth - 1);
    switch (pick(4)) {
      case 0:
        return app(SetEnum, {list({first, second})});
      case 1:
        return app(SetDesc, {first, list({comparison(depth - 1), special_relation(depth - 1)})});
      case 2:
        return app(Tuple, {list({first, second})});
      default:
        return app(Tuple, {list({first, second, expr(0)})});
    }
  }

  term_ptr binding(int depth) {
    const term_ptr index = name();
    const term_ptr body = expr(depth - 1);
    const term_ptr bound = expr(depth - 1);
    const term_ptr low = leaf();
    switch (pick(4)) {
      case 0:
        return app(any_of({BigSumSup, BigProdSup, BigUnionSup}), {app(Eq, {index, low}), bound, body});
      case 1:
        return app(any_of({BigSum, BigInter}), {app(Belong, {index, bound}), body});
      case 2:
        return app(any_of({Lim, LeftLim, RightSeqLimSup, RightLimInf, LeftBigO}), {index, bound, body});
      default:
        return app(DefInt, {low, bound, app(Mult, {body, app(D, {index})})});
    }
  }

  term_ptr build_lambda(int depth) {
    const term_ptr condition = pick(3) == 0 ? prop(depth - 1).t : nullptr;
    const term_ptr vars[] = {name(), name()};
    const lambda_type_ptr real = make_lambda_real_type();
    const lambda_type_ptr function = make_lambda_func_type(make_lambda_func_type(real, real), real);
    return mk_lambda(vars, {real, function}, condition, expr(depth - 1));
  }

  term_ptr cases(int depth) {
    const term_ptr first = app(Tuple, {list({expr(depth - 1), prop(depth - 1).t})});
    return app(PiecewiseFunc, {pick(2) == 0 ? list({first}) : list({first, unary(Abs, depth)})});
  }

  term_ptr leaf() {
    switch (pick(6)) {
      case 0:
        return num(static_cast<int>(pick(100)));
      case 1:
        return mk_decimal("1.50");
      case 2:
        return mk_const(any_of({Pi, E, EmptySet, RealSet, PosInfty}));
      default:
        return name();
    }
  }

  term_ptr name() { return var(any_of({"a", "b", "n", "x", "Γ1", "e", "a b"})); }

  template <class T>
  T any_of(std::initializer_list<T> choices) {
    return choices.begin()[pick(static_cast<std::uint32_t>(choices.size()))];
  }

  std::uint32_t pick(std::uint32_t below) {
    seed_ = seed_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::uint32_t>(seed_ >> 33U) % below;
  }

  std::uint64_t seed_ = 11;
};

TEST_F(round_trip, random_formulas) {
  random_formulas random;
  for (int round = 0; round < 2000; ++round) {
    const term_ptr t = normalize_parsed_term(random.proposition(4));
    expect_same_after_printing(t);
    if (HasFailure()) {
      return;
    }
  }
}

}  // namespace
}  // namespace vetro

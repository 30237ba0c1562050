// Every rule of the formula language: the text, and the exact term that it builds; how operators bind; which texts have
// two readings.
#include <gtest/gtest.h>

#include "support/shape.h"
#include "term/state.h"

namespace vetro {
namespace {

struct row {
  const char* text;
  const char* shape;
};

void expect_shapes(std::span<const row> rows) {
  for (const row& r : rows) {
    testing::internal::CaptureStderr();
    const std::string built = shape(parse_term_from_str(r.text, 0, 0));
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(built, r.shape) << r.text;
    EXPECT_EQ(errors, "") << r.text;
  }
}

// Rejected for the stated reason, in the last line but one of the report.
void expect_rejected(std::span<const char* const> texts, const std::string& reason) {
  for (const char* text : texts) {
    testing::internal::CaptureStderr();
    const term_ptr built = parse_term_from_str(text, 0, 0);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(built, nullptr) << text << " gave " << shape(built);
    EXPECT_EQ(errors.starts_with("Ambiguity detected.\nOption 1,\n"), reason.starts_with("syntax is ambiguous"))
        << text;
    EXPECT_NE(errors.find(": " + reason), std::string::npos) << text << " reported " << errors;
    EXPECT_TRUE(errors.ends_with("\nError: Parsing failed with code 1.\n")) << text << " reported " << errors;
  }
}

TEST(grammar, leaves_and_brackets) {
  const row rows[] = {
      {"x", "x"},
      {"e", "e"},
      {"π", "π"},
      {"__IMAGINARY_UNIT__", "__IMAGINARY_UNIT__"},
      {"007", "7"},
      {"2.50", "d2.50"},
      {"infty", "Infty"},
      {"∞", "Infty"},
      {"+infty", "PosInfty"},
      {"+∞", "PosInfty"},
      {"-infty", "NegInfty"},
      {"-∞", "NegInfty"},
      {"∅", "EmptySet"},
      {"...", "Ellipsis"},
      {"sin", "sin"},
      {"Sin", "sin"},
      {"Nat", "NonNegIntegerSet"},
      {"(x)", "x"},
      {"[x]", "x"},
      {"([(x)])", "x"},
      {"Lt", "Lt"},
      {"And", "And"},
      {"False", "False"},
      {"(False)", "False"},
      {"_", "_"},
      {"?", "?"},
      {"?Var", "?Var"},
      {"?Const", "?Const"},
      {"?Oper", "?Oper"},
      {"?Pred", "?Pred"},
      {"?Connect", "?Connect"},
      {"?FuncApply(?)", "?FuncApply(?)"},
  };
  expect_shapes(rows);
  EXPECT_EQ(parse_term_from_str("e", 0, 0), mk_const(E));
  EXPECT_EQ(parse_term_from_str("`e`", 0, 0), mk_var("e"));
  EXPECT_EQ(parse_term_from_str("`in`", 0, 0), mk_var("in"));
  EXPECT_EQ(parse_term_from_str("`a b`", 0, 0), mk_var("a b"));
  EXPECT_EQ(parse_term_from_str("``", 0, 0), mk_var(""));
  EXPECT_EQ(parse_term_from_str("`\\`\\\\`", 0, 0), mk_var("`\\"));
}

TEST(grammar, numbers_beyond_32_bits_stay_exact_wherever_they_stand) {
  const row rows[] = {
      {"2147483647", "2147483647"},
      {"2147483648", "d2147483648"},
      {"-2147483648", "Neg(d2147483648)"},
      {"0000", "0"},
      {"0002147483648", "d2147483648"},
      {"x^99999999999", "Power(x, d99999999999)"},
      {"x_99999999999", "Index(x, d99999999999)"},
      {"18446744073709551617", "d18446744073709551617"},
  };
  expect_shapes(rows);
}

TEST(grammar, operators_and_their_binding) {
  const row rows[] = {
      {"+x", "x"},
      {"++x", "x"},
      {"-x", "Neg(x)"},
      {"±x", "PosNeg(x)"},
      {"a + b - c", "Minus(Plus(a, b), c)"},
      {"a ± b + c", "Plus(PlusMinus(a, b), c)"},
      {"a * b / c", "Div(Mult(a, b), c)"},
      {"a · b mod c", "Mod(DotProd(a, b), c)"},
      {"a ∩ b ∪ c \\ d", "SetMinus(Union(Inter(a, b), c), d)"},
      {"f ∘ g", "Compose(f, g)"},
      {"a ∪ f ∘ b + c * -d!", "Union(a, Compose(f, Plus(b, Mult(c, Neg(Fact(d))))))"},
      {"a - (b - c)", "Minus(a, Minus(b, c))"},
      {"-a * b", "Mult(Neg(a), b)"},
      {"-a ^ b", "Neg(Power(a, b))"},
      {"-a!", "Neg(Fact(a))"},
      {"--a", "Neg(Neg(a))"},
      {"a * -b", "Mult(a, Neg(b))"},
      {"a ^ b ^ c", "Power(Power(a, b), c)"},
      {"f'(x)", "SingleDeri(f, x)"},
      {"f''", "SingleDeri(SingleDeri(f))"},
      {"a^2!", "Fact(Power(a, 2))"},
      {"x^{-1}", "Power(x, Neg(1))"},
      {"x^(-1)", "Power(x, Neg(1))"},
      {"x^n(y)", "Power(x, n, y)"},
      {"x^__IMAGINARY_UNIT__", "Power(x, __IMAGINARY_UNIT__)"},
      {"x_{i + 1}", "Index(x, Plus(i, 1))"},
      {"x_{i = 1}", "Index(x, Eq(i, 1))"},
      {"x_1", "Index(x, 1)"},
      {"x_i_j", "Index(Index(x, i), j)"},
      {"a + infty", "Plus(a, Infty)"},
      {"a - ∞", "Minus(a, Infty)"},
      {"x! = y", "Eq(Fact(x), y)"},
      {"Plus(a, b)", "Plus(a, b)"},
      {"f(a)(b, c)", "f(a, b, c)"},
      {"(f ∘ g)(x)", "Compose(f, g, x)"},
      {"f(x = 1, y)", "f(Eq(x, 1), y)"},
      {"f(p, x = 1)", "f(p, Eq(x, 1))"},
      {"f(Lt, And)", "f(Lt, And)"},
  };
  expect_shapes(rows);
  // A name behind "^" or "_" is never a constant.
  EXPECT_EQ(parse_term_from_str("x^e", 0, 0)->right(), mk_var("e"));
  EXPECT_EQ(parse_term_from_str("x_e", 0, 0)->right(), mk_var("e"));
  EXPECT_EQ(parse_term_from_str("x^{e}", 0, 0)->right(), mk_const(E));
}

TEST(grammar, brackets_with_a_meaning) {
  const row rows[] = {
      {"|x|", "Abs(x)"},
      {"||x||", "Abs(Abs(x))"},
      {"|a| + |b|", "Plus(Abs(a), Abs(b))"},
      {"|a + |b||", "Abs(Plus(a, Abs(b)))"},
      {"|a|_{1}", "Index(Abs(a), 1)"},
      {"|a|_1", "Index(Abs(a), 1)"},
      {"|a + b|_{1}", "Index(Abs(Plus(a, b)), 1)"},
      {"|a|_{0}^{1}", "Power(Index(Abs(a), 0), 1)"},
      {"|a|_{0}^{1} + |b|", "Plus(Power(Index(Abs(a), 0), 1), Abs(b))"},
      {"|a|_{0}^{1} + |b||", "Abs(Plus(EvalBar(a, 0, 1), Abs(b)))"},
      {"{x}", "SetEnum(T(x))"},
      {"{x, y, z}", "SetEnum(T(x, y, z))"},
      {"{x | x > 0}", "SetDesc(x, T(Gt(x, 0)))"},
      {"{a * b | a > 0, b ∈ S}", "SetDesc(Mult(a, b), T(Gt(a, 0), Belong(b, S)))"},
      {"{x | a, b ∈ S, a < x}", "SetDesc(x, T(Belong(T(a, b), S), Lt(a, x)))"},
      {"{x | a | x}", "SetDesc(x, T(Divides(a, x)))"},
      {"{|x| | |x| < 1}", "SetDesc(Abs(x), T(Lt(Abs(x), 1)))"},
      {"(a, b)", "Tuple(T(a, b))"},
      {"(a, b, c)", "Tuple(T(a, b, c))"},
      {"[a, b)", "IntervalLcRo(a, b)"},
      {"(a, b]", "IntervalLoRc(a, b)"},
      {"[a, b]", "IntervalLcRc(a, b)"},
      {"(-∞, +∞)", "Tuple(T(NegInfty, PosInfty))"},
      {"cases{1 if x > 0}", "PiecewiseFunc(T(Tuple(T(1, Gt(x, 0)))))"},
      {"cases{1 if x > 0; 2 if x < 0}", "PiecewiseFunc(T(Tuple(T(1, Gt(x, 0))), Tuple(T(2, Lt(x, 0)))))"},
      {"cases{1 if x > 0; otherwise 0}", "PiecewiseFunc(T(Tuple(T(1, Gt(x, 0))), 0))"},
      {"(a + b)|_{0}^{1}", "EvalBar(Plus(a, b), 0, 1)"},
      {"x^2|_{0}^{1}", "EvalBar(Power(x, 2), 0, 1)"},
      {"f(x)|_{0}^{1}", "EvalBar(f(x), 0, 1)"},
      {"f(x) | _ {0} ^ {1}", "EvalBar(f(x), 0, 1)"},
      {"c = b|_{0}^{1}", "Eq(c, EvalBar(b, 0, 1))"},
      {"x|_{0}^{1}|_{a}^{b}", "EvalBar(EvalBar(x, 0, 1), a, b)"},
      {"{?TermList}", "SetEnum(?TermList)"},
      {"{x | ?TermList}", "SetDesc(x, ?TermList)"},
      {"(?TermList)", "Tuple(?TermList)"},
      {"cases{?TermList}", "PiecewiseFunc(?TermList)"},
      {"?TermList ∈ S", "Belong(?TermList, S)"},
      {"?TermList ⊆ ?", "Subset(?TermList, ?)"},
      {"f(a, ?TermList ∈ S)", "f(a, Belong(?TermList, S))"},
  };
  expect_shapes(rows);
}

TEST(grammar, big_operators) {
  const row rows[] = {
      {"int(f(x))", "IndefInt(f(x))"},
      {"int_{a}^{b}(f(x) * diff(x))", "DefInt(a, b, Mult(f(x), diff(x)))"},
      {"sum_{i ∈ S}(i)", "BigSum(Belong(i, S), i)"},
      {"sum_{i}(i, j)", "BigSum(i, i, j)"},
      {"sum_{i = 1}^{n}(i)", "BigSumSup(Eq(i, 1), n, i)"},
      {"prod_{i ∈ S}(i)", "BigProd(Belong(i, S), i)"},
      {"prod_{i = 1}^{n}(i)", "BigProdSup(Eq(i, 1), n, i)"},
      {"union_{i ∈ S}(A)", "BigUnion(Belong(i, S), A)"},
      {"union_{i = 1}^{n}(A_i)", "BigUnionSup(Eq(i, 1), n, Index(A, i))"},
      {"inter_{i ∈ S}(A)", "BigInter(Belong(i, S), A)"},
      {"inter_{i = 1}^{n}(A)", "BigInterSup(Eq(i, 1), n, A)"},
      {"sum_{a, b ∈ S}(a)", "BigSum(Belong(T(a, b), S), a)"},
      {"2 * sum_{i}(i)^2", "Mult(2, Power(BigSum(i, i), 2))"},
  };
  expect_shapes(rows);

  struct family {
    const char* word;
    oper_type plain;
  };
  const family limits[] = {{"lim", Lim},       {"limsup", LimSup},       {"liminf", LimInf},
                           {"seqlim", SeqLim}, {"seqlimsup", SeqLimSup}, {"seqliminf", SeqLimInf},
                           {"bigO", BigO},     {"littleo", LittleO}};
  for (const auto& [word, plain] : limits) {
    const std::string start = std::string(word) + "_{x -> p";
    const std::string name(oper_type_internal(plain));
    EXPECT_EQ(shape(parse_term_from_str(start + "}(f)", 0, 0)), name + "(x, p, f)");
    EXPECT_EQ(shape(parse_term_from_str(start + "^-}(f)", 0, 0)), "Left" + name + "(x, p, f)");
    EXPECT_EQ(shape(parse_term_from_str(start + "^+}(f)", 0, 0)), "Right" + name + "(x, p, f)");
  }
}

TEST(grammar, lambdas) {
  const row rows[] = {
      {"fun x . x + 1", "fun(x: RealSet. Plus(x, 1))"},
      {"fun x . x + 1 = y", "Eq(fun(x: RealSet. Plus(x, 1)), y)"},
      {"fun x, y: IntegerSet . x ∪ y", "fun(x: RealSet, y: IntegerSet. Union(x, y))"},
      {"fun f: RealSet -> RealSet -> ComplexSet . f", "fun(f: RealSet -> RealSet -> ComplexSet. f)"},
      {"fun f: (RealSet -> RealSet) -> NonNegRationalSet . f", "fun(f: (RealSet -> RealSet) -> NonNegRationalSet. f)"},
      {"fun x [x > 0] . x", "fun(x: RealSet; Gt(x, 0). x)"},
      {"fun x [x > 0, x < 1, x = y] . x", "fun(x: RealSet; And(And(Gt(x, 0), Lt(x, 1)), Eq(x, y)). x)"},
      {"fun x . fun y . x", "fun(x: RealSet. fun(y: RealSet. x))"},
      {"fun x . x [@scope a > 0 @]", "fun(x: RealSet. x)@{Gt(a, 0)}"},
      {"a + fun x . x + b", "Plus(a, fun(x: RealSet. Plus(x, b)))"},
      {"(fun x . x)(1)", "fun(x: RealSet. x)(1)"},
      {"f(fun x, y . x, z)", "f(fun(x: RealSet, y: RealSet. x), z)"},
  };
  expect_shapes(rows);
  testing::internal::CaptureStderr();
  EXPECT_EQ(parse_term_from_str("fun x: Foo . x", 0, 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "unknown lambda type 'Foo'\nError: Parsing failed with code 1.\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(parse_term_from_str("fun x: Real -> ) . x", 0, 0), nullptr);  // a further spelling of RealSet is no type
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "unknown lambda type 'Real'\nError: Parsing failed with code 1.\n");
}

TEST(grammar, relations) {
  const row rows[] = {
      {"a = b", "Eq(a, b)"},
      {"a != b", "Neq(a, b)"},
      {"a >= b", "Ge(a, b)"},
      {"a ≤ b", "Le(a, b)"},
      {"a > b", "Gt(a, b)"},
      {"a < b", "Lt(a, b)"},
      {"a ≈ b", "Appro(a, b)"},
      {"a ≡ b", "IdentEq(a, b)"},
      {"a ≡ b(n)", "IdentEq(a, b(n))"},
      {"a ≡ b (mod n)", "CongruentMod(a, b, n)"},
      {"a ≡ b + c (mod n)", "CongruentMod(a, Plus(b, c), n)"},
      {"a ≡ -1 ( mod n)", "CongruentMod(a, Neg(1), n)"},
      {"a^2 ≡ (b * c) (mod n + 1) ∧ c = 1", "And(CongruentMod(Power(a, 2), Mult(b, c), Plus(n, 1)), Eq(c, 1))"},
      {"a ≡ b(model)", "IdentEq(a, b(model))"},
      {"a | b", "Divides(a, b)"},
      {"a + b | c", "Divides(Plus(a, b), c)"},
      {"a | |b|", "Divides(a, Abs(b))"},
      {"a | (f(x))", "Divides(a, f(x))"},
      {"a | f(x) + 1", "Divides(a, Plus(f(x), 1))"},
      {"a | f(x) = 1", "PredChain(T(Divides, Eq), T(a, f(x), 1))"},
      {"a | b + f(x)", "Divides(a, Plus(b, f(x)))"},
      {"a | b [@scope p = 1 @] * c", "Divides(a, Mult(b@{Eq(p, 1)}, c))"},
      {"a ∈ S", "Belong(a, S)"},
      {"a notin S", "NotBelong(a, S)"},
      {"A ⊆ B", "Subset(A, B)"},
      {"x, y ∈ S", "Belong(T(x, y), S)"},
      {"x, y, z ∉ S", "NotBelong(T(x, y, z), S)"},
      {"A, B subset C", "Subset(T(A, B), C)"},
      {"(a, b ∈ S)", "Belong(T(a, b), S)"},
      {"a = 1 ∧ x, y ∈ S", "And(Eq(a, 1), Belong(T(x, y), S))"},
      {"f : A → B", "IsFuncOn(f, A, B)"},
      {"x → p", "TendsToWithoutIndex(x, p)"},
      {"x → p^+", "RightTendsToWithoutIndex(x, p)"},
      {"x -> p^-", "LeftTendsToWithoutIndex(x, p)"},
      {"x → 0^2", "TendsToWithoutIndex(x, Power(0, 2))"},
      {"x → _", "TendsToWithoutIndex(x, _)"},
      {"u →_{x → p} v", "TendsTo(x, p, u, v)"},
      {"u →_{x → p^+} v", "RightTendsTo(x, p, u, v)"},
      {"u →_{x → p^-} v", "LeftTendsTo(x, p, u, v)"},
      {"u seqTendsTo_{n → ∞} v", "SeqTendsTo(n, Infty, u, v)"},
      {"u seqTendsTo_{n → p^+} v", "RightSeqTendsTo(n, p, u, v)"},
      {"u seqTendsTo_{n → p^-} v", "LeftSeqTendsTo(n, p, u, v)"},
      {"u ∼_{x → p} v", "AsymEquiv(x, p, u, v)"},
      {"u ∼_{x → p^+} v", "RightAsymEquiv(x, p, u, v)"},
      {"u ∼_{x → p^-} v", "LeftAsymEquiv(x, p, u, v)"},
      {"Lt(a, b)", "Lt(a, b)"},
      {"Odd(x)", "Odd(x)"},
      {"(a = b)(x)", "Eq(a, b, x)"},
      {"?Pred(?, ?)", "?Pred(?, ?)"},
  };
  expect_shapes(rows);
  EXPECT_EQ(parse_term_from_str("Lt(a, b)", 0, 0), parse_term_from_str("a < b", 0, 0));
}

TEST(grammar, chains_of_relations) {
  const row rows[] = {
      {"a < b ≤ c", "PredChain(T(Lt, Le), T(a, b, c))"},
      {"a < b = c ∈ S → d", "PredChain(T(Lt, Eq, Belong, TendsToWithoutIndex), T(a, b, c, S, d))"},
      {"x, y ∈ S ⊆ R", "PredChain(T(Belong, Subset), T(T(x, y), S, R))"},
      {"a | b | c", "PredChain(T(Divides, Divides), T(a, b, c))"},
      {"a = b →_{x → p} c", "PredChain(T(Eq, TendsTo(x, p)), T(a, b, c))"},
      {"a ∼_{n → ∞} b ∼_{n → p^-} c = d", "PredChain(T(AsymEquiv(n, Infty), LeftAsymEquiv(n, p), Eq), T(a, b, c, d))"},
      {"a → b^+ → c^-", "PredChain(T(RightTendsToWithoutIndex, LeftTendsToWithoutIndex), T(a, b, c))"},
      {"a ≠ b ∉ S ≡ T seqTendsTo_{n → p} U",
       "PredChain(T(Neq, NotBelong, IdentEq, SeqTendsTo(n, p)), T(a, b, S, T, U))"},
      {"PredChain(Lt, Le, a, b, c)", "PredChain(T(Lt, Le), T(a, b, c))"},
      {"PredChain(Eq, TendsTo(x, p), a, b, c)", "PredChain(T(Eq, TendsTo(x, p)), T(a, b, c))"},
      {"PredChain(a, b)", "PredChain(T(), T(a, b))"},
      {"PredChain(a)", "PredChain(T(), T(a))"},
      {"PredChain(Lt, Le, a, b)", "PredChain(T(Lt), T(Le, a, b))"},
  };
  expect_shapes(rows);
  EXPECT_EQ(parse_term_from_str("PredChain(Lt, Le, a, b, c)", 0, 0), parse_term_from_str("a < b <= c", 0, 0));
}

TEST(grammar, connectives_quantifiers_and_scopes) {
  const row rows[] = {
      {"not a = b", "Not(Eq(a, b))"},
      {"¬ Lt(a, b)", "Not(Lt(a, b))"},
      {"a = 1 ⇒ b = 2 ⇒ c = 3", "Impl(Impl(Eq(a, 1), Eq(b, 2)), Eq(c, 3))"},
      {"a = 1 <==> b = 2 => c = 3 \\/ d = 4 /\\ not e = 5",
       "Iff(Eq(a, 1), Impl(Eq(b, 2), Or(Eq(c, 3), And(Eq(d, 4), Not(Eq(e, 5))))))"},
      {"a = 1 ∧ b = 2 ∧ c = 3", "And(And(Eq(a, 1), Eq(b, 2)), Eq(c, 3))"},
      {"¬ a = 1 ∧ b = 2", "And(Not(Eq(a, 1)), Eq(b, 2))"},
      {"?Connect(p = 1, False)", "?Connect(Eq(p, 1), False)"},
      {"forall (x), x > 0 ∧ x < 1 ⇒ x = 0", "all(x. Impl(And(Gt(x, 0), Lt(x, 1)), Eq(x, 0)))"},
      {"a = 1 ∧ forall (x), x > 0 ∧ x < 1", "And(Eq(a, 1), all(x. And(Gt(x, 0), Lt(x, 1))))"},
      {"exists (x)(y), x < y", "ex(x, y. Lt(x, y))"},
      {"existsUnique (x ∈ S), x = 1", "ex1(Belong(x, S). Eq(x, 1))"},
      {"forall (x, y in S), x < y", "all(Belong(T(x, y), S). Lt(x, y))"},
      {"forall (a, b ∈ S), a = b", "all(Belong(T(a, b), S). Eq(a, b))"},
      {"forall (x), a, b ∈ S", "all(x. Belong(T(a, b), S))"},
      {"forall (x), exists (y), Odd(x)", "all(x. ex(y. Odd(x)))"},
      {"a + b [@scope a > 0 @]", "Plus(a, b)@{Gt(a, 0)}"},
      {"a = b [@scope a > 0 @]", "Eq(a, b)@{Gt(a, 0)}"},
      {"a = b ∧ c = d [@scope a > 0 @]", "And(Eq(a, b), Eq(c, d)@{Gt(a, 0)})"},
      {"a + b [@scope a > 0 @] * c", "Mult(Plus(a, b)@{Gt(a, 0)}, c)"},
      {"a [@scope a > 0 @] [@scope a > 1 @]", "a@{Gt(a, 1)}"},
      {"¬ a = b [@scope p = 1 @]", "Not(Eq(a, b)@{Eq(p, 1)})"},
      {"a [@scope b = c [@scope d = 1 @] @]", "a@{Eq(b, c)@{Eq(d, 1)}}"},
  };
  expect_shapes(rows);
}

TEST(grammar, argument_lists_beside_memberships) {
  const row rows[] = {
      {"f(b ∈ S, a)", "f(Belong(b, S), a)"},
      {"f(a, (b ∈ S))", "f(a, Belong(b, S))"},
      {"f(a, ¬ b ∈ S)", "f(a, Not(Belong(b, S)))"},
      {"f(c = a, b ∈ S)", "f(Eq(c, a), Belong(b, S))"},
      {"f(c = 1 ∧ a, b ∈ S)", "f(And(Eq(c, 1), Belong(T(a, b), S)))"},
      {"f(a, forall (x), x ∈ S)", "f(a, all(x. Belong(x, S)))"},
      {"f(a, b = c ∈ S)", "f(a, PredChain(T(Eq, Belong), T(b, c, S)))"},
      {"Lt(a, b, c)", "Lt(a, b, c)"},
  };
  expect_shapes(rows);
  const char* const ambiguous[] = {
      "f(a, b ∈ S)",
      "f(a, b ∉ S, c)",
      "f(a, b + c ⊆ S ∧ d = e)",
      "Odd(a, b ∈ S)",
      "f(c = 1, a, b ∈ S)",
      "f(a, b ∈ S < c)",
      "f(a, (b) ∈ S(x))",
      "g(f(a, b ∈ S), c)",
      "{x | Odd(a, b ∈ S)}",
      "f(a, b ∈ S [@scope p = 1 @])",
  };
  expect_rejected(ambiguous, "syntax is ambiguous.\n");
}

TEST(grammar, texts_with_two_readings) {
  const char* const ambiguous[] = {
      "a + b|_{0}^{1}",
      "-x|_{0}^{1}",
      "c = a * b|_{0}^{1}",
      "a ∪ b|_{0}^{1}",
      "fun x . x|_{0}^{1}",
      "-x|_{0}^{1}^2",
      "a + b|_{0}^{1} * c",
      "|a + b|_{0}^{1}|",
      "?TermList ∈ S|_{0}^{1}",
      "a | f(x)",
      "a | f(x)(y)",
      "a | b [@scope a > 0 @]",
      "u →_{n → ∞} f(n)",
      "u →_{n → p^+} v [@scope a > 0 @]",
      "u seqTendsTo_{n → ∞} f(n)",
      "u ∼_{x → p^-} f(n) ∧ c = d",
      "a = b | f(x)",
      "g(a | f(x), y)",
  };
  expect_rejected(ambiguous, "syntax is ambiguous.\n");

  // The report shows both readings.
  testing::internal::CaptureStderr();
  EXPECT_EQ(parse_term_from_str("a | f(x)", 0, 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Ambiguity detected.\nOption 1,\nDivides(a, f, x)\n\nOption 2,\nDivides(a, f(x))\n\n"
            ": syntax is ambiguous.\nError: Parsing failed with code 1.\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(parse_term_from_str("f(a, b ∈ S = c ∧ d = e)", 0, 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Ambiguity detected.\nOption 1,\nf(a, And(b ∈ S = c, Eq(d, e)))\n\nOption 2,\nf(And(a, b ∈ S = c, Eq(d, "
            "e)))\n\n): syntax is ambiguous.\nError: Parsing failed with code 1.\n");
}

TEST(grammar, what_no_rule_allows) {
  const char* const rejected[] = {
      "",
      "x ∧ y",
      "(a = b) + 1",
      "2 x",
      "x^-1",
      "f ∘ g ∘ h",
      "forall (x), x",
      "{ }",
      "()",
      "f()",
      "[a, b, c]",
      "x, y = 1",
      "forall (x, y), x < y",
      "sum(i)",
      "sum_{i = 1}^{n}",
      "lim_{x}(f)",
      "x^+",
      "a < b <",
      "cases{otherwise 1}",
      "a ∼ b",
      "|a",
      "a|_{0}",
      "x^(a)b",
      "f(a,)",
      "a [@scope b @]",
      "a a",
      "x = y)",
      "fun . x",
      "(a, b = c)",
      "?TermList",
      "cases{1 if x > 0; otherwise 0; 1 if x = 0}",
      "a+infty",
      "a -∞",
      "a<=>b",
      "∀ (x), x = 1",
      "12.",
      ".5",
      "x -> 0^*",
  };
  expect_rejected(rejected, "syntax error, unexpected ");
}

}  // namespace
}  // namespace vetro

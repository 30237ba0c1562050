// Both printers: every notation, the parentheses, names, scopes, failures, and the cost on deep terms.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "support/build_terms.h"
#include "term/print/pretty.h"

namespace vetro {
namespace {

using build::app;
using build::chain;
using build::list;
using build::num;
using build::quant;
using build::var;

std::string pretty(term_ptr t) { return print_term_to_string(t); }
std::string internal(term_ptr t) { return print_term_internal_to_string(t); }

class print_test : public testing::Test {
 protected:
  term_ptr a = var("a");
  term_ptr b = var("b");
  term_ptr c = var("c");
  term_ptr d = var("d");
  term_ptr f = var("f");
  term_ptr n = var("n");
  term_ptr x = var("x");
  term_ptr fx = app(f, {x});
  term_ptr p = app(Eq, {a, num(1)});
  term_ptr q = app(Eq, {b, num(2)});
  term_ptr r = app(Eq, {c, num(3)});
  term_ptr sum = app(Plus, {a, b});
};

TEST_F(print_test, notation_of_operators) {
  const term_ptr m = list({a, b});
  const std::vector<std::pair<term_ptr, std::string>> cases = {
      {app(IntervalLoRo, {a, b}), "(a, b)"},
      {app(IntervalLcRo, {a, b}), "[a, b)"},
      {app(IntervalLoRc, {a, b}), "(a, b]"},
      {app(IntervalLcRc, {a, b}), "[a, b]"},
      {app(Plus, {a, b}), "a + b"},
      {app(Neg, {a}), "-a"},
      {app(Minus, {a, b}), "a - b"},
      {app(PosNeg, {a}), "±a"},
      {app(PlusMinus, {a, b}), "a ± b"},
      {app(Mult, {a, b}), "a * b"},
      {app(Div, {a, b}), "a / b"},
      {app(Mod, {a, b}), "a mod b"},
      {app(Fact, {a}), "a!"},
      {app(Power, {a, num(2)}), "a^{2}"},
      {app(NthDeri, {f, n}), "NthDeri(f, n)"},
      {app(Index, {a, n}), "a_{n}"},
      {app(Abs, {a}), "|a|"},
      {app(Cardinal, {a}), "|a|"},
      {app(Sqrtn, {num(3), a}), "sqrtn(3, a)"},
      {app(MaxInSet, {a}), "max(a)"},
      {app(MinInSet, {a}), "min(a)"},
      {app(SetEnum, {m}), "{ a, b }"},
      {app(SetDesc, {a, list({p, q})}), "{ a | a = 1, b = 2 }"},
      {app(Union, {a, b}), "a ∪ b"},
      {app(Inter, {a, b}), "a ∩ b"},
      {app(SetMinus, {a, b}), "a \\ b"},
      {app(Compose, {a, b}), "a ∘ b"},
      {app(SingleDeri, {f}), "f'"},
      {app(BigSum, {a, b}), "sum_{ a } (b)"},
      {app(BigSumSup, {p, n, a}), "sum_{ a = 1 }^{ n } (a)"},
      {app(BigProd, {a, b}), "prod_{ a } (b)"},
      {app(BigProdSup, {p, n, a}), "prod_{ a = 1 }^{ n } (a)"},
      {app(BigUnion, {a, b}), "union_{ a } (b)"},
      {app(BigUnionSup, {p, n, a}), "union_{ a = 1 }^{ n } (a)"},
      {app(BigInter, {a, b}), "inter_{ a } (b)"},
      {app(BigInterSup, {p, n, a}), "inter_{ a = 1 }^{ n } (a)"},
      {app(EvalBar, {fx, a, b}), "f(x)|_{a}^{b}"},
      {app(DotProd, {a, b}), "a · b"},
      {app(CrossProd, {a, b}), "a × b"},
      {app(Tuple, {m}), "(a, b)"},
      {app(Frac, {a, b}), "frac(a, b)"},
      {app(Frac, {a, b, c, d}), "frac(a, b)(c, d)"},
      {app(FunDeri, {f, num(1), num(2)}), "FunDeri(f, 1, 2)"},
      {app(FunDeri, {f, num(1), num(2), a, b}), "FunDeri(f, 1, 2)(a, b)"},
      {app(ValDeri, {f, x, num(2), a}), "ValDeri(f, x, 2)(a)"},
      {app(Sin, {x}), "sin(x)"},
      {app(CartesianProd, {a, b}), "CartesianProd(a, b)"},
      {app(DefInt, {a, b, c}), "DefInt(a, b, c)"},
      {app(Max, {a, b, c}), "max(a, b, c)"},
  };
  for (const auto& [t, text] : cases) {
    EXPECT_EQ(pretty(t), text) << internal(t);
  }
}

TEST_F(print_test, notation_of_limits) {
  const std::vector<std::tuple<oper_type, oper_type, oper_type, std::string>> families = {
      {SeqLim, LeftSeqLim, RightSeqLim, "seqlim"},
      {SeqLimSup, LeftSeqLimSup, RightSeqLimSup, "seqlimsup"},
      {SeqLimInf, LeftSeqLimInf, RightSeqLimInf, "seqliminf"},
      {Lim, LeftLim, RightLim, "lim"},
      {LimSup, LeftLimSup, RightLimSup, "limsup"},
      {LimInf, LeftLimInf, RightLimInf, "liminf"},
      {BigO, LeftBigO, RightBigO, "bigO"},
      {LittleO, LeftLittleO, RightLittleO, "littleo"},
  };
  for (const auto& [plain, left, right, word] : families) {
    EXPECT_EQ(pretty(app(plain, {x, mk_const(Infty), fx})), word + "_{ x → ∞ } (f(x))");
    EXPECT_EQ(pretty(app(left, {x, a, fx})), word + "_{ x → a^- } (f(x))");
    EXPECT_EQ(pretty(app(right, {x, a, fx})), word + "_{ x → a^+ } (f(x))");
  }
  EXPECT_EQ(internal(app(Lim, {x, mk_const(Infty), fx})), "Lim(x, Infty, f(x))");
}

TEST_F(print_test, point_of_a_one_sided_limit) {
  const auto left_limit_at = [this](term_ptr point) { return pretty(app(LeftLim, {x, point, fx})); };
  EXPECT_EQ(left_limit_at(num(-1)), "lim_{ x → (-1)^- } (f(x))");
  EXPECT_EQ(left_limit_at(num(1)), "lim_{ x → 1^- } (f(x))");
  EXPECT_EQ(left_limit_at(mk_decimal("-1.5")), "lim_{ x → (-1.5)^- } (f(x))");
  EXPECT_EQ(left_limit_at(mk_const(NegInfty)), "lim_{ x → (-∞)^- } (f(x))");
  EXPECT_EQ(left_limit_at(mk_const(PosInfty)), "lim_{ x → +∞^- } (f(x))");
  EXPECT_EQ(left_limit_at(sum), "lim_{ x → (a + b)^- } (f(x))");
  EXPECT_EQ(left_limit_at(app(Fact, {a})), "lim_{ x → (a!)^- } (f(x))");
  EXPECT_EQ(left_limit_at(app(Index, {a, n})), "lim_{ x → a_{n}^- } (f(x))");
  EXPECT_EQ(left_limit_at(fx), "lim_{ x → f(x)^- } (f(x))");
  EXPECT_EQ(left_limit_at(list({a})), "lim_{ x → (a)^- } (f(x))");
}

TEST_F(print_test, notation_of_propositions) {
  const std::vector<std::pair<term_ptr, std::string>> cases = {
      {app(Eq, {a, b}), "a = b"},
      {app(Neq, {a, b}), "a ≠ b"},
      {app(Gt, {a, b}), "a > b"},
      {app(Ge, {a, b}), "a ≥ b"},
      {app(Lt, {a, b}), "a < b"},
      {app(Le, {a, b}), "a ≤ b"},
      {app(Appro, {a, b}), "a ≈ b"},
      {app(IdentEq, {a, b}), "a ≡ b"},
      {app(Divides, {a, b}), "a | b"},
      {app(CongruentMod, {a, b, n}), "a ≡ b(mod n)"},
      {app(TendsToWithoutIndex, {a, b}), "a → b"},
      {app(LeftTendsToWithoutIndex, {a, num(-1)}), "a → (-1)^-"},
      {app(RightTendsToWithoutIndex, {a, num(0)}), "a → 0^+"},
      {app(SeqTendsTo, {n, x, a, b}), "a seqTendsTo_{ n → x } b"},
      {app(LeftSeqTendsTo, {n, sum, a, b}), "a seqTendsTo_{ n → (a + b)^- } b"},
      {app(RightSeqTendsTo, {n, x, a, b}), "a seqTendsTo_{ n → x^+ } b"},
      {app(TendsTo, {x, num(0), a, b}), "a →_{ x → 0 } b"},
      {app(LeftTendsTo, {x, num(0), a, b}), "a →_{ x → 0^- } b"},
      {app(RightTendsTo, {x, num(0), a, b}), "a →_{ x → 0^+ } b"},
      {app(AsymEquiv, {x, num(0), a, b}), "a ∼_{ x → 0 } b"},
      {app(LeftAsymEquiv, {x, num(0), a, b}), "a ∼_{ x → 0^- } b"},
      {app(RightAsymEquiv, {x, num(0), a, b}), "a ∼_{ x → 0^+ } b"},
      {app(Not, {p}), "¬a = 1"},
      {app(And, {p, q}), "a = 1 ∧ b = 2"},
      {app(Or, {p, q}), "a = 1 ∨ b = 2"},
      {app(Impl, {p, q}), "a = 1 ⇒ b = 2"},
      {app(Iff, {p, q}), "a = 1 ⇔ b = 2"},
      {app(Belong, {list({a, b}), c}), "a, b ∈ c"},
      {app(Belong, {a, c}), "a ∈ c"},
      {app(NotBelong, {a, c}), "a ∉ c"},
      {app(NotBelong, {list({a, b}), c}), "(a, b) ∉ c"},
      {app(Subset, {list({a, b}), c}), "a, b ⊆ c"},
      {app(Subset, {a, c}), "a ⊆ c"},
      {app(IsFuncOn, {f, a, b}), "f : a → b"},
      {app(ContinuousFuncOn, {f, a}), "ContinuousFuncOn(f, a)"},
      {mk_const(False), "False"},
      {mk_pred(Lt), "Lt"},
  };
  for (const auto& [t, text] : cases) {
    EXPECT_EQ(pretty(t), text) << internal(t);
  }
}

TEST_F(print_test, parentheses_of_arithmetic) {
  const std::vector<std::pair<term_ptr, std::string>> cases = {
      {app(Plus, {a, app(Plus, {b, c})}), "a + b + c"},
      {app(Minus, {a, app(Minus, {b, c})}), "a - (b - c)"},
      {app(Minus, {app(Minus, {a, b}), c}), "a - b - c"},
      {app(Plus, {a, app(Minus, {b, c})}), "a + b - c"},
      {app(Neg, {app(Neg, {a})}), "-(-a)"},
      {app(Neg, {app(Mult, {a, b})}), "-(a * b)"},
      {app(Neg, {app(Power, {a, b})}), "-a^{b}"},
      {app(Mult, {app(Neg, {a}), b}), "-a * b"},
      {app(Mult, {a, app(Neg, {b})}), "a * -b"},
      {app(Mult, {sum, sum}), "(a + b) * (a + b)"},
      {app(Mult, {a, app(Mult, {b, c})}), "a * b * c"},
      {app(Mult, {a, app(Div, {b, c})}), "a * (b / c)"},
      {app(Mult, {a, app(Mod, {b, c})}), "a * (b mod c)"},
      {app(Mult, {a, app(Frac, {b, c})}), "a * frac(b, c)"},
      {app(Mult, {app(Div, {a, b}), c}), "a / b * c"},
      {app(Div, {a, app(Mult, {b, c})}), "a / (b * c)"},
      {app(Power, {app(Power, {a, b}), c}), "(a^{b})^{c}"},
      {app(Power, {app(Index, {a, n}), num(2)}), "(a_{n})^{2}"},
      {app(Power, {fx, num(2)}), "f(x)^{2}"},
      {app(Power, {a, app(Power, {b, c})}), "a^{b^{c}}"},
      {app(Power, {app(Fact, {a}), num(2)}), "(a!)^{2}"},
      {app(Fact, {app(Power, {a, num(2)})}), "a^{2}!"},
      {app(Fact, {app(Neg, {a})}), "(-a)!"},
      {app(SingleDeri, {app(SingleDeri, {f})}), "f''"},
      {app(EvalBar, {sum, a, b}), "(a + b)|_{a}^{b}"},
      {app(Abs, {app(Abs, {a})}), "||a||"},
      {app(Plus, {app(BigSum, {a, b}), c}), "(sum_{ a } (b)) + c"},
      {app(Union, {app(SetMinus, {a, b}), app(SetMinus, {a, b})}), "a \\ b ∪ a \\ b"},
      {app(SetMinus, {a, app(Union, {b, c})}), "a \\ (b ∪ c)"},
      {app(Compose, {app(Compose, {a, b}), c}), "(a ∘ b) ∘ c"},
      {app(Compose, {sum, app(Union, {a, b})}), "a + b ∘ (a ∪ b)"},
      // Another number of arguments is another thing.
      {app(Mult, {app(Plus, {a}), app(Plus, {a, b, c})}), "Plus(a) * a + b(c)"},
  };
  for (const auto& [t, text] : cases) {
    EXPECT_EQ(pretty(t), text) << internal(t);
  }
}

TEST_F(print_test, parentheses_of_propositions) {
  const term_ptr all = quant(Forall, {x}, app(Gt, {x, num(0)}));
  const std::vector<std::pair<term_ptr, std::string>> cases = {
      {app(Impl, {p, app(Impl, {q, r})}), "a = 1 ⇒ b = 2 ⇒ c = 3"},
      {app(Impl, {app(Impl, {p, q}), r}), "(a = 1 ⇒ b = 2) ⇒ c = 3"},
      {app(And, {p, app(Or, {q, r})}), "a = 1 ∧ (b = 2 ∨ c = 3)"},
      {app(Or, {p, app(And, {q, r})}), "a = 1 ∨ b = 2 ∧ c = 3"},
      {app(And, {app(And, {p, q}), app(And, {p, q})}), "a = 1 ∧ b = 2 ∧ a = 1 ∧ b = 2"},
      {app(Iff, {app(Iff, {p, q}), app(Iff, {p, q})}), "(a = 1 ⇔ b = 2) ⇔ a = 1 ⇔ b = 2"},
      {app(Not, {app(Not, {p})}), "¬(¬a = 1)"},
      {app(Not, {app(And, {p, q})}), "¬(a = 1 ∧ b = 2)"},
      {app(Not, {app(CongruentMod, {a, b, n})}), "¬a ≡ b(mod n)"},
      {app(And, {p, all}), "a = 1 ∧ (forall (x), x > 0)"},
      {app(Eq, {p, all}), "(a = 1) = (forall (x), x > 0)"},
      {app(Divides, {a, fx}), "a | (f(x))"},
      {app(Divides, {a, app(Abs, {b})}), "a | (|b|)"},
      {app(Divides, {sum, app(Power, {a, b})}), "a + b | a^{b}"},
      {app(Eq, {a, fx}), "a = f(x)"},
      {app(TendsTo, {x, num(0), fx, app(Eq, {a, b})}), "(f(x)) →_{ x → 0 } (a = b)"},
      {app(IsFuncOn, {f, app(Union, {a, b}), app(IsFuncOn, {f, a, b})}), "f : a ∪ b → (f : a → b)"},
      {quant(Forall, {x, var("y")}, app(Eq, {x, var("y")})), "forall (x) (y), x = y"},
      {quant(ExistsUnique, {x}, app(Impl, {p, q})), "existsUnique (x), a = 1 ⇒ b = 2"},
      {quant(Exists, {app(Belong, {x, a})}, all), "exists (x ∈ a), forall (x), x > 0"},
  };
  for (const auto& [t, text] : cases) {
    EXPECT_EQ(pretty(t), text) << internal(t);
  }
}

TEST_F(print_test, head_of_an_application) {
  EXPECT_EQ(pretty(app(f, {a, b})), "f(a, b)");
  EXPECT_EQ(pretty(app(SingleDeri, {f, x})), "f'(x)");
  EXPECT_EQ(pretty(app(SingleDeri, {f, x, a})), "f'(x, a)");
  EXPECT_EQ(internal(app(SingleDeri, {f, x})), "SingleDeri(f, x)");
  EXPECT_EQ(pretty(app(Index, {a, n, x})), "a_{n}(x)");
  EXPECT_EQ(pretty(app(NthDeri, {f, num(2), x})), "NthDeri(f, 2)(x)");
  EXPECT_EQ(pretty(app(SetEnum, {a, b})), "SetEnum(a, b)");
  EXPECT_EQ(pretty(app(SetEnum, {list({a}), b})), "{ a }(b)");
  EXPECT_EQ(pretty(app(SetDesc, {a, p})), "SetDesc(a, a = 1)");
  // A leaf that carries a scope or binders is not the operator.
  EXPECT_EQ(pretty(app(with_scope(mk_oper(Plus), p), {a, b})), "Plus [@scope a = 1 @](a, b)");
  EXPECT_EQ(pretty(app(with_binders(mk_oper(Plus), {x}), {a, b})), "Plus(a, b)");
  EXPECT_EQ(term_print_prec(app(with_binders(mk_oper(Plus), {x}), {a, b})), PRINT_PREC_APPLY);
}

TEST_F(print_test, chains) {
  const term_ptr lt = mk_pred(Lt);
  const term_ptr le = mk_pred(Le);
  const term_ptr tends = app(TendsTo, {x, num(0)});
  const term_ptr printable = chain({lt, le}, {a, sum, app(Mult, {b, c})});
  EXPECT_EQ(pretty(printable), "a < a + b ≤ b * c");
  EXPECT_EQ(internal(printable), "a < Plus(a, b) ≤ Mult(b, c)");
  EXPECT_EQ(term_print_prec(printable), PRINT_PREC_REL);
  EXPECT_EQ(pretty(app(Not, {printable})), "¬a < a + b ≤ b * c");
  EXPECT_EQ(pretty(app(Eq, {printable, a})), "(a < a + b ≤ b * c) = a");
  EXPECT_EQ(pretty(chain({mk_pred(Eq), mk_pred(Neq), mk_pred(Gt), mk_pred(Ge), mk_pred(Appro), mk_pred(IdentEq),
                          mk_pred(Belong), mk_pred(NotBelong), mk_pred(Subset), mk_pred(Coprime)},
                         {a, b, c, d, a, b, c, d, a, b, c})),
            "a = b ≠ c > d ≥ a ≈ b ≡ c ∈ d ∉ a ⊆ b Coprime c");
  // The predicate before an operand decides whether it is guarded, for the first operand the first predicate.
  EXPECT_EQ(pretty(chain({mk_pred(Divides), lt, mk_pred(TendsToWithoutIndex)}, {fx, fx, fx, fx})),
            "(f(x)) | (f(x)) < f(x) → (f(x))");
  EXPECT_EQ(internal(chain({mk_pred(Divides)}, {fx, fx})), "f(x) | f(x)");
  // Without a symbol for each predicate, or with a wrong number of operands, it is an application.
  EXPECT_EQ(pretty(chain({tends}, {a, b})), "PredChain(TendsTo(x, 0), a, b)");
  EXPECT_EQ(internal(chain({tends, lt}, {a, b, c})), "PredChain(TendsTo(x, 0), Lt, a, b, c)");
  EXPECT_EQ(pretty(chain({lt}, {a, b, c})), "PredChain(Lt, a, b, c)");
  EXPECT_EQ(term_print_prec(chain({lt}, {a})), PRINT_PREC_APPLY);
}

TEST_F(print_test, piecewise_functions) {
  const auto branch = [](term_ptr value, term_ptr condition) { return app(Tuple, {list({value, condition})}); };
  const term_ptr two = app(PiecewiseFunc, {list({branch(a, p), branch(b, q), c})});
  EXPECT_EQ(pretty(two), "cases{ a if a = 1; b if b = 2; otherwise c }");
  EXPECT_EQ(internal(two), "PiecewiseFunc(Tuple(a, Eq(a, 1)), Tuple(b, Eq(b, 2)), c)");
  EXPECT_EQ(pretty(app(PiecewiseFunc, {a})), "PiecewiseFunc(a)");

  const term_ptr broken = app(PiecewiseFunc, {list({branch(a, p), app(Tuple, {list({a, p, b})}), c})});
  testing::internal::CaptureStderr();
  EXPECT_EQ(pretty(app(Plus, {broken, d})), "cases{ a if a = 1;  + d");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: print_term_aux visiting invalid piecewise function definition\n");
}

TEST_F(print_test, binders) {
  const lambda_type_ptr real = make_lambda_real_type();
  const lambda_type_ptr nat = make_lambda_base_type(LambdaNonNegInteger);
  const lambda_type_ptr function = make_lambda_func_type(nat, real);
  const term_ptr vars[] = {x, n};
  EXPECT_EQ(pretty(mk_lambda(vars, {real, nat}, nullptr, sum)), "fun x: RealSet, n: NonNegIntegerSet . a + b");
  EXPECT_EQ(internal(mk_lambda(vars, {function}, p, sum)),
            "fun x: NonNegIntegerSet -> RealSet, n: RealSet [Eq(a, 1)] . Plus(a, b)");
  const term_ptr inner = mk_lambda({vars, 1}, {nullptr}, p, a);
  EXPECT_EQ(pretty(mk_lambda(vars, {}, nullptr, inner)), "fun x: RealSet, n: RealSet . fun x: RealSet [a = 1] . a");
  EXPECT_EQ(pretty(app(Plus, {inner, a})), "(fun x: RealSet [a = 1] . a) + a");

  std::string type;
  print_lambda_type(type, make_lambda_func_type(function, make_lambda_func_type(nat, real)));
  EXPECT_EQ(type, "(NonNegIntegerSet -> RealSet) -> NonNegIntegerSet -> RealSet");

  EXPECT_EQ(internal(quant(Forall, {x, n}, app(Eq, {x, n}))), "forall (x) (n), (Eq(x, n))");
  EXPECT_EQ(pretty(mk_free_var_tag(vars, sum)), "[@free x, n @] a + b");
  EXPECT_EQ(internal(mk_free_var_tag(vars, sum)), "[@free x, n @] Plus(a, b)");
  EXPECT_EQ(pretty(app(Neg, {mk_free_var_tag(vars, sum)})), "-([@free x, n @] a + b)");
  EXPECT_EQ(pretty(app(f, {list({})})), "f()");
}

TEST_F(print_test, whole_formulas_in_both_forms) {
  const term_ptr t = quant(
      Forall, {x},
      app(Impl, {app(Gt, {x, num(0)}), app(Ge, {app(Plus, {app(Power, {app(Sin, {x}), num(2)}), num(1)}), num(1)})}));
  EXPECT_EQ(pretty(t), "forall (x), x > 0 ⇒ sin(x)^{2} + 1 ≥ 1");
  EXPECT_EQ(internal(t), "forall (x), (Impl(Gt(x, 0), Ge(Plus(Power(sin(x), 2), 1), 1)))");
  EXPECT_EQ(internal(app(Plus, {a, app(Mult, {b, c})})), "Plus(a, Mult(b, c))");
  EXPECT_EQ(internal(app(Index, {a, n})), "Index(a, n)");
  EXPECT_EQ(internal(app(SetEnum, {list({a, b})})), "SetEnum(a, b)");
  EXPECT_EQ(internal(app(Frac, {a, sum, sum})), "frac(a, Plus(a, b))(Plus(a, b))");
  EXPECT_EQ(internal(app(FunDeri, {f, num(1), num(1), sum})), "FunDeri(f, 1, 1)(Plus(a, b))");
}

TEST_F(print_test, scopes) {
  const term_ptr scoped = with_scope(sum, p);
  EXPECT_EQ(pretty(scoped), "a + b [@scope a = 1 @]");
  EXPECT_EQ(internal(scoped), "Plus(a, b) [@scope Eq(a, 1) @]");
  EXPECT_EQ(pretty(app(Mult, {scoped, c})), "(a + b [@scope a = 1 @]) * c");
  EXPECT_EQ(pretty(app(Plus, {c, scoped})), "c + a + b [@scope a = 1 @]");
  EXPECT_EQ(pretty(with_scope(a, with_scope(p, q))), "a [@scope a = 1 [@scope b = 2 @] @]");
  // A scope inside a spine stays with its part.
  const term_ptr partial = with_scope(app(f, {a}), p);
  EXPECT_EQ(pretty(app(partial, {b, c})), "f(a) [@scope a = 1 @](b, c)");
  EXPECT_EQ(internal(app(partial, {b})), "f(a) [@scope Eq(a, 1) @](b)");
  EXPECT_EQ(pretty(with_binders(sum, {a})), "a + b");
}

TEST_F(print_test, names_and_constants) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"x1", "x1"},
      {"ɛΓω9", "ɛΓω9"},
      {"sum", "sum"},
      {"e", "`e`"},
      {"sin", "`sin`"},
      {"π", "`π`"},
      {"Eq", "`Eq`"},
      {"And", "`And`"},
      {"", "``"},
      {"a b", "`a b`"},
      {"1x", "`1x`"},
      {"x_1", "`x_1`"},
      {"aο", "`aο`"},
      {"A\xCE", "`A\xCE`"},
      {"é", "`é`"},
      {"a`b", "`a\\`b`"},
      {"a\\", "`a\\\\`"},
      {"α\x80", "`α\x80`"},
      {"\xCF\x8A", "`\xCF\x8A`"},
      {"Β", "`Β`"},
  };
  for (const auto& [name, text] : names) {
    EXPECT_EQ(pretty(var(name)), text);
    EXPECT_EQ(internal(var(name)), text);
  }
  const std::vector<std::tuple<term_ptr, std::string, std::string>> constants = {
      {num(2147483647), "2147483647", "2147483647"},
      {num(-2147483647 - 1), "-2147483648", "-2147483648"},
      {mk_decimal("1.50"), "1.50", "1.50"},
      {mk_const(Infty), "∞", "Infty"},
      {mk_const(PosInfty), "+∞", "PosInfty"},
      {mk_const(NegInfty), "-∞", "NegInfty"},
      {mk_const(E), "e", "e"},
      {mk_const(I), "__IMAGINARY_UNIT__", "__IMAGINARY_UNIT__"},
      {mk_const(Pi), "π", "π"},
      {mk_const(EmptySet), "∅", "EmptySet"},
      {mk_const(Ellipsis), "...", "Ellipsis"},
      {mk_const(NonNegIntegerSet), "NonNegIntegerSet", "NonNegIntegerSet"},
      {mk_pattern(PatternFuncApply), "?FuncApply(?)", "?FuncApply(?)"},
      {mk_oper(Sqrtn), "Sqrtn", "Sqrtn"},
  };
  for (const auto& [t, text, internal_text] : constants) {
    EXPECT_EQ(pretty(t), text);
    EXPECT_EQ(internal(t), internal_text);
  }
}

TEST_F(print_test, lists) {
  std::string text;
  const term_ptr two[] = {sum, a};
  print_term_list(text, {});
  print_term_list_paren(text, {});
  EXPECT_EQ(text, "");
  print_term_list(text, two);
  print_term_list_internal(text, two);
  print_term_list_paren(text, two);
  print_term_list_paren_internal(text, two);
  EXPECT_EQ(text, "a + b, aPlus(a, b), a(a + b) (a)(Plus(a, b)) (a)");
}

TEST_F(print_test, strength_of_each_kind) {
  EXPECT_EQ(term_print_prec(nullptr), PRINT_PREC_UNKNOWN);
  EXPECT_EQ(term_print_prec(list({a})), PRINT_PREC_UNKNOWN);
  EXPECT_EQ(term_print_prec(quant(Exists, {x}, p)), PRINT_PREC_QUANT);
  EXPECT_EQ(term_print_prec(app(Belong, {list({a}), b})), PRINT_PREC_REL);
  EXPECT_EQ(term_print_prec(app(CongruentMod, {a, b, c})), PRINT_PREC_APPLY);
  EXPECT_EQ(term_print_prec(app(TendsTo, {a, b, c})), PRINT_PREC_APPLY);
  EXPECT_EQ(term_print_prec(app(LeftLittleO, {a, b, c})), PRINT_PREC_BIG_OPER);
  EXPECT_EQ(term_print_prec(app(NthDeri, {a, b})), PRINT_PREC_POWER_INDEX);
  EXPECT_EQ(term_print_prec(app(Abs, {a})), PRINT_PREC_APPLY);
  EXPECT_EQ(term_print_prec(mk_connect(And)), PRINT_PREC_ATOM);
}

TEST_F(print_test, null_terms_and_broken_binders) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(pretty(nullptr), "");
  EXPECT_EQ(internal(nullptr), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: print_term visiting NULL pointer\nError: print_term_internal visiting NULL pointer\n");
  EXPECT_EXIT(pretty(mk_lambda({}, {}, nullptr, a)), testing::ExitedWithCode(1),
              "Error: print_term_aux visiting NULL function parameter list.\n");
}

// Deep in each direction; a printer that looks into a child for every parent would not come back.
TEST_F(print_test, deep_terms_take_linear_time) {
  constexpr std::size_t levels = 200'000;
  term_ptr left_sum = a;
  term_ptr right_sum = a;
  term_ptr negation = a;
  term_ptr curried = f;
  term_ptr nested = a;
  term_ptr scoped = f;
  for (std::size_t i = 0; i < levels; ++i) {
    left_sum = app(Plus, {left_sum, a});
    right_sum = app(Plus, {a, right_sum});
    negation = app(Neg, {negation});
    curried = app(curried, {a});
    nested = app(f, {nested});
    scoped = with_scope(app(scoped, {a}), b);
  }
  EXPECT_EQ(pretty(left_sum).size(), 4 * levels + 1);
  EXPECT_EQ(pretty(right_sum).size(), 4 * levels + 1);
  EXPECT_EQ(pretty(negation).size(), 3 * levels - 1);
  EXPECT_EQ(pretty(curried).size(), 3 * levels + 1);
  EXPECT_EQ(pretty(nested).size(), 3 * levels + 1);
  EXPECT_EQ(pretty(scoped).size(), 16 * levels + 1);
  EXPECT_EQ(internal(left_sum).size(), 9 * levels + 1);
  EXPECT_EQ(internal(curried).size(), 3 * levels + 1);
  EXPECT_EQ(internal(scoped).size(), 16 * levels + 1);
}

}  // namespace
}  // namespace vetro

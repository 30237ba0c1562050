// The instructions that change the shape of the gap without calculating: quantifiers, premises, connectives.
#include "support/handler_fixture.h"
#include "term/compare.h"
#include "term/substitute/instantiate.h"

namespace vetro::test {
namespace {

// ---- exists, get_exists, get_forall.

TEST(exists, takes_witnesses_in_turn) {
  script_run s(gap_of({}, "exists (x)(y), x < y"));
  EXPECT_EQ(s.step("exists (x := {3})"), success);
  EXPECT_EQ(s.goal(), "exists (y), 3 < y");
  EXPECT_EQ(s.step("exists (y := {a + b})"), success);
  EXPECT_EQ(s.goal(), "3 < a + b");
  EXPECT_EQ(s.step("exists (y := {1})"), failed("Error: Target is not an exists quantifier\n"));
  EXPECT_EQ(s.goal(), "3 < a + b");
}

TEST(exists, checks_each_pair) {
  const auto of_pairs = [](std::string_view goal, const std::string& pairs) {
    script_run s(gap_of({}, goal), strong_check_mode);
    const outcome result = s.step("exists " + pairs);
    EXPECT_EQ(s.goal(), read_and_printed(goal)) << "a failure leaves the goal";
    return result;
  };
  EXPECT_EQ(of_pairs("exists (x), x = 1", "(x := {1}) (y := {2})"),
            failed("Error: Target is not an exists quantifier\n"));
  EXPECT_EQ(of_pairs("forall (x), x = 1", "(x := {1})"), failed("Error: Target is not an exists quantifier\n"));
  EXPECT_EQ(of_pairs("existsUnique (x), x = 1", "(x := {1})"), failed("Error: Target is not an exists quantifier\n"));
  EXPECT_EQ(of_pairs("exists (x), x = 1", "(y := {1})"), failed("quant var don't have 'y'\n", redundant_fail));
  EXPECT_EQ(of_pairs("exists (x ∈ S), x = 1", "(x := {1})"), failed("quant var don't have 'x'\n", redundant_fail));

  script_run s(gap_of({}, "exists (x), x = 1"));
  const term_ptr one = formula("a + b");
  s.data.inst = nullptr;
  EXPECT_EQ(s.execute({{.number = 1, .content = dsl_exists{{{one, one}}}}}), exe_fail);
  EXPECT_EQ(s.error_text, "binder type error, binder should be a variable or indexed variable\n");
  EXPECT_EQ(s.data.summary.steps.back().redundant_flag, redundant_fail);
  s.gap.goal = nullptr;
  EXPECT_EQ(s.step("exists (x := {1})"), failed("Error: No current goal to instantiate exists quantifier\n"));
}

TEST(exists, witness_keeps_its_meaning) {
  script_run s(gap_of({}, "exists (n), forall (m), n ≥ m"));
  EXPECT_EQ(s.step("exists (n := {m + 1})"), success);
  EXPECT_FALSE(term_eqb(s.gap.goal, formula("forall (m), m + 1 ≥ m")));
  EXPECT_TRUE(term_eqb(s.gap.goal, formula("forall (k), m + 1 ≥ k")));
  script_run indexed(gap_of({}, "exists (a_1), a_1 > a_2"));
  EXPECT_EQ(indexed.step("exists (a_1 := {a_2 + 1})"), success);
  EXPECT_EQ(indexed.goal(), "a_{2} + 1 > a_{2}");
  script_run point(gap_of({}, "exists (p), f(p) ∈ p"));
  EXPECT_EQ(point.step("exists (p := {(0, 1)})"),
            failed("instantiation failed: a pair would stand in the place of a set, where it reads as an interval\n"));
  script_run domain(gap_of({}, "exists (S), f : S → Real ∧ ContinuousFuncOn(f, S)"));
  EXPECT_EQ(domain.step("exists (S := {(0, 1)})"), success);
  EXPECT_TRUE(term_eqb(domain.gap.goal, formula("f : (0, 1) → Real ∧ ContinuousFuncOn(f, (0, 1))")))
      << "what a function is on is a set, also where the text keeps a pair";
}

TEST(get_exists, names_what_the_source_promises) {
  const char* library = "Thm 3. (archimedes)\nforall (x), exists (n), n > x\nThm 4. (root)\nexists (x), x^2 = 2\n";
  script_run s(gap_of({"exists (x)(y), x < y"}, "z = 1"), strong_check_mode, library);
  EXPECT_EQ(s.step("get_exists (hypothesis 1: {exists (u)(v), u < v}) (y := {b})"), strong_success);
  EXPECT_EQ(s.hypothesis(2), "exists (x), x < b");
  EXPECT_EQ(s.hypothesis(1), "exists (x) (y), x < y");
  EXPECT_EQ(s.step("get_exists (theorem 4: {exists (x), x^2 = 2}) (x := {r})"), strong_success);
  EXPECT_EQ(s.hypothesis(3), "r^{2} = 2");
  EXPECT_EQ(s.lib.table.size(), 2U);
  EXPECT_EQ(s.step("get_exists (hypothesis 2: {exists (x), x < c}) (x := {a})"),
            (outcome{exe_success, "Mismatched target: actual exists (x), x < b but expected exists (x), x < c\n",
                     redundant_fail}));
  EXPECT_EQ(s.hypothesis(4), "a < b");
}

TEST(get_exists, rejects_a_source_that_is_not_there) {
  script_run s(gap_of({"exists (x), x = 1"}, "z = 1"), fast_mode, "Thm 2. (one)\nexists (x), x = 1\n");
  const auto of_source = [&s](const std::string& source) { return s.step("get_exists " + source + " (x := {a})"); };
  const char* range = "Invalid target hypothesis number: %lld, current proof gap has 1 hypotheses\n";
  EXPECT_EQ(of_source("(hypothesis 0: {exists (x), x = 1})"), failed(format_text(range, 0LL)));
  EXPECT_EQ(of_source("(hypothesis 2: {exists (x), x = 1})"), failed(format_text(range, 2LL)));
  EXPECT_EQ(of_source("(hypothesis 4294967297: {exists (x), x = 1})"), failed(format_text(range, 4294967297LL)));
  EXPECT_EQ(of_source("(theorem 1: {exists (x), x = 1})"),
            failed("Invalid theorem number: 1, theorem library has 2 theorems\n"));
  EXPECT_EQ(of_source("(theorem @alg:2: {exists (x), x = 1})"), failed("Invalid external theorem reference @alg:2\n"));
  EXPECT_EQ(of_source("(GOAL: {exists (x), x = 1})"), failed("get_exists target must be a hypothesis or theorem\n"));
  EXPECT_EQ(s.gap.assu_num(), 1);
}

TEST(get_exists, checks_each_pair) {
  script_run s(gap_of({"exists (x)(y), x < y + b_k", "p = 1"}, "f(g) = 1"), strong_check_mode);
  const auto with = [&s](const std::string& pairs) {
    return s.step("get_exists (hypothesis 1: {exists (x)(y), x < y + b_k}) " + pairs);
  };
  const auto stale = [](const std::string& name) {
    return failed(
        "get_exists replacement var '" + name + "' must be fresh among free variables in the current proof gap\n",
        redundant_fail);
  };
  EXPECT_EQ(with("(z := {t})"), failed("quant var don't have 'z'\n", redundant_fail));
  EXPECT_EQ(with("(x := {t + 1})"), failed("get_exists replacement must be a variable name\n", redundant_fail));
  EXPECT_EQ(with("(x := {a_1})"), failed("get_exists replacement must be a variable name\n", redundant_fail));
  EXPECT_EQ(with("(x := {t}) (y := {u}) (y := {v})"), failed("Target is not an exists quantifier at this point\n"));
  EXPECT_EQ(with("(x := {p})"), stale("p"));
  EXPECT_EQ(with("(x := {g})"), stale("g")) << "free in the goal";
  EXPECT_EQ(with("(x := {k})"), stale("k")) << "free in an index";
  EXPECT_EQ(with("(x := {b})"), stale("b"));
  EXPECT_EQ(with("(x := {t}) (y := {t})"), stale("t")) << "taken by the pair before";
  EXPECT_EQ(s.gap.assu_num(), 2);
  EXPECT_EQ(with("(x := {x}) (y := {y})"), strong_success) << "bound names are free for use";
  EXPECT_EQ(s.hypothesis(3), "x < y + b_{k}");
}

TEST(get_exists, set_of_an_entry_counts) {
  script_run s(gap_of({"exists (x), x = 1", "forall (y ∈ S), y > 0"}, "q = 1"));
  const auto named = [&s](const std::string& name) {
    return s.step("get_exists (hypothesis 1: {exists (x), x = 1}) (x := {" + name + "})").flag;
  };
  EXPECT_EQ(named("S"), exe_fail);
  EXPECT_EQ(named("y"), exe_success);
}

TEST(get_forall, fixes_variables) {
  script_run s(gap_of({"a = 1"}, "forall (x)(y), x + y = y + a"), strong_check_mode);
  EXPECT_EQ(s.step("get_forall (GOAL: {forall (x)(y), x + y = y + a}) (y := {u})"), strong_success);
  EXPECT_EQ(s.goal(), "forall (x), x + u = u + a");
  const auto stale = failed(
      "get_forall replacement var 'u' must be fresh among free variables in the current proof gap\n", redundant_fail);
  EXPECT_EQ(s.step("get_forall (GOAL: {forall (x), x + u = u + a}) (x := {u})"), stale);
  EXPECT_EQ(
      s.step("get_forall (GOAL: {x = 1}) (x := {v})"),
      (outcome{exe_success, "Mismatched goal: actual forall (x), x + u = u + a but expected x = 1\n", redundant_fail}));
  EXPECT_EQ(s.goal(), "v + u = u + a");
}

TEST(get_forall, checks_reference_and_pairs) {
  script_run s(gap_of({"a_n = 1"}, "forall (x)(y), x < y"), strong_check_mode);
  const auto with = [&s](const std::string& pairs) {
    const outcome result = s.step("get_forall (GOAL: {forall (x)(y), x < y}) " + pairs);
    EXPECT_EQ(s.goal(), "forall (x) (y), x < y");
    return result;
  };
  const auto stale = [](const std::string& name) {
    return failed(
        "get_forall replacement var '" + name + "' must be fresh among free variables in the current proof gap\n",
        redundant_fail);
  };
  EXPECT_EQ(s.step("get_forall (hypothesis 1: {a_n = 1}) (x := {u})"), failed("get_forall target must be goal\n"));
  EXPECT_EQ(with("(z := {u})"), failed("quant var don't have 'z'\n", redundant_fail));
  EXPECT_EQ(with("(x := {1})"), failed("get_forall replacement must be a variable name\n", redundant_fail));
  EXPECT_EQ(with("(x := {a})"), stale("a"));
  EXPECT_EQ(with("(x := {n})"), stale("n"));
  EXPECT_EQ(with("(x := {u}) (y := {u})"), stale("u"));
  EXPECT_EQ(with("(x := {u}) (y := {v}) (w := {w})"), failed("Target is not a forall quantifier at this point\n"));
  s.gap.goal = nullptr;
  EXPECT_EQ(s.step("get_forall (GOAL: {x +}) (x := {u})"),
            failed("Failed to prepare goal for get_forall instantiation\n", redundant_ignore));
}

// The start of a sum is a variable like any other, although the text of a formula lists it among the bound ones.
TEST(quantifiers, starts_of_sums_are_free) {
  const auto stale = [](const std::string& kind, const std::string& name) {
    return failed(
        kind + " replacement var '" + name + "' must be fresh among free variables in the current proof gap\n",
        redundant_fail);
  };
  script_run s(
      gap_of({"sum_{i = c}^{n}(i) = 5", "exists (x), sum_{i = x}^{n}(i) = 6"}, "forall (x), sum_{i = x}^{n}(i) = 5"));
  EXPECT_EQ(s.step("get_forall (GOAL: {x = x}) (x := {c})"), stale("get_forall", "c"));
  EXPECT_EQ(s.step("get_exists (hypothesis 2: {x = x}) (x := {c})"), stale("get_exists", "c"));
  EXPECT_EQ(s.step("get_exists (hypothesis 2: {x = x}) (x := {i})"), success) << "the index is bound";
  EXPECT_TRUE(term_eqb(s.gap.hypothesis(3), formula("sum_{j = i}^{n}(j) = 6")));
  EXPECT_EQ(s.step("get_forall (GOAL: {x = x}) (x := {d})"), success);
  EXPECT_TRUE(term_eqb(s.gap.goal, formula("sum_{i = d}^{n}(i) = 5")));
}

TEST(quantifiers, starts_of_sums_are_replaced) {
  script_run starts(gap_of({}, "forall (k)(m), sum_{i = k}^{n}(i) = sum_{i = m}^{n}(i)"));
  EXPECT_EQ(starts.step("get_forall (GOAL: {x = 1}) (k := {c}) (m := {d})"), success);
  EXPECT_FALSE(solver_manager_dsl(starts.gap.goal, {}, initial_fee)) << "the two starts are different names";
  // Both names of the index part stand under the quantifier, so that the sum lists both.
  script_run both(gap_of({"exists (i)(c), sum_{i = c}^{n}(i) = 5"}, "exists (i)(c), sum_{i = c}^{n}(i) = 5"));
  EXPECT_EQ(both.step("get_exists (hypothesis 1: {x = x}) (c := {d}) (i := {k})"), success);
  EXPECT_TRUE(term_eqb(both.gap.hypothesis(2), formula("sum_{i = d}^{n}(i) = 5")));
  EXPECT_EQ(both.step("exists (c := {3}) (i := {k})"), success);
  EXPECT_TRUE(term_eqb(both.gap.goal, formula("sum_{i = 3}^{n}(i) = 5")));
  // The limit binds c, also inside of the sum.
  script_run inner(gap_of({}, "exists (k), lim_{c → 0}(sum_{i = c}^{n}(i) * k) = 1"));
  EXPECT_EQ(inner.step("exists (k := {c})"), success);
  EXPECT_TRUE(term_eqb(inner.gap.goal, formula("lim_{d → 0}(sum_{i = d}^{n}(i) * c) = 1")));
  // The k of the value is not that of the quantifier.
  script_run value(gap_of({}, "exists (x), forall (k), f(k) = x"));
  EXPECT_EQ(value.step("exists (x := {sum_{i = k}^{n}(i)})"), success);
  EXPECT_TRUE(term_eqb(value.gap.goal, formula("forall (m), f(m) = sum_{i = k}^{n}(i)")));
}

// What a notation binds was decided under the quantifier. At the top of a formula the same text may say more.
TEST(quantifiers, opening_keeps_what_is_bound) {
  script_run s(gap_of({"exists (y), { x + y | x > y } = A", "exists (S), { x | x ∈ S } = A"},
                      "forall (y), { x + y | x > y } = A"));
  EXPECT_EQ(s.step("get_exists (hypothesis 1: {x = x}) (y := {c})"), success);
  EXPECT_EQ(s.gap.hypothesis(3)->bare(), formula("{ x + c | x > c } = A")->bare());
  EXPECT_FALSE(term_eqb(s.gap.hypothesis(3), formula("{ x + c | x > c } = A")));
  EXPECT_EQ(s.step("get_forall (GOAL: {x = x}) (y := {d})"), success);
  EXPECT_TRUE(term_eqb(instantiate_term(formula("c = c")->right(), formula("d = d")->right(), s.gap.hypothesis(3)),
                       s.gap.goal));
  // Of k < i the notation does not tell the index, unless k comes from outside.
  script_run index(gap_of({}, "forall (k), sum_{k < i}(i) = a"));
  EXPECT_EQ(index.step("get_forall (GOAL: {x = x}) (k := {c})"), success);
  EXPECT_TRUE(term_eqb(index.gap.goal, formula("sum_{c < i}(i) = a")));
}

// A notation that speaks of a name without binding it: the name may change, nothing else may take its place.
TEST(quantifiers, what_is_guarded_is_not_replaced) {
  script_run s(gap_of({}, "exists (x), (x^2)' = 2 * x"));
  EXPECT_EQ(s.step("exists (x := {3})"),
            failed("instantiation failed: a notation speaks of 'x' without telling whether it binds it\n"));
  EXPECT_EQ(s.step("exists (x := {t})"), success);
  EXPECT_TRUE(term_eqb(s.gap.goal, formula("(t^2)' = 2 * t")));
}

TEST(quantifiers, result_is_the_formula_retyped) {
  script_run s(gap_of({"exists (c), lim_{x → c}(f(x)) = c"}, "forall (n), sum_{i = 1}^{n}(i) = n * (n + 1) / 2"));
  EXPECT_EQ(s.step("get_forall (GOAL: {x = 1}) (n := {m})"), success);
  EXPECT_TRUE(term_eqb(s.gap.goal, formula("sum_{i = 1}^{m}(i) = m * (m + 1) / 2")));
  EXPECT_EQ(s.step("get_exists (hypothesis 1: {x = 1}) (c := {x})"), success);
  EXPECT_TRUE(term_eqb(s.gap.hypothesis(2), formula("lim_{y → x}(f(y)) = x")));
}

// ---- get_condition, use_condition.

TEST(get_condition, moves_premises) {
  script_run s(gap_of({"z = 1"}, "a = 1 ⇒ (forall (x), x = b) ⇒ c = 1"), strong_check_mode);
  s.gap.goal = formula("a = 1 ⇒ ((forall (x), x = b) ⇒ c = 1)");
  EXPECT_EQ(s.step("get_condition (hypothesis 2: {a = 1}) (hypothesis 77: {forall (y), y = b}) in "
                   "(GOAL: {a = 1 ⇒ ((forall (x), x = b) ⇒ c = 1)})"),
            strong_success);
  EXPECT_EQ(s.goal(), "c = 1");
  EXPECT_EQ(s.hypothesis(2), "a = 1");
  EXPECT_EQ(s.hypothesis(3), "forall (x), x = b") << "the goal's own wording";
}

TEST(get_condition, fails_with_what_it_moved_so_far) {
  const std::string_view goal = "a = 1 ⇒ (b = 1 ⇒ c = 1)";
  const auto with = [goal](const std::string& conditions, int moved) {
    script_run s(gap_of({"z = 1"}, goal));
    const outcome result = s.step("get_condition " + conditions + " in (GOAL: {z = z})");
    EXPECT_EQ(s.gap.goal, formula(goal)) << "the goal is written last";
    EXPECT_EQ(s.gap.assu_num(), 1 + moved);
    return result;
  };
  EXPECT_EQ(with("(hypothesis 1: {a = 1})", 0),
            failed("Invalid condition hypothesis number: 1, this number has existed\n"));
  EXPECT_EQ(with("(hypothesis 2: {a = 1}) (hypothesis 2: {b = 1})", 1),
            failed("Invalid condition hypothesis number: 2, this number has existed\n"));
  EXPECT_EQ(with("(hypothesis 2: {a = 1}) (hypothesis 3: {b = 1}) (hypothesis 4: {c = 1})", 2),
            failed("goal is not long enough to match all conditions\n"));
  EXPECT_EQ(with("(hypothesis 2: {a = 1}) (hypothesis 3: {b = 1}) (hypothesis 3: {c = 1})", 2),
            failed("Invalid condition hypothesis number: 3, this number has existed\n"))
      << "the number is looked at first";
  EXPECT_EQ(with("(hypothesis 2: {b = 1})", 0),
            failed("Condition does not match goal hypothesis:\nb = 1 != \na = 1\n"));
  EXPECT_EQ(with("(hypothesis 2: {a +})", 0), failed("Condition does not match goal hypothesis:\n != \na = 1\n"));
  EXPECT_EQ(with("(hypothesis 0: {a = 1})", 0),
            failed("Invalid condition hypothesis number: 0, this number has existed\n"));

  script_run s(gap_of({"z = 1"}, goal));
  const dsl_get_condition in_hypothesis{{hypothesis_ref(2, "a = 1")}, hypothesis_ref(1, "z = 1")};
  EXPECT_EQ(s.execute({{.number = 1, .content = in_hypothesis}}), exe_fail);
  EXPECT_EQ(s.error_text, "get_condition target must be goal\n");
  EXPECT_EQ(s.step("get_condition (hypothesis 9999999999999999999: {a = 1}) in (GOAL: {z +})"), success);
  EXPECT_EQ(s.goal(), "b = 1 ⇒ c = 1");
}

TEST(use_condition, discharges_premises) {
  script_run s(gap_of({"x = 1 ⇒ (2 * y = y + y ⇒ z = 1)", "x = 1", "f(1 + x) = 2", "f(x + 1) = 2 ⇒ w = 1"}, "z = 1"),
               strong_check_mode);
  EXPECT_EQ(s.step("use_condition (hypothesis 2: {x = 1}) (obvious: {2 * y = y + y}) in "
                   "(hypothesis 1: {x = 1 ⇒ (2 * y = y + y ⇒ z = 1)}) as (hypothesis 1: {q = 1})"),
            strong_success)
      << "what stands behind as is not read";
  EXPECT_EQ(s.hypothesis(5), "z = 1");
  EXPECT_EQ(s.step("use_condition (hypothesis 3: {f(1 + x) = 2}) in (hypothesis 4: {f(x + 1) = 2 ⇒ w = 1}) as "
                   "(hypothesis 6: {w = 1})"),
            strong_success)
      << "premises are compared as rational expressions, too";
  EXPECT_EQ(s.hypothesis(6), "w = 1");
}

TEST(use_condition, checks_in_order) {
  script_run s(gap_of({"x = 1 ⇒ y = 1", "z = 1"}, "y = 1"));
  const auto with = [&s](const std::string& conditions, const std::string& target) {
    const outcome result = s.step("use_condition " + conditions + " in " + target + " as (hypothesis 3: {y = 1})");
    EXPECT_EQ(s.gap.assu_num(), 2);
    return result;
  };
  const std::string target = "(hypothesis 1: {x = 1 ⇒ y = 1})";
  EXPECT_EQ(with("(hypothesis 9: {x = 1})", "(hypothesis 0: {x = 1})"),
            failed("Invalid target hypothesis number: 0, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(with("(hypothesis 2: {z = 1}) (hypothesis 9999999999999999999: {x = 1})", target),
            failed("Invalid condition hypothesis number: 9223372036854775807, current proof gap has 2 hypotheses\n"))
      << "all numbers before all premises";
  EXPECT_EQ(with("(GOAL: {y = 1})", target),
            failed("Invalid condition hypothesis number: 0, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(with("(obvious: {x = 1})", target), failed("Obvious condition check failed : x = 1\n"));
  EXPECT_EQ(with("(obvious: {x +})", target), failed("Obvious condition check failed : \n"));
  EXPECT_EQ(with("(hypothesis 2: {z = 1})", target),
            failed("Condition does not match target hypothesis:\nz = 1 != \nx = 1\nEq(z, 1) != \nEq(x, 1)\n"));
  EXPECT_EQ(with("(obvious: {z = 1})", "(hypothesis 2: {z = 1})"),
            failed("Target hypothesis is not long enough to match all conditions\n"));
}

TEST(use_condition, declared_formulas_count_in_strong_mode_only) {
  const char* line = "use_condition (hypothesis 2: {x = 2}) in (hypothesis 1: {q = 1}) as (hypothesis 3: {y = 1})";
  script_run strong(gap_of({"x = 1 ⇒ y = 1", "x = 1"}, "y = 1"), strong_check_mode);
  EXPECT_EQ(strong.step(line), (outcome{exe_success,
                                        "Mismatched target hypothesis: actual x = 1 ⇒ y = 1 but expected q = 1\n"
                                        "Mismatched target hypothesis: actual x = 1 but expected x = 2\n",
                                        redundant_fail}));
  script_run fast(gap_of({"x = 1 ⇒ y = 1", "x = 1"}, "y = 1"));
  EXPECT_EQ(fast.step(line), success);
  EXPECT_EQ(fast.hypothesis(3), "y = 1");
}

// ---- destruct_and, case_analysis, or_intro, apply.

TEST(destruct_and, appends_the_parts_left_to_right) {
  script_run s(gap_of({"a = 1 ∧ (b = 1 ∧ c = 1)"}, "c = 1"), strong_check_mode);
  EXPECT_EQ(s.step("destruct_and (hypothesis 1: {a = 1 ∧ (b = 1 ∧ c = 1)}) as (hypothesis 2: {a = 1}) "
                   "(hypothesis 3: {b = 1}) (hypothesis 4: {c = 1})"),
            strong_success);
  EXPECT_EQ(s.gap.assu_num(), 4);
  EXPECT_EQ(s.hypothesis(4), "c = 1");
  EXPECT_EQ(s.step("destruct_and (hypothesis 1: {a = 2}) as (hypothesis 5: {a = 1}) (hypothesis 7: {b = 1}) "
                   "(hypothesis 7: {c = 2})"),
            (outcome{exe_success,
                     "execute_destruct_and: source hypothesis mismatch.\n"
                     "execute_destruct_and: target hypothesis number should be 6.\n"
                     "execute_destruct_and: target hypothesis content mismatch at 7.\n",
                     redundant_fail}));
  EXPECT_EQ(s.gap.assu_num(), 7);
}

TEST(destruct_and, checks_in_order) {
  script_run s(gap_of({"a = 1 ∧ b = 1", "c = 1"}, "c = 1"));
  EXPECT_EQ(s.step("destruct_and (GOAL: {c = 1}) as (hypothesis 3: {a = 1})"),
            failed("execute_destruct_and: source must be a hypothesis.\n"));
  EXPECT_EQ(s.step("destruct_and (hypothesis 9999999999999999999: {c = 1}) as (hypothesis 3: {a = 1})"),
            failed("execute_destruct_and: hypothesis index out of range: 9223372036854775807.\n"));
  EXPECT_EQ(s.step("destruct_and (hypothesis 2: {c = 1}) as (hypothesis 3: {a = 1})"),
            failed("execute_destruct_and: source hypothesis is not a conjunction.\n"));
  EXPECT_EQ(s.step("destruct_and (hypothesis 1: {a +}) as (hypothesis 3: {a = 1})"),
            failed("execute_destruct_and: target count mismatch, need 2 targets but got 1.\n"));
  EXPECT_EQ(s.step("destruct_and (hypothesis 1: {a +}) as (hypothesis 3: {a = 1}) (hypothesis 4: {b = 1}) "
                   "(hypothesis 5: {b = 1})"),
            failed("execute_destruct_and: target count mismatch, need 2 targets but got 3.\n"));
  EXPECT_EQ(s.gap.assu_num(), 2);
  EXPECT_EQ(s.step("destruct_and (hypothesis 1: {a = 1 ∧ b = 1}) as (hypothesis 3: {a +}) (GOAL: {b = 1})"),
            failed("execute_destruct_and: each target after 'as' must be a hypothesis.\n"));
  EXPECT_EQ(s.gap.assu_num(), 3) << "what was appended before the failure stays";
}

TEST(case_analysis, gives_one_gap_for_each_part) {
  script_run s(gap_of({"z = 1", "a = 1 ∨ b = 1 ∨ c = 1"}, "d = 1"), strong_check_mode);
  EXPECT_EQ(s.step("case_analysis (hypothesis 2: {z = 2})"), (outcome{exe_gap_split, "", redundant_ignore}));
  ASSERT_EQ(s.data.split_gaps.size(), 3U);
  const char* parts[] = {"a = 1", "b = 1", "c = 1"};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(s.data.split_gaps[i].assum, (term_list{formula("z = 1"), formula(parts[i])}));
    EXPECT_EQ(s.data.split_gaps[i].goal, formula("d = 1"));
  }
  EXPECT_EQ(s.gap.hypothesis(2), formula("a = 1 ∨ b = 1 ∨ c = 1"));
  EXPECT_EQ(s.step("case_analysis (hypothesis 1: {z = 1})"),
            failed("execute_case_analysis: the hypothesis is not a disjunction.\n"));
  EXPECT_EQ(s.step("case_analysis (hypothesis 0: {z = 1})"),
            failed("execute_case_analysis: hypothesis index out of range.\n"));
  EXPECT_EQ(s.step("case_analysis (GOAL: {d = 1})"),
            failed("execute_case_analysis: the hypothesis must be a HYPOTHESIS.\n"));
}

TEST(or_intro, splits_the_top_only) {
  script_run s(gap_of({}, "a = 1 ∨ b = 1 ∨ c = 1"), strong_check_mode);
  EXPECT_EQ(s.step("or_intro left"), strong_success);
  EXPECT_EQ(s.goal(), "a = 1 ∨ b = 1");
  EXPECT_EQ(s.step("or_intro right"), strong_success);
  EXPECT_EQ(s.goal(), "b = 1");
  EXPECT_EQ(s.step("or_intro right"), failed("execute_or_intro: current goal must be a binary disjunction.\n"));
  EXPECT_EQ(s.goal(), "b = 1");
  s.gap.goal = nullptr;
  EXPECT_EQ(s.step("or_intro left"), failed("execute_or_intro: current proof gap has no goal.\n"));
}

TEST(apply, reduces_the_goal_to_the_premises) {
  const std::string_view rule = "a = 1 ⇒ (b = 1 ⇒ (c = 1 ⇒ d = 1))";
  const auto remaining = [rule](std::string_view goal) {
    script_run s(gap_of({rule}, goal), strong_check_mode);
    const outcome result = s.step("apply (hypothesis 1: {" + std::string(rule) + "})");
    return result == strong_success ? s.goal() : result.error + std::to_string(result.flag);
  };
  EXPECT_EQ(remaining("d = 1"), "a = 1 ∧ b = 1 ∧ c = 1");
  EXPECT_EQ(remaining("c = 1 ⇒ d = 1"), "a = 1 ∧ b = 1");
  EXPECT_EQ(remaining("d = 1 ∨ e1 = 1"), "a = 1 ∧ b = 1 ∧ c = 1") << "what follows from the conclusion alone";
  EXPECT_EQ(remaining("¬(b = 1) ∨ ¬(c = 1) ∨ d = 1"), "a = 1");
  EXPECT_EQ(remaining("d = 2"), "hypothesis's conclusion does not match current goal\n1");
}

TEST(apply, finishes_and_fails) {
  script_run s(gap_of({"forall (x), x = b", "a = 1"}, "forall (y), y = b"), strong_check_mode);
  EXPECT_EQ(s.step("apply (theorem 1: {forall (x), x = b})"),
            failed("apply instruction can only be used with hypotheses, not theorems or other terms\n"));
  EXPECT_EQ(s.step("apply (hypothesis 3: {forall (x), x = b})"),
            failed("Invalid hypothesis number: 3, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(s.step("apply (hypothesis 0: {a +})"),
            failed("Invalid hypothesis number: 0, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(s.step("apply (hypothesis 2: {a = 2})"),
            failed("Mismatched hypothesis: actual hypothesis a = 1 but expected a = 2\n"
                   "hypothesis's conclusion does not match current goal\n",
                   redundant_fail));
  EXPECT_EQ(s.step("apply (hypothesis 1: {forall (z), z = b})"), (outcome{exe_finish, "", redundant_success}));
  EXPECT_TRUE(proof_gap_full_is_finished(s.gap));
}

}  // namespace
}  // namespace vetro::test

// Instantiation without capture: by example, against brute-force evaluation of random formulas, and its cost on deep
// and on shared terms.
#include "term/substitute/instantiate.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "support/formulas.h"
#include "support/term_tools.h"
#include "term/compare.h"
#include "term/print/pretty.h"
#include "term/state.h"
#include "term/substitute/careful.h"
#include "term/term_split_combine.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

using build::app;
using build::list;
using build::num;
using build::quant;
using build::var;
using test::formula;

class instantiate : public testing::Test {
 protected:
  void SetUp() override { reset_state(); }
};

// An expression, read where a formula is wanted.
term_ptr value(std::string_view text) { return formula(std::string(text) + " = 0")->left()->right(); }

std::string instantiated(std::string_view src, std::string_view dest, std::string_view text) {
  reset_state();
  const term_ptr from = value(src);
  const term_ptr to = value(dest);
  return print_term_to_string(instantiate_term(from, to, formula(text)));
}

struct example {
  const char* src;
  const char* dest;
  const char* before;
  const char* after;
};

TEST_F(instantiate, by_example) {
  const example examples[] = {
      // Nothing to capture: all occurrences, also in an index and in the sets of entries.
      {"x", "2", "forall (y), y > x", "forall (y), y > 2"},
      {"n", "k + 1", "a_n = n", "a_{k + 1} = k + 1"},
      {"x", "T", "forall (y ∈ x), y > 0", "forall (y ∈ T), y > 0"},
      {"a_n", "5", "a_n + b_n = n", "5 + b_{n} = n"},
      // Listed binders. One that is the value itself is renamed also where nothing is replaced.
      {"x", "y", "forall (y), y > x", "forall (y1), y1 > y"},
      {"x", "y", "(forall (y), y > 0) ∧ (forall (y), y > x)", "(forall (y1), y1 > 0) ∧ (forall (y2), y2 > y)"},
      {"x", "y + 1", "forall (y), y > x", "forall (y1), y1 > y + 1"},
      {"x", "y + 1", "(forall (y), y > 0) ∧ x = 1", "(forall (y), y > 0) ∧ y + 1 = 1"},
      {"x", "y + z", "forall (y) (z), x = y * z", "forall (y1) (z2), y + z = y1 * z2"},
      {"x", "a_n", "forall (n), n > x", "forall (n1), n1 > a_{n}"},
      {"x", "y", "forall (y) (y1), y + y1 > x", "forall (y2) (y1), y2 + y1 > y"},
      {"x", "y + y1", "exists (y), y > x", "exists (y2), y2 > y + y1"},
      // The replaced variable bound again.
      {"x", "y + 1", "forall (x), exists (y), y > x", "forall (x), exists (y), y > x"},
      {"x", "y", "forall (y) (x), y > x", "forall (y) (x), y > x"},
      {"x", "5", "x > 0 ∧ (forall (x), x > 1)", "5 > 0 ∧ (forall (x), x > 1)"},
      // Entries that are propositions.
      {"x", "y + 1", "forall (y ∈ S), y > x", "forall (y1 ∈ S), y1 > y + 1"},
      {"x", "y", "forall (y ∈ S), y > x", "forall (y1 ∈ S), y1 > y"},
      {"x", "y", "forall (y ∈ S), y > 0", "forall (y ∈ S), y > 0"},
      {"x", "y", "forall (y ∈ S(x)), y > 0", "forall (y ∈ S(y)), y > 0"},
      {"x", "y", "forall (y ∈ S(y)), y > x", "forall (y1 ∈ S(y)), y1 > y"},
      {"x", "y", "forall (y ∈ S) (z ∈ T(y)), y + z > x", "forall (y1 ∈ S) (z ∈ T(y1)), y1 + z > y"},
      {"x", "y", "forall (y, z ∈ S), y + z > x", "forall (y1, z ∈ S), y1 + z > y"},
      {"x", "y + 1", "forall (y ≥ x), y > x", "forall (y1 ≥ y + 1), y1 > y + 1"},
      {"x", "y", "forall (0 < y), y > x", "forall (0 < y1), y1 > y"},
      {"x", "y", "forall (y < x < z), y > x", "forall (y1 < y < z), y1 > y"},
      {"x", "5", "forall (x ∈ S), x > 0", "forall (x ∈ S), x > 0"},
      {"x", "5", "forall (x ∈ S(x)), x > 0", "forall (x ∈ S(5)), x > 0"},
      {"x", "5", "forall (z ∈ S(x)) (x), z > x", "forall (z ∈ S(5)) (x), z > x"},
      // A renaming stops where the same name is bound again, and goes on into the sets of inner entries.
      {"x", "y + 1", "forall (y), y > x ∧ (exists (y ∈ S(y)), y < 0)",
       "forall (y1), y1 > y + 1 ∧ (exists (y ∈ S(y1)), y < 0)"},
      {"x", "y", "forall (y), y > x ∧ (exists (y ∈ S), y < 0)", "forall (y1), y1 > y ∧ (exists (y ∈ S), y < 0)"},
      {"x", "y + 1", "forall (y), y > x ∧ (forall (x), x > y)", "forall (y1), y1 > y + 1 ∧ (forall (x), x > y1)"},
      // Binders that operators imply.
      {"x", "i", "sum_{i = 1}^{n}(i + x) = 0", "sum_{ i1 = 1 }^{ n } (i1 + i) = 0"},
      {"x", "2 * i", "prod_{i = 1}^{n}(i + x) = 0", "prod_{ i1 = 1 }^{ n } (i1 + 2 * i) = 0"},
      {"x", "2 * i", "sum_{i = 1}^{n}(i) = x", "sum_{ i = 1 }^{ n } (i) = 2 * i"},
      {"i", "5", "sum_{i = 1}^{n}(i) = i", "sum_{ i = 1 }^{ n } (i) = 5"},
      {"x", "h + 1", "lim_{h → 0}(f(x + h)) = 0", "lim_{ h1 → 0 } (f(h + 1 + h1)) = 0"},
      {"x", "y + 1", "S = { y | y > x }", "S = { y1 | y1 > y + 1 }"},
      {"x", "t + 1", "int(x * t * diff(t)) = 0", "IndefInt((t + 1) * t1 * diff(t1)) = 0"},
      {"x", "i + 1", "sum_{i = 1}^{n}(x + sum_{i = 1}^{2}(i)) = 0",
       "sum_{ i1 = 1 }^{ n } (i + 1 + (sum_{ i = 1 }^{ 2 } (i))) = 0"},
      // Lambdas.
      {"x", "y + 1", "(fun y . y + x) = f", "(fun y1: RealSet . y1 + y + 1) = f"},
      {"x", "y", "(fun y [y > x] . y) = f", "(fun y1: RealSet [y1 > y] . y1) = f"},
      {"x", "y + 1", "(fun x . x) = f", "(fun x: RealSet . x) = f"},
      // An indexed variable that is bound as a whole stays itself.
      {"n", "5", "forall (a_n), a_n > n", "forall (v1), v1 > 5"},
      {"x", "y", "forall (y), y > x ∧ (forall (a_y), a_y > y)", "forall (y1), y1 > y ∧ (forall (a_{y1}), a_{y1} > y1)"},
      {"x", "a_n + 1", "forall (a_n), a_n > x", "forall (v1), v1 > a_{n} + 1"},
  };
  for (const example& e : examples) {
    EXPECT_EQ(instantiated(e.src, e.dest, e.before), e.after) << e.src << " := " << e.dest << " in " << e.before;
  }
}

TEST_F(instantiate, renames_in_scopes_and_replaces_nothing_there) {
  EXPECT_EQ(instantiated("x", "y + 1", "forall (y), y > x [@scope y > x @]"),
            "forall (y1), y1 > y + 1 [@scope y1 > x @]");
}

TEST_F(instantiate, no_value_no_term) {
  const term_ptr x = var("x");
  EXPECT_EQ(instantiate_term(nullptr, x, x), nullptr);
  EXPECT_EQ(instantiate_term(x, nullptr, x), nullptr);
  EXPECT_EQ(instantiate_term(x, x, nullptr), nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(instantiate_term(x, num(1), app(var("f"), {list({}), x})), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: subst_term visiting NULL pointer\n");
}

// Names drawn from different variables may come out alike: x with 12, x1 with 2.
TEST_F(instantiate, names_drawn_in_one_walk_differ) {
  const char* between[] = {"b", "c", "d", "f", "g", "h", "i", "j", "k"};
  term_ptr nested = quant(Forall, {var("x")}, formula("x1 + x = y"));
  term_ptr all = app(Plus, {var("x"), var("x1")});
  for (const char* name : between) {
    nested = quant(Forall, {var(name)}, nested);
    all = app(Plus, {all, var(name)});
  }
  state().fresh_counter = 1;
  term_ptr inner = instantiate_term(var("y"), all, quant(Forall, {var("x1")}, nested));
  const term_ptr outer = inner->vars()[0];
  while (inner->body()->type() == Quant) {
    inner = inner->body();
  }
  EXPECT_EQ(print_term_to_string(outer), "x12");
  EXPECT_EQ(print_term_to_string(inner->vars()[0]), "x13");
}

std::string opened(std::string_view text, std::string_view binder, std::string_view dest) {
  reset_state();
  const term_ptr from = value(binder);
  const term_ptr to = value(dest);
  return print_term_to_string(instantiate_binders(formula(text), {&from, 1}, {&to, 1}));
}

TEST_F(instantiate, binders_taken_off) {
  EXPECT_EQ(opened("forall (x), x > y", "x", "y"), "y > y");
  EXPECT_EQ(opened("forall (x) (y), x > y", "x", "y + 1"), "forall (y1), y + 1 > y1");
  EXPECT_EQ(opened("forall (y) (x), x > y", "x", "y + 1"), "forall (y1), y + 1 > y1");
  EXPECT_EQ(opened("forall (S) (y ∈ S), y > 0", "S", "T(y)"), "forall (y ∈ T(y)), y > 0");
  // An entry before the binder speaks of another variable of that name.
  EXPECT_EQ(opened("forall (y ∈ S) (S), y ∈ S", "S", "T"), "forall (y ∈ S), y ∈ T");
  EXPECT_EQ(opened("exists (x ∈ S) (x), x > 0", "x", "c"), "exists (x ∈ S), c > 0");
  EXPECT_EQ(opened("exists (x ∈ S) (x), x > 0", "x", "x"), "exists (x2 ∈ S), x > 0");
  EXPECT_EQ(opened("forall (y ∈ S) (S) (z ∈ S), y + z ∈ S", "S", "z"), "forall (y ∈ S) (z2 ∈ z), y + z2 ∈ z");
}

// ---- Against the meaning. Numbers are 0, 1, 2; y ∈ t holds unless y + t is a multiple of 3; a_n is 2a + n.

using assignment = std::map<std::string, int, std::less<>>;

int evaluate(term_ptr t, const assignment& values);

bool holds(term_ptr t, const assignment& values);

// True when the body holds for all (or some) choices of the entries from i on.
bool holds_for_entries(term_ptr t, std::size_t i, const assignment& values) {
  if (i == t->vars().size()) {
    return holds(t->body(), values);
  }
  const term_ptr entry = t->vars()[i];
  const term_ptr bound = is_var(entry) ? entry : entry->argument(0);
  for (int choice = 0; choice < 3; ++choice) {
    assignment inner = values;
    inner[std::string(bound->name())] = choice;
    if (!is_var(entry)) {
      // The set belongs to the surroundings.
      const bool member = (choice + evaluate(entry->right(), values)) % 3 != 0;
      if (!member) {
        continue;
      }
    }
    if (holds_for_entries(t, i + 1, inner) != (t->quant() == Forall)) {
      return t->quant() != Forall;
    }
  }
  return t->quant() == Forall;
}

bool holds(term_ptr t, const assignment& values) {
  if (t->type() == Quant) {
    return holds_for_entries(t, 0, values);
  }
  if (const auto connected = composed_prop_split(t); connected.has_value()) {
    const bool left = holds(connected->t1, values);
    return connected->connect == And ? left && holds(connected->t2, values) : left || holds(connected->t2, values);
  }
  const prop relation = *pred_split(t);
  const int left = evaluate(relation.left, values);
  const int right = evaluate(relation.right, values);
  return relation.pred == Eq ? left == right : left < right;
}

int evaluate(term_ptr t, const assignment& values) {
  if (is_var(t)) {
    return values.at(std::string(t->name()));
  }
  if (t->type() == Const) {
    return t->integer();
  }
  const spine parts = spine_of(t);
  assignment inner = values;
  if (parts.head->type() == Lambda) {
    inner[std::string(parts.head->vars()[0]->name())] = evaluate(parts.args[0], values);
    return evaluate(parts.head->body(), inner);
  }
  if (parts.head->oper() == BigSumSup) {
    const std::string index(parts.args[0]->left()->right()->name());
    int sum = 0;
    for (int i = evaluate(parts.args[0]->right(), values); i <= evaluate(parts.args[1], values); ++i) {
      inner[index] = i;
      sum += evaluate(parts.args[2], inner);
    }
    return sum % 3;
  }
  const int a = evaluate(parts.args[0], values);
  const int b = evaluate(parts.args[1], values);
  return (parts.head->oper() == Index ? 2 * a + b : a + b) % 3;
}

class random_formulas {
 public:
  term_ptr prop(int depth) {
    switch (depth == 0 ? 0 : pick(6)) {
      case 0:
        return app(pick(2) == 0 ? Eq : Lt, {expression(2), expression(2)});
      case 1:
      case 2:
        return app(pick(2) == 0 ? And : Or, {prop(depth - 1), prop(depth - 1)});
      default: {
        term_list entries;
        for (std::uint32_t i = pick(3) + 1; i > 0; --i) {
          entries.push_back(pick(2) == 0 ? name() : app(Belong, {name(), expression(1)}));
        }
        return mk_quant(pick(2) == 0 ? Forall : Exists, entries, prop(depth - 1));
      }
    }
  }

  term_ptr expression(int depth) {
    switch (depth == 0 ? pick(4) : pick(9)) {
      case 0:
        return num(static_cast<int>(pick(3)));
      case 4:
      case 5:
        return app(Plus, {expression(depth - 1), expression(depth - 1)});
      case 6:
        return app(Index, {name(), expression(depth - 1)});
      case 7: {
        const term_ptr index = name();
        const term_ptr from = app(Eq, {index, expression(depth - 1)});
        return with_binders(app(BigSumSup, {from, expression(depth - 1), expression(depth - 1)}), {index});
      }
      case 8:
        return app(build::lambda({name()}, expression(depth - 1)), {expression(depth - 1)});
      default:
        return name();
    }
  }

  term_ptr name() { return var(names[pick(3)]); }
  std::uint32_t pick(std::uint32_t below) {
    seed_ = seed_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::uint32_t>(seed_ >> 33U) % below;
  }

  static constexpr std::array<const char*, 3> names = {"x", "y", "z"};

 private:
  std::uint64_t seed_ = 7;
};

TEST_F(instantiate, keeps_the_meaning_of_random_formulas) {
  random_formulas random;
  int with_effect = 0;
  for (int round = 0; round < 400; ++round) {
    const term_ptr t = random.prop(3);
    const term_ptr dest = random.expression(2);
    const term_ptr src = var("x");
    const term_ptr result = instantiate_term(src, dest, t);
    const term_ptr careful = subst_term_capture_avoiding(src, dest, t);
    const term_ptr at_once = substitute_all({&src, 1}, {&dest, 1}, t);
    ASSERT_NE(result, nullptr);
    with_effect += result != t ? 1 : 0;
    for (int values = 0; values < 27; ++values) {
      const assignment outside = {{"x", values / 9}, {"y", values / 3 % 3}, {"z", values % 3}};
      assignment inside = outside;
      inside["x"] = evaluate(dest, outside);
      const bool expected = holds(t, inside);
      for (term_ptr changed : {result, careful, at_once}) {
        ASSERT_EQ(holds(changed, outside), expected)
            << "x := " << print_term_to_string(dest) << " in " << print_term_to_string(t) << " gives "
            << print_term_to_string(changed);
      }
    }
  }
  EXPECT_GT(with_effect, 200);
}

// ---- Cost.

TEST_F(instantiate, deep_quantifiers_take_linear_time) {
  constexpr int levels = 100'000;
  term_ptr captured = formula("x > y + z");
  term_ptr entries = captured;
  term_ptr idle = captured;
  for (int i = 0; i < levels; ++i) {
    captured = quant(Forall, {var(i % 2 == 0 ? "y" : "z")}, captured);
    entries = quant(Exists, {app(Belong, {var("y"), app(var("S"), {var("x")})})}, entries);
    idle = quant(Forall, {var("n" + std::to_string(i))}, idle);
  }
  const term_ptr dest = value("y + z");
  const term_ptr result = instantiate_term(var("x"), dest, captured);
  EXPECT_EQ(result->depth(), captured->depth() + 1);
  EXPECT_NE(result->vars()[0], captured->vars()[0]);
  EXPECT_NE(instantiate_term(var("x"), dest, entries), nullptr);
  EXPECT_NE(instantiate_term(var("x"), dest, idle), nullptr);
  EXPECT_TRUE(occurs_free(var("x"), entries));
  EXPECT_FALSE(occurs_free(var("y"), captured));
}

TEST_F(instantiate, shared_terms_are_walked_once) {
  const term_ptr y = var("y");
  term_ptr t = quant(Forall, {app(Belong, {y, var("S")})}, app(Gt, {y, var("x")}));
  for (int i = 0; i < 60; ++i) {
    t = app(And, {t, t});
  }
  EXPECT_TRUE(occurs_free(var("x"), t));
  EXPECT_FALSE(occurs_free(var("y"), t));
  EXPECT_FALSE(occurs_free(var("w"), t));
  EXPECT_EQ(print_term_to_string(instantiate_term(var("x"), num(2), t)->right()->depth() > 60 ? y : nullptr), "y");
}

}  // namespace
}  // namespace vetro

// The store: every node once, its bare form, its facts, and the words that name leaves.
#include "term/ast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "support/term_tools.h"
#include "term/traverse.h"
#include "term/variables/free_variable.h"

namespace vetro {
namespace {

using namespace build;

class ast_test : public testing::Test {
 protected:
  void SetUp() override { reset_state(); }
};

TEST_F(ast_test, a_node_is_built_once) {
  EXPECT_EQ(var("x"), var(std::string("x")));
  EXPECT_NE(var("x"), var("y"));
  EXPECT_EQ(plus(var("x"), num(1)), plus(var("x"), num(1)));
  EXPECT_NE(plus(var("x"), num(1)), plus(num(1), var("x")));
  EXPECT_NE(num(1), mk_decimal("1"));
  EXPECT_NE(mk_decimal("1.5"), mk_decimal("1.50"));
  EXPECT_NE(mk_oper(Union), mk_oper(Inter));
  EXPECT_NE(list({}), list({list({})}));
  EXPECT_NE(quant(Forall, {var("x")}, var("p")), quant(Exists, {var("x")}, var("p")));
  EXPECT_NE(lambda({var("x")}, var("y")), lambda({var("x")}, var("y"), var("y")));
  const term_ptr vars[] = {var("x")};
  EXPECT_NE(mk_lambda(vars, {make_lambda_real_type()}, nullptr, var("x")),
            mk_lambda(vars, {make_lambda_base_type(LambdaInteger)}, nullptr, var("x")));
  EXPECT_EQ(make_lambda_func_type(make_lambda_real_type(), make_lambda_real_type()),
            make_lambda_func_type(make_lambda_real_type(), make_lambda_real_type()));
}

// Each growth of the table moves every node by its hash; a node that was lost would be built a second time.
TEST_F(ast_test, growth_of_the_table_loses_no_node) {
  constexpr int count = 100'000;
  std::vector<term_ptr> nodes;
  for (int i = 0; i < count; ++i) {
    const term_ptr leaf = var("v" + std::to_string(i));
    nodes.push_back(i % 3 == 0 ? with_scope(leaf, num(i)) : plus(leaf, num(i)));
  }
  for (int i = 0; i < count; ++i) {
    const term_ptr leaf = var("v" + std::to_string(i));
    ASSERT_EQ(nodes[static_cast<std::size_t>(i)], i % 3 == 0 ? with_scope(leaf, num(i)) : plus(leaf, num(i))) << i;
  }
}

TEST_F(ast_test, a_null_part_gives_null) {
  EXPECT_EQ(mk_apply(nullptr, num(1)), nullptr);
  EXPECT_EQ(mk_apply(num(1), nullptr), nullptr);
  EXPECT_EQ(list({num(1), nullptr}), nullptr);
  EXPECT_EQ(forall({nullptr}, num(1)), nullptr);
  EXPECT_EQ(forall({var("x")}, nullptr), nullptr);
  EXPECT_EQ(lambda({var("x")}, nullptr), nullptr);
  EXPECT_EQ(app(Plus, {num(1), nullptr}), nullptr);
  EXPECT_EQ(with_scope(nullptr, num(1)), nullptr);
  EXPECT_EQ(with_scope(num(1), nullptr), num(1));
}

TEST_F(ast_test, metadata_makes_another_node_with_the_same_bare_form) {
  const term_ptr x = var("x");
  const term_ptr scoped = with_scope(x, gt(x, num(0)));
  const term_ptr plain = plus(x, num(1));
  const term_ptr inside = plus(scoped, num(1));
  EXPECT_NE(scoped, x);
  EXPECT_EQ(scoped->bare(), x);
  EXPECT_EQ(inside->bare(), plain);
  EXPECT_FALSE(inside->has_meta());
  EXPECT_EQ(with_binders(inside, {x})->bare(), plain);
  EXPECT_EQ(with_binders(with_binders(plain, {x}), {}), plain);
  EXPECT_EQ(without_meta(with_binders(inside, {x})), inside);
  EXPECT_NE(with_binders(plain, {x}), with_scope(plain, x));
  EXPECT_NE(with_binders(plain, {x, var("y")}), with_binders(plain, {var("y"), x}));
  const soft_type soft{ST_Num, nullptr, nullptr, 0, 0, {}};
  const term_ptr typed = with_meta(plain, {{}, nullptr, &soft});
  EXPECT_NE(typed, plain);
  EXPECT_EQ(typed->bare(), plain);
  EXPECT_EQ(lambda({x}, scoped, scoped)->bare(), lambda({x}, x, x));
}

TEST_F(ast_test, facts_and_names_come_up_from_every_part) {
  const term_ptr x = var("x");
  const term_ptr plain = plus(x, num(1));
  EXPECT_EQ(plain->size(), 5U);
  for (const term_fact fact : {fact_binding, fact_meta, fact_scope, fact_pattern, fact_lambda, fact_empty_list}) {
    EXPECT_FALSE(plain->has(fact)) << fact;
  }
  const term_ptr function = lambda({x}, x);
  const std::vector<std::pair<term_fact, term_ptr>> sources = {{fact_binding, function},
                                                               {fact_binding, forall({x}, x)},
                                                               {fact_binding, sum(x, x)},
                                                               {fact_meta, sum(x, x)},
                                                               {fact_meta, with_scope(x, num(1))},
                                                               {fact_scope, with_scope(x, num(1))},
                                                               {fact_pattern, mk_pattern(PatternWildCard)},
                                                               {fact_lambda, function},
                                                               {fact_empty_list, list({})}};
  for (const auto& [fact, source] : sources) {
    const term_ptr z = var("z");
    const std::vector<term_ptr> holders = {plus(source, z),           plus(z, source),
                                           list({z, source}),         forall({source}, z),
                                           forall({z}, source),       lambda({z}, source),
                                           lambda({z}, z, source),    with_scope(z, source),
                                           with_binders(z, {source}), mk_free_var_tag({}, source)};
    for (std::size_t i = 0; i < holders.size(); ++i) {
      EXPECT_TRUE(holders[i]->has(fact)) << fact << " in holder " << i;
      EXPECT_GT(holders[i]->size(), source->size());
      EXPECT_GT(holders[i]->depth(), source->depth());
      EXPECT_EQ(source->name_mask() & ~holders[i]->name_mask(), 0U);
    }
  }
  EXPECT_EQ(doubled(x, 40)->size(), 0xffffffffU) << "the size as a tree saturates";
}

TEST_F(ast_test, traversal_changes_the_selected_parts_only) {
  const term_ptr x = var("x");
  const term_ptr y = var("y");
  const auto to_y = [&](auto&& self, term_ptr t, unsigned parts) -> term_ptr {
    return t == x ? y : map_children(t, parts, [&](term_ptr part) { return self(self, part, parts); });
  };
  const term_ptr t = with_meta(plus(x, forall({x}, x)), {{x}, x, nullptr});
  EXPECT_EQ(to_y(to_y, t, walk_all), with_meta(plus(y, forall({y}, y)), {{y}, y, nullptr}));
  EXPECT_EQ(to_y(to_y, t, walk_apply | walk_body | keep_meta), with_meta(plus(y, forall({x}, y)), {{x}, x, nullptr}));
  EXPECT_EQ(to_y(to_y, t, walk_apply), plus(y, forall({x}, x))) << "metadata that is not kept is dropped";
  EXPECT_EQ(to_y(to_y, with_scope(y, x), walk_apply), with_scope(y, x)) << "an unchanged node keeps it";
  EXPECT_EQ(map_children(t, walk_children, [](term_ptr) -> term_ptr { return nullptr; }), nullptr);
}

TEST_F(ast_test, words_name_leaves) {
  for (int kind = Infty; kind <= Ellipsis; ++kind) {
    EXPECT_EQ(name_dispatch(const_type_internal(kind)), mk_const(static_cast<const_type>(kind))) << kind;
  }
  for (int oper = IntervalLoRo; oper <= RadiusOfConvergence; ++oper) {
    if (oper != Vec) {
      EXPECT_EQ(name_dispatch(oper_type_internal(oper)), mk_oper(static_cast<oper_type>(oper))) << oper;
    }
  }
  for (int pred = PredChain; pred <= Defined; ++pred) {
    EXPECT_EQ(name_dispatch(pred_type_internal(pred)), mk_pred(static_cast<pred_type>(pred))) << pred;
  }
  for (int connect = Not; connect <= Iff; ++connect) {
    EXPECT_EQ(name_dispatch(connect_type_internal(connect)), mk_connect(static_cast<connect_type>(connect))) << connect;
  }
  const std::vector<std::pair<const char*, const_type>> sets = {{"Integer", IntegerSet},
                                                                {"NatPlus", PosIntegerSet},
                                                                {"Nat", NonNegIntegerSet},
                                                                {"Rational", RationalSet},
                                                                {"RationalPlus", PosRationalSet},
                                                                {"Real", RealSet},
                                                                {"RealPlus", PosRealSet},
                                                                {"Complex", ComplexSet},
                                                                {"e", E},
                                                                {"π", Pi},
                                                                {"__IMAGINARY_UNIT__", I}};
  for (const auto& [word, kind] : sets) {
    EXPECT_EQ(name_dispatch(word), mk_const(kind)) << word;
  }
  const std::vector<std::pair<const char*, oper_type>> opers = {
      {"Frac", Frac}, {"Sqrt", Sqrt},   {"sqrtn", Sqrtn}, {"Cbrt", Cbrt},    {"Max", Max},    {"Min", Min},
      {"Sup", Sup},   {"Inf", Inf},     {"Ln", Ln},       {"Lg", Lg},        {"Log", Log},    {"Bar", Bar},
      {"Sgn", Sgn},   {"Floor", Floor}, {"Ceil", Ceil},   {"Grad", VecGrad}, {"Rot", VecRot}, {"Nabla", Nabla},
      {"Div", Div},   {"div", VecDiv},  {"diff", D},      {"pdiff", PD}};
  for (const auto& [word, oper] : opers) {
    EXPECT_EQ(name_dispatch(word), mk_oper(oper)) << word;
  }
  for (int oper = Sin; oper <= Arccsch; ++oper) {
    std::string word(oper_type_internal(oper));
    word[0] = static_cast<char>(word[0] - 'a' + 'A');
    EXPECT_EQ(name_dispatch(word), mk_oper(static_cast<oper_type>(oper))) << word;
  }
  for (const char* word :
       {"x", "", "Decimal", "SIN", "E", "I", "Pi", "plus", "D", "PD", "?", "Forall", "real", "Vec"}) {
    EXPECT_EQ(name_dispatch(word), nullptr) << word;
  }
}

TEST_F(ast_test, unknown_numbers_have_no_name) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(const_type_internal(28), "Unknown_const_type");
  EXPECT_EQ(oper_type_internal(Vec), "Unknown_oper_type");
  EXPECT_EQ(pred_type_internal(310), "Unknown_pred_type");
  EXPECT_EQ(connect_type_internal(309), "Unknown_connect_type");
  EXPECT_EQ(pattern_type_internal(327), "Unknown_pattern_type");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: const_type_internal visiting unknown const_type 28.\n"
            "Error: oper_type_internal visiting unknown oper_type " +
                std::to_string(Vec) +
                "\n"
                "Error: pred_type_internal visitinng unknown pred_type 310\n"
                "Error: connect_type_internal visiting unknown connect type 309\n"
                "Error: pattern_type_internal visiting unknown pattern type 327\n");
}

TEST_F(ast_test, names_of_parameter_types) {
  bool ok = false;
  for (int base = 0; base <= static_cast<int>(LambdaComplex); ++base) {
    EXPECT_EQ(lambda_base_type_from_name(const_type_internal(IntegerSet + base), &ok),
              static_cast<lambda_base_type>(base));
    EXPECT_TRUE(ok);
  }
  for (const char* word : {"Nat", "Real", "PrimeSet", "realset", ""}) {
    EXPECT_EQ(lambda_base_type_from_name(word, &ok), LambdaReal) << word;
    EXPECT_FALSE(ok) << word;
  }
  EXPECT_EQ(lambda_base_type_from_name("IntegerSet", nullptr), LambdaInteger);
  EXPECT_TRUE(lambda_var_type_list_eqb({make_lambda_real_type()}, {make_lambda_base_type(LambdaReal)}));
  EXPECT_FALSE(lambda_var_type_list_eqb({make_lambda_real_type()}, {}));
}

TEST_F(ast_test, spines_and_leaf_tests) {
  const term_ptr x = var("x");
  const spine parts = spine_of(app(x, {num(1), num(2)}));
  EXPECT_EQ(parts.head, x);
  EXPECT_EQ(parts.args, (term_list{num(1), num(2)}));
  EXPECT_EQ(spine_of(left_spine(x)).args.size(), static_cast<std::size_t>(deep_levels));
  EXPECT_TRUE(is_oper(mk_oper(Plus), Plus));
  EXPECT_FALSE(is_oper(with_scope(mk_oper(Plus), x), Plus));
  EXPECT_FALSE(is_integer(mk_decimal("1"), 1));
  EXPECT_FALSE(is_var(nullptr));
}

}  // namespace
}  // namespace vetro

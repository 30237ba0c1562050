// Matching by shape: what each kind of pattern takes and captures, what counts on a leaf and what does not on an Apply,
// and that a text is read once. A table of texts stands in for the reader of the formula language.
#include "term/pattern_match.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/build_terms.h"
#include "term/state.h"

namespace vetro {
namespace {

using build::app;
using build::chain;
using build::list;
using build::num;
using build::quant;
using build::var;

std::map<std::string, term_ptr, std::less<>>& known_texts() {
  static std::map<std::string, term_ptr, std::less<>> texts;
  return texts;
}
std::vector<std::string>& texts_read() {
  static std::vector<std::string> texts;
  return texts;
}

term_ptr read_known_text(std::string_view text) {
  texts_read().emplace_back(text);
  const auto found = known_texts().find(text);
  return found == known_texts().end() ? nullptr : found->second;
}

// Patterns that other tests have compiled would not be read again.
struct fresh_state {
  fresh_state() { reset_state(); }
  ~fresh_state() { reset_state(); }
};

class pattern_match_test : public fresh_state, public testing::Test {
 protected:
  pattern_match_test() {
    known_texts() = {
        {"?", any},
        {"_", none},
        {"Plus(?, ?)", app(Plus, {any, any})},
        {"Plus(_, ?)", app(Plus, {none, any})},
        {"Plus(?, Mult(2, ?))", app(Plus, {any, app(Mult, {num(2), any})})},
        {"Lt(?, ?)", app(Lt, {any, any})},
        {"?(?)", app(any, {any})},
        {"?(?, ?)", app(any, {any, any})},
        {"?Var", mk_pattern(PatternVar)},
        {"?Const", mk_pattern(PatternConst)},
        {"?TermList", mk_pattern(PatternTermList)},
        {"?Oper(?, ?)", app(mk_pattern(PatternOper), {any, any})},
        {"?Pred(?, ?)", app(mk_pattern(PatternPred), {any, any})},
        {"?Connect(?, ?)", app(mk_pattern(PatternConnect), {any, any})},
        {"{ ? | ?TermList }", app(SetDesc, {any, mk_pattern(PatternTermList)})},
        {"(?, x)", app(Tuple, {list({any, x})})},
        {"?FuncApply(?)", mk_pattern(PatternFuncApply)},
        {"?FuncApply(?) + ?", app(Plus, {mk_pattern(PatternFuncApply), any})},
        {"x", x},
        {"x [@scope ? > 0 @]", with_scope(x, app(Gt, {any, num(0)}))},
        {"1.5", mk_decimal("1.5")},
        {"2", num(2)},
        {"Foo(?)", app(var("Foo"), {any})},
        {"fun x [?] . ?", lambda(any, any)},
        {"fun x . ?", lambda(nullptr, any)},
        {"forall (?)(x), ?", quant(Forall, {any, x}, any)},
        {"h(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", app(var("h"), {any, any, any, any, any, any, any, any, any, any})},
        {"[@free x @] ?", mk_free_var_tag({&x, 1}, any)},
    };
    texts_read().clear();
    reader_before = match_init(read_known_text);
  }
  ~pattern_match_test() override {
    match_init(reader_before);
    known_texts().clear();
  }

  term_ptr lambda(term_ptr condition, term_ptr body) {
    return mk_lambda({&x, 1}, {make_lambda_real_type()}, condition, body);
  }

  pattern_reader reader_before = nullptr;
  term_ptr any = mk_pattern(PatternWildCard);
  term_ptr none = mk_pattern(PatternIgnore);
  term_ptr a = var("a");
  term_ptr b = var("b");
  term_ptr c = var("c");
  term_ptr f = var("f");
  term_ptr x = var("x");
  term_ptr positive = app(Gt, {x, num(0)});
  term_ptr s = nullptr;
  term_ptr t = nullptr;
  term_ptr u = nullptr;
};

TEST_F(pattern_match_test, operator_and_arguments) {
  term_ptr slots[2] = {};
  EXPECT_EQ(match_slots(app(Plus, {a, b}), "Plus(?, ?)", slots), 2);
  EXPECT_TRUE(slots[0] == a && slots[1] == b);
  EXPECT_EQ(match_slots(app(Plus, {a, b}), "Plus(_, ?)", slots), 1);
  EXPECT_EQ(slots[0], b);
  EXPECT_EQ(match_slots(a, "_", slots), 0);

  EXPECT_FALSE(match(app(Plus, {a}), "Plus(?, ?)", s, t));
  EXPECT_FALSE(match(app(Plus, {a, b, c}), "Plus(?, ?)", s, t));
  EXPECT_FALSE(match(app(Minus, {a, b}), "Plus(?, ?)", s, t));
  EXPECT_FALSE(match(a, "Plus(?, ?)", s, t));
  EXPECT_EQ(s, nullptr);

  EXPECT_TRUE(match(app(Plus, {a, app(Mult, {num(2), b})}), "Plus(?, Mult(2, ?))", s, t));
  EXPECT_TRUE(s == a && t == b);
  EXPECT_FALSE(match(app(Plus, {a, app(Mult, {num(3), b})}), "Plus(?, Mult(2, ?))", s, t));
  EXPECT_FALSE(match(app(Plus, {a, app(Mult, {b, num(2)})}), "Plus(?, Mult(2, ?))", s, t));
}

TEST_F(pattern_match_test, any_head) {
  EXPECT_TRUE(match(app(f, {a, b}), "?(?, ?)", s, t, u));
  EXPECT_TRUE(s == f && t == a && u == b);
  // With more arguments the head is the rest of the spine.
  EXPECT_TRUE(match(app(f, {a, b}), "?(?)", s, t));
  EXPECT_TRUE(s == app(f, {a}) && t == b);
  EXPECT_FALSE(match(app(f, {a}), "?(?, ?)", s, t, u));

  const term_ptr relations = list({mk_pred(Lt)});
  EXPECT_FALSE(match(chain({mk_pred(Lt)}, {a, b}), "Lt(?, ?)", s, t));
  EXPECT_TRUE(match(chain({mk_pred(Lt)}, {a, b}), "?(?, ?)", s, t, u));
  EXPECT_TRUE(s == mk_pred(PredChain) && t == relations && u == list({a, b}));

  term_ptr arguments[10] = {};
  const term_ptr ten = app(var("h"), {a, b, c, a, b, c, a, b, c, x});
  EXPECT_EQ(match_slots(ten, "h(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", arguments), 10);
  EXPECT_TRUE(arguments[0] == a && arguments[8] == c && arguments[9] == x);
}

TEST_F(pattern_match_test, kinds_of_leaves) {
  EXPECT_TRUE(match(x, "?Var", s) && s == x);
  EXPECT_FALSE(match(num(1), "?Var", s));
  EXPECT_TRUE(match(mk_const(Pi), "?Const", s));
  EXPECT_FALSE(match(mk_oper(Plus), "?Const", s));
  EXPECT_TRUE(match(list({}), "?TermList", s));
  EXPECT_FALSE(match(x, "?TermList", s));
  EXPECT_TRUE(match(app(Mult, {a, b}), "?Oper(?, ?)", s, t, u) && s == mk_oper(Mult) && u == b);
  EXPECT_FALSE(match(app(Lt, {a, b}), "?Oper(?, ?)", s, t, u));
  EXPECT_FALSE(match(app(f, {a, b}), "?Oper(?, ?)", s, t, u));
  EXPECT_TRUE(match(app(Lt, {a, b}), "?Pred(?, ?)", s, t, u) && s == mk_pred(Lt));
  EXPECT_FALSE(match(app(And, {a, b}), "?Pred(?, ?)", s, t, u));
  EXPECT_TRUE(match(app(And, {a, b}), "?Connect(?, ?)", s, t, u) && s == mk_connect(And));

  EXPECT_TRUE(match(app(SetDesc, {a, list({b, c})}), "{ ? | ?TermList }", s, t) && t == list({b, c}));
  EXPECT_FALSE(match(app(SetDesc, {a, b}), "{ ? | ?TermList }", s, t));
  EXPECT_TRUE(match(app(Tuple, {list({a, x})}), "(?, x)", s) && s == a);
  EXPECT_FALSE(match(app(Tuple, {list({a, x, x})}), "(?, x)", s));
  EXPECT_FALSE(match(app(Tuple, {list({a})}), "(?, x)", s));

  EXPECT_TRUE(match(x, "x"));
  EXPECT_FALSE(match(a, "x"));
  EXPECT_TRUE(match(num(2), "2"));
  EXPECT_FALSE(match(num(3), "2"));
  EXPECT_TRUE(match(mk_decimal("1.5"), "1.5"));
  EXPECT_FALSE(match(mk_decimal("1.50"), "1.5"));
  EXPECT_TRUE(match(app(var("Foo"), {a}), "Foo(?)", s) && s == a);
  EXPECT_FALSE(match(app(f, {a}), "Foo(?)", s));
}

TEST_F(pattern_match_test, head_and_all_arguments) {
  EXPECT_TRUE(match(app(f, {a, b}), "?FuncApply(?)", s, t));
  EXPECT_TRUE(s == f && t == list({a, b}));
  EXPECT_TRUE(match(x, "?FuncApply(?)", s, t));
  EXPECT_TRUE(s == x && t == list({}));
  // What follows goes into the slot behind both captures.
  EXPECT_TRUE(match(app(Plus, {app(f, {a}), b}), "?FuncApply(?) + ?", s, t, u));
  EXPECT_TRUE(s == f && t == list({a}) && u == b);
}

TEST_F(pattern_match_test, binders) {
  const term_ptr plain = lambda(nullptr, app(Plus, {x, a}));
  const term_ptr conditional = lambda(positive, a);
  EXPECT_TRUE(match(plain, "?", s) && s == plain);
  EXPECT_FALSE(match(plain, "?(?)", s, t));
  EXPECT_TRUE(match(plain, "fun x . ?", s) && s == app(Plus, {x, a}));
  EXPECT_FALSE(match(conditional, "fun x . ?", s));
  EXPECT_TRUE(match(conditional, "fun x [?] . ?", s, t) && s == positive && t == a);
  EXPECT_FALSE(match(plain, "fun x [?] . ?", s, t));
  const term_ptr integer = mk_lambda({&x, 1}, {make_lambda_base_type(LambdaInteger)}, nullptr, a);
  EXPECT_FALSE(match(integer, "fun x . ?", s));

  EXPECT_TRUE(match(quant(Forall, {a, x}, positive), "forall (?)(x), ?", s, t) && s == a && t == positive);
  EXPECT_FALSE(match(quant(Exists, {a, x}, positive), "forall (?)(x), ?", s, t));
  EXPECT_FALSE(match(quant(Forall, {x, a}, positive), "forall (?)(x), ?", s, t));
  EXPECT_FALSE(match(quant(Forall, {a}, positive), "forall (?)(x), ?", s, t));
}

TEST_F(pattern_match_test, metadata_counts_on_leaves_only) {
  term_ptr sum = app(Plus, {a, b});
  EXPECT_TRUE(match(with_scope(sum, positive), "Plus(?, ?)", s, t));
  EXPECT_TRUE(match(with_binders(sum, {x}), "Plus(?, ?)", s, t));
  EXPECT_TRUE(match(app(with_scope(app(Plus, {a}), positive), {b}), "Plus(?, ?)", s, t) && s == a && t == b);
  EXPECT_FALSE(match(app(with_scope(mk_oper(Plus), positive), {a, b}), "Plus(?, ?)", s, t));
  EXPECT_FALSE(match(app(with_binders(mk_oper(Plus), {x}), {a, b}), "Plus(?, ?)", s, t));
  EXPECT_FALSE(match(with_scope(x, positive), "x"));
  EXPECT_TRUE(match(with_scope(x, positive), "?Var", s) && s == with_scope(x, positive));
  // A scope in the pattern is compared, not matched.
  EXPECT_FALSE(match(with_scope(x, positive), "x [@scope ? > 0 @]", s));
  EXPECT_FALSE(match(x, "x [@scope ? > 0 @]", s));
}

TEST_F(pattern_match_test, each_text_is_read_once) {
  static const char same_text[] = "Plus(?, ?)";
  term_ptr slots[2] = {};
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(match(app(Plus, {a, b}), "Plus(?, ?)", s, t));
    EXPECT_EQ(match_slots(app(Plus, {a, b}), same_text, slots), 2);
  }
  EXPECT_EQ(texts_read(), std::vector<std::string>{"Plus(?, ?)"});

  // A buffer that is filled anew holds another pattern at the same address.
  std::string buffer = "x";
  EXPECT_EQ(match_slots(x, buffer.c_str(), slots), 0);
  buffer[0] = '?';
  EXPECT_EQ(match_slots(x, buffer.c_str(), slots), 1);
}

TEST_F(pattern_match_test, failures_are_reported_on_every_call) {
  const auto reported = [](auto&& call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
  };
  const std::string parse_error = "Error: parsing pattern error\n";
  const std::string null_error = "Error: match_term visiting NULL pointer\n";
  const auto unreadable = [this] { EXPECT_FALSE(match(a, "(?", s)); };
  EXPECT_EQ(reported(unreadable), parse_error);
  EXPECT_EQ(reported(unreadable), parse_error);
  EXPECT_EQ(texts_read().size(), 2U);
  // The pattern is read before the term is looked at.
  EXPECT_EQ(reported([this] { EXPECT_FALSE(match(nullptr, "(?", s)); }), parse_error);
  EXPECT_EQ(reported([this] { EXPECT_FALSE(match(nullptr, "?", s)); }), null_error);
  EXPECT_EQ(texts_read().back(), "?");
  EXPECT_EQ(reported([this] { EXPECT_EQ(match_term(nullptr, any, &s), -1); }), null_error);
  EXPECT_EQ(reported([this] { EXPECT_FALSE(match(a, "[@free x @] ?", s)); }),
            "Error: match_term visiting unknown term type\n");
  match_init(nullptr);
  EXPECT_EQ(reported([this] { EXPECT_FALSE(match(a, "?Var", s)); }), parse_error);
}

}  // namespace
}  // namespace vetro

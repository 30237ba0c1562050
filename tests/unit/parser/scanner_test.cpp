// Tokens, the texts of every failure, and texts of great size or depth.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/shape.h"
#include "term/state.h"

namespace vetro {
namespace {

using namespace std::literals;

std::string errors_of(std::string_view text) {
  testing::internal::CaptureStderr();
  const term_ptr built = parse_term_from_str(text, 0, 0);
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_EQ(built, nullptr) << text << " gave " << shape(built);
  return errors;
}

// The name of the token that a lexeme is, as the report on a place where no token fits says.
std::string token_name(const std::string& lexeme) {
  const std::string errors = errors_of(std::string("a _ ").append(lexeme));
  const std::string before = ": syntax error, unexpected ";
  const std::size_t start = errors.find(before) + before.size();
  return errors.substr(start, errors.find_first_of(",.", start) - start);
}

struct token_row {
  const char* name;
  std::vector<const char*> lexemes;
};

TEST(scanner, every_fixed_lexeme_is_its_token) {
  // Behind a subscript sign only a name, a number or a brace fits, so that all other tokens are named in the report.
  const token_row rows[] = {
      {"COMMA", {","}},
      {"APOSTROPHE", {"'"}},
      {"QUESTION_MARK", {"?"}},
      {"DOT", {"."}},
      {"CARET", {"^"}},
      {"UNDERSCORE", {"_"}},
      {"IMAGINARY_UNIT", {"__IMAGINARY_UNIT__"}},
      {"LPAREN", {"("}},
      {"RPAREN", {")"}},
      {"LBRACKET", {"["}},
      {"RBRACKET", {"]"}},
      {"RBRACE", {"}"}},
      {"SCOPELBRACKET", {"[@scope"}},
      {"ATRBRACKET", {"@]"}},
      {"COLON", {":"}},
      {"SEMICOLON", {";"}},
      {"VERTICAL_BAR", {"|", "|_{"}},
      {"INFTY", {"infty", "∞"}},
      {"POS_INFTY", {"+infty", "+∞"}},
      {"NEG_INFTY", {"-infty", "-∞"}},
      {"PLUS", {"+"}},
      {"MINUS", {"-"}},
      {"PLUSMINUS", {"±"}},
      {"MULT", {"*"}},
      {"DOTPROD", {"·"}},
      {"DIV", {"/"}},
      {"MOD", {"mod"}},
      {"FACT", {"!"}},
      {"EMPTYSET", {"∅"}},
      {"INTER", {"∩"}},
      {"UNION", {"∪"}},
      {"SETDIFF", {"\\"}},
      {"COMPOSE", {"∘"}},
      {"OPER_SUM", {"sum"}},
      {"OPER_PROD", {"prod"}},
      {"OPER_UNION", {"union"}},
      {"OPER_INTER", {"inter"}},
      {"OPER_SEQLIM", {"seqlim"}},
      {"OPER_SEQLIMSUP", {"seqlimsup"}},
      {"OPER_SEQLIMINF", {"seqliminf"}},
      {"OPER_LIM", {"lim"}},
      {"OPER_LIMSUP", {"limsup"}},
      {"OPER_LIMINF", {"liminf"}},
      {"OPER_INT", {"int"}},
      {"OPER_BIGO", {"bigO"}},
      {"OPER_LITTLEO", {"littleo"}},
      {"SEQ_TENDS_TO", {"seqTendsTo"}},
      {"ARROW", {"->", "→"}},
      {"CASES", {"cases"}},
      {"IF", {"if"}},
      {"OTHERWISE", {"otherwise"}},
      {"ELLIPSIS", {"..."}},
      {"FALSE", {"False"}},
      {"EQ", {"="}},
      {"NEQ", {"!=", "≠"}},
      {"LT", {"<"}},
      {"LE", {"<=", "≤"}},
      {"GT", {">"}},
      {"GE", {">=", "≥"}},
      {"APPRO", {"≈"}},
      {"IDENTEQ", {"≡"}},
      {"TILDE", {"∼"}},
      {"NOT", {"not", "¬"}},
      {"CONJ", {"/\\", "∧"}},
      {"DISJ", {"\\/", "∨"}},
      {"IMPLY", {"=>", "⇒"}},
      {"EQUIV", {"<==>", "⇔"}},
      {"FORALL", {"forall"}},
      {"EXISTS", {"exists"}},
      {"EXISTS_UNIQUE", {"existsUnique"}},
      {"BELONG", {"in", "∈"}},
      {"NOT_BELONG", {"notin", "∉"}},
      {"SUBSET", {"subset", "⊆"}},
      {"PATTERN_VAR", {"?Var"}},
      {"PATTERN_CONST", {"?Const"}},
      {"PATTERN_OPER", {"?Oper"}},
      {"PATTERN_PRED", {"?Pred"}},
      {"PATTERN_CONNECT", {"?Connect"}},
      {"PATTERN_TERMLIST", {"?TermList"}},
      {"PATTERN_FUNCAPPLY", {"?FuncApply(?)"}},
      {"FUN", {"fun"}},
      {"DECIMAL", {"1.5", "007.0"}},
      {"QUOTED_VAR", {"`x`", "``", "`a b`", "`\\`\\\\`"}},
      {"PRED", {"Eq", "Defined"}},
      {"CONNECT", {"Iff"}},
  };
  for (const token_row& r : rows) {
    for (const char* lexeme : r.lexemes) {
      EXPECT_EQ(token_name(lexeme), r.name) << lexeme;
    }
  }
}

TEST(scanner, words_of_the_proof_notation_are_reserved) {
  const token_row rows[] = {
      {"KNOWN", {"已知"}},
      {"GOAL", {"要证"}},
      {"PROVE", {"证明"}},
      {"CONCLUDE", {"证毕"}},
      {"FIND_ALL", {"求所有"}},
      {"SOLVE_END", {"求得"}},
      {"CALCULATE", {"计算"}},
      {"SOLUTION", {"解答"}},
      {"RANGE", {"的范围"}},
      {"AFTER_CHECK", {"经检验"}},
      {"CHECK_PASS", {"成立"}},
      {"CHECK_FAIL", {"不成立"}},
      {"WITH", {"与"}},
      {"CONTRA", {"矛盾"}},
      {"SOLVE", {"求"}},
      {"HAVE", {"我们有"}},
      {"THEN", {"可知"}},
      {"SUFFICE", {"只需"}},
      {"SUBGOAL", {"下面证明"}},
      {"USE", {"使用"}},
      {"SUPPOSE", {"假设"}},
      {"FIX", {"对于任意"}},
      {"SUCH_THAT", {"满足"}},
      {"WHEN", {"当"}},
      {"SET", {"令"}},
      {"TO_SATISFY", {"要使得"}},
      {"SINCE", {"根据"}},
      {"SUBSTITUTE", {"代入"}},
      {"INTO", {"到"}},
      {"SAME", {"同理"}},
      {"BY", {"由"}},
      {"TRANS", {"等价变形"}},
      {"BOTH", {"两边同时"}},
      {"ACTION_MULT", {"乘"}},
      {"ACTION_SQUARE", {"平方"}},
      {"ACTION_LOG", {"取对数"}},
      {"ACTION_SIN", {"取正弦"}},
      {"FOR", {"对"}},
      {"ORDER", {"阶"}},
      {"ACTION_DERI", {"导数"}},
      {"ACTION_DIFF", {"微分"}},
      {"ACTION_INT", {"积分"}},
      {"ACTION_LIM", {"极限"}},
      {"ACTION_COMPARE_COEF", {"比较系数"}},
      {"FORALL_UNICODE", {"∀"}},
      {"EXISTS_UNICODE", {"∃"}},
      {"QUANT_SCOPE_BLOCK", {"QuantScopeBlock"}},
      {"WHEN_END", {"时"}},
      {"METHOD", {"[@method @]", "[@method any\nthing]@]"}},
      {"DERIVATION",
       {"[@derivation equivalent @]", "[@derivation\v\f_@]", "[@derivationnecessary@]", "[@derivation sufficient\n@]"}},
      {"KNOWLEDGE", {"\"\"", "\"a \\\" b\n\""}},
  };
  for (const token_row& r : rows) {
    for (const char* lexeme : r.lexemes) {
      EXPECT_EQ(token_name(lexeme), r.name) << lexeme;
    }
  }
}

TEST(scanner, the_longest_match_wins) {
  for (const char* name : {"ins", "infty2", "sum1", "forallx", "funx", "notins", "Falsehood", "αβ", "ɛ1", "x2y"}) {
    EXPECT_EQ(parse_term_from_str(name, 0, 0), mk_var(name)) << name;
  }
  for (const char* letter : {"ɛ", "Γ", "Δ", "Θ", "Λ", "Ξ", "Π", "Σ", "Φ", "Ψ", "Ω", "α", "β", "γ", "δ", "ε", "ζ",
                             "η", "θ", "ι", "κ", "λ", "μ", "ν", "ξ", "ρ", "ς", "σ", "τ", "υ", "φ", "χ", "ψ", "ω"}) {
    EXPECT_EQ(parse_term_from_str(letter, 0, 0), mk_var(letter)) << letter;
  }
  EXPECT_EQ(parse_term_from_str("π", 0, 0), mk_const(Pi));
  EXPECT_EQ(shape(parse_term_from_str("x!=y", 0, 0)), "Neq(x, y)");
  EXPECT_EQ(shape(parse_term_from_str(" \t\r\nx\n+\r\n1\t", 0, 0)), "Plus(x, 1)");
}

TEST(scanner, failures) {
  struct failure {
    std::string_view text;
    std::string_view errors;
  };
  const failure failures[] = {
      {"a # b", "unexpected character '#'.\n#: syntax error, unexpected UNKNOWN_UTF8, expecting end of file.\n"},
      {"a #b+c\vd",
       "unexpected character '#b+c'.\n#b+c: syntax error, unexpected UNKNOWN_UTF8, expecting end of file.\n"},
      {"ο", "unexpected character 'ο'.\nο: syntax error, unexpected UNKNOWN_UTF8.\n"},
      {"a\fb c", "unexpected character '\fb'.\n\fb: syntax error, unexpected UNKNOWN_UTF8, expecting end of file.\n"},
      {"aο", "\n\xBF: invalid utf-8.\n\xBF: syntax error, unexpected INVALID_UTF8, expecting end of file.\n"},
      {"\xFF\xFF", "\n\xFF: invalid utf-8.\n\xFF: syntax error, unexpected INVALID_UTF8.\n"},
      {"\"open", "unexpected character '\"open'.\n\"open: syntax error, unexpected UNKNOWN_UTF8.\n"},
      {"`open\n`", "unexpected character '`open'.\n`open: syntax error, unexpected UNKNOWN_UTF8.\n"},
      {"`\\n`", "unexpected character '`\\n`'.\n`\\n`: syntax error, unexpected UNKNOWN_UTF8.\n"},
      {"a\0b"sv, "unexpected character '\0b'.\n\0b: syntax error, unexpected UNKNOWN_UTF8, expecting end of file.\n"sv},
      {"x +", ": syntax error, unexpected end of file.\n"},
      {"", ": syntax error, unexpected end of file.\n"},
      {"x_+", "+: syntax error, unexpected PLUS, expecting INTEGER or VAR or LBRACE.\n"},
      {"x = y)", "): syntax error, unexpected RPAREN, expecting end of file.\n"},
      {"lim x", "x: syntax error, unexpected VAR, expecting UNDERSCORE.\n"},
      {"forall x", "x: syntax error, unexpected VAR, expecting LPAREN.\n"},
      // Columns count from the last line feed, and the slice is cut at them from the start of the text.
      {"x +\n  )", "+: syntax error, unexpected RPAREN.\n"},
      {"xyz\n)", "x: syntax error, unexpected RPAREN, expecting end of file.\n"},
  };
  for (const failure& f : failures) {
    EXPECT_EQ(errors_of(f.text), std::string(f.errors) + "Error: Parsing failed with code 1.\n") << f.text;
  }
}

TEST(scanner, lead_bytes_without_a_tail_are_passed_through) {
  testing::internal::CaptureStdout();
  const term_ptr built = parse_term_from_str("a \xE2+\xF0\xF4 b\xC3", 0, 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\xE2\xF0\xF4\xC3");
  EXPECT_EQ(shape(built), "Plus(a, b)");
}

TEST(parser, a_success_is_announced_only_on_request) {
  testing::internal::CaptureStdout();
  parse_term_from_str("x", 0, 0);
  parse_term_from_str("x", 1, 0);
  parse_term_from_str("x", 0, 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Parsing succeeded.\nParsing succeeded.\n");
}

// ---- Size and depth.

// front, the part many times, middle, the other part as often, end.
struct pattern {
  std::string_view front;
  std::string_view open;
  std::string_view middle;
  std::string_view close = "";
  std::string_view end = "";
};

std::string repeated(const pattern& parts, int times) {
  std::string out(parts.front);
  for (int i = 0; i < times; ++i) {
    out += parts.open;
  }
  out += parts.middle;
  for (int i = 0; i < times; ++i) {
    out += parts.close;
  }
  return out += parts.end;
}

TEST(parser, deep_and_long_texts_parse) {
  struct text {
    pattern parts;
    int times;
    int depth;
  };
  constexpr int deep = 300'000;
  const text texts[] = {
      {{"", "(", "x", ")"}, deep, 0},
      {{"", "-", "x"}, deep, deep},
      {{"", "-", "x | y"}, deep, deep + 2},
      {{"", "f(", "x", ")"}, deep, deep},
      {{"", "not ", "x = 1"}, deep, deep + 2},
      {{"", "x+", "x"}, 500'000, 1'000'000},
      {{"", "x<", "x"}, deep, 3},
      {{"{", "x,", "x}"}, 500'000, 2},
      {{"f(", "x = 1,", "x)"}, 200'000, 200'003},
      // A second argument at every level keeps one reading.
      {{"", "f(a, ", "x", ")"}, 100'000, 100'001},
      // Long and deep texts between a place with two readings and the place that decides.
      {{"|x|_{", "(", "x", ")", "}"}, 100'000, 3},
      {{"a | f(", "x+", "x) + 1"}, 100'000, 200'004},
  };
  for (const text& t : texts) {
    const term_ptr built = parse_term_from_str(repeated(t.parts, t.times), 0, 0);
    ASSERT_NE(built, nullptr) << t.parts.open;
    EXPECT_EQ(built->depth(), static_cast<std::uint32_t>(t.depth)) << t.parts.open;
  }
}

TEST(parser, the_stack_ends_at_a_million_entries) {
  const std::string exhausted = "(: memory exhausted.\nError: Parsing failed with code 2.\n";
  EXPECT_EQ(errors_of(repeated({"", "(", "x"}, 1'000'000)), exhausted);
  EXPECT_EQ(errors_of(repeated({"", "(", "x"}, 999'000)),
            ": syntax error, unexpected end of file.\nError: Parsing failed with code 1.\n");
  // Readings that double at each level, or open a new one for each sign, end there, too.
  EXPECT_EQ(errors_of(repeated({"", "a | f(", "x", ")"}, 1000)), exhausted);
  EXPECT_TRUE(errors_of(repeated({"", "|a|_{", "x", "}"}, 1000)).ends_with("code 2.\n"));
  EXPECT_TRUE(errors_of(repeated({"", "-", "x|_{0}^{1}"}, 100'000)).ends_with("code 2.\n"));
}

TEST(parser, shown_readings_are_cut) {
  const std::string errors = errors_of(repeated({"a + ", "γ", "|_{0}^{1}"}, 5'000));
  EXPECT_NE(errors.find("γ...\n\nOption 2,\n"), std::string::npos);
  EXPECT_LT(errors.size(), 5'000U);
}

}  // namespace
}  // namespace vetro

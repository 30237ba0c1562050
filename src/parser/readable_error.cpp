// The spellings of the tokens. A token without a row is one that no formula holds; it shows its name.
#include "parser/readable_error.h"

#include <algorithm>
#include <array>

namespace vetro {
namespace {

struct token_spelling {
  std::string_view name;
  std::string_view shown;
};

constexpr auto spellings = std::to_array<token_spelling>({
    {"end of file", "the end of the formula"},
    {"INTEGER", "a number"},
    {"DECIMAL", "a decimal number"},
    {"VAR", "a name"},
    {"QUOTED_VAR", "a name"},
    {"PRED", "a predicate"},
    {"CONNECT", "a connective"},
    {"COMMA", "','"},
    {"APOSTROPHE", "\"'\""},
    {"DOT", "'.'"},
    {"CARET", "'^'"},
    {"UNDERSCORE", "'_'"},
    {"LPAREN", "'('"},
    {"RPAREN", "')'"},
    {"LBRACKET", "'['"},
    {"RBRACKET", "']'"},
    {"LBRACE", "'{'"},
    {"RBRACE", "'}'"},
    {"SCOPELBRACKET", "'[@scope'"},
    {"ATRBRACKET", "'@]'"},
    {"COLON", "':'"},
    {"SEMICOLON", "';'"},
    {"VERTICAL_BAR", "'|'"},
    {"INFTY", "'∞'"},
    {"POS_INFTY", "'+∞'"},
    {"NEG_INFTY", "'-∞'"},
    {"PLUS", "'+'"},
    {"MINUS", "'-'"},
    {"PLUSMINUS", "'±'"},
    {"MULT", "'*'"},
    {"DOTPROD", "'·'"},
    {"DIV", "'/'"},
    {"MOD", "'mod'"},
    {"FACT", "'!'"},
    {"INTER", "'∩'"},
    {"UNION", "'∪'"},
    {"SETDIFF", "'\\'"},
    {"COMPOSE", "'∘'"},
    {"ARROW", "'→'"},
    {"CASES", "'cases'"},
    {"IF", "'if'"},
    {"OTHERWISE", "'otherwise'"},
    {"EQ", "'='"},
    {"NEQ", "'≠'"},
    {"LT", "'<'"},
    {"LE", "'≤'"},
    {"GT", "'>'"},
    {"GE", "'≥'"},
    {"IDENTEQ", "'≡'"},
    {"TILDE", "'∼'"},
    {"NOT", "'¬'"},
    {"CONJ", "'∧'"},
    {"DISJ", "'∨'"},
    {"IMPLY", "'⇒'"},
    {"EQUIV", "'⇔'"},
    {"BELONG", "'∈'"},
    {"NOT_BELONG", "'∉'"},
    {"SUBSET", "'⊆'"},
    {"FUN", "'fun'"},
});

std::string_view shown_token(std::string_view name) {
  const auto row =
      std::find_if(spellings.begin(), spellings.end(), [&](const token_spelling& s) { return s.name == name; });
  return row == spellings.end() ? name : row->shown;
}

// "A or B or C" in shown tokens.
std::string shown_alternatives(std::string_view list) {
  constexpr std::string_view between = " or ";
  std::string text;
  for (;;) {
    const std::size_t end = list.find(between);
    text += shown_token(list.substr(0, end));
    if (end == std::string_view::npos) {
      return text;
    }
    text += between;
    list.remove_prefix(end + between.size());
  }
}

}  // namespace

std::string readable_error(std::string_view message, std::string_view token) {
  constexpr std::string_view unexpected = "syntax error, unexpected ";
  constexpr std::string_view expecting = ", expecting ";
  if (!message.starts_with(unexpected)) {
    return message == "memory exhausted" ? "the formula is too long or nested too deeply" : std::string(message);
  }
  message.remove_prefix(unexpected.size());
  const std::size_t end = message.find(expecting);
  const std::string_view name = message.substr(0, end);
  std::string text;
  if (name == "end of file") {
    text = "the formula ends too early";
  } else if (name == "UNKNOWN_UTF8" || name == "INVALID_UTF8") {
    text = "no formula holds '" + std::string(token) + "'";
  } else {
    text = "'" + std::string(token) + "' cannot stand here";
  }
  if (end != std::string_view::npos) {
    text += "; expected " + shown_alternatives(message.substr(end + expecting.size()));
  }
  return text;
}

}  // namespace vetro

// Tables of signs and words of other notations, and then a look at what stands around the place of the error. The first
// rule that fits speaks.
#include "parser/notation_advice.h"

#include <algorithm>
#include <array>
#include <vector>

#include "term/kinds.h"

namespace vetro {
namespace {

struct remedy {
  std::string_view sign;
  std::string_view advice;
};

// Signs that the offending text begins with.
constexpr auto foreign_signs = std::to_array<remedy>({
    {"−", "write -"},
    {"–", "write -"},
    {"—", "write -"},
    {"×", "write *"},
    {"⋅", "write *"},
    {"∙", "write *"},
    {"•", "write *"},
    {"∗", "write *"},
    {"÷", "write /"},
    {"∕", "write /"},
    {"√", "write sqrt(x)"},
    {"∛", "write cbrt(x)"},
    {"²", "write ^2"},
    {"³", "write ^3"},
    {"′", "write '"},
    {"∫", "write int_{a}^{b}(f(x) * diff(x)) or int(f(x) * diff(x))"},
    {"∑", "write sum_{i = 1}^{n}(f(i))"},
    {"∏", "write prod_{i = 1}^{n}(f(i))"},
    {"∂", "write FunDeri(f, 1, 1, x, y) for the derivative by the first variable"},
    {"∀", "write forall (x), ..."},
    {"∃", "write exists (x), ..."},
    {"ℝ", "write Real"},
    {"ℕ", "write Nat, or NatPlus without 0"},
    {"ℤ", "write Integer"},
    {"ℚ", "write Rational"},
    {"ℂ", "write Complex"},
    {"⩽", "write ≤"},
    {"≦", "write ≤"},
    {"⩾", "write ≥"},
    {"≧", "write ≥"},
    {"⟹", "write ⇒"},
    {"⟶", "write ⇒ for an implication, → for a limit"},
    {"⟺", "write ⇔"},
    {"↔", "write ⇔"},
    {"⟷", "write ⇔"},
    {"⊂", "write ⊆"},
    {"⊇", "write B ⊆ A for A ⊇ B"},
    {"⊃", "write B ⊆ A for A ⊇ B"},
    {"↦", "write fun x . x + 1"},
    {"∣", "write |"},
    {"≔", "write ="},
    {"…", "write ..."},
    {"⋯", "write ..."},
    {"ϕ", "write φ"},
    {"ϵ", "write ε or ∈"},
    {"∊", "write ∈"},
    {"&", "write ∧"},
    {"%", "write mod"},
    {"~", "write ¬, or ∼ for asymptotic equality"},
    {"$", "a formula stands without dollar signs"},
    {"\"", "a formula stands without quotation marks"},
    {"“", "a formula stands without quotation marks"},
    {"”", "a formula stands without quotation marks"},
    {"\xC2\xA0", "this is a no-break space; type a plain one"},
    {"\xE2\x80\x8B", "an invisible sign (U+200B) stands here; delete it"},
    {"\xEF\xBB\xBF", "an invisible sign (U+FEFF) stands here; delete it"},
});

// Words that the offending token is.
constexpr auto foreign_words = std::to_array<remedy>({
    {"and", "write ∧ or /\\"},
    {"or", "write ∨ or \\/"},
    {"implies", "write ⇒ or =>"},
    {"iff", "write ⇔ or <==>"},
    {"if", "write p ⇒ q; 'if' stands in cases{ ... } only"},
    {"then", "write p ⇒ q"},
    {"is", "write ∈ for membership, or a predicate such as Even(n)"},
    {"isin", "write ∈ or in"},
    {"element", "write ∈ or in"},
    {"to", "write → or ->"},
});

// Doubled and composed signs that the text ends with, the offending token included.
constexpr auto foreign_compounds = std::to_array<remedy>({
    {"<=>", "write ⇔ or <==>"},
    {"<->", "write ⇔ or <==>"},
    {"==>", "write ⇒ or =>"},
    {"-->", "write ⇒ or =>"},
    {"==", "write a single ="},
    {":=", "write ="},
    {"**", "write ^ for a power"},
    {"<>", "write ≠ or !="},
    {"=/", "write ≠ or !="},
    {"=<", "write ≤ or <="},
});

constexpr auto latex_words = std::to_array<remedy>({
    {"in", "∈"},
    {"notin", "∉"},
    {"le", "≤"},
    {"leq", "≤"},
    {"ge", "≥"},
    {"geq", "≥"},
    {"ne", "≠"},
    {"neq", "≠"},
    {"cdot", "*"},
    {"times", "*"},
    {"frac", "frac(a, b)"},
    {"sqrt", "sqrt(x)"},
    {"infty", "∞"},
    {"to", "→"},
    {"rightarrow", "→"},
    {"Rightarrow", "⇒"},
    {"implies", "⇒"},
    {"iff", "⇔"},
    {"land", "∧"},
    {"wedge", "∧"},
    {"lor", "∨"},
    {"vee", "∨"},
    {"neg", "¬"},
    {"lnot", "¬"},
    {"cup", "∪"},
    {"cap", "∩"},
    {"setminus", "\\"},
    {"subset", "⊆"},
    {"subseteq", "⊆"},
    {"emptyset", "∅"},
    {"pi", "π"},
    {"forall", "forall (x), ..."},
    {"mathbb", "Real, Integer, Nat and the like"},
    {"exists", "exists (x), ..."},
});

// Words of the notation behind which no operand may follow at once, with the form that is wanted.
constexpr auto word_forms = std::to_array<remedy>({
    {"forall", "write forall (x), ..., or forall (x ∈ S), ..."},
    {"exists", "write exists (x), ..., or exists (x ∈ S), ..."},
    {"lim", "write lim_{x → a}(f(x))"},
    {"seqlim", "write seqlim_{n → ∞}(a_n)"},
    {"sum", "write sum_{i = 1}^{n}(f(i))"},
    {"prod", "write prod_{i = 1}^{n}(f(i))"},
    {"int", "write int_{a}^{b}(f(x) * diff(x)) or int(f(x) * diff(x))"},
    {"lambda", "write fun x . x + 1"},
    {"λ", "write fun x . x + 1"},
    {"let", "write an assumption x = ... on a line of its own"},
});

template <std::size_t N>
std::string_view advice_for(const std::array<remedy, N>& table, std::string_view word) {
  const auto row = std::find_if(table.begin(), table.end(), [&](const remedy& r) { return r.sign == word; });
  return row == table.end() ? std::string_view() : row->advice;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }
// Letters of ASCII, and the first bytes of Greek ones.
bool is_ascii_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool begins_letter(char c) { return is_ascii_letter(c) || c == '\xCE' || c == '\xCF'; }

// Where the last character of a text that is not empty begins.
std::size_t last_character(std::string_view text) {
  std::size_t at = text.size() - 1;
  while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) {
    --at;
  }
  return at;
}

bool is_word_character(char first) { return begins_letter(first) || is_digit(first); }

class advisor {
 public:
  advisor(std::string_view formula, std::size_t begin, std::size_t end, std::string_view message)
      : formula_(formula),
        token_(formula.substr(begin, end - begin)),
        in_front_(formula.substr(0, begin)),
        up_to_end_(formula.substr(0, end)),
        message_(message),
        touches_(!in_front_.empty() && in_front_.back() != ' ' && in_front_.back() != '\t') {
    while (!in_front_.empty() && (in_front_.back() == ' ' || in_front_.back() == '\t')) {
      in_front_.remove_suffix(1);
    }
    std::size_t begin_of_word = in_front_.size();
    while (begin_of_word > 0) {
      const std::size_t last = last_character(in_front_.substr(0, begin_of_word));
      if (!is_word_character(in_front_[last])) {
        break;
      }
      begin_of_word = last;
    }
    word_ = in_front_.substr(begin_of_word);
  }

  std::string advice() const {
    for (const auto rule : {&advisor::of_latex, &advisor::of_signs, &advisor::of_words, &advisor::of_ends,
                            &advisor::of_brackets, &advisor::of_exponents, &advisor::of_lists, &advisor::of_numbers,
                            &advisor::of_connectives, &advisor::of_applications}) {
      if (std::string text = (this->*rule)(); !text.empty()) {
        return text;
      }
    }
    return {};
  }

 private:
  bool expects(std::string_view token) const {
    const std::size_t list = message_.find(", expecting ");
    return list != std::string_view::npos && message_.find(token, list) != std::string_view::npos;
  }

  // A backslash in front of a word, no further away than the token itself.
  std::string of_latex() const {
    const std::size_t slash = up_to_end_.rfind('\\');
    std::size_t end = slash == std::string_view::npos ? formula_.size() : slash + 1;
    const std::size_t begin = end;
    while (end < formula_.size() && is_ascii_letter(formula_[end])) {
      ++end;
    }
    if (begin == end || (end < in_front_.size() && formula_[end] != '{')) {
      return {};
    }
    const std::string word(formula_.substr(begin, end - begin));
    const std::string_view known = advice_for(latex_words, word);
    return known.empty() ? "a backslash is the difference of two sets, and no command"
                         : "a backslash begins no command: write " + std::string(known) + " for \\" + word;
  }

  std::string of_signs() const {
    for (const remedy& row : foreign_signs) {
      if (token_.starts_with(row.sign)) {
        return std::string(row.advice);
      }
    }
    for (const remedy& row : foreign_compounds) {
      if (up_to_end_.ends_with(row.sign)) {
        return std::string(row.advice);
      }
    }
    return token_ == "!" ? (word_ == "exists" ? "write existsUnique (x), ..." : "write ¬") : "";
  }

  std::string of_words() const { return std::string(advice_for(foreign_words, token_)); }

  // What is still open where the text ends, and what stands behind a formula.
  std::string of_ends() const {
    if (token_.empty()) {
      const std::size_t open = unclosed();
      return open == std::string_view::npos ? "" : "this is not closed: " + std::string(cut(formula_.substr(open)));
    }
    const bool last = up_to_end_.size() == formula_.find_last_not_of(" \t\r") + 1;
    return last && (token_ == "." || token_ == ";" || token_ == ",") ? "nothing stands behind a formula" : "";
  }

  // The first bracket that is open in front of the token.
  std::size_t unclosed() const {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < in_front_.size(); ++i) {
      const char c = in_front_[i];
      if (c == '(' || c == '[' || c == '{') {
        places.push_back(i);
      } else if ((c == ')' || c == ']' || c == '}') && !places.empty()) {
        places.pop_back();
      }
    }
    return places.empty() ? std::string_view::npos : places.front();
  }

  static std::string_view cut(std::string_view text) {
    constexpr std::size_t most = 40;
    std::size_t end = std::min(text.size(), most);
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
      ++end;
    }
    return text.substr(0, end);
  }

  std::string of_brackets() const {
    if ((token_ == "]" && !ends_operand()) || (token_ == ";" && unclosed() != std::string_view::npos)) {
      return "intervals are written (0, 1), [0, 1), (0, 1] and [0, 1]";
    }
    const bool closes = token_ == ")" || token_ == "]" || token_ == "}";
    if (closes && unclosed() == std::string_view::npos) {
      return "no bracket is open here";
    }
    if (token_ == "}" && in_front_.ends_with("{")) {
      return "the empty set is ∅";
    }
    if (token_ == "}" && (in_front_.ends_with("+") || in_front_.ends_with("-"))) {
      return "a limit from one side is written with ^+ or ^-, as in x → 0^+";
    }
    if (token_ == "{" && !word_.empty()) {
      return "arguments stand in parentheses: " + std::string(word_) + "(...)";
    }
    return {};
  }

  std::string of_exponents() const {
    if (in_front_.ends_with("^") && (token_ == "-" || token_ == "+")) {
      return "an exponent with a sign stands in parentheses: ^(-1)";
    }
    const bool bound = in_front_.ends_with("^") || in_front_.ends_with("_");
    return bound && !expects("INTEGER") && expects("LBRACE") ? "bounds stand in braces, as in sum_{i = 1}^{n}(f(i))"
                                                             : "";
  }

  std::string of_lists() const {
    if (token_ == "," && unclosed() == std::string_view::npos) {
      return "join propositions by ∧";
    }
    if (!expects("COMMA or BELONG")) {
      return {};
    }
    if (token_ == ")") {
      return "write forall (x)(y), ..., or forall (x, y ∈ S), ...";
    }
    const std::size_t comma = in_front_.rfind(',');
    const bool decimal = comma != std::string_view::npos && comma > 0 && is_digit(in_front_[comma - 1]) &&
                         comma + 1 < in_front_.size() && is_digit(in_front_[comma + 1]);
    return decimal ? "a decimal number has a point: 1.5"
                   : "a list of names stands in front of ∈ only; write x > 0 ∧ y > 0";
  }

  std::string of_numbers() const {
    if (token_ == ".") {
      return "a decimal number has digits on both sides of its point: 0.5";
    }
    const bool exponent = token_.size() > 1 && (token_[0] == 'e' || token_[0] == 'E') && is_digit(token_[1]);
    return exponent && touches_ && !word_.empty() && is_digit(word_[0]) ? "write 5 * 10^3 for 5e3" : "";
  }

  bool ends_operand() const {
    const char last = in_front_.empty() ? ' ' : in_front_[last_character(in_front_)];
    return is_word_character(last) || last == ')' || last == ']' || last == '}' || last == '\'' || last == '!';
  }

  // An operand behind an operand.
  std::string of_applications() const {
    if (token_ == "->" || token_ == "→" || token_ == "=>" || token_ == "⇒") {
      return expects("DOT") ? "write fun x . x + 1" : "";
    }
    if (token_.empty() || !(begins_letter(token_[0]) || is_digit(token_[0]) || token_[0] == '(') || !ends_operand()) {
      return {};
    }
    if (const std::string_view form = advice_for(word_forms, word_); !form.empty()) {
      return std::string(form);
    }
    if (in_front_.ends_with("}") && expects("LPAREN")) {
      return "what is summed, integrated or taken to the limit stands in parentheses";
    }
    const bool function = !word_.empty() && begins_letter(word_[0]) && name_number(word_) >= 0;
    return function ? "an argument stands in parentheses: " + std::string(word_) + "(" + std::string(cut(token_)) + ")"
                    : "a product needs its sign: " + std::string(word_.empty() ? std::string_view("...") : word_) +
                          " * " + std::string(cut(token_));
  }

  std::string of_connectives() const {
    constexpr std::array<std::string_view, 8> connectives = {"∧", "/\\", "∨", "\\/", "⇒", "=>", "⇔", "<==>"};
    const bool connective = std::find(connectives.begin(), connectives.end(), token_) != connectives.end();
    return connective && ends_operand() ? "a connective joins propositions, and what stands in front is a term" : "";
  }

  std::string_view formula_;
  std::string_view token_;
  std::string_view in_front_;  // without the blanks before the token
  std::string_view up_to_end_;
  std::string_view message_;
  std::string_view word_;  // the last one in front
  bool touches_;           // no blank stands in front of the token
};

}  // namespace

std::string notation_advice(std::string_view formula, std::size_t begin, std::size_t end, std::string_view message) {
  return advisor(formula, begin, end, message).advice();
}

}  // namespace vetro

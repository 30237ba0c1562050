// One pass over the text. It tells words, signs and brackets apart, which is enough for these questions.
#include "lib/reading_warnings.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "diagnostics/nearest.h"
#include "term/kinds.h"
#include "term/known_words.h"

namespace vetro {
namespace {

// Words of the notation that stand in front of parentheses and name no function.
constexpr std::array<std::string_view, 11> notation_words = {"forall", "exists", "existsUnique", "not", "in", "notin",
                                                             "subset", "if",     "otherwise",    "mod", "fun"};

// Names that nothing is known of, and what their writers usually mean; behind ∈ those of sets.
struct usual_name {
  std::string_view name;
  std::string_view meant;
};
constexpr usual_name usual_functions[] = {{"exp", "write e^{x}"}};
constexpr usual_name usual_constants[] = {{"pi", "π"}, {"Pi", "π"}, {"infinity", "∞"}, {"inf", "∞"}};
constexpr usual_name usual_sets[] = {
    {"R", "Real"},    {"Reals", "Real"},  {"N", "NatPlus"},        {"Naturals", "Nat"}, {"Natural", "Nat"},
    {"Z", "Integer"}, {"Int", "Integer"}, {"Integers", "Integer"}, {"Q", "Rational"},   {"Rationals", "Rational"}};

std::string_view usual_meaning(std::span<const usual_name> names, std::string_view word) {
  const auto row = std::find_if(names.begin(), names.end(), [&](const usual_name& n) { return n.name == word; });
  return row == names.end() ? std::string_view() : row->meant;
}

// Greek letters are two bytes, of which the first tells them from the signs.
bool is_letter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || byte == 0xC9U || byte == 0xCEU || byte == 0xCFU;
}
bool is_word_byte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return is_letter(c) || (c >= '0' && c <= '9') || (byte >= 0x80U && byte <= 0xBFU);
}

class reading_scan {
 public:
  reading_scan(diagnostics& d, std::string_view text) : d_(d), text_(text), open_(1) {}

  void run() {
    while (at_ < text_.size()) {
      step();
    }
  }

 private:
  // What was seen inside a bracket, behind the last comma.
  struct level {
    std::size_t begin = 0;    // behind the bracket
    bool applied = false;     // an operand stands in front of the bracket
    bool implied = false;     // an implication
    bool compared = false;    // a relation, behind the last connective
    bool calculated = false;  // + - * /
  };

  void step() {
    const std::string_view rest = text_.substr(at_);
    const char c = rest.front();
    if (c == '`') {
      at_ += std::min(rest.find('`', 1), rest.size() - 1) + 1;
    } else if (is_letter(c)) {
      take_word();
    } else if (c >= '0' && c <= '9') {
      take_number();
    } else if (!take_long_sign(rest)) {
      take_sign(c);
    }
  }

  // Signs of more than one byte, and those of one byte that begin like them.
  bool take_long_sign(std::string_view rest) {
    const auto takes = [&](std::initializer_list<std::string_view> signs) {
      for (std::string_view sign : signs) {
        if (rest.starts_with(sign)) {
          length_ = sign.size();
          return true;
        }
      }
      return false;
    };
    level& here = open_.back();
    if (takes({"<==>", "⇔", "∧", "∨", "/\\", "\\/", "¬"})) {
      here.implied = here.implied && rest[0] != '<' && !rest.starts_with("⇔");
      here.compared = false;
    } else if (takes({"=>", "⇒"})) {
      take_implication();
    } else if (takes({"->", "→"})) {
      take_arrow();
    } else if (takes({"<=", ">=", "!=", "≤", "≥", "≠", "∈", "∉", "⊆", "=", "<", ">"})) {
      here.compared = true;
      in_set_ = rest.starts_with("∈");
      at_ += length_;
      return true;
    } else {
      return false;
    }
    at_ += length_;
    return true;
  }

  void take_sign(char c) {
    if (c == '(' || c == '[' || c == '{') {
      open_.push_back({.begin = at_ + 1, .applied = ends_operand()});
    } else if ((c == ')' || c == ']' || c == '}') && open_.size() > 1) {
      const level closed = open_.back();
      open_.pop_back();
      ++at_;
      if (c == ')' && !closed.applied && closed.calculated && text_.substr(at_).starts_with('(')) {
        warn_of_application(text_.substr(closed.begin - 1, at_ - closed.begin + 1));
      }
      return;
    } else if (c == ',' || c == ';') {
      open_.back() = {.begin = open_.back().begin, .applied = open_.back().applied};
    } else if (c == '+' || c == '-' || c == '*' || c == '/') {
      open_.back().calculated = true;
    }
    in_set_ = in_set_ && (c == ' ' || c == '\t');
    ++at_;
  }

  // Whether what stands in front makes a bracket that opens here its argument, its index or its exponent.
  bool ends_operand() const {
    const std::size_t last = at_ == 0 ? std::string_view::npos : text_.find_last_not_of(" \t", at_ - 1);
    const char c = last == std::string_view::npos ? ' ' : text_[last];
    return is_word_byte(c) || c == ')' || c == ']' || c == '}' || c == '\'' || c == '^' || c == '_' || c == '`';
  }

  // A number in front of a parenthesis, unless it is an index or an exponent.
  void take_number() {
    const std::size_t begin = at_;
    at_ = std::min(text_.find_first_not_of("0123456789.", at_), text_.size());
    const char before = begin == 0 ? ' ' : text_[begin - 1];
    if (text_.substr(at_).starts_with('(') && before != '^' && before != '_') {
      warn_of_application(text_.substr(begin, at_ - begin));
    }
    in_set_ = false;
  }

  void warn_of_application(std::string_view part) {
    const std::string text(part);
    add(diagnostic_code::applied_value, part, "this applies " + text + " to an argument, like a function",
        "write " + text + " * (...) for a product");
  }

  void take_implication() {
    level& here = open_.back();
    if (here.implied) {
      add(diagnostic_code::implication_chain, text_.substr(at_, length_),
          "implications group to the left: this reads (a ⇒ b) ⇒ c", "write a ⇒ (b ⇒ c) where that is meant");
    }
    here.implied = true;
    here.compared = false;
  }

  void take_arrow() {
    if (open_.back().compared) {
      add(diagnostic_code::arrow_sign, text_.substr(at_, length_),
          "an arrow is no implication: it says what a value tends to", "write ⇒ or => for an implication");
    }
  }

  void take_word() {
    std::size_t end = at_;
    while (end < text_.size() && is_word_byte(text_[end])) {
      ++end;
    }
    const std::string_view word = text_.substr(at_, end - at_);
    const bool set = std::exchange(in_set_, word == "in");
    at_ = end;
    const std::size_t next = behind_blanks(end);
    const char sign = next < text_.size() ? text_[next] : ' ';
    if (sign == '(') {
      check_name(word);
    } else if (sign == '^') {
      check_power(word, next + 1);
    } else if (word == "log" && sign == '_') {
      add(diagnostic_code::known_name, word, "nothing is known of a logarithm with an index", "write log(2, x)");
    } else if (sign != '_') {
      check_constant(word, set);
    }
    open_.back().compared = open_.back().compared || word == "in" || word == "notin" || word == "subset";
    open_.back().calculated = open_.back().calculated && word != "fun";
  }

  void check_constant(std::string_view word, bool set) {
    std::string_view meant = usual_meaning(usual_constants, word);
    if (meant.empty() && set) {
      meant = usual_meaning(usual_sets, word);
    }
    const bool differential =
        word.size() == 2 && word[0] == 'd' && text_.substr(0, at_).find("int") != std::string_view::npos;
    if (!meant.empty() || differential) {
      add(diagnostic_code::known_name, word, "nothing is known of the name '" + std::string(word) + "'",
          differential ? "write diff(" + std::string(word.substr(1)) + ") for a differential" : did_you_mean(meant));
    }
  }

  std::size_t behind_blanks(std::size_t at) const { return std::min(text_.find_first_not_of(" \t", at), text_.size()); }

  void check_name(std::string_view word) {
    if (const std::string_view usual = usual_meaning(usual_functions, word); !usual.empty()) {
      add(diagnostic_code::known_name, word, "nothing is known of the function '" + std::string(word) + "'",
          std::string(usual));
      return;
    }
    if (word.size() < 3 || name_number(word) >= 0 ||
        std::find(notation_words.begin(), notation_words.end(), word) != notation_words.end()) {
      return;
    }
    const std::string_view known = nearest_word(word, known_function_words());
    if (!known.empty() && edit_distance(word, known, 2) <= (word.size() < 4 ? 0U : 1U)) {
      add(diagnostic_code::known_name, word, "nothing is known of the function '" + std::string(word) + "'",
          did_you_mean(known));
    }
  }

  // word^exponent(...): the power is applied, not the word.
  void check_power(std::string_view word, std::size_t exponent) {
    std::size_t end = behind_blanks(exponent);
    if (end < text_.size() && (text_[end] == '{' || text_[end] == '(')) {
      end = behind_bracket(end);
    } else {
      while (end < text_.size() && is_word_byte(text_[end])) {
        ++end;
      }
    }
    const std::size_t next = behind_blanks(end);
    if (end > exponent && next < text_.size() && text_[next] == '(') {
      const std::string name(word);
      add(diagnostic_code::function_power, text_.substr(at_ - word.size(), next - at_ + word.size()),
          "this applies the power of '" + name + "', of which nothing is known, to an argument",
          "write " + name + "(...)^{...} for the power of the value");
    }
  }

  std::size_t behind_bracket(std::size_t at) const {
    int depth = 0;
    for (; at < text_.size(); ++at) {
      depth += text_[at] == '(' || text_[at] == '{' ? 1 : 0;
      depth -= text_[at] == ')' || text_[at] == '}' ? 1 : 0;
      if (depth == 0) {
        return at + 1;
      }
    }
    return at;
  }

  void add(diagnostic_code code, std::string_view part, std::string message, std::string suggestion) {
    d_.add({.code = code,
            .level = severity::warning,
            .message = std::move(message),
            .place = d_.place_of(part),
            .suggestion = std::move(suggestion)});
  }

  diagnostics& d_;
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t length_ = 0;  // of the sign that was found last
  bool in_set_ = false;     // ∈ stands in front
  std::vector<level> open_;
};

}  // namespace

void warn_of_readings(diagnostics& d, std::string_view formula) { reading_scan(d, formula).run(); }

}  // namespace vetro

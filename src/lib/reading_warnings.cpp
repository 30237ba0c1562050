// One pass over the text. It tells words, signs and brackets apart, which is enough for the three questions.
#include "lib/reading_warnings.h"

#include <algorithm>
#include <array>
#include <string>

#include "diagnostics/nearest.h"
#include "term/kinds.h"
#include "term/known_words.h"

namespace vetro {
namespace {

// Words of the notation that stand in front of parentheses and name no function.
constexpr std::array<std::string_view, 11> notation_words = {"forall", "exists", "existsUnique", "not", "in", "notin",
                                                             "subset", "if",     "otherwise",    "mod", "fun"};

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
  reading_scan(diagnostics& d, std::string_view text) : d_(d), text_(text), implied_(1, false) {}

  void run() {
    while (at_ < text_.size()) {
      step();
    }
  }

 private:
  void step() {
    const std::string_view rest = text_.substr(at_);
    const char c = rest.front();
    if (c == '`') {
      at_ += std::min(rest.find('`', 1), rest.size() - 1) + 1;
    } else if (rest.starts_with("<==>") || rest.starts_with("⇔")) {
      implied_.back() = false;
      at_ += c == '<' ? 4 : std::string_view("⇔").size();
    } else if (rest.starts_with("=>") || rest.starts_with("⇒")) {
      take_implication(c == '=' ? 2 : std::string_view("⇒").size());
    } else if (is_letter(c)) {
      take_word();
    } else {
      take_sign(c);
    }
  }

  void take_sign(char c) {
    if (c == '(' || c == '[' || c == '{') {
      implied_.push_back(false);
    } else if ((c == ')' || c == ']' || c == '}') && implied_.size() > 1) {
      implied_.pop_back();
    } else if (c == ',' || c == ';') {
      implied_.back() = false;
    }
    ++at_;
  }

  void take_implication(std::size_t length) {
    if (implied_.back()) {
      add(diagnostic_code::implication_chain, text_.substr(at_, length),
          "implications group to the left: this reads (a ⇒ b) ⇒ c", "write a ⇒ (b ⇒ c) where that is meant");
    }
    implied_.back() = true;
    at_ += length;
  }

  void take_word() {
    std::size_t end = at_;
    while (end < text_.size() && is_word_byte(text_[end])) {
      ++end;
    }
    const std::string_view word = text_.substr(at_, end - at_);
    at_ = end;
    const std::size_t next = behind_blanks(end);
    if (next < text_.size() && text_[next] == '(') {
      check_name(word);
    } else if (next < text_.size() && text_[next] == '^') {
      check_power(word, next + 1);
    }
  }

  std::size_t behind_blanks(std::size_t at) const { return std::min(text_.find_first_not_of(" \t", at), text_.size()); }

  void check_name(std::string_view word) {
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
  std::vector<bool> implied_;  // for each open bracket: an implication stands in it, behind the last comma
};

}  // namespace

void warn_of_readings(diagnostics& d, std::string_view formula) { reading_scan(d, formula).run(); }

}  // namespace vetro

// A place in one script line and what the script language reads there: words, braced formulas, references to
// hypotheses, theorems and the goal, substitution pairs. Each read step skips white space in front of its token; a step
// that fails leaves the cursor anywhere, because the first failure ends the line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/diagnostics.h"
#include "lib/dsl_ast.h"

namespace vetro {

// At most so many digits make a number, and so many bytes a theorem's name.
inline constexpr std::size_t max_reference_digits = 19;
inline constexpr std::size_t max_theorem_name = 255;

class dsl_cursor {
 public:
  explicit dsl_cursor(std::string_view text) : start_(text.data()), rest_(text) {}
  // A cursor on a part of the same line.
  dsl_cursor part(std::string_view text) const {
    dsl_cursor cursor(text);
    cursor.start_ = start_;
    return cursor;
  }

  // Everything that has not been read.
  std::string_view rest() const { return rest_; }

  // Where a part of the line stands.
  text_span span_of(std::string_view text) const {
    return {static_cast<int>(text.data() - start_) + 1, static_cast<int>(text.size())};
  }

  // What was missing where the reading of the line failed: the first one counts. Gives false.
  bool misses(std::string what);
  void misses_as_in(const dsl_cursor& part);
  const std::string& missing() const { return missing_; }
  text_span missing_at() const { return missing_at_; }

  void skip_whitespace();
  // The number that an author may write in front of a line: digits, then perhaps a dot.
  void skip_line_number();
  bool at_end();
  bool tail_is_empty_or_comment();

  bool next_is(char c);
  bool take(char c);
  bool take_prefix(std::string_view word);   // whatever follows the word
  bool take_keyword(std::string_view word);  // only before the end, white space, "(" or "{"

  // 1 to 19 digits. A value that does not fit becomes the largest one.
  bool take_number(std::int64_t& number);
  // The text between an opening character, which must come next, and the closing one that balances it.
  bool take_balanced(char open, char close, std::string_view& content);
  // The text up to the first stop character, which is read too and does not belong to it.
  bool take_until(char stop, std::string_view& content);
  // As many bytes as the test accepts, perhaps none; white space in front is not skipped.
  std::string_view take_while(bool (*accepts)(char));

 private:
  const char* start_;
  std::string_view rest_;
  std::string missing_;
  text_span missing_at_;
};

bool is_script_space(char c);  // the six white space characters of the C locale
bool is_script_digit(char c);

// "(" reference ")". A formula that does not parse leaves t null, and the reference is accepted.
bool read_reference(dsl_cursor& in, dsl_term& reference);
bool read_reference_of_type(dsl_cursor& in, dsl_term_type type, dsl_term& reference);
// References for as long as a "(" follows, perhaps none. False when one of them is bad.
bool read_references(dsl_cursor& in, dsl_term_list& list);

// "(" binder ":=" "{" value "}" ")". Both formulas must parse.
bool read_sub_pair(dsl_cursor& in, dsl_sub_pair& pair);
// Pairs for as long as a "(" follows, perhaps none. False when one of them is bad.
bool read_sub_list(dsl_cursor& in, dsl_sub_list& list);

}  // namespace vetro

// The form of an instruction: its syntax, and what the trace shows of it. One description serves the reader of scripts,
// the printer and the trace; adding an instruction is a record in dsl_ast.h and a description in dsl_form.cpp.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "lib/dsl_ast.h"
#include "lib/dsl_cursor.h"

namespace vetro {

// A field of an instruction's record, to look at and to fill.
template <class X>
struct dsl_field {
  const X& (*of)(const dsl_content& content);
  X& (*in)(dsl_content& content);
};

// A field that holds one of a few words, by its number.
struct word_field {
  std::span<const std::string_view> words;
  std::size_t (*of)(const dsl_content& content);
  void (*set)(dsl_content& content, std::size_t number);
};

// ---- Syntax. Each part is read, and printed, at its place behind the keyword.

// A word or a sign. It is printed as it stands here; the blanks around it are for the printer.
struct text_part {
  std::string_view text;
  const char* complaint = nullptr;  // what standard error says where it is missing
  constexpr std::string_view word() const {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
  }
};
struct reference_part {
  dsl_field<dsl_term> field;
  std::optional<dsl_term_type> type = std::nullopt;  // the only type that fits
};
enum class how_many : bool { any, some };
struct references_part {
  dsl_field<dsl_term_list> field;
  how_many count;
};
struct pairs_part {
  dsl_field<dsl_sub_list> field;
  how_many count;
};
struct word_part {
  word_field field;
  bool (dsl_cursor::*take)(std::string_view word);
};
// A formula in parentheses.
struct formula_part {
  dsl_field<term_ptr> field;
};
// A semicolon that may stand here and is not printed.
struct semicolon_part {};
// Nothing may follow, not even a comment.
struct end_part {};
// What no other part describes.
struct special_part {
  bool (*read)(dsl_cursor& in, dsl_content& content);
  void (*print)(std::string& out, const dsl_content& content, bool internal);
};
using syntax_part = std::variant<text_part, reference_part, references_part, pairs_part, word_part, formula_part,
                                 semicolon_part, end_part, special_part>;

// ---- Trace.

// What the header shows behind the step id: text, references without their formulas, words, a reference with formula.
struct quoted_reference {
  dsl_field<dsl_term> field;
};
using header_part = std::variant<std::string_view, dsl_field<dsl_term>, word_field, quoted_reference>;

// Pairs on a line that is left out where there are no pairs.
struct pairs_if_any {
  dsl_field<dsl_sub_list> field;
};
// "all", or the references.
struct all_or_references {
  dsl_field<bool> all;
  dsl_field<dsl_term_list> field;
};
// The text, or another one where it is empty.
struct text_or {
  dsl_field<std::string> field;
  std::string_view otherwise;
};
using shown_value = std::variant<dsl_field<dsl_term>, dsl_field<dsl_term_list>, dsl_field<dsl_sub_list>, pairs_if_any,
                                 dsl_field<term_ptr>, word_field, all_or_references, text_or>;
// A line of the trace.
struct trace_field {
  std::string_view label;
  shown_value value;
  std::string_view internal_label = {};  // of the line with the internal form; empty where there is none
};

struct instruction_form {
  std::string_view keyword;
  dsl_content (*make)();
  std::span<const syntax_part> syntax;
  std::span<const header_part> header;
  std::span<const trace_field> fields;
};

// The forms of all instructions with a syntax, in the order of dsl_type.
std::span<const instruction_form> instruction_forms();
const instruction_form& instruction_form_of(dsl_type type);

}  // namespace vetro

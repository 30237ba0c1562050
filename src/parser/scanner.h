// The scanner of one text, and the parts of its rules that are more than a token's name.
#pragma once

#include "grammar.h"  // tokens and values, generated
#include "parser/parse_context.h"

namespace vetro {

class scanner {
 public:
  explicit scanner(parse_context& context);
  ~scanner();
  scanner(const scanner&) = delete;
  scanner& operator=(const scanner&) = delete;

  // First the marker that selects the formula language, then the tokens of the text, each with its value where it has
  // one, then the end of the text again and again. A stopped context has no more tokens.
  int next(FORMULA_STYPE& value);

 private:
  parse_context& context_;
  void* state_ = nullptr;
  bool started_ = false;
};

// Each reads the newest token of the context and gives the kind of token.
int scan_lexeme(parse_context& context, FORMULA_STYPE& value, int token);
int scan_name(parse_context& context, FORMULA_STYPE& value);
int scan_quoted_name(parse_context& context, FORMULA_STYPE& value);
int scan_invalid(const parse_context& context);
int scan_unexpected(parse_context& context);

}  // namespace vetro

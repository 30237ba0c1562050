// The two printers. print_term writes mathematical notation with the fewest parentheses that keep the structure;
// print_term_internal writes every application in prefix notation. Both append to a string; neither prints binders.
#pragma once

#include <string>
#include <string_view>

#include "term/ast.h"

namespace vetro {

// Binding strength of a printed term, weakest first.
enum class print_prec : int {
  PRINT_PREC_NONE = -1,
  PRINT_PREC_UNKNOWN = 0,
  PRINT_PREC_FUN,
  PRINT_PREC_QUANT,
  PRINT_PREC_IFF,
  PRINT_PREC_IMPL,
  PRINT_PREC_OR,
  PRINT_PREC_AND,
  PRINT_PREC_NOT,
  PRINT_PREC_REL,
  PRINT_PREC_COLON,
  PRINT_PREC_BIG_OPER,
  PRINT_PREC_SET,
  PRINT_PREC_COMPOSE,
  PRINT_PREC_ADD,
  PRINT_PREC_MUL,
  PRINT_PREC_UNARY,
  PRINT_PREC_FACT,
  PRINT_PREC_POWER_INDEX,
  PRINT_PREC_APPLY,
  PRINT_PREC_ATOM
};
using enum print_prec;

print_prec term_print_prec(term_ptr t);

// A null term writes nothing and reports "Error: print_term visiting NULL pointer\n" (or print_term_internal).
void print_term(std::string& out, term_ptr t);
void print_term_internal(std::string& out, term_ptr t);
void print_term_list(std::string& out, term_span list);
void print_term_list_internal(std::string& out, term_span list);
void print_term_list_paren(std::string& out, term_span list);
void print_term_list_paren_internal(std::string& out, term_span list);
void print_lambda_type(std::string& out, lambda_type_ptr type);
void print_lambda_var_type_list(std::string& out, term_span vars, const lambda_var_type_list& types, bool internal);

std::string print_term_to_string(term_ptr t);
std::string print_term_internal_to_string(term_ptr t);

// A variable's name as it prints: bare, or between backquotes where it would read as something else.
void print_variable_name(std::string& out, std::string_view name);

}  // namespace vetro

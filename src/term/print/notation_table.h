// The notation of the pretty printer as data: one row for each operator that has a notation of its own, and the lookup
// of the row that a term is printed by. Everything that no row takes is printed as an application.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "term/ast.h"
#include "term/print/pretty.h"

namespace vetro::print_table {

inline constexpr int max_arguments = 4;

// How an operand is printed. The parentheses depend on its own strength and on the strength that it is printed at.
enum class operand_rule : std::uint8_t {
  plain,       // never in parentheses
  child,       // in parentheses when weaker
  strict,      // in parentheses when weaker or equal
  mult_right,  // the right factor of a product: strict for quotients and remainders, else child
  relation,    // beside a relation whose text would take an argument list that follows: also guards applications
  side_point,  // before "^-" and "^+"
  elements,    // a TermList without any brackets
};

struct operand {
  std::uint8_t argument = 0;
  operand_rule rule = operand_rule::plain;
  print_prec at = PRINT_PREC_NONE;
};

// The texts between the operands: "# + #" has an operand at each mark.
struct shape {
  std::string_view texts[max_arguments + 1] = {};
  int marks = 0;
  consteval shape(const char* pattern) {  // NOLINT: implicit on purpose
    std::size_t length = 0;
    for (; pattern[length] != '\0'; ++length) {
      if (pattern[length] == '#') {
        texts[marks++] = {pattern, length};
        pattern += length + 1;
        length = static_cast<std::size_t>(-1);
      }
    }
    texts[marks] = {pattern, length};
  }
};

enum class row_form : std::uint8_t {
  notation,  // texts and operands of the row
  chain,     // a printable chain of relations
  cases,     // a piecewise function
  point,     // head and first arguments, then a second argument list; takes more arguments than arity says
};

struct print_row {
  int head;  // number of the leaf
  int arity;
  print_prec strength;
  shape text;
  operand operands[max_arguments] = {};
  int list_argument = -1;  // this argument must be a TermList
  row_form form = row_form::notation;
};

// The row of a term and its arguments in order; no row for a leaf, a binder or a plain application.
struct found_row {
  const print_row* row;
  term_ptr arguments[max_arguments];
};

// Looks at no more than the first few nodes of the spine. A row asks for its head leaf without scope and binders, for
// its number of arguments and for a TermList where it prints one; what an Apply on the spine carries does not count.
found_row find_row(term_ptr t);

// The first row of a head leaf; null for any other term.
const print_row* row_of_head(term_ptr head);

// The strength of t, whose row is known.
print_prec strength_of(term_ptr t, const found_row& found);

// Whether an operand with the given row and strength needs parentheses under the rule. A term without a strength always
// does.
bool needs_parentheses(operand_rule rule, print_prec at, term_ptr t, const found_row& found, print_prec own);

// A number or infinity with a minus sign.
bool is_negative_constant(term_ptr t);

}  // namespace vetro::print_table

// What the pretty and the internal printer have in common: leaves, argument lists, scopes. The printer of the children
// is a parameter.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "term/ast.h"
#include "term/print/notation_table.h"

namespace vetro::print_parts {

using print_function = void (*)(std::string&, term_ptr);

// A leaf of any type; false for a term that is no leaf. Most constants have a sign in the pretty form.
bool print_leaf(std::string& out, term_ptr t, bool internal);

void print_list(std::string& out, term_span list, std::string_view separator, print_function print);

// "(a) (b)".
void print_groups(std::string& out, term_span list, print_function print);

// "fun x: RealSet [condition] . ", the part of a Lambda before its body. A Lambda without parameters ends the process.
void print_lambda_head(std::string& out, term_ptr t, bool internal);

// "forall ", and reports an unknown quantifier with the message.
void print_quant_word(std::string& out, quant_type quant, const char* message);

// The part of a FreeVarTag before its body.
void print_tag_head(std::string& out, term_ptr t, print_function print);

// A printable chain of relations. The operand printer learns whether the predicate before the operand (for the first
// operand: the first predicate) is one that needs its operands guarded.
using print_operand_function = void (*)(std::string&, term_ptr, bool guarded);
void print_chain(std::string& out, term_span predicates, term_span operands, print_operand_function print);

// The sign of a predicate in a chain.
std::string_view chain_symbol(pred_type predicate);

// " [@scope s @]" when t has a scope.
void print_scope(std::string& out, term_ptr t, print_function print);

// The left spine of an application: how many arguments stand above its head. An inner Apply with a scope is a head,
// because its scope is printed behind it.
struct spine_end {
  term_ptr head;
  std::size_t count;
};
spine_end end_of_spine(term_ptr t);
term_ptr left_times(term_ptr t, std::size_t steps);

// The last count arguments of the spine that ends in t, with ", " between.
void print_arguments(std::string& out, term_ptr t, std::size_t count, print_function print);

// "frac(a, b)(c, d)": the form of a head whose further arguments are those of a point. False when t is not of that
// kind.
bool print_point(std::string& out, term_ptr t, const spine_end& end, print_function print);

}  // namespace vetro::print_parts

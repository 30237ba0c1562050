// How the trace shows an instruction: the words of its header, and its fields line by line.
#pragma once

#include <string>
#include <string_view>

#include "lib/dsl_ast.h"

namespace vetro {

void trace_indent(std::string& out, int level);                       // two blanks for each level
void trace_print_term_inline(std::string& out, term_ptr t);           // "<null>" without a term
void trace_print_term_internal_inline(std::string& out, term_ptr t);  // "<null>" without a term
void trace_print_dsl_ref(std::string& out, const dsl_term& reference);
void trace_print_dsl_term_inline(std::string& out, const dsl_term& reference);
void trace_print_dsl_term_list_refs(std::string& out, const dsl_term_list& list);
void trace_print_sub_list(std::string& out, const dsl_sub_list& list);
// No line end follows: the next output continues on the line of the internal form.
void trace_print_internal_term_line(std::string& out, int level, std::string_view label, term_ptr t);
void trace_print_internal_dsl_term_line(std::string& out, int level, std::string_view label, const dsl_term& reference);
void trace_print_internal_sub_list(std::string& out, int level, const dsl_sub_list& list);

// The words behind the step id, without a line end.
void trace_print_header(std::string& out, const dsl_instruction& inst);
// A line for each field; and the lines with the internal forms, which stand behind all of them.
void trace_print_fields(std::string& out, int level, const dsl_instruction& inst);
void trace_print_internal_fields(std::string& out, int level, const dsl_instruction& inst);

}  // namespace vetro

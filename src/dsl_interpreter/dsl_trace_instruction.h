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

// Writes the fields of an instruction at one level. The internal lines appear only where internal forms are shown.
class trace_lines {
 public:
  trace_lines(std::string& out, int level, bool internal) : out_(out), level_(level), internal_(internal) {}

  void text(std::string_view label, std::string_view value);
  void formula(std::string_view label, term_ptr t);
  void reference(std::string_view label, const dsl_term& reference);
  void references(std::string_view label, const dsl_term_list& list);
  void pairs(std::string_view label, const dsl_sub_list& list);
  void internal_formula(std::string_view label, term_ptr t);
  void internal_reference(std::string_view label, const dsl_term& reference);
  void internal_pairs(const dsl_sub_list& list);

 private:
  void open(std::string_view label);

  std::string& out_;
  int level_;
  bool internal_;
};

void trace_header(std::string& out, const dsl_get_prop& inst);
void trace_header(std::string& out, const dsl_exists& inst);
void trace_header(std::string& out, const dsl_destruct_and& inst);
void trace_header(std::string& out, const dsl_rewrite& inst);
void trace_header(std::string& out, const dsl_rewrite_in& inst);
void trace_header(std::string& out, const dsl_apply& inst);
void trace_header(std::string& out, const dsl_assert& inst);
void trace_header(std::string& out, const dsl_case_analysis& inst);
void trace_header(std::string& out, const dsl_or_intro& inst);
void trace_header(std::string& out, const dsl_use_condition& inst);
void trace_header(std::string& out, const dsl_get_exists& inst);
void trace_header(std::string& out, const dsl_get_forall& inst);
void trace_header(std::string& out, const dsl_get_condition& inst);
void trace_header(std::string& out, const dsl_auto_replace& inst);
void trace_header(std::string& out, const dsl_not_normalize& inst);
void trace_header(std::string& out, const dsl_auto_solve& inst);

void trace_fields(trace_lines& out, const dsl_get_prop& inst);
void trace_fields(trace_lines& out, const dsl_exists& inst);
void trace_fields(trace_lines& out, const dsl_destruct_and& inst);
void trace_fields(trace_lines& out, const dsl_rewrite& inst);
void trace_fields(trace_lines& out, const dsl_rewrite_in& inst);
void trace_fields(trace_lines& out, const dsl_apply& inst);
void trace_fields(trace_lines& out, const dsl_assert& inst);
void trace_fields(trace_lines& out, const dsl_case_analysis& inst);
void trace_fields(trace_lines& out, const dsl_or_intro& inst);
void trace_fields(trace_lines& out, const dsl_use_condition& inst);
void trace_fields(trace_lines& out, const dsl_get_exists& inst);
void trace_fields(trace_lines& out, const dsl_get_forall& inst);
void trace_fields(trace_lines& out, const dsl_get_condition& inst);
void trace_fields(trace_lines& out, const dsl_auto_replace& inst);
void trace_fields(trace_lines& out, const dsl_not_normalize& inst);
void trace_fields(trace_lines& out, const dsl_auto_solve& inst);

}  // namespace vetro

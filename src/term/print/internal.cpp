// The internal printer: prefix notation for every application, which shows the tree. Only chains and points keep a form
// of their own.
#include "term/print/notation_table.h"
#include "term/print/parts.h"
#include "term/print/pretty.h"
#include "term/report.h"

namespace vetro {
namespace {

void print_chain_operand(std::string& out, term_ptr t, bool /*guarded*/) { print_term_internal(out, t); }

void print_application(std::string& out, term_ptr t) {
  const print_parts::spine_end end = print_parts::end_of_spine(t);
  if (end.count == 2 && !is_apply(end.head)) {
    const print_table::found_row found = print_table::find_row(t);
    if (found.row != nullptr && found.row->form == print_table::row_form::chain) {
      print_parts::print_chain(out, found.arguments[0]->elements(), found.arguments[1]->elements(),
                               print_chain_operand);
      return;
    }
  }
  if (print_parts::print_point(out, t, end, print_term_internal)) {
    return;
  }
  print_term_internal(out, end.head);
  out += '(';
  print_parts::print_arguments(out, t, end.count, print_term_internal);
  out += ')';
}

}  // namespace

void print_term_internal(std::string& out, term_ptr t) {
  if (t == nullptr) {
    report_error("Error: print_term_internal visiting NULL pointer\n");
    return;
  }
  switch (t->type()) {
    case Apply:
      print_application(out, t);
      break;
    case Lambda:
      print_parts::print_lambda_head(out, t, true);
      print_term_internal(out, t->body());
      break;
    case Quant:
      print_parts::print_quant_word(out, t->quant(), "Error: print_term_internal visiting unknown quant_type %d\n");
      print_term_list_paren_internal(out, t->vars());
      out += ", (";
      print_term_internal(out, t->body());
      out += ')';
      break;
    case TermList:
      print_term_list_internal(out, t->elements());
      break;
    case FreeVarTag:
      print_parts::print_tag_head(out, t, print_term_internal);
      print_term_internal(out, t->body());
      break;
    default:
      if (!print_parts::print_leaf(out, t, true)) {
        report_error("Error: print_term_internal visiting unknown term type %d\n", static_cast<int>(t->type()));
        out += "Unknown_term_type";
      }
      break;
  }
  print_parts::print_scope(out, t, print_term_internal);
}

void print_term_list_internal(std::string& out, term_span list) {
  print_parts::print_list(out, list, ", ", print_term_internal);
}

void print_term_list_paren_internal(std::string& out, term_span list) {
  print_parts::print_groups(out, list, print_term_internal);
}

std::string print_term_internal_to_string(term_ptr t) {
  std::string text;
  print_term_internal(text, t);
  return text;
}

}  // namespace vetro

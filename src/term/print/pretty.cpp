// The pretty printer: the notation of print_table where it has a row, else head and arguments. The cost of a node is
// independent of the size of its children.
#include "term/print/pretty.h"

#include "term/print/notation_table.h"
#include "term/print/parts.h"
#include "term/report.h"

namespace vetro {
namespace {

using print_table::find_row;
using print_table::found_row;
using print_table::operand;
using print_table::operand_rule;
using print_table::print_row;
using print_table::row_form;

void print_found(std::string& out, term_ptr t, const found_row& found);

void print_in_parentheses_if(bool parentheses, std::string& out, term_ptr t, const found_row& found) {
  if (parentheses) {
    out += '(';
  }
  print_found(out, t, found);
  if (parentheses) {
    out += ')';
  }
}

void print_operand(std::string& out, term_ptr t, operand_rule rule, print_prec at) {
  if (rule == operand_rule::elements) {
    print_term_list(out, t->elements());
    return;
  }
  const found_row found = find_row(t);
  print_in_parentheses_if(print_table::needs_parentheses(rule, at, t, found, strength_of(t, found)), out, t, found);
}

void print_notation(std::string& out, const found_row& found) {
  const print_row& row = *found.row;
  for (int mark = 0; mark < row.text.marks; ++mark) {
    const operand& part = row.operands[mark];
    out += row.text.texts[mark];
    print_operand(out, found.arguments[part.argument], part.rule, part.at);
  }
  out += row.text.texts[row.text.marks];
}

void print_chain_operand(std::string& out, term_ptr t, bool guarded) {
  print_operand(out, t, guarded ? operand_rule::relation : operand_rule::plain, PRINT_PREC_REL);
}

// A branch Tuple(T(value, condition)), or the bare value that holds otherwise. False for any other tuple.
bool print_branch(std::string& out, term_ptr branch) {
  if (!is_apply(branch) || !is_oper(branch->left(), Tuple)) {
    out += "otherwise ";
    print_term(out, branch);
    return true;
  }
  term_ptr pair = branch->right();
  if (pair->type() != TermList || pair->elements().size() != 2) {
    report_error("Error: print_term_aux visiting invalid piecewise function definition\n");
    return false;
  }
  print_term(out, pair->elements()[0]);
  out += " if ";
  print_term(out, pair->elements()[1]);
  return true;
}

// False when a branch has no readable form; the text then ends before it.
bool print_cases(std::string& out, term_span branches) {
  out += "cases{ ";
  bool first = true;
  for (term_ptr branch : branches) {
    if (!first) {
      out += "; ";
    }
    first = false;
    if (!print_branch(out, branch)) {
      return false;
    }
  }
  out += " }";
  return true;
}

// No row: head and arguments. Where an inner part of the spine has a row, that part is the head, as in f'(x).
void print_application(std::string& out, term_ptr t) {
  print_parts::spine_end end = print_parts::end_of_spine(t);
  if (print_parts::print_point(out, t, end, print_term)) {
    return;
  }
  const print_row* row = print_table::row_of_head(end.head);
  if (row != nullptr && end.count > static_cast<std::size_t>(row->arity)) {
    const std::size_t outer = end.count - static_cast<std::size_t>(row->arity);
    term_ptr inner = print_parts::left_times(t, outer);
    if (find_row(inner).row != nullptr) {
      end = {inner, outer};
    }
  }
  print_term(out, end.head);
  out += '(';
  print_parts::print_arguments(out, t, end.count, print_term);
  out += ')';
}

// False when the text of t broke off.
bool print_apply(std::string& out, term_ptr t, const found_row& found) {
  if (found.row == nullptr) {
    print_application(out, t);
    return true;
  }
  switch (found.row->form) {
    case row_form::chain:
      print_parts::print_chain(out, found.arguments[0]->elements(), found.arguments[1]->elements(),
                               print_chain_operand);
      return true;
    case row_form::cases:
      return print_cases(out, found.arguments[0]->elements());
    default:
      print_notation(out, found);
      return true;
  }
}

void print_found(std::string& out, term_ptr t, const found_row& found) {
  switch (t->type()) {
    case Apply:
      if (!print_apply(out, t, found)) {
        return;
      }
      break;
    case Lambda:
      print_parts::print_lambda_head(out, t, false);
      print_operand(out, t->body(), operand_rule::child, PRINT_PREC_FUN);
      break;
    case Quant:
      print_parts::print_quant_word(out, t->quant(), "Error: print_term visiting unknown quant_type %d\n");
      print_term_list_paren(out, t->vars());
      out += ", ";
      print_operand(out, t->body(), operand_rule::child, PRINT_PREC_QUANT);
      break;
    case TermList:
      print_term_list(out, t->elements());
      break;
    case FreeVarTag:
      print_parts::print_tag_head(out, t, print_term);
      print_term(out, t->body());
      break;
    default:
      if (!print_parts::print_leaf(out, t, false)) {
        report_error("Error: print_term_aux visiting unknown term type %d\n", static_cast<int>(t->type()));
        out += "Unknown_term_type";
      }
      break;
  }
  print_parts::print_scope(out, t, print_term);
}

}  // namespace

print_prec term_print_prec(term_ptr t) { return strength_of(t, find_row(t)); }

void print_term(std::string& out, term_ptr t) {
  if (t == nullptr) {
    report_error("Error: print_term visiting NULL pointer\n");
    return;
  }
  print_found(out, t, find_row(t));
}

void print_term_list(std::string& out, term_span list) { print_parts::print_list(out, list, ", ", print_term); }

void print_term_list_paren(std::string& out, term_span list) { print_parts::print_groups(out, list, print_term); }

std::string print_term_to_string(term_ptr t) {
  std::string text;
  print_term(text, t);
  return text;
}

}  // namespace vetro

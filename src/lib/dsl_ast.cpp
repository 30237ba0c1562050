// Names and printers of the script's records. What the printers write is the script language itself; the internal form
// differs in its formulas only. How an instruction is written stands in its form.
#include "lib/dsl_ast.h"

#include "lib/dsl_form.h"
#include "term/print/pretty.h"
#include "term/report.h"

namespace vetro {

namespace {

template <std::size_t size>
const char* name_in(const std::string_view (&names)[size], std::size_t value) {
  return value < size ? names[value].data() : "unknown";  // the words are literals, which end in a zero
}

void print_formula(std::string& out, term_ptr t, bool internal) {
  if (internal) {
    print_term_internal(out, t);
  } else {
    print_term(out, t);
  }
}

// Prints the parts of a form one after the other.
struct part_printer {
  std::string& out;
  const dsl_content& content;
  bool internal;

  void operator()(const text_part& part) const { out += part.text; }
  void operator()(const reference_part& part) const { print_dsl_term(out, part.field.of(content), internal); }
  void operator()(const references_part& part) const { print_dsl_term_list(out, part.field.of(content), internal); }
  void operator()(const pairs_part& part) const { print_sub_pair_list(out, part.field.of(content), internal); }
  void operator()(const word_part& part) const { out += part.field.words[part.field.of(content)]; }
  void operator()(const formula_part& part) const {
    out += '(';
    print_formula(out, part.field.of(content), internal);
    out += ')';
  }
  void operator()(const special_part& part) const { part.print(out, content, internal); }
  void operator()(const semicolon_part&) const {}
  void operator()(const end_part&) const {}
};

}  // namespace

// ---- Names.

const char* dsl_type_name(int type) {
  if (type == SOLVER_INST) {
    return "solver";
  }
  return type >= 0 && type < SOLVER_INST ? instruction_form_of(static_cast<dsl_type>(type)).keyword.data() : "unknown";
}

const char* rewrite_direction_name(rewrite_direction direction) { return name_in(rewrite_direction_words, direction); }

const char* rewrite_hypo_type_name(rewrite_hypo_type type) { return name_in(rewrite_hypo_type_words, type); }

const char* rewrite_in_context_name(rewrite_in_context context) { return name_in(rewrite_in_context_words, context); }

// ---- References and pairs.

void print_theorem_ref(std::string& out, const dsl_term& reference) {
  const bool named = !reference.name.empty();
  const bool external = !reference.lib_alias.empty();
  if (named) {
    out += external ? "'" : "'Thm ";
  }
  if (external) {
    out += '@';
    out += reference.lib_alias;
    out += ':';
  }
  out += std::to_string(reference.num);
  if (named) {
    out += ". (";
    out += reference.name;
    out += ")'";
  }
}

void print_dsl_term(std::string& out, const dsl_term& reference, bool internal) {
  switch (reference.type) {
    case dsl_goal:
      out += "(GOAL: {";
      break;
    case dsl_obvious:
      out += "(obvious: {";
      break;
    case dsl_hypo:
      out += "(hypothesis ";
      out += std::to_string(reference.num);
      out += ": {";
      break;
    case dsl_thm:
      out += "(theorem ";
      print_theorem_ref(out, reference);
      out += ": {";
      break;
    default:
      report_error("Error: invalid dsl_term_type: %d\n", reference.type);
      return;
  }
  print_formula(out, reference.t, internal);
  out += "})";
}

void print_dsl_term_list(std::string& out, const dsl_term_list& list, bool internal) {
  for (const dsl_term& reference : list) {
    print_dsl_term(out, reference, internal);
    out += ' ';
  }
}

void print_sub_pair(std::string& out, const dsl_sub_pair& pair, bool internal) {
  out += '(';
  print_formula(out, pair.binder, internal);
  out += " := {";
  print_formula(out, pair.sub_term, internal);
  out += "})";
}

void print_sub_pair_list(std::string& out, const dsl_sub_list& list, bool internal) {
  for (const dsl_sub_pair& pair : list) {
    print_sub_pair(out, pair, internal);
    out += ' ';
  }
}

void print_sub_pair_list_compact(std::string& out, const dsl_sub_list& list, bool internal) {
  const char* separator = "";
  for (const dsl_sub_pair& pair : list) {
    out += separator;
    print_sub_pair(out, pair, internal);
    separator = " ";
  }
}

// ---- Instructions.

void print_dsl_instruction(std::string& out, const dsl_instruction& inst, bool internal) {
  out += std::to_string(inst.number);
  out += ". ";
  const instruction_form& form = instruction_form_of(inst.type());
  out += form.keyword;
  for (const syntax_part& part : form.syntax) {
    std::visit(part_printer{out, inst.content, internal}, part);
  }
}

void print_dsl_instruction_list(std::string& out, const dsl_instruction_list& list, bool internal) {
  for (const dsl_instruction& inst : list) {
    print_dsl_instruction(out, inst, internal);
    out += '\n';
  }
}

}  // namespace vetro

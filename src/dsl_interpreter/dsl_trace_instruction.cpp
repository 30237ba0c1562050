// Building blocks first, then the header and the fields of an instruction by its form.
#include "dsl_interpreter/dsl_trace_instruction.h"

#include "lib/dsl_form.h"
#include "term/print/pretty.h"

namespace vetro {
namespace {

constexpr std::string_view no_term = "<null>";
constexpr std::string_view no_elements = "(none)";

template <class List, class Print>
void join(std::string& out, const List& list, Print print) {
  if (list.empty()) {
    out += no_elements;
    return;
  }
  std::string_view separator;
  for (const auto& element : list) {
    out += separator;
    print(element);
    separator = ", ";
  }
}

void print_word_and_ref(std::string& out, std::string_view word, const dsl_term& reference) {
  out += word;
  trace_print_dsl_ref(out, reference);
}

}  // namespace

void trace_indent(std::string& out, int level) { out.append(2 * static_cast<std::size_t>(level), ' '); }

void trace_print_term_inline(std::string& out, term_ptr t) {
  if (t == nullptr) {
    out += no_term;
  } else {
    print_term(out, t);
  }
}

void trace_print_term_internal_inline(std::string& out, term_ptr t) {
  if (t == nullptr) {
    out += no_term;
  } else {
    print_term_internal(out, t);
  }
}

void trace_print_dsl_ref(std::string& out, const dsl_term& reference) {
  switch (reference.type) {
    case dsl_goal:
      out += "GOAL";
      return;
    case dsl_obvious:
      out += "obvious";
      return;
    case dsl_hypo:
      out += 'H';
      out += std::to_string(reference.num);
      return;
    case dsl_thm:
      out += reference.lib_alias.empty() ? "Thm" : "@" + reference.lib_alias + ":";
      out += std::to_string(reference.num);
      return;
  }
  out += "term" + std::to_string(static_cast<int>(reference.type));
}

void trace_print_dsl_term_inline(std::string& out, const dsl_term& reference) {
  trace_print_dsl_ref(out, reference);
  out += ": ";
  trace_print_term_inline(out, reference.t);
}

void trace_print_dsl_term_list_refs(std::string& out, const dsl_term_list& list) {
  join(out, list, [&](const dsl_term& reference) { trace_print_dsl_ref(out, reference); });
}

void trace_print_sub_list(std::string& out, const dsl_sub_list& list) {
  join(out, list, [&](const dsl_sub_pair& pair) {
    trace_print_term_inline(out, pair.binder);
    out += " := ";
    trace_print_term_inline(out, pair.sub_term);
  });
}

void trace_print_internal_term_line(std::string& out, int level, std::string_view label, term_ptr t) {
  trace_indent(out, level);
  out += label;
  out += " internal: ";
  trace_print_term_internal_inline(out, t);
}

void trace_print_internal_dsl_term_line(std::string& out, int level, std::string_view label,
                                        const dsl_term& reference) {
  trace_indent(out, level);
  out += label;
  print_word_and_ref(out, " ", reference);
  out += " internal: ";
  trace_print_term_internal_inline(out, reference.t);
}

void trace_print_internal_sub_list(std::string& out, int level, const dsl_sub_list& list) {
  if (list.empty()) {
    return;
  }
  trace_indent(out, level);
  out += "subst internal:\n";
  for (const dsl_sub_pair& pair : list) {
    trace_indent(out, level + 1);
    out += "binder: ";
    trace_print_term_internal_inline(out, pair.binder);
    out += "\n";
    trace_indent(out, level + 1);
    out += "value: ";
    trace_print_term_internal_inline(out, pair.sub_term);
    out += "\n";
  }
}

// ---- Instructions.

namespace {

struct header_printer {
  std::string& out;
  const dsl_content& content;

  void operator()(std::string_view text) const { out += text; }
  void operator()(const dsl_field<dsl_term>& field) const { trace_print_dsl_ref(out, field.of(content)); }
  void operator()(const word_field& field) const { out += field.words[field.of(content)]; }
  void operator()(const quoted_reference& part) const { trace_print_dsl_term_inline(out, part.field.of(content)); }
};

// The value of a field behind its label. False where the line is left out.
struct value_printer {
  std::string& out;
  const dsl_content& content;

  bool operator()(const dsl_field<dsl_term>& field) const {
    trace_print_dsl_term_inline(out, field.of(content));
    return true;
  }
  bool operator()(const dsl_field<dsl_term_list>& field) const {
    trace_print_dsl_term_list_refs(out, field.of(content));
    return true;
  }
  bool operator()(const dsl_field<dsl_sub_list>& field) const {
    trace_print_sub_list(out, field.of(content));
    return true;
  }
  bool operator()(const pairs_if_any& shown) const { return !shown.field.of(content).empty() && (*this)(shown.field); }
  bool operator()(const dsl_field<term_ptr>& field) const {
    trace_print_term_inline(out, field.of(content));
    return true;
  }
  bool operator()(const word_field& field) const {
    out += field.words[field.of(content)];
    return true;
  }
  bool operator()(const all_or_references& shown) const {
    if (!shown.all.of(content)) {
      return (*this)(shown.field);
    }
    out += "all";
    return true;
  }
  bool operator()(const text_or& shown) const {
    const std::string& text = shown.field.of(content);
    out += text.empty() ? shown.otherwise : text;
    return true;
  }
};

// The line with the internal form; only formulas have one.
struct internal_printer {
  std::string& out;
  int level;
  std::string_view label;
  const dsl_content& content;

  void operator()(const dsl_field<dsl_term>& field) const {
    trace_print_internal_dsl_term_line(out, level, label, field.of(content));
  }
  void operator()(const dsl_field<dsl_sub_list>& field) const {
    trace_print_internal_sub_list(out, level, field.of(content));
  }
  void operator()(const dsl_field<term_ptr>& field) const {
    trace_print_internal_term_line(out, level, label, field.of(content));
  }
  template <class Other>
  void operator()(const Other&) const {}
};

}  // namespace

void trace_print_header(std::string& out, const dsl_instruction& inst) {
  for (const header_part& part : instruction_form_of(inst.type()).header) {
    std::visit(header_printer{out, inst.content}, part);
  }
}

void trace_print_fields(std::string& out, int level, const dsl_instruction& inst) {
  for (const trace_field& field : instruction_form_of(inst.type()).fields) {
    std::string value;
    if (std::visit(value_printer{value, inst.content}, field.value)) {
      trace_indent(out, level);
      out += field.label;
      out += ": " + value + "\n";
    }
  }
}

void trace_print_internal_fields(std::string& out, int level, const dsl_instruction& inst) {
  for (const trace_field& field : instruction_form_of(inst.type()).fields) {
    if (!field.internal_label.empty()) {
      std::visit(internal_printer{out, level, field.internal_label, inst.content}, field.value);
    }
  }
}

}  // namespace vetro

// Building blocks first, then a header and a field printer for each instruction, in the order of dsl_type.
#include "dsl_interpreter/dsl_trace_instruction.h"

#include "lib/log_stream.h"
#include "term/print.h"

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

const char* side_name(or_intro_side side) { return side == or_intro_left ? "left" : "right"; }

const char* assert_mode_name(dsl_assert_mode mode) {
  constexpr const char* names[] = {"auto", "proof", "admit"};
  return names[mode];
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
  const auto number = static_cast<long long>(reference.num);
  switch (reference.type) {
    case dsl_goal:
      out += "GOAL";
      return;
    case dsl_obvious:
      out += "obvious";
      return;
    case dsl_hypo:
      out += format_text("H%lld", number);
      return;
    case dsl_thm:
      out += reference.lib_alias.empty() ? format_text("Thm%lld", number)
                                         : "@" + reference.lib_alias + format_text(":%lld", number);
      return;
  }
  out += format_text("term%d", static_cast<int>(reference.type));
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

// ---- Fields.

void trace_lines::open(std::string_view label) {
  trace_indent(out_, level_);
  out_ += label;
  out_ += ": ";
}

void trace_lines::text(std::string_view label, std::string_view value) {
  open(label);
  out_ += value;
  out_ += "\n";
}

void trace_lines::formula(std::string_view label, term_ptr t) {
  open(label);
  trace_print_term_inline(out_, t);
  out_ += "\n";
}

void trace_lines::reference(std::string_view label, const dsl_term& reference) {
  open(label);
  trace_print_dsl_term_inline(out_, reference);
  out_ += "\n";
}

void trace_lines::references(std::string_view label, const dsl_term_list& list) {
  open(label);
  trace_print_dsl_term_list_refs(out_, list);
  out_ += "\n";
}

void trace_lines::pairs(std::string_view label, const dsl_sub_list& list) {
  open(label);
  trace_print_sub_list(out_, list);
  out_ += "\n";
}

void trace_lines::internal_formula(std::string_view label, term_ptr t) {
  if (internal_) {
    trace_print_internal_term_line(out_, level_, label, t);
  }
}

void trace_lines::internal_reference(std::string_view label, const dsl_term& reference) {
  if (internal_) {
    trace_print_internal_dsl_term_line(out_, level_, label, reference);
  }
}

void trace_lines::internal_pairs(const dsl_sub_list& list) {
  if (internal_) {
    trace_print_internal_sub_list(out_, level_, list);
  }
}

// ---- Instructions.

void trace_header(std::string& out, const dsl_get_prop& inst) {
  print_word_and_ref(out, "get_prop ", inst.thm);
  print_word_and_ref(out, " as ", inst.new_hypo);
}

void trace_fields(trace_lines& out, const dsl_get_prop& inst) {
  out.reference("source", inst.thm);
  out.pairs("subst", inst.list);
  out.reference("expected_as", inst.new_hypo);
  out.internal_reference("source", inst.thm);
  out.internal_pairs(inst.list);
  out.internal_reference("expected_as", inst.new_hypo);
}

void trace_header(std::string& out, const dsl_exists&) { out += "exists choose witnesses"; }

void trace_fields(trace_lines& out, const dsl_exists& inst) {
  out.pairs("witnesses", inst.list);
  out.internal_pairs(inst.list);
}

void trace_header(std::string& out, const dsl_destruct_and& inst) {
  print_word_and_ref(out, "destruct_and ", inst.source);
}

void trace_fields(trace_lines& out, const dsl_destruct_and& inst) {
  out.reference("source", inst.source);
  out.references("targets", inst.new_hypos);
  out.internal_reference("source", inst.source);
}

void trace_header(std::string& out, const dsl_rewrite& inst) {
  print_word_and_ref(out, "rewrite ", inst.from_prop);
  print_word_and_ref(out, " using ", inst.hypo);
}

void trace_fields(trace_lines& out, const dsl_rewrite& inst) {
  out.reference("rule", inst.hypo);
  out.text("rule_type", rewrite_hypo_type_name(inst.htype));
  out.text("requested_direction", rewrite_direction_name(inst.direction));
  out.reference("from", inst.from_prop);
  out.reference("to", inst.to_prop);
  out.internal_reference("rule", inst.hypo);
  out.internal_reference("from", inst.from_prop);
  out.internal_reference("to", inst.to_prop);
}

void trace_header(std::string& out, const dsl_rewrite_in& inst) {
  out += "rewrite_in ";
  out += rewrite_in_context_name(inst.context);
  print_word_and_ref(out, " ", inst.from_prop);
  print_word_and_ref(out, " using ", inst.hypo);
}

void trace_fields(trace_lines& out, const dsl_rewrite_in& inst) {
  out.text("context", rewrite_in_context_name(inst.context));
  out.reference("rule", inst.hypo);
  out.text("rule_type", rewrite_hypo_type_name(inst.htype));
  out.text("requested_direction", rewrite_direction_name(inst.direction));
  if (!inst.binder_map.empty()) {
    out.pairs("binder_map", inst.binder_map);
  }
  out.reference("from", inst.from_prop);
  out.reference("to", inst.to_prop);
  out.internal_reference("rule", inst.hypo);
  out.internal_reference("from", inst.from_prop);
  out.internal_reference("to", inst.to_prop);
}

void trace_header(std::string& out, const dsl_apply& inst) { print_word_and_ref(out, "apply ", inst.hypo); }

void trace_fields(trace_lines& out, const dsl_apply& inst) {
  out.reference("source", inst.hypo);
  out.internal_reference("source", inst.hypo);
}

void trace_header(std::string& out, const dsl_assert& inst) {
  out += "assert ";
  trace_print_dsl_term_inline(out, inst.new_hypo);
}

void trace_fields(trace_lines& out, const dsl_assert& inst) {
  out.text("mode", assert_mode_name(inst.mode));
  out.reference("proposition", inst.new_hypo);
}

void trace_header(std::string& out, const dsl_case_analysis& inst) {
  print_word_and_ref(out, "case_analysis ", inst.hypo);
}

void trace_fields(trace_lines& out, const dsl_case_analysis& inst) {
  out.reference("source", inst.hypo);
  out.internal_reference("source", inst.hypo);
}

void trace_header(std::string& out, const dsl_or_intro& inst) {
  out += "or_intro ";
  out += side_name(inst.side);
}

void trace_fields(trace_lines& out, const dsl_or_intro& inst) { out.text("side", side_name(inst.side)); }

void trace_header(std::string& out, const dsl_use_condition& inst) {
  print_word_and_ref(out, "use_condition in ", inst.target);
  print_word_and_ref(out, " as ", inst.new_hypo);
}

void trace_fields(trace_lines& out, const dsl_use_condition& inst) {
  out.references("conditions", inst.hypo_list);
  out.reference("target_implication", inst.target);
  out.reference("expected_as", inst.new_hypo);
  out.internal_reference("target", inst.target);
  out.internal_reference("expected_as", inst.new_hypo);
}

void trace_header(std::string& out, const dsl_get_exists& inst) { print_word_and_ref(out, "get_exists ", inst.target); }

void trace_fields(trace_lines& out, const dsl_get_exists& inst) {
  out.reference("source", inst.target);
  out.pairs("fresh_vars", inst.list);
  out.internal_reference("source", inst.target);
  out.internal_pairs(inst.list);
}

void trace_header(std::string& out, const dsl_get_forall&) { out += "get_forall GOAL"; }

void trace_fields(trace_lines& out, const dsl_get_forall& inst) {
  out.reference("target", inst.goal);
  out.pairs("fresh_vars", inst.list);
  out.internal_reference("target", inst.goal);
  out.internal_pairs(inst.list);
}

void trace_header(std::string& out, const dsl_get_condition&) { out += "get_condition from GOAL"; }

void trace_fields(trace_lines& out, const dsl_get_condition& inst) {
  out.references("introduced_conditions", inst.hlist);
  out.reference("target_goal", inst.goal);
  out.internal_reference("target_goal", inst.goal);
}

void trace_header(std::string& out, const dsl_auto_replace& inst) {
  print_word_and_ref(out, "autoreplace ", inst.from_prop);
}

void trace_fields(trace_lines& out, const dsl_auto_replace& inst) {
  out.formula("from_term", inst.from_term);
  out.formula("to_term", inst.to_term);
  out.reference("from_prop", inst.from_prop);
  out.reference("to_prop", inst.to_prop);
  out.internal_formula("from_term", inst.from_term);
  out.internal_formula("to_term", inst.to_term);
  out.internal_reference("from_prop", inst.from_prop);
  out.internal_reference("to_prop", inst.to_prop);
}

void trace_header(std::string& out, const dsl_not_normalize&) { out += "not_normalize GOAL"; }

void trace_fields(trace_lines& out, const dsl_not_normalize& inst) {
  out.reference("from", inst.from_prop);
  out.reference("to", inst.to_prop);
  out.internal_reference("from", inst.from_prop);
  out.internal_reference("to", inst.to_prop);
}

void trace_header(std::string& out, const dsl_auto_solve&) { out += "autosolve"; }

void trace_fields(trace_lines& out, const dsl_auto_solve& inst) {
  if (inst.all_assum) {
    out.text("assumptions", "all");
  } else {
    out.references("assumptions", inst.hlist);
  }
  out.text("requested_solver", inst.solver_name.empty() ? std::string_view("auto") : inst.solver_name);
}

}  // namespace vetro

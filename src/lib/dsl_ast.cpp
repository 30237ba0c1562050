// Names and printers of the script's records. What the printers write is the script language itself; the internal form
// differs in its formulas only.
#include "lib/dsl_ast.h"

#include <iterator>

#include "term/print.h"
#include "term/report.h"

namespace vetro {

namespace {

constexpr const char* direction_names[] = {"left_to_right", "right_to_left"};
constexpr const char* kind_names[] = {"equation", "iff"};
constexpr const char* context_names[] = {"limit", "sum", "setdesc"};

template <std::size_t size>
const char* name_in(const char* const (&names)[size], std::size_t value) {
  return value < size ? names[value] : "unknown";
}

void print_formula(std::string& out, term_ptr t, bool internal) {
  if (internal) {
    print_term_internal(out, t);
  } else {
    print_term(out, t);
  }
}

// ---- One printer for each instruction: what follows the line number.

void print_rule(std::string& out, rewrite_direction direction, rewrite_hypo_type kind, const dsl_term& hypo,
                bool internal) {
  out += '(';
  out += rewrite_direction_name(direction);
  out += ", ";
  out += rewrite_hypo_type_name(kind);
  out += ") ";
  print_dsl_term(out, hypo, internal);
}

void print_from_to(std::string& out, const dsl_term& from, const dsl_term& to, bool internal) {
  out += " from ";
  print_dsl_term(out, from, internal);
  out += " to ";
  print_dsl_term(out, to, internal);
}

void print(std::string& out, const dsl_get_prop& inst, bool internal) {
  out += "get_prop ";
  print_dsl_term(out, inst.thm, internal);
  out += ' ';
  print_sub_pair_list(out, inst.list, internal);
  out += "as ";
  print_dsl_term(out, inst.new_hypo, internal);
}

void print(std::string& out, const dsl_exists& inst, bool internal) {
  out += "exists ";
  print_sub_pair_list(out, inst.list, internal);
}

void print(std::string& out, const dsl_destruct_and& inst, bool internal) {
  out += "destruct_and ";
  print_dsl_term(out, inst.source, internal);
  out += " as ";
  print_dsl_term_list(out, inst.new_hypos, internal);
}

void print(std::string& out, const dsl_rewrite& inst, bool internal) {
  out += "rewrite ";
  print_rule(out, inst.direction, inst.htype, inst.hypo, internal);
  print_from_to(out, inst.from_prop, inst.to_prop, internal);
}

void print(std::string& out, const dsl_rewrite_in& inst, bool internal) {
  out += "rewrite_in ";
  out += rewrite_in_context_name(inst.context);
  out += ' ';
  print_rule(out, inst.direction, inst.htype, inst.hypo, internal);
  if (!inst.binder_map.empty()) {
    out += ' ';
    print_sub_pair_list_compact(out, inst.binder_map, internal);
    out += ';';
  }
  print_from_to(out, inst.from_prop, inst.to_prop, internal);
}

void print(std::string& out, const dsl_apply& inst, bool internal) {
  out += "apply ";
  print_dsl_term(out, inst.hypo, internal);
}

void print(std::string& out, const dsl_assert& inst, bool internal) {
  out += "assert ";
  print_dsl_term(out, inst.new_hypo, internal);
  if (inst.mode == dsl_assert_by_admit) {
    out += " by admit";
  } else if (!inst.proof_body.empty()) {
    out += " by proof {\n";
    print_dsl_instruction_list(out, inst.proof_body, internal);
    out += '}';
  } else if (inst.mode == dsl_assert_by_proof) {
    out += " by proof";
  }
}

void print(std::string& out, const dsl_case_analysis& inst, bool internal) {
  out += "case_analysis ";
  print_dsl_term(out, inst.hypo, internal);
}

void print(std::string& out, const dsl_or_intro& inst, bool /*internal*/) {
  out += inst.side == or_intro_left ? "or_intro left" : "or_intro right";
}

void print(std::string& out, const dsl_use_condition& inst, bool internal) {
  out += "use_condition ";
  print_dsl_term_list(out, inst.hypo_list, internal);
  out += "in ";
  print_dsl_term(out, inst.target, internal);
  out += " as ";
  print_dsl_term(out, inst.new_hypo, internal);
}

void print(std::string& out, const dsl_get_exists& inst, bool internal) {
  out += "get_exists ";
  print_dsl_term(out, inst.target, internal);
  out += ' ';
  print_sub_pair_list(out, inst.list, internal);
}

void print(std::string& out, const dsl_get_forall& inst, bool internal) {
  out += "get_forall ";
  print_dsl_term(out, inst.goal, internal);
  out += ' ';
  print_sub_pair_list(out, inst.list, internal);
}

void print(std::string& out, const dsl_get_condition& inst, bool internal) {
  out += "get_condition ";
  print_dsl_term_list(out, inst.hlist, internal);
  out += "in ";
  print_dsl_term(out, inst.goal, internal);
}

void print_selector(std::string& out, const dsl_auto_replace& inst, bool internal) {
  switch (inst.mode) {
    case ar_all_hypothesis:
      out += "all_hypothesis ";
      return;
    case ar_no_hypothesis:
      out += "no_hypothesis ";
      return;
    case ar_specific_hypothesis:
      print_dsl_term_list(out, inst.hlist, internal);
      return;
  }
  report_error("Error: unknown auto_replace_hypo_mode: %d\n", inst.mode);
}

void print(std::string& out, const dsl_auto_replace& inst, bool internal) {
  out += "autoreplace ";
  print_selector(out, inst, internal);
  out += "from (";
  print_formula(out, inst.from_term, internal);
  out += ") to (";
  print_formula(out, inst.to_term, internal);
  out += ')';
  print_from_to(out, inst.from_prop, inst.to_prop, internal);
}

void print(std::string& out, const dsl_not_normalize& inst, bool internal) {
  out += "not_normalize";
  print_from_to(out, inst.from_prop, inst.to_prop, internal);
}

void print(std::string& out, const dsl_auto_solve& inst, bool internal) {
  out += "autosolve ";
  if (inst.all_assum) {
    out += "all_hypothesis ";
  } else {
    print_dsl_term_list(out, inst.hlist, internal);
  }
  if (!inst.solver_name.empty()) {
    out += "using ";
    out += inst.solver_name;
  }
}

template <typename instruction>
void print_as(std::string& out, const dsl_content& content, bool internal) {
  print(out, std::get<instruction>(content), internal);
}

// ---- The table of instructions, in the order of dsl_type.

struct instruction_form {
  const char* name;
  void (*print)(std::string& out, const dsl_content& content, bool internal);
};

constexpr instruction_form instruction_forms[] = {
    {"get_prop", print_as<dsl_get_prop>},
    {"exists", print_as<dsl_exists>},
    {"destruct_and", print_as<dsl_destruct_and>},
    {"rewrite", print_as<dsl_rewrite>},
    {"rewrite_in", print_as<dsl_rewrite_in>},
    {"apply", print_as<dsl_apply>},
    {"assert", print_as<dsl_assert>},
    {"case_analysis", print_as<dsl_case_analysis>},
    {"or_intro", print_as<dsl_or_intro>},
    {"use_condition", print_as<dsl_use_condition>},
    {"get_exists", print_as<dsl_get_exists>},
    {"get_forall", print_as<dsl_get_forall>},
    {"get_condition", print_as<dsl_get_condition>},
    {"autoreplace", print_as<dsl_auto_replace>},
    {"not_normalize", print_as<dsl_not_normalize>},
    {"autosolve", print_as<dsl_auto_solve>},
    {"solver", nullptr},  // no instruction has this type
};
static_assert(std::size(instruction_forms) == dsl_type_count);

}  // namespace

// ---- Names.

const char* dsl_type_name(int type) {
  return type >= 0 && type < dsl_type_count ? instruction_forms[type].name : "unknown";
}

const char* rewrite_direction_name(rewrite_direction direction) { return name_in(direction_names, direction); }

const char* rewrite_hypo_type_name(rewrite_hypo_type type) { return name_in(kind_names, type); }

const char* rewrite_in_context_name(rewrite_in_context context) { return name_in(context_names, context); }

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
  instruction_forms[inst.type()].print(out, inst.content, internal);
}

void print_dsl_instruction_list(std::string& out, const dsl_instruction_list& list, bool internal) {
  for (const dsl_instruction& inst : list) {
    print_dsl_instruction(out, inst, internal);
    out += '\n';
  }
}

}  // namespace vetro

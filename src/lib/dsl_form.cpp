// The descriptions of the instructions, in the order of dsl_type.
#include "lib/dsl_form.h"

#include "lib/semantic_term.h"
#include "term/report.h"

namespace vetro {
namespace {

// ---- Fields by their members.

template <auto Member>
struct member_of;
template <class Record, class X, X Record::*Member>
struct member_of<Member> {
  using record = Record;
  using type = X;
};

template <auto Member, class Content>
constexpr auto& field_in(Content& content) {
  return std::get_if<typename member_of<Member>::record>(&content)->*Member;
}

template <auto Member>
constexpr dsl_field<typename member_of<Member>::type> field = {
    [](const dsl_content& content) -> const typename member_of<Member>::type& { return field_in<Member>(content); },
    [](dsl_content& content) -> typename member_of<Member>::type& { return field_in<Member>(content); }};

template <auto Member>
constexpr word_field word(std::span<const std::string_view> words) {
  return {words, [](const dsl_content& content) { return static_cast<std::size_t>(field_in<Member>(content)); },
          [](dsl_content& content, std::size_t number) {
            field_in<Member>(content) = static_cast<typename member_of<Member>::type>(number);
          }};
}

constexpr std::string_view side_words[] = {"left", "right"};
constexpr std::string_view assert_mode_words[] = {"auto", "proof", "admit"};

// ---- Parts.

constexpr text_part from = {" from "};
constexpr text_part to = {" to "};
constexpr text_part blank = {" "};

template <auto Member>
constexpr reference_part reference = {field<Member>};
template <auto Member>
constexpr reference_part hypothesis = {field<Member>, dsl_hypo};
template <auto Member>
constexpr reference_part goal = {field<Member>, dsl_goal};
template <auto Member>
constexpr references_part references = {field<Member>, how_many::any};
template <auto Member>
constexpr references_part some_references = {field<Member>, how_many::some};
template <auto Member>
constexpr pairs_part pairs = {field<Member>, how_many::any};
template <auto Member>
constexpr pairs_part some_pairs = {field<Member>, how_many::some};
template <auto Member>
constexpr formula_part formula = {field<Member>};

// Words that a further letter may follow, and words that stand for themselves.
template <auto Member>
constexpr word_part prefix(std::span<const std::string_view> words) {
  return {word<Member>(words), &dsl_cursor::take_prefix};
}
template <auto Member>
constexpr word_part keyword(std::span<const std::string_view> words) {
  return {word<Member>(words), &dsl_cursor::take_keyword};
}

template <class Record>
dsl_content make() {
  return Record{};
}

// ---- get_prop

constexpr syntax_part get_prop_syntax[] = {blank,
                                           reference<&dsl_get_prop::thm>,
                                           blank,
                                           pairs<&dsl_get_prop::list>,
                                           text_part{"as "},
                                           reference<&dsl_get_prop::new_hypo>};
constexpr header_part get_prop_header[] = {"get_prop ", field<&dsl_get_prop::thm>, " as ",
                                           field<&dsl_get_prop::new_hypo>};
constexpr trace_field get_prop_fields[] = {{"source", field<&dsl_get_prop::thm>, "source"},
                                           {"subst", field<&dsl_get_prop::list>, "subst"},
                                           {"expected_as", field<&dsl_get_prop::new_hypo>, "expected_as"}};

// ---- exists

constexpr syntax_part exists_syntax[] = {blank, some_pairs<&dsl_exists::list>};
constexpr header_part exists_header[] = {"exists choose witnesses"};
constexpr trace_field exists_fields[] = {{"witnesses", field<&dsl_exists::list>, "subst"}};

// ---- destruct_and

constexpr syntax_part destruct_and_syntax[] = {blank, reference<&dsl_destruct_and::source>, text_part{" as "},
                                               some_references<&dsl_destruct_and::new_hypos>};
constexpr header_part destruct_and_header[] = {"destruct_and ", field<&dsl_destruct_and::source>};
constexpr trace_field destruct_and_fields[] = {{"source", field<&dsl_destruct_and::source>, "source"},
                                               {"targets", field<&dsl_destruct_and::new_hypos>}};

// ---- rewrite

constexpr syntax_part rewrite_syntax[] = {text_part{" ("},
                                          prefix<&dsl_rewrite::direction>(rewrite_direction_words),
                                          text_part{", "},
                                          prefix<&dsl_rewrite::htype>(rewrite_hypo_type_words),
                                          text_part{") "},
                                          hypothesis<&dsl_rewrite::hypo>,
                                          semicolon_part{},
                                          from,
                                          reference<&dsl_rewrite::from_prop>,
                                          to,
                                          reference<&dsl_rewrite::to_prop>};
constexpr header_part rewrite_header[] = {"rewrite ", field<&dsl_rewrite::from_prop>, " using ",
                                          field<&dsl_rewrite::hypo>};
constexpr trace_field rewrite_fields[] = {
    {"rule", field<&dsl_rewrite::hypo>, "rule"},
    {"rule_type", word<&dsl_rewrite::htype>(rewrite_hypo_type_words)},
    {"requested_direction", word<&dsl_rewrite::direction>(rewrite_direction_words)},
    {"from", field<&dsl_rewrite::from_prop>, "from"},
    {"to", field<&dsl_rewrite::to_prop>, "to"}};

// ---- rewrite_in

// Only a set description maps a binder: exactly one pair stands there, and none elsewhere.
bool read_binder_map(dsl_cursor& in, dsl_content& content) {
  dsl_rewrite_in& inst = *std::get_if<dsl_rewrite_in>(&content);
  return inst.context != rewrite_in_setdesc || read_sub_pair(in, inst.binder_map.emplace_back());
}

void print_binder_map(std::string& out, const dsl_content& content, bool internal) {
  const dsl_sub_list& map = std::get_if<dsl_rewrite_in>(&content)->binder_map;
  if (!map.empty()) {
    out += ' ';
    print_sub_pair_list_compact(out, map, internal);
    out += ';';
  }
}

constexpr syntax_part rewrite_in_syntax[] = {blank,
                                             keyword<&dsl_rewrite_in::context>(rewrite_in_context_words),
                                             text_part{" ("},
                                             prefix<&dsl_rewrite_in::direction>(rewrite_direction_words),
                                             text_part{", "},
                                             prefix<&dsl_rewrite_in::htype>(rewrite_hypo_type_words),
                                             text_part{") "},
                                             hypothesis<&dsl_rewrite_in::hypo>,
                                             special_part{read_binder_map, print_binder_map},
                                             semicolon_part{},
                                             from,
                                             reference<&dsl_rewrite_in::from_prop>,
                                             to,
                                             reference<&dsl_rewrite_in::to_prop>};
constexpr header_part rewrite_in_header[] = {"rewrite_in ", word<&dsl_rewrite_in::context>(rewrite_in_context_words),
                                             " ",           field<&dsl_rewrite_in::from_prop>,
                                             " using ",     field<&dsl_rewrite_in::hypo>};
constexpr trace_field rewrite_in_fields[] = {
    {"context", word<&dsl_rewrite_in::context>(rewrite_in_context_words)},
    {"rule", field<&dsl_rewrite_in::hypo>, "rule"},
    {"rule_type", word<&dsl_rewrite_in::htype>(rewrite_hypo_type_words)},
    {"requested_direction", word<&dsl_rewrite_in::direction>(rewrite_direction_words)},
    {"binder_map", pairs_if_any{field<&dsl_rewrite_in::binder_map>}},
    {"from", field<&dsl_rewrite_in::from_prop>, "from"},
    {"to", field<&dsl_rewrite_in::to_prop>, "to"}};

// ---- apply

constexpr syntax_part apply_syntax[] = {blank, reference<&dsl_apply::hypo>};
constexpr header_part apply_header[] = {"apply ", field<&dsl_apply::hypo>};
constexpr trace_field apply_fields[] = {{"source", field<&dsl_apply::hypo>, "source"}};

// ---- assert

// Leaves a "{" that opens a proof block, and a comment, to the reader of blocks. "by" needs one of its three forms.
bool read_assert_mode(dsl_cursor& in, dsl_content& content) {
  dsl_assert_mode& mode = std::get_if<dsl_assert>(&content)->mode;
  mode = dsl_assert_auto;
  if (!in.take_keyword("by")) {
    return true;
  }
  mode = in.take_keyword("admit") ? dsl_assert_by_admit : dsl_assert_by_proof;
  return mode == dsl_assert_by_admit || in.take_keyword("proof") || in.next_is('{') ||
         in.misses("'admit', 'proof' or '{' behind 'by'");
}

void print_assert_mode(std::string& out, const dsl_content& content, bool internal) {
  const dsl_assert& inst = *std::get_if<dsl_assert>(&content);
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

constexpr syntax_part assert_syntax[] = {blank, reference<&dsl_assert::new_hypo>,
                                         special_part{read_assert_mode, print_assert_mode}};
constexpr header_part assert_header[] = {"assert ", quoted_reference{field<&dsl_assert::new_hypo>}};
constexpr trace_field assert_fields[] = {{"mode", word<&dsl_assert::mode>(assert_mode_words)},
                                         {"proposition", field<&dsl_assert::new_hypo>}};

// ---- case_analysis

constexpr syntax_part case_analysis_syntax[] = {blank, reference<&dsl_case_analysis::hypo>};
constexpr header_part case_analysis_header[] = {"case_analysis ", field<&dsl_case_analysis::hypo>};
constexpr trace_field case_analysis_fields[] = {{"source", field<&dsl_case_analysis::hypo>, "source"}};

// ---- or_intro

constexpr syntax_part or_intro_syntax[] = {blank, prefix<&dsl_or_intro::side>(side_words), end_part{}};
constexpr header_part or_intro_header[] = {"or_intro ", word<&dsl_or_intro::side>(side_words)};
constexpr trace_field or_intro_fields[] = {{"side", word<&dsl_or_intro::side>(side_words)}};

// ---- use_condition

constexpr syntax_part use_condition_syntax[] = {blank,
                                                references<&dsl_use_condition::hypo_list>,
                                                text_part{"in "},
                                                reference<&dsl_use_condition::target>,
                                                text_part{" as ", "Error: Expected 'as' after target hypothesis\n"},
                                                reference<&dsl_use_condition::new_hypo>};
constexpr header_part use_condition_header[] = {"use_condition in ", field<&dsl_use_condition::target>, " as ",
                                                field<&dsl_use_condition::new_hypo>};
constexpr trace_field use_condition_fields[] = {{"conditions", field<&dsl_use_condition::hypo_list>},
                                                {"target_implication", field<&dsl_use_condition::target>, "target"},
                                                {"expected_as", field<&dsl_use_condition::new_hypo>, "expected_as"}};

// ---- get_exists

constexpr syntax_part get_exists_syntax[] = {blank, reference<&dsl_get_exists::target>, blank,
                                             some_pairs<&dsl_get_exists::list>};
constexpr header_part get_exists_header[] = {"get_exists ", field<&dsl_get_exists::target>};
constexpr trace_field get_exists_fields[] = {{"source", field<&dsl_get_exists::target>, "source"},
                                             {"fresh_vars", field<&dsl_get_exists::list>, "subst"}};

// ---- get_forall

constexpr syntax_part get_forall_syntax[] = {blank, reference<&dsl_get_forall::goal>, blank,
                                             some_pairs<&dsl_get_forall::list>};
constexpr header_part get_forall_header[] = {"get_forall GOAL"};
constexpr trace_field get_forall_fields[] = {{"target", field<&dsl_get_forall::goal>, "target"},
                                             {"fresh_vars", field<&dsl_get_forall::list>, "subst"}};

// ---- get_condition

constexpr syntax_part get_condition_syntax[] = {blank, references<&dsl_get_condition::hlist>, text_part{"in "},
                                                goal<&dsl_get_condition::goal>};
constexpr header_part get_condition_header[] = {"get_condition from GOAL"};
constexpr trace_field get_condition_fields[] = {{"introduced_conditions", field<&dsl_get_condition::hlist>},
                                                {"target_goal", field<&dsl_get_condition::goal>, "target_goal"}};

// ---- autoreplace

bool read_hypothesis_selector(dsl_cursor& in, dsl_content& content) {
  dsl_auto_replace& inst = *std::get_if<dsl_auto_replace>(&content);
  if (in.take_prefix("all_hypothesis")) {
    inst.mode = ar_all_hypothesis;
    return true;
  }
  if (in.take_prefix("no_hypothesis")) {
    inst.mode = ar_no_hypothesis;
    return true;
  }
  inst.mode = ar_specific_hypothesis;
  while (in.next_is('(')) {
    if (!read_reference_of_type(in, dsl_hypo, inst.hlist.emplace_back())) {
      return false;
    }
  }
  return !inst.hlist.empty() || in.misses("'all_hypothesis', 'no_hypothesis' or (hypothesis N: {...})");
}

void print_hypothesis_selector(std::string& out, const dsl_content& content, bool internal) {
  const dsl_auto_replace& inst = *std::get_if<dsl_auto_replace>(&content);
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

constexpr syntax_part auto_replace_syntax[] = {blank,
                                               special_part{read_hypothesis_selector, print_hypothesis_selector},
                                               semicolon_part{},
                                               text_part{"from "},
                                               formula<&dsl_auto_replace::from_term>,
                                               to,
                                               formula<&dsl_auto_replace::to_term>,
                                               semicolon_part{},
                                               from,
                                               reference<&dsl_auto_replace::from_prop>,
                                               to,
                                               reference<&dsl_auto_replace::to_prop>};
constexpr header_part auto_replace_header[] = {"autoreplace ", field<&dsl_auto_replace::from_prop>};
constexpr trace_field auto_replace_fields[] = {{"from_term", field<&dsl_auto_replace::from_term>, "from_term"},
                                               {"to_term", field<&dsl_auto_replace::to_term>, "to_term"},
                                               {"from_prop", field<&dsl_auto_replace::from_prop>, "from_prop"},
                                               {"to_prop", field<&dsl_auto_replace::to_prop>, "to_prop"}};

// ---- not_normalize

constexpr syntax_part not_normalize_syntax[] = {from, goal<&dsl_not_normalize::from_prop>, to,
                                                goal<&dsl_not_normalize::to_prop>};
constexpr header_part not_normalize_header[] = {"not_normalize GOAL"};
constexpr trace_field not_normalize_fields[] = {{"from", field<&dsl_not_normalize::from_prop>, "from"},
                                                {"to", field<&dsl_not_normalize::to_prop>, "to"}};

// ---- autosolve

// Where the word "using" stands for itself, inside a formula too; npos when it does not.
std::size_t find_using(std::string_view text) {
  constexpr std::string_view using_word = "using";
  for (std::size_t at = text.find(using_word); at != std::string_view::npos; at = text.find(using_word, at + 1)) {
    const std::size_t end = at + using_word.size();
    if ((at == 0 || is_script_space(text[at - 1])) && (end == text.size() || is_script_space(text[end]))) {
      return at;
    }
  }
  return std::string_view::npos;
}

// The one word behind "using".
bool read_solver_name(dsl_cursor& in, dsl_auto_solve& inst) {
  if (!in.take_prefix("using")) {
    return false;
  }
  in.skip_whitespace();
  const std::string_view name = in.take_while([](char c) { return !is_script_space(c); });
  inst.solver_name = name;
  inst.solver_at = in.span_of(name);
  if (name.empty()) {
    return in.misses("the name of a solver");
  }
  return in.at_end() || in.misses("the end of the line: nothing stands behind a solver's name");
}

// The solver is cut off first, so that "all_hypothesis", behind which nothing is read, cannot hide it.
bool read_auto_solve(dsl_cursor& in, dsl_content& content) {
  dsl_auto_solve& inst = *std::get_if<dsl_auto_solve>(&content);
  const std::size_t cut = find_using(in.rest());
  dsl_cursor selector = in.part(in.rest().substr(0, cut));
  if (cut != std::string_view::npos) {
    dsl_cursor solver = in.part(in.rest().substr(cut));
    if (!read_solver_name(solver, inst)) {
      in.misses_as_in(solver);
      return false;
    }
  }
  inst.all_assum = selector.take_prefix("all_assume") || selector.take_prefix("all_hypothesis");
  const bool read = inst.all_assum || (read_references(selector, inst.hlist) &&
                                       (selector.at_end() || selector.misses("'all_hypothesis', (hypothesis N: {...}), "
                                                                             "'using', or the end of the line")));
  in.misses_as_in(selector);
  return read;
}

void print_auto_solve(std::string& out, const dsl_content& content, bool internal) {
  const dsl_auto_solve& inst = *std::get_if<dsl_auto_solve>(&content);
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

constexpr syntax_part auto_solve_syntax[] = {blank, special_part{read_auto_solve, print_auto_solve}};
constexpr header_part auto_solve_header[] = {"autosolve"};
constexpr trace_field auto_solve_fields[] = {
    {"assumptions", all_or_references{field<&dsl_auto_solve::all_assum>, field<&dsl_auto_solve::hlist>}},
    {"requested_solver", text_or{field<&dsl_auto_solve::solver_name>, "auto"}}};

// ---- All of them.

constexpr instruction_form forms[] = {
    {"get_prop", make<dsl_get_prop>, get_prop_syntax, get_prop_header, get_prop_fields},
    {"exists", make<dsl_exists>, exists_syntax, exists_header, exists_fields},
    {"destruct_and", make<dsl_destruct_and>, destruct_and_syntax, destruct_and_header, destruct_and_fields},
    {"rewrite", make<dsl_rewrite>, rewrite_syntax, rewrite_header, rewrite_fields},
    {"rewrite_in", make<dsl_rewrite_in>, rewrite_in_syntax, rewrite_in_header, rewrite_in_fields},
    {"apply", make<dsl_apply>, apply_syntax, apply_header, apply_fields},
    {"assert", make<dsl_assert>, assert_syntax, assert_header, assert_fields},
    {"case_analysis", make<dsl_case_analysis>, case_analysis_syntax, case_analysis_header, case_analysis_fields},
    {"or_intro", make<dsl_or_intro>, or_intro_syntax, or_intro_header, or_intro_fields},
    {"use_condition", make<dsl_use_condition>, use_condition_syntax, use_condition_header, use_condition_fields},
    {"get_exists", make<dsl_get_exists>, get_exists_syntax, get_exists_header, get_exists_fields},
    {"get_forall", make<dsl_get_forall>, get_forall_syntax, get_forall_header, get_forall_fields},
    {"get_condition", make<dsl_get_condition>, get_condition_syntax, get_condition_header, get_condition_fields},
    {"autoreplace", make<dsl_auto_replace>, auto_replace_syntax, auto_replace_header, auto_replace_fields},
    {"not_normalize", make<dsl_not_normalize>, not_normalize_syntax, not_normalize_header, not_normalize_fields},
    {"autosolve", make<dsl_auto_solve>, auto_solve_syntax, auto_solve_header, auto_solve_fields},
};
static_assert(std::size(forms) == std::variant_size_v<dsl_content>, "every instruction with a record has a form");

}  // namespace

std::span<const instruction_form> instruction_forms() { return forms; }

const instruction_form& instruction_form_of(dsl_type type) { return forms[type]; }

}  // namespace vetro

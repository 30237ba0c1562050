// A proof script in memory: instructions with references to hypotheses, theorems or the goal, each reference with the
// formula that the script's author says it stands for. Instructions own their lists; terms are shared.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "diagnostics/diagnostics.h"
#include "term/ast.h"

namespace vetro {

enum dsl_type : std::uint8_t {
  GET_PROP_INST = 0,
  EXISTS_INST,
  DESTRUCT_AND_INST,
  REWRITE_INST,
  REWRITE_IN_INST,
  APPLY_INST,
  ASSERT_INST,
  CASE_ANALYSIS_INST,
  OR_INTRO_INST,
  USE_CONDITION_INST,
  GET_EXISTS_INST,
  GET_FORALL_INST,
  GET_CONDITION_INST,
  AUTO_REPLACE_INST,
  NOT_NORMALIZE_INST,
  AUTO_SOLVE_INST,
  SOLVER_INST  // has a name and no syntax: no instruction of this type is ever made
};
inline constexpr int dsl_type_count = SOLVER_INST + 1;

enum dsl_term_type : std::uint8_t { dsl_obvious = 0, dsl_hypo, dsl_thm, dsl_goal };
enum rewrite_direction : std::uint8_t { re_left2right = 0, re_right2left };
enum rewrite_hypo_type : std::uint8_t { re_equation = 0, re_iff };
enum rewrite_in_context : std::uint8_t { rewrite_in_limit = 0, rewrite_in_sum, rewrite_in_setdesc };
enum class or_intro_side : std::uint8_t { or_intro_left = 0, or_intro_right };
using enum or_intro_side;
enum class dsl_assert_mode : std::uint8_t { dsl_assert_auto = 0, dsl_assert_by_proof, dsl_assert_by_admit };
using enum dsl_assert_mode;
enum auto_replace_hypo_mode : std::uint8_t { ar_all_hypothesis = 0, ar_no_hypothesis, ar_specific_hypothesis };

// A reference with its claimed formula.
struct dsl_term {
  std::int64_t num = 0;  // 0 for goal and obvious; a number of up to 19 digits that does not fit is the largest value
  dsl_term_type type = dsl_goal;
  std::string lib_alias;  // empty: none
  std::string name;       // empty: none
  term_ptr t = nullptr;   // null when the text in the braces did not parse
  text_span head = {};    // in the line: the words in front of the colon, and the formula
  text_span formula = {};
};
using dsl_term_list = std::vector<dsl_term>;

// One written pair (binder := {value}).
struct dsl_sub_pair {
  term_ptr binder;
  term_ptr sub_term;
  text_span place = {};
};
using dsl_sub_list = std::vector<dsl_sub_pair>;

struct dsl_instruction;
using dsl_instruction_list = std::vector<dsl_instruction>;

struct dsl_get_prop {
  dsl_term thm;
  dsl_sub_list list;
  dsl_term new_hypo;
};
struct dsl_exists {
  dsl_sub_list list;
};
struct dsl_destruct_and {
  dsl_term source;
  dsl_term_list new_hypos;
};
struct dsl_rewrite {
  rewrite_direction direction;
  rewrite_hypo_type htype;
  dsl_term hypo;
  dsl_term from_prop;
  dsl_term to_prop;
};
struct dsl_rewrite_in {
  rewrite_in_context context;
  rewrite_direction direction;
  rewrite_hypo_type htype;
  dsl_term hypo;
  dsl_sub_list binder_map;  // one pair for setdesc, else empty
  dsl_term from_prop;
  dsl_term to_prop;
};
struct dsl_apply {
  dsl_term hypo;
};
struct dsl_assert {
  dsl_term new_hypo;
  dsl_instruction_list proof_body;
  dsl_assert_mode mode;
};
struct dsl_case_analysis {
  dsl_term hypo;
};
struct dsl_or_intro {
  or_intro_side side;
};
struct dsl_use_condition {
  dsl_term_list hypo_list;
  dsl_term target;
  dsl_term new_hypo;
};
struct dsl_get_exists {
  dsl_term target;
  dsl_sub_list list;
};
struct dsl_get_forall {
  dsl_term goal;
  dsl_sub_list list;
};
struct dsl_get_condition {
  dsl_term_list hlist;
  dsl_term goal;
};
struct dsl_auto_replace {
  auto_replace_hypo_mode mode;
  dsl_term_list hlist;
  term_ptr from_term;
  term_ptr to_term;
  dsl_term from_prop;
  dsl_term to_prop;
};
struct dsl_not_normalize {
  dsl_term from_prop;
  dsl_term to_prop;
};
struct dsl_auto_solve {
  bool all_assum;
  dsl_term_list hlist;
  std::string solver_name;  // empty: none
  text_span solver_at = {};
};

// The alternatives stand in the order of dsl_type, so that index() is the type.
using dsl_content =
    std::variant<dsl_get_prop, dsl_exists, dsl_destruct_and, dsl_rewrite, dsl_rewrite_in, dsl_apply, dsl_assert,
                 dsl_case_analysis, dsl_or_intro, dsl_use_condition, dsl_get_exists, dsl_get_forall, dsl_get_condition,
                 dsl_auto_replace, dsl_not_normalize, dsl_auto_solve>;

struct dsl_instruction {
  int number = 0;  // physical line of the script file, from 1, also inside proof blocks
  dsl_content content;
  text_span place = {};  // in its line
  dsl_type type() const { return static_cast<dsl_type>(content.index()); }
};

// "get_prop" ... "solver" in the order of dsl_type, "unknown" for anything else.
const char* dsl_type_name(int type);
const char* rewrite_direction_name(rewrite_direction direction);
const char* rewrite_hypo_type_name(rewrite_hypo_type type);
const char* rewrite_in_context_name(rewrite_in_context context);

// The words of the enumerations, in their order.
inline constexpr std::string_view rewrite_direction_words[] = {"left_to_right", "right_to_left"};
inline constexpr std::string_view rewrite_hypo_type_words[] = {"equation", "iff"};
inline constexpr std::string_view rewrite_in_context_words[] = {"limit", "sum", "setdesc"};

// Printers: the concrete syntax of the script with the line number in front; with internal set, formulas in internal
// form.
void print_dsl_term(std::string& out, const dsl_term& reference, bool internal);
void print_dsl_term_list(std::string& out, const dsl_term_list& list, bool internal);
void print_theorem_ref(std::string& out, const dsl_term& reference);
void print_sub_pair(std::string& out, const dsl_sub_pair& pair, bool internal);
void print_sub_pair_list(std::string& out, const dsl_sub_list& list, bool internal);
void print_sub_pair_list_compact(std::string& out, const dsl_sub_list& list, bool internal);
void print_dsl_instruction(std::string& out, const dsl_instruction& inst, bool internal);
void print_dsl_instruction_list(std::string& out, const dsl_instruction_list& list, bool internal);

}  // namespace vetro

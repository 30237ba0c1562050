// Instructions and proof blocks of the script language. Each instruction has one reader, which stands in the table of
// instructions and looks like the syntax that it reads. The first failure ends the parse.
#include "lib/dsl_parser.h"

#include <memory>
#include <string_view>
#include <utility>

#include "lib/dsl_cursor.h"
#include "lib/line_reader.h"
#include "lib/semantic_term.h"
#include "platform/text_file.h"
#include "term/report.h"

namespace vetro {

namespace {

// ---- Pieces that several instructions share.

bool read_hypothesis(dsl_cursor& in, dsl_term& reference) { return read_reference_of_type(in, dsl_hypo, reference); }

bool read_goal(dsl_cursor& in, dsl_term& reference) { return read_reference_of_type(in, dsl_goal, reference); }

bool read_some_references(dsl_cursor& in, dsl_term_list& list) { return read_references(in, list) && !list.empty(); }

bool read_some_pairs(dsl_cursor& in, dsl_sub_list& list) { return read_sub_list(in, list) && !list.empty(); }

bool skip_semicolon(dsl_cursor& in) {
  in.take(';');
  return true;
}

bool read_from_to(dsl_cursor& in, dsl_term& from, dsl_term& to) {
  return in.take_prefix("from") && read_reference(in, from) && in.take_prefix("to") && read_reference(in, to);
}

bool read_direction(dsl_cursor& in, rewrite_direction& direction) {
  direction = in.take_prefix("left_to_right") ? re_left2right : re_right2left;
  return direction == re_left2right || in.take_prefix("right_to_left");
}

bool read_kind(dsl_cursor& in, rewrite_hypo_type& kind) {
  kind = in.take_prefix("equation") ? re_equation : re_iff;
  return kind == re_equation || in.take_prefix("iff");
}

// "(" direction "," kind ")" and the hypothesis that is used so.
bool read_rule(dsl_cursor& in, rewrite_direction& direction, rewrite_hypo_type& kind, dsl_term& hypo) {
  return in.take('(') && read_direction(in, direction) && in.take(',') && read_kind(in, kind) && in.take(')') &&
         read_hypothesis(in, hypo);
}

// ---- One reader for each instruction; the keyword has been read.

bool read_get_prop(dsl_cursor& in, dsl_get_prop& inst) {
  return read_reference(in, inst.thm) && read_sub_list(in, inst.list) && in.take_prefix("as") &&
         read_reference(in, inst.new_hypo);
}

bool read_exists(dsl_cursor& in, dsl_exists& inst) { return read_some_pairs(in, inst.list); }

bool read_destruct_and(dsl_cursor& in, dsl_destruct_and& inst) {
  return read_reference(in, inst.source) && in.take_prefix("as") && read_some_references(in, inst.new_hypos);
}

bool read_context(dsl_cursor& in, rewrite_in_context& context) {
  for (const rewrite_in_context each : {rewrite_in_limit, rewrite_in_sum, rewrite_in_setdesc}) {
    if (in.take_keyword(rewrite_in_context_name(each))) {
      context = each;
      return true;
    }
  }
  return false;
}

// Only a set description maps a binder: exactly one pair stands there, and none elsewhere.
bool read_rewrite_in(dsl_cursor& in, dsl_rewrite_in& inst) {
  if (!read_context(in, inst.context) || !read_rule(in, inst.direction, inst.htype, inst.hypo)) {
    return false;
  }
  if (inst.context == rewrite_in_setdesc && !read_sub_pair(in, inst.binder_map.emplace_back())) {
    return false;
  }
  return skip_semicolon(in) && read_from_to(in, inst.from_prop, inst.to_prop);
}

bool read_rewrite(dsl_cursor& in, dsl_rewrite& inst) {
  return read_rule(in, inst.direction, inst.htype, inst.hypo) && skip_semicolon(in) &&
         read_from_to(in, inst.from_prop, inst.to_prop);
}

bool read_apply(dsl_cursor& in, dsl_apply& inst) { return read_reference(in, inst.hypo); }

// Leaves a "{" that opens a proof block, and a comment, to the block reader. "by" needs one of its three forms.
bool read_assert(dsl_cursor& in, dsl_assert& inst) {
  inst.mode = dsl_assert_auto;
  if (!read_reference(in, inst.new_hypo)) {
    return false;
  }
  if (!in.take_keyword("by")) {
    return true;
  }
  inst.mode = in.take_keyword("admit") ? dsl_assert_by_admit : dsl_assert_by_proof;
  return inst.mode == dsl_assert_by_admit || in.take_keyword("proof") || in.next_is('{');
}

bool read_case_analysis(dsl_cursor& in, dsl_case_analysis& inst) { return read_reference(in, inst.hypo); }

bool read_or_intro(dsl_cursor& in, dsl_or_intro& inst) {
  inst.side = in.take_prefix("left") ? or_intro_left : or_intro_right;
  return (inst.side == or_intro_left || in.take_prefix("right")) && in.at_end();
}

bool read_use_condition(dsl_cursor& in, dsl_use_condition& inst) {
  if (!read_references(in, inst.hypo_list) || !in.take_prefix("in") || !read_reference(in, inst.target)) {
    return false;
  }
  if (!in.take_prefix("as")) {
    report_error("Error: Expected 'as' after target hypothesis\n");
    return false;
  }
  return read_reference(in, inst.new_hypo);
}

bool read_get_exists(dsl_cursor& in, dsl_get_exists& inst) {
  return read_reference(in, inst.target) && read_some_pairs(in, inst.list);
}

bool read_get_forall(dsl_cursor& in, dsl_get_forall& inst) {
  return read_reference(in, inst.goal) && read_some_pairs(in, inst.list);
}

bool read_get_condition(dsl_cursor& in, dsl_get_condition& inst) {
  return read_references(in, inst.hlist) && in.take_prefix("in") && read_goal(in, inst.goal);
}

bool read_not_normalize(dsl_cursor& in, dsl_not_normalize& inst) {
  return in.take_prefix("from") && read_goal(in, inst.from_prop) && in.take_prefix("to") && read_goal(in, inst.to_prop);
}

bool read_hypothesis_selector(dsl_cursor& in, dsl_auto_replace& inst) {
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
    if (!read_hypothesis(in, inst.hlist.emplace_back())) {
      return false;
    }
  }
  return !inst.hlist.empty();
}

// "(" formula ")"; the formula must parse.
bool read_parenthesised_term(dsl_cursor& in, term_ptr& t) {
  std::string_view text;
  if (!in.take_balanced('(', ')', text)) {
    return false;
  }
  t = parse_semantic_term_from_str(text);
  return t != nullptr;
}

bool read_auto_replace(dsl_cursor& in, dsl_auto_replace& inst) {
  return read_hypothesis_selector(in, inst) && skip_semicolon(in) &&  //
         in.take_prefix("from") && read_parenthesised_term(in, inst.from_term) && in.take_prefix("to") &&
         read_parenthesised_term(in, inst.to_term) && skip_semicolon(in) &&
         read_from_to(in, inst.from_prop, inst.to_prop);
}

// Where the word "using" stands for itself, inside a formula too; npos when it does not.
std::size_t find_using(std::string_view text) {
  constexpr std::string_view word = "using";
  for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    if ((at == 0 || is_script_space(text[at - 1])) && (end == text.size() || is_script_space(text[end]))) {
      return at;
    }
  }
  return std::string_view::npos;
}

// The one word behind "using".
bool read_solver_name(dsl_cursor& in, std::string& name) {
  if (!in.take_prefix("using")) {
    return false;
  }
  in.skip_whitespace();
  name = in.take_while([](char c) { return !is_script_space(c); });
  return !name.empty() && in.at_end();
}

// The solver is cut off first, so that "all_hypothesis", behind which nothing is read, cannot hide it.
bool read_auto_solve(dsl_cursor& in, dsl_auto_solve& inst) {
  const std::size_t cut = find_using(in.rest());
  dsl_cursor selector(in.rest().substr(0, cut));
  if (cut != std::string_view::npos) {
    dsl_cursor solver(in.rest().substr(cut));
    if (!read_solver_name(solver, inst.solver_name)) {
      return false;
    }
  }
  inst.all_assum = selector.take_prefix("all_assume") || selector.take_prefix("all_hypothesis");
  return inst.all_assum || (read_references(selector, inst.hlist) && selector.at_end());
}

// ---- The table of instructions.

template <typename instruction, bool (*read)(dsl_cursor&, instruction&)>
bool read_as(dsl_cursor& in, dsl_content& content) {
  return read(in, content.emplace<instruction>());
}

struct instruction_syntax {
  std::string_view keyword;
  bool (*read)(dsl_cursor& in, dsl_content& content);
};

// A keyword is a plain prefix of its line and the first that fits decides: rewrite_in stands before rewrite.
constexpr instruction_syntax instruction_table[] = {
    {"get_prop", read_as<dsl_get_prop, read_get_prop>},
    {"exists", read_as<dsl_exists, read_exists>},
    {"destruct_and", read_as<dsl_destruct_and, read_destruct_and>},
    {"rewrite_in", read_as<dsl_rewrite_in, read_rewrite_in>},
    {"rewrite", read_as<dsl_rewrite, read_rewrite>},
    {"apply", read_as<dsl_apply, read_apply>},
    {"assert", read_as<dsl_assert, read_assert>},
    {"case_analysis", read_as<dsl_case_analysis, read_case_analysis>},
    {"or_intro", read_as<dsl_or_intro, read_or_intro>},
    {"use_condition", read_as<dsl_use_condition, read_use_condition>},
    {"get_exists", read_as<dsl_get_exists, read_get_exists>},
    {"get_forall", read_as<dsl_get_forall, read_get_forall>},
    {"get_condition", read_as<dsl_get_condition, read_get_condition>},
    {"not_normalize", read_as<dsl_not_normalize, read_not_normalize>},
    {"autoreplace", read_as<dsl_auto_replace, read_auto_replace>},
    {"autosolve", read_as<dsl_auto_solve, read_auto_solve>},
};
static_assert(std::size(instruction_table) == std::variant_size_v<dsl_content>);

bool read_instruction(dsl_cursor& in, dsl_content& content) {
  for (const instruction_syntax& syntax : instruction_table) {
    if (in.take_prefix(syntax.keyword)) {
      return syntax.read(in, content);
    }
  }
  return false;
}

// ---- Lines and blocks.

bool line_is_ignorable(std::string_view line) {
  dsl_cursor in(line);
  in.skip_line_number();
  return in.tail_is_empty_or_comment();
}

// Whether the line holds only the brace, perhaps with a comment behind it.
bool line_is_brace(std::string_view line, char brace) {
  dsl_cursor in(line);
  in.skip_line_number();
  return in.take(brace) && in.tail_is_empty_or_comment();
}

// Its functions answer false once they have recorded the failure that ends the parse.
class script_reader {
 public:
  script_reader(std::FILE* file, dsl_parser_error& error) : file_(file), error_(error) {}
  bool read_block(int depth, dsl_instruction_list& list);

 private:
  bool record(int line, std::string_view text);
  bool record_bad_line();
  line_status next_line();
  bool read_instruction_line(int depth, dsl_instruction_list& list);
  bool read_proof(int depth, bool block_is_open, dsl_assert& inst);
  bool find_block_open(int assert_line);

  std::FILE* file_;
  dsl_parser_error& error_;
  std::string line_;
  int line_number_ = 0;  // of line_, the last line read
};

bool script_reader::record(int line, std::string_view text) {
  error_.line = line;
  error_.text = text;
  return false;
}

bool script_reader::record_bad_line() {
  report_error("Error: Error parsing line %d: %s\n", line_number_, line_.c_str());
  return record(line_number_, line_);
}

line_status script_reader::next_line() {
  const line_status status = qv_read_line(file_, line_);
  if (status == line_status::line) {
    ++line_number_;
  } else if (status == line_status::failed) {
    report_error("Error: failed reading dsl file line dynamically\n");
    record(line_number_ + 1, "failed reading dsl file line dynamically");
  }
  return status;
}

// The whole file at depth 0, else a proof block up to its closing brace. What is wrong with a block as a whole is
// recorded at the line behind the last one read.
bool script_reader::read_block(int depth, dsl_instruction_list& list) {
  if (depth > max_proof_block_depth) {
    return record(line_number_ + 1, "assert proof block nesting is too deep");
  }
  for (;;) {
    const line_status status = next_line();
    if (status == line_status::failed) {
      return false;
    }
    if (status == line_status::end) {
      return depth == 0 || record(line_number_ + 1, "missing closing brace for assert proof block");
    }
    if (line_is_brace(line_, '}')) {
      if (depth > 0) {
        return true;
      }
      report_error("Error: unmatched assert proof block close at line %d: %s\n", line_number_, line_.c_str());
      return record(line_number_, line_);
    }
    if (!line_is_ignorable(line_) && !read_instruction_line(depth, list)) {
      return false;
    }
  }
}

bool script_reader::read_instruction_line(int depth, dsl_instruction_list& list) {
  dsl_instruction inst;
  inst.number = line_number_;
  dsl_cursor in(line_);
  in.skip_line_number();
  if (!read_instruction(in, inst.content)) {
    return record_bad_line();
  }
  if (dsl_assert* assertion = std::get_if<dsl_assert>(&inst.content)) {
    const bool by_proof = assertion->mode == dsl_assert_by_proof;
    const bool block_is_open = by_proof && in.take('{');
    if (!in.tail_is_empty_or_comment()) {
      return record_bad_line();
    }
    if (by_proof && !read_proof(depth, block_is_open, *assertion)) {
      return false;
    }
  }
  list.push_back(std::move(inst));
  return true;
}

bool script_reader::read_proof(int depth, bool block_is_open, dsl_assert& inst) {
  const int assert_line = line_number_;
  if (!block_is_open && !find_block_open(assert_line)) {
    return false;
  }
  if (!read_block(depth + 1, inst.proof_body)) {
    return false;
  }
  return !inst.proof_body.empty() || record(assert_line, "assert proof block must contain at least one instruction");
}

bool script_reader::find_block_open(int assert_line) {
  for (;;) {
    const line_status status = next_line();
    if (status == line_status::failed) {
      return false;
    }
    if (status == line_status::end) {
      return record(assert_line, "assert by proof requires a proof block in DSL files");
    }
    if (line_is_brace(line_, '{')) {
      return true;
    }
    if (!line_is_ignorable(line_)) {
      return record(line_number_, "assert by proof requires `{` on the same line or the next non-empty line");
    }
  }
}

}  // namespace

std::optional<dsl_instruction_list> parse_dsl_instructions(std::FILE* file, dsl_parser_error* error) {
  *error = {};
  dsl_instruction_list list;
  script_reader reader(file, *error);
  if (!reader.read_block(0, list) || list.empty()) {
    return std::nullopt;
  }
  return list;
}

std::optional<dsl_instruction_list> parse_dsl_instructions(const std::string& filename, dsl_parser_error* error) {
  const text_file file = open_text_file(filename.c_str(), directories::fail_at_reading);
  if (file == nullptr) {
    std::perror("File open failed");
    *error = {0, filename};
    return std::nullopt;
  }
  return parse_dsl_instructions(file.get(), error);
}

}  // namespace vetro

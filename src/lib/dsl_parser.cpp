// Instructions, by their forms, and proof blocks of the script language. The first failure ends the parse.
#include "lib/dsl_parser.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "lib/dsl_cursor.h"
#include "lib/dsl_form.h"
#include "lib/line_reader.h"
#include "lib/semantic_term.h"
#include "platform/text_file.h"
#include "term/report.h"

namespace vetro {

namespace {

// Reads the parts of a form one after the other; the keyword has been read.
struct part_reader {
  dsl_cursor& in;
  dsl_content& content;

  bool operator()(const text_part& part) const {
    const bool found = in.take_prefix(part.word());
    if (!found && part.complaint != nullptr) {
      report_error("%s", part.complaint);
    }
    return found;
  }
  bool operator()(const reference_part& part) const {
    dsl_term& reference = part.field.in(content);
    return part.type ? read_reference_of_type(in, *part.type, reference) : read_reference(in, reference);
  }
  bool operator()(const references_part& part) const {
    dsl_term_list& list = part.field.in(content);
    return read_references(in, list) && (part.count == how_many::any || !list.empty());
  }
  bool operator()(const pairs_part& part) const {
    dsl_sub_list& list = part.field.in(content);
    return read_sub_list(in, list) && (part.count == how_many::any || !list.empty());
  }
  bool operator()(const word_part& part) const {
    for (std::size_t i = 0; i < part.field.words.size(); ++i) {
      if ((in.*part.take)(part.field.words[i])) {
        part.field.set(content, i);
        return true;
      }
    }
    return false;
  }
  // The formula must parse.
  bool operator()(const formula_part& part) const {
    std::string_view text;
    if (!in.take_balanced('(', ')', text)) {
      return false;
    }
    term_ptr& t = part.field.in(content);
    t = parse_semantic_term_from_str(text);
    return t != nullptr;
  }
  bool operator()(const special_part& part) const { return part.read(in, content); }
  bool operator()(const semicolon_part&) const {
    in.take(';');
    return true;
  }
  bool operator()(const end_part&) const { return in.at_end(); }
};

// A keyword is a plain prefix of its line, and the longest that fits decides: rewrite_in is no rewrite.
bool read_instruction(dsl_cursor& in, dsl_content& content) {
  in.skip_whitespace();
  const instruction_form* found = nullptr;
  for (const instruction_form& form : instruction_forms()) {
    if (in.rest().starts_with(form.keyword) && (found == nullptr || form.keyword.size() > found->keyword.size())) {
      found = &form;
    }
  }
  if (found == nullptr) {
    return false;
  }
  in.take_prefix(found->keyword);
  content = found->make();
  return std::all_of(found->syntax.begin(), found->syntax.end(), [&](const syntax_part& part) {
    return std::visit(part_reader{in, content}, part);
  });
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

// Instructions, by their forms, and proof blocks of the script language. The first failure ends the parse.
#include "lib/dsl_parser.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "diagnostics/nearest.h"
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
    return found || in.misses("'" + std::string(part.word()) + "'");
  }
  bool operator()(const reference_part& part) const {
    dsl_term& reference = part.field.in(content);
    return part.type ? read_reference_of_type(in, *part.type, reference) : read_reference(in, reference);
  }
  bool operator()(const references_part& part) const {
    dsl_term_list& list = part.field.in(content);
    return read_references(in, list) &&
           (part.count == how_many::any || !list.empty() || in.misses("a reference such as (hypothesis 1: {...})"));
  }
  bool operator()(const pairs_part& part) const {
    dsl_sub_list& list = part.field.in(content);
    return read_sub_list(in, list) &&
           (part.count == how_many::any || !list.empty() || in.misses("a pair such as (x := {...})"));
  }
  bool operator()(const word_part& part) const {
    for (std::size_t i = 0; i < part.field.words.size(); ++i) {
      if ((in.*part.take)(part.field.words[i])) {
        part.field.set(content, i);
        return true;
      }
    }
    return in.misses(alternatives(part.field.words));
  }
  // The formula must parse.
  bool operator()(const formula_part& part) const {
    std::string_view text;
    if (!in.take_balanced('(', ')', text)) {
      return in.misses("an expression in parentheses");
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
  bool operator()(const end_part&) const { return in.at_end() || in.misses("the end of the line"); }

  static std::string alternatives(std::span<const std::string_view> words) {
    std::string text;
    for (std::string_view word : words) {
      text += (text.empty() ? "'" : " or '") + std::string(word) + "'";
    }
    return text;
  }
};

// A keyword is a plain prefix of its line, and the longest that fits decides: rewrite_in is no rewrite.
const instruction_form* form_of_line(std::string_view line) {
  const instruction_form* found = nullptr;
  for (const instruction_form& form : instruction_forms()) {
    if (line.starts_with(form.keyword) && (found == nullptr || form.keyword.size() > found->keyword.size())) {
      found = &form;
    }
  }
  return found;
}

std::string_view nearest_instruction(std::string_view word) {
  std::vector<std::string_view> keywords;
  for (const instruction_form& form : instruction_forms()) {
    keywords.push_back(form.keyword);
  }
  return nearest_word(word, keywords);
}

// Of the words in single quotes that were expected, the one that the word at the place is nearest to.
std::string_view nearest_wanted(std::string_view line, text_span at, std::string_view expected) {
  std::vector<std::string_view> words;
  for (std::size_t begin = expected.find('\''); begin != std::string_view::npos; begin = expected.find('\'', begin)) {
    const std::size_t end = expected.find('\'', begin + 1);
    if (end == std::string_view::npos) {
      break;
    }
    words.push_back(expected.substr(begin + 1, end - begin - 1));
    begin = end + 1;
  }
  if (at.column < 1 || static_cast<std::size_t>(at.column) > line.size()) {
    return {};
  }
  const std::string_view rest = line.substr(static_cast<std::size_t>(at.column) - 1);
  return nearest_word(rest.substr(0, rest.find_first_of(" \t\r\n(){}:,")), words);
}

bool read_instruction(dsl_cursor& in, dsl_content& content) {
  in.skip_whitespace();
  const instruction_form* found = form_of_line(in.rest());
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
  bool record_block(int line, std::string_view text);
  bool record_bad_line();
  void diagnose(diagnostic d) const;
  void diagnose_bad_line(const dsl_cursor& in, std::string_view instruction) const;
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

void script_reader::diagnose(diagnostic d) const {
  if (collecting_diagnostics != nullptr) {
    collecting_diagnostics->add(std::move(d));
  }
}

// A failure of a proof block as a whole.
bool script_reader::record_block(int line, std::string_view text) {
  diagnose({.code = diagnostic_code::script_block,
            .message = std::string(text),
            .place = {source_file::script, line, 1, 0}});
  return record(line, text);
}

// What was expected where the reading of the line ended; the instruction's text begins at the first argument.
void script_reader::diagnose_bad_line(const dsl_cursor& in, std::string_view instruction) const {
  diagnostics* d = collecting_diagnostics;
  if (d == nullptr) {
    return;
  }
  diagnostic bad = {.code = diagnostic_code::script_syntax, .message = {}, .place = {}};
  if (!in.missing().empty()) {
    bad.message = "expected " + std::string(in.missing());
    bad.place = d->place_in_line(in.missing_at());
    bad.suggestion = did_you_mean(nearest_wanted(line_, in.missing_at(), in.missing()));
  } else if (form_of_line(instruction) == nullptr) {
    const std::string_view word = instruction.substr(0, instruction.find_first_of(" \t\r\n({:"));
    bad.message = word.empty() ? "expected an instruction" : "there is no instruction '" + std::string(word) + "'";
    bad.place = d->place_of(word);
    bad.suggestion = did_you_mean(nearest_instruction(word));
  } else if (std::any_of(d->records.begin(), d->records.end(), [&](const diagnostic& known) {
               return known.level == severity::error && known.place.line == line_number_;
             })) {
    return;  // a formula that did not parse has said so
  } else {
    bad.message = "nothing may follow here";
    bad.place = d->place_in_line(in.span_of(without_line_end(in.rest())));
  }
  d->add(std::move(bad));
}

bool script_reader::record_bad_line() {
  report_error("Error: Error parsing line %d: %s\n", line_number_, line_.c_str());
  return record(line_number_, line_);
}

line_status script_reader::next_line() {
  const line_status status = qv_read_line(file_, line_);
  if (status == line_status::line) {
    ++line_number_;
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->reads_line(source_file::script, line_number_, line_);
    }
  } else if (status == line_status::failed) {
    diagnose_unreadable(source_file::script);
    report_error("Error: failed reading dsl file line dynamically\n");
    record(line_number_ + 1, "failed reading dsl file line dynamically");
  }
  return status;
}

// The whole file at depth 0, else a proof block up to its closing brace. What is wrong with a block as a whole is
// recorded at the line behind the last one read.
bool script_reader::read_block(int depth, dsl_instruction_list& list) {
  if (depth > max_proof_block_depth) {
    return record_block(line_number_ + 1, "assert proof block nesting is too deep");
  }
  for (;;) {
    const line_status status = next_line();
    if (status == line_status::failed) {
      return false;
    }
    if (status == line_status::end) {
      return depth == 0 || record_block(line_number_ + 1, "missing closing brace for assert proof block");
    }
    if (line_is_brace(line_, '}')) {
      if (depth > 0) {
        return true;
      }
      report_error("Error: unmatched assert proof block close at line %d: %s\n", line_number_, line_.c_str());
      diagnose({.code = diagnostic_code::script_block,
                .message = "this brace closes no proof block",
                .place = {source_file::script, line_number_, 1, static_cast<int>(without_line_end(line_).size())}});
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
  const std::string_view instruction = in.rest();
  inst.place = in.span_of(without_line_end(instruction));
  if (!read_instruction(in, inst.content)) {
    diagnose_bad_line(in, instruction);
    return record_bad_line();
  }
  if (dsl_assert* assertion = std::get_if<dsl_assert>(&inst.content)) {
    const bool by_proof = assertion->mode == dsl_assert_by_proof;
    const bool block_is_open = by_proof && in.take('{');
    if (!in.tail_is_empty_or_comment()) {
      diagnose_bad_line(in, instruction);
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
  return !inst.proof_body.empty() ||
         record_block(assert_line, "assert proof block must contain at least one instruction");
}

bool script_reader::find_block_open(int assert_line) {
  for (;;) {
    const line_status status = next_line();
    if (status == line_status::failed) {
      return false;
    }
    if (status == line_status::end) {
      return record_block(assert_line, "assert by proof requires a proof block in DSL files");
    }
    if (line_is_brace(line_, '{')) {
      return true;
    }
    if (!line_is_ignorable(line_)) {
      return record_block(line_number_, "assert by proof requires `{` on the same line or the next non-empty line");
    }
  }
}

}  // namespace

std::optional<dsl_instruction_list> parse_dsl_instructions(std::FILE* file, dsl_parser_error* error) {
  *error = {};
  dsl_instruction_list list;
  script_reader reader(file, *error);
  if (!reader.read_block(0, list)) {
    return std::nullopt;
  }
  if (list.empty()) {
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->add({.code = diagnostic_code::script_empty,
                                   .message = "the script has no instruction",
                                   .place = {source_file::script, 1, 1, 0}});
    }
    return std::nullopt;
  }
  return list;
}

std::optional<dsl_instruction_list> parse_dsl_instructions(const std::string& filename, dsl_parser_error* error) {
  const text_file file = open_text_file(filename.c_str(), directories::fail_at_reading);
  if (file == nullptr) {
    diagnose_unreadable(source_file::script);
    std::perror("File open failed");
    *error = {0, filename};
    return std::nullopt;
  }
  return parse_dsl_instructions(file.get(), error);
}

}  // namespace vetro

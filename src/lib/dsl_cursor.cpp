// Tokens and references of the script language. Every byte of a line is looked at a bounded number of times: nothing is
// read twice to find out what it is.
#include "lib/dsl_cursor.h"

#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

#include "lib/semantic_term.h"

namespace vetro {

bool is_script_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool is_script_digit(char c) { return c >= '0' && c <= '9'; }

namespace {

bool is_external_alias_char(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || is_script_digit(c) || c == '_' || c == '-' || c == '.';
}

}  // namespace

// ---- Tokens.

void dsl_cursor::skip_whitespace() { take_while(is_script_space); }

void dsl_cursor::skip_line_number() {
  skip_whitespace();
  if (!take_while(is_script_digit).empty()) {
    take('.');
    skip_whitespace();
  }
}

bool dsl_cursor::at_end() {
  skip_whitespace();
  return rest_.empty();
}

bool dsl_cursor::tail_is_empty_or_comment() { return at_end() || rest_.front() == '#'; }

bool dsl_cursor::next_is(char c) {
  skip_whitespace();
  return rest_.starts_with(c);
}

bool dsl_cursor::take(char c) {
  if (!next_is(c)) {
    return false;
  }
  rest_.remove_prefix(1);
  return true;
}

bool dsl_cursor::take_prefix(std::string_view word) {
  skip_whitespace();
  if (!rest_.starts_with(word)) {
    return false;
  }
  rest_.remove_prefix(word.size());
  return true;
}

bool dsl_cursor::take_keyword(std::string_view word) {
  skip_whitespace();
  if (!rest_.starts_with(word)) {
    return false;
  }
  const std::string_view tail = rest_.substr(word.size());
  if (!tail.empty() && !is_script_space(tail.front()) && tail.front() != '(' && tail.front() != '{') {
    return false;
  }
  rest_ = tail;
  return true;
}

bool dsl_cursor::take_number(std::int64_t& number) {
  skip_whitespace();
  const std::string_view digits = take_while(is_script_digit);
  if (digits.empty() || digits.size() > max_reference_digits) {
    return false;
  }
  const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec == std::errc::result_out_of_range) {
    number = std::numeric_limits<std::int64_t>::max();
  }
  return true;
}

bool dsl_cursor::take_balanced(char open, char close, std::string_view& content) {
  if (!next_is(open)) {
    return false;
  }
  std::size_t depth = 0;
  for (std::size_t i = 0; i < rest_.size(); ++i) {
    if (rest_[i] == open) {
      ++depth;
    } else if (rest_[i] == close && --depth == 0) {
      content = rest_.substr(1, i - 1);
      rest_.remove_prefix(i + 1);
      return true;
    }
  }
  return false;
}

bool dsl_cursor::take_until(char stop, std::string_view& content) {
  const std::size_t end = rest_.find(stop);
  if (end == std::string_view::npos) {
    return false;
  }
  content = rest_.substr(0, end);
  rest_.remove_prefix(end + 1);
  return true;
}

std::string_view dsl_cursor::take_while(bool (*accepts)(char)) {
  std::size_t length = 0;
  while (length < rest_.size() && accepts(rest_[length])) {
    ++length;
  }
  const std::string_view taken = rest_.substr(0, length);
  rest_.remove_prefix(length);
  return taken;
}

bool dsl_cursor::misses(std::string what) {
  if (missing_.empty()) {
    skip_whitespace();
    missing_ = std::move(what);
    missing_at_ = span_of(rest_.substr(0, 1));
  }
  return false;
}

void dsl_cursor::misses_as_in(const dsl_cursor& part) {
  if (missing_.empty()) {
    missing_ = part.missing_;
    missing_at_ = part.missing_at_;
  }
}

// ---- References.

namespace {

// digits, or "@" alias ":" digits.
bool read_theorem_number(dsl_cursor& in, dsl_term& reference) {
  if (in.take('@')) {
    const std::string_view alias = in.take_while(is_external_alias_char);
    if (alias.empty()) {
      return in.misses("the name of an external library");
    }
    if (!in.rest().starts_with(':')) {
      return in.misses("':' and a theorem's number");
    }
    in.take(':');
    reference.lib_alias = alias;
  }
  return in.take_number(reference.num) || in.misses("a theorem's number");
}

// A theorem's number, alone or in a citation such as 'Thm 12. (name)' or '@alias:12. (name)'.
bool read_theorem_ref(dsl_cursor& in, dsl_term& reference) {
  if (!in.take('\'')) {
    return read_theorem_number(in, reference);
  }
  in.take_prefix("Thm");
  if (!read_theorem_number(in, reference)) {
    return false;
  }
  in.take('.');
  if (in.take('(')) {
    std::string_view name;
    if (!in.take_until(')', name)) {
      return in.misses("')' behind the theorem's name");
    }
    reference.name = name.substr(0, max_theorem_name);
  }
  in.take('\'');
  return true;
}

bool read_reference_head(dsl_cursor& in, dsl_term& reference) {
  if (in.take_prefix("hypothesis")) {
    reference.type = dsl_hypo;
    return in.take_number(reference.num) || in.misses("a hypothesis number");
  }
  if (in.take_prefix("theorem")) {
    reference.type = dsl_thm;
    return read_theorem_ref(in, reference);
  }
  if (in.take_prefix("GOAL")) {
    reference.type = dsl_goal;
    return true;
  }
  reference.type = dsl_obvious;
  return in.take_prefix("obvious") || in.misses("'hypothesis', 'theorem', 'GOAL' or 'obvious'");
}

// A formula that does not parse is missed only where it is needed, so that it is no error here.
term_ptr read_reference_formula(std::string_view formula) {
  diagnostics* d = collecting_diagnostics;
  if (d == nullptr) {
    return parse_semantic_term_from_str(formula);
  }
  const severity outside = std::exchange(d->bad_formula, severity::warning);
  const term_ptr t = parse_semantic_term_from_str(formula);
  d->bad_formula = outside;
  return t;
}

bool read_dsl_term(dsl_cursor& in, dsl_term& reference) {
  in.skip_whitespace();
  const std::string_view from_here = in.rest();
  if (!read_reference_head(in, reference)) {
    return false;
  }
  reference.head = in.span_of(from_here.substr(0, from_here.size() - in.rest().size()));
  if (!in.take(':')) {
    return in.misses("':'");
  }
  std::string_view formula;
  if (!in.take_balanced('{', '}', formula)) {
    return in.misses(in.rest().starts_with('{') ? "a '}' for the brace that opens here" : "a formula in braces");
  }
  reference.formula = in.span_of(formula);
  reference.t = read_reference_formula(formula);
  return true;
}

// Everything up to the ":", without white space around it.
bool extract_binder_content(dsl_cursor& in, std::string_view& binder) {
  in.skip_whitespace();
  if (!in.take_until(':', binder)) {
    return false;
  }
  while (!binder.empty() && is_script_space(binder.back())) {
    binder.remove_suffix(1);
  }
  return !binder.empty();
}

}  // namespace

bool read_reference(dsl_cursor& in, dsl_term& reference) {
  if (!in.take('(')) {
    return in.misses("a reference such as (hypothesis 1: {...})");
  }
  return read_dsl_term(in, reference) && (in.take(')') || in.misses("')'"));
}

bool read_reference_of_type(dsl_cursor& in, dsl_term_type type, dsl_term& reference) {
  const dsl_cursor before = in;
  if (!read_reference(in, reference)) {
    return false;
  }
  if (reference.type != type) {
    in = before;
    return in.misses(type == dsl_goal ? "(GOAL: {...})" : "(hypothesis N: {...})");
  }
  return true;
}

bool read_references(dsl_cursor& in, dsl_term_list& list) {
  while (in.next_is('(')) {
    if (!read_reference(in, list.emplace_back())) {
      return false;
    }
  }
  return true;
}

bool read_sub_pair(dsl_cursor& in, dsl_sub_pair& pair) {
  std::string_view binder;
  in.skip_whitespace();
  const std::string_view from_here = in.rest();
  if (!in.take('(')) {
    return in.misses("a pair such as (x := {...})");
  }
  const dsl_cursor at_binder = in;
  if (!extract_binder_content(in, binder) || !in.rest().starts_with('=')) {
    in = at_binder;
    return in.misses("a variable and ':='");
  }
  in.take('=');
  std::string_view value;
  if (!in.take_balanced('{', '}', value)) {
    return in.misses("a value in braces");
  }
  if (!in.take(')')) {
    return in.misses("')'");
  }
  pair.place = in.span_of(from_here.substr(0, from_here.size() - in.rest().size()));
  pair.binder = parse_semantic_term_from_str(binder);
  if (pair.binder == nullptr) {
    return false;
  }
  pair.sub_term = parse_semantic_term_from_str(value);
  return pair.sub_term != nullptr;
}

bool read_sub_list(dsl_cursor& in, dsl_sub_list& list) {
  while (in.next_is('(')) {
    if (!read_sub_pair(in, list.emplace_back())) {
      return false;
    }
  }
  return true;
}

}  // namespace vetro

// Lists under construction, and the reports of a failed parse.
#include "parser/parse_context.h"

#include <algorithm>
#include <string>

#include "diagnostics/diagnostics.h"
#include "parser/notation_advice.h"
#include "parser/readable_error.h"
#include "term/print/pretty.h"
#include "term/report.h"

namespace vetro {
namespace {

// A reading of a huge text is shown by its beginning.
constexpr std::size_t shown_reading = 2000;

void append_reading(std::string& out, term_ptr reading) {
  std::string text;
  print_term_internal(text, reading);
  if (text.size() > shown_reading) {
    std::size_t end = shown_reading;
    while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
      --end;
    }
    text.replace(end, std::string::npos, "...");
  }
  out += text;
  out += '\n';
}

}  // namespace

list_cell* parse_context::new_cell(const list_cell* before, term_ptr term) {
  if (cells_used_ == cells_per_chunk) {
    chunks_.push_back(std::make_unique_for_overwrite<list_cell[]>(cells_per_chunk));
    cells_used_ = 0;
  }
  list_cell* cell = &chunks_.back()[cells_used_++];
  *cell = {before, term, nullptr, before == nullptr ? 1 : before->length + 1, false, false};
  return cell;
}

const list_cell* parse_context::append(const list_cell* list, term_ptr term) { return new_cell(list, term); }

const list_cell* parse_context::append_term(const list_cell* list, term_ptr term) {
  list_cell* cell = new_cell(list, term);
  cell->is_term = true;
  return cell;
}

const list_cell* parse_context::append_prop(const list_cell* list, proposition prop) {
  list_cell* cell = new_cell(list, prop.term);
  cell->opens_membership = prop.opens_membership;
  return cell;
}

const list_cell* parse_context::append_binder(const list_cell* list, term_ptr variable, lambda_type_ptr type) {
  list_cell* cell = new_cell(list, variable);
  cell->type = type;
  return cell;
}

const term_list& parse_context::items(const list_cell* list) {
  items_.resize(list == nullptr ? 0 : list->length);
  for (const list_cell* cell = list; cell != nullptr; cell = cell->before) {
    items_[cell->length - 1] = cell->term;
  }
  return items_;
}

std::string_view parse_context::error_slice() const {
  // Columns count bytes from the last line feed; the slice is cut at these columns from the whole text.
  const auto column = [this](std::size_t place) {
    const std::size_t feed = source_.substr(0, place).rfind('\n');
    return feed == std::string_view::npos ? place : place - feed - 1;
  };
  const std::size_t begin = column(token_begin);
  const std::size_t end = column(token_end);
  return begin < end ? source_.substr(begin, end - begin) : std::string_view();
}

void parse_context::report_at_token(const char* message) {
  std::string text(error_slice());
  text += ": ";
  text += message;
  text += ".\n";
  report_text(text);
}

void parse_context::syntax_error(const char* message) {
  if (stopped_) {
    return;
  }
  report_at_token(message);
  if (diagnostics* d = collecting_diagnostics) {
    d->add({.code = diagnostic_code::formula_syntax,
            .level = d->bad_formula,
            .message = readable_error(message, token_text()),
            .place = d->place_of(token_text()),
            .suggestion = notation_advice(source_, token_begin, token_end, message)});
  }
}

void parse_context::out_of_memory() {
  if (!stopped_) {
    report_at_token("memory exhausted");
  }
}

void parse_context::ambiguous(term_ptr first, term_ptr second) {
  if (stopped_) {
    return;
  }
  std::string text = "Ambiguity detected.\nOption 1,\n";
  append_reading(text, first);
  text += "\nOption 2,\n";
  append_reading(text, second);
  text += '\n';
  report_text(text);
  report_at_token("syntax is ambiguous");
  if (diagnostics* d = collecting_diagnostics) {
    d->add({.code = diagnostic_code::formula_ambiguous,
            .level = d->bad_formula,
            .message = "the formula has two readings: " + print_term_internal_to_string(first) + " and " +
                       print_term_internal_to_string(second),
            .place = d->place_of(source_)});
  }
  stopped_ = true;
}

}  // namespace vetro

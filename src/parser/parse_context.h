// What one parse holds: the text, the place of the newest token, the values that scanner and grammar exchange, and the
// result. Values are plain pointers into the term store and into this record, so that a reading that the grammar gives
// up costs nothing and leaks nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "term/ast.h"

namespace vetro {

struct list_cell;

// A name or a number as written. Its text lies in the source or, for quoted names, in the term store.
struct lexeme {
  const char* data;
  std::uint32_t size;
  std::int32_t number;  // name_number of an unquoted name, else -1

  std::string_view text() const { return {data, size}; }
};

// A proposition. opens_membership: it begins with «a ∈ S», «a ∉ S» or «a ⊆ S» outside parentheses, so that terms and
// commas in front of it could belong to the left side.
struct proposition {
  term_ptr term;
  bool opens_membership;
};

// A relation with its right operand: «= b», «→_{x → p} b».
struct relation {
  term_ptr pred;
  term_ptr operand;
};

// Two or more relations in a row: n predicates and n + 1 operands.
struct relation_chain {
  const list_cell* preds;
  const list_cell* operands;
  bool opens_membership;
};

// The index of a limit: «x → p», «x → p^-», «x → p^+». The sided forms of an operator or predicate stand behind its
// plain form in this order.
inline constexpr int two_sided = 0;
inline constexpr int from_left = 1;
inline constexpr int from_right = 2;
struct limit_index {
  term_ptr variable;
  term_ptr point;
  int side;
};

// A list under construction is its last cell; null is the empty list. Cells never change, so readings may share them.
struct list_cell {
  const list_cell* before;
  term_ptr term;
  lambda_type_ptr type;   // of a lambda binder
  std::uint32_t length;   // of the list up to here
  bool is_term;           // syntactically a term, not a proposition
  bool opens_membership;  // see proposition
};

class parse_context {
 public:
  explicit parse_context(std::string_view source) : source_(source) {}
  parse_context(const parse_context&) = delete;
  parse_context& operator=(const parse_context&) = delete;

  // ---- Places. Offsets into the source; the newest token is [token_begin, token_end).
  std::string_view source() const { return source_; }
  std::string_view token_text() const { return source_.substr(token_begin, token_end - token_begin); }
  void advance(std::size_t bytes) {
    token_begin = token_end;
    token_end += bytes;
  }
  std::size_t token_begin = 0;
  std::size_t token_end = 0;

  bool quiet = false;  // nothing is said of a text that no token begins

  // ---- Lists.
  const list_cell* append(const list_cell* list, term_ptr term);
  const list_cell* append_term(const list_cell* list, term_ptr term);
  const list_cell* append_prop(const list_cell* list, proposition prop);
  const list_cell* append_binder(const list_cell* list, term_ptr variable, lambda_type_ptr type);
  // The elements in text order; valid until the next call.
  const term_list& items(const list_cell* list);
  term_ptr list_term(const list_cell* list) { return mk_term_list(items(list)); }

  // ---- Results.
  void syntax_error(const char* message);
  // What is said for a person is what a formula gets that is too long; it is no fault of the formula.
  void out_of_memory();
  // Two readings of one stretch of text: reports them and ends the parse. Further reports are dropped.
  void ambiguous(term_ptr first, term_ptr second);
  bool stopped() const { return stopped_; }
  term_ptr result = nullptr;

 private:
  static constexpr std::size_t cells_per_chunk = 64;
  list_cell* new_cell(const list_cell* before, term_ptr term);
  std::string_view error_slice() const;
  void report_at_token(const char* message);

  std::string_view source_;
  std::vector<std::unique_ptr<list_cell[]>> chunks_;
  std::size_t cells_used_ = cells_per_chunk;
  term_list items_;
  bool stopped_ = false;
};

// Runs the parser over the context's text. Gives 0 with a result, 1 for a rejected text, 2 for exhausted memory.
int parse_source(parse_context& context);

}  // namespace vetro

// Taking a term apart by shape: match(t, "Power(?, ?)", base, exponent).
//
// The pattern is written in the formula language and read without normalisation, once in the process. Only Apply
// structure, leaves and pattern leaves are examined; a leaf is compared with term_eqb, so one that carries a scope does
// not match the plain name.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "term/ast.h"

namespace vetro {

// Reads the text of a pattern; null when it does not parse.
using pattern_reader = term_ptr (*)(std::string_view text);

// Installs the reader and gives the one before it. Called once before the first match (the reader lives in a layer
// above this one); what is compiled already stays.
pattern_reader match_init(pattern_reader reader);

// A pattern's text, with the number of its "?" characters checked at compile time against the captures asked for.
template <std::size_t Captures>
struct pattern_text {
  const char* text;
  consteval pattern_text(const char* literal) : text(literal) {  // NOLINT: implicit on purpose
    std::size_t marks = 0;
    for (const char* c = literal; *c != '\0'; ++c) {
      marks += *c == '?' ? 1U : 0U;
    }
    if (marks != Captures) {
      throw "the number of captures differs from the number of ? in the pattern";
    }
  }
};

// The general form: slots points to one term_ptr for each capture. Gives the number of captures, or -1 for no match
// (then the slots may hold partial captures, which nobody reads). A null t reports "Error: match_term visiting NULL
// pointer\n", a pattern that does not parse "Error: parsing pattern error\n" on every call.
int match_slots(term_ptr t, const char* pattern, term_ptr* slots);

// The same for a string literal: its address never names another text, so the pattern is found by address.
int match_literal(term_ptr t, const char* literal, term_ptr* slots);

// True when t matches; each "?" of the text, in text order, is captured ("?FuncApply(?)" captures the head and a
// TermList of the arguments).
template <class... Slots>
bool match(term_ptr t, std::type_identity_t<pattern_text<sizeof...(Slots)>> pattern, Slots&... captures) {
  static_assert((std::is_same_v<Slots, term_ptr> && ...));
  term_ptr slots[sizeof...(Slots) + 1] = {};
  if (match_literal(t, pattern.text, slots) < 0) {
    return false;
  }
  [[maybe_unused]] std::size_t next = 0;
  ((captures = slots[next++]), ...);
  return true;
}

// The same on parsed terms. Lists match element by element and must have equal length.
int match_term(term_ptr t, term_ptr pattern, term_ptr* slots);
int match_term_list(term_span list, term_span patterns, term_ptr* slots);

// The compiled patterns of the process.
struct pattern_cache;

}  // namespace vetro

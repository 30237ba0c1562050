// Formulas of a test, read from their text.
#pragma once

#include <string_view>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "term/pattern_match.h"

namespace vetro::test {

inline term_ptr formula(std::string_view text) {
  match_init(read_pattern);
  return parse_semantic_term_from_str(text);
}

}  // namespace vetro::test

// Entry of the formula reader: text to a raw term, before any normalisation.
#pragma once

#include <string_view>

#include "term/ast.h"

namespace vetro {

// Parses one formula. Gives null on failure, after the scanner's or parser's message and
// "Error: Parsing failed with code %d.\n" (1 rejected, 2 out of memory) on standard error. With debug or verbose_debug
// set, a success prints "Parsing succeeded.\n".
term_ptr parse_term_from_str(std::string_view src, int verbose_debug, int debug);

// The reader of patterns, for match_init: parse_term_from_str(text, 0, 0).
term_ptr read_pattern(std::string_view text);

}  // namespace vetro

// Whether a text is certainly a formula, found without building anything.
#pragma once

#include <string_view>

namespace vetro {

// True only for a text that the parser accepts without a message: of no more than a few lines, from the plain part of
// the language, where no token leaves a choice. False says nothing: the text may still be a formula.
bool is_plain_formula(std::string_view text);

}  // namespace vetro

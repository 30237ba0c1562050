// Texts that must be well-formed UTF-8 for their reader.
#pragma once

#include <string>
#include <string_view>

namespace vetro {

// True for well-formed UTF-8 without a NUL, which would end the text for a reader of C strings.
bool is_utf8_text(std::string_view text);

// U+FFFD in place of each byte that keeps text from being such a text.
std::string utf8_with_replacements(std::string_view text);

}  // namespace vetro

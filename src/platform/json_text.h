// Strings of a JSON document.
#pragma once

#include <string>
#include <string_view>

namespace vetro {

// Appends the text as it stands between the quotes of a JSON string. U+FFFD takes the place of each byte that is no
// part of well-formed UTF-8.
void append_json_text(std::string& out, std::string_view text);

}  // namespace vetro

// The words in which a reader of diagnostics is told what the grammar says.
#pragma once

#include <string>
#include <string_view>

namespace vetro {

// The message of the grammar ("syntax error, unexpected LPAREN, expecting VAR") in the signs that a writer of formulas
// knows; token is the text that it stumbled over.
std::string readable_error(std::string_view message, std::string_view token);

}  // namespace vetro

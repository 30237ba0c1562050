// What a writer who is used to another notation may have meant where a formula does not parse.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vetro {

// A remedy for the syntax error at the bytes begin to end of the formula, or nothing. message is the grammar's.
std::string notation_advice(std::string_view formula, std::size_t begin, std::size_t end, std::string_view message);

}  // namespace vetro

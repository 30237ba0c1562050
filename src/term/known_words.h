// The words that stand for an operator or a predicate, for whoever wants to tell what a writer may have meant.
#pragma once

#include <string_view>
#include <vector>

namespace vetro {

// All of them, in the order of the name table, further spellings behind.
const std::vector<std::string_view>& known_function_words();

}  // namespace vetro

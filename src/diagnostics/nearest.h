// The word that a writer may have meant.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vetro {

// The first of the words that is nearest to the given one: letters exchanged, left out, put in, or two of them swapped,
// at most a third of the word; else the first that begins with it. Empty where no word is so near, or the word is one
// of them.
std::string_view nearest_word(std::string_view word, std::span<const std::string_view> words);

// Changes that lead from a to b; more than most counts as most + 1.
std::size_t edit_distance(std::string_view a, std::string_view b, std::size_t most);

// "did you mean 'x'?", or nothing for an empty word.
std::string did_you_mean(std::string_view word);

}  // namespace vetro

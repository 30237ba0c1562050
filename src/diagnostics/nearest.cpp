// Distances row by row; the row before the last is kept for swapped letters. Capitals count as their small letters.
#include "diagnostics/nearest.h"

#include <algorithm>
#include <vector>

namespace vetro {
namespace {

char small(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool same_letter(char a, char b) { return small(a) == small(b); }

// Whether the word is a beginning of the candidate that tells enough of it.
bool begins(std::string_view word, std::string_view candidate) {
  constexpr std::size_t telling = 3;
  return word.size() >= telling && word.size() < candidate.size() &&
         std::equal(word.begin(), word.end(), candidate.begin(), same_letter);
}

}  // namespace

std::size_t edit_distance(std::string_view a, std::string_view b, std::size_t most) {
  if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > most) {
    return most + 1;
  }
  std::vector<std::size_t> before_last;
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) {
    row[j] = j;
  }
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before_last = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = same_letter(a[i - 1], b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0U : 1U)});
      if (i > 1 && j > 1 && same_letter(a[i - 1], b[j - 2]) && same_letter(a[i - 2], b[j - 1])) {
        row[j] = std::min(row[j], before_last[j - 2] + 1);
      }
    }
  }
  return std::min(row[b.size()], most + 1);
}

std::string_view nearest_word(std::string_view word, std::span<const std::string_view> words) {
  std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
  std::string_view nearest;
  std::string_view longer;
  for (std::string_view candidate : words) {
    if (candidate == word) {
      return {};
    }
    const std::size_t distance = edit_distance(word, candidate, best - 1);
    if (distance < best && distance < candidate.size()) {
      best = distance;
      nearest = candidate;
    }
    if (longer.empty() && begins(word, candidate)) {
      longer = candidate;
    }
  }
  return nearest.empty() ? longer : nearest;
}

std::string did_you_mean(std::string_view word) {
  return word.empty() ? std::string() : "did you mean '" + std::string(word) + "'?";
}

}  // namespace vetro

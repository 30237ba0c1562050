// Well-formed sequences are those of the Unicode standard: no overlong forms, no surrogates, nothing above U+10FFFF.
#include "platform/utf8.h"

#include <cstdint>

namespace vetro {
namespace {

constexpr std::string_view replacement_character = "\xEF\xBF\xBD";

// Bytes of the character that text begins with; 0 when it is not well-formed, and for NUL.
std::size_t character_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0U; };
  const auto continues = [&](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned lead = byte(0);
  if (lead < 0x80) {
    return lead != 0 ? 1 : 0;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return continues(1) ? 2 : 0;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool overlong = lead == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = lead == 0xED && byte(1) > 0x9F;
    return !overlong && !surrogate && continues(1) && continues(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool overlong = lead == 0xF0 && byte(1) < 0x90;
    const bool too_large = lead == 0xF4 && byte(1) > 0x8F;
    return !overlong && !too_large && continues(1) && continues(2) && continues(3) ? 4 : 0;
  }
  return 0;
}

std::size_t well_formed_prefix(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = character_length(text.substr(at));
    if (length == 0) {
      break;
    }
    at += length;
  }
  return at;
}

}  // namespace

bool is_utf8_text(std::string_view text) { return well_formed_prefix(text) == text.size(); }

std::string utf8_with_replacements(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t good = well_formed_prefix(text);
    result += text.substr(0, good);
    text.remove_prefix(good);
    if (!text.empty()) {
      result += replacement_character;
      text.remove_prefix(1);
    }
  }
  return result;
}

}  // namespace vetro

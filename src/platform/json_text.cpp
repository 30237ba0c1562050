// Most characters stand for themselves, so that the text is copied in runs between the few that do not.
#include "platform/json_text.h"

#include <array>
#include <cstdint>

#include "platform/utf8.h"

namespace vetro {
namespace {

// The letter behind the backslash; 'u' for a number, 0 for a character that stands for itself.
constexpr std::array<char, 256> escapes = [] {
  std::array<char, 256> table{};
  for (std::size_t c = 0; c < 0x20; ++c) {
    table[c] = 'u';
  }
  table['\b'] = 'b';
  table['\f'] = 'f';
  table['\n'] = 'n';
  table['\r'] = 'r';
  table['\t'] = 't';
  table['"'] = '"';
  table['\\'] = '\\';
  return table;
}();

void append_number(std::string& out, unsigned code) {
  constexpr std::string_view digits = "0123456789abcdef";
  out += "u00";
  out += digits[code / 16];
  out += digits[code % 16];
}

void append_escaped(std::string& out, std::string_view text) {
  std::size_t copied = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<std::uint8_t>(text[i]);
    if (escapes[code] == 0) {
      continue;
    }
    out.append(text, copied, i - copied);
    out += '\\';
    if (escapes[code] == 'u') {
      append_number(out, code);
    } else {
      out += escapes[code];
    }
    copied = i + 1;
  }
  out.append(text, copied);
}

}  // namespace

void append_json_text(std::string& out, std::string_view text) {
  if (is_utf8_text(text)) {
    append_escaped(out, text);
  } else {
    append_escaped(out, utf8_with_replacements(text));
  }
}

}  // namespace vetro

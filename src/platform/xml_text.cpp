// One pass over the bytes; what is no UTF-8 is replaced before.
#include "platform/xml_text.h"

#include "platform/utf8.h"

namespace vetro {

std::string xml_text(std::string_view text) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  const std::string whole = utf8_with_replacements(text);
  std::string out;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    const char c = whole[i];
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\n':
        out += "&#10;";
        break;
      case '\t':
        out += "&#9;";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20U) {
          out += replacement;
        } else if (whole.compare(i, 3, "\xEF\xBF\xBE") == 0 || whole.compare(i, 3, "\xEF\xBF\xBF") == 0) {
          out += replacement;
          i += 2;
        } else {
          out += c;
        }
    }
  }
  return out;
}

}  // namespace vetro

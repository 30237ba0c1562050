// Text for XML and HTML.
#pragma once

#include <string>
#include <string_view>

namespace vetro {

// The text as it stands between tags or in an attribute. What XML 1.0 cannot hold at all becomes U+FFFD: control
// characters, U+FFFE and U+FFFF.
std::string xml_text(std::string_view text);

}  // namespace vetro

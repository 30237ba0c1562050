// Any bytes as a formula. What a formula prints as is read again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "parser/parser_api.h"
#include "term/print/pretty.h"
#include "term/state.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const vetro::term_ptr t = vetro::parse_term_from_str({reinterpret_cast<const char*>(data), size}, 0, 0);
  if (t != nullptr) {
    std::string text;
    vetro::print_term_internal(text, t);
    vetro::parse_term_from_str(text, 0, 0);
  }
  vetro::reset_state();
  return 0;
}

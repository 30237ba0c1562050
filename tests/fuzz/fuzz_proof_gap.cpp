// Any bytes as a proof gap file. What is accepted is printed in both forms.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "lib/proof_gap_parser.h"
#include "parser/parser_api.h"
#include "platform/large_stack.h"
#include "term/pattern_match.h"
#include "term/state.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  return vetro::run_on_large_stack([=] {
    vetro::reset_state();
    vetro::match_init(vetro::read_pattern);
    std::FILE* file = fmemopen(const_cast<std::uint8_t*>(data), size, "r");
    if (const auto gap = vetro::read_proof_gap(file)) {
      std::string text;
      vetro::print_proof_gap_full(text, *gap);
      vetro::print_proof_gap_full_internal(text, *gap);
    }
    std::fclose(file);
    return 0;
  });
}

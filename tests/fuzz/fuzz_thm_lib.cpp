// Any bytes as a theorem library.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "lib/thm_lib.h"
#include "platform/large_stack.h"
#include "term/state.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vetro::run_on_large_stack([=] {
    vetro::reset_state();
    vetro::thm_lib lib;
    vetro::thm_lib_parse({reinterpret_cast<const char*>(data), size}, lib);
    return 0;
  });
}

// Any bytes as a script file. Whatever is read prints in both forms, and its instructions stand in file order; whatever
// is not read leaves its line and its text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "lib/dsl_parser.h"
#include "platform/large_stack.h"
#include "term/state.h"

namespace {

using namespace vetro;

void require(bool condition) {
  if (!condition) {
    std::abort();
  }
}

// The number of the last instruction, those inside proof blocks included.
int check_order(const dsl_instruction_list& list, int last, int depth) {
  require(depth <= max_proof_block_depth);
  for (const dsl_instruction& inst : list) {
    require(inst.number > last);
    last = inst.number;
    if (const auto* assertion = std::get_if<dsl_assert>(&inst.content)) {
      require(assertion->proof_body.empty() == (assertion->mode != dsl_assert_by_proof));
      last = check_order(assertion->proof_body, last, depth + 1);
    }
  }
  return last;
}

void check_script(std::FILE* file) {
  dsl_parser_error error;
  const std::optional<dsl_instruction_list> list = parse_dsl_instructions(file, &error);
  if (!list) {
    require((error.line >= 1) == !error.text.empty());
    return;
  }
  require(error.line == 0 && !list->empty());
  check_order(*list, 0, 0);
  std::string text;
  print_dsl_instruction_list(text, *list, false);
  print_dsl_instruction_list(text, *list, true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(text.data(), size, "rb"), &std::fclose);
  require(file != nullptr);
  run_on_large_stack([&file] {
    check_script(file.get());
    return 0;
  });
  reset_state();
  return 0;
}

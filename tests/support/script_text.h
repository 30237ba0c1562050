// Scripts from memory, for the tests of the script reader and the script printers.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "lib/dsl_parser.h"

namespace vetro {

struct parsed_script {
  std::optional<dsl_instruction_list> list;
  dsl_parser_error error;
  std::string messages;  // what stood on standard error
};

inline parsed_script parse_script(std::string text) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(text.data(), text.size(), "rb"), &std::fclose);
  parsed_script result;
  testing::internal::CaptureStderr();
  result.list = parse_dsl_instructions(file.get(), &result.error);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

// The script as the standard printer writes it; "(none)" when it does not parse.
inline std::string printed_script(const parsed_script& script) {
  if (!script.list) {
    return "(none)";
  }
  std::string out;
  print_dsl_instruction_list(out, *script.list, false);
  return out;
}

}  // namespace vetro

// What the command line and the configuration file say about one run.
#pragma once

#include <optional>
#include <string>

#include "config/config_load.h"
#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

struct ProgramContext {
  std::string config_file;
  std::string proof_gap_file;
  std::string dsl_file;
  // Texts that are read in the place of the files.
  std::optional<std::string> proof_gap_text;
  std::optional<std::string> dsl_text;
  FileConfig config;
  dsl_execute_mode mode = fast_mode;
  bool print_internal = false;
  std::optional<std::string> result_json_file;
};

}  // namespace vetro

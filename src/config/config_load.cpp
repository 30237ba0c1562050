// Reads the configuration in two passes: the first finds the root directory, the second the settings that are joined
// to it.
#include "config/config_load.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "platform/text_file.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr std::size_t line_bytes = 511;     // a longer line counts as several
constexpr std::size_t section_bytes = 127;  // a longer name is cut
constexpr std::size_t path_bytes = 259;     // a longer joined path is cut

// ---- The table of settings.

enum class value_form : unsigned char {
  joined,             // to the root directory
  joined_to_process,  // to the base directory of DSL_PROCESS, null while that is not set
  as_written,
  external_library,  // joined to the root directory; the alias is what stands behind the key's prefix
};

using field_of = config_text& (*)(FileConfig&);

struct config_row {
  std::string_view section;
  std::string_view key;  // of an external library: the prefix of the key
  value_form form;
  field_of field;
};

#define VETRO_FIELD(path) [](FileConfig& config) -> config_text& { return config.path; }

constexpr config_row config_table[] = {
    {"THEOREM_LIBRARY", "THMEOREM_LIB_SET", value_form::joined, VETRO_FIELD(theorem_library.lib_index_file)},
    {"THEOREM_LIBRARY", "EXTERNAL_LIB_", value_form::external_library, nullptr},
    {"EXTERNAL_THEOREM_LIBS", "", value_form::external_library, nullptr},
    {"LLM_RESPONSES", "THEOREM_SELECT_COT", value_form::joined, VETRO_FIELD(llm_responses.theorem_select_cot)},
    {"LLM_RESPONSES", "THEOREM_SELECT_FAST", value_form::joined, VETRO_FIELD(llm_responses.theorem_select_fast)},
    {"LLM_RESPONSES", "EXISTS_SELECT", value_form::joined, VETRO_FIELD(llm_responses.exists_select)},
    {"DISPLAY_FILE", "LOG_FILE", value_form::joined, VETRO_FIELD(display_file.log_file)},
    {"DISPLAY_FILE", "QV_LIST_INFO", value_form::joined, VETRO_FIELD(display_file.qv_list_info)},
    {"DISPLAY_FILE", "QV_SOLVE_INFO", value_form::joined, VETRO_FIELD(display_file.qv_solve_info)},
    {"DISPLAY_FILE", "QV_OUTPUT", value_form::joined, VETRO_FIELD(display_file.qv_output)},
    {"DSL_RESPONSES", "DSL_ERROR_LOG", value_form::joined, VETRO_FIELD(dsl_responses.err_log)},
    {"DSL_RESPONSES", "DSL_EXECUTE_LOG", value_form::joined, VETRO_FIELD(dsl_responses.execute_log)},
    {"QV_GEN", "QV_GEN_DIR", value_form::joined, VETRO_FIELD(qv_gen.qv_gen_dir)},
    {"LLM_QUERY", "BASE_DIR", value_form::joined, VETRO_FIELD(llm_query.base_dir)},
    {"LLM_QUERY", "PROOF_GAP", value_form::joined, VETRO_FIELD(llm_query.proof_gap)},
    {"LLM_QUERY", "PROGRAM_DIR", value_form::joined, VETRO_FIELD(llm_query.program_dir)},
    {"DSL_QUERY", "BASE_DIR", value_form::joined, VETRO_FIELD(dsl_query.base_dir)},
    {"DSL_QUERY", "PROOF_GAP", value_form::joined, VETRO_FIELD(dsl_query.proof_gap)},
    {"DSL_QUERY", "QUERY", value_form::joined, VETRO_FIELD(dsl_query.query_program)},
    {"DSL_QUERY", "DSL_COMMANDS", value_form::joined, VETRO_FIELD(dsl_query.commands)},
    {"DSL_PROCESS", "BASE_DIR", value_form::joined, VETRO_FIELD(dsl_process.base_dir)},
    {"DSL_PROCESS", "PROOF_GAP", value_form::joined_to_process, VETRO_FIELD(dsl_process.proof_gap)},
    {"DSL_PROCESS", "COMMANDS", value_form::joined_to_process, VETRO_FIELD(dsl_process.commands)},
    {"EXISTS_QUERY.PROGRAMS", "MERGE_PROMPT", value_form::as_written, VETRO_FIELD(programs.exists.merge_prompt)},
    {"EXISTS_QUERY.PROGRAMS", "QUERY", value_form::as_written, VETRO_FIELD(programs.exists.query)},
    {"THEOREM_SELECT_COT.PROGRAMS", "MERGE_PROMPT", value_form::as_written,
     VETRO_FIELD(programs.theorem_cot.merge_prompt)},
    {"THEOREM_SELECT_COT.PROGRAMS", "QUERY", value_form::as_written, VETRO_FIELD(programs.theorem_cot.query)},
    {"THEOREM_SELECT_COT.PROGRAMS", "POSTPROCESS", value_form::as_written,
     VETRO_FIELD(programs.theorem_cot.postprocess)},
    {"THEOREM_SELECT_FAST.PROGRAMS", "MERGE_PROMPT", value_form::as_written,
     VETRO_FIELD(programs.theorem_fast.merge_prompt)},
    {"THEOREM_SELECT_FAST.PROGRAMS", "QUERY", value_form::as_written, VETRO_FIELD(programs.theorem_fast.query)},
};

#undef VETRO_FIELD

bool names(const config_row& row, std::string_view section, std::string_view key) {
  return row.section == section &&
         (row.form == value_form::external_library ? key.starts_with(row.key) : key == row.key);
}

void set_value(FileConfig& config, const config_row& row, std::string_view key, const std::string& value) {
  switch (row.form) {
    case value_form::joined:
      row.field(config) = join_path(*config.root_dir, value);
      return;
    case value_form::joined_to_process: {
      const config_text& base = config.dsl_process.base_dir;
      row.field(config) = base ? config_text(join_path(*base, value)) : std::nullopt;
      return;
    }
    case value_form::as_written:
      row.field(config) = value;
      return;
    case value_form::external_library:
      add_external_theorem_library(config, std::string(key.substr(row.key.size())), join_path(*config.root_dir, value));
      return;
  }
}

// ---- Lines. Only the blank is white space here.

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// A line, or the next line_bytes bytes of a long one, without the line end. False at the end of the file.
bool next_piece(std::FILE* file, std::string& piece) {
  piece.clear();
  std::size_t taken = 0;
  while (taken < line_bytes) {
    const int c = next_character(file);
    if (c == EOF) {
      return taken > 0;
    }
    ++taken;
    if (c == '\n') {
      return true;
    }
    piece.push_back(static_cast<char>(c));
  }
  return true;
}

// Calls take(section, key, text behind the "=") for each key line of the file.
template <class F>
void for_each_setting(std::FILE* file, F&& take) {
  std::string section;
  std::string piece;
  while (next_piece(file, piece)) {
    const std::string_view line = piece;
    if (line.empty() || line.front() == ';') {
      continue;
    }
    if (line.front() == '[') {
      const std::size_t close = line.find(']');
      if (close != std::string_view::npos) {
        section = trim(line.substr(1, close - 1)).substr(0, section_bytes);
      }
      continue;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals + 1 == line.size()) {
      continue;
    }
    take(std::string_view(section), trim(line.substr(0, equals)), line.substr(equals + 1));
  }
}

void find_root_dir(std::FILE* file, FileConfig& config) {
  for_each_setting(file, [&](std::string_view section, std::string_view key, std::string_view text) {
    if (section == "ROOT_PATH" && key == "ROOT_PATH") {
      config.root_dir = trim(text.substr(0, text.find('=')));
    }
  });
}

void read_settings(std::FILE* file, FileConfig& config) {
  for_each_setting(file, [&](std::string_view section, std::string_view key, std::string_view text) {
    for (const config_row& row : config_table) {
      if (names(row, section, key)) {
        set_value(config, row, key, std::string(trim(text)));
        return;
      }
    }
  });
}

}  // namespace

bool parse_config(const char* filename, FileConfig& config) {
  errno = ENOENT;
  const text_file file = filename == nullptr ? nullptr : open_text_file(filename);
  if (file == nullptr) {
    std::perror("Error opening file");
    return false;
  }
  const long start = std::ftell(file.get());
  find_root_dir(file.get(), config);
  if (!config.root_dir && std::ferror(file.get()) == 0) {
    report_error("Error: ROOT_PATH not found in config\n");
    return false;
  }
  if (std::ferror(file.get()) == 0 && std::fseek(file.get(), start, SEEK_SET) == 0) {
    read_settings(file.get(), config);
    if (std::ferror(file.get()) == 0) {
      return true;
    }
  }
  std::perror("Error reading file");
  return false;
}

std::string join_path(const std::string& base, const std::string& path) {
  if (base.empty() || path.starts_with('/')) {
    return path;
  }
  std::string joined = base;
  if (!joined.ends_with('/')) {
    joined += '/';
  }
  joined += path;
  joined.resize(std::min(joined.size(), path_bytes));
  return joined;
}

bool add_external_theorem_library(FileConfig& config, const std::string& alias, const std::string& path) {
  if (alias.empty() || path.empty()) {
    return false;
  }
  for (ExternalTheoremLibrary& known : config.theorem_library.external_libs) {
    if (known.alias == alias) {
      known.path = path;
      return true;
    }
  }
  config.theorem_library.external_libs.push_back({alias, path});
  return true;
}

}  // namespace vetro

// The configuration file: sections of key = value lines that name the theorem libraries and the log files.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vetro {

// Every text is empty until set; a required one that stays empty is reported by who needs it.
using config_text = std::optional<std::string>;

struct ExternalTheoremLibrary {
  std::string alias;
  std::string path;
};
struct TheoremLibrary {
  config_text lib_index_file;
  std::vector<ExternalTheoremLibrary> external_libs;  // in order of first appearance
};
struct LLMResponses {
  config_text theorem_select_cot, theorem_select_fast, exists_select;
};
struct LLMQuery {
  config_text base_dir, proof_gap, program_dir;
};
struct DSLQuery {
  config_text base_dir, proof_gap, query_program, commands;
};
struct DisplayFile {
  config_text nfl_file, log_file, qv_list_info, qv_solve_info, qv_output;
};
struct DSLResponses {
  config_text err_log, execute_log;
};
struct DSL_PROCESS {
  config_text base_dir, proof_gap, commands;
};
struct QV_GEN {
  config_text qv_gen_dir;
};
struct ExistsPrograms {
  config_text merge_prompt, query;
};
struct TheoremCotPrograms {
  config_text merge_prompt, query, postprocess;
};
struct TheoremFastPrograms {
  config_text merge_prompt, query;
};
struct ProgramsConfig {
  ExistsPrograms exists;
  TheoremCotPrograms theorem_cot;
  TheoremFastPrograms theorem_fast;
};

struct FileConfig {
  config_text root_dir;
  TheoremLibrary theorem_library;
  LLMResponses llm_responses;
  LLMQuery llm_query;
  DSLQuery dsl_query;
  DisplayFile display_file;
  DSLResponses dsl_responses;
  DSL_PROCESS dsl_process;
  QV_GEN qv_gen;
  ProgramsConfig programs;
};

// Reads the file into config. False, with a message on standard error, when it cannot be opened (a null name too) or
// has no ROOT_PATH.
bool parse_config(const char* filename, FileConfig& config);

// base, "/" unless base ends in one, and path, cut to 259 bytes; a copy of path for an empty base or a path from "/".
std::string join_path(const std::string& base, const std::string& path);

// False for an empty alias or path. A known alias gets the new path.
bool add_external_theorem_library(FileConfig& config, const std::string& alias, const std::string& path);

}  // namespace vetro

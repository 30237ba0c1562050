// Numbered, named theorems that a script cites: one main library and external ones under aliases. Read once, never
// changed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/config_load.h"
#include "term/ast.h"

namespace vetro {

struct theorem {
  int id = 0;
  std::string name;
  term_ptr content = nullptr;
};

struct external_thm_lib;

struct thm_lib {
  std::vector<std::optional<theorem>> table;  // theorem n at n - 1
  int num = 0;                                // highest id stored, not a count
  std::vector<external_thm_lib> external_libs;
};

struct external_thm_lib {
  std::string alias;
  thm_lib lib;
};

// Nothing when there is no main library, or one library cannot be read.
std::unique_ptr<thm_lib> thm_lib_load_from_config(const FileConfig& config);
std::optional<thm_lib> thm_lib_load(const std::string& path);
void thm_lib_parse(std::string_view text, thm_lib& lib);
void thm_lib_add(theorem entry, thm_lib& lib);
bool thm_lib_add_external_from_file(thm_lib& lib, const std::string& alias, const std::string& path);

// Null when there is none. The alias "", or "main", means the main library.
const theorem* thm_lib_find_by_id(const thm_lib* lib, std::int64_t id);
const theorem* thm_lib_find_by_ref(const thm_lib* lib, std::string_view alias, std::int64_t id);
// The only theorem of that name, or null; *out_matches counts them.
const theorem* thm_lib_find_unique_by_name(const thm_lib* lib, std::string_view name, int* out_matches);
const theorem* thm_lib_find_unique_by_name_ref(const thm_lib* lib, std::string_view alias, std::string_view name,
                                               int* out_matches);
bool thm_lib_alias_is_main(std::string_view alias);

}  // namespace vetro

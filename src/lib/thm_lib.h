// Numbered, named theorems that a script cites: one main library and external ones under aliases. Read once, never
// changed.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/config_load.h"
#include "term/ast.h"

namespace vetro {

// A formula, or a plain text of one that is read when it is first asked for.
class stored_formula {
 public:
  stored_formula(term_ptr read = nullptr) : read_(read) {}  // NOLINT: a term is a formula
  explicit stored_formula(std::string_view plain_text) : text_(plain_text) {}
  bool is_there() const { return read_ != nullptr || !text_.empty(); }
  term_ptr read() const;

 private:
  mutable term_ptr read_ = nullptr;
  std::string text_;
};

struct theorem {
  int id = 0;
  std::string name;
  stored_formula formula;
  term_ptr content() const { return formula.read(); }
};

struct external_thm_lib;

struct thm_lib {
  std::map<int, theorem> table;  // by id; the numbering may have gaps of any width
  int num = 0;                   // highest id stored, not a count
  std::vector<external_thm_lib> external_libs;
  // The ids of each name, in their order; made by the first look-up of a name (theorems_by_name).
  mutable std::optional<std::multimap<std::string, int, std::less<>>> ids_by_name;
};

struct external_thm_lib {
  std::string alias;
  thm_lib lib;
};

// Nothing when there is no main library, or one library cannot be read (its message stands on standard error).
std::unique_ptr<thm_lib> thm_lib_load_from_config(const FileConfig& config);
std::optional<thm_lib> thm_lib_load(const std::string& path);
// Adds the theorems of a library text. What does not parse is reported, with the name of the file, and left out.
void thm_lib_parse(std::string_view text, thm_lib& lib, std::string_view file = {});
// An id below 1 is not stored; a theorem of the same id is replaced.
void thm_lib_add(theorem entry, thm_lib& lib);
// False for an empty alias and for a file that cannot be read. A known alias gets the new library.
bool thm_lib_add_external_from_file(thm_lib& lib, const std::string& alias, const std::string& path);

// Null when there is none. The alias "", or "main", means the main library.
const theorem* thm_lib_find_by_id(const thm_lib* lib, std::int64_t id);
const theorem* thm_lib_find_by_ref(const thm_lib* lib, std::string_view alias, std::int64_t id);
// The only theorem of that name, or null; *out_matches counts them.
const theorem* thm_lib_find_unique_by_name(const thm_lib* lib, std::string_view name, int* out_matches);
const theorem* thm_lib_find_unique_by_name_ref(const thm_lib* lib, std::string_view alias, std::string_view name,
                                               int* out_matches);
bool thm_lib_alias_is_main(std::string_view alias);
const std::multimap<std::string, int, std::less<>>& theorems_by_name(const thm_lib& lib);

}  // namespace vetro

// The theorem library file: headers "Thm 12. (name)", each followed by the lines of its formula.
#include "lib/thm_lib.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "diagnostics/diagnostics.h"
#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "parser/plain_formula.h"
#include "platform/text_file.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr std::string_view white_space = " \t\n\v\f\r";
constexpr std::size_t name_bytes = 255;

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(white_space);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(white_space) - first + 1);
}

struct header {
  int id = 0;
  std::string_view name;
};

// The pattern "Thm %d. (%255[^)])" as scanf reads it: a blank stands for any white space or none, a number may carry
// a sign and stand behind white space, and nothing behind the name is looked at. The name has at least one character
// and is cut at 255. A number that no int holds gives id 0, which no theorem has.
std::optional<header> parse_header(std::string_view line) {
  std::string_view rest = line;
  const auto skip_white_space = [&] { rest.remove_prefix(std::min(rest.find_first_not_of(white_space), rest.size())); };
  const auto take = [&](std::string_view text) {
    const bool there = rest.starts_with(text);
    rest.remove_prefix(there ? text.size() : 0);
    return there;
  };
  if (!take("Thm")) {
    return std::nullopt;
  }
  skip_white_space();
  header result;
  const bool negative = rest.starts_with('-');
  if (negative || rest.starts_with('+')) {
    rest.remove_prefix(1);
  }
  const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
  if (digits == 0) {
    return std::nullopt;
  }
  const auto parsed = std::from_chars(rest.data(), rest.data() + digits, result.id);
  if (negative || parsed.ec != std::errc()) {
    result.id = 0;
  }
  rest.remove_prefix(digits);
  if (!take(".")) {
    return std::nullopt;
  }
  skip_white_space();
  if (!take("(")) {
    return std::nullopt;
  }
  result.name = rest.substr(0, rest.find(')')).substr(0, name_bytes);
  return result.name.empty() ? std::nullopt : std::optional<header>(result);
}

// Collects the formula of the theorem that is open and stores it when the next one opens.
class library_reader {
 public:
  library_reader(thm_lib& lib, std::string_view file) : lib_(lib), file_(file) {}

  void take(std::string_view raw_line) {
    ++line_number_;
    const std::string_view line = trim(raw_line);
    if (!line.starts_with("Thm ")) {
      if (open_) {
        const std::size_t indent = line.empty() ? 0 : static_cast<std::size_t>(line.data() - raw_line.data());
        pieces_.push_back({formula_.size(), static_cast<int>(line_number_), static_cast<int>(indent) + 1});
        formula_ += line;
        formula_ += ' ';
      }
      return;
    }
    close();
    open_ = parse_header(line);
    open_line_ = line_number_;
    if (!open_) {
      std::string message("Error: Wrong Format: ");
      message += line;
      message += '\n';
      report_text(message);
      if (collecting_diagnostics != nullptr) {
        collecting_diagnostics->add(
            {.code = diagnostic_code::library_left_out,
             .level = severity::warning,
             .message = "this line is no header 'Thm N. (name)', so that its formula is left out",
             .place = {source_file::library, static_cast<int>(line_number_), 1, 0}});
      }
    }
  }

  void finish() {
    if (!formula_.empty()) {
      close();
    }
  }

 private:
  void close() {
    if (open_) {
      if (collecting_diagnostics != nullptr) {
        collecting_diagnostics->reads_pieces(source_file::library, formula_, pieces_);
      }
      const stored_formula formula = stored();
      if (formula.is_there()) {
        thm_lib_add({open_->id, std::string(open_->name), formula}, lib_);
      } else {
        report_left_out();
      }
    }
    open_.reset();
    formula_.clear();
    pieces_.clear();
  }

  // Nothing is said of a plain formula, so that it may wait. Who collects diagnostics gets them all now.
  stored_formula stored() const {
    return collecting_diagnostics == nullptr && is_plain_formula(formula_)
               ? stored_formula(formula_)
               : stored_formula(parse_semantic_term_from_str(formula_));
  }

  // Where the theorem stands whose formula the line before this one is about.
  void report_left_out() const {
    std::string message(file_.empty() ? "theorem library" : file_);
    message += ':' + std::to_string(open_line_) + ": theorem " + std::to_string(open_->id) + " (";
    message += open_->name;
    message += ") does not parse and is left out\n";
    report_text(message);
    if (collecting_diagnostics != nullptr) {
      collecting_diagnostics->add({.code = diagnostic_code::library_left_out,
                                   .level = severity::warning,
                                   .message = "theorem " + std::to_string(open_->id) + " (" + std::string(open_->name) +
                                              ") does not parse and is left out",
                                   .place = {source_file::library, static_cast<int>(open_line_), 1, 0}});
    }
  }

  thm_lib& lib_;
  std::string_view file_;
  std::size_t line_number_ = 0;
  std::size_t open_line_ = 0;   // of the header of the open theorem
  std::optional<header> open_;  // its name is a part of the library text
  std::string formula_;
  std::vector<text_piece> pieces_;  // the lines of the formula
};

// The whole file, byte for byte.
std::optional<std::string> read_file_to_string(const std::string& path) {
  const text_file file = open_text_file(path.c_str());
  if (file == nullptr) {
    std::perror("Error Opening File");
    return std::nullopt;
  }
  std::optional<std::string> text = read_rest(file.get());
  if (!text) {
    std::perror("Error Reading File");
  }
  return text;
}

// The library of an alias, or null.
const thm_lib* library_of(const thm_lib* lib, std::string_view alias) {
  if (lib == nullptr || thm_lib_alias_is_main(alias)) {
    return lib;
  }
  for (const external_thm_lib& external : lib->external_libs) {
    if (external.alias == alias) {
      return &external.lib;
    }
  }
  return nullptr;
}

}  // namespace

term_ptr stored_formula::read() const {
  if (read_ == nullptr && !text_.empty()) {
    read_ = normalize_parsed_term(parse_term_from_str(text_, 0, 0));
  }
  return read_;
}

void thm_lib_parse(std::string_view text, thm_lib& lib, std::string_view file) {
  library_reader reader(lib, file);
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    reader.take(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  reader.finish();
}

void thm_lib_add(theorem entry, thm_lib& lib) {
  if (entry.id < 1) {
    return;
  }
  const int id = entry.id;
  lib.num = std::max(lib.num, id);
  lib.ids_by_name.reset();
  lib.table.insert_or_assign(lib.table.end(), id, std::move(entry));  // most libraries are in order
}

std::optional<thm_lib> thm_lib_load(const std::string& path) {
  const std::optional<std::string> text = read_file_to_string(path);
  if (!text) {
    return std::nullopt;
  }
  thm_lib lib;
  thm_lib_parse(*text, lib, path);
  return lib;
}

bool thm_lib_add_external_from_file(thm_lib& lib, const std::string& alias, const std::string& path) {
  if (alias.empty() || path.empty()) {
    return false;
  }
  std::optional<thm_lib> loaded = thm_lib_load(path);
  if (!loaded) {
    return false;
  }
  for (external_thm_lib& known : lib.external_libs) {
    if (known.alias == alias) {
      known.lib = std::move(*loaded);
      return true;
    }
  }
  lib.external_libs.push_back({alias, std::move(*loaded)});
  return true;
}

std::unique_ptr<thm_lib> thm_lib_load_from_config(const FileConfig& config) {
  const TheoremLibrary& files = config.theorem_library;
  if (!files.lib_index_file) {
    return nullptr;
  }
  std::optional<thm_lib> main = thm_lib_load(*files.lib_index_file);
  if (!main) {
    return nullptr;
  }
  for (const ExternalTheoremLibrary& external : files.external_libs) {
    if (!thm_lib_add_external_from_file(*main, external.alias, external.path)) {
      report_error("Error: failed to load external theorem library @%s from %s\n", external.alias.c_str(),
                   external.path.c_str());
      return nullptr;
    }
  }
  return std::make_unique<thm_lib>(std::move(*main));
}

const theorem* thm_lib_find_by_id(const thm_lib* lib, std::int64_t id) {
  if (lib == nullptr || id < 1 || id > lib->num) {
    return nullptr;
  }
  const auto found = lib->table.find(static_cast<int>(id));
  return found == lib->table.end() ? nullptr : &found->second;
}

const theorem* thm_lib_find_by_ref(const thm_lib* lib, std::string_view alias, std::int64_t id) {
  return thm_lib_find_by_id(library_of(lib, alias), id);
}

const theorem* thm_lib_find_unique_by_name(const thm_lib* lib, std::string_view name, int* out_matches) {
  *out_matches = 0;
  if (lib == nullptr || name.empty()) {
    return nullptr;
  }
  const auto [first, last] = theorems_by_name(*lib).equal_range(name);
  *out_matches = static_cast<int>(std::distance(first, last));
  return *out_matches == 1 ? thm_lib_find_by_id(lib, first->second) : nullptr;
}

const theorem* thm_lib_find_unique_by_name_ref(const thm_lib* lib, std::string_view alias, std::string_view name,
                                               int* out_matches) {
  return thm_lib_find_unique_by_name(library_of(lib, alias), name, out_matches);
}

const std::multimap<std::string, int, std::less<>>& theorems_by_name(const thm_lib& lib) {
  if (!lib.ids_by_name) {
    lib.ids_by_name.emplace();
    for (const auto& [id, known] : lib.table) {
      lib.ids_by_name->emplace(known.name, id);
    }
  }
  return *lib.ids_by_name;
}

bool thm_lib_alias_is_main(std::string_view alias) { return alias.empty() || alias == "main"; }

}  // namespace vetro

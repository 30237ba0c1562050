// Folders, pairs of files and manifests. Nothing here reads a proof.
#include "check/task.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "check/json_object.h"
#include "check/json_reading.h"
#include "diagnostics/nearest.h"
#include "lib/line_reader.h"
#include "platform/utf8.h"

namespace vetro {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 9> manifest_keys = {"id",      "gap",     "script",  "gap_text", "script_text",
                                                           "library", "options", "comment", "tags"};
constexpr std::array<std::string_view, 4> option_keys = {"strict", "timeout", "memory", "work"};

// Whether a folder holds a proof, or a half of one, whose other half is then missed. A folder that cannot be searched
// leaves its reason.
bool is_proof_folder(const fs::path& folder, std::error_code& unreadable) {
  const auto holds = [&](const char* name) {
    std::error_code error;
    const bool there = fs::exists(fs::status(folder / name, error));
    if (error && error != std::errc::no_such_file_or_directory) {
      unreadable = error;
    }
    return there;
  };
  const bool gap = holds("gap.txt");
  return holds("script.txt") || gap;
}

// What is wrong with the keys of an object; empty if nothing is.
std::string unknown_key(const cJSON* object, std::span<const std::string_view> known) {
  const cJSON* member = nullptr;
  cJSON_ArrayForEach(member, object) {
    const std::string_view key = member->string;
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      const std::string meant = did_you_mean(nearest_word(key, known));
      return "there is no key \"" + std::string(key) + "\"" + (meant.empty() ? "" : "; " + meant);
    }
  }
  return {};
}

std::string wrong_type(const cJSON* line) {
  for (const char* key : {"id", "gap", "script", "gap_text", "script_text", "library"}) {
    const cJSON* member = json_member(line, key);
    if (member != nullptr && cJSON_IsString(member) == 0) {
      return "\"" + std::string(key) + "\" is no text";
    }
  }
  const cJSON* settings = json_member(line, "options");
  if (settings != nullptr && cJSON_IsObject(settings) == 0) {
    return "\"options\" is no object";
  }
  if (const cJSON* strict = json_member(settings, "strict"); strict != nullptr && cJSON_IsBool(strict) == 0) {
    return "\"strict\" is neither true nor false";
  }
  for (const char* key : {"timeout", "memory", "work"}) {
    if (json_member(settings, key) != nullptr && json_number(settings, key) == 0) {
      return "\"" + std::string(key) + "\" is no whole number above 0";
    }
  }
  return {};
}

std::string problem_of(const cJSON* line) {
  if (line == nullptr) {
    return "this line is no JSON";
  }
  if (cJSON_IsObject(line) == 0) {
    return "this line is no JSON object";
  }
  std::string problem = unknown_key(line, manifest_keys);
  problem = problem.empty() ? wrong_type(line) : problem;
  if (problem.empty()) {
    problem = unknown_key(json_member(line, "options"), option_keys);
  }
  for (const char* key : {"gap", "script"}) {
    const bool text = json_member(line, (std::string(key) + "_text").c_str()) != nullptr;
    if (problem.empty() && text == (json_member(line, key) != nullptr)) {
      problem = std::string("either \"") + key + "\" or \"" + key + "_text\" is wanted";
    }
  }
  return problem;
}

std::string beside(const std::string& manifest, const std::string& path) {
  return path.empty() || manifest == "-" ? path : (fs::path(manifest).parent_path() / path).string();
}

bool ends_in_jsonl(const std::string& path) { return path.ends_with(".jsonl"); }

}  // namespace

// ---- Between processes.

std::string task_to_json(const proof_task& task) {
  json_object object;
  object.number("number", task.number);
  object.text("id", task.id);
  object.text("gap", task.gap);
  object.text("script", task.script);
  if (task.gap_text.has_value()) {
    object.text("gap_text", *task.gap_text);
  }
  if (task.script_text.has_value()) {
    object.text("script_text", *task.script_text);
  }
  object.text("library", task.library);
  object.boolean("strict", task.strict);
  object.number("memory", task.memory);
  object.number("work", task.work);
  const json_text text(cJSON_PrintUnformatted(object.get()));
  return text == nullptr ? std::string() : std::string(text.get());
}

proof_task task_from_json(const std::string& text) {
  const json_tree object = parse_json(text);
  proof_task task;
  task.number = json_number(object.get(), "number");
  task.id = json_text_of(object.get(), "id");
  task.gap = json_text_of(object.get(), "gap");
  task.script = json_text_of(object.get(), "script");
  if (json_member(object.get(), "gap_text") != nullptr) {
    task.gap_text = json_text_of(object.get(), "gap_text");
  }
  if (json_member(object.get(), "script_text") != nullptr) {
    task.script_text = json_text_of(object.get(), "script_text");
  }
  task.library = json_text_of(object.get(), "library");
  task.strict = json_true(object.get(), "strict");
  task.memory = json_number(object.get(), "memory");
  task.work = json_number(object.get(), "work");
  return task;
}

// ---- The source.

task_source::task_source(const check_options& options, bool only_counts)
    : options_(options), only_counts_(only_counts), arguments_(options.proofs.begin(), options.proofs.end()) {
  for (const std::string& manifest : options.manifests) {
    arguments_.push_back("--manifest=" + manifest);
  }
}

task_source::~task_source() {
  if (manifest_ != nullptr && manifest_ != stdin) {
    std::fclose(manifest_);
  }
}

proof_task task_source::new_task(std::string id) const {
  proof_task task;
  task.id = std::move(id);
  task.strict = options_.strict;
  task.timeout = options_.timeout;
  task.memory = options_.memory;
  task.work = options_.work;
  return task;
}

proof_task task_source::bad_input(const std::string& file, int line, std::string problem) const {
  proof_task task = new_task(line == 0 ? file : file + ":" + std::to_string(line));
  task.problem = std::move(problem);
  task.problem_file = file;
  task.problem_line = line;
  return task;
}

std::optional<proof_task> task_source::next() {
  for (;;) {
    std::optional<proof_task> task = next_of_all();
    if (!task.has_value()) {
      return task;
    }
    task->number = ++number_;
    if (options_.shards == 0 || (number_ - 1) % options_.shards == options_.shard - 1) {
      return task;
    }
  }
}

std::optional<proof_task> task_source::next_of_all() {
  for (;;) {
    if (!found_.empty()) {
      proof_task task = std::move(found_.front());
      found_.pop_front();
      return task;
    }
    if (manifest_ != nullptr) {
      if (std::optional<proof_task> task = next_of_manifest()) {
        return task;
      }
      continue;
    }
    if (arguments_.empty()) {
      return std::nullopt;
    }
    if (std::optional<proof_task> task = next_argument()) {
      return task;
    }
  }
}

// The proof that the next argument is, or nothing where it only opens a manifest or a folder.
std::optional<proof_task> task_source::next_argument() {
  const std::string argument = std::move(arguments_.front());
  arguments_.pop_front();
  constexpr std::string_view manifest = "--manifest=";
  const bool named = argument.starts_with(manifest);
  if (named || argument == "-" || ends_in_jsonl(argument)) {
    const std::string path = named ? argument.substr(manifest.size()) : argument;
    return open_manifest(path) ? std::nullopt : std::optional(bad_input(path, 0, std::strerror(errno)));
  }
  std::error_code error;
  const fs::file_status status = fs::status(argument, error);
  if (fs::is_directory(status)) {
    read_folder(argument);
    return std::nullopt;
  }
  if (!fs::exists(status)) {
    return bad_input(argument, 0, error ? error.message() : "there is no such file or folder");
  }
  if (arguments_.empty()) {
    return bad_input(argument, 0, "a gap needs a script behind it");
  }
  proof_task task = new_task(argument);
  task.gap = argument;
  task.script = std::move(arguments_.front());
  arguments_.pop_front();
  return task;
}

void task_source::add_proof_folder(const fs::path& folder) {
  proof_task task = new_task(folder.string());
  task.gap = (folder / "gap.txt").string();
  task.script = (folder / "script.txt").string();
  found_.push_back(std::move(task));
}

void task_source::read_folder(const fs::path& folder) {
  std::error_code error;
  if (is_proof_folder(folder, error)) {
    add_proof_folder(folder);
    return;
  }
  std::vector<fs::path> inner;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_directory(ignored)) {
      inner.push_back(entry->path());
    }
  }
  std::sort(inner.begin(), inner.end());
  for (const fs::path& proof : inner) {
    std::error_code unreadable;
    if (is_proof_folder(proof, unreadable)) {
      add_proof_folder(proof);
    } else if (unreadable) {
      found_.push_back(bad_input(proof.string(), 0, unreadable.message()));
    }
  }
  if (error) {
    found_.push_back(bad_input(folder.string(), 0, error.message()));
  } else if (found_.empty()) {
    found_.push_back(bad_input(folder.string(), 0, "neither gap.txt with script.txt nor folders with them stand here"));
  }
}

bool task_source::open_manifest(const std::string& path) {
  manifest_ = path == "-" ? stdin : std::fopen(path.c_str(), "r");
  manifest_path_ = path;
  manifest_line_ = 0;
  std::error_code error;
  if (manifest_ != nullptr && fs::is_directory(path, error)) {
    std::fclose(manifest_);
    manifest_ = nullptr;
    errno = EISDIR;
  }
  return manifest_ != nullptr;
}

// Nothing at the end of the manifest. Empty lines do not count as proofs.
std::optional<proof_task> task_source::next_of_manifest() {
  std::string line;
  for (;;) {
    const line_status status = qv_read_line(manifest_, line);
    if (status == line_status::line) {
      ++manifest_line_;
      if (line.find_first_not_of(" \t\r\n") != std::string::npos) {
        return only_counts_ ? proof_task() : from_line(line);
      }
      continue;
    }
    const std::string reason = std::strerror(errno);
    if (manifest_ != stdin) {
      std::fclose(manifest_);
    }
    manifest_ = nullptr;
    return status == line_status::end ? std::nullopt
                                      : std::optional(bad_input(manifest_path_, manifest_line_ + 1, reason));
  }
}

proof_task task_source::from_line(const std::string& text) {
  const json_tree line = is_utf8_text(text) ? parse_json(text) : nullptr;
  if (std::string problem = problem_of(line.get()); !problem.empty()) {
    return bad_input(manifest_path_, manifest_line_, std::move(problem));
  }
  const cJSON* object = line.get();
  const std::string place = (manifest_path_ == "-" ? "line " : manifest_path_ + ":") + std::to_string(manifest_line_);
  proof_task task = new_task(json_member(object, "id") != nullptr ? json_text_of(object, "id") : place);
  if (json_member(object, "gap_text") != nullptr) {
    task.gap_text = json_text_of(object, "gap_text");
    task.gap = task.id + "/gap";
  } else {
    task.gap = beside(manifest_path_, json_text_of(object, "gap"));
  }
  if (json_member(object, "script_text") != nullptr) {
    task.script_text = json_text_of(object, "script_text");
    task.script = task.id + "/script";
  } else {
    task.script = beside(manifest_path_, json_text_of(object, "script"));
  }
  task.library = beside(manifest_path_, json_text_of(object, "library"));
  const cJSON* settings = json_member(object, "options");
  task.strict = json_member(settings, "strict") != nullptr ? json_true(settings, "strict") : task.strict;
  const auto number = [&](const char* key, auto& value) {
    if (json_member(settings, key) != nullptr) {
      value = static_cast<std::remove_reference_t<decltype(value)>>(json_number(settings, key));
    }
  };
  number("timeout", task.timeout);
  number("memory", task.memory);
  number("work", task.work);
  return task;
}

std::optional<std::size_t> count_tasks(const check_options& options) {
  // A pipe gives its lines once.
  const auto comes_once = [](const std::string& path) {
    std::error_code error;
    return path == "-" || fs::is_fifo(path, error);
  };
  if (std::any_of(options.proofs.begin(), options.proofs.end(), comes_once) ||
      std::any_of(options.manifests.begin(), options.manifests.end(), comes_once)) {
    return std::nullopt;
  }
  task_source source(options, true);
  std::size_t count = 0;
  while (source.next().has_value()) {
    ++count;
  }
  return count;
}

}  // namespace vetro

// The proofs that a command line names, one after the other.
#pragma once

#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "check/options.h"

namespace vetro {

// One proof to check. Texts stand in the place of files.
struct proof_task {
  std::size_t number = 0;  // in the order of the input, from 1
  std::string id;
  std::string gap;
  std::string script;
  std::optional<std::string> gap_text;
  std::optional<std::string> script_text;
  std::string library;  // empty: that of the run
  bool strict = false;
  unsigned timeout = 0;
  std::uint64_t memory = 0;
  std::uint64_t work = 0;

  // Where the input itself is at fault, what is wrong with it; then there is nothing to run.
  std::string problem;
  std::string problem_file;
  int problem_line = 0;
};

// The form in which tasks go to another process.
std::string task_to_json(const proof_task& task);
proof_task task_from_json(const std::string& text);

class task_source {
 public:
  // One that only counts does not look at what the lines of manifests say.
  explicit task_source(const check_options& options, bool only_counts = false);
  ~task_source();
  task_source(const task_source&) = delete;
  task_source& operator=(const task_source&) = delete;

  // The next proof; nothing at the end. The proofs of other shards are passed over and counted.
  std::optional<proof_task> next();

 private:
  std::optional<proof_task> next_of_all();
  std::optional<proof_task> next_of_manifest();
  std::optional<proof_task> next_argument();
  bool open_manifest(const std::string& path);
  void add_proof_folder(const std::filesystem::path& folder);
  void read_folder(const std::filesystem::path& folder);
  proof_task new_task(std::string id) const;
  proof_task bad_input(const std::string& file, int line, std::string problem) const;
  proof_task from_line(const std::string& line);

  const check_options& options_;
  bool only_counts_;
  std::deque<std::string> arguments_;
  std::deque<proof_task> found_;  // of a folder
  std::FILE* manifest_ = nullptr;
  std::string manifest_path_;
  int manifest_line_ = 0;
  std::size_t number_ = 0;
};

// How many proofs the command line names; nothing where that shows only when they come.
std::optional<std::size_t> count_tasks(const check_options& options);

}  // namespace vetro

// What the options are and what their help says.
#include "check/options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "check/outcome.h"

namespace vetro {
namespace {

// "I/N" with 1 <= I <= N.
bool read_shard(const std::string& text, check_options& options) {
  const char* end = text.data() + text.size();
  const auto [slash, bad] = std::from_chars(text.data(), end, options.shard);
  if (bad != std::errc() || slash == end || *slash != '/') {
    return false;
  }
  const auto [rest, bad_count] = std::from_chars(slash + 1, end, options.shards);
  return bad_count == std::errc() && rest == end && options.shard >= 1 && options.shard <= options.shards;
}

}  // namespace

read_options parse_check_options(int argc, char** argv) {
  check_options options;
  const long processors = sysconf(_SC_NPROCESSORS_ONLN);
  options.jobs = static_cast<unsigned>(std::clamp(processors, 1L, 1024L));

  CLI::App app("Checks proofs: one line for each, and for each failure where it is, why, and what may have been meant.",
               "vetro-check");
  app.set_version_flag("--version", "vetro-check " VETRO_VERSION);
  app.add_option("PROOF", options.proofs,
                 "A folder with gap.txt and script.txt, a folder of such folders, a gap and a script, or a manifest "
                 "FILE.jsonl; - reads a manifest from standard input")
      ->type_name("");
  app.add_option("--manifest", options.manifests, "Proofs as JSON Lines; - is standard input")->type_name("FILE");
  auto* library = app.add_option("--library", options.library, "The theorem library (default: the shipped one)");
  library->type_name("FILE");
  app.add_option("-c,--config", options.config, "The libraries of a configuration of vetro")
      ->type_name("FILE")
      ->excludes(library);
  app.add_option("-j,--jobs", options.jobs, "Proofs at the same time (default: one for each processor)")
      ->type_name("N")
      ->check(CLI::Range(1U, 1024U));
  app.add_option("--timeout", options.timeout, "Seconds that one proof may take")->type_name("S");
  app.add_option("--memory", options.memory, "MiB that one proof may take")->type_name("M");
  app.add_option("--work", options.work, "Counted work that one proof may do; the count is the same on every machine")
      ->type_name("N");
  app.add_flag("--strict", options.strict,
               "Count a proof only without admits, unproved premises of rules, replaced goals, and cancelled "
               "denominators that are not known to be non-zero");
  app.add_flag("--explain", options.explain, "Show each step: what it used, what it changed, which solver closed it");
  app.add_flag("-q,--quiet", options.quiet, "Show only what is not verified");
  app.add_flag("--json", options.json, "One JSON object a line for each event, in place of the text");
  app.add_flag("--times", options.times, "Put the time that each proof and step took into the events");
  app.add_option("--junit", options.junit, "Write a JUnit report")->type_name("FILE");
  app.add_option("--sarif", options.sarif, "Write a SARIF report")->type_name("FILE");
  app.add_option("--html", options.html, "Write a page for each proof, and an index of them, into a folder")
      ->type_name("FOLDER");
  auto* logs = app.add_option("--logs", options.logs,
                              "Write what vetro writes on each proof, the two logs and the result document, into a "
                              "folder");
  logs->type_name("FOLDER");
  app.add_option("--resume", options.resume,
                 "Keep the events in FILE; a run that was interrupted goes on behind its last finished proof")
      ->type_name("FILE");
  std::string shard;
  app.add_option("--shard", shard, "Only the proofs of part I of N")->type_name("I/N");
  app.add_flag("--merge", options.merge, "The arguments are files of events of all parts; report them as one run")
      ->excludes(logs);
  app.footer(
      "Exit status: 0 all verified, 1 some not, 2 verified with admits or not strictly, 3 input error, 4 a limit was "
      "met, 5 internal fault.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return {std::nullopt, status == 0 ? 0 : exit_input_error};
  }
  if (!shard.empty() && !read_shard(shard, options)) {
    std::fprintf(stderr, "vetro-check: --shard takes I/N, such as 2/8\n");
    return {std::nullopt, exit_input_error};
  }
  if (options.proofs.empty() && options.manifests.empty()) {
    std::fprintf(stderr, "vetro-check: no proof is named; vetro-check --help says how\n");
    return {std::nullopt, exit_input_error};
  }
  return {options, 0};
}

}  // namespace vetro

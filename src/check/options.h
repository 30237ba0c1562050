// The command line of vetro-check.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vetro {

struct check_options {
  std::vector<std::string> proofs;
  std::vector<std::string> manifests;
  std::string library;  // empty: the shipped one
  std::string config;
  unsigned jobs = 1;
  unsigned timeout = 0;      // seconds; 0: none, here and below
  std::uint64_t memory = 0;  // MiB
  std::uint64_t work = 0;    // calls of the term factory
  bool strict = false;
  bool explain = false;
  bool quiet = false;
  bool json = false;
  bool times = false;
  std::string junit;
  std::string sarif;
  std::string html;
  std::string logs;
  std::string resume;
  bool merge = false;
  unsigned shard = 0;  // of shards, from 1; 0: all
  unsigned shards = 0;
};

// The options, or the exit status of a run that ends here (help, version, bad usage), its text printed.
struct read_options {
  std::optional<check_options> options;
  int status = 0;
};
read_options parse_check_options(int argc, char** argv);

}  // namespace vetro

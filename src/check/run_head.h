// The first event of a run: what its results depend on beside the proofs.
#pragma once

#include <string>

#include "check/options.h"
#include "lib/thm_lib.h"

namespace vetro {

// The event as a line.
std::string run_head(const check_options& options, const std::string& library_path, const thm_lib& library);

// The same for the run that such a run is a part of.
std::string head_of_whole(const std::string& head);

// The part that a head is of: 1 of 1 where a run has no parts.
struct run_part {
  std::uint64_t number = 1;
  std::uint64_t of = 1;
};
run_part part_of_head(const std::string& head);

// What tells two heads apart that are not those of one run's parts, as "KEY is X in the one, Y in the other"; nothing
// where nothing does. The library may lie in different places, if it holds the same.
std::string difference_of_heads(const std::string& one, const std::string& other);

}  // namespace vetro

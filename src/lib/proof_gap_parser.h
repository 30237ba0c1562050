// Reads a proof gap file.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "lib/proof_gap.h"

namespace vetro {

// Nothing on failure, with a message on standard error for each bad line; all bad lines are reported.
std::optional<proof_gap_full> parse_proof_gap(const std::string& filename);

// The same for a file that is open.
std::optional<proof_gap_full> read_proof_gap(std::FILE* file);

// Where the formula of an assumption line begins; npos when there are no digits or nothing follows them.
std::size_t parse_assumption_formula_start(std::string_view line);

}  // namespace vetro

// The result document: a JSON file with the outcome, every top-level step, the branches of a split and the admitted
// propositions. It is written once, after the script has run.
#pragma once

#include <string>

#include "run/proof_run.h"

namespace vetro {

// Removes the document of an earlier run, where there is one. Only a regular file is removed.
void discard_structured_result_file(const std::string& path);

// False, with a message on standard error, when the file cannot be opened or written or there is no memory
// for the document.
bool write_structured_result_file(const std::string& path, const run_outcome& outcome);

}  // namespace vetro

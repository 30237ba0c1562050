// A whole run of vetro-check behind its command line.
#pragma once

#include "check/options.h"

namespace vetro {

// The exit status.
int run_check(const check_options& options);

}  // namespace vetro

// Warnings about formulas that parse, and are read otherwise than they look.
#pragma once

#include <string_view>

#include "diagnostics/diagnostics.h"

namespace vetro {

// Looks at the text of a formula for implications in a row without parentheses, powers of a function's name, names that
// are nearly or usually those of something known, arrows between propositions, and numbers or sums that are applied.
void warn_of_readings(diagnostics& d, std::string_view formula);

}  // namespace vetro

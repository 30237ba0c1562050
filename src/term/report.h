// The channels of the process: diagnostics on standard error, progress lines on standard output.
#pragma once

#include <string_view>

namespace vetro {

// Writes one formatted line to standard error. The format is one of the documented "Error: ..." texts.
[[gnu::format(printf, 1, 2)]] void report_error(const char* format, ...);

// The same with a format that the caller has checked against its table of messages.
void report_text(std::string_view text);

// Writes text to standard output.
void print_progress(std::string_view text);

// Whether anybody reads the progress lines. Where nobody does, print_progress writes nothing, and a long text need not
// be made.
bool progress_is_shown();
void show_progress(bool shown);

}  // namespace vetro

// Diagnostics and progress lines go through stdio, which buffers standard output and leaves standard error direct.
#include "term/report.h"

#include <cstdarg>
#include <cstdio>

namespace vetro {

void report_error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

void report_text(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

namespace {
bool progress_shown = true;
}

void print_progress(std::string_view text) {
  if (progress_shown) {
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
}

bool progress_is_shown() { return progress_shown; }

void show_progress(bool shown) { progress_shown = shown; }

}  // namespace vetro

// Writes are buffered; what a full disk swallows shows at the latest when the stream is closed.
#include "lib/log_stream.h"

#include <cstdarg>

namespace vetro {
namespace {

std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  if (length > 0) {
    std::vsnprintf(text.data(), text.size() + 1, format, again);
  }
  va_end(again);
  return text;
}

}  // namespace

log_stream::~log_stream() { close(); }

bool log_stream::open(const std::string& path) {
  close();
  failed_ = false;
  file_ = std::fopen(path.c_str(), "w");
  return file_ != nullptr;
}

void log_stream::write(std::string_view text) {
  if (memory_ != nullptr) {
    memory_->append(text);
  } else if (file_ != nullptr && std::fwrite(text.data(), 1, text.size(), file_) != text.size()) {
    failed_ = true;
  }
}

void log_stream::print(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  write(formatted(format, arguments));
  va_end(arguments);
}

void log_stream::flush() {
  if (file_ != nullptr && std::fflush(file_) != 0) {
    failed_ = true;
  }
}

bool log_stream::close() {
  flush();
  if (file_ != nullptr && std::fclose(file_) != 0) {
    failed_ = true;
  }
  file_ = nullptr;
  return !failed_;
}

std::string format_text(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = formatted(format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace vetro

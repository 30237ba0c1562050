// An output of the run: the error log, the execute log, or a text in memory for tests.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace vetro {

class log_stream {
 public:
  log_stream() = default;
  explicit log_stream(std::string* memory) : memory_(memory) {}
  ~log_stream();
  log_stream(const log_stream&) = delete;
  log_stream& operator=(const log_stream&) = delete;

  bool open(const std::string& path);  // empties the file; false when it cannot be opened
  void write(std::string_view text);
  [[gnu::format(printf, 2, 3)]] void print(const char* format, ...);
  void flush();
  // Flushes and closes. False when anything written since open was lost (a full disk).
  bool close();

 private:
  std::FILE* file_ = nullptr;
  std::string* memory_ = nullptr;
  bool failed_ = false;
};

// printf into a string.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

}  // namespace vetro

// A file with given bytes that is gone at the end of the test.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vetro {

class temporary_file {
 public:
  explicit temporary_file(std::string_view bytes) {
    const char* folder = std::getenv("TMPDIR");
    path_ = std::string(folder == nullptr ? "/tmp" : folder) + "/vetro_test_XXXXXX";
    const int descriptor = mkstemp(path_.data());
    std::FILE* file = fdopen(descriptor, "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
  }
  ~temporary_file() { unlink(path_.c_str()); }
  temporary_file(const temporary_file&) = delete;
  temporary_file& operator=(const temporary_file&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace vetro

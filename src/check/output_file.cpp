#include "check/output_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/file_identity.h"
#include "term/report.h"

namespace vetro {

output_file::~output_file() {
  if (file_ != nullptr) {
    std::fclose(file_);
    if (!beside_.empty()) {
      std::remove(beside_.c_str());
    }
  }
}

bool output_file::open(const std::string& path) {
  path_ = path;
  std::FILE* existing = std::fopen(path.c_str(), "r");
  const bool device = existing != nullptr && !is_regular_file(path);
  if (existing != nullptr) {
    std::fclose(existing);
  }
  beside_ = device ? "" : path + ".part";
  file_ = std::fopen(device ? path.c_str() : beside_.c_str(), "w");
  if (file_ == nullptr) {
    report_error("vetro-check: %s: %s\n", path.c_str(), std::strerror(errno));
  }
  return file_ != nullptr;
}

void output_file::write(std::string_view text) {
  if (file_ != nullptr && !text.empty()) {
    std::fwrite(text.data(), 1, text.size(), file_);
  }
}

void output_file::replace_beginning(std::string_view text) {
  if (file_ != nullptr && std::fseek(file_, 0, SEEK_SET) == 0) {
    write(text);
  }
}

bool output_file::finish() {
  if (file_ == nullptr) {
    return true;
  }
  errno = 0;
  bool written = std::ferror(file_) == 0;
  written = std::fclose(file_) == 0 && written;
  file_ = nullptr;
  if (!beside_.empty()) {
    written = written && std::rename(beside_.c_str(), path_.c_str()) == 0;
    if (!written) {
      std::remove(beside_.c_str());
    }
  }
  if (!written) {
    report_error("vetro-check: %s: %s\n", path_.c_str(),
                 errno == 0 ? "not everything was written" : std::strerror(errno));
  }
  return written;
}

bool make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    return true;
  }
  report_error("vetro-check: the folder %s cannot be made: %s\n", path.c_str(), error.message().c_str());
  return false;
}

}  // namespace vetro

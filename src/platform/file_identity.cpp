// Existing files are compared by device and inode, others by resolved folder and name.
#include "platform/file_identity.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace vetro {
namespace {

namespace fs = std::filesystem;

std::string place_of(const std::string& path) {
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(fs::absolute(path, error), error);
  return error ? path : resolved.string();
}

}  // namespace

file_identity::file_identity(const std::string& path) {
  struct stat about {};
  if (stat(path.c_str(), &about) == 0) {
    kind_ = S_ISREG(about.st_mode) ? kind::regular_file : kind::other;
    device_ = about.st_dev;
    number_ = about.st_ino;
  } else if (!path.empty()) {
    place_ = place_of(path);
  }
}

bool file_identity::same_file(const file_identity& other) const {
  if (kind_ != other.kind_ || kind_ == kind::other) {
    return false;
  }
  return kind_ == kind::none ? !place_.empty() && place_ == other.place_
                             : device_ == other.device_ && number_ == other.number_;
}

bool is_regular_file(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && !error;
}

}  // namespace vetro

// Existing files are compared by device and inode, others by resolved folder and name.
#include "platform/file_identity.h"

#include <filesystem>
#include <system_error>

namespace vetro {
namespace {

namespace fs = std::filesystem;

fs::path place(const fs::path& path) {
  std::error_code error;
  fs::path resolved = fs::weakly_canonical(fs::absolute(path, error), error);
  return error ? path : resolved;
}

}  // namespace

bool is_regular_file(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && !error;
}

bool same_file(const std::string& a, const std::string& b) {
  std::error_code error;
  const bool a_exists = fs::exists(a, error);
  const bool b_exists = fs::exists(b, error);
  if (a_exists && b_exists) {
    return is_regular_file(a) && fs::equivalent(a, b, error) && !error;
  }
  return !a_exists && !b_exists && !a.empty() && place(a) == place(b);
}

}  // namespace vetro

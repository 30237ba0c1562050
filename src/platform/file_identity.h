// Whether two paths name one file, also where it does not exist yet.
#pragma once

#include <sys/types.h>

#include <string>

namespace vetro {

// What a path names, looked up once.
class file_identity {
 public:
  explicit file_identity(const std::string& path);

  // True when both paths name the same regular file, or would when it is created: links are followed, and of a file
  // that does not exist its folder and name count. Devices and pipes are never the same; to write both logs to
  // /dev/null does no harm.
  bool same_file(const file_identity& other) const;

 private:
  enum class kind : unsigned char { none, regular_file, other };
  kind kind_ = kind::none;
  dev_t device_ = 0;
  ino_t number_ = 0;
  std::string place_;  // where a file would be that does not exist; empty for an empty path
};

// True when the path names a regular file.
bool is_regular_file(const std::string& path);

}  // namespace vetro

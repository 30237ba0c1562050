// Whether two paths name one file, also where it does not exist yet.
#pragma once

#include <string>

namespace vetro {

// True when both paths name the same regular file, or would when it is created: links are followed, and of a file that
// does not exist its folder and name count. Devices and pipes are never the same; to write both logs to /dev/null does
// no harm.
bool same_file(const std::string& a, const std::string& b);

// True when the path names a regular file.
bool is_regular_file(const std::string& path);

}  // namespace vetro

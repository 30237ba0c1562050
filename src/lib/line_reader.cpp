#include "lib/line_reader.h"

#include <array>
#include <cerrno>
#include <new>

namespace vetro {

line_status qv_read_line(std::FILE* file, std::string& line) {
  line.clear();
  std::array<char, 512> block;  // NOLINT: filled before it is read
  std::size_t used = 0;
  try {
    for (int c = getc_unlocked(file); c != EOF; c = getc_unlocked(file)) {
      block[used++] = static_cast<char>(c);
      if (c == '\n') {
        line.append(block.data(), used);
        return line_status::line;
      }
      if (used == block.size()) {
        line.append(block.data(), used);
        used = 0;
      }
    }
    line.append(block.data(), used);
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return line_status::failed;
  }
  if (std::ferror(file) != 0) {
    return line_status::failed;
  }
  return line.empty() ? line_status::end : line_status::line;
}

std::string_view without_line_end(std::string_view line) {
  if (line.ends_with('\n')) {
    line.remove_suffix(1);
  }
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line;
}

}  // namespace vetro

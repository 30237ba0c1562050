#include "platform/text_file.h"

#include <sys/stat.h>

#include <cerrno>

namespace vetro {

text_file open_text_file(const char* path) {
  text_file file(std::fopen(path, "r"));
  struct stat about {};
  if (file != nullptr && fstat(fileno(file.get()), &about) == 0 && S_ISDIR(about.st_mode)) {
    file.reset();
    errno = EISDIR;
  }
  return file;
}

int next_character(std::FILE* file) {
  const int c = getc_unlocked(file);
  if (c != '\r') {
    return c;
  }
  const int next = getc_unlocked(file);
  if (next == '\n' || next == EOF) {
    return next;
  }
  ungetc(next, file);
  return c;
}

}  // namespace vetro

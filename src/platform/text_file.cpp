// Regular files are read in place. What a pipe or a device gives is read ahead, so that it is known to end, and so that
// a reader can go through it twice.
#include "platform/text_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <new>
#include <utility>

namespace vetro {
namespace {

text_file failed(int reason) {
  errno = reason;
  return nullptr;
}

// All that the file gives, behind an owned stream.
text_file read_ahead(std::FILE* file) {
  try {
    auto content = std::make_unique<std::string>();
    constexpr std::size_t block = 64 * 1024;
    for (std::size_t got = block; got == block && content->size() <= input_file_bytes;) {
      const std::size_t old = content->size();
      content->resize(old + block);
      got = std::fread(content->data() + old, 1, block, file);
      content->resize(old + got);
    }
    if (std::ferror(file) != 0) {
      return nullptr;
    }
    if (content->size() > input_file_bytes) {
      return failed(EFBIG);
    }
    // A stream over no bytes cannot be opened.
    std::FILE* stream =
        content->empty() ? std::fopen("/dev/null", "r") : fmemopen(content->data(), content->size(), "r");
    return {stream, file_closer{std::move(content)}};
  } catch (const std::bad_alloc&) {
    return failed(ENOMEM);
  }
}

void skip_byte_order_mark(std::FILE* file) {
  constexpr unsigned char mark[] = {0xEF, 0xBB, 0xBF};
  unsigned char start[sizeof mark] = {};
  const bool marked = std::fread(start, 1, sizeof start, file) == sizeof start &&
                      std::equal(std::begin(start), std::end(start), std::begin(mark));
  if (!marked) {
    std::rewind(file);
  }
}

}  // namespace

text_file open_text_file(const char* path, directories policy) {
  text_file file(std::fopen(path, "r"));
  struct stat about {};
  if (file == nullptr || fstat(fileno(file.get()), &about) != 0) {
    return nullptr;
  }
  if (S_ISDIR(about.st_mode)) {
    return policy == directories::refused ? failed(EISDIR) : std::move(file);
  }
  if (!S_ISREG(about.st_mode)) {
    file = read_ahead(file.get());
  } else if (static_cast<std::size_t>(about.st_size) > input_file_bytes) {
    return failed(EFBIG);
  }
  if (file != nullptr) {
    skip_byte_order_mark(file.get());
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

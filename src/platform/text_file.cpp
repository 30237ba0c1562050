// Regular files are read in place. What a pipe or a device gives is read ahead, so that it is known to end, and so that
// a reader can go through it twice.
#include "platform/text_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string_view>
#include <utility>

namespace vetro {
namespace {

text_file failed(int reason) {
  errno = reason;
  return nullptr;
}

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// Looks at the file itself, so that a stream without a mark stays at its beginning with nothing read.
void skip_byte_order_mark(std::FILE* regular) {
  char start[byte_order_mark.size()] = {};
  const ssize_t got = pread(fileno(regular), start, sizeof start, 0);
  if (got > 0 && byte_order_mark == std::string_view(start, static_cast<std::size_t>(got))) {
    std::fseek(regular, static_cast<long>(sizeof start), SEEK_SET);
  }
}

// What the file gives, to its end or to somewhat more than the limit. False, with errno set, when it cannot be read.
// The blocks grow with the text, so that small files touch little memory.
bool append_rest(std::FILE* file, std::string& text) {
  try {
    constexpr std::size_t smallest = 4096;
    constexpr std::size_t largest = std::size_t{1} << 20U;
    for (bool more = true; more && text.size() <= input_file_bytes;) {
      const std::size_t old = text.size();
      const std::size_t block = std::clamp(old, smallest, largest);
      text.resize(old + block);
      const std::size_t got = std::fread(text.data() + old, 1, block, file);
      text.resize(old + got);
      more = got == block;
    }
    return std::ferror(file) == 0;
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return false;
  }
}

// All that the file gives, behind an owned stream.
text_file read_ahead(std::FILE* file) {
  try {
    auto content = std::make_unique<std::string>();
    if (!append_rest(file, *content)) {
      return nullptr;
    }
    if (content->size() > input_file_bytes) {
      return failed(EFBIG);
    }
    if (content->starts_with(byte_order_mark)) {
      content->erase(0, byte_order_mark.size());
    }
    // A stream over no bytes cannot be opened.
    std::FILE* stream =
        content->empty() ? std::fopen("/dev/null", "r") : fmemopen(content->data(), content->size(), "r");
    return {stream, file_closer{std::move(content)}};
  } catch (const std::bad_alloc&) {
    return failed(ENOMEM);
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
    return read_ahead(file.get());
  }
  if (static_cast<std::size_t>(about.st_size) > input_file_bytes) {
    return failed(EFBIG);
  }
  skip_byte_order_mark(file.get());
  return file;
}

std::optional<std::string> read_rest(std::FILE* file) {
  std::optional<std::string> text(std::in_place);
  if (!append_rest(file, *text)) {
    text.reset();
  }
  return text;
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

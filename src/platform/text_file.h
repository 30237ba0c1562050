// Opening the files that a run names.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace vetro {

// The largest input file that is read, in bytes: a hundred times the largest real library, and little enough that a
// device without an end is given up within a second.
inline constexpr std::size_t input_file_bytes = std::size_t{256} << 20U;

struct file_closer {
  std::unique_ptr<std::string> content;  // of a file that is no regular one, read ahead
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using text_file = std::unique_ptr<std::FILE, file_closer>;

// Opens the file for reading, behind a byte order mark if it begins with one. Null, with errno set, when it cannot be
// opened, and when it is longer than input_file_bytes. The platform opens a directory and fails at the first read; it
// is refused already here, or left to fail there.
enum class directories : unsigned char { refused, fail_at_reading };
text_file open_text_file(const char* path, directories policy = directories::refused);

// The rest of the file, byte for byte. Nothing, with errno set, at a read error or where memory runs out.
std::optional<std::string> read_rest(std::FILE* file);

// The next character; EOF at the end of the file or at a read error (ferror tells which). A carriage return directly
// before a line feed or the end of the file is part of the line end and is skipped, so that files with either line end
// read alike.
int next_character(std::FILE* file);

}  // namespace vetro

// Opening the files that a run names.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace vetro {

struct file_closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using text_file = std::unique_ptr<std::FILE, file_closer>;

// Null, with errno set, when the file cannot be opened for reading. A directory counts as such: the platform opens it
// and fails only at the first read.
text_file open_text_file(const char* path);

// The next character; EOF at the end of the file or at a read error (ferror tells which). A carriage return directly
// before a line feed or the end of the file is part of the line end and is skipped, so that files with either line end
// read alike.
int next_character(std::FILE* file);

}  // namespace vetro

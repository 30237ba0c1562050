// Reads text files line by line, lines of any length, NUL bytes included.
#pragma once

#include <cstdio>
#include <string>

#include "config/text_file.h"

namespace vetro {

enum class line_status { line, end, failed };

// One line with its line feed (absent only at the end of the file). A carriage return before the line's end is left
// out. failed on a read error, and when memory runs out.
line_status qv_read_line(std::FILE* file, std::string& line);

}  // namespace vetro

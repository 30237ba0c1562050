// Reads text files line by line, lines of any length, NUL bytes included.
#pragma once

#include <cstdio>
#include <string>

namespace vetro {

enum class line_status { line, end, failed };

// One line with its line feed (absent only at the end of the file). failed on a read error (a directory, say).
line_status qv_read_line(std::FILE* file, std::string& line);

}  // namespace vetro

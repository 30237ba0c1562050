// Reads text files line by line, lines of any length, NUL bytes included.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace vetro {

enum class line_status { line, end, failed };

// One line with its line feed (absent only at the end of the file). failed on a read error, and when memory runs out.
line_status qv_read_line(std::FILE* file, std::string& line);

// The line without its line feed and a carriage return before that.
std::string_view without_line_end(std::string_view line);

}  // namespace vetro

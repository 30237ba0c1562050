// A file that is written to the end or reported as lost. It is written beside its place and moved there at the end, so
// that what stood there before stays until then; devices are written in place.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace vetro {

class output_file {
 public:
  output_file() = default;
  ~output_file();
  output_file(const output_file&) = delete;
  output_file& operator=(const output_file&) = delete;

  // False, with a message on standard error, when the file cannot be opened.
  bool open(const std::string& path);
  bool is_open() const { return file_ != nullptr; }
  void write(std::string_view text);
  // Where the file can go back, puts a text of the same length in the place of its first bytes.
  void replace_beginning(std::string_view text);
  // False, with a message, when something was lost.
  bool finish();

 private:
  std::string path_;
  std::string beside_;
  std::FILE* file_ = nullptr;
};

// False, with a message, where there is no such folder and it cannot be made.
bool make_folder(const std::string& path);

}  // namespace vetro

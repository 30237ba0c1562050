// Places: an address inside the buffer that is being read tells line and column.
#include "diagnostics/diagnostics.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <utility>

namespace vetro {

void diagnostics::add(diagnostic d) {
  if (const step_place* step = open()) {
    if (d.step.empty()) {
      d.step = step->id;
    }
    if (d.place.line == 0) {
      d.place = {source_file::script, step->line, 0, 0};
    }
  }
  records.push_back(std::move(d));
}

void diagnostics::reads_line(source_file file, int line, std::string_view text) {
  file_ = file;
  text_ = text;
  pieces_.assign(1, {0, line, 1});
}

void diagnostics::reads_pieces(source_file file, std::string_view buffer, const std::vector<text_piece>& pieces) {
  file_ = file;
  text_ = buffer;
  pieces_ = pieces;
}

source_span diagnostics::place_of(std::string_view part) const {
  const std::less<const char*> before;
  const char* end = text_.data() + text_.size();
  if (text_.data() == nullptr || before(part.data(), text_.data()) || before(end, part.data())) {
    return {};
  }
  const auto offset = static_cast<std::size_t>(part.data() - text_.data());
  const auto behind =
      std::find_if(pieces_.begin(), pieces_.end(), [&](const text_piece& p) { return p.offset > offset; });
  if (behind == pieces_.begin()) {
    return {};
  }
  const text_piece& piece = *(behind - 1);
  return {file_, piece.line, piece.column + static_cast<int>(offset - piece.offset), static_cast<int>(part.size())};
}

source_span diagnostics::place_in_line(text_span span) const {
  return span.column == 0 || pieces_.empty() ? source_span{}
                                             : source_span{file_, pieces_.front().line, span.column, span.length};
}

void diagnose_unreadable(source_file file) {
  if (collecting_diagnostics == nullptr) {
    return;
  }
  const int reason = errno;
  collecting_diagnostics->add(
      {.code = diagnostic_code::file_unreadable, .message = std::strerror(reason), .place = {file, 0, 0, 0}});
  errno = reason;
}

}  // namespace vetro

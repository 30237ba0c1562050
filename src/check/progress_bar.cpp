// The line depends on the counts alone, never on the time.
#include "check/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vetro {
namespace {

constexpr auto before_first = std::chrono::milliseconds(500);
constexpr auto between = std::chrono::milliseconds(100);
constexpr std::string_view take_back = "\r\x1b[K";

bool is_set(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// Of the terminal on standard error; 0 for none, and for one that knows no way back.
std::size_t terminal_columns() {
  constexpr std::size_t usual = 80;
  if (isatty(STDERR_FILENO) == 0 || !is_set("TERM") || std::string_view(std::getenv("TERM")) == "dumb") {
    return 0;
  }
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

void put(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

std::string progress_line(std::size_t done, std::size_t bad, std::optional<std::size_t> all, std::size_t columns,
                          bool colour) {
  constexpr std::size_t widest = 40;
  constexpr std::size_t narrowest = 8;
  std::string said = std::to_string(done) + (all ? " of " + std::to_string(*all) : "") + " checked";
  if (all) {
    said.insert(0, std::to_string(*all).size() - std::min(std::to_string(*all).size(), std::to_string(done).size()),
                ' ');
  }
  said += bad == 0 ? "" : ", " + std::to_string(bad) + " not verified";
  const std::size_t room = columns > said.size() + 4 ? columns - said.size() - 4 : 0;
  if (!all || room < narrowest) {
    return said.substr(0, columns == 0 ? 0 : columns - 1);
  }
  const std::size_t width = std::min(room, widest);
  const std::size_t full = *all == 0 ? width : std::min(width, width * done / *all);
  std::string line = "[";
  line += colour ? "\x1b[32m" : "";
  line += std::string(full, '#');
  line += colour ? "\x1b[0m" : "";
  return line + std::string(width - full, '.') + "] " + said;
}

progress_bar::progress_bar()
    : columns_(terminal_columns()), colour_(!is_set("NO_COLOR")), next_(clock::now() + before_first) {}

void progress_bar::update(std::size_t done, std::size_t bad) {
  if (!may_show() || clock::now() < next_) {
    return;
  }
  const bool stands = !shown_.empty();
  std::string line = progress_line(done, bad, all_, columns_, colour_);
  if (!stands || line != shown_) {
    put((stands ? std::string(take_back) : std::string()) + line);
    shown_ = std::move(line);
  }
  next_ = clock::now() + between;
}

void progress_bar::hide() {
  if (!shown_.empty()) {
    put(take_back);
    shown_.clear();
    next_ = clock::now();
  }
}

}  // namespace vetro

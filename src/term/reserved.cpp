// A name in the formula language holds no line feed, not even between backquotes; these begin with one.
#include "term/reserved.h"

#include <charconv>

namespace vetro {

term_ptr reserved_var(reserved_kind kind, std::uint32_t number) {
  char name[16] = {'\n', static_cast<char>('a' + static_cast<int>(kind))};
  char* const end = std::to_chars(name + 2, name + sizeof name, number).ptr;
  return mk_var({name, static_cast<std::size_t>(end - name)});
}

}  // namespace vetro

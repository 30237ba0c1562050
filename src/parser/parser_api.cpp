// The entry of the formula reader.
#include "parser/parser_api.h"

#include <limits>
#include <new>

#include "parser/parse_context.h"
#include "term/report.h"

namespace vetro {
namespace {

// The scanner counts bytes in an int and copies the text with two bytes behind it.
constexpr std::size_t longest_source = std::numeric_limits<int>::max() - 2;

int parse_checked(parse_context& context) {
  if (context.source().size() <= longest_source) {
    try {
      return parse_source(context);
    } catch (const std::bad_alloc&) {
      context.out_of_memory();
      return 2;
    }
  }
  context.syntax_error("memory exhausted");
  return 2;
}

}  // namespace

term_ptr parse_term_from_str(std::string_view src, int verbose_debug, int debug) {
  parse_context context(src);
  const int code = parse_checked(context);
  if (code != 0) {
    report_error("Error: Parsing failed with code %d.\n", code);
    return nullptr;
  }
  if (verbose_debug != 0 || debug != 0) {
    print_progress("Parsing succeeded.\n");
  }
  return context.result;
}

term_ptr read_pattern(std::string_view text) { return parse_term_from_str(text, 0, 0); }

}  // namespace vetro

// The order of the preparation steps.
#include "lib/semantic_term.h"

#include "lib/reading_warnings.h"
#include "parser/parser_api.h"

namespace vetro {

term_ptr parse_semantic_term_from_str(std::string_view src, int verbose_debug, int debug) {
  const term_ptr raw = parse_term_from_str(src, verbose_debug, debug);
  // A library is read for every proof, and its writer is not who is listening.
  if (collecting_diagnostics != nullptr && raw != nullptr && !collecting_diagnostics->reads(source_file::library)) {
    warn_of_readings(*collecting_diagnostics, src);
  }
  return normalize_parsed_term(raw);
}

term_ptr normalize_parsed_term(term_ptr raw) { return copy_term_with_binders(parsed_static_analyze_term(raw)); }

term_ptr copy_term_with_binders(term_ptr t) { return catch_binder_term(normalize_setdesc_for_catch_binder(t), {}); }

}  // namespace vetro

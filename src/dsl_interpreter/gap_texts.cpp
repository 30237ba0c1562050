// Two levels of reuse: the text of each formula, and the whole text while the gap stays what it was (the gap after one
// step is the gap before the next).
#include "dsl_interpreter/gap_texts.h"

#include "term/print/pretty.h"

namespace vetro {

bool same_gap(const proof_gap_full& a, const proof_gap_full& b) {
  return a.goal == b.goal && a.finished == b.finished && a.assum == b.assum && a.meth_list.empty() &&
         b.meth_list.empty();
}

shared_text gap_texts::render(form& texts, const proof_gap_full& gap, bool internal) {
  if (texts.last_text != nullptr && same_gap(texts.last_gap, gap)) {
    return texts.last_text;
  }
  std::string text;
  print_proof_gap_full_with(text, gap, internal, [&](std::string& out, term_ptr t) {
    std::string& known = texts.terms[t];
    if (known.empty()) {
      internal ? print_term_internal(known, t) : print_term(known, t);
    }
    out += known;
  });
  texts.last_gap = gap;
  texts.last_text = std::make_shared<const std::string>(std::move(text));
  return texts.last_text;
}

}  // namespace vetro

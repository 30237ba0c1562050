// Reading a text in the sense of a formula that it quotes.
#pragma once

#include "term/ast.h"

namespace vetro {

// written with the record of what its notations bind taken over from stored wherever the two are written alike and
// their readings differ: after c became d, { d * x | x > 0, x < d } ranges over x alone, and so does a text that quotes
// it. The two may differ in the names of quantifiers and functions. written itself where nothing is to be taken over or
// the two are not written alike.
term_ptr with_record_of(term_ptr written, term_ptr stored);

}  // namespace vetro

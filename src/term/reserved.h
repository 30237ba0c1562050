// Names for the program's own use that no text of a user can hold, so that they are fresh by construction.
//
// Drawing one touches no counter that shows in the output. A term with such a name is for work inside; before it is
// printed or stored, the name is replaced.
#pragma once

#include <cstdint>

#include "term/ast.h"

namespace vetro {

// What a name stands for. Two engines that may work on one term at the same time take different kinds.
enum class reserved_kind : std::uint8_t {
  bound,        // a variable that two binding terms have in common while they are compared
  placeholder,  // a part that is to be replaced, in simultaneous substitution
  parameter,    // a parameter of a function that is being opened
  point,        // a point at which something is examined
  unknown,      // a value that is to be found
  family,       // the names that descriptions of sets of functions bind
  hole,         // a free name of a term that is read as a function of its free names
};

// The variable of that kind and number: the same one for the same arguments.
term_ptr reserved_var(reserved_kind kind, std::uint32_t number);

}  // namespace vetro

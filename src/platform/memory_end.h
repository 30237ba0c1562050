// The end of memory for allocations that do not go through operator new.
#pragma once

#include <new>

namespace vetro {

// Does what operator new does when it gets no memory: calls the handler of the program, if there is one, and throws.
[[noreturn]] inline void out_of_memory() {
  if (const std::new_handler handler = std::get_new_handler(); handler != nullptr) {
    handler();
  }
  throw std::bad_alloc();
}

}  // namespace vetro

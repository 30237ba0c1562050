// The stack that the program runs on.
#pragma once

#include <functional>

namespace vetro {

// Runs the function on a stack large enough for the deepest input that the reader accepts, and gives its result.
//
// The stack is 16 GiB of address space, of which only what is used takes memory. Where the process may not have so much
// it is a quarter of what it may have, so that three quarters are left for everything else. A recursion that does not
// fit ends with a message on standard error that names the size, and the result is 1; the function is then left where
// it was, with its open files, which are written out when the process ends.
int run_on_large_stack(const std::function<int()>& function);

}  // namespace vetro

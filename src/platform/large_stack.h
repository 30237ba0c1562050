// The stack that the program runs on.
#pragma once

#include <functional>

namespace vetro {

// Runs the function on a stack large enough for the deepest input that the reader accepts, and gives its result.
int run_on_large_stack(const std::function<int()>& function);

}  // namespace vetro

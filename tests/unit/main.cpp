// Runs the tests on the stack that the program runs on.
#include <gtest/gtest.h>

#include "platform/large_stack.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return vetro::run_on_large_stack([] { return RUN_ALL_TESTS(); });
}

// Every benchmark runs on the large stack of the program, so that deep terms need no other guard here than there.
#include <benchmark/benchmark.h>

#include "platform/large_stack.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  return vetro::run_on_large_stack([] {
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
  });
}

// A thread whose stack is a reservation of address space.
#include "platform/large_stack.h"

#include <pthread.h>
#include <sys/mman.h>

namespace vetro {
namespace {

struct stack_call {
  const std::function<int()>* function;
  int result;
};

void* call_on_stack(void* argument) {
  auto* call = static_cast<stack_call*>(argument);
  call->result = (*call->function)();
  return nullptr;
}

}  // namespace

int run_on_large_stack(const std::function<int()>& function) {
  // Address space only: pages that no recursion reaches are never touched. Where less is allowed, take what there is.
  constexpr std::size_t most = std::size_t{16} << 30U;
  constexpr std::size_t least = std::size_t{8} << 20U;
  for (std::size_t bytes = most; bytes >= least; bytes /= 2) {
    void* stack = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (stack == MAP_FAILED) {
      continue;
    }
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack, bytes);
    stack_call call{&function, 1};
    pthread_t thread{};
    const int failed = pthread_create(&thread, &attributes, call_on_stack, &call);
    pthread_attr_destroy(&attributes);
    if (failed == 0) {
      pthread_join(thread, nullptr);
      munmap(stack, bytes);
      return call.result;
    }
    munmap(stack, bytes);
  }
  return function();
}

}  // namespace vetro

// A thread whose stack is a reservation of address space, with an inaccessible page below it. Touching that page ends
// the call: the handler runs on a stack of its own and goes back to the beginning of the thread.
#include "platform/large_stack.h"

#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace vetro {
namespace {

constexpr std::size_t most = std::size_t{16} << 30U;
constexpr std::size_t least = std::size_t{8} << 20U;

struct stack_call {
  const std::function<int()>* function;
  std::byte* stack;  // lowest address; the first page is the guard
  std::size_t bytes;
  int result = 1;
  sigjmp_buf start{};
};

// The call that runs now. A signal handler gets no argument.
stack_call* current_call = nullptr;

std::size_t page_bytes() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

void leave_overflowed_stack(int signal, siginfo_t* info, void* /*context*/) {
  const auto* address = static_cast<const std::byte*>(info->si_addr);
  stack_call* call = current_call;
  if (call != nullptr && address >= call->stack && address < call->stack + page_bytes()) {
    siglongjmp(call->start, 1);
  }
  std::signal(signal, SIG_DFL);  // any other fault ends the process as it always does
}

void* call_on_stack(void* argument) {
  auto* call = static_cast<stack_call*>(argument);
  static std::array<std::byte, 64 * 1024> handler_stack;
  stack_t alternate{};
  alternate.ss_sp = handler_stack.data();
  alternate.ss_size = handler_stack.size();
  stack_t previous{};
  sigaltstack(&alternate, &previous);
  struct sigaction action {};
  action.sa_sigaction = leave_overflowed_stack;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigaction(SIGSEGV, &action, nullptr);
  current_call = call;
  if (sigsetjmp(call->start, 1) == 0) {
    call->result = (*call->function)();
  } else {
    std::fprintf(stderr, "Error: The input is nested too deeply for a stack of %zu kB\n", call->bytes / 1024);
  }
  current_call = nullptr;
  sigaltstack(&previous, nullptr);  // whoever set it releases it when the thread ends
  return nullptr;
}

// A value in kB from the kernel's account of memory; 0 when it is not there.
std::size_t memory_info(const std::string& key) {
  std::ifstream file("/proc/meminfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(key + ":")) {
      return std::stoull(line.substr(key.size() + 1));
    }
  }
  return 0;
}

// Where the kernel counts reserved memory as used, what is left of it.
std::size_t uncommitted_bytes() {
  std::ifstream file("/proc/sys/vm/overcommit_memory");
  int policy = 0;
  constexpr int strict = 2;
  if (!(file >> policy) || policy != strict) {
    return SIZE_MAX;
  }
  const std::size_t limit = memory_info("CommitLimit");
  const std::size_t used = memory_info("Committed_AS");
  return limit > used ? (limit - used) * 1024 : 0;
}

std::size_t stack_bytes() {
  std::size_t available = uncommitted_bytes();
  rlimit address_space{};
  if (getrlimit(RLIMIT_AS, &address_space) == 0 && address_space.rlim_cur != RLIM_INFINITY) {
    available = std::min<std::size_t>(available, address_space.rlim_cur);
  }
  const std::size_t pages = std::clamp(available / 4, least, most) / page_bytes();
  return pages * page_bytes();
}

}  // namespace

int run_on_large_stack(const std::function<int()>& function) {
  const std::size_t bytes = stack_bytes();
  void* stack = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (stack == MAP_FAILED) {
    return function();
  }
  mprotect(stack, page_bytes(), PROT_NONE);
  stack_call call{&function, static_cast<std::byte*>(stack), bytes};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, bytes);
  pthread_t thread{};
  const int failed = pthread_create(&thread, &attributes, call_on_stack, &call);
  pthread_attr_destroy(&attributes);
  if (failed != 0) {
    munmap(stack, bytes);
    return function();
  }
  pthread_join(thread, nullptr);
  munmap(stack, bytes);
  return call.result;
}

}  // namespace vetro

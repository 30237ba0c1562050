// A thread whose stack is a reservation of address space, with an inaccessible page below it. Touching that page ends
// the call: the handler runs on a stack of its own and goes back to the beginning of the thread.
#include "platform/large_stack.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <csetjmp>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>
#ifdef __GLIBC__
#include <malloc.h>
#endif

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

// The beginning of a file of the kernel; empty when it cannot be read.
class kernel_file {
 public:
  explicit kernel_file(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    const ssize_t got = descriptor < 0 ? 0 : read(descriptor, bytes_.data(), bytes_.size());
    size_ = got > 0 ? static_cast<std::size_t>(got) : 0;
    if (descriptor >= 0) {
      close(descriptor);
    }
  }

  // The number behind the label; nothing when the label or the number is not there.
  std::optional<std::size_t> number_behind(std::string_view label) const {
    const std::string_view text(bytes_.data(), size_);
    const std::size_t at = text.find(label);
    const std::size_t begin = text.find_first_not_of(" \t", at == std::string_view::npos ? at : at + label.size());
    std::size_t value = 0;
    if (at == std::string_view::npos || begin == std::string_view::npos ||
        std::from_chars(text.data() + begin, text.data() + text.size(), value).ec != std::errc()) {
      return std::nullopt;
    }
    return value;
  }

 private:
  std::array<char, 8192> bytes_;  // NOLINT: filled before it is read
  std::size_t size_ = 0;
};

// Where the kernel counts reserved memory as used, what is left of it.
std::size_t uncommitted_bytes() {
  constexpr std::size_t strict = 2;
  if (kernel_file("/proc/sys/vm/overcommit_memory").number_behind("") != strict) {
    return SIZE_MAX;
  }
  const kernel_file memory("/proc/meminfo");
  const std::size_t limit = memory.number_behind("CommitLimit:").value_or(0);
  const std::size_t used = memory.number_behind("Committed_AS:").value_or(0);
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
#ifdef __GLIBC__
  mallopt(M_ARENA_MAX, 1);  // one thread runs while the other waits: it needs no heap of its own
#endif
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

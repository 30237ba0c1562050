// Allocation for a program under test: the allocation whose number stands in FAILING_ALLOCATION gets no memory. Where
// the program ends without having come so far, the file that ALLOCATIONS_LEFT_OVER names is made.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

unsigned long allocations = 0;
unsigned long failing = 0;

__attribute__((constructor)) void read_number() {
  const char* number = std::getenv("FAILING_ALLOCATION");
  failing = number == nullptr ? 0 : std::strtoul(number, nullptr, 10);
  allocations = 0;
}

__attribute__((destructor)) void tell_whether_it_came_so_far() {
  const char* path = std::getenv("ALLOCATIONS_LEFT_OVER");
  if (path != nullptr && allocations < failing) {
    close(open(path, O_WRONLY | O_CREAT, 0600));
  }
}

bool fails() {
  if (++allocations != failing) {
    return false;
  }
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return fails() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) { return fails() ? nullptr : __libc_calloc(count, size); }
void* realloc(void* block, std::size_t size) { return fails() ? nullptr : __libc_realloc(block, size); }
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

}  // extern "C"

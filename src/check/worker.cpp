// Frames go both ways: a length of four bytes and that many bytes behind it. A task is a JSON object; a result is a
// byte for its outcome, eight for the size of the term store, and its events.
#include "check/worker.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <new>

#include "platform/large_stack.h"
#include "term/report.h"
#include "term/state.h"

namespace vetro {
namespace {

// What a worker may have done before another takes its place: proofs, and bytes of terms.
constexpr std::size_t worn_proofs = 2'000;
constexpr std::uint64_t worn_bytes = std::uint64_t{256} << 20U;

constexpr std::size_t head_bytes = 4;
constexpr std::size_t result_head_bytes = 9;

std::string frame_of(const std::string& content) {
  const auto size = static_cast<std::uint32_t>(content.size());
  std::string frame(head_bytes, '\0');
  std::memcpy(frame.data(), &size, head_bytes);
  return frame + content;
}

// ---- In the worker's process.

bool read_all(int descriptor, char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t got = read(descriptor, data, size);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      return false;
    }
    data += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

bool write_all(int descriptor, const std::string& text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t put = write(descriptor, rest.data(), rest.size());
    if (put < 0 && errno == EINTR) {
      continue;
    }
    if (put <= 0) {
      return false;
    }
    rest.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

bool read_frame(int descriptor, std::string& content) {
  std::uint32_t size = 0;
  if (!read_all(descriptor, reinterpret_cast<char*>(&size), head_bytes)) {
    return false;
  }
  content.resize(size);
  return read_all(descriptor, content.data(), size);
}

// Bytes of address space in use, the reserved stack included.
std::uint64_t used_address_space() {
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

// From here on the process may use so much more than now; 0 is no limit.
void limit_memory(std::uint64_t mebibytes) {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur =
      mebibytes == 0 ? limit.rlim_max : std::min(limit.rlim_max, used_address_space() + (mebibytes << 20U));
  setrlimit(RLIMIT_AS, &limit);
}

std::string result_frame(const proof_report& report) {
  std::string content(1, static_cast<char>(report.result));
  const std::uint64_t bytes = state().store.bytes();
  content.append(reinterpret_cast<const char*>(&bytes), sizeof bytes);
  return frame_of(content + events_of(report));
}

int serve(int tasks, int results, const examine_settings& settings, const thm_lib* library) {
  library_shelf shelf(library);
  std::string content;
  while (read_frame(tasks, content)) {
    const proof_task task = task_from_json(content);
    if (task.memory != 0) {
      limit_memory(task.memory);
    }
    std::string frame;
    bool out_of_memory = false;
    try {
      frame = result_frame(examine(task, shelf, settings));
    } catch (const std::bad_alloc&) {  // the report did not fit any more
      out_of_memory = true;
    }
    if (task.memory != 0) {
      limit_memory(0);
    }
    if (out_of_memory) {
      frame = result_frame(report_without_run(task, outcome::limit, "memory-limit", "memory ran out"));
    }
    if (!write_all(results, frame) || out_of_memory) {
      break;
    }
  }
  return 0;
}

// The worker speaks by its pipe alone: what the engine prints for a person goes nowhere.
void be_silent() {
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDIN_FILENO);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  close(nowhere);
  show_progress(false);
}

[[noreturn]] void be_worker(int tasks, int results, const examine_settings& settings, const thm_lib* library) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::signal(SIGINT, SIG_IGN);  // whoever interrupts the run ends it from outside
  std::signal(SIGTERM, SIG_DFL);
  be_silent();
  _exit(run_on_large_stack([&] { return serve(tasks, results, settings, library); }));
}

}  // namespace

// ---- In the process that gives out the proofs.

std::unique_ptr<worker> worker::start(const examine_settings& settings, const thm_lib* library,
                                      const std::function<void()>& close_others) {
  int tasks[2] = {-1, -1};
  int results[2] = {-1, -1};
  if (pipe(tasks) != 0) {
    return nullptr;
  }
  if (pipe(results) != 0) {
    close(tasks[0]);
    close(tasks[1]);
    return nullptr;
  }
  const pid_t pid = fork();
  if (pid == 0) {
    close_others();
    close(tasks[1]);
    close(results[0]);
    be_worker(tasks[0], results[1], settings, library);
  }
  close(tasks[0]);
  close(results[1]);
  if (pid < 0) {
    close(tasks[1]);
    close(results[0]);
    return nullptr;
  }
  fcntl(tasks[1], F_SETFL, O_NONBLOCK);
  std::unique_ptr<worker> started(new worker);
  started->pid_ = pid;
  started->to_ = tasks[1];
  started->from_ = results[0];
  return started;
}

worker::~worker() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    reap();
  }
  close_pipes();
}

void worker::close_pipes() {
  for (int* end : {&to_, &from_}) {
    if (*end >= 0) {
      close(*end);
      *end = -1;
    }
  }
}

void worker::give(placed_task task) {
  if (tasks_.empty()) {
    head_since_ = clock::now();
  }
  unsent_ += frame_of(task_to_json(task.task));
  tasks_.push_back(std::move(task));
  send();
}

void worker::send() {
  while (!unsent_.empty()) {
    const ssize_t put = write(to_, unsent_.data(), unsent_.size());
    if (put <= 0) {
      return;  // full for now, or its reader is gone, which shows at the other pipe
    }
    unsent_.erase(0, static_cast<std::size_t>(put));
  }
}

bool worker::receive() {
  char block[65'536];
  const ssize_t got = read(from_, block, sizeof block);
  if (got > 0) {
    received_.append(block, static_cast<std::size_t>(got));
  }
  return got > 0 || (got < 0 && errno == EINTR);
}

std::optional<worker::result> worker::next_result() {
  std::uint32_t size = 0;
  if (tasks_.empty() || received_.size() < head_bytes) {
    return std::nullopt;
  }
  std::memcpy(&size, received_.data(), head_bytes);
  if (received_.size() < head_bytes + size || size < result_head_bytes) {
    return std::nullopt;
  }
  const char* content = received_.data() + head_bytes;
  std::memcpy(&store_bytes_, content + 1, sizeof store_bytes_);
  result r{static_cast<outcome>(content[0]), std::string(content + result_head_bytes, size - result_head_bytes),
           std::move(tasks_.front())};
  received_.erase(0, head_bytes + size);
  tasks_.pop_front();
  head_since_ = clock::now();
  ++served_;
  return r;
}

bool worker::worn() const { return served_ >= worn_proofs || store_bytes_ > worn_bytes; }

std::optional<worker::clock::time_point> worker::deadline() const {
  if (tasks_.empty() || tasks_.front().task.timeout == 0) {
    return std::nullopt;
  }
  return head_since_ + std::chrono::seconds(tasks_.front().task.timeout);
}

void worker::kill_for_time() {
  killed_for_time_ = true;
  kill(pid_, SIGKILL);
}

int worker::reap() {
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  return status;
}

}  // namespace vetro

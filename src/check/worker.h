// A process that runs proofs, and the end of its two pipes in this one.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "check/examine.h"
#include "check/task.h"

namespace vetro {

// A task on its way. A proof that failed in a process which had run others before runs once more alone, so that nothing
// which these left behind can be to blame.
struct placed_task {
  proof_task task;
  std::size_t place = 0;  // in the order of results
  bool alone = false;
};

class worker {
 public:
  using clock = std::chrono::steady_clock;

  // Null when the platform refuses a process. In the new process, close_others closes what it must not hold open.
  static std::unique_ptr<worker> start(const examine_settings& settings, const thm_lib* library,
                                       const std::function<void()>& close_others);
  ~worker();
  worker(const worker&) = delete;
  worker& operator=(const worker&) = delete;

  int result_pipe() const { return from_; }
  int task_pipe() const { return to_; }
  bool has_unsent() const { return !unsent_.empty(); }
  void close_pipes();

  void give(placed_task task);
  void send();  // what the pipe takes now
  // Reads what has come. False at the end of the pipe.
  bool receive();
  // The result of the first task under way, where it is complete.
  struct result {
    outcome value;
    std::string events;
    placed_task task;
  };
  std::optional<result> next_result();

  std::size_t under_way() const { return tasks_.size(); }
  std::deque<placed_task>& tasks() { return tasks_; }
  std::size_t served() const { return served_; }
  // Whether it has done so much that a new process is better.
  bool worn() const;
  // The time at which the first task under way has used up its time; nothing without such a limit.
  std::optional<clock::time_point> deadline() const;
  void kill_for_time();
  bool killed_for_time() const { return killed_for_time_; }
  // Waits for its end and gives its wait status.
  int reap();

 private:
  worker() = default;

  pid_t pid_ = -1;
  int to_ = -1;
  int from_ = -1;
  std::string unsent_;
  std::string received_;
  std::deque<placed_task> tasks_;
  clock::time_point head_since_;
  std::size_t served_ = 0;
  std::uint64_t store_bytes_ = 0;
  bool killed_for_time_ = false;
};

}  // namespace vetro

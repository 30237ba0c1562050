// One loop over the pipes of the workers. Each has a few tasks, so that it need not wait for this process between two
// small proofs; what follows a task that ends its process goes to another one.
#include "check/pool.h"

#include <poll.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <vector>

#include "check/worker.h"

namespace vetro {
namespace {

constexpr std::size_t tasks_for_one = 4;
constexpr std::size_t results_ahead = 256;  // for each worker

volatile std::sig_atomic_t interrupting_signal = 0;
void note_signal(int signal) { interrupting_signal = signal; }

// Interrupting signals end the loop while this lives. Behind one of them they stay caught: the run is about to end, and
// a second signal, such as the one that timeout(1) sends to the whole group, shall not cut off what it still says.
class signal_watch {
 public:
  signal_watch() {
    struct sigaction action {};
    action.sa_handler = note_signal;
    sigaction(SIGINT, &action, &interrupt_);
    sigaction(SIGTERM, &action, &termination_);
  }
  ~signal_watch() {
    if (interrupting_signal != 0) {
      return;
    }
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &termination_, nullptr);
  }
  signal_watch(const signal_watch&) = delete;
  signal_watch& operator=(const signal_watch&) = delete;

 private:
  struct sigaction interrupt_ {};
  struct sigaction termination_ {};
};

// What the end of a worker says of the proof that it was at.
finished_proof fate_of(const proof_task& task, int status, bool killed_for_time) {
  const auto report = [&](outcome result, const char* code, std::string message) {
    return finished_proof{result, events_of(report_without_run(task, result, code, std::move(message)))};
  };
  if (killed_for_time) {
    return report(outcome::limit, "timeout", "the proof was ended after " + std::to_string(task.timeout) + " s");
  }
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) {
    return report(outcome::limit, "memory-limit",
                  "the process of the proof was killed, as happens when memory runs out");
  }
  if (WIFSIGNALED(status)) {
    return report(outcome::fault, "crash",
                  "the process of the proof ended by signal " + std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) == 1) {
    return report(outcome::limit, "too-deep", "the input is nested too deeply for the stack");
  }
  return report(outcome::fault, "crash",
                "the process of the proof ended with status " + std::to_string(WEXITSTATUS(status)));
}

class pool {
 public:
  pool(const pool_settings& settings, const thm_lib* library,
       const std::function<std::optional<proof_task>()>& next_task,
       const std::function<bool(const finished_proof&)>& take)
      : settings_(settings), library_(library), next_task_(next_task), take_(take), workers_(settings.jobs) {}

  pool_end run() {
    const signal_watch watch;
    interrupting_signal = 0;
    while (interrupting_signal == 0) {
      give_out();
      if (!pass_on()) {
        return pool_end::stopped;
      }
      if (!at_work()) {
        if (source_empty_ && waiting_.empty()) {
          return pool_end::done;
        }
        if (no_process_) {
          return pool_end::stopped;
        }
        continue;
      }
      settings_.while_waiting();
      wait();
    }
    return pool_end::interrupted;
  }

 private:
  bool at_work() const {
    return std::any_of(workers_.begin(), workers_.end(),
                       [](const auto& w) { return w != nullptr && w->under_way() > 0; });
  }

  // ---- Tasks.

  std::optional<placed_task> take_task() {
    if (!waiting_.empty()) {
      placed_task task = std::move(waiting_.front());
      waiting_.pop_front();
      return task;
    }
    while (!source_empty_ && placed_ - passed_on_ < results_ahead * workers_.size()) {
      std::optional<proof_task> task = next_task_();
      if (!task.has_value()) {
        source_empty_ = true;
        break;
      }
      const std::size_t place = placed_++;
      if (task->problem.empty()) {
        return placed_task{std::move(*task), place, false};
      }
      done_[place] = {
          outcome::unreadable,
          events_of(report_without_run(*task, outcome::unreadable,
                                       task->problem_line == 0 ? "file-unreadable" : "manifest-line", task->problem))};
    }
    return std::nullopt;
  }

  // One round after the other, so that few tasks spread over all workers.
  void give_out() {
    for (std::size_t round = 1; round <= tasks_for_one; ++round) {
      for (std::unique_ptr<worker>& w : workers_) {
        if (w != nullptr && w->under_way() == 0 && w->worn()) {
          w.reset();
        }
        if (w != nullptr && (w->under_way() >= round || w->worn() || alone_in(*w))) {
          continue;
        }
        std::optional<placed_task> task = take_task();
        if (!task.has_value()) {
          return;
        }
        if (task->alone) {
          if (w != nullptr && w->under_way() > 0) {
            waiting_.push_front(std::move(*task));
            continue;
          }
          w.reset();
        }
        if (!ready(w)) {
          waiting_.push_front(std::move(*task));
          return;
        }
        w->give(std::move(*task));
      }
    }
  }

  static bool alone_in(worker& w) { return w.under_way() > 0 && w.tasks().front().alone; }

  bool ready(std::unique_ptr<worker>& w) {
    if (w == nullptr) {
      w = worker::start(settings_.examine, library_, [this] {
        for (const std::unique_ptr<worker>& other : workers_) {
          if (other != nullptr) {
            other->close_pipes();
          }
        }
      });
      no_process_ = w == nullptr;
    }
    return w != nullptr;
  }

  // ---- Results.

  bool pass_on() {
    for (auto first = done_.begin(); first != done_.end() && first->first == passed_on_; first = done_.begin()) {
      if (!take_(first->second)) {
        return false;
      }
      done_.erase(first);
      ++passed_on_;
    }
    return true;
  }

  void wait() {
    std::vector<pollfd> ends;
    std::vector<std::size_t> owners;
    std::optional<worker::clock::time_point> first;
    for (std::size_t i = 0; i < workers_.size(); ++i) {
      worker* w = workers_[i].get();
      if (w == nullptr || w->under_way() == 0) {
        continue;
      }
      ends.push_back({w->result_pipe(), POLLIN, 0});
      owners.push_back(i);
      if (w->has_unsent()) {
        ends.push_back({w->task_pipe(), POLLOUT, 0});
        owners.push_back(i);
      }
      if (const auto deadline = w->deadline(); deadline && (!first || *deadline < *first)) {
        first = deadline;
      }
    }
    if (poll(ends.data(), ends.size(), milliseconds_until(first)) < 0) {
      return;
    }
    for (std::size_t i = 0; i < ends.size(); ++i) {
      std::unique_ptr<worker>& w = workers_[owners[i]];
      if (ends[i].revents == 0 || w == nullptr) {
        continue;
      }
      (ends[i].events & POLLOUT) != 0 ? w->send() : take_results(w);
    }
    end_late_ones();
  }

  // Not for long: a signal may come just before the wait, and a person may watch.
  static int milliseconds_until(const std::optional<worker::clock::time_point>& time) {
    constexpr std::int64_t longest = 200;
    if (!time) {
      return longest;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*time - worker::clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, longest));
  }

  void take_results(std::unique_ptr<worker>& w) {
    const bool open = w->receive();
    while (auto result = w->next_result()) {
      // Memory that ran out may have been filled by the proofs before.
      if (result->value == outcome::limit && result->task.task.memory != 0 && w->served() > 1 && !result->task.alone) {
        result->task.alone = true;
        waiting_.push_front(std::move(result->task));
        continue;
      }
      done_[result->task.place] = {result->value, std::move(result->events)};
    }
    if (!open) {
      bury(w);
    }
  }

  void end_late_ones() {
    for (std::unique_ptr<worker>& w : workers_) {
      if (w == nullptr) {
        continue;
      }
      if (const auto deadline = w->deadline(); deadline && worker::clock::now() >= *deadline) {
        w->kill_for_time();
        bury(w);
      }
    }
  }

  // The worker is gone, or going: its first task is to blame, the others go to the front of the line.
  void bury(std::unique_ptr<worker>& w) {
    const int status = w->reap();
    std::deque<placed_task>& tasks = w->tasks();
    if (!tasks.empty()) {
      placed_task& head = tasks.front();
      if (w->killed_for_time() || head.alone || w->served() == 0) {
        done_[head.place] = fate_of(head.task, status, w->killed_for_time());
        tasks.pop_front();
      } else {
        head.alone = true;
      }
    }
    for (; !tasks.empty(); tasks.pop_back()) {
      waiting_.push_front(std::move(tasks.back()));
    }
    w.reset();
  }

  const pool_settings& settings_;
  const thm_lib* library_;
  const std::function<std::optional<proof_task>()>& next_task_;
  const std::function<bool(const finished_proof&)>& take_;
  std::vector<std::unique_ptr<worker>> workers_;
  std::deque<placed_task> waiting_;  // tasks that come back
  std::map<std::size_t, finished_proof> done_;
  std::size_t placed_ = 0;     // tasks taken from the source
  std::size_t passed_on_ = 0;  // results given on
  bool source_empty_ = false;
  bool no_process_ = false;
};

}  // namespace

pool_end run_pool(const pool_settings& settings, const thm_lib* library,
                  const std::function<std::optional<proof_task>()>& next_task,
                  const std::function<bool(const finished_proof&)>& take) {
  return pool(settings, library, next_task, take).run();
}

}  // namespace vetro

// Files of events from earlier runs: the journal of a run that may be interrupted, and the parts of a run that went to
// several machines.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "check/report.h"

namespace vetro {

struct file_closing {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using event_file = std::unique_ptr<std::FILE, file_closing>;

// The proofs of one file, in order.
struct recorded_proof {
  std::size_t number = 0;
  std::string id;
  std::string events;
  proof_report report;
};

class event_file_reader {
 public:
  // False, with a message, when the file cannot be opened or is none of this format.
  bool open(const std::string& path);
  const std::string& head() const { return head_; }
  // Nothing at the end, at the summary, and where the file breaks off.
  std::optional<recorded_proof> next();
  // The bytes up to behind the last complete proof.
  long complete_bytes() const { return complete_bytes_; }
  bool saw_summary() const { return saw_summary_; }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  event_file file_;
  std::string head_;
  long complete_bytes_ = 0;
  bool saw_summary_ = false;
};

// The events of a run as they are known, proof by proof.
class event_journal {
 public:
  // A new journal, or the one of a run with the same head that was interrupted. False after a message.
  bool open(const std::string& path, const std::string& head);
  // The proofs that it holds already.
  std::optional<recorded_proof> next_earlier();
  // Behind the earlier proofs; what stands behind them is cut off. False after a message.
  bool begin_appending();
  // False when something was lost. Without an open journal nothing happens.
  bool append(const std::string& events);

 private:
  std::string path_;
  std::string head_;
  std::unique_ptr<event_file_reader> earlier_;
  event_file file_;
};

// The proofs of all parts of a run in the order of their numbers.
class event_merge {
 public:
  explicit event_merge(std::vector<std::string> paths) : paths_(std::move(paths)) {}
  // False after a message, also when they are parts of different runs.
  bool open();
  // The first part's.
  std::string head() const;
  std::optional<proof_report> next();
  // Whether proofs are missing or stand there twice, after a message.
  bool failed() const { return failed_; }

 private:
  struct part {
    event_file_reader reader;
    std::optional<recorded_proof> proof;
  };
  void find_missing_parts();
  void fail(const std::string& message);

  std::vector<std::string> paths_;
  std::vector<std::unique_ptr<part>> parts_;
  std::size_t last_ = 0;
  bool failed_ = false;
};

}  // namespace vetro

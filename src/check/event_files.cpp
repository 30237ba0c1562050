// A proof counts as recorded when its last event stands there with its line end: what an interruption cut off is run
// again.
#include "check/event_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "check/run_head.h"
#include "lib/line_reader.h"
#include "term/report.h"

namespace vetro {
namespace {

void complain(const std::string& path, const std::string& what) {
  report_text("vetro-check: " + path + ": " + what + "\n");
}

}  // namespace

// ---- One file.

bool event_file_reader::open(const std::string& path) {
  path_ = path;
  file_.reset(std::fopen(path.c_str(), "r"));
  if (file_ == nullptr) {
    complain(path, std::strerror(errno));
    return false;
  }
  event_reader reader;
  const bool read = qv_read_line(file_.get(), head_) == line_status::line;
  if (!read || !head_.ends_with('\n') || !reader.take(head_) || reader.event() != "run") {
    complain(path, "these are no events of a run in a format that this program knows");
    return false;
  }
  complete_bytes_ = static_cast<long>(head_.size());
  return true;
}

std::optional<recorded_proof> event_file_reader::next() {
  event_reader reader;
  recorded_proof proof;
  std::string line;
  while (qv_read_line(file_.get(), line) == line_status::line && line.ends_with('\n') && reader.take(line)) {
    if (reader.event() == "summary") {
      saw_summary_ = true;
      break;
    }
    proof.events += line;
    if (reader.event() == "proof") {
      complete_bytes_ += static_cast<long>(proof.events.size());
      proof.report = std::move(reader.report());
      proof.number = proof.report.number;
      proof.id = proof.report.id;
      return proof;
    }
  }
  return std::nullopt;
}

// ---- The journal.

bool event_journal::open(const std::string& path, const std::string& head) {
  path_ = path;
  head_ = head;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) == 0) {
    return true;
  }
  earlier_ = std::make_unique<event_file_reader>();
  if (!earlier_->open(path)) {
    return false;
  }
  if (earlier_->head() != head) {
    complain(path, "these are the events of a run with other options or another library");
    return false;
  }
  return true;
}

std::optional<recorded_proof> event_journal::next_earlier() {
  return earlier_ == nullptr ? std::nullopt : earlier_->next();
}

bool event_journal::begin_appending() {
  if (path_.empty()) {
    return true;
  }
  const bool goes_on = earlier_ != nullptr;
  file_.reset(std::fopen(path_.c_str(), goes_on ? "r+" : "w"));
  const bool ready =
      file_ != nullptr && (!goes_on || (ftruncate(fileno(file_.get()), earlier_->complete_bytes()) == 0 &&
                                        std::fseek(file_.get(), 0, SEEK_END) == 0));
  earlier_.reset();
  if (!ready || (!goes_on && !append(head_))) {
    complain(path_, std::strerror(errno));
    return false;
  }
  return true;
}

bool event_journal::append(const std::string& events) {
  return file_ == nullptr ||
         (std::fwrite(events.data(), 1, events.size(), file_.get()) == events.size() && std::fflush(file_.get()) == 0);
}

// ---- Parts.

void event_merge::fail(const std::string& message) {
  report_text("vetro-check: " + message + "\n");
  failed_ = true;
}

bool event_merge::open() {
  for (const std::string& path : paths_) {
    parts_.push_back(std::make_unique<part>());
    if (!parts_.back()->reader.open(path)) {
      return false;
    }
    const event_file_reader& reader = parts_.back()->reader;
    if (const std::string difference = difference_of_heads(head(), reader.head()); !difference.empty()) {
      complain(path, "this is no part of the run of " + paths_.front() + ": " + difference);
      return false;
    }
    parts_.back()->proof = parts_.back()->reader.next();
  }
  find_missing_parts();
  return true;
}

// Proofs that are missing at the end would not show by their numbers.
void event_merge::find_missing_parts() {
  std::map<std::uint64_t, const std::string*> there;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const auto [place, is_new] = there.try_emplace(part_of_head(parts_[i]->reader.head()).number, &paths_[i]);
    if (!is_new) {
      fail(*place->second + " and " + paths_[i] + " are the same part of the run");
    }
  }
  const std::uint64_t of = part_of_head(head()).of;
  if (there.size() < of) {
    std::uint64_t first = 1;
    while (there.contains(first)) {
      ++first;
    }
    const std::uint64_t missing = of - there.size();
    fail("part " + std::to_string(first) + " of " + std::to_string(of) + " is missing" +
         (missing == 1 ? "" : ", and " + std::to_string(missing - 1) + " more"));
  }
}

std::string event_merge::head() const { return parts_.empty() ? std::string() : parts_.front()->reader.head(); }

std::optional<proof_report> event_merge::next() {
  const auto first = std::min_element(parts_.begin(), parts_.end(), [](const auto& a, const auto& b) {
    return a->proof.has_value() && (!b->proof.has_value() || a->proof->number < b->proof->number);
  });
  if (first == parts_.end() || !(*first)->proof.has_value()) {
    for (const auto& p : parts_) {
      if (!p->reader.saw_summary()) {
        fail(p->reader.path() + " ends before its summary: that part was interrupted");
      }
    }
    return std::nullopt;
  }
  recorded_proof proof = std::move(*(*first)->proof);
  (*first)->proof = (*first)->reader.next();
  // One message says it: a part that is missing leaves out many proofs.
  if (!failed_ && proof.number == last_) {
    fail("proof " + std::to_string(proof.number) + " stands in two parts");
  } else if (!failed_ && proof.number != last_ + 1) {
    fail("proof " + std::to_string(last_ + 1) + " is missing");
  }
  last_ = proof.number;
  return std::move(proof.report);
}

}  // namespace vetro

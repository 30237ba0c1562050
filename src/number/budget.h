// A count of work with an end. One budget belongs to one call from outside and covers the calls below it; what one
// expression or assumption may use of it is a budget inside it, so that a hopeless one ends alone.
#pragma once

#include <cstdint>

namespace vetro {

// How many budgets of work have ended in this process, those of class budget and others. Whoever wants to know whether
// one ended in some call looks before and behind it.
inline std::uint64_t ended_budgets = 0;

class budget {
 public:
  // Work that is charged here is charged outside too, where there is an outside.
  explicit budget(std::uint64_t limit, budget* outside = nullptr) : left_(limit), outside_(outside) {}
  budget(const budget&) = delete;
  budget& operator=(const budget&) = delete;

  // False once the work charged so far, with this, is more than there was; from then on for ever.
  bool charge(std::uint64_t work) {
    const bool fits_outside = outside_ == nullptr || outside_->charge(work);
    if (!spent_ && (!fits_outside || work > left_)) {
      spent_ = true;
      ++ended_budgets;
    }
    left_ -= spent_ ? 0 : work;
    return !spent_;
  }
  // More work of its own.
  void allow(std::uint64_t work) { left_ += work; }
  bool exhausted() const { return spent_ || (outside_ != nullptr && outside_->exhausted()); }

 private:
  std::uint64_t left_;
  budget* outside_;
  bool spent_ = false;
};

}  // namespace vetro

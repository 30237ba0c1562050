// Answers remembered for one call: yes-or-no questions about terms, and slots of the process state that hold what a
// layer above remembers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "term/node_memo.h"

namespace vetro {

// Answers to numbered questions about one term. The number tells the questions of a caller apart.
class question_memo {
 public:
  std::optional<bool> known(term_ptr t, std::uint32_t question) const {
    const bool* found = answers_.find(t, question);
    return found == nullptr ? std::nullopt : std::optional(*found);
  }
  bool keep(term_ptr t, std::uint32_t question, bool answer) { return answers_.keep(t, answer, question); }
  void clear() { answers_.clear(); }

 private:
  node_memo<bool> answers_;
};

// One object of any type, made when it is first asked for. The layer that owns the type is the only one that asks.
class typed_slots {
 public:
  template <class T>
  T& of() {
    const std::size_t index = index_of<T>();
    if (index >= slots_.size()) {
      slots_.resize(index + 1);
    }
    if (slots_[index] == nullptr) {
      slots_[index] = std::make_unique<slot<T>>();
    }
    return static_cast<slot<T>&>(*slots_[index]).value;
  }

  // Forgets the object; references to it become invalid.
  template <class T>
  void forget() {
    const std::size_t index = index_of<T>();
    if (index < slots_.size()) {
      slots_[index].reset();
    }
  }

 private:
  struct any_slot {
    virtual ~any_slot() = default;
  };
  template <class T>
  struct slot : any_slot {
    T value;
  };
  template <class T>
  static std::size_t index_of() {
    static const std::size_t index = next_index();
    return index;
  }
  static std::size_t next_index() {
    static std::size_t next = 0;
    return next++;
  }
  std::vector<std::unique_ptr<any_slot>> slots_;
};

}  // namespace vetro

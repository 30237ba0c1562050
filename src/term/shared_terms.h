// A list of terms that grows at its end and is copied often: the assumptions of a gap. A copy shares the elements, and
// two lists that came from one know their common beginning without a look at it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <utility>

#include "term/ast.h"

namespace vetro {

class shared_terms {
 public:
  using value_type = term_ptr;
  using const_iterator = const term_ptr*;

  shared_terms() = default;
  shared_terms(term_list list);
  shared_terms(std::initializer_list<term_ptr> list) : shared_terms(term_list(list)) {}

  // A copy sees what is there; where it is changed itself, it takes the elements along.
  shared_terms(const shared_terms& other) : block_(other.block_), size_(other.size_) {}
  shared_terms(shared_terms&& other) noexcept
      : block_(std::move(other.block_)),
        size_(std::exchange(other.size_, 0)),
        grows_(std::exchange(other.grows_, false)) {}
  shared_terms& operator=(shared_terms other) noexcept {
    block_ = std::move(other.block_);
    size_ = other.size_;
    grows_ = other.grows_;
    return *this;
  }
  ~shared_terms() = default;

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const term_ptr* data() const { return block_ == nullptr ? nullptr : block_->items.data(); }
  const_iterator begin() const { return data(); }
  const_iterator end() const { return data() + size_; }
  term_ptr operator[](std::size_t i) const { return data()[i]; }
  term_ptr front() const { return data()[0]; }
  term_ptr back() const { return data()[size_ - 1]; }

  shared_terms beginning(std::size_t length) const {
    shared_terms list = *this;
    list.size_ = length;
    return list;
  }

  void push_back(term_ptr t);
  void append(term_span more);
  void replace(std::size_t i, term_ptr t);

  // Places from which two lists are the same.
  std::size_t common_beginning(const shared_terms& other) const;
  friend bool operator==(const shared_terms& a, const shared_terms& b) {
    return a.size_ == b.size_ && a.common_beginning(b) == a.size_;
  }

 private:
  // Elements never change and never move. All blocks of one line hold beginnings of one list.
  struct block {
    term_list items;
    std::uint64_t line;
    std::uint64_t parent;  // the line that this one left, and the length of their common beginning
    std::size_t left_parent;
  };

  std::size_t known_beginning(const shared_terms& other) const;
  void make_room(std::size_t more);
  void move_to_block(std::size_t capacity, std::uint64_t line, std::uint64_t parent, std::size_t left_parent);

  std::shared_ptr<block> block_;
  std::size_t size_ = 0;
  bool grows_ = false;  // the one list of the line that may grow it
};

}  // namespace vetro

// Only one list of a line adds to its newest block, so that whoever holds a beginning of it keeps that. A full block is
// followed by one of twice the room on the same line; the old one lives as long as a list that ends in it.
#include "term/shared_terms.h"

#include <algorithm>

namespace vetro {
namespace {

constexpr std::size_t least_room = 8;

// Never twice the same, so that lists of earlier runs in one process are not taken for relatives.
std::uint64_t new_line() {
  static std::uint64_t last = 0;
  return ++last;
}

}  // namespace

shared_terms::shared_terms(term_list list) {
  if (!list.empty()) {
    size_ = list.size();
    grows_ = true;
    block_ = std::make_shared<block>(block{std::move(list), new_line(), 0, 0});
  }
}

void shared_terms::push_back(term_ptr t) { append({&t, 1}); }

void shared_terms::append(term_span more) {
  if (more.empty()) {
    return;
  }
  make_room(more.size());
  block_->items.insert(block_->items.end(), more.begin(), more.end());
  size_ += more.size();
}

void shared_terms::replace(std::size_t i, term_ptr t) {
  const std::uint64_t line = block_->line;
  move_to_block(size_, new_line(), line, i);
  block_->items[i] = t;
}

void shared_terms::make_room(std::size_t more) {
  const std::size_t wanted = std::max({least_room, size_ + more, 2 * size_});
  if (block_ == nullptr) {
    move_to_block(wanted, new_line(), 0, 0);
  } else if (!grows_) {
    move_to_block(wanted, new_line(), block_->line, size_);
  } else if (block_->items.capacity() - size_ < more) {
    move_to_block(wanted, block_->line, block_->parent, block_->left_parent);
  }
}

void shared_terms::move_to_block(std::size_t capacity, std::uint64_t line, std::uint64_t parent,
                                 std::size_t left_parent) {
  auto moved = std::make_shared<block>(block{{}, line, parent, left_parent});
  moved->items.reserve(capacity);
  moved->items.assign(begin(), end());
  block_ = std::move(moved);
  grows_ = true;
}

// What the lines tell of the common beginning; it may be longer.
std::size_t shared_terms::known_beginning(const shared_terms& other) const {
  const std::size_t shorter = std::min(size_, other.size_);
  if (block_ == nullptr || other.block_ == nullptr) {
    return 0;
  }
  const block& a = *block_;
  const block& b = *other.block_;
  if (a.line == b.line) {
    return shorter;
  }
  if (a.parent == b.line) {
    return std::min(shorter, a.left_parent);
  }
  if (b.parent == a.line) {
    return std::min(shorter, b.left_parent);
  }
  return a.parent == b.parent && a.parent != 0 ? std::min({shorter, a.left_parent, b.left_parent}) : 0;
}

std::size_t shared_terms::common_beginning(const shared_terms& other) const {
  const std::size_t shorter = std::min(size_, other.size_);
  const auto known = static_cast<std::ptrdiff_t>(known_beginning(other));
  const auto last = static_cast<std::ptrdiff_t>(shorter);
  return static_cast<std::size_t>(std::mismatch(begin() + known, begin() + last, other.begin() + known).first -
                                  begin());
}

}  // namespace vetro

// The names bound around the place where a walk stands, and an ordered set of terms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "term/ast.h"

namespace vetro {

// The newest binding of a name counts. Variables are known by their bare form, so that a scope on one makes no other
// name. Every state of the bindings has a number: a node met twice under one number means the same both times.
class bound_names {
 public:
  static constexpr int unbound = -1;

  struct mark {
    std::size_t count;
    std::uint64_t number;
  };
  mark here() const { return {entries_.size(), number_}; }

  void bind(term_ptr var) {
    var = var->bare();
    const int position = static_cast<int>(entries_.size());
    int shadowed = unbound;
    if (position >= scanned) {
      const auto [slot, added] = index_.try_emplace(var, position);
      if (!added) {
        shadowed = slot->second;
        slot->second = position;
      }
    }
    entries_.push_back({var, shadowed, mask_});
    mask_ |= var->name_mask();
    number_ = ++last_number_;
  }
  void bind_all(term_span vars) {
    for (term_ptr var : vars) {
      bind(var);
    }
  }

  void leave(const mark& before) {
    while (entries_.size() > before.count) {
      const entry& last = entries_.back();
      if (static_cast<int>(entries_.size()) > scanned) {
        if (last.shadowed == unbound) {
          index_.erase(last.var);
        } else {
          index_[last.var] = last.shadowed;
        }
      }
      mask_ = last.mask_before;
      entries_.pop_back();
    }
    number_ = before.number;
  }

  // The position of the newest binding of var, or unbound.
  int newest(term_ptr var) const {
    var = var->bare();
    if ((var->name_mask() & ~mask_) != 0) {
      return unbound;
    }
    const int count = static_cast<int>(entries_.size());
    if (count > scanned) {
      const auto found = index_.find(var);
      if (found != index_.end()) {
        return found->second;
      }
    }
    for (int i = count < scanned ? count - 1 : scanned - 1; i >= 0; --i) {
      if (entries_[static_cast<std::size_t>(i)].var == var) {
        return i;
      }
    }
    return unbound;
  }

  bool contains(term_ptr var) const { return newest(var) != unbound; }
  std::size_t size() const { return entries_.size(); }
  std::uint64_t mask() const { return mask_; }      // bits of all names bound now
  std::uint64_t number() const { return number_; }  // of the present state; 0 where nothing is bound

  // The number under which a walk may remember t: 0 where no binding can touch it.
  std::uint64_t number_for(term_ptr t) const { return (t->name_mask() & mask_) == 0 ? 0 : number_; }

 private:
  static constexpr int scanned = 8;  // the outermost bindings are found by scanning, the others through the index
  struct entry {
    term_ptr var;
    int shadowed;
    std::uint64_t mask_before;
  };
  std::vector<entry> entries_;
  std::unordered_map<term_ptr, int> index_;
  std::uint64_t mask_ = 0;
  std::uint64_t number_ = 0;
  std::uint64_t last_number_ = 0;
};

// Terms in the order in which they came, each once. By address: callers give bare forms where that is meant.
class ordered_terms {
 public:
  bool contains(term_ptr t) const {
    if (list_.size() > scanned) {
      return index_.count(t) != 0;
    }
    for (term_ptr known : list_) {
      if (known == t) {
        return true;
      }
    }
    return false;
  }

  void add(term_ptr t) {
    if (contains(t)) {
      return;
    }
    list_.push_back(t);
    if (list_.size() == scanned + 1) {
      index_.insert(list_.begin(), list_.end());
    } else if (list_.size() > scanned) {
      index_.insert(t);
    }
  }

  const term_list& list() const { return list_; }

 private:
  static constexpr std::size_t scanned = 16;
  term_list list_;
  std::unordered_set<term_ptr> index_;
};

// The variable is in the list, whatever scope either of them carries.
inline bool contains_variable(term_span list, term_ptr var) {
  for (term_ptr t : list) {
    if (t->bare() == var->bare()) {
      return true;
    }
  }
  return false;
}

}  // namespace vetro

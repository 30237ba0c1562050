// What a substitution knows of the place where it stands: which bound variables around it have new names, and which of
// the replaced variables are bound there, so that they stay.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "term/ast.h"

namespace vetro {

class surroundings {
 public:
  struct mark {
    std::size_t changes;
    std::uint64_t state;
    std::uint64_t mask;
    std::uint64_t hidden;
    std::uint64_t hidden_number;
  };

  mark here() const { return {changes_.size(), state_, mask_, hidden_, hidden_number_}; }

  void leave(const mark& before) {
    for (; changes_.size() > before.changes; changes_.pop_back()) {
      names_[changes_.back().var] = changes_.back().before;
    }
    state_ = before.state;
    mask_ = before.mask;
    hidden_ = before.hidden;
    hidden_number_ = before.hidden_number;
  }

  // True when nothing below t has a new name.
  bool untouched(term_ptr t) const { return (t->name_mask() & mask_) == 0; }

  // The new name of a bound variable; null when it keeps its own.
  term_ptr name_of(term_ptr var) const {
    if (mask_ == 0) {
      return nullptr;
    }
    const auto found = names_.find(var->bare());
    return found == names_.end() ? nullptr : found->second.name;
  }

  // True when the variable got its name behind the mark.
  bool named_since(const mark& before, term_ptr var) const {
    const auto found = names_.find(var->bare());
    return found != names_.end() && found->second.name != nullptr && found->second.change >= before.changes;
  }

  void rename(term_ptr var, term_ptr name) { set(var->bare(), name); }

  // A binder that keeps its name hides an outer one that does not.
  void keep(term_ptr var) {
    if (name_of(var) != nullptr) {
      set(var->bare(), nullptr);
    }
  }

  // Below a binder of a replaced variable it is not replaced. One bit for each of them.
  std::uint64_t hidden() const { return hidden_; }
  void hide(std::uint64_t sources) {
    if ((sources & ~hidden_) != 0) {
      hidden_ |= sources;
      hidden_number_ = hidden_numbers_.try_emplace(hidden_, hidden_numbers_.size() + 1).first->second;
    }
  }

  // Where t is visited twice under one number, it comes out the same.
  std::uint64_t number_for(term_ptr t) const { return (untouched(t) ? 0 : state_ << 32U) | hidden_number_; }

 private:
  struct named {
    term_ptr name = nullptr;
    std::size_t change = 0;
  };
  struct change {
    term_ptr var;
    named before;
  };

  void set(term_ptr var, term_ptr name) {
    named& slot = names_[var];
    changes_.push_back({var, slot});
    slot = {name, changes_.size() - 1};
    mask_ |= var->name_mask();
    state_ = ++last_state_;
  }

  std::unordered_map<term_ptr, named> names_;
  std::vector<change> changes_;
  std::uint64_t state_ = 0;
  std::uint64_t last_state_ = 0;
  std::uint64_t mask_ = 0;
  std::uint64_t hidden_ = 0;
  std::uint64_t hidden_number_ = 0;
  std::unordered_map<std::uint64_t, std::uint64_t> hidden_numbers_;  // by the sources that are hidden
};

}  // namespace vetro

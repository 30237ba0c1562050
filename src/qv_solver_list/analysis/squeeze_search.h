// Paths from a smaller to a greater expression, over the edges of an assumption list and their products with one factor
// or two of known sign.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "number/budget.h"
#include "number/limits.h"
#include "qv_solver_list/analysis/squeeze_facts.h"

namespace vetro {

// Several questions within one budget of steps.
class squeeze_search {
 public:
  using key_id = squeeze_keys::key_id;

  explicit squeeze_search(squeeze_facts& facts) : facts_(facts), keys_(facts.keys()) {}

  // Whether src ≤ dst follows, or src < dst. Without the need of <, every expression is at most itself.
  bool has_path(key_id src, key_id dst, bool need_strict);

 private:
  enum level : std::uint8_t { unreached = 0, reached = 1, reached_strictly = 2 };
  // What was found from one end.
  struct side {
    bool leaving;  // from the smaller end
    std::unordered_map<key_id, level> levels = {};
    std::vector<key_id> open = {};
    std::size_t next = 0;
    bool done() const { return next == open.size(); }
    level of(key_id k) const;
  };
  // Multiplication by a factor or two: what it does to an edge.
  struct effect {
    bool turns;
    bool keeps_strict;
  };
  using effects = std::vector<effect>;

  void visit(side& here, const side& there, key_id k, level found);
  void expand_next(side& here, const side& there);
  void expand_zero(side& here, const side& there);
  void follow(side& here, const side& there, level so_far, key_id rest, key_id f, key_id g);
  effects effects_of(key_id f) const;
  effects effects_of(key_id f, key_id g) const;
  bool charge() { return work_.charge(1); }

  squeeze_facts& facts_;
  squeeze_keys& keys_;
  bool need_strict_ = false;
  bool proved_ = false;
  budget work_{limits::squeeze_steps};
};

}  // namespace vetro

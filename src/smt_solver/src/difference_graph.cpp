#include "smt_solver/src/difference_graph.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace vetro::smt {

int difference_graph::add_variable() {
  leaving_.emplace_back();
  potential_.emplace_back();
  change_.emplace_back();
  reached_by_.push_back(-1);
  settled_.push_back(0);
  return size() - 1;
}

void difference_graph::back_to_level(int level) {
  const std::size_t start = level_starts_[at(level)];
  level_starts_.resize(at(level));
  while (edges_.size() > start) {
    remove_last_edge();
  }
}

void difference_graph::remove_last_edge() {
  leaving_[at(edges_.back().from)].pop_back();
  edges_.pop_back();
}

bool difference_graph::assert_at_most(int x, int y, const delta_number& bound, bound_reason why) {
  const int e = static_cast<int>(edges_.size());
  edges_.push_back({y, x, bound, why});
  leaving_[at(y)].push_back(e);
  broken_ = broken_ || !bound.is_known();
  if (!repair(e)) {
    remove_last_edge();
    return false;
  }
  return true;
}

// Variables are settled by how far they have to fall, farthest first; each is settled once, since a path over settled
// ones cannot make it fall farther.
bool difference_graph::repair(int new_edge) {
  const edge added = edges_[at(new_edge)];
  relax(added.to, new_edge, potential_[at(added.from)] + added.length);
  bool consistent = true;
  const auto later = [](const candidate& a, const candidate& b) {
    return b.change < a.change || (b.change == a.change && b.variable < a.variable);
  };
  while (consistent && !queue_.empty()) {
    std::pop_heap(queue_.begin(), queue_.end(), later);
    const candidate next = std::move(queue_.back());
    queue_.pop_back();
    const int v = next.variable;
    if (settled_[at(v)] != 0 || !(change_[at(v)] == next.change)) {
      continue;
    }
    if (v == added.from) {
      consistent = false;
      break;
    }
    settled_[at(v)] = 1;
    before_.emplace_back(v, potential_[at(v)]);
    potential_[at(v)] += next.change;
    broken_ = broken_ || !potential_[at(v)].is_known();
    work_.charge(1 + leaving_[at(v)].size());
    for (const int e : leaving_[at(v)]) {
      if (settled_[at(edges_[at(e)].to)] == 0) {
        relax(edges_[at(e)].to, e, potential_[at(v)] + edges_[at(e)].length);
      }
    }
  }
  if (!consistent) {
    conflict_.clear();
    int v = added.from;
    do {
      const edge& e = edges_[at(reached_by_[at(v)])];
      conflict_.push_back(e.why);
      v = e.from;
    } while (v != added.from);
    for (auto& [variable, value] : before_) {
      potential_[at(variable)] = std::move(value);
    }
  }
  for (const int v : touched_) {
    change_[at(v)] = {};
    settled_[at(v)] = 0;
  }
  touched_.clear();
  before_.clear();
  queue_.clear();
  return consistent;
}

void difference_graph::relax(int variable, int by_edge, const delta_number& target) {
  delta_number change = target - potential_[at(variable)];
  if (!(change < change_[at(variable)])) {
    return;
  }
  if (change_[at(variable)].is_zero()) {
    touched_.push_back(variable);
  }
  reached_by_[at(variable)] = by_edge;
  change_[at(variable)] = change;
  queue_.push_back({std::move(change), variable});
  std::push_heap(queue_.begin(), queue_.end(), [](const candidate& a, const candidate& b) {
    return b.change < a.change || (b.change == a.change && b.variable < a.variable);
  });
}

// ---- Forced differences: the strongly connected components of the tight edges.

void difference_graph::find_components() {
  const std::size_t n = potential_.size();
  component_.assign(n, -1);
  std::vector<int> order(n, -1);  // of discovery
  std::vector<int> low(n, 0);
  std::vector<int> open;
  std::vector<std::pair<int, std::size_t>> path;
  int discovered = 0;
  int components = 0;
  const auto enter = [&](int v) {
    order[at(v)] = low[at(v)] = discovered++;
    open.push_back(v);
    path.emplace_back(v, 0);
  };
  for (int root = 0; root < size(); ++root) {
    if (order[at(root)] >= 0) {
      continue;
    }
    enter(root);
    while (!path.empty()) {
      const int v = path.back().first;
      if (path.back().second < leaving_[at(v)].size()) {
        const edge& e = edges_[at(leaving_[at(v)][path.back().second++])];
        if (!is_tight(e)) {
          continue;
        }
        if (order[at(e.to)] < 0) {
          enter(e.to);
        } else if (component_[at(e.to)] < 0) {
          low[at(v)] = std::min(low[at(v)], order[at(e.to)]);
        }
        continue;
      }
      path.pop_back();
      if (!path.empty()) {
        low[at(path.back().first)] = std::min(low[at(path.back().first)], low[at(v)]);
      }
      if (low[at(v)] == order[at(v)]) {
        int member = -1;
        do {
          member = open.back();
          open.pop_back();
          component_[at(member)] = components;
        } while (member != v);
        ++components;
      }
    }
  }
  work_.charge(n + edges_.size());
}

void difference_graph::explain_forced(int x, int y, std::vector<bound_reason>& why) {
  explain_path(x, y, why);
  explain_path(y, x, why);
}

// A shortest path of tight edges.
void difference_graph::explain_path(int from, int to, std::vector<bound_reason>& why) {
  std::vector<int> queue{from};
  touched_.push_back(from);
  settled_[at(from)] = 1;
  for (std::size_t i = 0; i < queue.size() && settled_[at(to)] == 0; ++i) {
    for (const int e : leaving_[at(queue[i])]) {
      const int next = edges_[at(e)].to;
      if (settled_[at(next)] == 0 && component_[at(next)] == component_[at(from)] && is_tight(edges_[at(e)])) {
        settled_[at(next)] = 1;
        touched_.push_back(next);
        reached_by_[at(next)] = e;
        queue.push_back(next);
      }
    }
  }
  work_.charge(queue.size());
  for (int v = to; v != from; v = edges_[at(reached_by_[at(v)])].from) {
    why.push_back(edges_[at(reached_by_[at(v)])].why);
  }
  for (const int v : touched_) {
    settled_[at(v)] = 0;
  }
  touched_.clear();
}

}  // namespace vetro::smt

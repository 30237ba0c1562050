// Nodes are worked off before relations, both in the order in which they were touched. A cycle of contractions such as
// x = x/2 + y/2 tightens for ever: a node that has been tightened often enough is held back until everything else has
// come to rest, so that no relation waits for such a cycle. Then all are allowed more, within a budget for all
// together. What is not tightened is not wrong, only wider.
#include "qv_solver_list/analysis/interval_graph.h"

#include <utility>

#include "number/limits.h"

namespace vetro {
namespace {

// What a relation says of the difference of its sides.
interval pred_to_diff_bound(pred_type pred) {
  switch (pred) {
    case Gt:
      return interval_zero_to_pos_inf(true);
    case Ge:
      return interval_zero_to_pos_inf(false);
    case Lt:
      return interval_neg_inf_to_zero(true);
    case Le:
      return interval_neg_inf_to_zero(false);
    default:
      return interval_point(rat_zero);
  }
}

}  // namespace

std::uint32_t interval_graph::queue::pop() {
  const std::uint32_t item = items[head++];
  if (empty()) {
    items.clear();
    head = 0;
  }
  return item;
}

// ---- Building.

interval_graph::node_id interval_graph::add_node(ex_kind kind, const interval& I) {
  const auto id = static_cast<node_id>(nodes_.size());
  expr_node n{};
  n.I = I;
  n.kind = kind;
  n.same_as = id;
  n.saved_in = attempt_;
  nodes_.push_back(n);
  return id;
}

interval_graph::node_id interval_graph::add_leaf(ex_kind kind, const interval& I, bool defined) {
  const node_id n = add_node(kind, I);
  nodes_[n].defined = defined;
  return n;
}

interval_graph::node_id interval_graph::add_unsupported() {
  const node_id n = add_node(EX_OPAQUE, interval_top());
  nodes_[n].unsupported = true;
  return n;
}

interval_graph::node_id interval_graph::add_negation(node_id a) {
  const node_id n = add_node(EX_UNOP, interval_top());
  nodes_[n].a = a;
  attach(&expr_node::parents, a, n);
  push(n);
  return n;
}

interval_graph::node_id interval_graph::add_operation(interval_op op, node_id a, node_id b) {
  const node_id n = add_node(EX_BINOP, interval_top());
  nodes_[n].op = op;
  nodes_[n].a = a;
  nodes_[n].b = b;
  attach(&expr_node::parents, a, n);
  if (b != a) {
    attach(&expr_node::parents, b, n);
  }
  push(n);
  return n;
}

void interval_graph::attach(link_id expr_node::*list, node_id n, std::uint32_t target) {
  links_.push_back({target, changing(n).*list});
  nodes_[n].*list = static_cast<link_id>(links_.size() - 1);
}

void interval_graph::identify(node_id a, node_id b) {
  changing(b).same_as = representative(a);
  relate(Eq, a, b, no_node, false);
}

void interval_graph::relate(pred_type pred, node_id lhs, node_id rhs, node_id diff, bool asserted) {
  const auto id = static_cast<relation_id>(relations_.size());
  relations_.push_back({lhs, rhs, diff, pred});
  if (asserted) {
    require_defined(lhs);
    require_defined(rhs);
  }
  attach(&expr_node::relations, lhs, id);
  attach(&expr_node::relations, rhs, id);
  if (diff != no_node) {
    attach(&expr_node::relations, diff, id);
  }
  push_relation(id);
}

void interval_graph::require_defined(node_id n) {
  if (nodes_[n].required_defined) {
    return;
  }
  changing(n).required_defined = true;
  push(n);
  if (nodes_[n].a != no_node) {
    require_defined(nodes_[n].a);
  }
  if (nodes_[n].b != no_node) {
    require_defined(nodes_[n].b);
  }
}

// ---- Attempts.

void interval_graph::begin_attempt() {
  ++attempt_;
  saved_.clear();
  nodes_before_ = nodes_.size();
  relations_before_ = relations_.size();
  links_before_ = links_.size();
}

void interval_graph::end_attempt() {
  empty_queues();
  for (const saved_node& node : saved_) {
    nodes_[node.id] = node.content;
  }
  nodes_.resize(nodes_before_);
  relations_.resize(relations_before_);
  links_.resize(links_before_);
  saved_.clear();
  contradiction_ = false;
}

interval_graph::expr_node& interval_graph::changing(node_id n) {
  expr_node& node = nodes_[n];
  if (node.saved_in != attempt_) {
    saved_.push_back({n, node});
    saved_.back().content.in_queue = false;
    node.saved_in = attempt_;
    node.tightened = 0;
  }
  return node;
}

// ---- Queues.

void interval_graph::push(node_id n) {
  if (!nodes_[n].in_queue) {
    nodes_[n].in_queue = true;
    node_queue_.push(n);
  }
}

void interval_graph::push_relation(relation_id r) {
  if (!relations_[r].in_queue) {
    relations_[r].in_queue = true;
    relation_queue_.push(r);
  }
}

void interval_graph::push_parents_and_relations(node_id n) {
  for (link_id l = nodes_[n].parents; l != end_of_list; l = links_[l].next) {
    push(links_[l].target);
  }
  for (link_id l = nodes_[n].relations; l != end_of_list; l = links_[l].next) {
    push_relation(links_[l].target);
  }
}

void interval_graph::empty_queues() {
  while (!node_queue_.empty()) {
    nodes_[node_queue_.pop()].in_queue = false;
  }
  while (!relation_queue_.empty()) {
    relations_[relation_queue_.pop()].in_queue = false;
  }
  for (const node_id n : held_back_) {
    nodes_[n].held_back = false;
  }
  held_back_.clear();
}

// ---- Propagation.

void interval_graph::settle() {
  allowed_each_ = limits::interval_tightenings_first;
  tightened_more_ = 0;
  do {
    drain();
  } while (!contradiction_ && allow_more());
  empty_queues();
}

void interval_graph::drain() {
  while (!contradiction_) {
    if (!node_queue_.empty()) {
      const node_id n = node_queue_.pop();
      nodes_[n].in_queue = false;
      process_node(n);
    } else if (!relation_queue_.empty()) {
      const relation_id r = relation_queue_.pop();
      relations_[r].in_queue = false;
      process_relation(r);
    } else {
      return;
    }
  }
}

// Another round for the nodes that were held back, and for all that could tighten them.
bool interval_graph::allow_more() {
  if (held_back_.empty() || tightened_more_ >= limits::interval_tightenings) {
    return false;
  }
  allowed_each_ *= 4;
  for (const node_id n : held_back_) {
    nodes_[n].held_back = false;
    push(n);
    push_parents_and_relations(n);
  }
  held_back_.clear();
  return true;
}

// Intersects the node's interval and tells whether that changed it.
bool interval_graph::narrow(node_id n, const interval& allowed) {
  const interval narrowed = interval_intersect(nodes_[n].I, allowed);
  if (contradiction_ || interval_equal(narrowed, nodes_[n].I)) {
    return false;
  }
  if (narrowed.is_bottom) {
    contradiction_ = true;
    return false;
  }
  expr_node& node = changing(n);
  const bool beyond_first = node.tightened >= limits::interval_tightenings_first;
  if (node.tightened >= allowed_each_ || (beyond_first && tightened_more_ >= limits::interval_tightenings)) {
    if (!node.held_back) {
      node.held_back = true;
      held_back_.push_back(n);
    }
    return false;
  }
  ++node.tightened;
  tightened_more_ += beyond_first ? 1 : 0;
  node.I = narrowed;
  push_parents_and_relations(n);
  return true;
}

void interval_graph::tighten_node(node_id n, const interval& allowed) {
  if (narrow(n, allowed)) {
    push(n);
  }
}

void interval_graph::process_node(node_id n) {
  enforce_required_defined(n);
  if (contradiction_) {
    return;
  }
  const bool defined = node_is_defined(nodes_[n]);
  if (defined != nodes_[n].defined) {
    changing(n).defined = defined;
    push_parents_and_relations(n);
  }
  if (defined && is_operation(n)) {
    narrow(n, forward(nodes_[n]));
    backward(n);
  }
}

// A divisor in a relation that is asserted is not 0, and neither is a base to the power 0.
void interval_graph::enforce_required_defined(node_id n) {
  const expr_node& node = nodes_[n];
  if (!node.required_defined || node.kind != EX_BINOP) {
    return;
  }
  if (node.op == interval_op::div) {
    tighten_node(node.b, interval_exclude_zero_when_one_sided(nodes_[node.b].I));
  } else if (node.op == interval_op::power && interval_is_point_value(nodes_[node.b].I, rat_zero)) {
    tighten_node(node.a, interval_exclude_zero_when_one_sided(nodes_[node.a].I));
  }
}

bool interval_graph::node_is_defined(const expr_node& n) const {
  if (n.kind == EX_UNOP) {
    return nodes_[n.a].defined;
  }
  if (n.kind != EX_BINOP) {
    return !n.unsupported;
  }
  const expr_node& a = nodes_[n.a];
  const expr_node& b = nodes_[n.b];
  if (!a.defined || !b.defined || interval_has_indeterminate_inf_binop(n.op, a.I, b.I)) {
    return false;
  }
  int exponent = 0;
  switch (n.op) {
    case interval_op::div:
      return !interval_contains_zero(b.I);
    case interval_op::power:
      return interval_point_to_nonneg_int(b.I, &exponent) && (exponent > 0 || !interval_contains_zero(a.I));
    default:
      return true;
  }
}

// The value of a defined operation.
interval interval_graph::forward(const expr_node& n) const {
  const interval& a = nodes_[n.a].I;
  if (n.kind == EX_UNOP) {
    return interval_neg(a);
  }
  const interval& b = nodes_[n.b].I;
  int exponent = 0;
  switch (n.op) {
    case interval_op::plus:
      return interval_add(a, b);
    case interval_op::minus:
      return interval_sub(a, b);
    case interval_op::mult:
      return representative(n.a) == representative(n.b) ? interval_pow_const(a, 2) : interval_mul(a, b);
    case interval_op::div:
      return representative(n.a) == representative(n.b) ? interval_point(rat_one) : interval_div(a, b);
    case interval_op::power:
      return interval_point_to_nonneg_int(b, &exponent) ? interval_pow_const(a, exponent) : interval_top();
  }
  return interval_top();
}

// From the value of a defined operation and one operand to the other operand.
void interval_graph::backward(node_id n) {
  const expr_node node = nodes_[n];
  const auto value_of = [this](node_id id) -> const interval& { return nodes_[id].I; };
  if (node.kind == EX_UNOP) {
    tighten_node(node.a, interval_neg(value_of(n)));
    return;
  }
  switch (node.op) {
    case interval_op::plus:
      tighten_node(node.a, interval_sub(value_of(n), value_of(node.b)));
      tighten_node(node.b, interval_sub(value_of(n), value_of(node.a)));
      break;
    case interval_op::minus:
      tighten_node(node.a, interval_add(value_of(n), value_of(node.b)));
      tighten_node(node.b, interval_sub(value_of(node.a), value_of(n)));
      break;
    case interval_op::mult:
      backward_product(n);
      break;
    case interval_op::div:
      backward_quotient(n);
      break;
    case interval_op::power:
      break;
  }
}

// A quotient by an infinity says nothing of what was divided, and neither does an infinite product of an infinite
// factor. That holds for every value that is still possible: what is infinite may turn out later.
void interval_graph::backward_product(node_id n) {
  const auto [a, b] = std::pair(nodes_[n].a, nodes_[n].b);
  const auto divides = [&](node_id d) {
    return !interval_contains_zero(nodes_[d].I) && !interval_is_point_inf(nodes_[d].I) &&
           !(may_be_infinite(n) && may_be_infinite(d));
  };
  if (divides(b)) {
    tighten_node(a, interval_div(nodes_[n].I, nodes_[b].I));
  }
  if (divides(a)) {
    tighten_node(b, interval_div(nodes_[n].I, nodes_[a].I));
  }
}

void interval_graph::backward_quotient(node_id n) {
  const auto [a, b] = std::pair(nodes_[n].a, nodes_[n].b);
  if (interval_is_point_inf(nodes_[b].I)) {
    return;
  }
  if (!may_be_infinite(b) || !interval_contains_zero(nodes_[n].I)) {
    tighten_node(a, interval_mul(nodes_[n].I, nodes_[b].I));
  }
  if (!interval_contains_zero(nodes_[n].I) && !interval_is_point_inf(nodes_[n].I) &&
      !(may_be_infinite(a) && may_be_infinite(n))) {
    tighten_node(b, interval_div(nodes_[a].I, nodes_[n].I));
  }
}

void interval_graph::process_relation(relation_id r) {
  const interval_relation rel = relations_[r];
  const auto [lhs, rhs] = std::pair(rel.lhs, rel.rhs);
  if (!nodes_[lhs].defined || !nodes_[rhs].defined) {
    return;
  }
  if (representative(lhs) == representative(rhs) && (rel.pred == Lt || rel.pred == Gt)) {
    contradiction_ = true;
    return;
  }
  // The difference of equal infinities has no value, even where it is one expression with something that has.
  if (rel.diff != no_node && nodes_[rel.diff].defined &&
      !interval_has_indeterminate_inf_binop(interval_op::minus, nodes_[lhs].I, nodes_[rhs].I)) {
    tighten_node(rel.diff, pred_to_diff_bound(rel.pred));
  }
  switch (rel.pred) {
    case Gt:
    case Ge:
      return propagate_le_relation(rhs, lhs, rel.pred == Gt);
    case Lt:
    case Le:
      return propagate_le_relation(lhs, rhs, rel.pred == Lt);
    default:
      tighten_node(lhs, nodes_[rhs].I);
      tighten_node(rhs, nodes_[lhs].I);
  }
}

// lhs below rhs: the upper bound of rhs holds for lhs, the lower bound of lhs for rhs.
void interval_graph::propagate_le_relation(node_id lhs, node_id rhs, bool strict) {
  const auto relation_bound = [strict](const bound& b) { return bound{b.v, b.open || strict}; };
  interval below = interval_top();
  below.hi = relation_bound(nodes_[rhs].I.hi);
  tighten_node(lhs, below);
  interval above = interval_top();
  above.lo = relation_bound(nodes_[lhs].I.lo);
  tighten_node(rhs, above);
}

}  // namespace vetro

// Expressions with an interval each, relations between them, and the propagation of bounds to a fixed point.
//
// A node's interval holds every value that its expression can have in a model of all relations. The graph knows no
// terms: who builds it decides which expressions are one node.
#pragma once

#include <cstdint>
#include <vector>

#include "number/interval.h"
#include "term/kinds.h"

namespace vetro {

enum class ex_kind : std::uint8_t { EX_VAR = 0, EX_CONST = 1, EX_UNOP = 2, EX_BINOP = 3, EX_OPAQUE = 4 };
using enum ex_kind;

class interval_graph {
 public:
  using node_id = std::uint32_t;
  static constexpr node_id no_node = UINT32_MAX;

  // Names may stand for infinities, which a product or quotient does not give back: 5 / inf and 7 / inf are both 0.
  void expect_infinite_values() { infinite_values_ = true; }

  // A leaf that is not defined counts as undefined until an asserted relation needs it; one that is not supported
  // stays undefined for ever, and relations on it have no effect.
  node_id add_leaf(ex_kind kind, const interval& I, bool defined);
  node_id add_unsupported();
  node_id add_negation(node_id a);
  node_id add_operation(interval_op op, node_id a, node_id b);

  // From now on a and b are one expression: wherever both have a value it is the same.
  void identify(node_id a, node_id b);
  // Equal for nodes that are one expression.
  node_id representative(node_id n) const { return nodes_[n].same_as; }

  // lhs pred rhs, for Eq, Gt, Ge, Lt, Le; diff is the node of lhs - rhs, or none. An asserted relation requires both
  // sides to have a value.
  void relate(pred_type pred, node_id lhs, node_id rhs, node_id diff, bool asserted);

  // Propagates until nothing changes, a contradiction is found or the budget is used up.
  void settle();

  bool contradiction() const { return contradiction_; }
  const interval& value(node_id n) const { return nodes_[n].I; }
  bool defined(node_id n) const { return nodes_[n].defined; }
  bool is_constant(node_id n) const { return nodes_[n].kind == EX_CONST; }
  bool is_number(node_id n) const { return is_constant(n) && interval_is_closed_point(nodes_[n].I, nullptr); }
  bool is_operation(node_id n) const { return nodes_[n].kind == EX_UNOP || nodes_[n].kind == EX_BINOP; }

  // What is added and found out between the two is forgotten again. Not nested.
  void begin_attempt();
  void end_attempt();

 private:
  using link_id = std::uint32_t;
  using relation_id = std::uint32_t;
  static constexpr link_id end_of_list = UINT32_MAX;

  // Plain data, so that an attempt can put nodes back as they were.
  struct expr_node {
    interval I;
    ex_kind kind;
    interval_op op = interval_op::plus;
    node_id a = no_node;
    node_id b = no_node;
    node_id same_as;
    link_id parents = end_of_list;
    link_id relations = end_of_list;
    std::uint32_t tightened = 0;  // times, since settle began
    std::uint32_t saved_in = 0;   // the attempt in which the node was saved
    bool defined = false;
    bool required_defined = false;
    bool unsupported = false;
    bool in_queue = false;
    bool held_back = false;
  };
  struct interval_relation {
    node_id lhs;
    node_id rhs;
    node_id diff;  // or none
    pred_type pred;
    bool in_queue = false;
  };
  struct link {
    std::uint32_t target;
    link_id next;
  };
  // First in, first out.
  struct queue {
    std::vector<std::uint32_t> items;
    std::size_t head = 0;
    bool empty() const { return head == items.size(); }
    void push(std::uint32_t item) { items.push_back(item); }
    std::uint32_t pop();
  };

  node_id add_node(ex_kind kind, const interval& I);
  expr_node& changing(node_id n);  // for every change of a node that may outlast an attempt
  void attach(link_id expr_node::*list, node_id n, std::uint32_t target);
  void require_defined(node_id n);

  void push(node_id n);
  void push_relation(relation_id r);
  void push_parents_and_relations(node_id n);
  void drain();
  bool allow_more();
  void empty_queues();

  bool narrow(node_id n, const interval& allowed);
  void tighten_node(node_id n, const interval& allowed);
  void process_node(node_id n);
  void enforce_required_defined(node_id n);
  bool node_is_defined(const expr_node& n) const;
  interval forward(const expr_node& n) const;
  void backward(node_id n);
  void backward_product(node_id n);
  void backward_quotient(node_id n);
  bool may_be_infinite(node_id n) const { return infinite_values_ && interval_attains_infinity(nodes_[n].I); }
  void process_relation(relation_id r);
  void propagate_le_relation(node_id lhs, node_id rhs, bool strict);

  std::vector<expr_node> nodes_;
  std::vector<interval_relation> relations_;
  std::vector<link> links_;
  queue node_queue_;
  queue relation_queue_;
  std::vector<node_id> held_back_;
  std::uint32_t allowed_each_ = 0;    // tightenings of one node, for now
  std::uint64_t tightened_more_ = 0;  // beyond the first allowance of each node
  bool contradiction_ = false;
  bool infinite_values_ = false;

  struct saved_node {
    node_id id;
    expr_node content;
  };
  std::uint32_t attempt_ = 0;
  std::vector<saved_node> saved_;
  std::size_t nodes_before_ = 0;
  std::size_t relations_before_ = 0;
  std::size_t links_before_ = 0;
};

}  // namespace vetro

// Terms to the nodes of an interval graph: equal expressions become one node.
//
// Sums, products and natural powers of variables and numbers are known by their polynomial, other operations by their
// operands, and everything else, such as sin(x), by the term up to bound names. Nothing is known by how it prints.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "number/exact.h"
#include "qv_solver_list/algebra/fingerprint.h"
#include "qv_solver_list/analysis/interval_graph.h"
#include "qv_solver_list/complex_values.h"
#include "term/ast.h"
#include "term/compare.h"

namespace vetro {

class interval_reader {
 public:
  using node_id = interval_graph::node_id;

  // Both are borrowed and must outlive the reader.
  interval_reader(interval_graph& graph, complex_values& complex) : graph_(graph), complex_(complex) {}

  // The node of the expression t.
  node_id parse_expr(term_ptr t) { return read(t).node; }

  // What is read between the two is forgotten again; goes together with the attempts of the graph.
  void begin_attempt() { in_attempt_ = true; }
  void end_attempt();

 private:
  // A polynomial has a value for all reals, so that calculating with it changes no domain.
  struct entry {
    node_id node = interval_graph::no_node;
    bool polynomial = false;
    fingerprint print = {};
  };
  struct operation_key {
    interval_op op;
    node_id a;
    node_id b;
    bool operator==(const operation_key&) const = default;
  };
  struct operation_hasher {
    std::size_t operator()(const operation_key& key) const;
  };
  // The first expression of its form.
  struct polynomial_form {
    term_ptr t;
    node_id node;
    bool too_large = false;  // to be compared again
  };
  struct tables {
    std::unordered_map<term_ptr, entry> known;
    std::unordered_map<term_ptr, node_id, alpha_hasher, alpha_equal> opaque;
    std::unordered_map<operation_key, node_id, operation_hasher> operations;
    std::unordered_multimap<std::uint64_t, polynomial_form> polynomials;  // by fingerprint
  };

  entry read(term_ptr t);
  entry read_new(term_ptr t);
  entry read_constant(term_ptr t, bool defined);
  entry read_negation(term_ptr operand);
  entry read_operation(interval_op op, term_ptr left, term_ptr right);
  entry number(const exact& value);
  entry opaque(ex_kind kind, term_ptr t, bool defined);
  node_id operation_node(interval_op op, node_id a, node_id b);
  node_id negation_node(node_id a);
  template <class Make>
  node_id node_for(const operation_key& key, Make make);
  void identify_equal(term_ptr t, entry& e);
  bool joins(const polynomial_form& known, term_ptr t, node_id node);

  tables& current() { return in_attempt_ ? of_attempt_ : base_; }

  interval_graph& graph_;
  complex_values& complex_;
  tables base_;
  tables of_attempt_;
  bool in_attempt_ = false;
};

}  // namespace vetro

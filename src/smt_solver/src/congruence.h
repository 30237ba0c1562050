// The theory of equality with uninterpreted functions: which nodes are equal, given equations and disequations that
// come and go with the levels of the search.
//
// A node is a leaf or the application of one node to one other. Classes are kept by merging the smaller into the
// larger; a table from pairs of classes to applications finds congruent ones. Every merge is one edge of a forest whose
// paths explain why two nodes are equal; an edge that was there stays until the search goes back, so that an
// explanation may be asked for at any time later.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "number/budget.h"
#include "smt_solver/src/search.h"

namespace vetro::smt {

using node = std::int32_t;
inline constexpr node no_node = -1;

// A table from pairs of classes to applications: open addressing, without order.
class signature_table {
 public:
  node find(node function, node argument) const;  // no_node when absent
  void insert(node function, node argument, node application);
  void erase(node function, node argument);

 private:
  struct entry {
    node function = no_node;
    node argument = no_node;
    node application = no_node;
  };
  std::size_t slot(node function, node argument) const;
  void grow();
  std::vector<entry> entries_;
  std::size_t used_ = 0;
};

class congruence {
 public:
  explicit congruence(budget& work) : work_(work) {}

  // ---- Building, at level 0 and before anything is asserted.

  node add_leaf();
  node add_application(node function, node argument);  // each pair once
  void set_constant(node n) { constant_[at(n)] = n; }  // two constants are never equal
  void set_shared(node n) { shared_[at(n)] = n; }      // its equalities concern another theory
  void add_atom(literal l, node left, node right);     // l says that the two are equal; a variable once

  // ---- Assertions. False: contradiction, with conflict() filled.

  bool assert_literal(literal l);
  // An equation that follows from true literals.
  bool assert_entailed(node a, node b, std::span<const literal> premises);

  void open_level() { level_starts_.push_back(undo_.size()); }
  void back_to_level(int level);

  // ---- Questions.

  int size() const { return static_cast<int>(class_.size()); }
  node class_of(node n) const { return class_[at(n)]; }
  bool equal(node a, node b) const { return class_of(a) == class_of(b); }
  bool is_application(node n) const { return function_[at(n)] != no_node; }
  node function_of(node n) const { return function_[at(n)]; }
  node argument_of(node n) const { return argument_[at(n)]; }
  node shared_in(node n) const { return shared_[at(class_of(n))]; }  // a shared node of the class, or none
  bool is_atom(literal l) const { return index(l) < atoms_.size() && atoms_[index(l)].left != no_node; }
  std::pair<node, node> sides(literal l) const { return {atoms_[index(l)].left, atoms_[index(l)].right}; }

  // Disequations that hold now.
  struct disequation {
    node left;
    node right;
    literal why;
  };
  std::span<const disequation> disequations() const { return disequations_; }

  // Adds true literals that make the two equal.
  void explain(node a, node b, std::vector<literal>& premises);
  void explain_implied(literal l, std::vector<literal>& premises);

  std::vector<literal>& conflict() { return conflict_; }
  std::vector<literal>& implied() { return implied_; }  // literals that follow and were not asserted

  // Pairs of shared nodes that were made equal by a merge; taken and emptied by the owner.
  struct shared_merge {
    node left;
    node right;
    literal why;  // the equation that did it, or -1 for congruences and entailed equations
    bool entailed;
  };
  std::vector<shared_merge>& shared_merges() { return shared_merges_; }

 private:
  enum class cause_kind : unsigned char { equation, congruent, entailed };
  struct cause {
    cause_kind kind = cause_kind::equation;
    std::int32_t detail = 0;  // the literal, or the number of the premises
  };
  struct atom {
    node left = no_node;
    node right = no_node;
  };
  // Why an atom is false: its sides equal those of a disequation, or two constants (why is -1).
  struct witness {
    node left = no_node;
    node right = no_node;
    literal why = -1;
  };
  struct neighbour {  // an atom or a disequation, seen from one of its sides
    node here;
    node other;
    literal l;
  };
  struct pending_merge {
    node a;
    node b;
    cause why;
  };
  enum class undo_kind : unsigned char { merge, signature, disequation, known, premises };
  struct undo_record {
    undo_kind kind;
    node a;  // merge: the class that was taken in, and the one that took it
    node b;
    node c = no_node;  // merge: the ends of the edge that was made
    node d = no_node;
  };
  struct merge_sizes {
    std::size_t users;
    std::size_t atoms;
    std::size_t disequations;
    node constant;
    node shared;
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }
  static std::size_t index(literal l) { return static_cast<std::size_t>(variable_of(l)); }

  bool close();
  bool merge(const pending_merge& m);
  void make_root(node n);
  void join_users(node from, node into);
  bool check_disequations(node from, node into);
  void check_atoms(node from, node into);
  void refute_atoms(node from, node into);
  void refute_where_marked(node here);
  void mark_unequal(node of);
  void imply(literal l, const witness& why);
  void undo_merge(const undo_record& u);
  bool refuse(node a, node b, literal why);
  node common_ancestor(node a, node b);
  node explained_up_to(node n);
  void explain_path(node from, node to, std::vector<literal>& premises);

  budget& work_;

  // By node.
  std::vector<node> function_, argument_;
  std::vector<node> class_;
  std::vector<node> next_;         // the next member of the class, in a ring
  std::vector<node> forest_up_;    // explanation forest: the other end of the edge, no_node at a root
  std::vector<cause> forest_why_;  // and why that edge
  std::vector<node> explained_;    // during one explanation: a node above, up to which all edges are explained
  std::vector<std::uint32_t> explained_stamp_, visit_stamp_;
  std::uint32_t stamp_ = 0, visit_ = 0;

  // By class.
  std::vector<std::int32_t> class_size_;
  std::vector<node> constant_, shared_;
  std::vector<std::vector<node>> users_;  // applications with a member as function or argument
  std::vector<std::vector<neighbour>> class_atoms_, class_disequations_;
  std::vector<std::int32_t> unequal_mark_;  // while atoms are refuted: entry of the class that is known to be unequal
  std::vector<node> marked_;

  signature_table signatures_;
  std::vector<atom> atoms_;       // by variable
  std::vector<witness> witness_;  // by variable
  std::vector<std::uint8_t> known_;
  std::vector<disequation> disequations_;
  std::vector<literal> premises_;
  std::vector<std::size_t> premises_end_;

  std::vector<pending_merge> pending_;
  std::vector<std::pair<node, node>> to_explain_;
  std::vector<literal> conflict_, implied_;
  std::vector<shared_merge> shared_merges_;

  std::vector<undo_record> undo_;
  std::vector<merge_sizes> undo_sizes_;
  std::vector<std::size_t> level_starts_;
};

}  // namespace vetro::smt

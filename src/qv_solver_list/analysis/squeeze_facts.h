// What a list of assumptions says of the order of expressions: edges from the smaller to the greater side, and signs.
//
// Beside the edges themselves, every edge may be multiplied by one factor or two whose signs are known. These edges are
// not stored: a search finds them at the expressions that it comes to.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include "qv_solver_list/analysis/squeeze_keys.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "term/relation.h"

namespace vetro {

// A sign, as far as it is known: a set of these. Positive brings nonnegative with it, negative nonpositive.
enum squeeze_sign : std::uint8_t { sq_positive = 1, sq_nonnegative = 2, sq_negative = 4, sq_nonpositive = 8 };

struct squeeze_edge {
  squeeze_keys::key_id other;
  bool strict;
};

// One table for each layer of assumptions, as table<squeeze_facts>().
class squeeze_facts {
 public:
  using key_id = squeeze_keys::key_id;

  explicit squeeze_facts(assumption_facts& facts);

  // Shared with the layers below.
  squeeze_keys& keys() { return *keys_; }

  // Some assumption has more different subterms than are read: nothing is proved from this list.
  bool overflow() const { return overflow_; }
  // The bits that are known of k, in all layers.
  unsigned signs(key_id k) const;
  // Calls visit(edge) for each edge that leaves k (or ends at it), in all layers.
  template <class F>
  void for_each_edge(key_id k, bool leaving, F visit) const {
    for (const squeeze_facts* layer = this; layer != nullptr; layer = layer->below_) {
      if (const auto found = layer->nodes_.find(k); found != layer->nodes_.end()) {
        for (const squeeze_edge& edge : leaving ? found->second.out : found->second.in) {
          visit(edge);
        }
      }
    }
  }
  // The keys with a sign that may multiply an edge, in all layers: anything but a product and a quotient.
  std::vector<key_id> factors() const;
  bool is_factor(key_id k) const { return signs(k) != 0 && may_be_factor(k); }

 private:
  struct node {
    std::vector<squeeze_edge> out;
    std::vector<squeeze_edge> in;
    unsigned signs = 0;
  };
  // n/d on one side of a relation, which can be cleared of d as soon as its sign is known.
  struct quotient_relation {
    key_id n;
    key_id d;
    key_id other;
    bool quotient_is_greater;
    bool strict;
  };

  void collect_assumption(term_ptr t, complex_values& complex);
  void read_relation(const order_fact& relation);
  void add_sign(key_id k, unsigned bits);
  void add_edge(key_id from, key_id to, bool strict);
  void note_quotient(term_ptr side, key_id other, bool is_greater, bool strict);
  void clear_division(const quotient_relation& relation, unsigned signs);
  bool may_be_factor(key_id k) const;

  const squeeze_facts* below_ = nullptr;
  std::shared_ptr<squeeze_keys> keys_;
  std::unordered_map<key_id, node> nodes_;
  std::vector<key_id> signed_;  // keys with a sign in this layer, in the order in which they came
  std::vector<quotient_relation> quotients_;
  bool overflow_ = false;
};

}  // namespace vetro

// Signs are read before divisions are cleared, since a later assumption may tell the sign of an earlier denominator. A
// layer clears the divisions of the layers below once more, by the signs that it adds.
#include "qv_solver_list/analysis/squeeze_facts.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "number/limits.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

using key_id = squeeze_keys::key_id;

// Counts the different subterms of sides of relations, up to just beyond the limit.
class subterm_count {
 public:
  explicit subterm_count(squeeze_keys& keys) : keys_(keys) {}

  bool exceeded() const { return seen_.size() > limits::squeeze_subterms; }

  void add(term_ptr t) {
    if (exceeded() || !met_.insert(t)) {
      return;
    }
    seen_.insert(keys_.of(t));
    if (const auto view = composed_term_split(t)) {
      add(view->t1);
      if (view->t2 != nullptr) {
        add(view->t2);
      }
    }
  }

 private:
  squeeze_keys& keys_;
  node_set met_;
  std::unordered_set<key_id> seen_;
};

void add_conjuncts(term_ptr t, term_list& out) {
  const auto view = composed_prop_split(t);
  if (view && view->connect == And && view->t2 != nullptr) {
    add_conjuncts(view->t1, out);
    add_conjuncts(view->t2, out);
  } else {
    out.push_back(t);
  }
}

// A term of few nodes has few subterms.
bool has_too_many_subterms(term_ptr assumption, term_span conjuncts, squeeze_keys& keys) {
  if (assumption->size() <= limits::squeeze_subterms) {
    return false;
  }
  subterm_count count(keys);
  for (term_ptr conjunct : conjuncts) {
    if (const auto relation = pred_split(conjunct)) {
      count.add(relation->left);
      count.add(relation->right);
    }
  }
  return count.exceeded();
}

// What an order relation with 0 on its right side says of the left side.
unsigned sign_by_comparison(pred_type pred) {
  switch (pred) {
    case Gt:
      return sq_positive | sq_nonnegative;
    case Ge:
      return sq_nonnegative;
    case Lt:
      return sq_negative | sq_nonpositive;
    case Le:
      return sq_nonpositive;
    default:
      return 0;
  }
}

}  // namespace

squeeze_facts::squeeze_facts(assumption_facts& facts) {
  if (facts.below() != nullptr) {
    below_ = &facts.below()->table<squeeze_facts>();
    keys_ = below_->keys_;
    overflow_ = below_->overflow_;
  } else {
    keys_ = std::make_shared<squeeze_keys>();
  }
  for (term_ptr t : facts.own()) {
    if (t != nullptr) {
      collect_assumption(t, facts.table<complex_values>());
    }
  }
  for (const quotient_relation& relation : quotients_) {
    clear_division(relation, signs(relation.d));
  }
  for (const squeeze_facts* layer = below_; layer != nullptr; layer = layer->below_) {
    for (const quotient_relation& relation : layer->quotients_) {
      const auto added = nodes_.find(relation.d);
      clear_division(relation, added == nodes_.end() ? 0 : added->second.signs);
    }
  }
}

// A relation under a scope says less; one of values that are no reals, or of parts on which calculation proves nothing,
// says nothing here.
void squeeze_facts::collect_assumption(term_ptr t, complex_values& complex) {
  term_list conjuncts;
  add_conjuncts(t, conjuncts);
  overflow_ = overflow_ || has_too_many_subterms(t, conjuncts, keys());
  const auto is_real = [&](term_ptr side) { return !is_one_whole(side) && !complex.may_be_complex(side); };
  for (term_ptr conjunct : conjuncts) {
    const auto relation = conjunct->has(fact_scope) ? std::nullopt : pred_split(conjunct);
    if (relation && is_order_relation(relation->pred) && relation->pred != Neq && is_real(relation->left) &&
        is_real(relation->right)) {
      read_relation(order_fact{relation->pred, relation->left, relation->right}.ascending());
    }
  }
}

void squeeze_facts::read_relation(const order_fact& relation) {
  const key_id lhs = keys().of(relation.left);
  const key_id rhs = keys().of(relation.right);
  if (relation.pred == Eq) {
    add_edge(lhs, rhs, false);
    add_edge(rhs, lhs, false);
    return;
  }
  if (is_integer(relation.right, 0)) {
    add_sign(lhs, sign_by_comparison(relation.pred));
  }
  if (is_integer(relation.left, 0)) {
    add_sign(rhs, sign_by_comparison(*mirrored(relation.pred)));
  }
  const bool strict = relation.pred == Lt;
  add_edge(lhs, rhs, strict);
  note_quotient(relation.right, lhs, true, strict);
  note_quotient(relation.left, rhs, false, strict);
}

void squeeze_facts::add_sign(key_id k, unsigned bits) {
  unsigned& known = nodes_[k].signs;
  if (known == 0) {
    signed_.push_back(k);
  }
  known |= bits;
}

void squeeze_facts::add_edge(key_id from, key_id to, bool strict) {
  nodes_[from].out.push_back({to, strict});
  nodes_[to].in.push_back({from, strict});
}

// ---- Divisions.

void squeeze_facts::note_quotient(term_ptr side, key_id other, bool is_greater, bool strict) {
  const auto view = side->has_meta() ? std::nullopt : composed_term_split(side);
  if (view && view->t2 != nullptr && (view->oper == Div || view->oper == Frac)) {
    quotients_.push_back({keys().of(view->t1), keys().of(view->t2), other, is_greater, strict});
  }
}

// From a ≤ n/d follows a d ≤ n for d > 0, and n ≤ a d for d < 0; likewise from n/d ≤ a.
void squeeze_facts::clear_division(const quotient_relation& relation, unsigned signs) {
  if ((signs & (sq_positive | sq_negative)) == 0) {
    return;
  }
  const key_id cleared = keys().product(relation.other, relation.d);
  for (const unsigned sign : {sq_positive, sq_negative}) {
    if ((signs & sign) == 0) {
      continue;
    }
    if (relation.quotient_is_greater == (sign == sq_positive)) {
      add_edge(cleared, relation.n, relation.strict);
    } else {
      add_edge(relation.n, cleared, relation.strict);
    }
  }
}

// ---- Questions.

unsigned squeeze_facts::signs(key_id k) const {
  unsigned bits = 0;
  for (const squeeze_facts* layer = this; layer != nullptr; layer = layer->below_) {
    const auto found = layer->nodes_.find(k);
    bits |= found == layer->nodes_.end() ? 0 : found->second.signs;
  }
  return bits;
}

bool squeeze_facts::may_be_factor(key_id k) const {
  return k != squeeze_keys::zero && k != squeeze_keys::one && !keys_->is_product(k) && !keys_->is_quotient(k);
}

std::vector<key_id> squeeze_facts::factors() const {
  std::vector<key_id> all;
  for (const squeeze_facts* layer = this; layer != nullptr; layer = layer->below_) {
    std::ranges::copy_if(layer->signed_, std::back_inserter(all), [this](key_id k) { return may_be_factor(k); });
  }
  return all;
}

}  // namespace vetro

// The relations between two values: order, equality and membership, and what one of them says about another.
#pragma once

#include <optional>

#include "term/ast.h"

namespace vetro {

// Eq, Neq, Gt, Ge, Lt, Le: the relations that the order of two reals decides.
bool is_order_relation(pred_type pred);

// Whether t relates two sides by a sign between them: = ≠ > ≥ < ≤ ≈ ≡ | ∈ ∉ ⊆.
bool relates_two_sides(term_ptr t);

// The relation that holds of reals exactly where pred does not; also between Belong and NotBelong. Nothing for others.
std::optional<pred_type> negated(pred_type pred);

// The relation that says of (b, a) what pred says of (a, b): Lt for Gt, and each symmetric one for itself. Nothing for
// a relation without such a counterpart.
std::optional<pred_type> mirrored(pred_type pred);

// Whether an order relation holds of values whose difference, left less right, has the sign of order.
bool holds(pred_type pred, int order);

// Whether the order relation `given` between two values makes `asked` true of them.
bool implies(pred_type given, pred_type asked);

// A comparison of two terms.
struct order_fact {
  pred_type pred;
  term_ptr left;
  term_ptr right;

  order_fact turned() const { return {*mirrored(pred), right, left}; }
  order_fact opposite() const { return {*negated(pred), left, right}; }
  // With < or ≤ in place of > or ≥.
  order_fact ascending() const { return pred == Gt || pred == Ge ? turned() : *this; }
};

// The comparison that t is: an order relation of two terms, or the negation of one. Nothing for any other term, for a
// proposition with a scope (which says less), and for an equation that binds the variables of its Landau terms.
std::optional<order_fact> as_order(term_ptr t);

}  // namespace vetro

// One row for each order relation: on which signs of left less right it holds. All other answers follow from that.
#include "term/relation.h"

#include <cassert>

#include "term/term_split_combine.h"

namespace vetro {
namespace {

constexpr unsigned less = 1;
constexpr unsigned equal = 2;
constexpr unsigned greater = 4;

// The signs of the difference that the relation admits; 0 for a relation that the order does not decide.
constexpr unsigned orders_of(pred_type pred) {
  switch (pred) {
    case Eq:
      return equal;
    case Neq:
      return less | greater;
    case Gt:
      return greater;
    case Ge:
      return greater | equal;
    case Lt:
      return less;
    case Le:
      return less | equal;
    default:
      return 0;
  }
}

std::optional<pred_type> relation_of_orders(unsigned orders) {
  for (const pred_type pred : {Eq, Neq, Gt, Ge, Lt, Le}) {
    if (orders_of(pred) == orders) {
      return pred;
    }
  }
  return std::nullopt;
}

}  // namespace

bool is_order_relation(pred_type pred) { return orders_of(pred) != 0; }

bool relates_two_sides(term_ptr t) {
  switch (t->head()) {
    case Eq:
    case Neq:
    case Gt:
    case Ge:
    case Lt:
    case Le:
    case Appro:
    case IdentEq:
    case Divides:
    case Belong:
    case NotBelong:
    case Subset:
      return t->argument_count() == 2;
    default:
      return false;
  }
}

std::optional<pred_type> negated(pred_type pred) {
  if (pred == Belong || pred == NotBelong) {
    return pred == Belong ? NotBelong : Belong;
  }
  return relation_of_orders(orders_of(pred) == 0 ? 0 : (less | equal | greater) & ~orders_of(pred));
}

std::optional<pred_type> mirrored(pred_type pred) {
  switch (pred) {
    case Gt:
      return Lt;
    case Ge:
      return Le;
    case Lt:
      return Gt;
    case Le:
      return Ge;
    case Eq:
    case Neq:
    case Appro:
    case IdentEq:
    case Coprime:
    case Equinumerous:
      return pred;
    default:
      return std::nullopt;
  }
}

bool holds(pred_type pred, int order) {
  assert(is_order_relation(pred));
  const unsigned sign = order < 0 ? less : (order == 0 ? equal : greater);
  return (orders_of(pred) & sign) != 0;
}

bool implies(pred_type given, pred_type asked) {
  const unsigned orders = orders_of(given);
  return orders != 0 && (orders & ~orders_of(asked)) == 0;
}

std::optional<order_fact> as_order(term_ptr t) {
  if (t == nullptr || t->has_meta()) {
    return std::nullopt;
  }
  if (const auto connected = composed_prop_split(t); connected && connected->connect == Not && !connected->t2) {
    const auto inner = as_order(connected->t1);
    return inner ? std::optional(inner->opposite()) : std::nullopt;
  }
  const auto view = pred_split(t);
  if (!view || !is_order_relation(view->pred)) {
    return std::nullopt;
  }
  return order_fact{view->pred, view->left, view->right};
}

}  // namespace vetro

// Joining expressions is what lets the solver see that two relations speak of one thing. It must never join what is
// different, so it rests on exact comparisons; fingerprints only choose what is compared.
#include "qv_solver_list/analysis/interval_reader.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "number/limits.h"
#include "qv_solver_list/algebra/rational_domain.h"
#include "qv_solver_list/constant_analysis.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

using node_id = interval_graph::node_id;

interval millionths(std::int64_t lo, std::int64_t hi) {
  return {{rat_norm(lo, 1'000'000, SAT_FOR_LOWER), false}, {rat_norm(hi, 1'000'000, SAT_FOR_UPPER), false}};
}

// Bounds of a number that has no fraction of 64 bits: as many decimals as fit.
interval enclosure_of_long(const exact& value) {
  constexpr std::int64_t most = INT64_MAX - 1;
  const exact limit = most;
  if (value > limit) {
    return {{rational{RAT_FINITE, most, 1}, true}, {rat_pos_inf, true}};
  }
  if (value < -limit) {
    return {{rat_neg_inf, true}, {rational{RAT_FINITE, -most, 1}, true}};
  }
  exact scaled = value;
  std::int64_t scale = 1;
  while (scale < INT64_MAX / 10 && scaled * exact(10) <= limit && scaled * exact(10) >= -limit) {
    scaled *= exact(10);
    scale *= 10;
  }
  const std::int64_t below = *floor(scaled).to_int64();
  return {{rat_norm(below, scale, SAT_FOR_LOWER), false}, {rat_norm(below + 1, scale, SAT_FOR_UPPER), false}};
}

std::optional<interval_op> arithmetic(oper_type oper) {
  switch (oper) {
    case Plus:
      return interval_op::plus;
    case Minus:
      return interval_op::minus;
    case Mult:
      return interval_op::mult;
    case Div:
    case Frac:
      return interval_op::div;
    case Power:
      return interval_op::power;
    default:
      return std::nullopt;
  }
}

bool is_commutative(interval_op op) { return op == interval_op::plus || op == interval_op::mult; }

// What calculation and bounds mean nothing for. An infinity is a point of the line here.
bool has_no_bounds(term_ptr t) {
  constexpr auto infinity = static_cast<unsigned>(whole_part::infinity_value);
  return (static_cast<unsigned>(whole_parts_of(t)) & ~infinity) != 0;
}

template <class Map, class Key>
typename Map::mapped_type* known_in(Map& in_attempt, Map& base, const Key& key) {
  if (const auto found = in_attempt.find(key); found != in_attempt.end()) {
    return &found->second;
  }
  const auto found = base.find(key);
  return found == base.end() ? nullptr : &found->second;
}

// The operation on two polynomials is one. A power needs a literal exponent from 1 on, a quotient a number below.
bool gives_polynomial(interval_op op, term_ptr right, const fingerprint& right_print) {
  switch (op) {
    case interval_op::power:
      return right->type() == Const && right->constant() == Integer && right->integer() >= 1;
    case interval_op::div:
      return right_print.is_number && right_print.at_zero.sign() != 0;
    default:
      return true;
  }
}

fingerprint print_of(interval_op op, const fingerprint& a, const fingerprint& b) {
  const signed_value<fingerprint> addends[] = {{a, false}, {b, op == interval_op::minus}};
  const fingerprint factors[] = {a, b};
  switch (op) {
    case interval_op::mult:
      return fingerprint_product(factors);
    case interval_op::div:
      return fingerprint_quotient(a, b);
    case interval_op::power:
      return fingerprint_power(a, b);
    default:
      return fingerprint_sum(addends);
  }
}

}  // namespace

std::size_t interval_reader::operation_hasher::operator()(const operation_key& key) const {
  const std::uint64_t operands = (std::uint64_t{key.a} << 32U) + key.b * 8ULL + static_cast<std::uint64_t>(key.op);
  return static_cast<std::size_t>((operands ^ operands >> 29U) * 0x9e3779b97f4a7c15ULL);
}

void interval_reader::end_attempt() {
  in_attempt_ = false;
  of_attempt_ = {};
}

interval_reader::entry interval_reader::read(term_ptr t) {
  if (const entry* known = known_in(of_attempt_.known, base_.known, t)) {
    return *known;
  }
  entry e = read_new(t);
  identify_equal(t, e);
  current().known.emplace(t, e);
  return e;
}

interval_reader::entry interval_reader::read_new(term_ptr t) {
  if (has_no_bounds(t)) {
    return {graph_.add_unsupported()};
  }
  bool defined = true;
  if (t->name_mask() == 0 && solver_const_expr_is_closed(t)) {
    if (const auto value = solver_const_analyze_exact_rational(t)) {
      return number(*value);
    }
    const solver_const_real_status status = solver_const_analyze_real_status(t);
    defined = status == SOLVER_CONST_REAL_DEFINED;
    if (t->type() == Const || status == SOLVER_CONST_REAL_UNDEFINED) {
      return read_constant(t, defined);
    }
  }
  const auto view = t->binders().empty() ? composed_term_split(t) : std::nullopt;
  if (view && view->t2 == nullptr && view->oper == Neg) {
    return read_negation(view->t1);
  }
  const auto op = view && view->t2 != nullptr ? arithmetic(view->oper) : std::nullopt;
  return op ? read_operation(*op, view->t1, view->t2) : opaque(t->type() == Var ? EX_VAR : EX_OPAQUE, t, defined);
}

// A constant without an exact value, or a closed expression without any.
interval_reader::entry interval_reader::read_constant(term_ptr t, bool defined) {
  switch (t->type() == Const ? t->constant() : EmptySet) {
    case E:
      return {graph_.add_leaf(EX_CONST, millionths(2718281, 2718282), true)};
    case Pi:
      return {graph_.add_leaf(EX_CONST, millionths(3141592, 3141593), true)};
    case PosInfty:
      return {graph_.add_leaf(EX_CONST, interval_point(rat_pos_inf), true)};
    case NegInfty:
      return {graph_.add_leaf(EX_CONST, interval_point(rat_neg_inf), true)};
    case Infty:
      return {graph_.add_unsupported()};
    default:
      return opaque(EX_OPAQUE, t, defined);
  }
}

interval_reader::entry interval_reader::number(const exact& value) {
  const cnum small = to_cnum(value);
  if (!cnum_is_finite(small)) {
    return {graph_.add_leaf(EX_CONST, enclosure_of_long(value), true)};
  }
  const interval point = interval_point({RAT_FINITE, small.num, small.den});
  return {graph_.add_leaf(EX_CONST, point, true), true, fingerprint::of_number(value)};
}

interval_reader::entry interval_reader::opaque(ex_kind kind, term_ptr t, bool defined) {
  if (complex_.may_be_complex(t)) {
    return {graph_.add_unsupported()};
  }
  const node_id* known = known_in(of_attempt_.opaque, base_.opaque, t);
  const node_id node = known != nullptr ? *known : graph_.add_leaf(kind, interval_top(), defined);
  if (known == nullptr) {
    current().opaque.emplace(t, node);
  }
  return kind == EX_VAR ? entry{node, true, fingerprint_leaf(t)} : entry{node};
}

interval_reader::entry interval_reader::read_negation(term_ptr operand) {
  const entry a = read(operand);
  entry result{negation_node(a.node), a.polynomial};
  if (a.polynomial) {
    const signed_value<fingerprint> negated[] = {{a.print, true}};
    result.print = fingerprint_sum(negated);
  }
  return result;
}

interval_reader::entry interval_reader::read_operation(interval_op op, term_ptr left, term_ptr right) {
  const entry a = read(left);
  const entry b = read(right);
  entry result{operation_node(op, a.node, b.node)};
  if (a.polynomial && b.polynomial && gives_polynomial(op, right, b.print)) {
    result.polynomial = true;
    result.print = print_of(op, a.print, b.print);
  }
  return result;
}

// The node of the operation on the two expressions, whichever nodes stand for them, and in either order where that does
// not matter.
node_id interval_reader::operation_node(interval_op op, node_id a, node_id b) {
  operation_key key{op, graph_.representative(a), graph_.representative(b)};
  if (is_commutative(op) && key.b < key.a) {
    std::swap(key.a, key.b);
  }
  return node_for(key, [&] { return graph_.add_operation(op, a, b); });
}

node_id interval_reader::negation_node(node_id a) {
  const operation_key key{interval_op::minus, interval_graph::no_node, graph_.representative(a)};
  return node_for(key, [&] { return graph_.add_negation(a); });
}

template <class Make>
node_id interval_reader::node_for(const operation_key& key, Make make) {
  if (const node_id* known = known_in(of_attempt_.operations, base_.operations, key)) {
    return *known;
  }
  const node_id node = make();
  current().operations.emplace(key, node);
  return node;
}

// Joins t with the expression of the same polynomial, or keeps it as the first of its form. A polynomial that is too
// large to be compared is known by its operands alone, and so is everything around it.
void interval_reader::identify_equal(term_ptr t, entry& e) {
  if (!e.polynomial || !e.print.has_value) {
    e.polynomial = false;
    return;
  }
  for (tables* side : {&of_attempt_, &base_}) {
    const auto [first, last] = side->polynomials.equal_range(e.print.value);
    for (auto form = first; form != last; ++form) {
      if (joins(form->second, t, e.node)) {
        return;
      }
      e.polynomial = false;
      form->second.too_large = form->second.too_large || side == &current();
    }
  }
  if (e.polynomial) {
    current().polynomials.emplace(e.print.value, polynomial_form{t, e.node});
  }
}

bool interval_reader::joins(const polynomial_form& known, term_ptr t, node_id node) {
  if (graph_.representative(known.node) == graph_.representative(node)) {
    return true;
  }
  if (known.too_large || !rational_forms(limits::interval_comparison_work).equal(known.t, t)) {
    return false;
  }
  graph_.identify(known.node, node);
  return true;
}

}  // namespace vetro

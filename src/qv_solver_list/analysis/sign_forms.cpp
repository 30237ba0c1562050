// Sums are read as graphs: the nodes in an order in which each stands behind all that hold it, then the counts from the
// roots down.
#include "qv_solver_list/analysis/sign_forms.h"

#include "qv_solver_list/number_reading.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

std::optional<std::int64_t> integer_constant(term_ptr t) {
  return t->has(fact_meta) ? std::nullopt : integer_literal(t);
}

std::optional<std::int64_t> root_index(term_ptr index) {
  const auto k = integer_constant(index);
  return k && *k >= 1 ? k : std::nullopt;
}

sign_view view_of_binary(const composed_term& view) {
  switch (view.oper) {
    case Plus:
    case Minus:
      return {sign_form::sum, view.t1, view.t2, {}};
    case Mult:
      return {sign_form::product, view.t1, view.t2, {}};
    case Div:
    case Frac:
      return {sign_form::quotient, view.t1, view.t2, {}};
    case Power:
      return {sign_form::power, view.t1, view.t2, integer_constant(view.t2)};
    case Sqrt:
    case Sqrtn:
      return {sign_form::root, view.t2, nullptr, root_index(view.t1)};
    default:
      return {};
  }
}

sign_view view_of_unary(const composed_term& view) {
  switch (view.oper) {
    case Neg:
      return {sign_form::negated, view.t1, nullptr, {}};
    case Abs:
      return {sign_form::absolute, view.t1, nullptr, {}};
    case Sqrt:
      return {sign_form::root, view.t1, nullptr, 2};
    default:
      return {};
  }
}

// What a node of a sum adds up.
struct addends {
  std::optional<std::int64_t> constant;
  term_ptr plus[2] = {nullptr, nullptr};
  term_ptr minus = nullptr;
  bool opened() const { return plus[0] != nullptr || minus != nullptr; }
};

// A sign in front of a number is left to the number below it: looking through it here would walk a tower of signs again
// and again.
addends addends_of(term_ptr t) {
  addends out;
  if (is_constant(t, Integer)) {
    out.constant = integer_constant(t);
  }
  const auto view = out.constant || t->has_meta() ? std::nullopt : composed_term_split(t);
  if (!view) {
    return out;
  }
  if (view->oper == Neg && view->t2 == nullptr) {
    out.minus = view->t1;
  } else if (view->oper == Plus && view->t2 != nullptr) {
    out.plus[0] = view->t1;
    out.plus[1] = view->t2;
  } else if (view->oper == Minus && view->t2 != nullptr) {
    out.plus[0] = view->t1;
    out.minus = view->t2;
  }
  return out;
}

// How often a node stands in the sum, and with which signs.
struct occurrences {
  std::int64_t net = 0;
  bool added = false;
  bool subtracted = false;
};

// The last summand comes first.
class sum_reader {
 public:
  std::optional<sum_parts> read(std::span<const signed_root> roots) {
    for (const signed_root& root : roots) {
      order_below(root.t);
    }
    for (const signed_root& root : roots) {
      count(root.t, {.net = 1, .added = true}, root.negative);
    }
    sum_parts out;
    for (auto node = order_.rbegin(); node != order_.rend(); ++node) {
      const occurrences here = found_.of(*node);
      const addends parts = addends_of(*node);
      if (parts.constant) {
        add_constant(out, *parts.constant, here);
      } else if (parts.opened()) {
        count(parts.minus, here, true);
        count(parts.plus[1], here, false);
        count(parts.plus[0], here, false);
      } else {
        out.parts.push_back({*node, here.net, here.added, here.subtracted});
      }
    }
    return fits_ ? std::optional(std::move(out)) : std::nullopt;
  }

 private:
  // Behind everything below it.
  void order_below(term_ptr t) {
    if (t == nullptr || found_.find(t) != nullptr) {
      return;
    }
    found_.of(t);
    const addends parts = addends_of(t);
    order_below(parts.plus[0]);
    order_below(parts.plus[1]);
    order_below(parts.minus);
    order_.push_back(t);
  }

  void count(term_ptr t, const occurrences& above, bool negative) {
    if (t == nullptr) {
      return;
    }
    occurrences& here = found_.of(t);
    const bool overflow = negative ? __builtin_sub_overflow(here.net, above.net, &here.net)
                                   : __builtin_add_overflow(here.net, above.net, &here.net);
    fits_ = fits_ && !overflow;
    here.added = here.added || (negative ? above.subtracted : above.added);
    here.subtracted = here.subtracted || (negative ? above.added : above.subtracted);
  }

  void add_constant(sum_parts& out, std::int64_t value, const occurrences& here) {
    std::int64_t product = 0;
    const bool overflow = __builtin_mul_overflow(value, here.net, &product) ||
                          __builtin_add_overflow(out.constant, product, &out.constant);
    fits_ = fits_ && !overflow;
  }

  node_memo<occurrences> found_;
  term_list order_;
  bool fits_ = true;
};

}  // namespace

sign_view sign_view_of(term_ptr t) {
  if (const auto constant = integer_constant(t)) {
    return {sign_form::integer, nullptr, nullptr, constant};
  }
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  if (!view) {
    return {};
  }
  return view->t2 == nullptr ? view_of_unary(*view) : view_of_binary(*view);
}

std::optional<sum_parts> sum_parts_of(std::span<const signed_root> roots) { return sum_reader().read(roots); }

std::optional<sum_parts> sum_parts_of(term_ptr t) {
  const signed_root root{t, false};
  return sum_parts_of({&root, 1});
}

}  // namespace vetro

#include "smt_solver/src/linear_arithmetic.h"

#include <numeric>

namespace vetro::smt {
namespace {

constexpr int zero = 0;  // variable of the graph that stands for the number

std::uint64_t hash_of(const linear_terms& terms) {
  std::uint64_t h = terms.size();
  for (const auto& [unknown, coefficient] : terms) {
    h = mix(mix(h, unknown), coefficient.hash());
  }
  return h;
}

// What all coefficients have in common, where they are small integers; 1 otherwise.
exact common_factor(const linear_form& form) {
  std::int64_t factor = 0;
  for (const auto& term : form.terms) {
    const auto small = term.second.to_int64();
    if (!small || *small == INT64_MIN) {
      return exact(1);
    }
    factor = std::gcd(factor, *small);
  }
  return factor == 0 ? exact(1) : exact(factor);
}

bool is_difference(const linear_terms& terms) {
  const exact minus_one(-1);
  return terms.size() <= 2 && terms.front().second.is_one() && (terms.size() == 1 || terms[1].second == minus_one);
}

}  // namespace

primitive_form primitive(const linear_form& form) {
  primitive_form result{form.terms, common_factor(form), form.constant};
  if (!form.terms.empty() && form.terms.front().second.sign() < 0) {
    result.scale = -result.scale;
  }
  if (!result.scale.is_one()) {
    const exact inverse = exact(1) / result.scale;
    for (auto& term : result.terms) {
      term.second *= inverse;
    }
  }
  return result;
}

// ---- Sums.

linear_arithmetic::sum_id linear_arithmetic::sum(const linear_terms& terms) {
  const std::uint64_t h = hash_of(terms);
  sum_id s = index_.find(h, [&](sum_id known) { return terms_[at(known)] == terms; });
  if (s < 0) {
    s = static_cast<sum_id>(terms_.size());
    index_.insert(h, s);
    terms_.push_back(terms);
    only_differences_ = only_differences_ && is_difference(terms);
    if (started_) {
      make(s);
    }
  }
  return s;
}

void linear_arithmetic::start(bool with_graph) {
  started_ = true;
  with_graph_ = with_graph;
  if (with_graph_) {
    graph_.add_variable();
  }
  for (std::size_t s = 0; s < terms_.size(); ++s) {
    make(static_cast<sum_id>(s));
  }
}

void linear_arithmetic::make(sum_id s) {
  const linear_terms& terms = terms_[at(s)];
  if (with_graph_) {
    in_graph_.push_back(difference_of(terms));
    return;
  }
  if (terms.size() == 1 && terms.front().second.is_one()) {
    in_tableau_.push_back(variable_of(terms.front().first));
    return;
  }
  std::vector<simplex::summand> summands;
  for (const auto& [unknown, coefficient] : terms) {
    summands.emplace_back(variable_of(unknown), coefficient);
  }
  in_tableau_.push_back(tableau_.add_sum(summands));
}

int linear_arithmetic::variable_of(atom_id unknown) {
  if (variable_of_unknown_.size() <= unknown) {
    variable_of_unknown_.resize(unknown + 1, -1);
  }
  int& v = variable_of_unknown_[unknown];
  if (v < 0) {
    v = with_graph_ ? graph_.add_variable() : tableau_.add_variable();
  }
  return v;
}

// x - y, or x - 0, or 0 - 0.
linear_arithmetic::difference linear_arithmetic::difference_of(const linear_terms& terms) {
  difference d{zero, zero};
  for (const auto& [unknown, coefficient] : terms) {
    (coefficient.sign() > 0 ? d.x : d.y) = variable_of(unknown);
  }
  return d;
}

// ---- Bounds.

bool linear_arithmetic::assert_bound(sum_id s, bound_side side, const delta_number& value, bound_reason why) {
  if (!with_graph_) {
    unchecked_ = true;
    conflict_ = &tableau_.conflict();
    return tableau_.assert_bound(in_tableau_[at(s)], side, value, why);
  }
  const auto [x, y] = in_graph_[at(s)];
  conflict_ = &graph_.conflict();
  return side == bound_side::upper ? graph_.assert_at_most(x, y, value, why)
                                   : graph_.assert_at_most(y, x, value * exact(-1), why);
}

linear_arithmetic::answer linear_arithmetic::check() {
  if (with_graph_) {
    return graph_.is_known() ? answer::feasible : answer::exhausted;
  }
  if (!unchecked_) {
    return answer::feasible;
  }
  switch (tableau_.check()) {
    case simplex::answer::conflict:
      conflict_ = &tableau_.conflict();
      return answer::conflict;
    case simplex::answer::exhausted:
      return answer::exhausted;
    case simplex::answer::feasible:
      break;
  }
  unchecked_ = false;
  return answer::feasible;
}

void linear_arithmetic::watch(sum_id s) {
  if (!with_graph_) {
    tableau_.watch(in_tableau_[at(s)]);
  }
}

void linear_arithmetic::imply_bounds(simplex::listener& out) {
  if (!with_graph_) {
    tableau_.imply_bounds(out);
  }
}

void linear_arithmetic::open_level() { with_graph_ ? graph_.open_level() : tableau_.open_level(); }

void linear_arithmetic::back_to_level(int level) {
  with_graph_ ? graph_.back_to_level(level) : tableau_.back_to_level(level);
}

// ---- Values.

delta_number linear_arithmetic::value(sum_id s) const {
  if (!with_graph_) {
    return tableau_.value(in_tableau_[at(s)]);
  }
  const auto [x, y] = in_graph_[at(s)];
  return graph_.value(x) - graph_.value(y);
}

void linear_arithmetic::find_places() {
  if (with_graph_) {
    graph_.find_components();
  }
}

bool linear_arithmetic::spread() {
  if (!with_graph_) {
    tableau_.scatter();
  }
  return !with_graph_;
}

linear_arithmetic::place linear_arithmetic::place_of(sum_id s) const {
  const bool single = with_graph_ && in_graph_[at(s)].y == zero;
  return {single ? graph_.component(in_graph_[at(s)].x) : 0, value(s)};
}

linear_arithmetic::place linear_arithmetic::place_of_number(const exact& number) const {
  return {with_graph_ ? graph_.component(zero) : 0, {number, exact(0)}};
}

simplex::forced linear_arithmetic::is_forced_to_zero(const linear_form& form, std::vector<bound_reason>& why) {
  if (!with_graph_) {
    std::vector<simplex::summand> summands;
    for (const auto& [unknown, coefficient] : form.terms) {
      summands.emplace_back(variable_of(unknown), coefficient);
    }
    return tableau_.is_forced(summands, why);
  }
  const auto [x, y] = difference_of(primitive(form).terms);
  if (graph_.component(x) != graph_.component(y)) {
    return simplex::forced::no;
  }
  graph_.explain_forced(x, y, why);
  return simplex::forced::yes;
}

}  // namespace vetro::smt

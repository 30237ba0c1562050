#include "smt_solver/src/purify.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>

namespace vetro::smt {
namespace {

// Names that stand for a number in arithmetic.
struct reserved_constant {
  std::string_view name;
  std::int64_t value;
};
constexpr std::array reserved_constants = std::to_array<reserved_constant>({
    {"SMT_INT8_MAX", 127},
    {"SMT_INT16_MAX", 32767},
    {"SMT_INT32_MAX", 2147483647},
    {"SMT_INT64_MAX", 9223372036854775807},
});

bool is_linear(const smt_term_row& row) { return row.type == SMT_LiaBTerm || row.type == SMT_LiaUTerm; }

}  // namespace

// Operands have smaller numbers than what they are part of, so that one pass down finds what is reached, and one pass
// up makes it.
void purifier::prepare(std::span<const smt_term> roots) {
  std::vector<std::uint8_t> reached(language_.term_count(), 0);
  for (const smt_term t : roots) {
    reached[at(t)] = 1;
  }
  node_of_term_.resize(language_.term_count(), no_node);
  for (std::size_t i = reached.size(); i > 0; --i) {
    const smt_term_row& row = language_.term(static_cast<smt_term>(i - 1));
    if (reached[i - 1] == 0) {
      continue;
    }
    if (row.type == SMT_UFTerm) {
      for (const smt_term a : language_.arguments(static_cast<smt_term>(i - 1))) {
        reached[at(a)] = 1;
      }
    } else if (is_linear(row)) {
      reached[at(row.t1)] = 1;
      if (row.type == SMT_LiaBTerm) {
        reached[at(row.t2)] = 1;
      }
    }
  }
  for (std::size_t i = 0; i < reached.size(); ++i) {
    if (reached[i] != 0 && language_.term(static_cast<smt_term>(i)).type == SMT_UFTerm) {
      work_.charge(1);
      node_of(static_cast<smt_term>(i));
    }
  }
}

std::optional<std::int64_t> purifier::constant_value(const smt_term_row& row) const {
  if (row.type == SMT_ConstNum) {
    return row.number;
  }
  if (row.type == SMT_VarName && row.detail == static_cast<std::uint8_t>(smt_name::variable)) {
    const auto* found = std::find_if(reserved_constants.begin(), reserved_constants.end(),
                                     [&](const reserved_constant& c) { return c.name == row.text; });
    if (found != reserved_constants.end()) {
      return found->value;
    }
  }
  return std::nullopt;
}

bool purifier::is_plain(smt_term t) const {
  const smt_term_row& row = language_.term(t);
  return !is_linear(row) && !constant_value(row);
}

node purifier::node_of(smt_term t) {
  node& known = node_of_term_[at(t)];
  if (known != no_node) {
    return known;
  }
  const smt_term_row& row = language_.term(t);
  if (row.type == SMT_UFTerm) {
    return known = list_node(t);
  }
  if (const auto value = constant_value(row)) {
    return known = number(exact(*value));
  }
  return known = is_linear(row) ? linear_node(form_of(t)) : theories_.nodes().add_leaf();
}

// AP_UF(f, a) is the application of f to a; TL_UF(a, b) is list applied to a, applied to b.
node purifier::list_node(smt_term t) {
  const auto arguments = language_.arguments(t);
  if (static_cast<smt_function>(language_.term(t).detail) == smt_function::ap_uf) {
    const node function = node_of(arguments[0]);
    const node argument = node_of(arguments[1]);
    return application(function, argument);
  }
  if (list_function_ == no_node) {
    list_function_ = theories_.nodes().add_leaf();
  }
  node list = list_function_;
  for (const smt_term a : arguments) {
    list = application(list, node_of(a));
  }
  return list;
}

node purifier::application(node function, node argument) {
  const std::uint64_t h = mix(static_cast<std::uint64_t>(function), static_cast<std::uint64_t>(argument));
  const auto same = [&](std::int32_t i) { return applications_[at(i)] == std::pair(function, argument); };
  const std::int32_t found = application_index_.find(h, same);
  if (found >= 0) {
    return application_nodes_[at(found)];
  }
  application_index_.insert(h, static_cast<std::int32_t>(applications_.size()));
  applications_.emplace_back(function, argument);
  return application_nodes_.emplace_back(theories_.nodes().add_application(function, argument));
}

node purifier::number(const exact& value) {
  const std::uint64_t h = value.hash();
  const std::int32_t found = number_index_.find(h, [&](std::int32_t i) { return numbers_[at(i)].first == value; });
  if (found >= 0) {
    return numbers_[at(found)].second;
  }
  number_index_.insert(h, static_cast<std::int32_t>(numbers_.size()));
  const node n = theories_.nodes().add_leaf();
  theories_.nodes().set_constant(n);
  numbers_.emplace_back(value, n);
  return n;
}

node purifier::linear_node(linear_form form) {
  if (form.terms.empty()) {
    return number(form.constant);
  }
  if (form.constant.is_zero() && form.terms.size() == 1 && form.terms.front().second.is_one()) {
    return static_cast<node>(form.terms.front().first);
  }
  std::uint64_t h = form.constant.hash();
  for (const auto& [atom, coefficient] : form.terms) {
    h = mix(mix(h, atom), coefficient.hash());
  }
  const std::int32_t found = linear_index_.find(h, [&](std::int32_t i) { return linear_nodes_[at(i)].first == form; });
  if (found >= 0) {
    return linear_nodes_[at(found)].second;
  }
  linear_index_.insert(h, static_cast<std::int32_t>(linear_nodes_.size()));
  const node n = theories_.nodes().add_leaf();
  linear_nodes_.emplace_back(std::move(form), n);
  return n;
}

// Each part is met once, after everything that holds it, with the sum of its multiples; so shared parts cost no more
// than others.
linear_form purifier::form_of(smt_term t) {
  linear_form form;
  std::map<smt_term, exact, std::greater<>> open;
  open[t] = exact(1);
  while (!open.empty()) {
    const auto [part, multiple] = *open.begin();
    open.erase(open.begin());
    work_.charge(multiple.limbs());
    const smt_term_row& row = language_.term(part);
    if (const auto value = constant_value(row)) {
      form.constant.addmul(multiple, exact(*value));
    } else if (row.type == SMT_LiaUTerm) {
      open[row.t1] -= multiple;
    } else if (row.type != SMT_LiaBTerm) {
      form.terms.emplace_back(static_cast<atom_id>(node_of(part)), multiple);
    } else if (row.detail == LIA_MULT) {
      const bool left = language_.term(row.t1).type == SMT_ConstNum;
      open[left ? row.t2 : row.t1].addmul(multiple, exact(language_.term(left ? row.t1 : row.t2).number));
    } else {
      open[row.t1] += multiple;
      open[row.t2] += row.detail == LIA_ADD ? multiple : -multiple;
    }
  }
  std::sort(form.terms.begin(), form.terms.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  // Different terms may be one node, and multiples may cancel.
  std::size_t kept = 0;
  for (std::size_t i = 0; i < form.terms.size(); ++i) {
    if (kept > 0 && form.terms[kept - 1].first == form.terms[i].first) {
      form.terms[kept - 1].second += form.terms[i].second;
    } else {
      std::swap(form.terms[kept++], form.terms[i]);
    }
    if (form.terms[kept - 1].second.is_zero()) {
      --kept;
    }
  }
  form.terms.resize(kept);
  return form;
}

void purifier::share(node n) {
  if (!theories_.has_meaning(n)) {
    theories_.set_meaning(n, linear_atom(static_cast<atom_id>(n)));
  }
}

void purifier::connect() {
  for (const auto& [value, n] : numbers_) {
    theories_.set_meaning(n, {value, {}});
  }
  for (const auto& [form, n] : linear_nodes_) {
    for (const auto& term : form.terms) {
      share(static_cast<node>(term.first));
    }
    theories_.set_meaning(n, form);
  }
}

}  // namespace vetro::smt

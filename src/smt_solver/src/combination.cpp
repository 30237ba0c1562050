#include "smt_solver/src/combination.h"

#include <algorithm>
#include <cassert>
#include <map>
#include <unordered_map>

namespace vetro::smt {
namespace {

constexpr std::int32_t from_literal = -1;  // second number of a reason whose first is a literal

}  // namespace

// ---- Building.

void combination::set_meaning(node n, linear_form form) {
  if (meanings_.size() <= at(n)) {
    meanings_.resize(at(n) + 1);
  }
  const primitive_form p = primitive(form);
  meanings_[at(n)] = {true, p.terms.empty() ? -1 : arithmetic_.sum(p.terms), p.scale, std::move(form)};
  equality_.set_shared(n);
}

// Values of nodes are compared with each other, so that they must be unknowns, up to a number, for the differences to
// do.
void combination::start() {
  arithmetic_.start(simple_meanings() && arithmetic_.only_differences());
  if (arithmetic_.implies_bounds()) {
    watch_bounds();
  }
}

bool combination::simple_meanings() const {
  return std::all_of(meanings_.begin(), meanings_.end(), [](const meaning& m) {
    return !m.known || m.form.terms.empty() || (m.form.terms.size() == 1 && m.form.terms.front().second.is_one());
  });
}

void combination::watch_bounds() {
  noted_.resize(atoms_.size(), 0);
  implication_of_.resize(atoms_.size(), -1);
  for (std::size_t v = 0; v < atoms_.size(); ++v) {
    if (atoms_[v].kind == atom_kind::at_most) {
      const std::size_t x = at(arithmetic_.variable_of_sum(atoms_[v].sum));
      bound_atoms_.resize(std::max(bound_atoms_.size(), x + 1));
      bound_atoms_[x].push_back({atoms_[v].bound, static_cast<int>(v)});
      arithmetic_.watch(atoms_[v].sum);
    }
  }
  for (auto& list : bound_atoms_) {
    std::stable_sort(list.begin(), list.end(),
                     [](const bound_atom& a, const bound_atom& b) { return a.bound < b.bound; });
  }
}

void combination::add_bounds_of_equations(search& into) {
  if (simple_meanings() && arithmetic_.only_differences()) {
    return;
  }
  std::map<std::pair<linear_arithmetic::sum_id, delta_number>, bool> known;
  for (const arithmetic_atom& a : atoms_) {
    if (a.kind == atom_kind::at_most) {
      known[{a.sum, a.bound}] = true;
    }
  }
  for (std::size_t v = 0, end = atoms_.size(); v < end; ++v) {
    const arithmetic_atom a = atoms_[v];
    if (a.kind != atom_kind::equal || into.value(literal_of(static_cast<int>(v))) != truth::open) {
      continue;
    }
    for (const std::int64_t delta : {0, -1}) {
      const delta_number bound{a.bound.real, exact(delta)};
      if (known.try_emplace({a.sum, bound}, true).second) {
        atom_of(literal_of(into.add_variable(true, search::decided::no))) = {atom_kind::at_most, a.sum, bound};
      }
    }
  }
}

combination::arithmetic_atom& combination::atom_of(literal l) {
  const std::size_t v = at(variable_of(l));
  if (atoms_.size() <= v) {
    atoms_.resize(v + 1);
  }
  return atoms_[v];
}

void combination::add_at_most(literal l, const linear_terms& terms, const delta_number& bound) {
  const auto sum = arithmetic_.sum(terms);
  atom_of(l) = {atom_kind::at_most, sum, bound};
}

void combination::add_equal(literal l, const linear_terms& terms, const exact& value) {
  const auto sum = arithmetic_.sum(terms);
  atom_of(l) = {atom_kind::equal, sum, {value, exact(0)}};
}

void combination::connect_equation(literal l, node a, node b) {
  if (has_meaning(a) && has_meaning(b)) {
    const primitive_form p = primitive(difference(a, b));
    if (!p.terms.empty()) {
      add_equal(l, p.terms, -p.constant / p.scale);
    }
  }
}

void combination::add_order_clauses(search& into) const {
  std::vector<int> order;
  for (std::size_t v = 0; v < atoms_.size(); ++v) {
    if (atoms_[v].kind != atom_kind::none) {
      order.push_back(static_cast<int>(v));
    }
  }
  const auto atom = [&](int v) -> const arithmetic_atom& { return atoms_[at(v)]; };
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return atom(a).sum != atom(b).sum          ? atom(a).sum < atom(b).sum
           : !(atom(a).bound == atom(b).bound) ? atom(a).bound < atom(b).bound
                                               : a < b;
  });
  // Within one sum, by bound: each "at most" implies the next; x = k implies the next from k on and refutes the
  // last below; and is itself implied by both when they are next to it.
  const auto same_sum = [&](std::size_t i, std::size_t j) { return atom(order[i]).sum == atom(order[j]).sum; };
  const auto clause = [&](std::initializer_list<literal> literals) { into.add_clause(std::vector<literal>(literals)); };
  for (std::size_t i = 0; i < order.size(); ++i) {
    const arithmetic_atom& a = atom(order[i]);
    const literal self = literal_of(order[i]);
    literal next = -1;
    for (std::size_t j = i;
         j-- > 0 && a.kind == atom_kind::equal && same_sum(i, j) && !(atom(order[j]).bound < a.bound);) {
      next = atom(order[j]).kind == atom_kind::at_most ? literal_of(order[j]) : next;
    }
    for (std::size_t j = i + 1; j < order.size() && next < 0 && same_sum(i, j); ++j) {
      next = atom(order[j]).kind == atom_kind::at_most ? literal_of(order[j]) : next;
    }
    if (next >= 0) {
      clause({negation(self), next});
    }
    if (a.kind != atom_kind::equal) {
      continue;
    }
    literal last = -1;
    for (std::size_t j = i; j-- > 0 && last < 0 && same_sum(i, j);) {
      const bool lower = atom(order[j]).kind == atom_kind::at_most && atom(order[j]).bound < a.bound;
      last = lower ? literal_of(order[j]) : last;
    }
    if (last >= 0) {
      clause({negation(self), negation(last)});
    }
    const bool tight = next >= 0 && last >= 0 && atom(variable_of(next)).bound == a.bound &&
                       atom(variable_of(last)).bound == delta_number{a.bound.real, exact(-1)};
    if (tight) {
      clause({self, negation(next), last});
    }
  }
}

// ---- Levels and assertions.

void combination::open_level() {
  equality_.open_level();
  arithmetic_.open_level();
  level_starts_.push_back({false_equations_.size(), noted_order_.size(), implications_.size()});
}

void combination::back_to_level(int level) {
  equality_.back_to_level(level);
  arithmetic_.back_to_level(level);
  const level_start& start = level_starts_[at(level)];
  false_equations_.resize(start.false_equations);
  for (; noted_order_.size() > start.noted; noted_order_.pop_back()) {
    noted_[at(noted_order_.back())] = 0;
  }
  for (; implications_.size() > start.implications; implications_.pop_back()) {
    implication_of_[at(variable_of(implications_.back().implied))] = -1;
    implication_reasons_.resize(implications_.back().begin);
  }
  level_starts_.resize(at(level));
}

theory_answer combination::assert_literal(literal l) {
  if (equality_.is_atom(l) && !equality_.assert_literal(l)) {
    return refused_by_equality();
  }
  const arithmetic_atom& atom = atom_of(l);
  note(variable_of(l));
  const bool consistent = atom.kind == atom_kind::none || assert_arithmetic(l, atom);
  return consistent ? theory_answer::consistent : refused_by_arithmetic();
}

bool combination::assert_arithmetic(literal l, const arithmetic_atom& atom) {
  const bound_reason why{l, from_literal};
  if (atom.kind == atom_kind::equal) {
    if (is_positive(l)) {
      return assert_bound(atom.sum, bound_side::lower, atom.bound, why) &&
             assert_bound(atom.sum, bound_side::upper, atom.bound, why);
    }
    false_equations_.push_back(l);
    return true;
  }
  if (is_positive(l)) {
    return assert_bound(atom.sum, bound_side::upper, atom.bound, why);
  }
  return assert_bound(atom.sum, bound_side::lower, {atom.bound.real, atom.bound.delta + exact(1)}, why);
}

bool combination::assert_bound(linear_arithmetic::sum_id s, bound_side side, const delta_number& value,
                               bound_reason why) {
  return arithmetic_.assert_bound(s, side, value, why);
}

theory_answer combination::propagate() {
  auto& merges = equality_.shared_merges();
  for (const auto& m : merges) {
    if (!is_covered(m) && !assert_equal_values(m.left, m.right)) {
      merges.clear();
      return theory_answer::conflict;
    }
  }
  merges.clear();
  switch (arithmetic_.check()) {
    case linear_arithmetic::answer::conflict:
      return refused_by_arithmetic();
    case linear_arithmetic::answer::exhausted:
      return theory_answer::exhausted;
    case linear_arithmetic::answer::feasible:
      break;
  }
  implied_.swap(equality_.implied());
  equality_.implied().clear();
  arithmetic_.imply_bounds(*this);
  return implied_.empty() ? theory_answer::consistent : theory_answer::progress;
}

// The classes were merged by something that the arithmetic knows already.
bool combination::is_covered(const congruence::shared_merge& m) const {
  return m.entailed || (m.why >= 0 && is_arithmetic(m.why));
}

// False with conflict_ filled.
bool combination::assert_equal_values(node a, node b) {
  const primitive_form p = primitive(difference(a, b));
  const bound_reason why{a, b};
  if (p.terms.empty()) {
    if (p.constant.is_zero()) {
      return true;
    }
    conflict_.clear();
    equality_.explain(a, b, conflict_);
    return false;
  }
  const auto sum = arithmetic_.sum(p.terms);
  const delta_number value{-p.constant / p.scale, exact(0)};
  if (!assert_bound(sum, bound_side::lower, value, why) || !assert_bound(sum, bound_side::upper, value, why)) {
    refused_by_arithmetic();
    return false;
  }
  return true;
}

// ---- Reasons.

void combination::to_literals(std::span<const bound_reason> reasons, std::vector<literal>& literals) {
  for (const bound_reason& r : reasons) {
    if (r.second == from_literal) {
      literals.push_back(r.first);
    } else {
      equality_.explain(r.first, r.second, literals);
    }
  }
  std::sort(literals.begin(), literals.end());
  literals.erase(std::unique(literals.begin(), literals.end()), literals.end());
}

theory_answer combination::refused_by_arithmetic() {
  conflict_.clear();
  to_literals(arithmetic_.conflict(), conflict_);
  return theory_answer::conflict;
}

theory_answer combination::refused_by_equality() {
  conflict_ = equality_.conflict();
  return theory_answer::conflict;
}

void combination::explain(literal l, std::vector<literal>& premises) {
  const std::size_t v = at(variable_of(l));
  const std::int32_t number = v < implication_of_.size() ? implication_of_[v] : -1;
  if (number < 0) {
    equality_.explain_implied(l, premises);
    return;
  }
  const auto next = at(number) + 1;
  const std::size_t end = next < implications_.size() ? implications_[next].begin : implication_reasons_.size();
  const std::size_t begin = implications_[at(number)].begin;
  premises_.clear();
  to_literals({implication_reasons_.data() + begin, end - begin}, premises_);
  premises.insert(premises.end(), premises_.begin(), premises_.end());
}

// ---- What follows from bounds.

void combination::note(int variable) {
  if (at(variable) < noted_.size() && noted_[at(variable)] == 0) {
    noted_[at(variable)] = 1;
    noted_order_.push_back(variable);
  }
}

// The tightest atom that the bound makes true, or false; the others follow from that one by clauses.
bool combination::is_news(linear_var x, bound_side side, const delta_number& value) {
  if (at(x) >= bound_atoms_.size()) {
    return false;
  }
  const auto& list = bound_atoms_[at(x)];
  auto found = std::partition_point(list.begin(), list.end(), [&](const bound_atom& a) { return a.bound < value; });
  if (side == bound_side::upper ? found == list.end() : found == list.begin()) {
    return false;
  }
  found -= side == bound_side::upper ? 0 : 1;
  news_ = literal_of(found->variable, side == bound_side::upper);
  return noted_[at(found->variable)] == 0;
}

void combination::learn(std::span<const bound_reason> why) {
  const int v = variable_of(news_);
  note(v);
  implication_of_[at(v)] = static_cast<std::int32_t>(implications_.size());
  implications_.push_back({news_, implication_reasons_.size()});
  implication_reasons_.insert(implication_reasons_.end(), why.begin(), why.end());
  implied_.push_back(news_);
}

// ---- When every atom has a value.

linear_arithmetic::place combination::place_of(node n) const {
  const meaning& m = meanings_[at(n)];
  if (m.sum < 0) {
    return arithmetic_.place_of_number(m.form.constant);
  }
  linear_arithmetic::place place = arithmetic_.place_of(m.sum);
  place.value = place.value * m.scale + delta_number{m.form.constant, exact(0)};
  return place;
}

delta_number combination::value_of(node n) const {
  const meaning& m = meanings_[at(n)];
  const delta_number shift{m.form.constant, exact(0)};
  return m.sum < 0 ? shift : arithmetic_.value(m.sum) * m.scale + shift;
}

linear_form combination::difference(node a, node b) const {
  return linear_sum(meanings_[at(a)].form, meanings_[at(b)].form, exact(-1));
}

// What has the same value when nothing holds it together any more is mostly forced to be equal. So arguments are first
// compared with the first one of their value, and with each other only where that told nothing.
theory_answer combination::final_check() {
  arithmetic_.find_places();
  collect_questions(which::one);
  if (questions_.empty()) {
    return theory_answer::consistent;
  }
  arithmetic_.spread();
  for (const which asked : {which::with_first, which::among_others}) {
    collect_questions(asked);
    const theory_answer answer = settle_all();
    if (answer != theory_answer::consistent) {
      return answer;
    }
  }
  return theory_answer::consistent;
}

theory_answer combination::settle_all() {
  bool changed = false;
  const std::vector<question> questions = std::move(questions_);
  questions_.clear();
  for (const question& q : questions) {
    switch (settle(q)) {
      case theory_answer::conflict:
        return theory_answer::conflict;
      case theory_answer::exhausted:
        return theory_answer::exhausted;
      case theory_answer::progress:
        changed = true;
        break;
      case theory_answer::consistent:
        break;
    }
  }
  return changed ? theory_answer::progress : theory_answer::consistent;
}

// Everything whose sides have the same value now. What has different values is not forced to be equal.
void combination::collect_questions(which asked) {
  questions_.clear();
  if (asked != which::among_others) {
    ask_about_disequations();
  }
  if (asked != which::one || questions_.empty()) {
    ask_about_arguments(asked);
  }
}

void combination::ask_about_disequations() {
  for (const literal l : false_equations_) {
    const arithmetic_atom& atom = atoms_[at(variable_of(l))];
    if (arithmetic_.value(atom.sum) == atom.bound) {
      questions_.push_back({no_node, no_node, l});
    }
  }
  for (const auto& d : equality_.disequations()) {
    if (is_arithmetic(d.why)) {
      continue;
    }
    const node a = equality_.shared_in(d.left);
    const node b = equality_.shared_in(d.right);
    if (a != no_node && b != no_node && place_of(a) == place_of(b)) {
      questions_.push_back({a, b, d.why});
    }
  }
}

// Applications of one class of functions to different classes of arguments, by the value of the argument. Among those
// of one value each is compared with the first of each class only. Functions that are shared themselves are compared
// with each other, since nothing may be known yet of their applications.
void combination::ask_about_arguments(which asked) {
  struct slot {
    node function;
    linear_arithmetic::place place;
    bool operator==(const slot&) const = default;
  };
  struct slot_hash {
    std::size_t operator()(const slot& s) const {
      return mix(mix(static_cast<std::uint64_t>(s.function), static_cast<std::uint64_t>(s.place.component)),
                 s.place.value.hash());
    }
  };
  std::unordered_map<slot, std::vector<node>, slot_hash> seen;
  const auto compare = [&](node function, node argument) {
    const node shared = equality_.shared_in(argument);
    if (shared == no_node) {
      return;
    }
    auto& others = seen[{function, place_of(shared)}];
    const node own = equality_.class_of(argument);
    if (std::any_of(others.begin(), others.end(), [&](node o) { return equality_.class_of(o) == own; })) {
      return;
    }
    const std::size_t first = asked == which::among_others ? 1 : 0;
    const std::size_t last = asked == which::among_others ? others.size() : std::min<std::size_t>(others.size(), 1);
    for (std::size_t i = first; i < last; ++i) {
      questions_.push_back({equality_.shared_in(others[i]), shared, -1});
    }
    others.push_back(argument);
  };
  for (node n = 0; n < equality_.size(); ++n) {
    if (asked == which::one && !questions_.empty()) {
      return;
    }
    if (equality_.is_application(n)) {
      compare(equality_.class_of(equality_.function_of(n)), equality_.argument_of(n));
      compare(no_node, equality_.function_of(n));
    }
  }
}

theory_answer combination::settle(const question& q) {
  if (q.a != no_node && (equality_.equal(q.a, q.b) || !(place_of(q.a) == place_of(q.b)))) {
    return theory_answer::consistent;
  }
  reasons_.clear();
  linear_form zero;
  if (q.a == no_node) {
    const arithmetic_atom& atom = atoms_[at(variable_of(q.why))];
    if (!(arithmetic_.value(atom.sum) == atom.bound)) {
      return theory_answer::consistent;
    }
    zero = {-atom.bound.real, arithmetic_.terms(atom.sum)};
  } else {
    zero = difference(q.a, q.b);
  }
  const simplex::forced forced = arithmetic_.is_forced_to_zero(zero, reasons_);
  if (forced != simplex::forced::yes) {
    return forced == simplex::forced::no ? theory_answer::consistent : theory_answer::exhausted;
  }
  premises_.clear();
  to_literals(reasons_, premises_);
  if (q.why >= 0) {
    conflict_ = premises_;
    conflict_.push_back(q.why);
    if (q.a != no_node) {
      const auto [left, right] = equality_.sides(q.why);
      const bool straight = equality_.equal(left, q.a);
      equality_.explain(left, straight ? q.a : q.b, conflict_);
      equality_.explain(right, straight ? q.b : q.a, conflict_);
    }
    return theory_answer::conflict;
  }
  if (!equality_.assert_entailed(q.a, q.b, premises_)) {
    return refused_by_equality();
  }
  return theory_answer::progress;
}

}  // namespace vetro::smt

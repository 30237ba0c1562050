#include "smt_solver/src/congruence.h"

#include <algorithm>
#include <cassert>

namespace vetro::smt {
namespace {

constexpr std::size_t refuting_scan = 64;  // longer lists are not searched for atoms that have become false

}  // namespace

// ---- Signatures.

std::size_t signature_table::slot(node function, node argument) const {
  std::uint64_t h =
      static_cast<std::uint64_t>(static_cast<std::uint32_t>(function)) << 32 | static_cast<std::uint32_t>(argument);
  h *= 0x9e3779b97f4a7c15ULL;
  return static_cast<std::size_t>(h >> 20) & (entries_.size() - 1);
}

node signature_table::find(node function, node argument) const {
  if (entries_.empty()) {
    return no_node;
  }
  for (std::size_t i = slot(function, argument);; i = (i + 1) & (entries_.size() - 1)) {
    const entry& e = entries_[i];
    if (e.application == no_node || (e.function == function && e.argument == argument)) {
      return e.application;
    }
  }
}

void signature_table::insert(node function, node argument, node application) {
  if (2 * (used_ + 1) > entries_.size()) {
    grow();
  }
  std::size_t i = slot(function, argument);
  while (entries_[i].application != no_node) {
    i = (i + 1) & (entries_.size() - 1);
  }
  entries_[i] = {function, argument, application};
  ++used_;
}

void signature_table::grow() {
  std::vector<entry> old(entries_.empty() ? 16 : 2 * entries_.size());
  old.swap(entries_);
  used_ = 0;
  for (const entry& e : old) {
    if (e.application != no_node) {
      insert(e.function, e.argument, e.application);
    }
  }
}

// Entries behind the gap move up as long as that brings them nearer to their slot.
void signature_table::erase(node function, node argument) {
  const std::size_t mask = entries_.size() - 1;
  std::size_t gap = slot(function, argument);
  while (entries_[gap].function != function || entries_[gap].argument != argument) {
    gap = (gap + 1) & mask;
  }
  for (std::size_t i = (gap + 1) & mask; entries_[i].application != no_node; i = (i + 1) & mask) {
    const std::size_t home = slot(entries_[i].function, entries_[i].argument);
    if (((i - home) & mask) >= ((i - gap) & mask)) {
      entries_[gap] = entries_[i];
      gap = i;
    }
  }
  entries_[gap] = {};
  --used_;
}

// ---- Building.

node congruence::add_leaf() {
  const auto n = static_cast<node>(class_.size());
  function_.push_back(no_node);
  argument_.push_back(no_node);
  class_.push_back(n);
  next_.push_back(n);
  forest_up_.push_back(no_node);
  forest_why_.emplace_back();
  explained_.push_back(n);
  explained_stamp_.push_back(0);
  visit_stamp_.push_back(0);
  class_size_.push_back(1);
  constant_.push_back(no_node);
  shared_.push_back(no_node);
  users_.emplace_back();
  class_atoms_.emplace_back();
  class_disequations_.emplace_back();
  unequal_mark_.push_back(-1);
  return n;
}

node congruence::add_application(node function, node argument) {
  const node n = add_leaf();
  function_[at(n)] = function;
  argument_[at(n)] = argument;
  users_[at(function)].push_back(n);
  if (argument != function) {
    users_[at(argument)].push_back(n);
  }
  signatures_.insert(function, argument, n);
  return n;
}

void congruence::add_atom(literal l, node left, node right) {
  if (index(l) >= atoms_.size()) {
    atoms_.resize(index(l) + 1);
    witness_.resize(index(l) + 1);
    known_.resize(index(l) + 1, 0);
  }
  atoms_[index(l)] = {left, right};
  class_atoms_[at(left)].push_back({left, right, l});
  class_atoms_[at(right)].push_back({right, left, l});
}

// ---- Assertions.

bool congruence::assert_literal(literal l) {
  const auto [left, right] = sides(l);
  const bool was_known = known_[index(l)] != 0;
  if (!was_known) {
    known_[index(l)] = 1;
    undo_.push_back({undo_kind::known, variable_of(l), no_node});
  }
  if (is_positive(l)) {
    pending_.push_back({left, right, {cause_kind::equation, l}});
    return close();
  }
  if (equal(left, right)) {
    return refuse(left, right, l);
  }
  if (was_known) {  // it was implied, by a disequation that is there already
    return true;
  }
  disequations_.push_back({left, right, l});
  class_disequations_[at(class_of(left))].push_back({left, right, l});
  class_disequations_[at(class_of(right))].push_back({right, left, l});
  undo_.push_back({undo_kind::disequation, class_of(left), class_of(right)});
  const bool from_left = class_atoms_[at(class_of(left))].size() <= class_atoms_[at(class_of(right))].size();
  const node here = from_left ? left : right;
  const node there = from_left ? right : left;
  const auto& atoms = class_atoms_[at(class_of(here))];
  work_.charge(atoms.size());
  for (const neighbour& a : atoms) {
    if (equal(a.other, there)) {
      imply(negation(a.l), a.here == sides(a.l).first ? witness{here, there, l} : witness{there, here, l});
    }
  }
  return true;
}

bool congruence::assert_entailed(node a, node b, std::span<const literal> premises) {
  premises_.insert(premises_.end(), premises.begin(), premises.end());
  premises_end_.push_back(premises_.size());
  undo_.push_back({undo_kind::premises, no_node, no_node});
  pending_.push_back({a, b, {cause_kind::entailed, static_cast<std::int32_t>(premises_end_.size()) - 1}});
  return close();
}

bool congruence::close() {
  bool consistent = true;
  while (consistent && !pending_.empty()) {
    const pending_merge m = pending_.back();
    pending_.pop_back();
    consistent = equal(m.a, m.b) || merge(m);
  }
  pending_.clear();
  return consistent;
}

// A merge is carried out in full even when it contradicts something, so that it can be undone like any other.
bool congruence::merge(const pending_merge& m) {
  const bool a_smaller = class_size_[at(class_of(m.a))] <= class_size_[at(class_of(m.b))];
  const node child = a_smaller ? m.a : m.b;
  const node parent = a_smaller ? m.b : m.a;
  const node from = class_of(child);
  const node into = class_of(parent);

  make_root(child);
  forest_up_[at(child)] = parent;
  forest_why_[at(child)] = m.why;
  undo_.push_back({undo_kind::merge, from, into, child, parent});
  undo_sizes_.push_back({users_[at(into)].size(), class_atoms_[at(into)].size(), class_disequations_[at(into)].size(),
                         constant_[at(into)], shared_[at(into)]});
  work_.charge(static_cast<std::uint64_t>(class_size_[at(from)]) + users_[at(from)].size() + 1);
  node member = from;
  do {
    class_[at(member)] = into;
    member = next_[at(member)];
  } while (member != from);
  std::swap(next_[at(from)], next_[at(into)]);
  class_size_[at(into)] += class_size_[at(from)];

  if (shared_[at(from)] != no_node) {
    if (shared_[at(into)] == no_node) {
      shared_[at(into)] = shared_[at(from)];
    } else {
      const literal why = m.why.kind == cause_kind::equation ? m.why.detail : -1;
      shared_merges_.push_back({shared_[at(from)], shared_[at(into)], why, m.why.kind == cause_kind::entailed});
    }
  }
  bool consistent = check_disequations(from, into);
  if (constant_[at(from)] != no_node) {
    if (constant_[at(into)] == no_node) {
      constant_[at(into)] = constant_[at(from)];
    } else if (consistent) {
      consistent = refuse(constant_[at(from)], constant_[at(into)], -1);
    }
  }
  if (consistent) {
    refute_atoms(from, into);
    check_atoms(from, into);
  }
  const auto& atoms = class_atoms_[at(from)];
  class_atoms_[at(into)].insert(class_atoms_[at(into)].end(), atoms.begin(), atoms.end());
  const auto& disequations = class_disequations_[at(from)];
  class_disequations_[at(into)].insert(class_disequations_[at(into)].end(), disequations.begin(), disequations.end());
  join_users(from, into);
  return consistent;
}

// Turns the edges from n up to its root round.
void congruence::make_root(node n) {
  node above = forest_up_[at(n)];
  cause why = forest_why_[at(n)];
  forest_up_[at(n)] = no_node;
  while (above != no_node) {
    const node next = forest_up_[at(above)];
    const cause next_why = forest_why_[at(above)];
    forest_up_[at(above)] = n;
    forest_why_[at(above)] = why;
    n = above;
    above = next;
    why = next_why;
  }
}

// Entries of the table under the class that is taken in stay: nobody asks for them until it is a class again.
void congruence::join_users(node from, node into) {
  for (const node user : users_[at(from)]) {
    const node function = class_of(function_of(user));
    const node argument = class_of(argument_of(user));
    const node known = signatures_.find(function, argument);
    if (known == no_node) {
      signatures_.insert(function, argument, user);
      undo_.push_back({undo_kind::signature, function, argument});
      users_[at(into)].push_back(user);
    } else if (!equal(known, user)) {
      pending_.push_back({user, known, {cause_kind::congruent, 0}});
    }
  }
}

bool congruence::check_disequations(node from, node into) {
  for (const neighbour& d : class_disequations_[at(from)]) {
    if (class_of(d.other) == into) {
      return refuse(d.here, d.other, d.l);
    }
  }
  return true;
}

// The classes are one already: class_of gives `into` for the members of both.
void congruence::check_atoms(node from, node into) {
  for (const neighbour& a : class_atoms_[at(from)]) {
    if (class_of(a.other) == into) {
      imply(a.l, {});
    } else if (constant_[at(into)] != no_node && constant_[at(class_of(a.other))] != no_node) {
      const node here = constant_[at(into)];
      const node there = constant_[at(class_of(a.other))];
      imply(negation(a.l), a.here == sides(a.l).first ? witness{here, there, -1} : witness{there, here, -1});
    }
  }
}

// Atoms between one of the two classes and a class that is known to be unequal to the other.
void congruence::refute_atoms(node from, node into) {
  const auto& more = class_disequations_[at(into)];
  if (!more.empty() && !class_atoms_[at(from)].empty() && more.size() <= refuting_scan) {
    mark_unequal(into);
    refute_where_marked(from);
  }
  if (!class_disequations_[at(from)].empty() && class_atoms_[at(into)].size() <= refuting_scan) {
    mark_unequal(from);
    refute_where_marked(into);
  }
}

void congruence::mark_unequal(node of) {
  const auto& list = class_disequations_[at(of)];
  for (std::size_t i = 0; i < list.size(); ++i) {
    const node there = class_of(list[i].other);
    if (unequal_mark_[at(there)] < 0) {
      unequal_mark_[at(there)] = static_cast<std::int32_t>(i);
      marked_.push_back(there);
    }
  }
  marked_.push_back(of);  // at the end: whose marks these are
}

void congruence::refute_where_marked(node here) {
  const node of = marked_.back();
  marked_.pop_back();
  for (const neighbour& a : class_atoms_[at(here)]) {
    const std::int32_t mark = unequal_mark_[at(class_of(a.other))];
    if (mark >= 0) {
      const neighbour& d = class_disequations_[at(of)][at(mark)];
      imply(negation(a.l), a.here == sides(a.l).first ? witness{d.here, d.other, d.l} : witness{d.other, d.here, d.l});
    }
  }
  for (const node n : marked_) {
    unequal_mark_[at(n)] = -1;
  }
  marked_.clear();
}

void congruence::imply(literal l, const witness& why) {
  if (known_[index(l)] != 0) {
    return;
  }
  known_[index(l)] = 1;
  undo_.push_back({undo_kind::known, variable_of(l), no_node});
  witness_[index(l)] = why;
  implied_.push_back(l);
}

bool congruence::refuse(node a, node b, literal why) {
  conflict_.clear();
  explain(a, b, conflict_);
  if (why >= 0) {
    conflict_.push_back(why);
  }
  return false;
}

// ---- Going back.

void congruence::back_to_level(int level) {
  const std::size_t start = level_starts_[at(level)];
  level_starts_.resize(at(level));
  while (undo_.size() > start) {
    const undo_record u = undo_.back();
    undo_.pop_back();
    switch (u.kind) {
      case undo_kind::merge:
        undo_merge(u);
        break;
      case undo_kind::signature:
        signatures_.erase(u.a, u.b);
        break;
      case undo_kind::disequation:
        class_disequations_[at(u.a)].pop_back();
        class_disequations_[at(u.b)].pop_back();
        disequations_.pop_back();
        break;
      case undo_kind::known:
        known_[at(u.a)] = 0;
        break;
      case undo_kind::premises:
        premises_end_.pop_back();
        premises_.resize(premises_end_.empty() ? 0 : premises_end_.back());
        break;
    }
  }
  pending_.clear();
  implied_.clear();
  shared_merges_.clear();
}

void congruence::undo_merge(const undo_record& u) {
  const merge_sizes sizes = undo_sizes_.back();
  undo_sizes_.pop_back();
  const node from = u.a;
  const node into = u.b;
  std::swap(next_[at(from)], next_[at(into)]);
  node member = from;
  do {
    class_[at(member)] = from;
    member = next_[at(member)];
  } while (member != from);
  class_size_[at(into)] -= class_size_[at(from)];
  users_[at(into)].resize(sizes.users);
  class_atoms_[at(into)].resize(sizes.atoms);
  class_disequations_[at(into)].resize(sizes.disequations);
  constant_[at(into)] = sizes.constant;
  shared_[at(into)] = sizes.shared;
  // The edge goes, which later merges may have turned round; how the others are turned does not matter.
  forest_up_[at(forest_up_[at(u.c)] == u.d ? u.c : u.d)] = no_node;
}

// ---- Explanations.

void congruence::explain_implied(literal l, std::vector<literal>& premises) {
  const auto [left, right] = sides(l);
  if (is_positive(l)) {
    explain(left, right, premises);
    return;
  }
  const witness& why = witness_[index(l)];
  explain(left, why.left, premises);
  explain(right, why.right, premises);
  if (why.why >= 0) {
    premises.push_back(why.why);
  }
}

// Each edge is explained once in one call, however often it is needed.
void congruence::explain(node a, node b, std::vector<literal>& premises) {
  ++stamp_;
  to_explain_.assign(1, {a, b});
  while (!to_explain_.empty()) {
    const auto [x, y] = to_explain_.back();
    to_explain_.pop_back();
    const node top = common_ancestor(x, y);
    explain_path(x, top, premises);
    explain_path(y, top, premises);
  }
}

node congruence::explained_up_to(node n) {
  node top = n;
  while (explained_stamp_[at(top)] == stamp_) {
    top = explained_[at(top)];
  }
  while (explained_stamp_[at(n)] == stamp_) {
    n = std::exchange(explained_[at(n)], top);
  }
  return top;
}

// Both walks climb in turn, so that the cost is that of the longer path and not of the whole tree.
node congruence::common_ancestor(node a, node b) {
  ++visit_;
  a = explained_up_to(a);
  b = explained_up_to(b);
  while (true) {
    if (a != no_node) {
      if (visit_stamp_[at(a)] == visit_) {
        return a;
      }
      visit_stamp_[at(a)] = visit_;
      a = forest_up_[at(a)];
      a = a == no_node ? a : explained_up_to(a);
    }
    std::swap(a, b);
    assert(a != no_node || b != no_node);
  }
}

void congruence::explain_path(node from, node to, std::vector<literal>& premises) {
  to = explained_up_to(to);
  for (node n = explained_up_to(from); n != to; n = explained_up_to(n)) {
    work_.charge(1);
    const node above = forest_up_[at(n)];
    const cause why = forest_why_[at(n)];
    switch (why.kind) {
      case cause_kind::equation:
        premises.push_back(why.detail);
        break;
      case cause_kind::congruent:
        to_explain_.emplace_back(function_of(n), function_of(above));
        to_explain_.emplace_back(argument_of(n), argument_of(above));
        break;
      case cause_kind::entailed: {
        const std::size_t begin = why.detail == 0 ? 0 : premises_end_[at(why.detail) - 1];
        premises.insert(premises.end(), premises_.begin() + static_cast<std::ptrdiff_t>(begin),
                        premises_.begin() + static_cast<std::ptrdiff_t>(premises_end_[at(why.detail)]));
        break;
      }
    }
    explained_stamp_[at(n)] = stamp_;
    explained_[at(n)] = above;
  }
}

}  // namespace vetro::smt

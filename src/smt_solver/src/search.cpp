// Clause learning: first unique implication points, minimised; the variables of recent conflicts are decided first,
// with the value that they had last; restarts after a fixed series of conflicts; learnt clauses that span many decision
// levels are forgotten first.
#include "smt_solver/src/search.h"

#include <algorithm>

namespace vetro::smt {
namespace {

constexpr std::size_t restart_unit = 64;   // conflicts before the first restart
constexpr std::size_t first_keep = 4000;   // learnt clauses before some are forgotten
constexpr std::size_t more_to_keep = 600;  // how many more after each time
constexpr std::int32_t always_kept = 2;    // learnt clauses over so few levels stay
constexpr std::uint64_t activity_limit = std::uint64_t{1} << 60;
constexpr int activity_shift = 40;

// The i-th number of the series 1 1 2 1 1 2 4 1 1 2 ..., i from 0.
std::size_t luby(std::size_t i) {
  std::size_t size = 1;
  while (size < i + 1) {
    size = 2 * size + 1;
  }
  std::size_t power = (size + 1) / 2;
  while (size - 1 != i) {
    size = (size - 1) / 2;
    power /= 2;
    i %= size;
  }
  return power;
}

}  // namespace

int search::add_variable(bool is_atom, decided d) {
  const int v = variables();
  values_.insert(values_.end(), 2, truth::open);
  levels_.push_back(0);
  reasons_.push_back(no_reason);
  is_atom_.push_back(is_atom ? 1 : 0);
  phase_.push_back(0);
  seen_.push_back(0);
  activity_.push_back(0);
  heap_place_.push_back(d == decided::yes ? -1 : never);
  watches_.emplace_back();
  watches_.emplace_back();
  if (d == decided::yes) {
    heap_insert(v);
  }
  return v;
}

void search::add_clause(std::span<const literal> literals) {
  if (impossible_) {
    return;
  }
  std::vector<literal>& clean = learning_;
  clean.assign(literals.begin(), literals.end());
  std::sort(clean.begin(), clean.end());
  clean.erase(std::unique(clean.begin(), clean.end()), clean.end());
  for (std::size_t i = 0; i < clean.size(); ++i) {
    if (value(clean[i]) == truth::yes || (i > 0 && clean[i] == negation(clean[i - 1]))) {
      return;
    }
  }
  clean.erase(std::remove_if(clean.begin(), clean.end(), [&](literal l) { return value(l) == truth::no; }),
              clean.end());
  if (clean.empty()) {
    impossible_ = true;
  } else if (clean.size() == 1) {
    enqueue(clean.front(), no_reason);
  } else {
    const clause_ref c = store(clean, 0);
    given_.push_back(c);
    watch_clause(c);
  }
}

search::clause_ref search::store(std::span<const literal> literals, std::int32_t rank) {
  const auto c = static_cast<clause_ref>(arena_.size());
  arena_.push_back(static_cast<std::int32_t>(literals.size()));
  arena_.push_back(rank);
  arena_.insert(arena_.end(), literals.begin(), literals.end());
  return c;
}

void search::watch_clause(clause_ref c) {
  const auto literals = clause(c);
  const bool binary = literals.size() == 2;
  watches_[place(literals[0])].emplace_back(c, literals[1], binary);
  watches_[place(literals[1])].emplace_back(c, literals[0], binary);
}

// ---- Assignment.

void search::enqueue(literal l, clause_ref reason) {
  const std::size_t v = index(l);
  values_[place(l)] = truth::yes;
  values_[place(negation(l))] = truth::no;
  levels_[v] = level();
  reasons_[v] = reason;
  trail_.push_back(l);
}

void search::open_level() {
  level_starts_.push_back(trail_.size());
  theory_.open_level();
}

void search::back_to(int target) {
  if (level() <= target) {
    return;
  }
  const std::size_t start = level_starts_[place(target)];
  for (std::size_t i = trail_.size(); i > start; --i) {
    const literal l = trail_[i - 1];
    const std::size_t v = index(l);
    phase_[v] = is_positive(l) ? 1 : 0;
    values_[place(l)] = truth::open;
    values_[place(negation(l))] = truth::open;
    if (heap_place_[v] == -1) {
      heap_insert(variable_of(l));
    }
  }
  trail_.resize(start);
  level_starts_.resize(place(target));
  clause_head_ = start;
  theory_head_ = std::min(theory_head_, start);
  theory_.back_to_level(target);
}

// ---- Propagation.

bool search::propagate() {
  bool changed = true;
  while (changed) {
    if (!propagate_clauses()) {
      return false;
    }
    changed = false;
    if (!propagate_theory(changed)) {
      return false;
    }
  }
  return true;
}

bool search::propagate_clauses() {
  while (clause_head_ < trail_.size()) {
    const clause_ref refuted = visit_watches(negation(trail_[clause_head_++]));
    if (refuted != no_reason) {
      const auto literals = clause(refuted);
      conflict_.assign(literals.begin(), literals.end());
      return false;
    }
  }
  return true;
}

search::clause_ref search::visit_watches(literal falsified) {
  std::vector<watch>& watching = watches_[place(falsified)];
  work_.charge(1 + watching.size());
  const truth* const values = values_.data();
  clause_ref refuted = no_reason;
  auto kept = watching.begin();
  for (auto w = watching.begin(); w != watching.end(); ++w) {
    const watch here = *w;
    if (values[here.blocker] == truth::yes) {
      *kept++ = here;
      continue;
    }
    literal other = here.blocker;
    if (here.is_binary == 0) {
      literal* const literals = literals_of(here.clause());
      other = literals[0] ^ literals[1] ^ falsified;
      if (values[other] == truth::yes) {
        *kept++ = {here.clause(), other, false};
        continue;
      }
      literals[0] = other;
      literals[1] = falsified;
      literal* const end = literals + size_of(here.clause());
      literal* const next = std::find_if(literals + 2, end, [values](literal l) { return values[l] != truth::no; });
      if (next != end) {
        std::swap(literals[1], *next);
        watches_[place(literals[1])].emplace_back(here.clause(), other, false);
        continue;
      }
    }
    *kept++ = {here.clause(), other, here.is_binary != 0};
    if (values[other] == truth::no) {
      refuted = here.clause();
      kept = std::copy(w + 1, watching.end(), kept);
      break;
    }
    enqueue(other, here.clause());
  }
  watching.erase(kept, watching.end());
  return refuted;
}

bool search::propagate_theory(bool& changed) {
  while (theory_head_ < trail_.size()) {
    const literal l = trail_[theory_head_++];
    if (is_atom_[index(l)] != 0 && theory_.assert_literal(l) == theory_answer::conflict) {
      return refused_by_theory();
    }
  }
  switch (theory_.propagate()) {
    case theory_answer::conflict:
      return refused_by_theory();
    case theory_answer::progress:
      changed = true;
      return take_implied();
    default:
      return true;
  }
}

bool search::take_implied() {
  bool consistent = true;
  for (const literal l : theory_.implied()) {
    if (value(l) == truth::open) {
      enqueue(l, theory_reason);
    } else if (value(l) == truth::no && consistent) {
      // The theory did not know yet that the literal is false: its reasons and the negation contradict each other.
      consistent = false;
      premises_.clear();
      theory_.explain(l, premises_);
      theory_.conflict() = premises_;
      theory_.conflict().push_back(negation(l));
    }
  }
  theory_.implied().clear();
  return consistent || refused_by_theory();
}

bool search::refused_by_theory() {
  theory_.implied().clear();
  conflict_.clear();
  for (const literal l : theory_.conflict()) {
    conflict_.push_back(negation(l));
  }
  return false;
}

std::span<const literal> search::reason(literal l) {
  clause_ref& r = reasons_[index(l)];
  if (r == theory_reason) {
    premises_.assign(1, l);
    theory_.explain(l, premises_);
    std::for_each(premises_.begin() + 1, premises_.end(), [](literal& p) { p = negation(p); });
    r = store(premises_, 0);
    wasted_ += premises_.size() + header;
    work_.charge(premises_.size());
  }
  literal* literals = literals_of(r);
  if (literals[0] != l) {  // a binary clause does not put the literal that it forces in front
    std::swap(literals[0], literals[1]);
  }
  return {literals + 1, place(size_of(r)) - 1};
}

// ---- Conflicts.

bool search::resolve_conflict() {
  ++conflicts_;
  int highest = 0;
  for (const literal l : conflict_) {
    highest = std::max(highest, level_of(l));
  }
  back_to(highest);
  if (highest == 0) {
    return false;
  }
  analyze();
  minimize();
  learn();
  decay();
  return true;
}

void search::mark(literal l, int& open) {
  const std::size_t v = index(l);
  if (seen_[v] != 0 || levels_[v] == 0) {
    return;
  }
  seen_[v] = 1;
  to_clear_.push_back(l);
  bump(variable_of(l));
  if (levels_[v] == level()) {
    ++open;
  } else {
    learning_.push_back(l);
  }
}

void search::analyze() {
  learning_.assign(1, -1);
  int open = 0;
  for (const literal l : conflict_) {
    mark(l, open);
  }
  std::size_t at = trail_.size();
  while (true) {
    do {
      --at;
    } while (seen_[index(trail_[at])] == 0);
    const literal l = trail_[at];
    if (--open == 0) {
      learning_[0] = negation(l);
      return;
    }
    const auto premises = reason(l);
    work_.charge(premises.size());
    for (const literal p : premises) {
      mark(p, open);
    }
  }
}

void search::minimize() {
  std::size_t kept = 1;
  for (std::size_t i = 1; i < learning_.size(); ++i) {
    if (!is_redundant(learning_[i])) {
      learning_[kept++] = learning_[i];
    }
  }
  learning_.resize(kept);
  for (const literal l : to_clear_) {
    seen_[index(l)] = 0;
  }
  to_clear_.clear();
}

// A literal follows from the others when all premises of its negation, and theirs, lead to marked literals. Marks of
// what was found to follow stay; those of a failed attempt go.
bool search::is_redundant(literal l) {
  if (reasons_[index(l)] == no_reason) {
    return false;
  }
  const std::size_t marked_before = to_clear_.size();
  stack_.assign(1, l);
  while (!stack_.empty()) {
    const literal top = negation(stack_.back());
    stack_.pop_back();
    const auto premises = reason(top);
    work_.charge(premises.size());
    for (const literal p : premises) {
      const std::size_t v = index(p);
      if (seen_[v] != 0 || levels_[v] == 0) {
        continue;
      }
      if (reasons_[v] == no_reason) {
        while (to_clear_.size() > marked_before) {
          seen_[index(to_clear_.back())] = 0;
          to_clear_.pop_back();
        }
        return false;
      }
      seen_[v] = 1;
      to_clear_.push_back(p);
      stack_.push_back(p);
    }
  }
  return true;
}

int search::count_levels(std::span<const literal> literals) {
  ++stamp_;
  level_stamp_.resize(place(level()) + 1, 0);
  int count = 0;
  for (const literal l : literals) {
    std::size_t& stamp = level_stamp_[place(level_of(l))];
    count += stamp == stamp_ ? 0 : 1;
    stamp = stamp_;
  }
  return count;
}

void search::learn() {
  const int rank = count_levels(learning_);
  int target = 0;
  if (learning_.size() > 1) {
    const auto second = std::max_element(learning_.begin() + 1, learning_.end(),
                                         [&](literal a, literal b) { return level_of(a) < level_of(b); });
    std::swap(learning_[1], *second);
    target = level_of(learning_[1]);
  }
  back_to(target);
  if (learning_.size() == 1) {
    enqueue(learning_[0], no_reason);
    return;
  }
  const clause_ref c = store(learning_, rank);
  learnt_.push_back(c);
  watch_clause(c);
  enqueue(learning_[0], c);
}

// ---- The run.

outcome search::solve() {
  if (impossible_) {
    return outcome::unsatisfiable;
  }
  keep_ = first_keep;
  next_restart_ = restart_unit;
  while (true) {
    if (!propagate()) {
      if (!resolve_conflict()) {
        return outcome::unsatisfiable;
      }
      continue;
    }
    if (work_.exhausted()) {
      return outcome::exhausted;
    }
    if (conflicts_ >= next_restart_) {
      next_restart_ = conflicts_ + restart_unit * luby(++restarts_);
      back_to(0);
      forget();
      continue;
    }
    const literal decision = next_decision();
    if (decision >= 0) {
      ++decisions_;
      open_level();
      enqueue(decision, no_reason);
      continue;
    }
    const theory_answer answer = theory_.final_check();
    if (answer == theory_answer::consistent) {
      return outcome::satisfiable;
    }
    if (answer == theory_answer::exhausted) {
      return outcome::exhausted;
    }
    const bool consistent = answer == theory_answer::progress ? take_implied() : refused_by_theory();
    if (!consistent && !resolve_conflict()) {
      return outcome::unsatisfiable;
    }
  }
}

literal search::next_decision() {
  while (!heap_.empty()) {
    const int v = heap_pop();
    if (value(literal_of(v)) == truth::open) {
      return literal_of(v, phase_[place(v)] != 0);
    }
  }
  return -1;
}

// Half of the learnt clauses go, those over the most levels and of these the oldest, when there are many. Runs at level
// 0, where no clause is the reason of anything that will be explained.
void search::forget() {
  if (learnt_.size() < keep_) {
    if (wasted_ > arena_.size() / 2) {
      collect_garbage();
    }
    return;
  }
  keep_ += more_to_keep;
  std::vector<clause_ref> by_rank = learnt_;
  std::stable_sort(by_rank.begin(), by_rank.end(), [&](clause_ref a, clause_ref b) { return rank_of(a) > rank_of(b); });
  for (std::size_t i = 0; i < by_rank.size() / 2; ++i) {
    if (rank_of(by_rank[i]) > always_kept) {
      rank_of(by_rank[i]) = -1;
    }
  }
  learnt_.erase(std::remove_if(learnt_.begin(), learnt_.end(), [&](clause_ref c) { return rank_of(c) < 0; }),
                learnt_.end());
  collect_garbage();
}

// Rebuilds arena and watches from the clauses that stay, without literals that are false for good.
void search::collect_garbage() {
  std::vector<std::int32_t> old;
  old.swap(arena_);
  arena_.reserve(old.size());
  for (auto& list : watches_) {
    list.clear();
  }
  std::vector<literal> literals;
  for (auto* list : {&given_, &learnt_}) {
    std::size_t kept = 0;
    for (const clause_ref c : *list) {
      literals.clear();
      bool satisfied = false;
      for (std::int32_t i = 0; i < old[place(c)]; ++i) {
        const literal l = old[place(c + header + i)];
        satisfied = satisfied || value(l) == truth::yes;
        if (value(l) == truth::open) {
          literals.push_back(l);
        }
      }
      if (!satisfied) {  // all literals are propagated, so that two at least are open
        (*list)[kept] = store(literals, old[place(c) + 1]);
        watch_clause((*list)[kept++]);
      }
    }
    list->resize(kept);
  }
  for (const literal l : trail_) {
    reasons_[index(l)] = no_reason;
  }
  wasted_ = 0;
}

// ---- Activity.

void search::bump(int variable) {
  activity_[place(variable)] += bump_;
  if (activity_[place(variable)] > activity_limit) {
    for (std::uint64_t& a : activity_) {
      a >>= activity_shift;
    }
    bump_ = std::max<std::uint64_t>(bump_ >> activity_shift, 1);
    // Equal activities are ordered by number, so that the heap has to be made anew.
    std::vector<int> members;
    members.swap(heap_);
    for (const int v : members) {
      heap_place_[place(v)] = -1;
    }
    std::sort(members.begin(), members.end());
    for (const int v : members) {
      heap_insert(v);
    }
  } else if (heap_place_[place(variable)] >= 0) {
    heap_up(place(heap_place_[place(variable)]));
  }
}

void search::decay() { bump_ += bump_ / 16 + 1; }

void search::heap_up(std::size_t i) {
  const int v = heap_[i];
  while (i > 0 && before(v, heap_[(i - 1) / 2])) {
    heap_[i] = heap_[(i - 1) / 2];
    heap_place_[place(heap_[i])] = static_cast<int>(i);
    i = (i - 1) / 2;
  }
  heap_[i] = v;
  heap_place_[place(v)] = static_cast<int>(i);
}

void search::heap_down(std::size_t i) {
  const int v = heap_[i];
  while (2 * i + 1 < heap_.size()) {
    std::size_t child = 2 * i + 1;
    if (child + 1 < heap_.size() && before(heap_[child + 1], heap_[child])) {
      ++child;
    }
    if (!before(heap_[child], v)) {
      break;
    }
    heap_[i] = heap_[child];
    heap_place_[place(heap_[i])] = static_cast<int>(i);
    i = child;
  }
  heap_[i] = v;
  heap_place_[place(v)] = static_cast<int>(i);
}

void search::heap_insert(int variable) {
  heap_place_[place(variable)] = static_cast<int>(heap_.size());
  heap_.push_back(variable);
  heap_up(heap_.size() - 1);
}

int search::heap_pop() {
  const int top = heap_.front();
  heap_place_[place(top)] = -1;
  const int last = heap_.back();
  heap_.pop_back();
  if (!heap_.empty()) {
    heap_.front() = last;
    heap_down(0);
  }
  return top;
}

}  // namespace vetro::smt

// Clause learning with two watched literals.
//
// An assignment looks at the clauses that watch the literal which became false, and moves their watch to another one
// that is not false. Where there is none, the clause is unit or falsified: so each clause is found that a scan of all
// would find, and because unit clauses are taken by their number and all watching clauses are looked at before the
// lowest conflict is reported, the run goes the same way as one with such scans.
//
// A level is propagated to its end before the next one is opened, so that after a return no clause is unit but the one
// just learnt: nothing has to be kept for the return.
#include "smt_solver/src/cdcl.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdlib>

#include "number/budget.h"
#include "number/limits.h"
#include "term/report.h"

namespace vetro {
namespace {

int variable_of(int literal) { return std::abs(literal) - 1; }

// Where a literal stands in the lists by literal.
std::size_t place_of(int literal, const sat_data& s) { return static_cast<std::size_t>(literal + s.v_size); }

int truth_of(int literal, const sat_data& s) { return s.truth[place_of(literal, s)]; }

// Entries of the arena in front of a clause's literals.
constexpr std::size_t header = 2;

void spend(sat_data& s, std::size_t literals) { s.work_left -= std::min<std::uint64_t>(s.work_left, literals); }

void note_conflict(int clause, int& conflict) { conflict = conflict < 0 ? clause : std::min(conflict, clause); }

// Watches the first two literals of the last clause.
void attach_last_clause(sat_data& s) {
  const int index = s.cl_size() - 1;
  const literal_span literals = s.clause(index);
  if (literals.size() > 2) {
    const sat_data::place at = s.clauses.back();
    s.watches[place_of(literals[0], s)].push_back({at, literals[1]});
    s.watches[place_of(literals[1], s)].push_back({at, literals[0]});
  } else {
    for (std::size_t i = 0; i < literals.size(); ++i) {
      s.short_clauses[place_of(literals[i], s)].push_back({index, literals[literals.size() - 1 - i]});
    }
  }
}

// All literals of the clause but the last one are false.
void last_literal_left(int clause, int literal, sat_data& s, int& conflict) {
  if (truth_of(literal, s) < 0) {
    note_conflict(clause, conflict);
  } else {
    s.units.insert(clause);
  }
}

// The first literal behind the watched ones that is not false; the clause's end when there is none.
int* next_watchable(int* literals, int* end, const std::int8_t* truth) {
  return std::find_if(literals + 2, end, [truth](int l) { return truth[l] >= 0; });
}

// The literal has become false in the clauses of two literals, and is the only one of others.
void visit_short_clauses(int literal, sat_data& s, int& conflict) {
  const auto& list = s.short_clauses[place_of(literal, s)];
  for (const sat_data::short_clause& c : list) {
    if (truth_of(c.other, s) <= 0) {
      last_literal_left(c.clause, c.other, s, conflict);
    }
  }
  spend(s, list.size() + 1);
}

// The same in longer clauses, which look for another literal to watch.
void visit_watchers(int literal, sat_data& s, int& conflict) {
  const std::int8_t* const truth = s.truth.data() + s.v_size;
  std::vector<sat_data::watch>& list = s.watches[place_of(literal, s)];
  std::size_t looked_at = list.size();
  auto kept = list.begin();
  for (const sat_data::watch w : list) {
    if (truth[w.other] > 0) {
      *kept++ = w;
      continue;
    }
    int* const clause = s.arena.data() + w.at;
    int* const literals = clause + header;
    const int other = literals[0] ^ literals[1] ^ literal;
    if (truth[other] > 0) {
      *kept++ = {w.at, other};
      continue;
    }
    int* const end = literals + clause[1];
    int* const next = next_watchable(literals, end, truth);
    looked_at += static_cast<std::size_t>(next - literals);
    if (next == end) {
      *kept++ = {w.at, other};
      last_literal_left(clause[0], other, s, conflict);
    } else {
      literals[0] = other;
      literals[1] = *next;
      *next = literal;
      s.watches[place_of(literals[1], s)].push_back({w.at, other});
    }
  }
  list.erase(kept, list.end());
  spend(s, looked_at);
}

// Gives the literal's variable the value that makes it true. The first clause falsified, or -1.
int assign(int literal, int reason, sat_data& s) {
  const int variable = variable_of(literal);
  const auto v = static_cast<std::size_t>(variable);
  assert(s.v_data.value[v] == -1);
  s.v_data.value[v] = literal > 0 ? 1 : 0;
  s.v_data.ancient[v] = reason;
  s.v_data.dl[v] = s.cur_dl;
  s.truth[place_of(literal, s)] = 1;
  s.truth[place_of(-literal, s)] = -1;
  s.trail.push_back(variable);
  int conflict = -1;
  visit_short_clauses(-literal, s, conflict);
  visit_watchers(-literal, s, conflict);
  return conflict;
}

void release(int variable, sat_data& s) {
  const auto v = static_cast<std::size_t>(variable);
  s.v_data.value[v] = -1;
  s.v_data.ancient[v] = -1;
  s.v_data.dl[v] = -1;
  s.truth[place_of(variable + 1, s)] = 0;
  s.truth[place_of(-variable - 1, s)] = 0;
  s.lowest_free = std::min(s.lowest_free, variable);
}

// The literal that a clause still forces, or 0 when one of its literals has become true. All but the watched ones are
// false.
int forced_literal(int clause, const sat_data& s) {
  const literal_span literals = s.clause(clause);
  const int first = literals[0];
  const int second = literals[literals.size() > 1 ? 1 : 0];
  if (truth_of(first, s) > 0 || truth_of(second, s) > 0) {
    return 0;
  }
  return truth_of(first, s) == 0 ? first : second;
}

int level_of(int literal, const sat_data& s) { return s.v_data.dl[static_cast<std::size_t>(variable_of(literal))]; }

// The header of the next clause; its size is filled in when its literals are there.
void begin_clause(sat_data& s) {
  s.clauses.push_back(static_cast<sat_data::place>(s.arena.size()));
  s.arena.insert(s.arena.end(), {s.cl_size() - 1, 0});
}

// Appends the learnt clause, with the literals that lose their value first in front.
void append_learnt(const std::vector<int>& learnt, sat_data& s) {
  begin_clause(s);
  s.arena.back() = static_cast<int>(learnt.size());
  s.arena.insert(s.arena.end(), learnt.begin(), learnt.end());
  const auto begin = s.arena.end() - static_cast<std::ptrdiff_t>(learnt.size());
  const auto watched = begin + static_cast<std::ptrdiff_t>(std::min<std::size_t>(learnt.size(), 2));
  std::partial_sort(begin, watched, s.arena.end(), [&s](int a, int b) { return level_of(a, s) > level_of(b, s); });
  attach_last_clause(s);
}

enum class conflict_outcome : unsigned char { resolved, unsatisfiable, exhausted };

// Learns from the conflict and returns to the level where the learnt clause is unit.
conflict_outcome resolve_conflict(int conflict, sat_data& s) {
  if (s.cur_dl == 0) {
    return conflict_outcome::unsatisfiable;
  }
  const std::vector<int> learnt = clause_learning(conflict, s);
  if (s.cl_size() >= s.cl_maxsize) {
    print_progress("too many clause\n");
    return conflict_outcome::exhausted;
  }
  append_learnt(learnt, s);
  const int level = conflict_analysis(learnt, s);
  if (level < 0) {
    return conflict_outcome::unsatisfiable;
  }
  backtrack(level, s);
  if (learnt.size() == 1 || truth_of(s.clause(s.cl_size() - 1)[1], s) < 0) {
    s.units.insert(s.cl_size() - 1);
  }
  return s.work_left == 0 ? conflict_outcome::exhausted : conflict_outcome::resolved;
}

}  // namespace

// ---- Sets of clauses.

void clause_set::insert(int clause) {
  const auto word = static_cast<std::size_t>(clause) / 64;
  if (word >= words_.size()) {
    words_.resize(word + 1);
    groups_.resize(word / 64 + 1);
  }
  words_[word] |= std::uint64_t{1} << (static_cast<unsigned>(clause) % 64);
  groups_[word / 64] |= std::uint64_t{1} << (word % 64);
}

void clause_set::erase(int clause) {
  const auto word = static_cast<std::size_t>(clause) / 64;
  words_[word] &= ~(std::uint64_t{1} << (static_cast<unsigned>(clause) % 64));
  if (words_[word] == 0) {
    groups_[word / 64] &= ~(std::uint64_t{1} << (word % 64));
  }
}

void clause_set::clear() {
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    for (; groups_[i] != 0; groups_[i] &= groups_[i] - 1) {
      words_[64 * i + static_cast<std::size_t>(std::countr_zero(groups_[i]))] = 0;
    }
  }
}

int clause_set::lowest() const {
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    if (groups_[i] != 0) {
      const std::size_t word = 64 * i + static_cast<std::size_t>(std::countr_zero(groups_[i]));
      return static_cast<int>(64 * word) + std::countr_zero(words_[word]);
    }
  }
  return -1;
}

literal_span sat_data::clause(int c) const {
  const std::size_t at = clauses[static_cast<std::size_t>(c)];
  return literal_span(arena).subspan(at + header, static_cast<std::size_t>(arena[at + 1]));
}

sat_data init_cdcl(int n, int m) {
  sat_data s;
  const auto size = static_cast<std::size_t>(n);
  s.v_size = n;
  s.cl_maxsize = 8 * m;
  s.v_data = {std::vector<std::int8_t>(size, -1), std::vector<int>(size, -1), std::vector<int>(size, -1)};
  s.watches.resize(2 * size + 1);
  s.short_clauses.resize(2 * size + 1);
  s.truth.resize(2 * size + 1, 0);
  s.seen.resize(size, 0);
  s.work_left = limits::cdcl_work;
  return s;
}

void add_clause(sat_data& s, literal_span literals) {
  std::vector<int>& all = s.arena;
  begin_clause(s);
  const auto size_before = static_cast<std::ptrdiff_t>(all.size());
  all.insert(all.end(), literals.begin(), literals.end());
  const auto begin = all.begin() + size_before;
  std::sort(begin, all.end(),
            [](int a, int b) { return std::abs(a) != std::abs(b) ? std::abs(a) < std::abs(b) : a < b; });
  all.erase(std::unique(begin, all.end()), all.end());
  const bool always_true = std::adjacent_find(begin, all.end(), [](int a, int b) { return a == -b; }) != all.end();
  const auto size = static_cast<int>(all.end() - begin);
  if (size == 0 || always_true) {
    all.resize(s.clauses.back());
    s.clauses.pop_back();
    return;
  }
  *(begin - 1) = size;
  attach_last_clause(s);
  if (size == 1) {
    s.units.insert(s.cl_size() - 1);
  }
}

cdcl_result cdcl_solver(sat_data& s) {
  s.cur_dl = 0;
  do {
    int conflict = bcp(s);
    while (conflict >= 0) {
      switch (resolve_conflict(conflict, s)) {
        case conflict_outcome::unsatisfiable:
          return cdcl_unsat;
        case conflict_outcome::exhausted:
          ++ended_budgets;
          return cdcl_exhausted;
        case conflict_outcome::resolved:
          break;
      }
      conflict = bcp(s);
    }
  } while (decide(s) >= 0);
  return cdcl_sat;
}

int bcp(sat_data& s) {
  for (int clause = s.units.lowest(); clause >= 0; clause = s.units.lowest()) {
    s.units.erase(clause);
    const int literal = forced_literal(clause, s);
    const int conflict = literal == 0 ? -1 : assign(literal, clause, s);
    if (conflict >= 0) {
      return conflict;
    }
  }
  return -1;
}

int decide(sat_data& s) {
  while (s.lowest_free < s.v_size && s.v_data.value[static_cast<std::size_t>(s.lowest_free)] != -1) {
    ++s.lowest_free;
  }
  if (s.lowest_free == s.v_size) {
    return -1;
  }
  const int variable = s.lowest_free;
  ++s.cur_dl;
  assign(variable + 1, -1, s);
  return variable;
}

// Resolving away one implied literal of the current level after the other ends in the same clause whatever the order,
// because the reasons form no cycle: the literals that are left are those of other levels and the decision, each
// reached through reasons from the conflict. So every variable is visited once. All of them stand false in the clause.
std::vector<int> clause_learning(int clause, sat_data& s) {
  std::vector<int> learnt;
  s.met.clear();             // variables to be unmarked
  s.open.assign(1, clause);  // clauses still to be read
  while (!s.open.empty()) {
    const literal_span literals = s.clause(s.open.back());
    s.open.pop_back();
    spend(s, literals.size());
    for (const int literal : literals) {
      const auto v = static_cast<std::size_t>(variable_of(literal));
      if (s.seen[v] != 0) {
        continue;
      }
      s.seen[v] = 1;
      s.met.push_back(variable_of(literal));
      if (s.v_data.dl[v] == s.cur_dl && s.v_data.ancient[v] != -1) {
        s.open.push_back(s.v_data.ancient[v]);
      } else {
        assert(truth_of(literal, s) < 0);
        learnt.push_back(literal);
      }
    }
  }
  for (const int variable : s.met) {
    s.seen[static_cast<std::size_t>(variable)] = 0;
  }
  std::sort(learnt.begin(), learnt.end(), [](int a, int b) { return std::abs(a) < std::abs(b); });
  return learnt;
}

int conflict_analysis(literal_span learnt, const sat_data& s) {
  if (learnt.empty()) {
    print_progress("error, empty learnt clause");
    return -1;
  }
  int highest = -1;
  int second = -1;
  for (const int literal : learnt) {
    const int level = s.v_data.dl[static_cast<std::size_t>(variable_of(literal))];
    if (level > highest) {
      second = highest;
      highest = level;
    } else if (level < highest) {
      second = std::max(second, level);
    }
  }
  return std::max(second, 0);
}

void backtrack(int back_dl, sat_data& s) {
  while (!s.trail.empty() && s.v_data.dl[static_cast<std::size_t>(s.trail.back())] > back_dl) {
    const int variable = s.trail.back();
    s.trail.pop_back();
    release(variable, s);
  }
  s.units.clear();
  s.cur_dl = back_dl;
}

}  // namespace vetro

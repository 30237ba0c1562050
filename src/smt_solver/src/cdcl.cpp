// Clause learning with counters and occurrence lists.
//
// An assignment touches the clauses that hold the variable and no others; everything it does to one clause is the
// transition of that clause's counters. Because the lists are in index order and unit clauses wait in a heap, the run
// goes the same way as one that scans all clauses for each assignment.
#include "smt_solver/src/cdcl.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

#include "number/limits.h"
#include "term/report.h"

namespace vetro {
namespace {

enum clause_state : int { satisfied = 0, conflicting = 1, unit = 2 };  // and -k: k literals unassigned, none true

int variable_of(int literal) { return std::abs(literal) - 1; }

[[maybe_unused]] bool is_true(int literal, const sat_data& s) {
  return s.v_data.value[static_cast<std::size_t>(variable_of(literal))] == (literal > 0 ? 1 : 0);
}

// The state of a clause without a true literal.
int open_state(int unassigned) { return unassigned == 0 ? conflicting : unassigned == 1 ? unit : -unassigned; }

void spend(sat_data& s, std::size_t literals) { s.work_left -= std::min<std::uint64_t>(s.work_left, literals); }

// Makes a clause of the literals that stand behind the last clause.
void close_clause(sat_data& s, int state, int unassigned) {
  constexpr std::size_t usual_occurrences = 4;
  const int index = s.cl_size();
  s.cl_data.push_back({state, 0, unassigned});
  s.literals_end.push_back(s.literals.size());
  for (const int literal : s.clause(index)) {
    auto& places = s.occurs[static_cast<std::size_t>(variable_of(literal))];
    if (places.empty()) {
      places.reserve(usual_occurrences);
    }
    places.push_back({index, literal > 0});
  }
  if (state == unit) {
    s.units.push(index);
  }
}

// A literal of the clause, unassigned so far, becomes true or false.
void assign_literal(clause_data& clause, bool becomes_true) {
  --clause.unassign_num;
  if (becomes_true) {
    clause.lit_state = clause.state == satisfied ? clause.lit_state + 1 : 1;
    clause.state = satisfied;
  } else if (clause.state != satisfied) {
    clause.state = open_state(clause.unassign_num);
  }
}

// The reverse: a literal of the clause loses its value.
void release_literal(clause_data& clause, bool was_true) {
  ++clause.unassign_num;
  if (clause.state == satisfied && (!was_true || --clause.lit_state > 0)) {
    return;
  }
  assert(clause.state == satisfied || !was_true);
  clause.state = open_state(clause.unassign_num);
}

// Gives the variable its value and every clause that holds it its new counters, to the end even after a conflict, so
// that all of them stay exact. The first clause falsified, or -1.
int assign(int variable, bool value, int reason, sat_data& s) {
  const auto v = static_cast<std::size_t>(variable);
  assert(s.v_data.value[v] == -1);
  s.v_data.value[v] = value ? 1 : 0;
  s.v_data.ancient[v] = reason;
  s.v_data.dl[v] = s.cur_dl;
  s.trail.push_back(variable);
  spend(s, s.occurs[v].size() + 1);
  int conflict = -1;
  for (const sat_data::occurrence& o : s.occurs[v]) {
    clause_data& clause = s.cl_data[static_cast<std::size_t>(o.clause)];
    assign_literal(clause, o.positive == value);
    if (clause.state == unit) {
      s.units.push(o.clause);
    } else if (clause.state == conflicting && conflict < 0) {
      conflict = o.clause;
    }
  }
  return conflict;
}

void release(int variable, sat_data& s) {
  const auto v = static_cast<std::size_t>(variable);
  spend(s, s.occurs[v].size() + 1);
  const bool value = s.v_data.value[v] == 1;
  for (const sat_data::occurrence& o : s.occurs[v]) {
    clause_data& clause = s.cl_data[static_cast<std::size_t>(o.clause)];
    release_literal(clause, o.positive == value);
    if (clause.state == unit) {
      s.units.push(o.clause);
    }
  }
  s.v_data.value[v] = -1;
  s.v_data.ancient[v] = -1;
  s.v_data.dl[v] = -1;
  s.lowest_free = std::min(s.lowest_free, variable);
}

// The unit clause with the lowest index, or -1.
int next_unit(sat_data& s) {
  while (!s.units.empty()) {
    const int clause = s.units.top();
    s.units.pop();
    if (s.cl_data[static_cast<std::size_t>(clause)].state == unit) {
      return clause;
    }
  }
  return -1;
}

int unassigned_literal(int clause, const sat_data& s) {
  for (const int literal : s.clause(clause)) {
    if (s.v_data.value[static_cast<std::size_t>(variable_of(literal))] == -1) {
      return literal;
    }
  }
  assert(false && "a unit clause has an unassigned literal");
  return 0;
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
  s.literals.insert(s.literals.end(), learnt.begin(), learnt.end());
  close_clause(s, conflicting, 0);
  const int level = conflict_analysis(learnt, s);
  if (level < 0) {
    return conflict_outcome::unsatisfiable;
  }
  backtrack(level, s);
  return s.work_left == 0 ? conflict_outcome::exhausted : conflict_outcome::resolved;
}

}  // namespace

literal_span sat_data::clause(int c) const {
  const auto i = static_cast<std::size_t>(c);
  const std::size_t begin = i == 0 ? 0 : literals_end[i - 1];
  return literal_span(literals).subspan(begin, literals_end[i] - begin);
}

sat_data init_cdcl(int n, int m) {
  sat_data s;
  const auto size = static_cast<std::size_t>(n);
  s.v_size = n;
  s.cl_maxsize = 8 * m;
  s.v_data = {std::vector<std::int8_t>(size, -1), std::vector<int>(size, -1), std::vector<int>(size, -1)};
  s.occurs.resize(size);
  s.seen.resize(size, false);
  s.work_left = limits::cdcl_work;
  return s;
}

void add_clause(sat_data& s, literal_span literals) {
  std::vector<int>& all = s.literals;
  const auto size_before = static_cast<std::ptrdiff_t>(all.size());
  all.insert(all.end(), literals.begin(), literals.end());
  const auto begin = all.begin() + size_before;
  std::sort(begin, all.end(),
            [](int a, int b) { return std::abs(a) != std::abs(b) ? std::abs(a) < std::abs(b) : a < b; });
  all.erase(std::unique(begin, all.end()), all.end());
  const bool always_true = std::adjacent_find(begin, all.end(), [](int a, int b) { return a == -b; }) != all.end();
  const auto size = static_cast<int>(all.end() - begin);
  if (size == 0 || always_true) {
    all.erase(begin, all.end());
    return;
  }
  close_clause(s, open_state(size), size);
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
  for (int clause = next_unit(s); clause >= 0; clause = next_unit(s)) {
    const int literal = unassigned_literal(clause, s);
    const int conflict = assign(variable_of(literal), literal > 0, clause, s);
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
  assign(variable, true, -1, s);
  return variable;
}

// Resolving away one implied literal of the current level after the other ends in the same clause whatever the order,
// because the reasons form no cycle: the literals that are left are those of other levels and the decision, each
// reached through reasons from the conflict. So every variable is visited once. All of them stand false in the clause.
std::vector<int> clause_learning(int clause, sat_data& s) {
  std::vector<int> learnt;
  std::vector<int> met;              // variables to be unmarked
  std::vector<int> open = {clause};  // clauses still to be read
  while (!open.empty()) {
    const literal_span literals = s.clause(open.back());
    open.pop_back();
    spend(s, literals.size());
    for (const int literal : literals) {
      const auto v = static_cast<std::size_t>(variable_of(literal));
      if (s.seen[v]) {
        continue;
      }
      s.seen[v] = true;
      met.push_back(variable_of(literal));
      if (s.v_data.dl[v] == s.cur_dl && s.v_data.ancient[v] != -1) {
        open.push_back(s.v_data.ancient[v]);
      } else {
        assert(!is_true(literal, s));
        learnt.push_back(literal);
      }
    }
  }
  for (const int variable : met) {
    s.seen[static_cast<std::size_t>(variable)] = false;
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
  s.cur_dl = back_dl;
}

}  // namespace vetro

// The propositional engine: conflict-driven clause learning over sparse clauses.
//
// It decides without heuristics: the lowest unassigned variable becomes true. The next unit clause is always the one
// with the lowest index, and a conflict is the first clause in index order that the last assignment falsified. A learnt
// clause keeps, of the current level, the decision alone.
//
// Variables count from 0. A literal is +(v + 1) or -(v + 1).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vetro {

using literal_span = std::span<const int>;

enum class cdcl_result : int { cdcl_unsat = 0, cdcl_sat = 1, cdcl_exhausted = -2 };
using enum cdcl_result;

// What is known of each variable.
struct var_data {
  std::vector<std::int8_t> value;  // -1 unassigned, 0 false, 1 true
  std::vector<int> ancient;        // the clause that forced the value; -1 for a decision or an unassigned variable
  std::vector<int> dl;             // decision level of the assignment, -1 if unassigned
};

// Numbers of clauses, of which the lowest is asked for.
class clause_set {
 public:
  void insert(int clause);
  void erase(int clause);
  void clear();
  int lowest() const;  // -1 when there is none

 private:
  std::vector<std::uint64_t> words_;
  std::vector<std::uint64_t> groups_;  // a bit for each word that is not 0
};

// One problem and one run over it. Clauses never change their order; learnt ones are appended.
struct sat_data {
  int v_size = 0;      // variables
  int cl_maxsize = 0;  // capacity in clauses
  int cur_dl = 0;      // current decision level
  var_data v_data;
  std::uint64_t work_left = 0;  // literals that may still be looked at

  int cl_size() const { return static_cast<int>(clauses.size()); }
  literal_span clause(int c) const;  // its literals, in an order that changes

  using place = std::uint32_t;
  // One clause after the other: its number, the number of its literals, then these.
  std::vector<int> arena;
  std::vector<place> clauses;  // where each clause stands in the arena

  // The rest makes the steps cheap and follows from the above.
  struct watch {
    place at;
    int other;  // a literal of the clause; while it is true, the clause needs no look
  };
  struct short_clause {
    int clause;
    int other;  // its other literal, or the only one
  };
  // A clause stands in the lists of its first two literals: with short ones where it has no others. As long as it is
  // neither satisfied nor unit, these two are not false.
  std::vector<std::vector<watch>> watches;               // by literal, -v_size to v_size
  std::vector<std::vector<short_clause>> short_clauses;  // likewise
  std::vector<std::int8_t> truth;                        // likewise: 1 true, -1 false, 0 unassigned
  clause_set units;                                      // all unit clauses, and former ones
  std::vector<int> trail;                                // assigned variables, oldest first
  int lowest_free = 0;                                   // no variable below is unassigned
  std::vector<char> seen;                                // scratch of clause_learning
  std::vector<int> met;
  std::vector<int> open;
};

// A problem of n variables without clauses, and room for m given clauses: the capacity is 8 m.
sat_data init_cdcl(int n, int m);

// Appends a clause over unassigned variables. Repeated literals count once; a clause with a literal and its negation is
// always true and is left out, and so is an empty one.
void add_clause(sat_data& s, literal_span literals);

// cdcl_unsat; cdcl_sat with a full assignment in v_data; cdcl_exhausted when the capacity ("too many clause\n" on
// standard output) or the work budget ran out, and nothing was decided.
cdcl_result cdcl_solver(sat_data& s);

// ---- The steps.

int bcp(sat_data& s);                                           // unit propagation: the clause in conflict, or -1
int decide(sat_data& s);                                        // the variable decided, or -1 if all are assigned
std::vector<int> clause_learning(int clause, sat_data& s);      // literals of the learnt clause, by variable
int conflict_analysis(literal_span learnt, const sat_data& s);  // the level to return to; -1 for an empty clause
void backtrack(int back_dl, sat_data& s);

}  // namespace vetro

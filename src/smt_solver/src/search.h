// The search of the SMT kernel: clause learning with two watched literals for each clause, beside a theory that is told
// each literal over its atoms as it becomes true, and that answers with conflicts and implied literals.
//
// One run is incremental in itself: what was learnt stays until it proves useless, and a refused assignment costs one
// clause and a step back. Every choice depends on the clauses alone, never on addresses or time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "number/budget.h"

namespace vetro::smt {

// Variable v as a literal is 2 v, its negation 2 v + 1.
using literal = std::int32_t;
constexpr literal literal_of(int variable, bool positive = true) { return 2 * variable + (positive ? 0 : 1); }
constexpr literal negation(literal l) { return l ^ 1; }
constexpr int variable_of(literal l) { return l >> 1; }
constexpr bool is_positive(literal l) { return (l & 1) == 0; }

enum class truth : std::int8_t { no = -1, open = 0, yes = 1 };
constexpr truth operator-(truth t) { return static_cast<truth>(-static_cast<int>(t)); }

enum class theory_answer : unsigned char { consistent, conflict, progress, exhausted };

// What the search asks of the theories. Levels are counted by the search: everything asserted since the call of
// open_level that made level n + 1 goes when the search returns to level n.
class theory {
 public:
  theory() = default;
  theory(const theory&) = delete;
  theory& operator=(const theory&) = delete;
  virtual ~theory() = default;

  virtual void open_level() = 0;
  virtual void back_to_level(int level) = 0;
  // A literal over an atom of the theory is true now. Conflicts may wait until propagate.
  virtual theory_answer assert_literal(literal l) = 0;
  // Everything asserted has been propagated by the clauses. Fills implied(); progress says that it is not empty.
  virtual theory_answer propagate() = 0;
  // All variables have values. Progress: implied() or something inside has changed, so that propagation has to run
  // again.
  virtual theory_answer final_check() = 0;
  // The true literals from which an implied literal followed, all of them older than it.
  virtual void explain(literal implied, std::vector<literal>& premises) = 0;

  std::vector<literal>& conflict() { return conflict_; }  // true literals that cannot be true together
  std::vector<literal>& implied() { return implied_; }

 protected:
  std::vector<literal> conflict_;
  std::vector<literal> implied_;
};

enum class outcome : unsigned char { unsatisfiable, satisfiable, exhausted };

class search {
 public:
  search(theory& atoms, budget& work) : theory_(atoms), work_(work) {}

  // The next variable. Values of atoms are reported to the theory. One that is not decided may stay open in the end, so
  // that it must not matter for the given clauses.
  enum class decided : bool { no, yes };
  int add_variable(bool is_atom, decided d = decided::yes);
  // A clause, before solve. Repeated literals and clauses that are always true are sorted out.
  void add_clause(std::span<const literal> literals);
  outcome solve();

  truth value(literal l) const { return values_[place(l)]; }
  int variables() const { return static_cast<int>(levels_.size()); }
  std::size_t conflicts() const { return conflicts_; }
  std::size_t decisions() const { return decisions_; }

 private:
  // Position of a clause in the arena: two words of header (size; rank of a learnt clause, 0 for a given one), then the
  // literals.
  using clause_ref = std::int32_t;
  static constexpr int never = -2;
  static constexpr clause_ref no_reason = -1;
  static constexpr clause_ref theory_reason = -2;
  static constexpr std::int32_t header = 2;
  struct watch {
    literal blocker;  // another literal of the clause: if it is true, the clause needs no look
    std::uint32_t is_binary : 1;
    std::uint32_t place : 31;

    watch(clause_ref c, literal other, bool binary)
        : blocker(other), is_binary(binary ? 1 : 0), place(static_cast<std::uint32_t>(c)) {}
    clause_ref clause() const { return static_cast<clause_ref>(place); }
  };
  static std::size_t index(literal l) { return static_cast<std::size_t>(l >> 1); }
  static std::size_t place(std::int32_t i) { return static_cast<std::size_t>(i); }

  std::int32_t& size_of(clause_ref c) { return arena_[place(c)]; }
  std::int32_t& rank_of(clause_ref c) { return arena_[place(c) + 1]; }
  literal* literals_of(clause_ref c) { return arena_.data() + place(c) + header; }
  std::span<literal> clause(clause_ref c) { return {literals_of(c), place(size_of(c))}; }
  clause_ref store(std::span<const literal> literals, std::int32_t rank);
  void watch_clause(clause_ref c);

  int level() const { return static_cast<int>(level_starts_.size()); }
  int level_of(literal l) const { return levels_[index(l)]; }
  void enqueue(literal l, clause_ref reason);
  void open_level();
  void back_to(int level);

  bool propagate();                             // clauses and theory; false with conflict_ filled
  bool propagate_clauses();                     // false with conflict_ filled
  clause_ref visit_watches(literal falsified);  // the first clause refuted, or no_reason
  bool propagate_theory(bool& changed);
  bool take_implied();
  bool refused_by_theory();                    // makes conflict_ of the theory's; always false
  std::span<const literal> reason(literal l);  // the clause that forced it, without the literal itself

  bool resolve_conflict();  // learns from conflict_ and goes back; false when nothing can be satisfied
  void analyze();
  void mark(literal l, int& open);
  void minimize();
  bool is_redundant(literal l);
  int count_levels(std::span<const literal> literals);
  void learn();

  literal next_decision();
  void forget();
  void collect_garbage();

  void bump(int variable);
  void decay();
  void heap_up(std::size_t i);
  void heap_down(std::size_t i);
  void heap_insert(int variable);
  int heap_pop();
  bool before(int a, int b) const {
    return activity_[place(a)] != activity_[place(b)] ? activity_[place(a)] > activity_[place(b)] : a < b;
  }

  theory& theory_;
  budget& work_;

  std::vector<std::int32_t> arena_;
  std::vector<clause_ref> given_;
  std::vector<clause_ref> learnt_;
  std::size_t wasted_ = 0;
  std::vector<std::vector<watch>> watches_;  // by literal that became false

  std::vector<truth> values_;  // by literal
  std::vector<int> levels_;
  std::vector<clause_ref> reasons_;
  std::vector<std::uint8_t> is_atom_;
  std::vector<std::uint8_t> phase_;
  std::vector<literal> trail_;
  std::vector<std::size_t> level_starts_;
  std::size_t clause_head_ = 0;
  std::size_t theory_head_ = 0;
  bool impossible_ = false;  // the given clauses contradict each other

  std::vector<literal> conflict_;  // false literals of which one must be true
  std::vector<literal> learning_;
  std::vector<std::uint8_t> seen_;
  std::vector<literal> to_clear_;
  std::vector<literal> stack_;
  std::vector<literal> premises_;
  std::vector<std::size_t> level_stamp_;
  std::size_t stamp_ = 0;

  std::vector<std::uint64_t> activity_;
  std::uint64_t bump_ = std::uint64_t{1} << 20;
  std::vector<int> heap_;
  std::vector<int> heap_place_;  // -1 when not in the heap, never when it is not decided

  std::size_t conflicts_ = 0;
  std::size_t decisions_ = 0;
  std::size_t restarts_ = 0;
  std::size_t next_restart_ = 0;
  std::size_t keep_ = 0;
};

}  // namespace vetro::smt

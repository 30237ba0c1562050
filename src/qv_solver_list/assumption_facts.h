// What one list of assumptions says, read once and shared by all solvers that are asked about the list.
//
// The record of a list comes with the solve_data and is made when it is first asked for. Local assumptions (the
// conditions of a set description, the case at hand) are a layer on top: what is known of the list below stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "qv_solver_list/solver.h"
#include "term/ast.h"
#include "term/compare.h"
#include "term/memo.h"
#include "term/relation.h"

namespace vetro {

// The formulas of a list that changes; whoever reads it for one state of the list compares the version.
struct formula_table {
  static constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

  // The first places of a formula. Later ones need no mention: a list that is cut before the first has none of them.
  struct places {
    std::size_t given = nowhere;         // as an assumption
    std::size_t derived_from = nowhere;  // as what an assumption gives
  };
  std::unordered_map<term_ptr, places, alpha_hasher, alpha_equal> known;  // those that are somewhere
  std::uint64_t version = 0;
};

class assumption_facts {
 public:
  // The table, where there is one, is that of this list and gives its places.
  explicit assumption_facts(shared_terms assum, std::shared_ptr<const formula_table> table = nullptr)
      : list_(std::move(assum)), table_(std::move(table)), version_(table_ == nullptr ? 0 : table_->version) {}
  assumption_facts(std::shared_ptr<assumption_facts> below, term_span more)
      : below_(std::move(below)), list_(below_->list_), begin_(list_.size()) {
    list_.append(more);
  }

  // Whether this is the record of exactly that list.
  bool describes(const shared_terms& assum) const { return assum == list_; }

  // The assumptions that this layer adds, in order, and the layer underneath (null at the bottom).
  term_span own() const { return term_span(list_).subspan(begin_); }
  assumption_facts* below() const { return below_.get(); }

  const shared_terms& all() const { return list_; }  // of all layers, those below first

  // Whether t is an assumption, up to bound names.
  bool holds(term_ptr t);
  // The same, or a side of a conjunction that is one. A conjunction under a scope is not opened.
  bool holds_part(term_ptr t);

  // Whether a variable of that name stands anywhere in the assumptions, bound or free.
  bool mentions(std::string_view name);

  // The comparisons that stand among this layer's assumptions, in order. A scoped one says less and is none.
  std::span<const order_fact> comparisons();

  // Calls visit(const_type set) for each assumption t ∈ set with a constant on its right side, those below first.
  template <class F>
  void for_each_set_of(term_ptr t, F visit) {
    if (below_ != nullptr) {
      below_->for_each_set_of(t, visit);
    }
    const auto& known = memberships();
    if (const auto found = known.find(t); found != known.end()) {
      for (const const_type set : found->second) {
        visit(set);
      }
    }
  }

  // A solver's own record of this layer: T(assumption_facts&), made when it is first asked for. It reads own() and,
  // where it needs the whole list, below()->table<T>().
  template <class T>
  T& table() {
    auto& slot = tables_.of<std::unique_ptr<T>>();
    if (slot == nullptr) {
      slot = std::make_unique<T>(*this);
    }
    return *slot;
  }

 private:
  friend bool is_assumption(term_ptr t, const solve_data& sdata);
  using by_term = std::unordered_map<term_ptr, std::vector<const_type>, alpha_hasher, alpha_equal>;

  const by_term& memberships();
  void index_assumptions();
  // The first place of t in this layer, at least as far as the tables at hand tell.
  std::size_t known_place(term_ptr t) const;
  bool has_table() const { return table_ != nullptr && table_->version == version_; }

  std::shared_ptr<assumption_facts> below_;
  shared_terms list_;
  std::size_t begin_ = 0;
  std::shared_ptr<const formula_table> table_;
  std::uint64_t version_ = 0;
  bool asked_ = false;
  std::unordered_map<term_ptr, std::size_t, alpha_hasher, alpha_equal> position_;
  std::unordered_set<term_ptr, alpha_hasher, alpha_equal> parts_;
  std::unordered_map<std::string_view, bool> mentioned_;
  std::unique_ptr<std::vector<order_fact>> comparisons_;
  std::unique_ptr<by_term> memberships_;
  typed_slots tables_;
};

// The record of sdata's assumptions. It is made, or made anew, when there is none or it is that of another list.
const std::shared_ptr<assumption_facts>& shared_facts_of(const solve_data& sdata);
inline assumption_facts& facts_of(const solve_data& sdata) { return *shared_facts_of(sdata); }

// sdata with further assumptions behind its own.
solve_data with_assumptions(const solve_data& sdata, term_span more);

// Whether t is one of the assumptions, up to bound names. Quick also for a record that has just been copied or changed.
bool is_assumption(term_ptr t, const solve_data& sdata);

}  // namespace vetro

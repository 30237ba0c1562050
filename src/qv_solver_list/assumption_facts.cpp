// The tables of a list. The first question whether something is assumed is answered by a scan, because most records are
// asked once; the second builds a table.
#include "qv_solver_list/assumption_facts.h"

#include <algorithm>

#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

bool is_open_conjunction(term_ptr t, const std::optional<composed_prop>& view) {
  return view && view->connect == And && view->t2 != nullptr && t->scope() == nullptr;
}

}  // namespace

void assumption_facts::index_assumptions() {
  const term_span list = own();
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i] != nullptr) {
      position_.emplace(list[i], i);
    }
  }
}

std::size_t assumption_facts::known_place(term_ptr t) const {
  if (has_table()) {
    const auto found = table_->known.find(t);
    return found == table_->known.end() ? formula_table::nowhere : found->second.given;
  }
  const auto found = position_.find(t);
  return found == position_.end() ? formula_table::nowhere : found->second;
}

bool assumption_facts::holds(term_ptr t) {
  if (below_ != nullptr && below_->holds(t)) {
    return true;
  }
  if (has_table()) {
    return table_->known.count(t) != 0;
  }
  if (!asked_) {
    asked_ = true;
    return std::any_of(own().begin(), own().end(), [t](term_ptr known) { return known && term_eqb(known, t); });
  }
  if (position_.empty()) {
    index_assumptions();
  }
  return position_.count(t) != 0;
}

bool assumption_facts::holds_part(term_ptr t) {
  if (below_ != nullptr && below_->holds_part(t)) {
    return true;
  }
  if (parts_.empty()) {
    term_list open;
    std::copy_if(own().begin(), own().end(), std::back_inserter(open), [](term_ptr known) { return known != nullptr; });
    while (!open.empty()) {
      term_ptr part = open.back();
      open.pop_back();
      const auto view = composed_prop_split(part);
      if (parts_.insert(part).second && is_open_conjunction(part, view)) {
        open.insert(open.end(), {view->t1, view->t2});
      }
    }
  }
  return parts_.count(t) != 0;
}

bool assumption_facts::mentions(std::string_view name) {
  if (below_ != nullptr && below_->mentions(name)) {
    return true;
  }
  const auto [entry, added] = mentioned_.try_emplace(intern_text(name), false);
  if (added) {
    entry->second = std::any_of(own().begin(), own().end(),
                                [name](term_ptr known) { return known != nullptr && name_occurs(name, known); });
  }
  return entry->second;
}

std::span<const order_fact> assumption_facts::comparisons() {
  if (comparisons_ == nullptr) {
    comparisons_ = std::make_unique<std::vector<order_fact>>();
    for (term_ptr t : own()) {
      if (const auto fact = as_order(t)) {
        comparisons_->push_back(*fact);
      }
    }
  }
  return *comparisons_;
}

const assumption_facts::by_term& assumption_facts::memberships() {
  if (memberships_ == nullptr) {
    memberships_ = std::make_unique<by_term>();
    for (term_ptr t : own()) {
      const auto view = t == nullptr || t->has_meta() ? std::nullopt : pred_split(t);
      if (view && view->pred == Belong && view->right->type() == Const) {
        (*memberships_)[view->left].push_back(view->right->constant());
      }
    }
  }
  return *memberships_;
}

const std::shared_ptr<assumption_facts>& shared_facts_of(const solve_data& sdata) {
  if (sdata.facts == nullptr || !sdata.facts->describes(sdata.assum)) {
    sdata.facts = std::make_shared<assumption_facts>(sdata.assum);
  }
  return sdata.facts;
}

solve_data with_assumptions(const solve_data& sdata, term_span more) {
  facts_of(sdata);
  solve_data extended = sdata;
  extended.facts = std::make_shared<assumption_facts>(sdata.facts, more);
  extended.assum = extended.facts->all();
  return extended;
}

// A hit is checked against the list, so that it needs no look at the rest.
bool is_assumption(term_ptr t, const solve_data& sdata) {
  if (sdata.facts != nullptr && sdata.facts->below() == nullptr) {
    const std::size_t place = sdata.facts->known_place(t);
    if (place < sdata.assum.size() && term_eqb(sdata.assum[place], t)) {
      return true;
    }
  }
  return facts_of(sdata).holds(t);
}

}  // namespace vetro

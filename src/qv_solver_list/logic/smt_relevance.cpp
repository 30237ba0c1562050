// One walk over the list joins what stands in one assumption. Numbers and their operations, equations and comparisons
// join nothing by themselves: they mean the same everywhere.
#include "qv_solver_list/logic/smt_relevance.h"

#include <algorithm>
#include <utility>

#include "term/kinds.h"
#include "term/reserved.h"

namespace vetro {
namespace {

bool joins_nothing(term_ptr symbol) {
  switch (symbol->type()) {
    case Const:
      return symbol->constant() == Integer;
    case Oper:
      switch (symbol->oper()) {
        case Plus:
        case Neg:
        case Minus:
        case Mult:
        case Div:
        case Frac:
          return true;
        default:
          return false;
      }
    case Pred:
      return symbol->pred() >= PredChain && symbol->pred() <= Le;
    default:
      return symbol->type() == Connect;
  }
}

// Functions with a name that stands elsewhere than in front of an argument may be equal to those of another part, and
// so may truth values inside of terms.
term_ptr some_function() { return reserved_var(reserved_kind::hole, 0); }
term_ptr some_truth() { return reserved_var(reserved_kind::hole, 1); }

}  // namespace

smt_relevance::smt_relevance(assumption_facts& facts) {
  for (term_ptr t : facts.own()) {
    if (t != nullptr) {
      assumptions_.push_back(t);
      part_of_.push_back(read(t, true));
    }
  }
  for (term_ptr name : applied_) {
    if (other_names_.contains(name)) {
      join(of_symbol(some_function()), of_symbol(name));
    }
  }
  for (element& part : part_of_) {
    part = part == nothing ? nothing : top(part);
  }
  consistent_.resize(up_.size(), false);
}

smt_relevance::element smt_relevance::top(element e) {
  while (up_[at(e)] != e) {
    e = up_[at(e)] = up_[at(up_[at(e)])];
  }
  return e;
}

smt_relevance::element smt_relevance::join(element a, element b) {
  if (a == nothing || b == nothing) {
    return std::max(a, b);
  }
  return up_[at(top(b))] = top(a);
}

smt_relevance::element smt_relevance::of_symbol(term_ptr symbol) {
  const auto [entry, added] = symbols_.try_emplace(symbol->bare(), static_cast<element>(up_.size()));
  if (added) {
    up_.push_back(entry->second);
  }
  return entry->second;
}

smt_relevance::element smt_relevance::read(term_ptr t, bool is_statement) {
  if (t->children().empty() && !t->has_meta()) {
    if (t->type() == Var) {
      other_names_.insert(t);
    }
    return t->type() == TermList || joins_nothing(t) ? nothing : of_symbol(t);
  }
  auto& known = known_[is_statement ? 1 : 0];
  if (const auto found = known.find(t); found != known.end()) {
    return found->second;
  }
  const element e = read_new(t, is_statement);
  known.emplace(t, e);
  return e;
}

smt_relevance::element smt_relevance::read_new(term_ptr t, bool is_statement) {
  element all = t->scope() == nullptr ? nothing : read(t->scope(), true);
  if (t->type() != Apply) {
    all = t->children().empty() ? join(all, of_symbol(t)) : all;
    for (term_ptr part : t->children()) {
      all = part == nullptr ? all : join(all, read(part, false));
    }
    return all;
  }
  term_ptr head = t;
  while (head->type() == Apply) {
    head = head->left();
  }
  const bool connective = head->type() == Connect;
  for (term_ptr node = t; node->type() == Apply; node = node->left()) {
    all = join(all, read(node->right(), connective));
  }
  if (head->type() == Var) {
    applied_.insert(head->bare());
    return join(all, of_symbol(head));
  }
  if (head->type() == Pred && !is_statement) {
    all = join(all, of_symbol(some_truth()));
  }
  return join(all, read(head, false));
}

// ---- Questions.

term_list smt_relevance::relevant_to(term_span propositions) {
  relevant_.assign(up_.size(), false);
  node_set seen;
  for (term_ptr t : propositions) {
    make_relevant(t, seen);
  }
  for (term_ptr always : {some_function(), some_truth()}) {
    if (const auto found = symbols_.find(always); found != symbols_.end()) {
      relevant_[at(top(found->second))] = true;
    }
  }
  term_list list;
  for (std::size_t i = 0; i < assumptions_.size(); ++i) {
    if (is_relevant(i)) {
      list.push_back(assumptions_[i]);
    }
  }
  return list;
}

void smt_relevance::make_relevant(term_ptr t, node_set& seen) {
  if (!seen.insert(t)) {
    return;
  }
  if (t->scope() != nullptr) {
    make_relevant(t->scope(), seen);
  }
  if (t->children().empty()) {
    if (const auto found = symbols_.find(t->bare()); found != symbols_.end()) {
      relevant_[at(top(found->second))] = true;
    }
    return;
  }
  for (term_ptr part : t->children()) {
    if (part != nullptr) {
      make_relevant(part, seen);
    }
  }
}

// What speaks of numbers alone is relevant to everything.
bool smt_relevance::is_relevant(std::size_t assumption) const {
  const element part = part_of_[assumption];
  return part == nothing || relevant_[at(part)];
}

term_list smt_relevance::others() const {
  term_list list;
  for (std::size_t i = 0; i < assumptions_.size(); ++i) {
    if (!is_relevant(i) && !consistent_[at(part_of_[i])]) {
      list.push_back(assumptions_[i]);
    }
  }
  return list;
}

void smt_relevance::settle(bool relevant) {
  for (std::size_t i = 0; i < assumptions_.size(); ++i) {
    if (part_of_[i] != nothing && is_relevant(i) == relevant) {
      consistent_[at(part_of_[i])] = true;
    }
  }
}

}  // namespace vetro

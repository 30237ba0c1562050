// Congruence closure over the terms of the assumptions and of the targets that are asked about. An equation counts if
// it is an assumption, a part of a conjunction or a link of a chain that is one. Whatever binds or guards names,
// carries a side condition or is a list with an ellipsis is one whole.
#include "qv_solver_list/logic/equation_logic.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/logic/propositional_problem.h"
#include "qv_solver_list/solver_preprocess.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// ---- Equal terms.

class equation_classes {
 public:
  void equate(term_ptr a, term_ptr b) {
    pending_.emplace_back(node_of(a), node_of(b));
    close();
  }

  // t with each part replaced by the smallest that equals it, the first of those.
  term_ptr representative(term_ptr t) { return representative_of(class_of(node_of(t))); }

 private:
  using node = std::size_t;

  struct entry {
    std::vector<node> parts;  // none: a whole
    bool listed;              // the parts are those of a list, not of an application
    node up;                  // towards the class
    std::vector<node> users;  // of a class: what has a member as a part
    term_ptr best;            // of a class: the smallest member
    term_ptr representative = nullptr;
  };

  // What speaks of a function speaks of its name; an expression in its place has a variable of its own, and no value.
  static bool is_whole(term_ptr t) {
    if ((t->type() != Apply && t->type() != TermList) || t->has_meta() || is_dotted_list(t)) {
      return true;
    }
    if (t->type() == TermList) {
      return false;
    }
    if (describes_set(t) || binding(t).touches_names()) {
      return true;
    }
    const bool of_function = binding_row_of(t) != nullptr || is_oper(t->left(), Dom);
    const spine parts = spine_of(t);
    return of_function && !std::all_of(parts.args.begin(), parts.args.end(), is_name);
  }

  static bool is_name(term_ptr t) {
    return t->type() == Var ||
           (t->type() == TermList && std::all_of(t->elements().begin(), t->elements().end(), is_name));
  }

  node node_of(term_ptr t) {
    if (const node* known = nodes_.find(t)) {
      return *known;
    }
    std::vector<node> parts;
    if (!is_whole(t)) {
      for (term_ptr part : t->children()) {
        parts.push_back(node_of(part));
      }
    }
    const node result = parts.empty() ? whole(t) : made_of(t, std::move(parts));
    nodes_.keep(t, result);
    return result;
  }

  node whole(term_ptr t) {
    const auto [place, added] = wholes_.try_emplace(t, entries_.size());
    if (added) {
      entries_.push_back({{}, false, entries_.size(), {}, t});
    }
    return place->second;
  }

  node made_of(term_ptr t, std::vector<node> parts) {
    const node fresh = entries_.size();
    const bool listed = t->type() == TermList;
    const node known = signatures_.try_emplace(signature(parts, listed), fresh).first->second;
    if (known != fresh) {
      entry& same = entries_[class_of(known)];
      same.best = simpler(same.best, t);
      return known;
    }
    for (const node part : parts) {
      entries_[class_of(part)].users.push_back(fresh);
    }
    entries_.push_back({std::move(parts), listed, fresh, {}, t});
    return fresh;
  }

  std::vector<node> signature(const std::vector<node>& parts, bool listed) {
    std::vector<node> words{listed ? node{1} : node{0}};
    for (const node part : parts) {
      words.push_back(class_of(part));
    }
    return words;
  }

  node class_of(node n) {
    while (entries_[n].up != n) {
      n = entries_[n].up = entries_[entries_[n].up].up;
    }
    return n;
  }

  // A name rather than a number, so that what speaks of a name goes on to do so.
  static term_ptr simpler(term_ptr a, term_ptr b) {
    return b->size() < a->size() || (b->size() == a->size() && b->type() == Var && a->type() != Var) ? b : a;
  }

  void close() {
    while (!pending_.empty()) {
      auto [a, b] = pending_.back();
      pending_.pop_back();
      a = class_of(a);
      b = class_of(b);
      if (a == b) {
        continue;
      }
      if (entries_[a].users.size() > entries_[b].users.size()) {
        std::swap(a, b);
      }
      entries_[b].best = simpler(entries_[std::min(a, b)].best, entries_[std::max(a, b)].best);
      entries_[a].up = b;
      for (const node user : std::exchange(entries_[a].users, {})) {
        const node same =
            signatures_.try_emplace(signature(entries_[user].parts, entries_[user].listed), user).first->second;
        if (same != user) {
          pending_.emplace_back(same, user);
        }
        entries_[b].users.push_back(user);
      }
    }
  }

  // Parts of the smallest member are smaller than it, and so are their smallest equals; where sizes are beyond counting
  // and one leads back to it, it stands for itself.
  term_ptr representative_of(node c) {
    if (entries_[c].representative == nullptr) {
      term_ptr best = entries_[c].best;
      entries_[c].representative = best;
      entries_[c].representative =
          is_whole(best) ? best : map_children(best, walk_apply | walk_elements, [&](term_ptr part) {
            return representative_of(class_of(node_of(part)));
          });
    }
    return entries_[c].representative;
  }

  std::vector<entry> entries_;
  node_memo<node> nodes_;
  std::unordered_map<term_ptr, node, alpha_hasher, alpha_equal> wholes_;
  std::map<std::vector<node>, node> signatures_;
  std::vector<std::pair<node, node>> pending_;
};

// ---- Logic over classes of equal terms.

class problem_of_equals : public propositional_problem {
 public:
  position truth() { return negation(falsehood()); }

 protected:
  position translate_atom(term_ptr t) override {
    if (is_constant(t, False)) {
      return falsehood();
    }
    const auto view = t->has_meta() ? std::nullopt : pred_split(t);
    if (!view) {
      return own_atom(t);
    }
    switch (view->pred) {
      case Eq:
        return equation(view->left, view->right);
      case Neq:
        return negation(equation(view->left, view->right));
      case NotBelong:
        return view->left->type() == TermList ? own_atom(t)
                                              : negation(own_atom(make_binPred_prop(Belong, view->left, view->right)));
      default:
        return own_atom(t);
    }
  }

 private:
  position falsehood() {
    const position some = own_atom(mk_const(False));
    return connective(SAT_AND, some, negation(some));
  }

  position equation(term_ptr left, term_ptr right) {
    term_ptr written = make_binPred_prop(Eq, left, right);
    if (holds_any(written, several_valued)) {
      return own_atom(written);
    }
    if (term_eqb(left, right)) {
      return truth();
    }
    term_ptr turned = make_binPred_prop(Eq, right, left);
    return own_atom(mentions(turned) ? turned : written);
  }
};

// The assumptions of one list with equal parts replaced.
class assumed_equations {
 public:
  explicit assumed_equations(assumption_facts& facts) {
    const auto all = facts.all();
    for (term_ptr assumption : all) {
      read(solver_preprocess_expand_tuple_equalities(assumption));
    }
    if (!any_) {
      return;
    }
    for (term_ptr assumption : all) {
      term_ptr opened = solver_preprocess_expand_tuple_equalities(assumption);
      if (opened != nullptr) {
        premises_.push_back(classes_.representative(opened));
      }
    }
    translated_ = mentioned_.conjunction(premises_).has_value();
  }

  bool any() const { return any_ && translated_; }
  term_ptr representative(term_ptr t) { return classes_.representative(t); }
  const term_list& premises() const { return premises_; }

  bool mention(term_ptr atom) {
    const auto view = atom->has_meta() ? std::nullopt : pred_split(atom);
    if (view && (view->pred == Eq || view->pred == Neq)) {
      return mentioned_.mentions(make_binPred_prop(Eq, view->left, view->right)) ||
             mentioned_.mentions(make_binPred_prop(Eq, view->right, view->left));
    }
    return mentioned_.mentions(view && view->pred == NotBelong ? make_binPred_prop(Belong, view->left, view->right)
                                                               : atom);
  }

  // Whether they contradict one another.
  bool contradict() {
    if (!contradict_) {
      contradict_ = !premises_.empty() && mentioned_.solve() == cdcl_unsat;
    }
    return *contradict_;
  }

 private:
  void read(term_ptr assumption) {
    if (assumption == nullptr) {
      return;
    }
    for (term_ptr conjunct : split_connect(assumption, And)) {
      for (term_ptr link : long_order_split(conjunct)) {
        const auto view = link->has_meta() ? std::nullopt : pred_split(link);
        if (view && view->pred == Eq && !holds_any(link, several_valued | not_finite)) {
          classes_.equate(view->left, view->right);
          any_ = true;
        }
      }
    }
  }

  equation_classes classes_;
  bool any_ = false;
  term_list premises_;
  problem_of_equals mentioned_;
  bool translated_ = false;
  std::optional<bool> contradict_;
};

// A relation that its own sides make true.
bool holds_by_calculation(term_ptr target) {
  const auto view = target->has_meta() ? std::nullopt : pred_split(target);
  const bool reflexive = view && (view->pred == Eq || view->pred == Le || view->pred == Ge);
  return reflexive && !holds_any(target, several_valued) && poly_rat_eqb(view->left, view->right);
}

}  // namespace

bool follows_by_equations(term_ptr target, const solve_data& sdata) {
  auto& assumed = facts_of(sdata).table<assumed_equations>();
  term_ptr opened = assumed.any() ? solver_preprocess_expand_tuple_equalities(target) : nullptr;
  if (opened == nullptr) {
    return false;
  }
  term_ptr goal = assumed.representative(opened);
  if (holds_by_calculation(goal)) {
    return true;
  }
  if (!composed_prop_split(goal) && !assumed.mention(goal)) {
    return assumed.contradict();
  }
  problem_of_equals problem;
  const auto premises = problem.conjunction(assumed.premises());
  const auto refuted = problem.negation(problem.translate(goal));
  const auto all = problem.connective(SAT_AND, premises, refuted);
  return all && problem.solve() == cdcl_unsat;
}

}  // namespace vetro

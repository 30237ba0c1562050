// Statements about sets become propositions about elements.
//
// A ⊆ B and A = B say something of all elements. It is enough to ask it of the elements that are named, and of one new
// element for each of these statements, which is in A and not in B (or in one of both only) if the statement is false.
// An element is in A ∪ B if it is in A or in B, and so on down to sets that are no union, intersection or difference;
// being in one of those is an atom. Equal elements are in the same sets.
#include "qv_solver_list/logic/set_logic.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "number/budget.h"
#include "number/limits.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/logic/propositional_problem.h"
#include "qv_solver_list/solver_preprocess.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

template <class Value>
using by_term = std::unordered_map<term_ptr, Value, alpha_hasher, alpha_equal>;
using term_set = std::unordered_set<term_ptr, alpha_hasher, alpha_equal>;

// In the order in which they came, each once up to bound names.
class distinct_terms {
 public:
  void add(term_ptr t) {
    if (known_.insert(t).second) {
      list_.push_back(t);
    }
  }
  const term_list& list() const { return list_; }

 private:
  term_set known_;
  term_list list_;
};

struct set_operation {
  oper_type oper;
  term_ptr left;
  term_ptr right;
};

std::optional<set_operation> operation_of(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view || view->t2 == nullptr || (view->oper != Union && view->oper != Inter && view->oper != SetMinus)) {
    return std::nullopt;
  }
  return set_operation{view->oper, view->t1, view->t2};
}

// The members of { a, b, ... }, without an ellipsis; null for any other term.
term_ptr enumeration(term_ptr t) {
  const bool listed = is_apply(t) && is_oper(t->left(), SetEnum) && t->right()->type() == TermList;
  return listed && !t->has(fact_ellipsis) ? t->right() : nullptr;
}

bool is_set_by_shape(term_ptr t) { return operation_of(t) || enumeration(t) != nullptr || is_constant(t, EmptySet); }

// A relation between two terms, without a side condition. Several values and Landau terms are nothing for logic.
std::optional<prop> relation(term_ptr t) {
  const auto view = t->scope() == nullptr ? pred_split(t) : std::nullopt;
  return view && !holds_any(t, whole_part::landau | whole_part::several_values) ? view : std::nullopt;
}

// Calls visit(atom) for each part of t that is no connective.
template <class Visit>
void for_each_atom(term_ptr t, Visit visit) {
  node_set opened;
  term_list open{t};
  while (!open.empty()) {
    term_ptr part = open.back();
    open.pop_back();
    const auto view = composed_prop_split(part);
    if (!view) {
      visit(part);
    } else if (opened.insert(part)) {
      open.push_back(view->t1);
      if (view->t2 != nullptr) {
        open.push_back(view->t2);
      }
    }
  }
}

// The terms that stand where sets stand, and those that are equated with one.
class set_terms {
 public:
  void collect(term_ptr t) {
    for_each_atom(t, [this](term_ptr atom) {
      const auto view = relation(atom);
      if (!view) {
        return;
      }
      switch (view->pred) {
        case Belong:
        case NotBelong:
          add(view->right);
          break;
        case Subset:
          add(view->left);
          add(view->right);
          break;
        case Eq:
        case Neq:
          add_shape(view->left);
          add_shape(view->right);
          equated_.push_back(*view);
          break;
        default:
          break;
      }
    });
  }

  void complete() {
    for (bool grown = true; grown;) {
      grown = false;
      for (const prop& pair : equated_) {
        if (contains(pair.left) != contains(pair.right)) {
          add(pair.left);
          add(pair.right);
          grown = true;
        }
      }
    }
  }

  bool contains(term_ptr t) const { return is_set_by_shape(t) || sets_.count(t) != 0; }

 private:
  void add(term_ptr t) {
    sets_.insert(t);
    add_shape(t);
  }

  // The operands of a union, intersection or difference are sets.
  void add_shape(term_ptr t) {
    if (const auto view = operation_of(t)) {
      add(view->left);
      add(view->right);
    }
  }

  term_set sets_;
  std::vector<prop> equated_;
};

class set_problem : public propositional_problem {
 public:
  explicit set_problem(const set_terms& sets) : sets_(sets) {}

  // What the atoms mean, beside the formulas; nothing when that is too much.
  position axioms() {
    for (const statement& s : statements_) {
      elements_.add(s.witness);
    }
    position all = truth();
    for (std::size_t i = 0; i < statements_.size() && all; ++i) {
      const statement s = statements_[i];
      for (std::size_t e = 0; e < elements_.list().size() && all; ++e) {
        all = both(all, connective(SAT_IMPLY, s.atom, said_of(s, elements_.list()[e])));
      }
      all = both(all, connective(SAT_IMPLY, negation(s.atom), negation(said_of(s, s.witness))));
    }
    for (std::size_t i = 0; i < equalities_.size() && all; ++i) {
      all = both(all, congruence(equalities_[i]));
    }
    if (statements_.size() > limits::set_statements) {
      ++ended_budgets;
      return std::nullopt;
    }
    return is_full() ? std::nullopt : all;
  }

 protected:
  position translate_atom(term_ptr t) override {
    if (is_constant(t, False)) {
      return negation(truth());
    }
    const auto view = relation(t);
    if (!view) {
      return own_atom(t);
    }
    switch (view->pred) {
      case Belong:
        return is_dotted_list(view->left) ? own_atom(t) : members_in(view->left, view->right);
      case NotBelong:
        return view->left->type() == TermList ? own_atom(t) : negation(members_in(view->left, view->right));
      case Subset:
        return statement_about(t, view->left, view->right, false);
      case Eq:
        return equality(t, view->left, view->right);
      case Neq:
        return negation(equality(make_binPred_prop(Eq, view->left, view->right), view->left, view->right));
      default:
        return own_atom(t);
    }
  }

 private:
  // A ⊆ B or A = B.
  struct statement {
    position atom;
    term_ptr a;
    term_ptr b;
    bool equal;
    term_ptr witness;  // of its falsehood
  };
  struct element_equality {
    position atom;
    term_ptr left;
    term_ptr right;
  };

  position truth() {
    if (!truth_) {
      const position some = own_atom(reserved_var(reserved_kind::unknown, 0));
      truth_ = connective(SAT_OR, some, negation(some));
    }
    return truth_;
  }
  position both(position a, position b) { return connective(SAT_AND, a, b); }

  // x, y ∈ A says it of each member.
  position members_in(term_ptr element, term_ptr set) {
    if (element->type() != TermList) {
      elements_.add(element);
      return member_in(element, set);
    }
    position all = truth();
    for (term_ptr member : element->elements()) {
      elements_.add(member);
      all = both(all, member_in(member, set));
    }
    return all;
  }

  position member_in(term_ptr element, term_ptr set) {
    by_term<position>& known = memberships_[element];
    if (const auto found = known.find(set); found != known.end()) {
      return found->second;
    }
    const position result = member_in_new(element, set);
    memberships_[element].emplace(set, result);
    return result;
  }

  position member_in_new(term_ptr element, term_ptr set) {
    if (is_full()) {
      return std::nullopt;
    }
    if (is_constant(set, EmptySet)) {
      return negation(truth());
    }
    if (const auto view = operation_of(set)) {
      const position left = member_in(element, view->left);
      const position right = member_in(element, view->right);
      return view->oper == Union ? connective(SAT_OR, left, right)
                                 : both(left, view->oper == Inter ? right : negation(right));
    }
    if (term_ptr members = enumeration(set)) {
      position any = negation(truth());
      for (term_ptr member : members->elements()) {
        elements_.add(member);
        any = connective(SAT_OR, any, same_element(element, member));
      }
      return any;
    }
    plain_sets_.add(set);
    return own_atom(make_binPred_prop(Belong, element, set));
  }

  position same_element(term_ptr a, term_ptr b) { return equality(make_binPred_prop(Eq, a, b), a, b); }

  position equality(term_ptr t, term_ptr left, term_ptr right) {
    if (term_eqb(left, right)) {
      return truth();
    }
    const position atom =
        sets_.contains(left) && sets_.contains(right) ? statement_about(t, left, right, true) : own_atom(t);
    if (known_equalities_.insert(t).second) {
      equalities_.push_back({atom, left, right});
    }
    return atom;
  }

  position statement_about(term_ptr t, term_ptr a, term_ptr b, bool equal) {
    const position atom = own_atom(t);
    if (known_statements_.insert(t).second) {
      const auto number = static_cast<std::uint32_t>(statements_.size());
      statements_.push_back({atom, a, b, equal, reserved_var(reserved_kind::point, number)});
    }
    return atom;
  }

  position said_of(const statement& s, term_ptr element) {
    const position in_a = member_in(element, s.a);
    const position in_b = member_in(element, s.b);
    return connective(s.equal ? SAT_IFF : SAT_IMPLY, in_a, in_b);
  }

  position congruence(const element_equality& equality) {
    position all = truth();
    const bool known = memberships_.count(equality.left) != 0 || memberships_.count(equality.right) != 0;
    for (std::size_t i = 0; known && i < plain_sets_.list().size() && all; ++i) {
      term_ptr set = plain_sets_.list()[i];
      const position same = connective(SAT_IFF, member_in(equality.left, set), member_in(equality.right, set));
      all = both(all, connective(SAT_IMPLY, equality.atom, same));
    }
    return all;
  }

  const set_terms& sets_;
  position truth_;
  distinct_terms elements_;
  by_term<by_term<position>> memberships_;
  distinct_terms plain_sets_;
  std::vector<statement> statements_;
  term_set known_statements_;
  std::vector<element_equality> equalities_;
  term_set known_equalities_;
};

}  // namespace

bool speaks_of_sets(term_ptr t) {
  if (t == nullptr) {
    return false;
  }
  bool found = false;
  for_each_atom(t, [&found](term_ptr atom) {
    if (is_constant(atom, False)) {
      found = true;
    }
    const auto view = relation(atom);
    if (!view) {
      return;
    }
    found = found || view->pred == Subset || view->pred == NotBelong ||
            (view->pred == Belong && (is_set_by_shape(view->right) || view->left->type() == TermList)) ||
            ((view->pred == Eq || view->pred == Neq) && (is_set_by_shape(view->left) || is_set_by_shape(view->right)));
  });
  return found;
}

bool follows_by_set_logic(term_span assum, term_ptr target) {
  set_terms sets;
  term_list formulas;
  for (term_ptr t : assum) {
    formulas.push_back(solver_preprocess_expand_tuple_equalities(t));
  }
  formulas.push_back(solver_preprocess_expand_tuple_equalities(target));
  for (term_ptr t : formulas) {
    if (t == nullptr) {
      return false;
    }
    sets.collect(t);
  }
  sets.complete();

  set_problem problem(sets);
  const auto refuted = problem.negation(problem.translate(formulas.back()));
  formulas.pop_back();
  const auto premises = problem.conjunction(formulas);
  const auto axioms = problem.axioms();
  auto all = problem.connective(SAT_AND, axioms, refuted);
  if (!assum.empty()) {
    all = problem.connective(SAT_AND, premises, all);
  }
  return all && problem.solve() == cdcl_unsat;
}

}  // namespace vetro

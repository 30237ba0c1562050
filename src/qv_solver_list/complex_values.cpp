// The named terms are found by passing over the equations, wherever they stand, until nothing is added.
#include "qv_solver_list/complex_values.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "qv_solver_list/constant_analysis.h"
#include "qv_solver_list/value_facts.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

bool in_a_real_set(assumption_facts& facts, term_ptr t) {
  bool real = false;
  facts.for_each_set_of(t, [&](const_type set) { real = real || facts_of_set(set).real(); });
  return real;
}

// Whether such a statement may be about what a set holds: it names the set of complex numbers, describes a set, or has
// a membership inside.
bool speaks_of_a_set(term_ptr t) {
  return any_subterm(t, walk_children, [](term_ptr node) {
    const auto view = pred_split(node);
    return is_constant(node, ComplexSet) || node->head() == SetDesc || node->head() == SetEnum ||
           (view && (view->pred == Belong || view->pred == Subset));
  });
}

}  // namespace

bool is_built_on_complex(term_ptr t) {
  return any_subterm(t, walk_children,
                     [](term_ptr node) { return is_constant(node, ComplexSet) || is_constant(node, I); });
}

bool speaks_of_complex(term_ptr t) {
  return any_subterm(t, walk_children, [](term_ptr node) {
    return is_constant(node, ComplexSet) || is_constant(node, I) || said_to_be_no_real(node) != nullptr;
  });
}

bool is_set_of_reals(term_ptr set) {
  return set->type() == Const ? facts_of_set(set->constant()).real()
                              : set->head() >= IntervalLoRo && set->head() <= IntervalLcRc;
}

term_ptr said_to_be_no_real(term_ptr t) {
  const auto denial = composed_prop_split(t);
  const bool denied = denial && denial->connect == Not && denial->t2 == nullptr;
  const auto view = pred_split(denied ? denial->t1 : t);
  return view && is_constant(view->right, RealSet) && view->pred == (denied ? Belong : NotBelong) ? view->left
                                                                                                  : nullptr;
}

complex_values::complex_values(assumption_facts& facts) : facts_(&facts) {
  if (facts.below() != nullptr) {
    const auto& below = facts.below()->table<complex_values>();
    named_ = below.named_;
    sets_may_be_complex_ = below.sets_may_be_complex_;
    names_ = below.names_;
  }
  for (term_ptr t : facts.own()) {
    if (t == nullptr || !speaks_of_complex(t)) {
      continue;
    }
    if (term_ptr element = t->has_meta() ? nullptr : said_to_be_no_real(t); element != nullptr) {
      name_complex(element);
      continue;
    }
    // An assumption that speaks of a set other than as t ∈ Complex may name a set that holds complex numbers.
    const auto view = t->has_meta() ? std::nullopt : pred_split(t);
    const bool plain = view && view->pred == Belong && is_constant(view->right, ComplexSet);
    sets_may_be_complex_ = sets_may_be_complex_ || (!plain && speaks_of_a_set(t));
  }
  for (assumption_facts* layer = &facts; layer != nullptr; layer = sets_may_be_complex_ ? layer->below() : nullptr) {
    for (term_ptr t : layer->own()) {
      const auto view = t == nullptr || t->has_meta() ? std::nullopt : pred_split(t);
      if (view && puts_into_complex(*view) && !in_a_real_set(facts, view->left)) {
        name_complex(view->left);
      }
    }
  }
  spread();
}

// Whether t puts what stands on its left side into a set that may hold complex numbers: the set of complex numbers, one
// that is built from it or from the imaginary unit, or, where the assumptions speak of that set otherwise, any set that
// is not known to be real.
bool complex_values::puts_into_complex(const prop& t) const {
  if (t.pred != Belong && t.pred != Subset) {
    return false;
  }
  return (sets_may_be_complex_ && !is_set_of_reals(t.right)) || is_built_on_complex(t.right);
}

// The term, and each name in it: z, w ∈ Complex speaks of z and w, and 2 * z = 1 + i of z.
void complex_values::name_complex(term_ptr t) {
  named_.insert(t->bare());
  names_ |= t->name_mask();
  any_subterm(t, walk_children, [this](term_ptr node) {
    if (node->type() == Var && !in_a_real_set(*facts_, node)) {
      named_.insert(node->bare());
    }
    return false;
  });
  known_.clear();
}

void complex_values::name_unless_real(term_ptr name) {
  if (!in_a_real_set(*facts_, name) && named_.insert(name->bare()).second) {
    names_ |= name->name_mask();
    known_.clear();
  }
}

// What is real as a whole may be made of names that are not: z + i = 2.
void complex_values::name_operands(term_ptr t) {
  for (term_ptr name : free_names_beside_heads(t)) {
    name_unless_real(name);
  }
}

// Equations carry it from one side to the other.
void complex_values::equate(term_ptr left, term_ptr right) {
  if (may_be_complex(left) == may_be_complex(right)) {
    return;
  }
  const bool from_left = may_be_complex(left);
  if (term_ptr other = from_left ? right : left;
      !solver_const_expr_is_closed(other) && !in_a_real_set(*facts_, other)) {
    name_complex(other);
  } else {
    name_operands(from_left ? left : right);
  }
}

bool complex_values::may_speak_of_complex(term_ptr statement) const {
  return sets_may_be_complex_ || (statement->name_mask() & names_) != 0 || speaks_of_complex(statement);
}

// What a statement says somewhere inside: of f in forall (x), f(x) ∈ Complex, of z in exists (w), w ∈ Complex ∧ z = w,
// and of a function with complex values. Each value of f may then be complex.
void complex_values::name_inside(term_ptr statement) {
  node_set free;
  for (term_ptr name : plain_free_variables(statement)) {
    free.insert(name);
  }
  node_set bound;  // the names bound in it that may be complex
  const auto name_those_in = [&](term_ptr part) {
    const term_list names = plain_free_variables(part);
    for (term_ptr name : names) {
      if (free.contains(name)) {
        name_unless_real(name);
      } else {
        bound.insert(name);
      }
    }
    return !names.empty();
  };
  const auto complex_here = [&](term_ptr part) {
    const term_list names = plain_free_variables(part);
    return may_be_complex(part) || (!(is_apply(part) && is_oper(part->left(), Abs)) &&
                                    std::ranges::any_of(names, [&](term_ptr name) { return bound.contains(name); }));
  };
  const auto read = [&](term_ptr node) {
    const auto view = pred_split(node);
    if (node->head() == IsFuncOn && node->argument_count() == 3) {
      const prop values{Belong, node->argument(0), node->argument(2)};
      if (puts_into_complex(values)) {
        name_those_in(values.left);
      }
    } else if (term_ptr element = said_to_be_no_real(node); element != nullptr) {
      name_those_in(element);
    } else if (view && puts_into_complex(*view)) {
      name_those_in(view->left);
    } else if (view && view->pred == Eq && complex_here(view->left) != complex_here(view->right)) {
      const bool from_left = complex_here(view->left);
      if (!name_those_in(from_left ? view->right : view->left)) {
        name_those_in(from_left ? view->left : view->right);
      }
    }
    return false;
  };
  for (std::size_t known = SIZE_MAX; known != named_.size() + bound.size();) {
    known = named_.size() + bound.size();
    any_subterm(statement, walk_children, read);
  }
}

// Until nothing is added; in the layers below too, once something new is complex.
void complex_values::spread() {
  for (std::size_t known = SIZE_MAX; known != named_.size();) {
    known = named_.size();
    for (assumption_facts* layer = facts_; layer != nullptr; layer = layer->below()) {
      for (const order_fact& fact : layer->comparisons()) {
        if (fact.pred == Eq) {
          equate(fact.left, fact.right);
        }
      }
      for (term_ptr t : layer->own()) {
        if (t != nullptr && (t->has_meta() || !pred_split(t)) && may_speak_of_complex(t)) {
          name_inside(t);
        }
      }
    }
  }
}

bool complex_values::is_named(term_ptr t) const {
  return (t->name_mask() & ~names_) == 0 && !named_.empty() && named_.count(t->bare()) != 0;
}

bool complex_values::may_be_complex(term_ptr t) {
  if (is_constant(t, I) || is_named(t)) {
    return true;
  }
  if (t->children().empty() || (is_apply(t) && is_oper(t->left(), Abs))) {
    return false;
  }
  return known_.get(t, [&] { return holds_complex(t); });
}

bool complex_values::holds_complex(term_ptr t) {
  const auto parts = t->children();
  return std::any_of(parts.begin(), parts.end(),
                     [&](term_ptr part) { return part != nullptr && may_be_complex(part); });
}

}  // namespace vetro

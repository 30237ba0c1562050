// The named terms are found by passing over the equations until nothing is added.
#include "qv_solver_list/complex_values.h"

#include <algorithm>

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

bool holds_complex_set(term_ptr t) {
  return any_subterm(t, walk_children, [](term_ptr node) { return is_constant(node, ComplexSet); });
}

// Whether t puts what stands on its left side into a set that may hold complex numbers: the set of complex numbers, one
// that is built from it, or, where the assumptions speak of that set otherwise, any set that is not known to be real.
bool puts_into_complex(const prop& t, bool sets_may_be_complex) {
  if (t.pred != Belong && t.pred != Subset) {
    return false;
  }
  const bool may_be = sets_may_be_complex && !(t.right->type() == Const && facts_of_set(t.right->constant()).real());
  return may_be || holds_complex_set(t.right);
}

}  // namespace

complex_values::complex_values(assumption_facts& facts) : facts_(&facts) {
  if (facts.below() != nullptr) {
    const auto& below = facts.below()->table<complex_values>();
    named_ = below.named_;
    sets_may_be_complex_ = below.sets_may_be_complex_;
    names_ = below.names_;
  }
  for (term_ptr t : facts.own()) {
    if (t == nullptr || !holds_complex_set(t)) {
      continue;
    }
    // An assumption that speaks of the set other than as t ∈ Complex may name a set of complex numbers.
    const auto view = t->has_meta() ? std::nullopt : pred_split(t);
    const bool plain = view && view->pred == Belong && is_constant(view->right, ComplexSet);
    sets_may_be_complex_ = sets_may_be_complex_ || !plain;
    if (!view) {
      name_inside(t);
    }
  }
  for (assumption_facts* layer = &facts; layer != nullptr; layer = sets_may_be_complex_ ? layer->below() : nullptr) {
    for (term_ptr t : layer->own()) {
      const auto view = t == nullptr || t->has_meta() ? std::nullopt : pred_split(t);
      if (view && puts_into_complex(*view, sets_may_be_complex_) && !in_a_real_set(facts, view->left)) {
        name_complex(view->left);
      }
    }
  }
  spread();
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
}

void complex_values::name_unless_real(term_ptr name) {
  if (!in_a_real_set(*facts_, name)) {
    named_.insert(name);
    names_ |= name->name_mask();
  }
}

// What a statement puts into the set somewhere inside: f of forall (x), f(x) ∈ Complex, and of a function with complex
// values. Each value of f may then be complex.
void complex_values::name_inside(term_ptr statement) {
  node_set free;
  for (term_ptr name : plain_free_variables(statement)) {
    free.insert(name);
  }
  const auto name_those_in = [&](term_ptr part) {
    for (term_ptr name : plain_free_variables(part)) {
      if (free.contains(name)) {
        name_unless_real(name);
      }
    }
  };
  any_subterm(statement, walk_children, [&](term_ptr node) {
    if (node->head() == IsFuncOn && node->argument_count() == 3 && holds_complex_set(node->argument(2))) {
      name_those_in(node->argument(0));
    } else if (const auto view = pred_split(node); view && puts_into_complex(*view, false)) {
      name_those_in(view->left);
    }
    return false;
  });
}

// What is real as a whole may be made of names that are not: z + i = 2.
void complex_values::name_operands(term_ptr t) {
  for (term_ptr name : free_names_beside_heads(t)) {
    name_unless_real(name);
  }
}

// Equations carry it from one side to the other, also those of the layers below once something new is complex.
void complex_values::spread() {
  for (bool grown = true; grown;) {
    grown = false;
    for (assumption_facts* layer = facts_; layer != nullptr; layer = layer->below()) {
      for (const order_fact& fact : layer->comparisons()) {
        if (fact.pred != Eq || may_be_complex(fact.left) == may_be_complex(fact.right)) {
          continue;
        }
        const bool from_left = may_be_complex(fact.left);
        const std::size_t before = named_.size();
        if (term_ptr other = from_left ? fact.right : fact.left;
            !solver_const_expr_is_closed(other) && !in_a_real_set(*facts_, other)) {
          name_complex(other);
        } else {
          name_operands(from_left ? fact.left : fact.right);
        }
        if (named_.size() > before) {
          known_.clear();
          grown = true;
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

// What a node does with the names inside it: the one place that knows.
//
// A node binds its indices: they mean something else inside than around it, and may be called anything. It guards names
// that it speaks of without saying whether it binds them, as the derivative sign in (c * x)' does: they may be renamed
// with everything around them, but nothing is put in their place, and nothing that names one of them is put inside.
//
// What a node binds and guards is decided when its text is read, under the binders around it, and stands on it as
// binders and guarded names from then on: after c became d in forall (c), { c * x | x > 0, x < c } = S(c), the set
// still ranges over x alone. A node without such a record is read as if nothing were bound around it.
#pragma once

#include <optional>

#include "term/traverse.h"
#include "term/variables/binding_table.h"
#include "term/variables/free_names.h"
#include "term/variables/index_part.h"

namespace vetro {

class binding {
 public:
  // Of any term; it binds and guards nothing where the term has no row.
  explicit binding(term_ptr t);

  const binding_row* row() const { return row_; }
  term_span indices() const { return indices_; }
  // The guarded names, computed where they are those of the operand.
  term_list guarded() const;
  // It guards all names of its operand, whatever they are, rather than a list of them.
  bool guards_operand() const { return operand_ != nullptr && operand_->name_mask() != 0; }
  bool guards_any() const { return guards_operand() || !guarded_.empty(); }
  // Binds or guards something at all.
  bool touches_names() const { return guards_any() || !indices_.empty(); }

  bool binds(term_ptr var) const;
  bool guards(term_ptr var) const;
  bool catches(term_ptr var) const { return binds(var) || guards(var); }

 private:
  friend bool same_reading(const binding& a, const binding& b);
  const binding_row* row_;
  term_span indices_;
  term_span guarded_;
  term_ptr operand_ = nullptr;  // an expression whose names beside heads are all guarded
};

// Whether two nodes of one row bind and guard the same names, and take their operands alike: as functions, or as
// expressions.
bool same_reading(const binding& a, const binding& b);

// All names that t binds or guards.
term_list touched_names(term_ptr t);

// The record of t as its text is read with these names bound around it; empty lists for a node without a row, and where
// all names of an operand are guarded, which needs no record. A node without a record means what this gives with no
// name around.
index_reading read_binding(term_ptr t, const outer_names& outer, name_memo& names);

// Whether t is a function by its form, so that a notation for functions speaks of no name in it: f, fun x . x^2, sin,
// f ∘ g, f'.
bool is_function_expression(term_ptr t);

// Whether t binds or guards names, so that a rule about variables stops there unless it speaks of none of them.
bool protects(term_ptr t);

// Calls f(part, is_inside) for the arguments of a node with a row, in text order; an index part is cut into its sides.
template <class F>
void for_each_part(term_ptr t, const binding& b, F&& f);

// The node with each part changed by f(part, is_inside), without what stands on it; t itself when no part changed. All
// parts are visited; null when one came out null.
template <class F>
term_ptr map_parts(term_ptr t, const binding& b, F&& f);

// True when f(a_part, b_part, is_inside) holds for all parts of two nodes of one row, which must be cut alike.
template <class F>
bool all_parts_in_step(term_ptr a, const binding& of_a, term_ptr b, const binding& of_b, F&& f);

// ---- Implementation.

namespace binding_detail {

template <class F>
void for_each_side(term_ptr part, term_span indices, F& f) {
  switch (index_form_of(part, indices)) {
    case index_form::whole:
      f(part, true);
      return;
    case index_form::relation:
      f(part->argument(0), true);
      f(part->argument(1), false);
      return;
    case index_form::chain: {
      const term_span operands = part->argument(1)->elements();
      f(operands[0], false);
      f(operands[1], true);
      f(operands[2], false);
      return;
    }
    case index_form::conjunction:
      for_each_side(part->argument(0), indices, f);
      for_each_side(part->argument(1), indices, f);
      return;
  }
}

template <class F>
term_ptr map_sides(term_ptr part, term_span indices, F& f) {
  switch (index_form_of(part, indices)) {
    case index_form::whole:
      return f(part, true);
    case index_form::relation: {
      const auto side = [&f](term_ptr t, unsigned i) { return f(t, i == 0); };
      return map_arguments(part, 2, side);
    }
    case index_form::chain: {
      const auto operand_list = [&f](term_ptr list, unsigned i) -> term_ptr {
        if (i == 0) {
          return list;
        }
        const term_ptr lower = f(list->elements()[0], false);
        const term_ptr index = f(list->elements()[1], true);
        const term_ptr upper = f(list->elements()[2], false);
        const term_ptr operands[] = {lower, index, upper};
        return with_meta(mk_term_list(operands), list->meta());
      };
      return map_arguments(part, 2, operand_list);
    }
    case index_form::conjunction: {
      const auto conjunct = [&](term_ptr t, unsigned) { return map_sides(t, indices, f); };
      return map_arguments(part, 2, conjunct);
    }
  }
  return nullptr;
}

template <class F>
bool sides_in_step(term_ptr a, term_span of_a, term_ptr b, term_span of_b, F& f) {
  const index_form form = index_form_of(a, of_a);
  if (form != index_form_of(b, of_b)) {
    return false;
  }
  switch (form) {
    case index_form::whole:
      return f(a, b, true);
    case index_form::relation:
      return a->head() == b->head() && f(a->argument(0), b->argument(0), true) &&
             f(a->argument(1), b->argument(1), false);
    case index_form::chain: {
      const term_span x = a->argument(1)->elements();
      const term_span y = b->argument(1)->elements();
      return a->argument(0)->bare() == b->argument(0)->bare() && f(x[0], y[0], false) && f(x[1], y[1], true) &&
             f(x[2], y[2], false);
    }
    case index_form::conjunction:
      return sides_in_step(a->argument(0), of_a, b->argument(0), of_b, f) &&
             sides_in_step(a->argument(1), of_a, b->argument(1), of_b, f);
  }
  return false;
}

}  // namespace binding_detail

template <class F>
void for_each_part(term_ptr t, const binding& b, F&& f) {
  for (unsigned i = 0; i < b.row()->arity; ++i) {
    const region where = b.row()->regions[i];
    if (where == region::index) {
      binding_detail::for_each_side(t->argument(i), b.indices(), f);
    } else {
      f(t->argument(i), where == region::inside);
    }
  }
}

template <class F>
term_ptr map_parts(term_ptr t, const binding& b, F&& f) {
  const auto argument = [&](term_ptr part, unsigned i) {
    const region where = b.row()->regions[i];
    return where == region::index ? binding_detail::map_sides(part, b.indices(), f) : f(part, where == region::inside);
  };
  return map_arguments(t, b.row()->arity, argument);
}

template <class F>
bool all_parts_in_step(term_ptr a, const binding& of_a, term_ptr b, const binding& of_b, F&& f) {
  for (unsigned i = 0; i < of_a.row()->arity; ++i) {
    const region where = of_a.row()->regions[i];
    const bool same = where == region::index ? binding_detail::sides_in_step(a->argument(i), of_a.indices(),
                                                                             b->argument(i), of_b.indices(), f)
                                             : f(a->argument(i), b->argument(i), where == region::inside);
    if (!same) {
      return false;
    }
  }
  return true;
}

}  // namespace vetro

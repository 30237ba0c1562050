// Which expressions may stand for numbers that are not real: they have no sign, no bounds and no place in an order.
#pragma once

#include <memory>
#include <unordered_set>

#include "qv_solver_list/assumption_facts.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {

// Whether the set of complex numbers or the imaginary unit stands in t, so that a set that is built so may hold complex
// numbers.
bool is_built_on_complex(term_ptr t);

// What t says to be no real number: z of z ∉ Real and of ¬(z ∈ Real); null for every other t.
term_ptr said_to_be_no_real(term_ptr t);

// Whether a statement makes something complex by itself, in the sense below.
bool speaks_of_complex(term_ptr t);

// A set of numbers by its name, or an interval.
bool is_set_of_reals(term_ptr set);

// One table for each layer of assumptions, as table<complex_values>(). Complex are the imaginary unit, what an
// assumption puts into a set that holds complex numbers and not into a set of reals, what an assumption says to be no
// real number, what it equates with something complex, and every expression around one of these. An assumption says so
// wherever it says it: under a quantifier, as one of several cases, with a premise. A magnitude is real.
class complex_values {
 public:
  explicit complex_values(assumption_facts& facts);

  bool may_be_complex(term_ptr t);

  // The names and other terms that the assumptions make complex, in bare form.
  const std::unordered_set<term_ptr>& named() const { return named_; }

  // Whether a set with a name of its own may hold complex numbers.
  bool sets_may_be_complex() const { return sets_may_be_complex_; }

  // Whether more is complex than by the assumptions of the layer below.
  bool adds_to(const complex_values& below) const {
    return named_.size() != below.named_.size() || sets_may_be_complex_ != below.sets_may_be_complex_;
  }

 private:
  bool holds_complex(term_ptr t);
  bool is_named(term_ptr t) const;
  bool puts_into_complex(const prop& t) const;
  void spread();
  void equate(term_ptr left, term_ptr right);
  void name_complex(term_ptr t);
  void name_unless_real(term_ptr name);
  void name_operands(term_ptr t);
  bool may_speak_of_complex(term_ptr statement) const;
  void name_inside(term_ptr statement);

  assumption_facts* facts_;
  std::unordered_set<term_ptr> named_;  // bare
  bool sets_may_be_complex_ = false;    // some set with a name of its own may hold complex numbers
  std::uint64_t names_ = 0;             // bits of the names in them
  node_memo<bool> known_;
};

}  // namespace vetro

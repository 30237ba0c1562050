// What kind of value the terms of a question have: only real numbers have an order and an absolute value, and only
// numbers have an arithmetic.
//
// The kinds come from form (a set, a tuple, the imaginary unit) and from use: a name is a set where it stands to the
// right of ∈, a function where it is applied, and what is equated with such a term is one, too. Goal and assumptions
// are read alike, at any depth, since a wrong guess here may only weaken what is proved.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "term/ast.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {

enum class value_kind : std::uint8_t {
  real,     // or nothing is known against it
  complex,  // a sum is a sum, but there is no order
  other,    // a set, a function, a tuple, a truth value, an infinity: no arithmetic
};

class value_kinds {
 public:
  // Takes in a proposition. Answers are for all that were taken in so far.
  void add(term_ptr proposition);
  // What an assumption puts into a set of reals. Comes before all else is taken in.
  void assume_reals(term_ptr assumption);
  // Terms that are known to be complex, in bare form.
  void add_complex(term_ptr t) { mark(t, value_kind::complex); }
  value_kind of(term_ptr t);

 private:
  void visit(term_ptr t);
  void visit_application(term_ptr head, term_ptr t);
  void mark(term_ptr t, value_kind kind);
  void settle();
  void add_membership(const prop& membership);
  void put_into_complex(term_ptr elements, node_set& seen);
  bool is_known_real(term_ptr t) const;
  value_kind by_form(term_ptr t);
  value_kind by_application(term_ptr t);

  node_set seen_;
  std::unordered_map<term_ptr, value_kind> marked_;  // bare terms
  node_memo<value_kind> known_;
  std::vector<std::pair<term_ptr, term_ptr>> equations_;
  std::unordered_set<term_ptr> reals_;  // bare terms in sets of reals by assumptions
  term_list memberships_;               // what stands in a set that may hold complex numbers
  bool complex_set_is_named_ = false;   // a set with complex numbers stands elsewhere than to the right of ∈
  bool settled_ = true;
};

}  // namespace vetro

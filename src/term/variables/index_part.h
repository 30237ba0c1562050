// The index part of a sum, product, limit, tendency or derivative value: what in it is an index, and which of its sides
// belong to the surroundings.
//
//   i = k, i ∈ S, d | n    the plain name on the left; the other side stands outside
//   x, y ∈ S               every plain name of the list
//   0 < i < n              the plain name behind the lower bound, where that holds no name that could be an index
//   itself i ∈ S ∧ j ∈ T          the indices of the parts x, (x, y)              in front of the point of a limit: all
//   plain names
// Everything else tells its index only where one name is left over when those bound around it are set aside:
// i mod 2 = 1, |x - a| under a binder of a.
#pragma once

#include "term/ast.h"
#include "term/variables/free_names.h"

namespace vetro {

// How the notation cuts an index part into sides. What is no such form is one side, which lies inside.
enum class index_form : std::uint8_t { whole, relation, chain, conjunction };

// The form of a part with these indices.
index_form index_form_of(term_ptr part, term_span indices);

// What an index part names. Both lists are empty where it names nothing.
struct index_reading {
  term_list indices;  // bound, may be renamed
  term_list guarded;  // may be an index or not
};

// The names that are bound around the node.
class outer_names {
 public:
  virtual ~outer_names() = default;
  virtual bool contains(term_ptr var) const = 0;
  virtual bool contains_none_of(term_ptr t) const = 0;  // no name of t; may answer no too often
};

// in_front_of_point: the part stands in front of a limit point, where a tuple is one of indices.
index_reading read_index_part(term_ptr part, const outer_names& outer, bool in_front_of_point, name_memo& names);

// The names that are not bound around; all of them when that leaves none.
term_list not_outer(term_list names, const outer_names& outer);

// Plain names: a Var, or a TermList of such.
bool is_plain_name(term_ptr t);
term_list plain_names_of_list(term_ptr t);  // empty for anything else

}  // namespace vetro

// Free names in the ordinary sense: every Var that nothing around it binds, inside a subscript too, in the sets of
// entries, and in the arguments that stand outside of a binding operator. Names that a notation guards count as free.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "term/node_memo.h"

namespace vetro {

// In order of first occurrence, without duplicates, in bare form.
term_list plain_free_variables(term_ptr t);

// The same without names that occur only as the head of an application, f in f(x), or as the base of a subscript.
term_list free_names_beside_heads(term_ptr t);

// True when the variable occurs free in t, scopes included. False for anything but a Var.
bool occurs_free(term_ptr var, term_ptr t);

// Where one variable (a Var, or an indexed name such as a_n as a whole) occurs free. Answers are remembered by node, so
// that asking at every level of a deep term costs one walk.
class free_occurrences {
 public:
  enum class in_scopes : bool { no, yes };  // whether an occurrence in a side condition counts
  enum class heads : bool { skipped, counted };
  free_occurrences(term_ptr var, in_scopes scopes, heads counted = heads::counted)
      : var_(var->bare()), scopes_(scopes), heads_(counted) {}

  bool in(term_ptr t);

  // True when a side of the entry that belongs to the surroundings holds the variable.
  bool beside(term_ptr entry);

 private:
  bool in_node(term_ptr t);
  bool in_any(term_span list);
  bool in_apply(term_ptr t);
  bool in_binding(term_ptr t);

  term_ptr var_;
  in_scopes scopes_;
  heads heads_;
  node_memo<bool> known_;
};

// The same answers for many subterms of one term. A subterm that has been asked about is not searched again for a term
// around it: asked from the inside out, a tower of terms costs one walk.
class name_memo {
 public:
  name_memo();
  ~name_memo();
  // A reference is good until the next question.
  const term_list& all(term_ptr t);
  const term_list& beside_heads(term_ptr t);
  bool occurs(term_ptr var, term_ptr t);

  struct answers;  // for the walk behind

 private:
  const term_list& names_of(term_ptr t, free_occurrences::heads counted);
  std::unique_ptr<answers[]> answers_;  // by heads
  std::unordered_map<term_ptr, free_occurrences> occurrences_;
};

// The free names of many terms, for asking about many names.
class free_names {
 public:
  void add(term_ptr t);
  bool contains(term_ptr var) const { return names_.count(var->bare()) != 0; }
  bool contains(std::string_view name) const { return names_.count(mk_var(name)) != 0; }

 private:
  node_set added_;
  std::unordered_set<term_ptr> names_;
};

}  // namespace vetro

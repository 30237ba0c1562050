// The one walk behind all substitutions. What they differ in are the rules below; what binds and guards names is the
// same for all.
//
// Under a binder of a replaced variable it stays. A binder that would catch a name of the value gets a new name. Inside
// of what a notation guards nothing is put in the place of a guarded name but another name that is not in use there,
// and no value that holds a guarded name is put in: such a substitution is refused.
#pragma once

#include <optional>
#include <unordered_set>

#include "term/ast.h"
#include "term/substitute/fresh.h"
#include "term/substitute/surroundings.h"
#include "term/variables/binding.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"

namespace vetro {

struct substitution_rules {
  // Which binders get a new name: one that is the value itself, wherever it stands; every one that is a name of the
  // value, wherever it stands; or the first of these, and the second where something is replaced.
  enum class capture : std::uint8_t { value_itself, names_of_value, where_replaced } renamed;
  // Side conditions stay, follow the new names of binders, or are replaced in.
  enum class scope : std::uint8_t { kept, renamed, replaced } scopes;
  // Propositions among the entries of quantifiers are read, or are no entries to the walk.
  bool reads_propositions;
  // A list without elements is reported, and the result is null.
  bool reports_empty_lists;
  // New names come from the counter that users see, or are reserved ones.
  bool draws_visible_names;
};

class substitution {
 public:
  // Replaces up to 64 sources (variables, or whole subterms compared exactly) by their values, at once, in subterms of
  // root.
  static constexpr std::size_t most_sources = 64;
  substitution(term_span sources, term_span values, term_ptr root, const substitution_rules& rules);

  // Null where the substitution is refused or a part of it failed.
  term_ptr walk(term_ptr t);

  // A variable because of which it was refused; null where it was not.
  term_ptr refused() const { return refused_; }

 private:
  struct source {
    term_ptr term;  // bare
    term_ptr value;
    std::uint64_t bit;
    free_occurrences occurrences;
    std::optional<term_list> value_names;
  };

  // What a node does to the names that its parts see.
  struct opening {
    std::vector<std::pair<term_ptr, term_ptr>> names;  // each index with its new name, or null
    std::uint64_t hidden = 0;
  };

  const term_list& names_of_value(source& s);
  bool maybe_in(const source& s, term_ptr t) const;
  bool leaves_alone(term_ptr t) const;
  term_ptr walk_remembering(term_ptr t);
  term_ptr walk_node(term_ptr t);
  term_ptr with_scope_walked(term_ptr t, term_ptr content);
  term_ptr walk_scope_of(term_ptr t);
  term_ptr renamed(term_ptr t);

  term_ptr walk_content(term_ptr t);
  bool walk_list(term_span list, term_list& out);
  term_ptr walk_elements(term_ptr t);
  term_ptr walk_tag(term_ptr t);

  term_ptr walk_binding_node(term_ptr t);
  opening open_node(term_ptr t, const binding& b);
  void enter(const opening& o);
  bool occurs_inside(source& s, term_ptr t, const binding& b);
  bool passes_guard(source& s, term_ptr t, const binding& b);
  term_ptr name_after(term_ptr name) const;
  term_ptr with_new_record(term_ptr t, term_ptr content, term_ptr scope, const binding& b, const opening& o) const;

  term_ptr walk_binding(term_ptr t);
  term_list open_entries(term_ptr t, const surroundings::mark& outside);
  std::vector<std::uint64_t> replaced_behind(term_ptr t);
  bool is_read(term_ptr entry) const;
  bool is_bound_by(const source& s, term_ptr entry) const;
  term_ptr open_proposition(term_ptr entry, term_ptr t, std::uint64_t replaced);
  bool passes_entry_guard(source& s, const entry_view& view, term_ptr t);
  term_ptr open_binder(term_ptr binder, term_ptr t, std::uint64_t replaced, bool listed);
  bool would_break(source& s, term_ptr binder);
  term_ptr refuse(term_ptr var);

  term_ptr draw(term_ptr binder, term_ptr under);
  bool is_used(term_ptr name, term_ptr under);

  substitution_rules rules_;
  std::vector<source> sources_;
  term_ptr root_;
  surroundings around_;
  node_memo<term_ptr> known_;
  term_ptr refused_ = nullptr;

  std::unordered_set<term_ptr> drawn_;
  std::uint32_t drawn_reserved_ = 0;
  std::optional<name_collection> used_names_;
};

}  // namespace vetro

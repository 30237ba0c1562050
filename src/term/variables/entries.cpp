// Reading the entries of quantifiers and functions.
#include "term/variables/entries.h"

#include <utility>

#include "term/node_memo.h"
#include "term/relation.h"
#include "term/state.h"
#include "term/term_split_combine.h"
#include "term/variables/bound_names.h"
#include "term/variables/free_names.h"
#include "term/variables/free_variable.h"
#include "term/variables/index_part.h"

namespace vetro {
namespace {

// Relations that are written between their sides, so that they have a left one.
bool has_left_side(term_ptr entry) {
  const bool of_three = entry->head() == CongruentMod || entry->head() == IsFuncOn;
  return relates_two_sides(entry) || (of_three && entry->argument_count() == 3);
}

term_span operands_of_chain(term_ptr entry) {
  if (!is_predchain(entry) || entry->argument_count() != 2 || entry->right()->type() != TermList) {
    return {};
  }
  return entry->right()->elements();
}

term_list plain_names(term_ptr t) { return is_plain_name(t) ? term_list{t->bare()} : plain_names_of_list(t); }

// Entries whose form does not tell which of their names they bind.
struct undecided_entries {
  name_memo names;
  node_memo<entry_view> known;
};

// It binds the only name; of several, all are to be guarded.
entry_view undecided(term_ptr entry) {
  undecided_entries& memory = state().slots.of<undecided_entries>();
  if (const entry_view* known = memory.known.find(entry)) {
    return *known;
  }
  term_list names = memory.names.all(entry);
  entry_view view;
  if (names.size() == 1 && contains_variable(memory.names.beside_heads(entry), names[0])) {
    view.bound = std::move(names);
  } else {
    view.guarded = std::move(names);
  }
  return memory.known.keep(entry, std::move(view));
}

}  // namespace

bool is_proposition_entry(term_ptr entry) { return !term_is_var(entry); }

entry_view entry_of(term_ptr entry) {
  if (!is_proposition_entry(entry)) {
    return {{entry->bare()}, {}, false, 0};
  }
  if (entry->type() != Apply) {
    return undecided(entry);
  }
  if (has_left_side(entry)) {
    term_list bound = plain_names(entry->argument(0));
    return bound.empty() ? undecided(entry) : entry_view{std::move(bound), {}, true, 0};
  }
  const term_span operands = operands_of_chain(entry);
  if (!operands.empty() && is_plain_name(operands[0])) {
    return {{operands[0]->bare()}, {}, true, 0};
  }
  if (operands.size() == 3 && operands[0]->name_mask() == 0 && is_plain_name(operands[1])) {
    return {{operands[1]->bare()}, {}, true, 1};
  }
  return undecided(entry);
}

term_list entry_names(term_ptr binding_term) {
  term_list names;
  for (term_ptr entry : binding_term->vars()) {
    const entry_view view = entry_of(entry);
    names.insert(names.end(), view.bound.begin(), view.bound.end());
    names.insert(names.end(), view.guarded.begin(), view.guarded.end());
  }
  return names;
}

}  // namespace vetro

// The rules of instantiation, and taking binders off a quantifier.
#include "term/substitute/instantiate.h"

#include "term/compare.h"
#include "term/substitute/substitution.h"

namespace vetro {
namespace {

constexpr substitution_rules instantiation_rules = {.renamed = substitution_rules::capture::where_replaced,
                                                    .scopes = substitution_rules::scope::renamed,
                                                    .reads_propositions = true,
                                                    .reports_empty_lists = true,
                                                    .draws_visible_names = true};

// The quantifier with the binder at that position under a new name, which no entry before it mentions.
term_ptr with_own_name(term_ptr quantified, std::size_t position, term_ptr name) {
  const term_span vars = quantified->vars();
  const term_span behind = vars.subspan(position + 1);
  const term_ptr under =
      behind.empty() ? quantified->body() : mk_quant(quantified->quant(), behind, quantified->body());
  const term_ptr changed = instantiate_term(vars[position], name, under);
  if (changed == nullptr) {
    return nullptr;
  }
  term_list entries(vars.begin(), vars.begin() + static_cast<std::ptrdiff_t>(position));
  entries.push_back(name);
  if (!behind.empty()) {
    entries.insert(entries.end(), changed->vars().begin(), changed->vars().end());
  }
  const term_ptr body = behind.empty() ? changed : changed->body();
  return with_meta(mk_quant(quantified->quant(), entries, body), quantified->meta());
}

// In forall (x ∈ S)(S) the S of the entry is another variable than the one behind it. Such a binder gets a name of its
// own, so that it can be taken off and replaced without touching the entry.
term_ptr separate_from_entries(term_ptr quantified, term_ptr& binder, term_span values) {
  free_occurrences occurrences(binder, free_occurrences::in_scopes::no);
  const term_span vars = quantified->vars();
  bool mentioned = false;
  std::size_t position = 0;
  for (; position < vars.size() && !term_eqb(vars[position], binder); ++position) {
    const bool is_proposition = is_proposition_entry(vars[position]);
    mentioned = mentioned || (is_proposition && occurrences.in(vars[position]));
  }
  if (!mentioned || position == vars.size()) {
    return quantified;
  }
  term_list contexts(values.begin(), values.end());
  contexts.push_back(quantified);
  binder = fresh_avoiding(is_var(binder) ? binder : mk_var("v"), contexts);
  return with_own_name(quantified, position, binder);
}

}  // namespace

term_ptr instantiate_term(term_ptr src, term_ptr dest, term_ptr t, term_ptr* refused) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    return nullptr;
  }
  substitution walk({&src, 1}, {&dest, 1}, t, instantiation_rules);
  const term_ptr result = walk.walk(t);
  if (refused != nullptr && walk.refused() != nullptr) {
    *refused = walk.refused();
  }
  return result;
}

term_ptr instantiate_binders(term_ptr quantified, term_span binders, term_span values, term_ptr* refused) {
  term_list names(binders.begin(), binders.end());
  for (term_ptr& name : names) {
    quantified = separate_from_entries(quantified, name, values);
    if (quantified == nullptr) {
      return nullptr;
    }
  }
  term_list rest(quantified->vars().begin(), quantified->vars().end());
  term_list_remove_multiple(names, rest);
  term_ptr t = quantified->body();
  if (!rest.empty()) {
    t = with_meta(mk_quant(quantified->quant(), rest, quantified->body()), quantified->meta());
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    t = instantiate_term(names[i], values[i], t, refused);
  }
  return t;
}

}  // namespace vetro

// The rules of instantiation, and taking binders off a quantifier.
#include "term/substitute/instantiate.h"

#include <algorithm>
#include <unordered_map>

#include "term/compare.h"
#include "term/substitute/substitution.h"
#include "term/traverse.h"

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

bool is_plain(term_ptr t) {
  return t != nullptr && !t->has(fact_binding) && !t->has(fact_guard) && !t->has(fact_landau) && !t->has(fact_scope) &&
         !t->has(fact_empty_list);
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

term_ptr instantiate_plain_body(term_ptr quantified, term_span binders, term_span values) {
  std::unordered_map<term_ptr, term_ptr> value_of;
  for (std::size_t i = 0; i < binders.size(); ++i) {
    value_of.emplace(binders[i]->bare(), values[i]);
  }
  const auto has_value = [&](term_ptr entry) { return is_var(entry) && value_of.count(entry->bare()) != 0; };
  const term_span entries = quantified->vars();
  if (!is_plain(quantified->body()) || !std::all_of(values.begin(), values.end(), is_plain) ||
      !std::all_of(entries.begin(), entries.end(), has_value)) {
    return nullptr;
  }
  walk_memo<term_ptr> known(quantified->body());
  const auto replaced = [&](const auto& self, term_ptr t) -> term_ptr {
    if (t->name_mask() == 0) {
      return t;
    }
    if (t->type() == Var) {
      const auto found = value_of.find(t->bare());
      return found == value_of.end() ? t : found->second;
    }
    return known.get(t,
                     [&] { return map_children(t, walk_children, [&](term_ptr part) { return self(self, part); }); });
  };
  return replaced(replaced, quantified->body());
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

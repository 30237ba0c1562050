// One walk does it all: a renaming is carried down as part of the walk's surroundings, so that a term is walked once
// however many of its binders are renamed.
//
// A renaming draws a number of the process-wide counter even where nothing is replaced. So a part is skipped only where
// a walk would neither change anything nor leave such a trace, and a result is remembered only where the counter stood
// still.
#include "term/substitute/substitution.h"

#include <algorithm>

#include "term/report.h"
#include "term/reserved.h"
#include "term/state.h"
#include "term/variables/bound_names.h"

namespace vetro {
namespace {

using capture = substitution_rules::capture;
using scope_rule = substitution_rules::scope;

term_ptr as_it_is(term_ptr t) { return t; }

bool has_record(term_ptr t) { return !t->binders().empty() || !t->guarded().empty(); }

term_ptr condition_of(term_ptr t) { return t->type() == Lambda ? t->condition() : nullptr; }

}  // namespace

substitution::substitution(term_span sources, term_span values, term_ptr root, const substitution_rules& rules)
    : rules_(rules), root_(root) {
  const auto in_scopes =
      rules.scopes == scope_rule::replaced ? free_occurrences::in_scopes::yes : free_occurrences::in_scopes::no;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    sources_.push_back(
        {sources[i]->bare(), values[i], std::uint64_t{1} << i, free_occurrences(sources[i], in_scopes), {}});
  }
}

const term_list& substitution::names_of_value(source& s) {
  if (!s.value_names) {
    s.value_names = plain_free_variables(s.value);
  }
  return *s.value_names;
}

// ---- Every node.

term_ptr substitution::walk(term_ptr t) {
  for (const source& s : sources_) {
    if (t->bare() == s.term && (around_.hidden() & s.bit) == 0) {
      return s.value;
    }
  }
  if (around_.untouched(t)) {
    if (leaves_alone(t)) {
      return t;
    }
  } else if (t->type() == Var || t->type() == Apply) {
    if (const term_ptr name = around_.name_of(t); name != nullptr) {
      return t->scope() == nullptr ? name : with_scope(name, renamed(t->scope()));
    }
  }
  return t->size() < worth_remembering ? walk_node(t) : walk_remembering(t);
}

// False when the source cannot stand in t.
bool substitution::maybe_in(const source& s, term_ptr t) const {
  return (s.term->name_mask() & ~t->name_mask()) == 0 && s.term->size() <= t->size();
}

// Nothing stands here that would be replaced, renamed or reported.
bool substitution::leaves_alone(term_ptr t) const {
  for (const source& s : sources_) {
    if ((around_.hidden() & s.bit) != 0) {
      continue;
    }
    if ((rules_.reports_empty_lists && t->has(fact_empty_list)) || maybe_in(s, t)) {
      return false;
    }
    const bool may_rename =
        t->has(fact_binding) && (rules_.renamed == capture::names_of_value
                                     ? (s.value->name_mask() & t->name_mask()) != 0
                                     : (s.value->name_mask() & ~t->name_mask()) == 0 && s.value->name_mask() != 0);
    if (may_rename) {
      return false;
    }
  }
  return true;
}

[[gnu::noinline]] term_ptr substitution::walk_remembering(term_ptr t) {
  const std::uint64_t place = around_.number_for(t);
  if (const term_ptr* found = known_.find(t, place); found != nullptr) {
    return *found;
  }
  const int counter = state().fresh_counter;
  const std::uint32_t reserved = drawn_reserved_;
  const term_ptr result = walk_node(t);
  if (result != nullptr && counter == state().fresh_counter && reserved == drawn_reserved_) {
    known_.keep(t, result, place);
  }
  return result;
}

term_ptr substitution::walk_node(term_ptr t) {
  if (t->type() == Apply && binding_row_of(t) != nullptr) {
    return walk_binding_node(t);
  }
  const term_ptr content = walk_content(t);
  return t->has_meta() ? with_scope_walked(t, content) : content;
}

// t with new names alone: a part where the replaced variables are left as they are.
term_ptr substitution::renamed(term_ptr t) {
  if (around_.untouched(t)) {
    return t;
  }
  const surroundings::mark before = around_.here();
  around_.hide(~std::uint64_t{0});
  const term_ptr result = walk(t);
  around_.leave(before);
  return result;
}

term_ptr substitution::walk_scope_of(term_ptr t) {
  if (t->scope() == nullptr || rules_.scopes == scope_rule::kept) {
    return t->scope();
  }
  return rules_.scopes == scope_rule::renamed ? renamed(t->scope()) : walk(t->scope());
}

// A leaf is taken over with its scope.
[[gnu::noinline]] term_ptr substitution::with_scope_walked(term_ptr t, term_ptr content) {
  const bool is_leaf = t->children().empty() && t->type() != TermList;
  const term_ptr scope = is_leaf && rules_.scopes == scope_rule::replaced ? t->scope() : walk_scope_of(t);
  if (content == nullptr || (scope == nullptr && t->scope() != nullptr)) {
    return nullptr;
  }
  if (content == t && scope == t->scope()) {
    return t;
  }
  return with_meta(without_meta(content), {.binders = t->binders(), .scope = scope, .guarded = t->guarded()});
}

// ---- Nodes that bind nothing.

// Content without metadata; t itself when nothing changed. All parts are walked even when one of them failed: the
// others may draw names.
term_ptr substitution::walk_content(term_ptr t) {
  switch (t->type()) {
    case Apply: {
      const term_ptr left = walk(t->left());
      const term_ptr right = walk(t->right());
      return left == t->left() && right == t->right() ? t : mk_apply(left, right);
    }
    case TermList:
      return walk_elements(t);
    case FreeVarTag:
      return walk_tag(t);
    case Lambda:
    case Quant:
      return walk_binding(t);
    default:
      return t;
  }
}

bool substitution::walk_list(term_span list, term_list& out) {
  bool complete = true;
  out.reserve(list.size());
  for (term_ptr t : list) {
    out.push_back(walk(t));
    complete = complete && out.back() != nullptr;
  }
  return complete;
}

[[gnu::noinline]] term_ptr substitution::walk_elements(term_ptr t) {
  if (rules_.reports_empty_lists && t->elements().empty()) {
    report_error("Error: subst_term visiting NULL pointer\n");
    return nullptr;
  }
  term_list elements;
  return walk_list(t->elements(), elements) ? mk_term_list(elements) : nullptr;
}

[[gnu::noinline]] term_ptr substitution::walk_tag(term_ptr t) {
  term_list vars;
  const bool complete = walk_list(t->vars(), vars);
  const term_ptr body = walk(t->body());
  return complete ? mk_free_var_tag(vars, body) : nullptr;
}

// ---- Operators that bind or guard.

[[gnu::noinline]] term_ptr substitution::walk_binding_node(term_ptr t) {
  const binding b(t);
  const opening opened = open_node(t, b);
  const surroundings::mark outside = around_.here();
  const auto inside = [&](auto&& visit) {
    enter(opened);
    const term_ptr result = visit();
    around_.leave(outside);
    return result;
  };
  bool passes = true;
  if (b.guards_any()) {
    for (source& s : sources_) {
      passes = passes && (((around_.hidden() | opened.hidden) & s.bit) != 0 || passes_guard(s, t, b));
    }
  }
  const term_ptr content = map_parts(
      t, b, [&](term_ptr part, bool is_inside) { return is_inside ? inside([&] { return walk(part); }) : walk(part); });
  const term_ptr scope = t->scope() == nullptr ? nullptr : inside([&] { return walk_scope_of(t); });
  if (!passes || content == nullptr || (scope == nullptr && t->scope() != nullptr)) {
    return nullptr;
  }
  return with_new_record(t, content, scope, b, opened);
}

substitution::opening substitution::open_node(term_ptr t, const binding& b) {
  opening result;
  for (const source& s : sources_) {
    result.hidden |= b.binds(s.term) ? s.bit : 0;
  }
  for (term_ptr index : b.indices()) {
    bool renames = false;
    for (source& s : sources_) {
      if (((around_.hidden() | result.hidden) & s.bit) != 0) {
        continue;
      }
      switch (rules_.renamed) {
        case capture::value_itself:
          renames = renames || index->bare() == s.value->bare();
          break;
        case capture::names_of_value:
          renames = renames || contains_variable(names_of_value(s), index);
          break;
        case capture::where_replaced:
          renames = renames || index->bare() == s.value->bare() ||
                    (contains_variable(names_of_value(s), index) && occurs_inside(s, t, b));
          break;
      }
    }
    result.names.emplace_back(index->bare(), renames ? draw(index, t) : nullptr);
  }
  return result;
}

void substitution::enter(const opening& o) {
  for (const auto& [index, name] : o.names) {
    if (name == nullptr) {
      around_.keep(index);
    } else {
      around_.rename(index, name);
    }
  }
  around_.hide(o.hidden);
}

bool substitution::occurs_inside(source& s, term_ptr t, const binding& b) {
  bool found = false;
  for_each_part(t, b, [&](term_ptr part, bool is_inside) { found = found || (is_inside && s.occurrences.in(part)); });
  return found;
}

// Whether the source may be replaced among the names that the node guards.
bool substitution::passes_guard(source& s, term_ptr t, const binding& b) {
  if (!maybe_in(s, t) || !occurs_inside(s, t, b)) {
    return true;
  }
  const term_list source_names = is_var(s.term) ? term_list{s.term} : plain_free_variables(s.term);
  for (term_ptr name : source_names) {
    if (!b.guards(name)) {
      continue;
    }
    bool is_new_name = is_var(s.term) && is_var(s.value);
    for_each_part(t, b, [&](term_ptr part, bool is_inside) {
      is_new_name = is_new_name && !(is_inside && occurs_free(s.value, part));
    });
    return is_new_name || refuse(name) != nullptr;
  }
  for (term_ptr name : names_of_value(s)) {
    if (b.guards(name)) {
      return refuse(name) != nullptr;
    }
  }
  return true;
}

// Notes the reason; gives null.
term_ptr substitution::refuse(term_ptr var) {
  refused_ = refused_ == nullptr ? var : refused_;
  return nullptr;
}

// What a free name is called behind the substitution.
term_ptr substitution::name_after(term_ptr name) const {
  for (const source& s : sources_) {
    if (name->bare() == s.term && (around_.hidden() & s.bit) == 0 && is_var(s.value)) {
      return s.value->bare();
    }
  }
  const term_ptr renamed = around_.name_of(name);
  return renamed == nullptr ? name : renamed;
}

term_ptr substitution::with_new_record(term_ptr t, term_ptr content, term_ptr scope, const binding& b,
                                       const opening& o) const {
  const bool renames =
      std::any_of(o.names.begin(), o.names.end(), [](const auto& name) { return name.second != nullptr; });
  term_list binders;
  term_list guarded;
  if (!b.guards_operand()) {
    for (const auto& [index, name] : o.names) {
      binders.push_back(name == nullptr ? index : name);
    }
    for (term_ptr name : b.guarded()) {
      guarded.push_back(name_after(name));
    }
  }
  if (content == t && scope == t->scope() && !renames && (!has_record(t) || guarded == t->guarded())) {
    return t;
  }
  return with_meta(without_meta(content), {.binders = binders, .scope = scope, .guarded = guarded});
}

// ---- Lambda and Quant.

[[gnu::noinline]] term_ptr substitution::walk_binding(term_ptr t) {
  const surroundings::mark outside = around_.here();
  const term_list vars = open_entries(t, outside);
  const bool conditional = condition_of(t) != nullptr;
  const term_ptr condition = conditional ? walk(condition_of(t)) : nullptr;
  const term_ptr body = walk(t->body());
  around_.leave(outside);
  if (body == nullptr || (conditional && condition == nullptr) ||
      std::find(vars.begin(), vars.end(), nullptr) != vars.end()) {
    return nullptr;
  }
  if (body == t->body() && (!conditional || condition == t->condition()) &&
      std::equal(vars.begin(), vars.end(), t->vars().begin())) {
    return t;
  }
  return t->type() == Lambda ? mk_lambda(vars, t->var_types(), condition, body) : mk_quant(t->quant(), vars, body);
}

bool substitution::is_read(term_ptr entry) const { return rules_.reads_propositions || !is_proposition_entry(entry); }

bool substitution::is_bound_by(const source& s, term_ptr entry) const {
  return is_read(entry) ? contains_variable(entry_of(entry).bound, s.term) : entry->bare() == s.term;
}

term_list substitution::open_entries(term_ptr t, const surroundings::mark& outside) {
  const std::vector<std::uint64_t> replaced = replaced_behind(t);
  // A source that an entry binds and that no entry before it speaks of is hidden from the start.
  for (const source& s : sources_) {
    for (term_ptr entry : t->vars()) {
      const bool binds = is_read(entry) ? contains_variable(entry_of(entry).bound, s.term) : entry->bare() == s.term;
      around_.hide(binds && (replaced[0] & s.bit) == 0 ? s.bit : 0);
    }
  }
  term_list vars(t->vars().begin(), t->vars().end());
  for (std::size_t i = 0; i < vars.size(); ++i) {
    if (!is_read(vars[i])) {
      continue;
    }
    if (is_proposition_entry(vars[i])) {
      vars[i] = open_proposition(vars[i], t, replaced[i + 1]);
    } else if (around_.named_since(outside, vars[i])) {
      vars[i] = around_.name_of(vars[i]);  // listed twice
    } else {
      vars[i] = open_binder(vars[i], t, replaced[i + 1], true);
    }
  }
  return vars;
}

// At i, which sources are replaced in the entries from i on or in what they stand over.
std::vector<std::uint64_t> substitution::replaced_behind(term_ptr t) {
  const term_span vars = t->vars();
  std::vector<std::uint64_t> result(vars.size() + 1, 0);
  for (source& s : sources_) {
    if ((around_.hidden() & s.bit) != 0 || !maybe_in(s, t)) {
      continue;
    }
    bool below = s.occurrences.in(t->body()) || (condition_of(t) != nullptr && s.occurrences.in(condition_of(t)));
    result[vars.size()] |= below ? s.bit : 0;
    for (std::size_t i = vars.size(); i-- > 0;) {
      if (maybe_in(s, vars[i])) {
        below = (is_read(vars[i]) && s.occurrences.beside(vars[i])) || (below && !is_bound_by(s, vars[i]));
      }
      result[i] |= below ? s.bit : 0;
    }
  }
  return result;
}

// An entry such as y ∈ S: S belongs to the surroundings, what stands left of it is bound from here on.
[[gnu::noinline]] term_ptr substitution::open_proposition(term_ptr entry, term_ptr t, std::uint64_t replaced) {
  const entry_view view = entry_of(entry);
  bool passes = true;
  if (!view.guarded.empty()) {
    for (source& s : sources_) {
      passes = passes && ((around_.hidden() & s.bit) != 0 || passes_entry_guard(s, view, t));
    }
    const term_ptr walked = walk(entry);
    return passes ? walked : nullptr;
  }
  const term_ptr beside = map_entry(entry, view, as_it_is, [this](term_ptr side) { return walk(side); });
  for (const source& s : sources_) {
    around_.hide(contains_variable(view.bound, s.term) ? s.bit : 0);
  }
  for (term_ptr var : view.bound) {
    open_binder(var, t, replaced, false);
  }
  return beside == nullptr ? nullptr
                           : map_entry(
                                 beside, view, [this](term_ptr side) { return renamed(side); }, as_it_is);
}

// The same as passes_guard, over all that stands under the quantifier.
bool substitution::passes_entry_guard(source& s, const entry_view& view, term_ptr t) {
  if (!maybe_in(s, t) || !s.occurrences.in(t)) {
    return true;
  }
  const term_list source_names = is_var(s.term) ? term_list{s.term} : plain_free_variables(s.term);
  for (term_ptr name : source_names) {
    if (contains_variable(view.guarded, name)) {
      const bool is_new_name = is_var(s.term) && is_var(s.value) && !name_occurs(s.value->name(), t);
      return is_new_name || refuse(name) != nullptr;
    }
  }
  for (term_ptr name : names_of_value(s)) {
    if (contains_variable(view.guarded, name)) {
      return refuse(name) != nullptr;
    }
  }
  return true;
}

// Enters a binder of the node t and gives what stands in its place.
term_ptr substitution::open_binder(term_ptr binder, term_ptr t, std::uint64_t replaced, bool listed) {
  const term_ptr var = binder->bare();
  for (source& s : sources_) {
    if ((around_.hidden() & s.bit) != 0) {
      continue;
    }
    if (var == s.term) {
      around_.hide(s.bit);
      return binder;
    }
    const bool is_value = listed && is_var(var) && var == s.value->bare();
    bool renames = is_value;
    switch (rules_.renamed) {
      case capture::value_itself:
        break;
      case capture::names_of_value:
        renames = renames || contains_variable(names_of_value(s), var);
        break;
      case capture::where_replaced:
        renames = renames || ((replaced & s.bit) != 0 && would_break(s, var));
        break;
    }
    if (renames) {
      const term_ptr name = draw(var, t);
      around_.rename(var, name);
      return name;
    }
  }
  around_.keep(var);
  return is_var(var) ? binder : renamed(binder);
}

// A binder that would catch a variable of the value; or an indexed one that would lose its index, as a_n for n.
bool substitution::would_break(source& s, term_ptr binder) {
  if (is_var(binder)) {
    return contains_variable(names_of_value(s), binder);
  }
  return s.occurrences.in(binder) || ((binder->name_mask() & ~s.value->name_mask()) == 0 &&
                                      free_occurrences(binder, free_occurrences::in_scopes::no).in(s.value));
}

// ---- New names. One is used when it occurs in the term under the binder or in a value; the names of the whole term
// are collected once, so that drawing many does not search the term for each.

term_ptr substitution::draw(term_ptr binder, term_ptr under) {
  const term_ptr base = is_var(binder) ? binder : mk_var("v");
  const auto next = [&] {
    return rules_.draws_visible_names ? fresh(base, nullptr) : reserved_var(reserved_kind::bound, drawn_reserved_++);
  };
  term_ptr name = next();
  while (is_used(name, under)) {
    name = next();
  }
  drawn_.insert(name);
  return name;
}

bool substitution::is_used(term_ptr name, term_ptr under) {
  if (drawn_.count(name) != 0) {
    return true;
  }
  const auto occurs = [name](term_ptr t) {
    return (name->name_mask() & ~t->name_mask()) == 0 && name_occurs(name->name(), t);
  };
  const auto maybe = [name](term_ptr t) { return (name->name_mask() & ~t->name_mask()) == 0; };
  if (!maybe(under) &&
      std::none_of(sources_.begin(), sources_.end(), [&](const source& s) { return maybe(s.value); })) {
    return false;
  }
  if (!used_names_) {
    used_names_.emplace();
    used_names_->add(root_);
    for (const source& s : sources_) {
      used_names_->add(s.value);
    }
  }
  return used_names_->contains(name->name()) &&
         (occurs(under) ||
          std::any_of(sources_.begin(), sources_.end(), [&](const source& s) { return occurs(s.value); }));
}

}  // namespace vetro

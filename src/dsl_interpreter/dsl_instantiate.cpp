// Capture-free instantiation.
//
// One walk does what the plain substitution does, fresh names and their order included, and on top of it what that one
// leaves to its caller: it renames the binders that would capture a variable of the value, stops where an entry such as
// x ∈ S binds the replaced variable, and replaces in the sets of entries. A renaming is carried down as part of the
// walk's surroundings, so that a term is walked once however many of its binders are renamed.
#include "dsl_interpreter/dsl_instantiate.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "lib/semantic_term.h"
#include "term/bound_variables.h"
#include "term/compare.h"
#include "term/index_variables.h"
#include "term/report.h"
#include "term/state.h"
#include "term/substitute.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/walk_tools.h"

namespace vetro {
namespace {

bool contains_bare(term_span list, term_ptr bare) {
  return std::any_of(list.begin(), list.end(), [bare](term_ptr t) { return t->bare() == bare; });
}

// The entry with the side that it binds changed by `inner` and what belongs to the surroundings by `outer`.
template <class Inner, class Outer>
term_ptr map_entry(term_ptr entry, Inner&& inner, Outer&& outer) {
  if (!entry_binds_left_side(entry)) {
    return inner(entry);
  }
  if (is_predchain(entry)) {
    term_list operands;
    bool complete = true;
    for (term_ptr operand : entry->right()->elements()) {
      operands.push_back(operands.empty() ? inner(operand) : outer(operand));
      complete = complete && operands.back() != nullptr;
    }
    const term_ptr list = complete ? mk_term_list(operands) : nullptr;
    return with_meta(mk_apply(entry->left(), list), entry->meta());
  }
  const term_ptr left = inner(entry->left()->right());
  const term_ptr right = outer(entry->right());
  const term_ptr head = with_meta(mk_apply(entry->left()->left(), left), entry->left()->meta());
  return with_meta(mk_apply(head, right), entry->meta());
}

term_ptr as_it_is(term_ptr t) { return t; }

// New names for binders. A name is used when it occurs in the term under the binder or in the value; the names of the
// whole term are collected once, so that drawing many does not search the term for each.
class binder_names {
 public:
  binder_names(term_ptr root, term_ptr value) : root_(root), value_(value) {}

  term_ptr draw(term_ptr binder, term_ptr under) {
    const term_ptr base = is_var(binder) ? binder : mk_var("v");
    term_ptr name = fresh(base, nullptr);
    while (used(name, under)) {
      name = fresh(base, nullptr);
    }
    drawn_.insert(name);
    return name;
  }

 private:
  bool used(term_ptr name, term_ptr under) {
    if (drawn_.count(name) != 0) {
      return true;
    }
    if ((name->name_mask() & (under->name_mask() | value_->name_mask())) == 0) {
      return false;
    }
    if (!collected_) {
      names_.add(root_);
      names_.add(value_);
      collected_ = true;
    }
    return names_.contains(name->name()) && (name_occurs(name->name(), under) || name_occurs(name->name(), value_));
  }

  term_ptr root_;
  term_ptr value_;
  std::unordered_set<term_ptr> drawn_;
  bool collected_ = false;
  name_collection names_;
};

// What is known of the binders around the place where a walk stands: which of them have new names, and whether one of
// them is the replaced variable.
class surroundings {
 public:
  struct mark {
    std::size_t changes;
    std::uint64_t state;
    std::uint64_t mask;
    bool blocked;
  };

  mark here() const { return {changes_.size(), state_, mask_, blocked_}; }

  void leave(const mark& before) {
    for (; changes_.size() > before.changes; changes_.pop_back()) {
      names_[changes_.back().var] = changes_.back().before;
    }
    state_ = before.state;
    mask_ = before.mask;
    blocked_ = before.blocked;
  }

  // True when nothing below t has a new name.
  bool untouched(term_ptr t) const { return (t->name_mask() & mask_) == 0; }

  // The new name of a bound variable; null when it keeps its own.
  term_ptr name_of(term_ptr var) const {
    const auto found = names_.find(var->bare());
    return found == names_.end() ? nullptr : found->second.name;
  }

  // True when the variable got its name behind the mark.
  bool named_since(const mark& before, term_ptr var) const {
    const auto found = names_.find(var->bare());
    return found != names_.end() && found->second.name != nullptr && found->second.change >= before.changes;
  }

  void rename(term_ptr var, term_ptr name) { set(var->bare(), name); }

  // A binder that keeps its name hides an outer one that does not.
  void keep(term_ptr var) {
    if (name_of(var) != nullptr) {
      set(var->bare(), nullptr);
    }
  }

  // Below a binder of the replaced variable nothing is replaced.
  bool blocked() const { return blocked_; }
  void block(bool blocked = true) { blocked_ = blocked; }

  // Where t is visited twice under one number, it comes out the same.
  std::uint64_t number_for(term_ptr t) const {
    return (untouched(t) ? 0 : state_ << 1U) | static_cast<std::uint64_t>(blocked_);
  }

 private:
  struct named {
    term_ptr name = nullptr;
    std::size_t change = 0;
  };
  struct change {
    term_ptr var;
    named before;
  };

  void set(term_ptr var, term_ptr name) {
    named& slot = names_[var];
    changes_.push_back({var, slot});
    slot = {name, changes_.size() - 1};
    mask_ |= var->name_mask();
    state_ = ++last_state_;
  }

  std::unordered_map<term_ptr, named> names_;
  std::vector<change> changes_;
  std::uint64_t state_ = 0;
  std::uint64_t last_state_ = 0;
  std::uint64_t mask_ = 0;
  bool blocked_ = false;
};

class instantiation {
 public:
  instantiation(term_ptr src, term_ptr dest, term_ptr root)
      : src_(src->bare()), dest_(dest), occurrences_(src, false), names_(root, dest) {
    for (term_ptr var : plain_free_variables(dest)) {
      captured_.insert(var);
    }
  }

  term_ptr walk(term_ptr t) {
    if (!around_.blocked() && t->bare() == src_) {
      return dest_;
    }
    if (around_.untouched(t)) {
      if (leaves_alone(t)) {
        return t;
      }
    } else if (const term_ptr name = around_.name_of(t); name != nullptr) {
      return t->scope() == nullptr ? name : with_scope(name, renamed(t->scope()));
    }
    return t->size() < worth_remembering ? walk_node(t) : walk_remembering(t);
  }

 private:
  // Nothing stands here that would be replaced, renamed or reported.
  bool leaves_alone(term_ptr t) const {
    if (around_.blocked()) {
      return true;
    }
    const bool renames_dest = is_var(dest_) && t->has(fact_binding) && within(dest_, t);
    return !t->has(fact_empty_list) && !within(src_, t) && !renames_dest;
  }

  // False when the variable cannot occur in t.
  static bool within(term_ptr var, term_ptr t) { return (var->name_mask() & ~t->name_mask()) == 0; }

  [[gnu::noinline]] term_ptr walk_remembering(term_ptr t) {
    const node_visit visit{around_.number_for(t), t};
    const auto found = known_.find(visit);
    if (found != known_.end()) {
      return found->second;
    }
    const int counter = state().fresh_counter;
    const term_ptr result = walk_node(t);
    if (result != nullptr && counter == state().fresh_counter) {
      known_.emplace(visit, result);
    }
    return result;
  }

  // t with the new names alone: a part where the replaced variable is left as it is.
  term_ptr renamed(term_ptr t) {
    if (around_.untouched(t)) {
      return t;
    }
    const bool blocked = around_.blocked();
    around_.block();
    const term_ptr result = walk(t);
    around_.block(blocked);
    return result;
  }

  term_ptr walk_node(term_ptr t) { return t->has_meta() ? walk_with_meta(t) : walk_content(t); }

  [[gnu::noinline]] term_ptr walk_with_meta(term_ptr t) {
    const surroundings::mark outside = around_.here();
    const term_list binders = open_binders(t);
    const term_ptr content = walk_content(t);
    const term_ptr scope = t->scope() == nullptr ? nullptr : renamed(t->scope());
    around_.leave(outside);
    if (content == nullptr || (scope == nullptr && t->scope() != nullptr)) {
      return nullptr;
    }
    const bool changed = content != t || scope != t->scope() || binders != t->binders();
    return changed ? with_meta(without_meta(content), {binders, scope, nullptr}) : t;
  }

  term_list open_binders(term_ptr t) {
    const term_list bound = bound_here(t);
    if (contains_bare(bound, src_)) {
      around_.block();
    }
    const bool replaces = !bound.empty() && !around_.blocked() && occurrences_.in(t);
    term_list binders;
    for (term_ptr binder : t->binders()) {
      if (contains_bare(bound, binder->bare())) {
        binders.push_back(open_binder(binder, t, replaces, true));
      } else if (const term_ptr outer = walk(binder); is_var(outer)) {
        // What stands for itself, as the start of a sum, is an occurrence like any other; only names are listed.
        binders.push_back(outer);
      }
    }
    return binders;
  }

  // Content without metadata; t itself when nothing changed. All parts are walked even when one of them failed: the
  // others may draw names.
  term_ptr walk_content(term_ptr t) {
    switch (t->type()) {
      case Apply: {
        const term_ptr left = walk(t->left());
        const term_ptr right = walk(t->right());
        return left == t->left() && right == t->right() ? t : mk_apply(left, right);
      }
      case TermList:
        if (t->elements().empty()) {
          report_error("Error: subst_term visiting NULL pointer\n");
          return nullptr;
        }
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

  term_list walk_list(term_span list) {
    term_list result;
    result.reserve(list.size());
    for (term_ptr t : list) {
      result.push_back(walk(t));
    }
    return result;
  }

  [[gnu::noinline]] term_ptr walk_elements(term_ptr t) { return mk_term_list(walk_list(t->elements())); }

  [[gnu::noinline]] term_ptr walk_tag(term_ptr t) {
    const term_list vars = walk_list(t->vars());
    return mk_free_var_tag(vars, walk(t->body()));
  }

  // ---- Lambda and Quant.

  [[gnu::noinline]] term_ptr walk_binding(term_ptr t) {
    const surroundings::mark outside = around_.here();
    const term_list vars = open_entries(t, outside);
    const bool conditional = t->type() == Lambda && t->condition() != nullptr;
    const term_ptr condition = conditional ? walk(t->condition()) : nullptr;
    const term_ptr body = walk(t->body());
    around_.leave(outside);
    if (body == nullptr || (conditional && condition == nullptr)) {
      return nullptr;
    }
    if (body == t->body() && (!conditional || condition == t->condition()) &&
        std::equal(vars.begin(), vars.end(), t->vars().begin())) {
      return t;
    }
    return t->type() == Lambda ? mk_lambda(vars, t->var_types(), condition, body) : mk_quant(t->quant(), vars, body);
  }

  term_list open_entries(term_ptr t, const surroundings::mark& outside) {
    const std::vector<bool> replaces = replaced_behind(t);
    if (!around_.blocked() && !replaces[0] && binds_src(t)) {
      around_.block();
    }
    term_list vars(t->vars().begin(), t->vars().end());
    for (std::size_t i = 0; i < vars.size(); ++i) {
      if (is_proposition_entry(vars[i])) {
        vars[i] = open_proposition(vars[i], t, replaces[i + 1]);
      } else if (around_.named_since(outside, vars[i])) {
        vars[i] = around_.name_of(vars[i]);  // listed twice
      } else {
        vars[i] = open_binder(vars[i], t, replaces[i + 1], true);
      }
    }
    return vars;
  }

  bool binds_src(term_ptr t) {
    return std::any_of(t->vars().begin(), t->vars().end(),
                       [this](term_ptr entry) { return within(src_, entry) && occurrences_.bound_by(entry); });
  }

  // At i, whether something is replaced in the entries from i on or in what they stand over.
  std::vector<bool> replaced_behind(term_ptr t) {
    const term_span vars = t->vars();
    std::vector<bool> result(vars.size() + 1, false);
    if (around_.blocked() || !within(src_, t)) {
      return result;
    }
    bool below = occurrences_.in(t->body()) ||
                 (t->type() == Lambda && t->condition() != nullptr && occurrences_.in(t->condition()));
    result[vars.size()] = below;
    for (std::size_t i = vars.size(); i-- > 0;) {
      if (within(src_, vars[i])) {
        below = occurrences_.beside(vars[i]) || (below && !occurrences_.bound_by(vars[i]));
      }
      result[i] = below;
    }
    return result;
  }

  // An entry such as y ∈ S: S belongs to the surroundings, what stands left of it is bound from here on.
  [[gnu::noinline]] term_ptr open_proposition(term_ptr entry, term_ptr t, bool replaces) {
    const term_ptr beside = map_entry(entry, as_it_is, [this](term_ptr side) { return walk(side); });
    if (within(src_, entry) && occurrences_.bound_by(entry)) {
      around_.block();
    }
    for (term_ptr var : entry_bound_variables(entry)) {
      open_binder(var, t, replaces, false);
    }
    return beside == nullptr ? nullptr
                             : map_entry(
                                   beside, [this](term_ptr side) { return renamed(side); }, as_it_is);
  }

  // Enters a binder of the node t and gives what stands in its place. The plain substitution renames a listed binder
  // that is the value itself even where nothing is replaced.
  term_ptr open_binder(term_ptr binder, term_ptr t, bool replaces, bool listed) {
    const term_ptr var = binder->bare();
    if (!around_.blocked()) {
      if (var == src_) {
        around_.block();
        return binder;
      }
      if ((listed && is_var(var) && var == dest_->bare()) || (replaces && would_break(var))) {
        const term_ptr name = names_.draw(var, t);
        around_.rename(var, name);
        return name;
      }
    }
    around_.keep(var);
    return is_var(var) ? binder : renamed(binder);
  }

  // A binder that would capture a variable of the value; or an indexed one that would lose its index, as a_n for n.
  bool would_break(term_ptr var) {
    if (is_var(var)) {
      return captured_.count(var) != 0;
    }
    return occurrences_.in(var) || (within(var, dest_) && free_occurrences(var, false).in(dest_));
  }

  term_ptr src_;
  term_ptr dest_;
  free_occurrences occurrences_;
  binder_names names_;
  std::unordered_set<term_ptr> captured_;  // the free variables of the value
  surroundings around_;
  std::unordered_map<node_visit, term_ptr, node_visit_hasher> known_;
};

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
  free_occurrences occurrences(binder, false);
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

class binder_stripper {
 public:
  term_ptr strip(term_ptr t) {
    if (!t->has(fact_meta)) {
      return t;
    }
    const auto found = known_.find(t);
    if (found != known_.end()) {
      return found->second;
    }
    const term_ptr below =
        map_children(t, walk_children | walk_scope | keep_meta, [this](term_ptr part) { return strip(part); });
    const term_ptr result = with_binders(below, {});
    known_.emplace(t, result);
    return result;
  }

 private:
  std::unordered_map<term_ptr, term_ptr> known_;
};

}  // namespace

term_ptr instantiate_term(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    return nullptr;
  }
  return instantiation(src, dest, t).walk(t);
}

term_ptr instantiate_binders(term_ptr quantified, term_span binders, term_span values) {
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
    t = instantiate_term(names[i], values[i], t);
  }
  return t;
}

term_ptr strip_binders(term_ptr t) { return t == nullptr ? nullptr : binder_stripper().strip(t); }

term_ptr with_binders_as_read(term_ptr t) {
  term_ptr plain = strip_binders(t);
  return plain == nullptr ? nullptr : copy_term_with_binders(plain);
}

}  // namespace vetro

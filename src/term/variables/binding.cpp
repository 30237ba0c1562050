// Reading what a node binds and guards. Differentials and Landau terms are looked for no further than the next integral
// or relation inside, which has its own.
#include "term/variables/binding.h"

#include <algorithm>
#include <unordered_map>

#include "term/state.h"
#include "term/variables/bound_names.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

class nothing_around : public outer_names {
 public:
  bool contains(term_ptr) const override { return false; }
  bool contains_none_of(term_ptr) const override { return true; }
};

// What was found out about nodes without a record.
struct binding_memory {
  name_memo names;
  std::unordered_map<term_ptr, index_reading> known;
};

const index_reading& reading_without_record(term_ptr t) {
  binding_memory& memory = state().slots.of<binding_memory>();
  const auto found = memory.known.find(t);
  if (found != memory.known.end()) {
    return found->second;
  }
  index_reading reading = read_binding(t, nothing_around(), memory.names);
  return memory.known.emplace(t, std::move(reading)).first->second;
}

// The operand whose names a notation guards, all of them; null where it guards none of them or not all.
term_ptr guarded_operand(term_ptr t, binding_kind kind) {
  switch (kind) {
    case binding_kind::any_operand:
    case binding_kind::landau_term:
      return t->argument(0);
    case binding_kind::function_operand:
      return is_function_expression(t->argument(0)) ? nullptr : t->argument(0);
    case binding_kind::sequence_operand: {
      const term_ptr operand = t->argument(0);
      const bool general_term = operand->type() == Apply && operand->head() == Index;
      return !general_term && is_function_expression(operand) ? nullptr : operand;
    }
    case binding_kind::nabla_product:
      return t;
    default:
      return nullptr;
  }
}

bool has_record(term_ptr t) { return !t->binders().empty() || !t->guarded().empty(); }

// Kinds whose names take looking for.
bool has_reading(binding_kind kind) { return binds_indices(kind) || kind == binding_kind::tendency_chain; }

// ---- Integrals.

// What stands behind diff and pdiff, in text order.
class differential_search {
 public:
  void search(term_ptr t) {
    if (!t->has(fact_guard) || !met_.insert(t)) {
      return;
    }
    if (t->type() == Apply && (t->head() == D || t->head() == PD) && t->argument_count() == 1) {
      found_.push_back(t->right());
      return;
    }
    if (const binding_row* row = binding_row_of(t); row != nullptr && row->kind == binding_kind::differentials) {
      search_around_integral(t, *row);
      return;
    }
    for (term_ptr child : t->children()) {
      if (child != nullptr) {
        search(child);
      }
    }
  }
  const term_list& found() const { return found_; }

 private:
  void search_around_integral(term_ptr t, const binding_row& row) {
    for (unsigned i = 0; i < row.arity; ++i) {
      if (row.regions[i] == region::outside) {
        search(t->argument(i));
      }
    }
  }

  node_set met_;
  term_list found_;
};

index_reading read_differentials(term_ptr t, const binding_row& row, const outer_names& outer) {
  differential_search differentials;
  for (unsigned i = 0; i < row.arity; ++i) {
    if (row.regions[i] == region::inside) {
      differentials.search(t->argument(i));
    }
  }
  ordered_terms indices;
  ordered_terms guarded;
  for (term_ptr variable : differentials.found()) {
    const term_list names =
        is_plain_name(variable) ? term_list{variable->bare()} : not_outer(free_names_beside_heads(variable), outer);
    for (term_ptr name : names) {
      (names.size() == 1 ? indices : guarded).add(name);
    }
  }
  index_reading result{indices.list(), {}};
  for (term_ptr name : guarded.list()) {
    if (!indices.contains(name)) {
      result.guarded.push_back(name);
    }
  }
  return result;
}

// ---- Set descriptions.

index_reading read_set_element(term_ptr t, const outer_names& outer, name_memo& memo) {
  const term_ptr element = t->argument(0);
  const term_ptr conditions = t->argument(1);
  if (conditions->type() != TermList || (element->name_mask() & conditions->name_mask()) == 0) {
    return {};
  }
  constexpr std::size_t few = 8;
  term_list names = memo.beside_heads(element);
  free_names constrained;
  const bool many = names.size() > few;
  if (many) {
    constrained.add(conditions);
  }
  std::erase_if(names,
                [&](term_ptr name) { return many ? !constrained.contains(name) : !memo.occurs(name, conditions); });
  return {not_outer(std::move(names), outer), {}};
}

// ---- Landau terms.

// The names in front of the points of Landau terms, and the names in these points, as far as they come from around the
// relation.
class landau_search {
 public:
  void search(term_ptr t) {
    if (!t->has(fact_landau)) {
      return;
    }
    if (!met_.insert(t, bound_.number_for(t))) {
      return;
    }
    const binding b(t);
    if (b.row() != nullptr && b.row()->kind == binding_kind::landau_atom) {
      return;
    }
    if (b.row() != nullptr && b.row()->kind == binding_kind::landau_term) {
      note(t);
    }
    if (t->type() == Lambda || t->type() == Quant) {
      search_under(t, entry_names(t));
    } else if (b.row() != nullptr) {
      search_under(t, b.indices());
    } else {
      search_children(t);
    }
  }

  index_reading reading(const outer_names& outer) const {
    index_reading result;
    ordered_terms seen;
    for (term_ptr variable : variables_) {
      if (is_plain_name(variable) && !points_.contains(variable) && !seen.contains(variable->bare())) {
        seen.add(variable->bare());
        result.indices.push_back(variable->bare());
      }
    }
    for (term_ptr variable : variables_) {
      const term_list names =
          is_plain_name(variable) ? term_list{variable->bare()} : not_outer(free_names_beside_heads(variable), outer);
      for (term_ptr name : names) {
        if (!seen.contains(name)) {
          seen.add(name);
          result.guarded.push_back(name);
        }
      }
    }
    return result;
  }

 private:
  void note(term_ptr landau) {
    const term_ptr variable = landau->argument(0);
    const term_list names = plain_free_variables(variable);
    if (std::none_of(names.begin(), names.end(), [this](term_ptr name) { return bound_.contains(name); })) {
      variables_.push_back(variable);
    }
    points_.add(landau->argument(1));
  }

  void search_children(term_ptr t) {
    for (term_ptr child : t->children()) {
      if (child != nullptr) {
        search(child);
      }
    }
  }

  void search_under(term_ptr t, term_span names) {
    const bound_names::mark outside = bound_.here();
    bound_.bind_all(names);
    search_children(t);
    bound_.leave(outside);
  }

  bound_names bound_;
  node_set met_;
  term_list variables_;
  free_names points_;
};

index_reading read_landau_atom(term_ptr t, const outer_names& outer) {
  landau_search landau;
  for (unsigned i = 0; i < t->argument_count(); ++i) {
    landau.search(t->argument(i));
  }
  return landau.reading(outer);
}

// ---- Chains of tendencies.

index_reading read_tendency_chain(term_ptr t, const outer_names& outer) {
  ordered_terms names;
  for (term_ptr pred : t->argument(0)->elements()) {
    if (pred->type() != Apply || !has_tendency_index(static_cast<pred_type>(pred->head()))) {
      continue;
    }
    for (term_ptr name : not_outer(plain_free_variables(pred->argument(0)), outer)) {
      names.add(name);
    }
  }
  return {{}, names.list()};
}

// ---- Functions by their form.

bool is_made_of_a_function(term_ptr t) {
  switch (t->head()) {
    case Index:
      return t->argument_count() == 2 && t->argument(0)->type() == Var;
    case Compose:
      return t->argument_count() == 2;
    case InverseFunc:
      return t->argument_count() == 1;
    case RestrictFunc:
      return t->argument_count() == 2;
    case SingleDeri:
    case VecGrad:
    case VecRot:
      return t->argument_count() == 1 && is_function_expression(t->argument(0));
    case NthDeri:
      return t->argument_count() == 2 && is_function_expression(t->argument(0));
    case FunDeri:
      return t->argument_count() == 3 && is_function_expression(t->argument(0));
    default:
      return false;
  }
}

}  // namespace

bool is_function_expression(term_ptr t) {
  switch (t->type()) {
    case Var:
    case Oper:
    case Lambda:
      return true;
    case Apply:
      return is_made_of_a_function(t);
    default:
      return false;
  }
}

index_reading read_binding(term_ptr t, const outer_names& outer, name_memo& names) {
  const binding_row* row = binding_row_of(t);
  if (row == nullptr) {
    return {};
  }
  switch (row->kind) {
    case binding_kind::index_part: {
      const unsigned place = row->regions[0] == region::index ? 0 : 1;
      return read_index_part(t->argument(place), outer, is_in_front_of_point(*row), names);
    }
    case binding_kind::differentials:
      return read_differentials(t, *row, outer);
    case binding_kind::set_element:
      return read_set_element(t, outer, names);
    case binding_kind::landau_atom:
      return read_landau_atom(t, outer);
    case binding_kind::tendency_chain:
      return read_tendency_chain(t, outer);
    default:
      break;
  }
  // All names of the operand, which need no record, unless binders around tell some of them to be meant otherwise.
  const term_ptr operand = guarded_operand(t, row->kind);
  if (operand == nullptr || outer.contains_none_of(operand)) {
    return {};
  }
  const term_list& all = names.beside_heads(operand);
  term_list left = not_outer(all, outer);
  return left.size() == all.size() ? index_reading{} : index_reading{{}, std::move(left)};
}

binding::binding(term_ptr t) : row_(binding_row_of(t)) {
  if (row_ == nullptr) {
    return;
  }
  if (has_record(t)) {
    indices_ = t->binders();
    guarded_ = t->guarded();
    return;
  }
  operand_ = guarded_operand(t, row_->kind);
  if (operand_ == nullptr && has_reading(row_->kind)) {
    const index_reading& reading = reading_without_record(t);
    indices_ = reading.indices;
    guarded_ = reading.guarded;
  }
}

term_list binding::guarded() const {
  return guards_operand() ? free_names_beside_heads(operand_) : term_list(guarded_.begin(), guarded_.end());
}

bool binding::binds(term_ptr var) const { return contains_variable(indices_, var); }

bool binding::guards(term_ptr var) const {
  if (!guards_operand()) {
    return contains_variable(guarded_, var);
  }
  return free_occurrences(var, free_occurrences::in_scopes::yes, free_occurrences::heads::skipped).in(operand_);
}

bool same_reading(const binding& a, const binding& b) {
  const auto same_names = [](term_span x, term_span y) {
    return x.size() == y.size() && std::all_of(x.begin(), x.end(), [y](term_ptr n) { return contains_variable(y, n); });
  };
  return a.row_ == b.row_ && (a.operand_ == nullptr) == (b.operand_ == nullptr) && same_names(a.indices_, b.indices_) &&
         same_names(a.guarded(), b.guarded());
}

term_list touched_names(term_ptr t) {
  const binding b(t);
  term_list names(b.indices().begin(), b.indices().end());
  const term_list guarded = b.guarded();
  names.insert(names.end(), guarded.begin(), guarded.end());
  return names;
}

bool protects(term_ptr t) { return binding(t).touches_names(); }

}  // namespace vetro

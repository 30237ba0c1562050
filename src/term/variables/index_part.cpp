// Reading by form first; names are only counted where the form does not tell.
#include "term/variables/index_part.h"

#include <algorithm>
#include <optional>

#include "term/term_split_combine.h"
#include "term/variables/bound_names.h"

namespace vetro {
namespace {

// What stands on a node of the index part would be lost by cutting it up.
bool is_plain_binary(term_ptr t) {
  return t->type() == Apply && t->argument_count() == 2 && !t->has_meta() && !t->left()->has_meta();
}

bool is_index_relation(term_ptr part) {
  if (part->type() != Apply || !is_plain_binary(part)) {
    return false;
  }
  switch (part->head()) {
    case Eq:
    case IdentEq:
    case Belong:
    case Subset:
    case Divides:
      return true;
    default:
      return false;
  }
}

bool is_conjunction(term_ptr part) { return part->type() == Apply && part->head() == And && is_plain_binary(part); }

// The operands of a chain of three in one direction, lower end first or upper end first; nothing for other terms.
term_span operands_of_range(term_ptr part) {
  if (part->type() != Apply || part->head() != PredChain || !is_plain_binary(part)) {
    return {};
  }
  const term_ptr preds = part->argument(0);
  const term_ptr operands = part->argument(1);
  if (preds->type() != TermList || operands->type() != TermList || operands->elements().size() != 3 ||
      preds->elements().size() != 2) {
    return {};
  }
  const auto all = [preds](pred_type strict, pred_type weak) {
    return std::all_of(preds->elements().begin(), preds->elements().end(),
                       [=](term_ptr p) { return is_pred(p, strict) || is_pred(p, weak); });
  };
  return all(Lt, Le) || all(Gt, Ge) ? operands->elements() : term_span{};
}

bool holds_any(term_ptr t, term_span names) {
  return std::any_of(names.begin(), names.end(), [t](term_ptr name) { return occurs_free(name, t); });
}

bool all_among(term_span names, term_span list) {
  return !names.empty() &&
         std::all_of(names.begin(), names.end(), [list](term_ptr name) { return contains_variable(list, name); });
}

// The names that one part of a conjunction, or the whole index part, says to be indices.
term_list decided_names(term_ptr part, const outer_names& outer, name_memo& names) {
  if (is_index_relation(part)) {
    const term_ptr left = part->argument(0);
    return is_plain_name(left) ? term_list{left->bare()} : plain_names_of_list(left);
  }
  const term_span range = operands_of_range(part);
  if (range.empty() || !is_plain_name(range[1])) {
    return {};
  }
  const term_list& lower = names.all(range[0]);
  const auto could_be_index = [&](term_ptr name) { return name == range[1]->bare() || !outer.contains(name); };
  return std::any_of(lower.begin(), lower.end(), could_be_index) ? term_list{} : term_list{range[1]->bare()};
}

void add_conjuncts(term_ptr part, term_list& out) {
  if (is_conjunction(part)) {
    add_conjuncts(part->argument(0), out);
    add_conjuncts(part->argument(1), out);
  } else {
    out.push_back(part);
  }
}

// The sides of a part of a conjunction that stand outside.
bool outer_side_holds_any(term_ptr part, term_span names) {
  switch (index_form_of(part, names)) {
    case index_form::relation:
      return holds_any(part->argument(1), names);
    case index_form::chain: {
      const term_span range = operands_of_range(part);
      return holds_any(range[0], names) || holds_any(range[2], names);
    }
    default:
      return false;
  }
}

// i ∈ S ∧ j = i + 1: the parts speak of each other's indices, so that no side of them stands outside.
bool conjuncts_stand_apart(term_ptr part, term_span indices) {
  term_list conjuncts;
  add_conjuncts(part, conjuncts);
  return std::none_of(conjuncts.begin(), conjuncts.end(),
                      [indices](term_ptr conjunct) { return outer_side_holds_any(conjunct, indices); });
}

index_reading read_conjunction(term_ptr part, const outer_names& outer, name_memo& names) {
  term_list conjuncts;
  add_conjuncts(part, conjuncts);
  ordered_terms indices;
  ordered_terms others;
  for (term_ptr conjunct : conjuncts) {
    const term_list decided = decided_names(conjunct, outer, names);
    for (term_ptr name : decided) {
      indices.add(name);
    }
    if (decided.empty()) {
      for (term_ptr name : names.all(conjunct)) {
        others.add(name);
      }
    }
  }
  if (indices.list().empty() || !conjuncts_stand_apart(part, indices.list())) {
    return {};
  }
  index_reading result{indices.list(), {}};
  for (term_ptr name : others.list()) {
    if (!indices.contains(name) && !outer.contains(name)) {
      result.guarded.push_back(name);
    }
  }
  return result;
}

// All names of a part whose form does not tell.
index_reading read_by_counting(term_ptr part, const outer_names& outer, name_memo& names) {
  term_list left = not_outer(names.all(part), outer);
  if (left.size() == 1 && contains_variable(names.beside_heads(part), left[0])) {
    return {std::move(left), {}};
  }
  return {{}, std::move(left)};
}

}  // namespace

bool is_plain_name(term_ptr t) { return t->type() == Var && t->scope() == nullptr; }

term_list plain_names_of_list(term_ptr t) {
  if (t->type() != TermList || !std::all_of(t->elements().begin(), t->elements().end(), is_plain_name)) {
    return {};
  }
  ordered_terms names;
  for (term_ptr name : t->elements()) {
    names.add(name->bare());
  }
  return names.list();
}

index_form index_form_of(term_ptr part, term_span indices) {
  if (indices.empty()) {
    return index_form::whole;
  }
  if (is_conjunction(part)) {
    return conjuncts_stand_apart(part, indices) ? index_form::conjunction : index_form::whole;
  }
  if (is_index_relation(part)) {
    const term_ptr left = part->argument(0);
    const bool names_index =
        is_plain_name(left) ? contains_variable(indices, left) : all_among(plain_names_of_list(left), indices);
    return names_index ? index_form::relation : index_form::whole;
  }
  const term_span range = operands_of_range(part);
  const bool names_index = !range.empty() && is_plain_name(range[1]) && contains_variable(indices, range[1]);
  return names_index && !occurs_free(range[1], range[0]) ? index_form::chain : index_form::whole;
}

term_list not_outer(term_list names, const outer_names& outer) {
  term_list found;
  std::copy_if(names.begin(), names.end(), std::back_inserter(found),
               [&outer](term_ptr name) { return !outer.contains(name); });
  return found.empty() ? names : found;
}

index_reading read_index_part(term_ptr part, const outer_names& outer, bool in_front_of_point, name_memo& names) {
  if (is_plain_name(part)) {
    return {{part->bare()}, {}};
  }
  if (in_front_of_point) {
    const bool is_tuple = part->type() == Apply && part->head() == Tuple && part->argument_count() == 1;
    term_list indices = plain_names_of_list(is_tuple ? part->argument(0) : part);
    if (!indices.empty()) {
      return {std::move(indices), {}};
    }
  }
  if (is_conjunction(part)) {
    index_reading parts = read_conjunction(part, outer, names);
    return parts.indices.empty() ? read_by_counting(part, outer, names) : parts;
  }
  term_list decided = decided_names(part, outer, names);
  return decided.empty() ? read_by_counting(part, outer, names) : index_reading{std::move(decided), {}};
}

}  // namespace vetro

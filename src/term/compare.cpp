// Equality of terms up to bound names: a walk over both terms at once, with the names bound on the way on either side.
//
// Where nothing is bound, a term equals itself and nothing else (soft types aside), so addresses and hashes end most
// walks before they begin. Under bindings equal addresses mean something only if no renamed name can occur below.
#include "term/compare.h"

#include <algorithm>
#include <unordered_set>

#include "number/hash_mix.h"
#include "term/report.h"
#include "term/state.h"
#include "term/variables/binding.h"
#include "term/variables/bound_names.h"

namespace vetro {
namespace {

class alpha_walk {
 public:
  explicit alpha_walk(bool remember) : remember_(remember) {}

  bool equal(term_ptr a, term_ptr b) {
    if (a->blind_hash() != b->blind_hash() || a->type() != b->type()) {
      return false;
    }
    const bool touched = ((left_.mask() & a->name_mask()) | (right_.mask() & b->name_mask())) != 0;
    if (a == b && (!touched || renamed_ == 0)) {
      return true;
    }
    if (!touched && a->bare() != b->bare() && !a->has(fact_binding) && !b->has(fact_binding)) {
      return false;
    }
    // One difference ends the whole walk, so a pair that was met before is known to be equal.
    if (remember_ && a->size() > 8 && !known_.insert({a, b, touched ? left_.number() : 0}).second) {
      return true;
    }
    if ((a->scope() == nullptr) != (b->scope() == nullptr)) {
      return false;
    }
    if (a->type() == Apply && a->has(fact_binding)) {
      if (const binding of_a(a); of_a.row() != nullptr && !of_a.indices().empty()) {
        return equal_binding_nodes(a, of_a, b, binding(b));
      }
      if (const binding of_b(b); of_b.row() != nullptr && !of_b.indices().empty()) {
        return equal_binding_nodes(a, binding(a), b, of_b);
      }
    }
    return equal_content(a, b) && (a->scope() == nullptr || equal(a->scope(), b->scope()));
  }

 private:
  // What bind_pairs() changed, to be taken back by leave().
  struct mark {
    bound_names::mark left;
    bound_names::mark right;
    int renamed;
  };

  mark here() const { return {left_.here(), right_.here(), renamed_}; }

  void leave(const mark& before) {
    left_.leave(before.left);
    right_.leave(before.right);
    renamed_ = before.renamed;
  }

  void bind_pair(term_ptr a, term_ptr b) {
    left_.bind(a);
    right_.bind(b);
    renamed_ += a->bare() != b->bare() ? 1 : 0;
  }

  // Pairs of variables are bound together; any other pair is compared as terms and binds nothing.
  bool extend(term_span a, term_span b) {
    if (a.size() != b.size()) {
      return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (a[i]->type() == Var && b[i]->type() == Var) {
        bind_pair(a[i], b[i]);
      } else if (!equal(a[i], b[i])) {
        return false;
      }
    }
    return true;
  }

  // Two nodes of which one at least binds indices: what lies inside is compared under pairs of them, the scope too.
  [[gnu::noinline]] bool equal_binding_nodes(term_ptr a, const binding& of_a, term_ptr b, const binding& of_b) {
    if (of_a.row() != of_b.row()) {
      return false;
    }
    if (of_a.indices().size() != of_b.indices().size()) {
      return names_nothing_bound(a, of_a, b, of_b) && equal_content(a, b) &&
             (a->scope() == nullptr || equal(a->scope(), b->scope()));
    }
    const auto part = [&](term_ptr x, term_ptr y, bool is_inside) {
      return is_inside ? equal_inside(of_a.indices(), x, of_b.indices(), y) : equal(x, y);
    };
    return all_parts_in_step(a, of_a, b, of_b, part) &&
           (a->scope() == nullptr || equal_inside(of_a.indices(), a->scope(), of_b.indices(), b->scope()));
  }

  bool equal_inside(term_span indices_a, term_ptr a, term_span indices_b, term_ptr b) {
    const mark outside = here();
    for (std::size_t i = 0; i < indices_a.size(); ++i) {
      bind_pair(indices_a[i], indices_b[i]);
    }
    const bool same = equal(a, b);
    leave(outside);
    return same;
  }

  // One notation read under different surroundings: under forall (n) the index of sum_{i < n} is i, at the top of a
  // formula nothing tells. They are one where they are written alike and their names come from nowhere else.
  bool names_nothing_bound(term_ptr a, const binding& of_a, term_ptr b, const binding& of_b) const {
    if (of_a.row()->kind != binding_kind::index_part || (!of_a.guards_any() && !of_b.guards_any())) {
      return false;
    }
    const auto unbound = [](const bound_names& around, term_ptr t) { return (around.mask() & t->name_mask()) == 0; };
    return a->bare() == b->bare() && unbound(left_, a) && unbound(right_, b);
  }

  bool equal_content(term_ptr a, term_ptr b) {
    switch (a->type()) {
      case Var:
        return equal_variables(a, b);
      case Apply:
        return equal(a->left(), b->left()) && equal(a->right(), b->right());
      case Lambda:
      case Quant:
        return equal_binding(a, b);
      case TermList:
        return equal_lists(a->elements(), b->elements());
      case FreeVarTag:
        return equal_lists(a->vars(), b->vars()) && equal(a->body(), b->body());
      default:
        return a->bare() == b->bare();
    }
  }

  // The newest binding of either name must be one and the same; free variables are equal by name.
  bool equal_variables(term_ptr a, term_ptr b) const {
    const int bound = left_.newest(a);
    return bound == right_.newest(b) && (bound != bound_names::unbound || a->bare() == b->bare());
  }

  [[gnu::noinline]] bool equal_binding(term_ptr a, term_ptr b) {
    if (a->type() == Quant ? a->quant() != b->quant() : !lambda_var_type_list_eqb(a->var_types(), b->var_types())) {
      return false;
    }
    const mark before = here();
    const bool same =
        extend(a->vars(), b->vars()) && (a->type() == Quant || equal_conditions(a, b)) && equal(a->body(), b->body());
    leave(before);
    return same;
  }

  bool equal_conditions(term_ptr a, term_ptr b) {
    if (a->condition() == nullptr || b->condition() == nullptr) {
      return a->condition() == b->condition();
    }
    return equal(a->condition(), b->condition());
  }

  bool equal_lists(term_span a, term_span b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [this](term_ptr x, term_ptr y) { return equal(x, y); });
  }

  bound_names left_;
  bound_names right_;
  int renamed_ = 0;  // pairs whose two names differ
  bool remember_;
  std::unordered_set<node_pair, node_pair_hasher> known_;
};

// The hash that goes with the walk above. A bound variable counts by its distance to its binding, so that the hash of a
// part does not depend on what is bound around it unless that occurs in it.
class alpha_hash_walk {
 public:
  explicit alpha_hash_walk(bool remember) : remember_(remember) {}

  std::uint64_t hash(term_ptr t) {
    if (t->type() != Apply && t->children().empty() && !t->has_meta()) {
      return leaf_hash(t);
    }
    const auto found = [&] { return node_hash(t); };
    return remember_ ? known_.get(t, found, bound_.number_for(t)) : found();
  }

 private:
  std::uint64_t leaf_hash(term_ptr t) const {
    if (t->type() != Var) {
      return t->bare()->hash();
    }
    const int position = bound_.newest(t);
    return position == bound_names::unbound ? t->bare()->hash()
                                            : mix(11, bound_.size() - static_cast<unsigned>(position));
  }

  // Opens the bindings of the list and hashes what is no variable.
  std::uint64_t open(std::uint64_t value, term_span vars) {
    for (term_ptr var : vars) {
      if (var->type() == Var) {
        bound_.bind(var);
        value = mix(value, 13);
      } else {
        value = mix(value, hash(var));
      }
    }
    return value;
  }

  std::uint64_t node_hash(term_ptr t) {
    const binding b(t);
    if (b.row() != nullptr && may_be_read_otherwise(t, b)) {
      return mix(t->blind_hash(), 23);
    }
    const term_span indices = b.indices();
    std::uint64_t value = static_cast<std::uint64_t>(t->type());
    if (!indices.empty()) {
      value = mix(value, indices.size());
      for_each_part(t, b, [&](term_ptr part, bool is_inside) {
        value = mix(value, is_inside ? hash_under(indices, part) : hash(part));
      });
      value = mix(value, static_cast<std::uint64_t>(t->head()));
    } else {
      value = t->children().empty() ? mix(value, leaf_hash(t)) : content_hash(t, value);
    }
    return t->scope() == nullptr ? value : mix(value, hash_under(indices, t->scope()) + 17);
  }

  // An index part whose form does not tell the index is one thing under the binders of some of its names, and another
  // without; the two may be equal.
  static bool may_be_read_otherwise(term_ptr t, const binding& b) {
    if (b.row()->kind != binding_kind::index_part) {
      return false;
    }
    const term_ptr part = t->argument(b.row()->regions[0] == region::index ? 0 : 1);
    switch (index_form_of(part, b.indices())) {
      case index_form::relation:
        return b.guards_any();
      case index_form::chain:
        return part->argument(1)->elements()[0]->name_mask() != 0;
      default:
        return part->type() != Var;
    }
  }

  std::uint64_t hash_under(term_span indices, term_ptr t) {
    const bound_names::mark outside = bound_.here();
    const std::uint64_t opened = open(0, indices);
    const std::uint64_t value = mix(opened, hash(t));
    bound_.leave(outside);
    return value;
  }

  std::uint64_t content_hash(term_ptr t, std::uint64_t value) {
    if (t->type() != Lambda && t->type() != Quant) {
      for (term_ptr child : t->children()) {
        value = mix(value, hash(child));
      }
      return value;
    }
    const bound_names::mark before = bound_.here();
    value = open(t->type() == Quant ? mix(value, t->quant()) : value, t->vars());
    if (t->type() == Lambda && t->condition() != nullptr) {
      value = mix(value, hash(t->condition()) + 19);
    }
    value = mix(value, hash(t->body()));
    bound_.leave(before);
    return value;
  }

  bound_names bound_;
  bool remember_;
  node_memo<std::uint64_t> known_;
};

}  // namespace

bool term_eqb(term_ptr a, term_ptr b) {
  if (a == b) {
    return true;
  }
  if (a == nullptr || b == nullptr) {
    report_error("Error: alpha_eq_term visiting NULL pointer\n");
    return false;
  }
  if (a->blind_hash() != b->blind_hash()) {
    return false;
  }
  if (!a->has(fact_binding)) {
    return a->bare() == b->bare() &&
           (a->has(fact_scope) ? alpha_walk(a->size() >= worth_remembering).equal(a, b) : !b->has(fact_scope));
  }
  return alpha_walk(a->size() >= worth_remembering).equal(a, b);
}

bool alpha_equivalent(term_ptr a, term_ptr b) { return term_eqb(a, b); }

bool term_eqb_pure(term_ptr a, term_ptr b) {
  if (a == b) {
    return true;
  }
  if (a == nullptr || b == nullptr) {
    report_error("Error: term_eqb_pure visiting NULL pointer\n");
    return false;
  }
  return a->bare() == b->bare();
}

bool term_list_eqb_pure(term_span a, term_span b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), term_eqb_pure);
}

std::uint64_t alpha_hash(term_ptr t) {
  if (t == nullptr) {
    return 0;
  }
  if (!t->has(fact_binding)) {
    return t->bare()->hash();
  }
  return state().alpha_hashes.get(t, [t] { return alpha_hash_walk(t->size() >= worth_remembering).hash(t); });
}

// ---- Lists.

bool term_list_contains(term_span list, term_ptr t) { return term_list_nth(list, t) >= 0; }

bool term_list_overlaps(term_span a, term_span b) {
  return std::any_of(b.begin(), b.end(), [a](term_ptr t) { return term_list_contains(a, t); });
}

int term_list_nth(term_span list, term_ptr t) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (term_eqb(list[i], t)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

void term_list_replace_nth(term_list& list, term_ptr t, int n) {
  const std::size_t position = n < 0 ? 0 : static_cast<std::size_t>(n);
  if (position >= list.size()) {
    report_error("Error: term_list_replace_nth has invalid argument\n");
    return;
  }
  if (t == nullptr) {
    report_error("Error: copy_term visiting NULL pointer\n");
    return;
  }
  list[position] = t;
}

void term_list_remove(term_ptr t, term_list& list) {
  if (t != nullptr) {
    std::erase_if(list, [t](term_ptr element) { return term_eqb(element, t); });
  }
}

void term_list_remove_multiple(term_span vars, term_list& list) {
  for (term_ptr var : vars) {
    term_list_remove(var, list);
  }
}

void term_list_dedup(term_list& list) {
  ordered_terms seen;
  std::erase_if(list, [&seen](term_ptr t) {
    const term_ptr key = t == nullptr ? nullptr : t->bare();
    const bool again = seen.contains(key);
    seen.add(key);
    return again;
  });
}

}  // namespace vetro

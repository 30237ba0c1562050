// Equality of terms up to bound names: a walk over both terms at once, with the names bound on the way on either side.
//
// Where nothing is bound, a term equals itself and nothing else (soft types aside), so addresses and hashes end most
// walks before they begin. Under bindings equal addresses mean something only if no renamed name can occur below.
#include "term/compare.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "term/index_variables.h"
#include "term/report.h"
#include "term/state.h"
#include "term/walk_tools.h"

namespace vetro {
namespace {

constexpr std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  hash ^= value + 0x9e3779b97f4a7c15ULL + (hash << 6U) + (hash >> 2U);
  hash *= 0xc4ceb9fe1a85ec53ULL;
  return hash ^ (hash >> 29U);
}

// Two nodes compared under one state of the bindings.
struct compared_pair {
  term_ptr a;
  term_ptr b;
  std::uint64_t bindings;
  bool operator==(const compared_pair&) const = default;
};

struct pair_hasher {
  std::size_t operator()(const compared_pair& p) const {
    return mix(mix(mix(1, p.a->hash()), p.b->hash()), p.bindings);
  }
};

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
    if (!touched && a->hash() != b->hash() && !a->has(fact_binding) && !b->has(fact_binding)) {
      return false;
    }
    // One difference ends the whole walk, so a pair that was met before is known to be equal.
    if (remember_ && a->size() > 8 && !known_.insert({a, b, touched ? bindings_ : 0}).second) {
      return true;
    }
    return a->has_meta() || b->has_meta() ? equal_with_meta(a, b) : equal_content(a, b);
  }

 private:
  // What extend() changed, to be taken back by leave().
  struct mark {
    std::size_t count;
    std::uint64_t bindings;
    int renamed;
  };

  mark here() const { return {left_.size(), bindings_, renamed_}; }

  void leave(const mark& before) {
    left_.release(before.count);
    right_.release(before.count);
    bindings_ = before.bindings;
    renamed_ = before.renamed;
  }

  // The variables of a list that may be called anything; all of them where nothing is said.
  using renamable = std::optional<term_list>;

  static bool may_rename(const renamable& names, term_ptr var) {
    const auto same = [var](term_ptr name) { return name->bare() == var->bare(); };
    return !names.has_value() || std::any_of(names->begin(), names->end(), same);
  }

  // Pairs of variables are bound together; any other pair is compared as terms and binds nothing.
  bool extend(term_span a, term_span b, const renamable& names_a = {}, const renamable& names_b = {}) {
    if (a.size() != b.size()) {
      return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
      const bool variables = a[i]->type() == Var && b[i]->type() == Var;
      if (!variables || !may_rename(names_a, a[i]) || !may_rename(names_b, b[i])) {
        if (!equal(a[i], b[i])) {
          return false;
        }
        continue;
      }
      left_.bind(a[i]);
      right_.bind(b[i]);
      renamed_ += a[i]->bare() != b[i]->bare() ? 1 : 0;
      bindings_ = ++last_bindings_;
    }
    return true;
  }

  // Of a big operator only the indices are names to choose; the other binders stand for themselves.
  bool extend_implicit(term_ptr a, term_ptr b) {
    if (a->binders() == b->binders() && renamed_ == 0) {
      return extend(a->binders(), b->binders());
    }
    return extend(a->binders(), b->binders(), big_operator_indices(a), big_operator_indices(b));
  }

  [[gnu::noinline]] bool equal_with_meta(term_ptr a, term_ptr b) {
    if ((a->scope() == nullptr) != (b->scope() == nullptr)) {
      return false;
    }
    const mark before = here();
    const bool same =
        extend_implicit(a, b) && equal_content(a, b) && (a->scope() == nullptr || equal(a->scope(), b->scope()));
    leave(before);
    return same;
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
  int renamed_ = 0;                  // pairs whose two names differ
  std::uint64_t bindings_ = 0;       // number of the present state of the bindings, 0 for none
  std::uint64_t last_bindings_ = 0;  // newest such number
  bool remember_;
  std::unordered_set<compared_pair, pair_hasher> known_;
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
    if (!remember_) {
      return node_hash(t);
    }
    auto& known = (bound_.mask() & t->name_mask()) == 0 ? closed_ : levels_.back();
    const auto found = known.find(t);
    if (found != known.end()) {
      return found->second;
    }
    const std::uint64_t value = node_hash(t);
    ((bound_.mask() & t->name_mask()) == 0 ? closed_ : levels_.back()).emplace(t, value);
    return value;
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
        levels_.emplace_back();
        value = mix(value, 13);
      } else {
        value = mix(value, hash(var));
      }
    }
    return value;
  }

  void close(std::size_t count) {
    levels_.resize(levels_.size() - (bound_.size() - count));
    bound_.release(count);
  }

  std::uint64_t node_hash(term_ptr t) {
    const std::size_t before = bound_.size();
    std::uint64_t value = open(static_cast<std::uint64_t>(t->type()), t->binders());
    value = t->children().empty() ? mix(value, leaf_hash(t)) : content_hash(t, value);
    if (t->scope() != nullptr) {
      value = mix(value, hash(t->scope()) + 17);
    }
    close(before);
    return value;
  }

  std::uint64_t content_hash(term_ptr t, std::uint64_t value) {
    if (t->type() != Lambda && t->type() != Quant) {
      for (term_ptr child : t->children()) {
        value = mix(value, hash(child));
      }
      return value;
    }
    const std::size_t before = bound_.size();
    value = open(t->type() == Quant ? mix(value, t->quant()) : value, t->vars());
    if (t->type() == Lambda && t->condition() != nullptr) {
      value = mix(value, hash(t->condition()) + 19);
    }
    value = mix(value, hash(t->body()));
    close(before);
    return value;
  }

  using known_hashes = std::unordered_map<term_ptr, std::uint64_t>;
  bound_names bound_;
  bool remember_;
  known_hashes closed_;                                              // parts that no binding around them touches
  std::vector<known_hashes> levels_ = std::vector<known_hashes>(1);  // the others, for each state of the bindings
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
  if (!a->has(fact_meta) && !b->has(fact_meta) && !a->has(fact_binding)) {
    return false;
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
    return t->hash();
  }
  auto& cache = state().alpha_hashes;
  const auto found = cache.find(t);
  if (found != cache.end()) {
    return found->second;
  }
  const std::uint64_t value = alpha_hash_walk(t->size() >= worth_remembering).hash(t);
  cache.emplace(t, value);
  return value;
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

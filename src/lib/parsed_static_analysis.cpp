// Readings that only the context decides: a pair where a set is expected is an open interval, the imaginary unit where
// a bound variable is expected is the variable i. Also folds spellings: a ≡ b into a = b, log(e, x) into ln(x).
#include <algorithm>
#include <array>

#include "lib/application.h"
#include "lib/semantic_term.h"
#include "term/substitute/plain.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// Which arguments of a head are read as sets.
struct set_positions {
  int head;
  std::size_t arity;
  bool first;
  bool second;
};

constexpr set_positions set_position_table[] = {
    {Belong, 2, false, true},         {NotBelong, 2, false, true},
    {Subset, 2, true, true},          {Union, 2, true, true},
    {Inter, 2, true, true},           {SetMinus, 2, true, true},
    {CartesianProd, 2, true, true},   {ContinuousFuncOn, 2, false, true},
    {DiffableFuncOn, 2, false, true}, {IntegrableFuncOn, 2, false, true},
    {MaximumPointOn, 2, false, true}, {MinimumPointOn, 2, false, true},
    {OscillationOn, 2, false, true},  {PowerSet, 1, true, false},
    {SetUnion, 1, true, false},       {SetInter, 1, true, false},
};

constexpr auto set_row_of_head = [] {
  std::array<signed char, Defined + 1> rows{};
  rows.fill(-1);
  signed char next = 0;
  for (const set_positions& row : set_position_table) {
    rows[static_cast<std::size_t>(row.head)] = next++;
  }
  return rows;
}();

const set_positions* set_positions_of(const application& app) {
  const int head = app.head_number();
  if (head < 0 || head > Defined || set_row_of_head[static_cast<std::size_t>(head)] < 0) {
    return nullptr;
  }
  const set_positions& row = set_position_table[set_row_of_head[static_cast<std::size_t>(head)]];
  return row.arity == app.count ? &row : nullptr;
}

bool is_unit(term_ptr t) { return t->type() == Const && t->constant() == I; }

// Whether a subterm exactly equal to sought stands anywhere in t. visited holds nodes that are known to be without it.
bool occurs(term_ptr sought, term_ptr t, node_set& visited) {
  if (t->bare() == sought->bare()) {
    return true;
  }
  if (t->children().empty() && t->scope() == nullptr) {
    return false;
  }
  if (!visited.insert(t)) {
    return false;
  }
  for (term_ptr child : t->children()) {
    if (child != nullptr && occurs(sought, child, visited)) {
      return true;
    }
  }
  return t->scope() != nullptr && occurs(sought, t->scope(), visited);
}

// subst_term of the constant I by the variable i, over and over inside one term: in a tower of sums each level renames
// its index in all of them. What has nothing left to rename is remembered, so that the tower costs one walk.
class unit_renamer {
 public:
  // Null where subst_term gives null.
  term_ptr rename(term_ptr t) { return t->has(fact_empty_list) ? subst_term(unit_, index_, t) : walk(t); }

 private:
  term_ptr walk(term_ptr t) {
    if (t->bare() == unit_) {
      return index_;
    }
    if (t->children().empty() || settled_.contains(t)) {
      return t;
    }
    if (!t->binders().empty() || binds_either(t)) {
      ++left_to_substitution_;
      return subst_term(unit_, index_, t);
    }
    const std::size_t before = left_to_substitution_;
    constexpr unsigned parts =
        walk_apply | walk_condition | walk_body | walk_tag_vars | walk_elements | keep_binders | keep_scope;
    term_ptr result = map_children(t, parts, [this](term_ptr below) { return walk(below); });
    if (left_to_substitution_ == before) {
      settled_.insert(result);
    }
    return result;
  }

  // A quantifier or a function whose own variable is I or i: renaming stops there, or draws a fresh name each time.
  bool binds_either(term_ptr t) const {
    return (t->type() == Lambda || t->type() == Quant) &&
           std::any_of(t->vars().begin(), t->vars().end(),
                       [this](term_ptr var) { return var->bare() == unit_ || var->bare() == index_; });
  }

  term_ptr unit_ = mk_const(I);
  term_ptr index_ = mk_var("i");
  node_set settled_;
  std::size_t left_to_substitution_ = 0;
};

class static_analysis {
 public:
  explicit static_analysis(term_ptr root) : known_(root) {}

  term_ptr analyze(term_ptr t, bool set_context) {
    if (!t->has(fact_context)) {  // nothing below is a pair, a ≡, a logarithm or the imaginary unit
      return t;
    }
    const auto analyzed = [&] { return bind_unit(with_analyzed_scope(analyze_content(t, set_context))); };
    return known_.get(t, analyzed, set_context ? 1 : 0);
  }

 private:
  term_ptr analyze_content(term_ptr t, bool set_context) {
    const auto as_term = [this](term_ptr part) { return analyze(part, false); };
    switch (t->type()) {
      case Apply:
        return analyze_apply(t, set_context);
      case Pred:
        return t->pred() == IdentEq ? with_meta(mk_pred(Eq), t->meta()) : t;
      case Lambda:
        return map_children(t, walk_lambda_vars | walk_body | keep_meta, as_term);
      case Quant:
      case FreeVarTag:
        return map_children(t, walk_quant_vars | walk_tag_vars | walk_body | keep_meta, as_term);
      case TermList:
        return map_children(t, walk_elements | keep_meta, [&](term_ptr part) { return analyze(part, set_context); });
      default:
        return t;
    }
  }

  term_ptr analyze_apply(term_ptr t, bool set_context) {
    const application app = application_of(t);
    if (set_context && app.count == 1 && app.head_number() == Tuple && app.args[0]->type() == TermList &&
        app.args[0]->elements().size() == 2) {
      return interval_of_pair(t, app.args[0]->elements());
    }
    if (const set_positions* sets = set_positions_of(app); sets != nullptr) {
      if (sets->arity == 1) {
        return reapplied(t, t->left(), analyze(app.args[0], sets->first));
      }
      term_ptr first = analyze(app.args[0], sets->first);
      term_ptr second = analyze(app.args[1], sets->second);
      return reapplied(t, reapplied(t->left(), app.head, first), second);
    }
    term_ptr left = analyze(t->left(), false);
    term_ptr right = analyze(t->right(), false);
    return natural_logarithm(reapplied(t, left, right));
  }

  term_ptr interval_of_pair(term_ptr t, term_span pair) {
    term_ptr low = analyze(pair[0], false);
    term_ptr high = analyze(pair[1], false);
    return with_meta(mk_apply(mk_apply(mk_oper(IntervalLoRo), low), high), t->meta());
  }

  static term_ptr natural_logarithm(term_ptr t) {
    term_ptr left = t->left();
    const bool base_e = is_apply(left) && is_oper(left->left(), Log) && is_constant(left->right(), E);
    return base_e ? reapplied(t, mk_oper(Ln), t->right()) : t;
  }

  term_ptr with_analyzed_scope(term_ptr t) {
    return t->scope() == nullptr ? t : with_scope(t, analyze(t->scope(), false));
  }

  // The constant I in the place of a bound variable is meant as the variable i, in the whole node.
  term_ptr bind_unit(term_ptr t) {
    if (t->type() != Apply) {
      return t;
    }
    const application app = application_of(t);
    if (app.count != 3) {
      return t;
    }
    const int head = app.head_number();
    bool bound = false;
    if (head == BigSumSup || head == BigProdSup || head == BigUnionSup || head == BigInterSup) {
      bound = unit_is_index(app.args[0], app.args[1]);
    } else if (is_function_limit(static_cast<oper_type>(head))) {
      bound = is_unit(app.args[0]);
    }
    if (!bound) {
      return t;
    }
    term_ptr renamed = renamer_.rename(t);
    return renamed == nullptr ? t : renamed;
  }

  // Whether the index of a sum over lower = start is the constant I: the first side of the equation, from the left,
  // that is a variable or I and stands neither in the other side nor in the upper bound.
  bool unit_is_index(term_ptr lower, term_ptr upper) {
    const auto equation = atomic_prop_split(lower);
    if (!equation || equation->pred != Eq || equation->t2 == nullptr) {
      return false;
    }
    if (!is_unit(equation->t1) && !is_unit(equation->t2)) {
      return false;
    }
    const auto is_index = [&](term_ptr side, term_ptr other) {
      return (is_var(side) || is_unit(side)) && !stands_in(side, other) && !stands_in(side, upper);
    };
    if (is_index(equation->t1, equation->t2)) {
      return is_unit(equation->t1);
    }
    return is_index(equation->t2, equation->t1) && is_unit(equation->t2);
  }

  // Sums nested in upper bounds ask for I again and again: what was found to be without it is remembered.
  bool stands_in(term_ptr sought, term_ptr t) {
    if (is_var(sought)) {
      node_set visited;
      return (name_bit(sought->name()) & t->name_mask()) != 0 && occurs(sought, t, visited);
    }
    if (occurs(sought, t, without_unit_)) {
      without_unit_.clear();
      return true;
    }
    return false;
  }

  walk_memo<term_ptr> known_;  // as a term, and as a set
  unit_renamer renamer_;
  node_set without_unit_;
};

}  // namespace

term_ptr parsed_static_analyze_term(term_ptr raw) {
  return raw == nullptr ? nullptr : static_analysis(raw).analyze(raw, false);
}

}  // namespace vetro

// Shape simplification, checked subterm rewriting and negation normal forms.
//
// Rewriting is binder-safe: a rule is applied under a binder only where the binder binds no variable of the rule. Every
// node with binders counts, and so do the entries of quantifiers.
#include "qv_solver_list/algebra/solver_shape_simpl.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/report.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/variables/entries.h"

namespace vetro {
namespace {

// ---- Innermost differences of two terms.

struct term_pair {
  term_ptr a;
  term_ptr b;
};
using term_pair_acc = std::vector<term_pair>;

// True for a node whose parts may not be compared one by one. 1 + 2 + ... + n is not its first part plus the rest, and
// a domain or definedness is one of the expression as written, which arithmetic does not keep.
bool is_whole(term_ptr t) {
  if (t->type() != Apply) {
    return false;
  }
  if (is_oper(t->left(), Dom) || is_pred(t->left(), Defined)) {
    return true;
  }
  if (!t->has(fact_ellipsis)) {
    return false;
  }
  term_ptr head = t->left();
  while (head->type() == Apply) {
    head = head->left();
  }
  return head->type() == Oper;
}

bool mentions(term_ptr t, term_ptr var) {
  return is_var(var)
             ? name_occurs(var->name(), t)
             : any_subterm(t, walk_children | walk_scope, [var](term_ptr node) { return node->bare() == var->bare(); });
}

// True when a pair from position `first` on holds one of the variables.
bool pairs_mention(const term_pair_acc& acc, std::size_t first, term_span vars) {
  return std::any_of(acc.begin() + static_cast<std::ptrdiff_t>(first), acc.end(), [vars](const term_pair& pair) {
    return std::any_of(vars.begin(), vars.end(),
                       [&pair](term_ptr var) { return mentions(pair.a, var) || mentions(pair.b, var); });
  });
}

bool same_scope(term_ptr a, term_ptr b) {
  return a->scope() == b->scope() ||
         (a->scope() != nullptr && b->scope() != nullptr && term_eqb(a->scope(), b->scope()));
}

void collect_mismatch_frontier(term_ptr t1, term_ptr t2, term_pair_acc& acc);

// Opens a pair of nodes that bind or guard names at the one part in which they differ. A pair from inside that holds
// one of the names says nothing outside of the node.
void open_binding_pair(term_ptr t1, const binding& b1, term_ptr t2, const binding& b2, term_pair_acc& acc) {
  std::size_t differing = 0;
  term_pair part{nullptr, nullptr};
  bool part_is_inside = false;
  const bool cut_alike = all_parts_in_step(t1, b1, t2, b2, [&](term_ptr x, term_ptr y, bool is_inside) {
    if (!term_eqb(x, y)) {
      ++differing;
      part = {x, y};
      part_is_inside = is_inside;
    }
    return differing < 2;
  });
  if (!cut_alike || differing != 1) {
    return;
  }
  const std::size_t before = acc.size();
  collect_mismatch_frontier(part.a, part.b, acc);
  if (part_is_inside && pairs_mention(acc, before, touched_names(t1))) {
    acc.resize(before);
  }
}

// Opens the pair one level where its shape allows; adds nothing otherwise.
void open_pair(term_ptr t1, term_ptr t2, term_pair_acc& acc) {
  switch (t1->type()) {
    case Apply: {
      const binding b1(t1);
      const binding b2(t2);
      if (b1.row() != nullptr || b2.row() != nullptr) {
        if (same_reading(b1, b2)) {
          open_binding_pair(t1, b1, t2, b2, acc);
        }
        return;
      }
      const bool left_equal = term_eqb(t1->left(), t2->left());
      const bool right_equal = term_eqb(t1->right(), t2->right());
      if (left_equal != right_equal) {
        collect_mismatch_frontier(left_equal ? t1->right() : t1->left(), left_equal ? t2->right() : t2->left(), acc);
      }
      return;
    }
    case Quant:
      if (t1->quant() == t2->quant() && term_list_eqb_pure(t1->vars(), t2->vars())) {
        const std::size_t before = acc.size();
        collect_mismatch_frontier(t1->body(), t2->body(), acc);
        if (pairs_mention(acc, before, entry_names(t1))) {
          acc.resize(before);
        }
      }
      return;
    case TermList:
      if (t1->elements().size() == t2->elements().size()) {
        for (std::size_t i = 0; i < t1->elements().size(); ++i) {
          collect_mismatch_frontier(t1->elements()[i], t2->elements()[i], acc);
        }
      }
      return;
    default:
      return;
  }
}

// Adds the innermost pairs at which the terms differ; the pair itself where it is not opened.
void collect_mismatch_frontier(term_ptr t1, term_ptr t2, term_pair_acc& acc) {
  if (term_eqb(t1, t2)) {
    return;
  }
  const std::size_t before = acc.size();
  if (t1->type() == t2->type() && !is_whole(t1) && !is_whole(t2) && same_scope(t1, t2)) {
    open_pair(t1, t2, acc);
  }
  if (acc.size() == before) {
    acc.push_back({t1, t2});
  }
}

// ---- Checked subterm rewriting.

class rewrite_check {
 public:
  rewrite_check(term_ptr src, term_ptr dest) : src_(src), dest_(dest), rule_vars_(plain_free_variables(src)) {
    const term_list of_dest = plain_free_variables(dest);
    rule_vars_.insert(rule_vars_.end(), of_dest.begin(), of_dest.end());
    term_list_dedup(rule_vars_);
  }

  std::size_t hits() const { return hits_; }
  void reset_hits() { hits_ = 0; }

  // Equality that looks through arithmetic at every level, but for set descriptions that depend on where their parts
  // are defined: these are compared as they are written.
  bool equal(term_ptr left, term_ptr right) {
    if (left == right) {
      return left != nullptr;
    }
    if (left == nullptr || right == nullptr) {
      return false;
    }
    auto& known = equal_[as_written_ ? 1 : 0];
    const auto found = known.find({left, right});
    if (found != known.end()) {
      return found->second;
    }
    const bool answer =
        (as_written_ ? term_eqb(left, right) : comparisons_.equal(left, right)) || equal_by_parts(left, right);
    known.emplace(std::pair{left, right}, answer);
    return answer;
  }

  // Compares every part of t with a side of the rule, the inner ones first. A part that arithmetic has read counts as
  // one in the sum around it, so that a long sum is not read anew for each of its beginnings. Changes no answer.
  void ask_inside_out(term_ptr t, term_ptr side) {
    if (t->children().empty() || !asked_.insert(t).second) {
      return;
    }
    for (term_ptr child : t->children()) {
      if (child != nullptr) {
        ask_inside_out(child, side);
      }
    }
    equal(t, side);
  }

  // The two trees in step: replaced places are hits, all others have to be equal.
  bool matches(term_ptr from, term_ptr to) {
    if (equal(from, src_) && equal(to, dest_)) {
      ++hits_;
      return true;
    }
    if (from == nullptr || to == nullptr || from->type() != to->type() || is_whole(from) || !same_scope(from, to)) {
      return equal(from, to);
    }
    return parts_match(from, to) || equal(from, to);
  }

  // `from` with the replacements made where `to` asks for them; null when the trees do not fit.
  term_ptr candidate(term_ptr from, term_ptr to) {
    if (from == nullptr || to == nullptr) {
      return nullptr;
    }
    if (equal(from, src_)) {
      if (!equal(to, dest_) && equal(from, to)) {
        return from;
      }
      ++hits_;
      return dest_;
    }
    if (equal(from, to)) {
      return from;
    }
    if (from->type() != to->type() || is_whole(from) || !same_scope(from, to)) {
      return nullptr;
    }
    switch (from->type()) {
      case Apply:
        return candidate_of_application(from, to);
      case Quant: {
        if (!same_quantifier(from, to) || crosses_quantifier(from)) {
          return nullptr;
        }
        term_ptr body = candidate(from->body(), to->body());
        return body == nullptr ? nullptr : with_meta(mk_quant(from->quant(), from->vars(), body), from->meta());
      }
      case TermList: {
        if (from->elements().size() != to->elements().size()) {
          return nullptr;
        }
        term_list elements;
        for (std::size_t i = 0; i < from->elements().size(); ++i) {
          elements.push_back(candidate(from->elements()[i], to->elements()[i]));
          if (elements.back() == nullptr) {
            return nullptr;
          }
        }
        return with_meta(mk_term_list(elements), from->meta());
      }
      default:
        return nullptr;
    }
  }

 private:
  struct pair_hash {
    std::size_t operator()(const std::pair<term_ptr, term_ptr>& pair) const {
      return pair.first->hash() * 0x9e3779b97f4a7c15ULL ^ pair.second->hash();
    }
  };

  static bool same_quantifier(term_ptr a, term_ptr b) {
    return a->quant() == b->quant() && term_list_eqb_pure(a->vars(), b->vars());
  }

  bool equal_by_parts(term_ptr left, term_ptr right) {
    if (left->type() != right->type() || is_whole(left) || is_whole(right) || !same_scope(left, right)) {
      return false;
    }
    switch (left->type()) {
      case Apply: {
        const binding of_left(left);
        const binding of_right(right);
        if (of_left.row() == nullptr && of_right.row() == nullptr) {
          return equal(left->left(), right->left()) && equal(left->right(), right->right());
        }
        return same_reading(of_left, of_right) && at_parts_of(left, right, [&] {
                 return all_parts_in_step(left, of_left, right, of_right,
                                          [this](term_ptr a, term_ptr b, bool) { return equal(a, b); });
               });
      }
      case Quant:
        return same_quantifier(left, right) && equal(left->body(), right->body());
      case TermList:
        return std::equal(left->elements().begin(), left->elements().end(), right->elements().begin(),
                          right->elements().end(), [this](term_ptr a, term_ptr b) { return equal(a, b); });
      default:
        return false;
    }
  }

  // Inside of set descriptions whose meaning depends on where their parts are defined no arithmetic is looked through.
  template <class F>
  bool at_parts_of(term_ptr a, term_ptr b, F&& f) {
    const bool outside = as_written_;
    as_written_ = outside || depends_on_domain(a) || depends_on_domain(b);
    const bool result = f();
    as_written_ = outside;
    return result;
  }

  // Nodes that bind or guard names: a rule that speaks of one of these does not reach inside.
  bool binding_parts_match(term_ptr from, const binding& of_from, term_ptr to, const binding& of_to) {
    if (!same_reading(of_from, of_to)) {
      return false;
    }
    const bool stops = crosses(of_from);
    return at_parts_of(from, to, [&] {
      return all_parts_in_step(from, of_from, to, of_to, [&](term_ptr a, term_ptr b, bool is_inside) {
        return is_inside && stops ? equal(a, b) : matches(a, b);
      });
    });
  }

  bool parts_match(term_ptr from, term_ptr to) {
    switch (from->type()) {
      case Apply: {
        const binding of_from(from);
        const binding of_to(to);
        if (of_from.row() != nullptr || of_to.row() != nullptr) {
          return binding_parts_match(from, of_from, to, of_to);
        }
        return matches(from->left(), to->left()) && matches(from->right(), to->right());
      }
      case Quant:
        return same_quantifier(from, to) && !crosses_quantifier(from) && matches(from->body(), to->body());
      case TermList:
        return std::equal(from->elements().begin(), from->elements().end(), to->elements().begin(),
                          to->elements().end(), [this](term_ptr a, term_ptr b) { return matches(a, b); });
      default:
        return false;
    }
  }

  term_ptr candidate_of_application(term_ptr from, term_ptr to) {
    const binding of_from(from);
    const binding of_to(to);
    if (of_from.row() == nullptr && of_to.row() == nullptr) {
      term_ptr left = candidate(from->left(), to->left());
      term_ptr right = left == nullptr ? nullptr : candidate(from->right(), to->right());
      return right == nullptr ? nullptr : with_meta(mk_apply(left, right), from->meta());
    }
    if (!same_reading(of_from, of_to)) {
      return nullptr;
    }
    // The parts in step first, then the node with them in their places.
    const bool stops = crosses(of_from);
    term_list parts;
    const bool fits = at_parts_of(from, to, [&] {
      return all_parts_in_step(from, of_from, to, of_to, [&](term_ptr a, term_ptr b, bool is_inside) {
        parts.push_back(!is_inside || !stops ? candidate(a, b) : (equal(a, b) ? a : nullptr));
        return parts.back() != nullptr;
      });
    });
    if (!fits) {
      return nullptr;
    }
    std::size_t next = 0;
    const term_ptr content = map_parts(from, of_from, [&](term_ptr, bool) { return parts[next++]; });
    return content == from ? from : with_meta(content, from->meta());
  }

  bool crosses_quantifier(term_ptr quantified) const {
    const term_list names = entry_names(quantified);
    return std::any_of(names.begin(), names.end(), [this](term_ptr name) {
      return std::any_of(rule_vars_.begin(), rule_vars_.end(), [name](term_ptr var) { return mentions(name, var); });
    });
  }

  bool crosses(const binding& b) const {
    return b.touches_names() &&
           std::any_of(rule_vars_.begin(), rule_vars_.end(), [&b](term_ptr var) { return b.catches(var); });
  }

  term_ptr src_;
  term_ptr dest_;
  term_list rule_vars_;
  std::size_t hits_ = 0;
  bool as_written_ = false;
  std::unordered_set<term_ptr> asked_;
  poly_rat_comparisons comparisons_;
  std::array<std::unordered_map<std::pair<term_ptr, term_ptr>, bool, pair_hash>, 2> equal_;  // by as_written_
};

// For a new form that equals the replacement only as a whole: builds the replacement and compares.
bool matches_in_context(rewrite_check& check, term_ptr from, term_ptr to) {
  term_ptr candidate = check.candidate(from, to);
  if (candidate == nullptr || check.hits() == 0) {
    return false;
  }
  term_ptr analyzed = parsed_static_analyze_term(candidate);
  if (analyzed == nullptr || reads_pair_as_interval(candidate, analyzed)) {
    return false;
  }
  term_ptr bound = copy_term_with_binders(analyzed);
  return bound != nullptr && check.equal(bound, to);
}

// ---- Negation normal form.

// One run of unfolding. An equivalence is unfolded in both polarities on each level, so results are kept by node.
class unfolder {
 public:
  term_ptr run(term_ptr t) {
    const auto found = done_.find(t);
    if (found != done_.end()) {
      return found->second;
    }
    term_ptr unfolded = unfold(t);
    done_.emplace(t, unfolded);
    return unfolded;
  }

 private:
  term_ptr unfold(term_ptr t);
  term_ptr unfold_negated(term_ptr x);
  term_ptr unfold_negated_connective(const composed_prop& view);

  std::unordered_map<term_ptr, term_ptr> done_;
};

term_ptr negation(term_ptr t) { return make_composed_prop(Not, t, nullptr); }

struct opposite_row {
  pred_type pred;
  pred_type opposite;
};

constexpr opposite_row opposites[] = {{Eq, Neq}, {Neq, Eq},           {Gt, Le},           {Ge, Lt}, {Lt, Ge},
                                      {Le, Gt},  {Belong, NotBelong}, {NotBelong, Belong}};

term_ptr unfolder::unfold_negated_connective(const composed_prop& view) {
  if (view.connect == Not) {
    return view.t2 == nullptr ? run(view.t1) : nullptr;
  }
  if (view.t2 == nullptr) {
    return nullptr;
  }
  term_ptr not_right = run(negation(view.t2));
  if (view.connect == Impl) {
    term_ptr premise = run(view.t1);
    return make_composed_prop(And, premise, not_right);
  }
  term_ptr not_left = run(negation(view.t1));
  if (view.connect == And || view.connect == Or) {
    return make_composed_prop(view.connect == And ? Or : And, not_left, not_right);
  }
  term_ptr left = run(view.t1);
  term_ptr right = run(view.t2);
  term_ptr only_left = make_composed_prop(And, left, not_right);
  term_ptr only_right = make_composed_prop(And, not_left, right);
  return make_composed_prop(Or, only_left, only_right);
}

// The negation of x, pushed inward; null when x is no case of the tables.
term_ptr unfolder::unfold_negated(term_ptr x) {
  if (x->type() == Quant && x->quant() != ExistsUnique) {
    return mk_quant(x->quant() == Forall ? Exists : Forall, x->vars(), run(negation(x->body())));
  }
  if (const auto view = composed_prop_split(x)) {
    return unfold_negated_connective(*view);
  }
  if (const auto view = pred_split(x)) {
    for (const opposite_row& row : opposites) {
      if (row.pred == view->pred) {
        return make_binPred_prop(row.opposite, view->left, view->right);
      }
    }
  }
  return nullptr;
}

term_ptr unfolder::unfold(term_ptr t) {
  if (t->type() == Quant) {
    return mk_quant(t->quant(), t->vars(), run(t->body()));
  }
  const auto view = composed_prop_split(t);
  if (!view) {
    return t;
  }
  if (view->t2 == nullptr) {
    term_ptr pushed = view->connect == Not ? unfold_negated(view->t1) : nullptr;
    return pushed == nullptr ? t : pushed;
  }
  if (view->connect == Impl && is_constant(view->t2, False)) {
    return run(negation(view->t1));
  }
  term_ptr left = run(view->t1);
  term_ptr right = run(view->t2);
  return make_composed_prop(view->connect, left, right);
}

}  // namespace

solve_res solver_shape_simpl(const solver_args& args) {
  if (args.target == nullptr) {
    print_progress("error in shape_simpl, null input\n");
    return {};
  }
  const auto view = pred_split(args.target);
  if (!view || view->pred != Eq) {
    return {};
  }
  term_pair_acc acc;
  collect_mismatch_frontier(view->left, view->right, acc);
  if (acc.empty()) {
    return {bool_res, true, {}};
  }
  // An equation binds the variables of its Landau terms: f(x) = g(x) says nothing about bigO_{x → 0}(f(x)).
  const bool whole = acc.size() == 1 && acc[0].a == view->left && acc[0].b == view->right;
  if (whole || pairs_mention(acc, 0, args.target->binders())) {
    return {};
  }
  solve_res result{termlist_and, false, {}};
  for (const term_pair& pair : acc) {
    result.list.push_back(make_binPred_prop(Eq, pair.a, pair.b));
  }
  return result;
}

bool term_matches_subterm_rewrite(term_ptr from, term_ptr to, term_ptr src, term_ptr dest, std::size_t* rewrite_hits) {
  if (rewrite_hits != nullptr) {
    *rewrite_hits = 0;
  }
  if (from == nullptr || to == nullptr || src == nullptr || dest == nullptr) {
    return false;
  }
  rewrite_check check(src, dest);
  check.ask_inside_out(from, src);
  check.ask_inside_out(to, dest);
  if (!check.matches(from, to) || check.hits() == 0) {
    check.reset_hits();
    if (!matches_in_context(check, from, to)) {
      return false;
    }
  }
  if (rewrite_hits != nullptr) {
    *rewrite_hits = check.hits();
  }
  return true;
}

term_ptr solver_not_unfold_term(term_ptr t) { return t == nullptr ? nullptr : unfolder().run(t); }

}  // namespace vetro

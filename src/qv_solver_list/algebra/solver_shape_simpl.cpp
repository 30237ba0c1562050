// Shape simplification: an equation of two similar terms is reduced to the equations at the innermost places where they
// differ.
#include <algorithm>
#include <vector>

#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/openable.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/report.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/variables/entries.h"

namespace vetro {
namespace {

struct term_pair {
  term_ptr a;
  term_ptr b;
};
using term_pair_acc = std::vector<term_pair>;

// True when a pair from position `first` on holds one of the variables.
bool pairs_mention(const term_pair_acc& acc, std::size_t first, term_span vars) {
  return std::any_of(acc.begin() + static_cast<std::ptrdiff_t>(first), acc.end(), [vars](const term_pair& pair) {
    return std::any_of(vars.begin(), vars.end(),
                       [&pair](term_ptr var) { return mentions(pair.a, var) || mentions(pair.b, var); });
  });
}

// What may be asked in place of a set description, a domain or a definedness: an equation between parts that do not
// matter for where these are defined, and one that is assumed.
struct frontier_rules {
  const solve_data* sdata;
  likeness asked_for = likeness::value;

  bool is_assumed(const term_pair& pair) const {
    if (sdata == nullptr) {
      return false;
    }
    term_ptr equation = make_binPred_prop(Eq, pair.a, pair.b);
    term_ptr turned = make_binPred_prop(Eq, pair.b, pair.a);
    return facts_of(*sdata).holds(equation) || facts_of(*sdata).holds(turned);
  }

  // The pairs from position `first` on.
  bool allow(const term_pair_acc& acc, std::size_t first) const {
    return std::all_of(acc.begin() + static_cast<std::ptrdiff_t>(first), acc.end(), [this](const term_pair& pair) {
      return may_replace(pair.a, pair.b, asked_for) || (asked_for == likeness::everywhere && is_assumed(pair));
    });
  }
};

void collect_mismatch_frontier(term_ptr t1, term_ptr t2, term_pair_acc& acc, frontier_rules& rules);

// Opens a pair of nodes that bind or guard names at the one part in which they differ. A pair from inside that holds
// one of the names says nothing outside of the node.
void open_binding_pair(term_ptr t1, const binding& b1, term_ptr t2, const binding& b2, term_pair_acc& acc,
                       frontier_rules& rules) {
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
  collect_mismatch_frontier(part.a, part.b, acc, rules);
  if (part_is_inside && pairs_mention(acc, before, touched_names(t1))) {
    acc.resize(before);
  }
}

// Opens the pair one level where its shape allows; adds nothing otherwise.
void open_pair(term_ptr t1, term_ptr t2, term_pair_acc& acc, frontier_rules& rules) {
  switch (t1->type()) {
    case Apply: {
      const binding b1(t1);
      const binding b2(t2);
      if (b1.row() != nullptr || b2.row() != nullptr) {
        if (same_reading(b1, b2)) {
          open_binding_pair(t1, b1, t2, b2, acc, rules);
        }
        return;
      }
      const bool left_equal = term_eqb(t1->left(), t2->left());
      const bool right_equal = term_eqb(t1->right(), t2->right());
      if (left_equal != right_equal) {
        collect_mismatch_frontier(left_equal ? t1->right() : t1->left(), left_equal ? t2->right() : t2->left(), acc,
                                  rules);
      }
      return;
    }
    case Quant:
      if (t1->quant() == t2->quant() && term_list_eqb_pure(t1->vars(), t2->vars())) {
        const std::size_t before = acc.size();
        collect_mismatch_frontier(t1->body(), t2->body(), acc, rules);
        if (pairs_mention(acc, before, entry_names(t1))) {
          acc.resize(before);
        }
      }
      return;
    case TermList:
      if (t1->elements().size() == t2->elements().size()) {
        for (std::size_t i = 0; i < t1->elements().size(); ++i) {
          collect_mismatch_frontier(t1->elements()[i], t2->elements()[i], acc, rules);
        }
      }
      return;
    default:
      return;
  }
}

// Adds the innermost pairs at which the terms differ; the pair itself where it is not opened.
void collect_mismatch_frontier(term_ptr t1, term_ptr t2, term_pair_acc& acc, frontier_rules& rules) {
  if (term_eqb(t1, t2)) {
    return;
  }
  const std::size_t before = acc.size();
  if (t1->type() == t2->type() && !is_dotted_list(t1) && !is_dotted_list(t2) && same_scope(t1, t2)) {
    const likeness outside = rules.asked_for;
    rules.asked_for = likeness_inside(t1, outside);
    open_pair(t1, t2, acc, rules);
    if (rules.asked_for != outside && !rules.allow(acc, before)) {
      acc.resize(before);
    }
    rules.asked_for = outside;
  }
  if (acc.size() == before) {
    acc.push_back({t1, t2});
  }
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
  frontier_rules rules{args.sdata};
  collect_mismatch_frontier(view->left, view->right, acc, rules);
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

}  // namespace vetro

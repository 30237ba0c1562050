// A term and its analysed form in step.
#include "lib/interval_reading.h"

#include <algorithm>
#include <unordered_set>

#include "lib/application.h"
#include "lib/semantic_term.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/pattern_match.h"
#include "term/reserved.h"
#include "term/substitute/instantiate.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// Walks a term and its analysed form, which has the same shape but for what the analysis changed.
class interval_search {
 public:
  bool differ(term_ptr t, term_ptr analyzed) {
    if (t == analyzed || t == nullptr || analyzed == nullptr || !done_.insert({t, analyzed}).second) {
      return false;
    }
    if (is_pair(t) && !is_pair(analyzed)) {
      return true;
    }
    const term_span a = t->children();
    const term_span b = analyzed->children();
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
      if (differ(a[i], b[i])) {
        return true;
      }
    }
    return differ(t->scope(), analyzed->scope());
  }

 private:
  std::unordered_set<node_pair, node_pair_hasher> done_;
};

// What a function is defined on, and what its properties hold on, can only be a set. The analysis leaves a pair there
// as it is written.
constexpr pred_type properties_on_a_set[] = {ConvexFuncOn,
                                             ConcaveFuncOn,
                                             BoundedFuncOn,
                                             BoundedAboveFuncOn,
                                             BoundedBelowFuncOn,
                                             MonoIncFuncOn,
                                             MonoDecFuncOn,
                                             StrictMonoIncFuncOn,
                                             StrictMonoDecFuncOn,
                                             PiecewiseContinuousFuncOn,
                                             UniformContinuousFuncOn,
                                             LipschitzContinuousFuncOn,
                                             LeftDiffableFuncOn,
                                             RightDiffableFuncOn,
                                             ContinuouslyDiffableFuncOn,
                                             SmoothFuncOn,
                                             SquareIntegrableFuncOn};

bool has_places_of_sets(const application& app) {
  const int head = app.head_number();
  return (app.count == 3 && head == IsFuncOn) ||
         (app.count == 2 && std::find(std::begin(properties_on_a_set), std::end(properties_on_a_set), head) !=
                                std::end(properties_on_a_set));
}

// Looks for a pair that stands where a point may be meant.
class point_search {
 public:
  explicit point_search(term_ptr pair) : pair_(pair) {}

  bool found_in(term_ptr t) {
    if (t == nullptr || (t->name_mask() & pair_->name_mask()) == 0 || !done_.insert(t)) {
      return false;
    }
    if (t->bare() == pair_ || found_in(t->scope())) {
      return true;
    }
    const application app = t->type() == Apply ? application_of(t) : application();
    if (!has_places_of_sets(app)) {
      return std::any_of(t->children().begin(), t->children().end(), [this](term_ptr part) { return found_in(part); });
    }
    return found_in(app.args[0]) || std::any_of(&app.args[1], &app.args[app.count],
                                                [this](term_ptr set) { return set->bare() != pair_ && found_in(set); });
  }

 private:
  term_ptr pair_;
  node_set done_;
};

// The analysed instance of the quantifier for one binder; null when there is none.
term_ptr analyzed_instance(term_ptr quantified, term_ptr binder, term_ptr value) {
  return parsed_static_analyze_term(instantiate_binders(quantified, {&binder, 1}, {&value, 1}));
}

}  // namespace

bool is_pair(term_ptr t) { return is_apply(t) && is_oper(t->left(), Tuple); }

bool reads_pair_as_interval(term_ptr t, term_ptr analyzed) { return interval_search().differ(t, analyzed); }

// Asked with numbers as ends: they meet no bound name, so that asking draws no fresh names.
term_ptr value_in_place(term_ptr quantified, term_ptr binder, term_ptr value) {
  term_ptr low = nullptr;
  term_ptr high = nullptr;
  if (value->scope() != nullptr || !match(value, "(?, ?)", low, high)) {
    return value;
  }
  term_ptr zero = make_const(Integer, 0);
  const term_ptr ends[] = {zero, zero};
  term_ptr pair = analyzed_instance(quantified, binder, make_tuple(ends));
  term_ptr interval = analyzed_instance(quantified, binder, make_binOp_term(IntervalLoRo, zero, zero));
  const bool only_sets = pair != nullptr && interval != nullptr && term_eqb(pair, interval);
  return only_sets ? make_binOp_term(IntervalLoRo, low, high) : value;
}

bool pair_has_one_reading(term_ptr quantified, term_ptr binder) {
  const term_ptr ends[] = {reserved_var(reserved_kind::hole, 0), reserved_var(reserved_kind::hole, 1)};
  const term_ptr pair = make_tuple(ends);
  term_ptr body = instantiate_binders(quantified, {&binder, 1}, {&pair, 1});
  term_ptr analyzed = body == nullptr ? nullptr : parsed_static_analyze_term(body);
  return analyzed != nullptr && (!reads_pair_as_interval(body, analyzed) || !point_search(pair).found_in(analyzed));
}

}  // namespace vetro

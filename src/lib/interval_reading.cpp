// A term and its analysed form in step.
#include "lib/interval_reading.h"

#include <algorithm>
#include <unordered_set>

#include "lib/semantic_term.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/pattern_match.h"
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
  static bool is_pair(term_ptr t) { return is_apply(t) && is_oper(t->left(), Tuple); }

  std::unordered_set<node_pair, node_pair_hasher> done_;
};

// The analysed instance of the quantifier for one binder; null when there is none.
term_ptr analyzed_instance(term_ptr quantified, term_ptr binder, term_ptr value) {
  return parsed_static_analyze_term(instantiate_binders(quantified, {&binder, 1}, {&value, 1}));
}

}  // namespace

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

}  // namespace vetro

// A term and its analysed form in step.
#include "lib/interval_reading.h"

#include <algorithm>
#include <unordered_set>

#include "term/node_memo.h"

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

}  // namespace

bool reads_pair_as_interval(term_ptr t, term_ptr analyzed) { return interval_search().differ(t, analyzed); }

}  // namespace vetro

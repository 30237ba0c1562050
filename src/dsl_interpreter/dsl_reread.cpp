// Comparing the binders that instantiation kept with those of the text.
#include "dsl_interpreter/dsl_reread.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/dsl_instantiate.h"
#include "lib/semantic_term.h"
#include "term/index_variables.h"
#include "term/substitute.h"

namespace vetro {
namespace {

struct pair_hash {
  std::size_t operator()(const std::pair<term_ptr, term_ptr>& pair) const {
    return pair.first->hash() * 0x9e3779b97f4a7c15ULL ^ pair.second->hash();
  }
};

// Walks two terms that differ at most in their binders, up to the first variable that is bound in one of them only.
// The start of a sum means the same whether it is listed or not.
class binder_comparison {
 public:
  term_ptr differing(term_ptr kept, term_ptr text) {
    if (kept == text || !done_.insert({kept, text}).second) {
      return nullptr;
    }
    const term_list kept_names = bound_here(kept);
    const term_list text_names = bound_here(text);
    for (term_ptr name : text_names) {
      if (missing(name, kept_names, kept)) {
        return name;
      }
    }
    for (term_ptr name : kept_names) {
      if (missing(name, text_names, text)) {
        return name;
      }
    }
    for (std::size_t i = 0; i < kept->children().size(); ++i) {
      const term_ptr child = kept->children()[i];
      if (const term_ptr found = child == nullptr ? nullptr : differing(child, text->children()[i]); found != nullptr) {
        return found;
      }
    }
    return kept->scope() == nullptr ? nullptr : differing(kept->scope(), text->scope());
  }

 private:
  // A name that is not in the list of the other node and not bound in vain.
  static bool missing(term_ptr name, const term_list& names, term_ptr other) {
    const auto same = [name](term_ptr n) { return n->bare() == name->bare(); };
    return std::none_of(names.begin(), names.end(), same) &&
           (!is_var(name) || name_occurs(name->name(), without_meta(other)));
  }

  std::unordered_set<std::pair<term_ptr, term_ptr>, pair_hash> done_;
};

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

  std::unordered_set<std::pair<term_ptr, term_ptr>, pair_hash> done_;
};

}  // namespace

bool reads_pair_as_interval(term_ptr t, term_ptr analyzed) { return interval_search().differ(t, analyzed); }

term_ptr reread(const dsl_execute_data& data, term_ptr t) {
  const term_ptr kept = normalize_setdesc_for_catch_binder(t);
  const term_ptr text = kept == nullptr ? nullptr : with_binders_as_read(kept);
  if (text == nullptr || text->bare() != kept->bare()) {
    return text;
  }
  if (const term_ptr var = binder_comparison().differing(kept, text); var != nullptr) {
    log_error_text(data,
                   "instantiation failed: '" + pretty(var) + "' is bound differently in the text of the result\n");
    return nullptr;
  }
  return text;
}

}  // namespace vetro

// Comparing the binders that instantiation kept with those of the text.
#include "dsl_interpreter/dsl_reread.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/dsl_instantiate.h"
#include "lib/semantic_term.h"
#include "term/bound_variables.h"
#include "term/compare.h"
#include "term/substitute.h"

namespace vetro {
namespace {

// Walks two terms that differ at most in their binders.
class binder_comparison {
 public:
  void walk(term_ptr kept, term_ptr text) {
    if (kept == text || !done_.insert({kept, text}).second) {
      return;
    }
    note_missing(text->binders(), kept->binders(), text, captured_);
    note_missing(kept->binders(), text->binders(), kept, released_);
    for (std::size_t i = 0; i < kept->children().size(); ++i) {
      if (kept->children()[i] != nullptr) {
        walk(kept->children()[i], text->children()[i]);
      }
    }
    if (kept->scope() != nullptr) {
      walk(kept->scope(), text->scope());
    }
  }

  const term_list& captured() const { return captured_; }  // bound by the text alone
  const term_list& released() const { return released_; }  // not bound by the text

 private:
  struct pair_hash {
    std::size_t operator()(const std::pair<term_ptr, term_ptr>& pair) const {
      return pair.first->hash() * 0x9e3779b97f4a7c15ULL ^ pair.second->hash();
    }
  };

  static void note_missing(const term_list& binders, const term_list& others, term_ptr t, term_list& found) {
    for (term_ptr binder : binders) {
      const auto same = [binder](term_ptr other) { return other->bare() == binder->bare(); };
      if (std::none_of(others.begin(), others.end(), same) && (!is_var(binder) || name_occurs(binder->name(), t)) &&
          std::none_of(found.begin(), found.end(), same)) {
        found.push_back(binder);
      }
    }
  }

  std::unordered_set<std::pair<term_ptr, term_ptr>, pair_hash> done_;
  term_list captured_;
  term_list released_;
};

// A variable that the text binds otherwise, in a way that the rule does not allow; null when there is none.
term_ptr changed_binding(term_ptr kept, term_ptr text, reread_rule rule) {
  binder_comparison comparison;
  comparison.walk(kept, text);
  if (!comparison.released().empty()) {
    return comparison.released().front();
  }
  for (term_ptr var : comparison.captured()) {
    if (rule == reread_rule::exact || !is_var(var) || occurs_free(var, text)) {
      return var;
    }
  }
  return nullptr;
}

}  // namespace

term_ptr reread(const dsl_execute_data& data, term_ptr t, reread_rule rule) {
  const term_ptr kept = normalize_setdesc_for_catch_binder(t);
  const term_ptr text = kept == nullptr ? nullptr : with_binders_as_read(kept);
  if (text == nullptr || text->bare() != kept->bare()) {
    return text;
  }
  if (const term_ptr var = changed_binding(kept, text, rule); var != nullptr) {
    log_error_text(data,
                   "instantiation failed: '" + pretty(var) + "' is bound differently in the text of the result\n");
    return nullptr;
  }
  return text;
}

}  // namespace vetro

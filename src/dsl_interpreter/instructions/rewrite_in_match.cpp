// Bodies in step: a place fits when both sides of the rule stand there, everything else has to be the same.
#include "dsl_interpreter/instructions/rewrite_in_match.h"

#include <algorithm>

#include "dsl_interpreter/instructions/rewrite_in_context.h"
#include "dsl_interpreter/instructions/single_value.h"
#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "term/compare.h"
#include "term/substitute/instantiate.h"
#include "term/variables/binding.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

// Whether the walk may compare the parts of the two nodes one by one.
bool may_open(term_ptr from, term_ptr to) {
  return from != nullptr && to != nullptr && from->type() == to->type() && have_equal_scopes(from, to) &&
         !is_closed_to_rewriting(from) && !is_closed_to_rewriting(to);
}

// Calls the function for the parts of an Apply or a TermList, in pairs, until it gives false. False also for other
// kinds and for lists of different lengths.
template <class F>
bool all_parts(term_ptr from, term_ptr to, F&& f) {
  if (from->type() != Apply && from->type() != TermList) {
    return false;
  }
  const term_span a = from->children();
  const term_span b = to->children();
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), f);
}

class body_match {
 public:
  explicit body_match(const rewrite_sides& sides) : sides_(sides) {}

  bool exact(term_ptr from, term_ptr to) {
    if (rewrite_in_alpha_eqb(from, sides_.source) && rewrite_in_alpha_eqb(to, sides_.target)) {
      ++hits_;
      return true;
    }
    if (from == to) {
      return true;
    }
    const auto parts = [this](term_ptr a, term_ptr b) { return exact(a, b); };
    return (may_open(from, to) && all_parts(from, to, parts)) || rewrite_in_alpha_eqb(from, to);
  }

  // `from` with the replacements made where `to` asks for them; null where the two do not fit.
  term_ptr candidate(term_ptr from, term_ptr to) {
    if (rewrite_in_alpha_eqb(from, sides_.source)) {
      if (rewrite_in_alpha_eqb(from, to) && !rewrite_in_alpha_eqb(to, sides_.target)) {
        return from;
      }
      ++hits_;
      return sides_.target;
    }
    if (rewrite_in_alpha_eqb(from, to)) {
      return from;
    }
    if (!may_open(from, to)) {
      return nullptr;
    }
    term_list parts;
    const auto part = [&](term_ptr a, term_ptr b) {
      parts.push_back(candidate(a, b));
      return parts.back() != nullptr;
    };
    if (!all_parts(from, to, part)) {
      return nullptr;
    }
    return with_meta(from->type() == Apply ? mk_apply(parts[0], parts[1]) : mk_term_list(parts), from->meta());
  }

  // A pair that the rule brings into the place of a set would be read as an interval there, which it is not.
  bool in_context(term_ptr from, term_ptr to) {
    hits_ = 0;
    const term_ptr built = candidate(from, to);
    const term_ptr analyzed = built == nullptr || hits_ == 0 ? nullptr : parsed_static_analyze_term(built);
    return analyzed != nullptr && rewrite_in_alpha_eqb(analyzed, to) && !reads_pair_as_interval(built, analyzed);
  }

  std::size_t hits() const { return hits_; }

 private:
  const rewrite_sides& sides_;
  std::size_t hits_ = 0;
};

// Reads the value of the rule's variable off a term that should be an instance of a pattern.
class instance_collector {
 public:
  instance_collector(term_ptr qvar, free_occurrences& occurrences) : qvar_(qvar), occurrences_(occurrences) {}

  // False when the pattern cannot fit, or asks for another value than before. What it does not look at in full (names
  // under binders) is for the caller to check by instantiating.
  bool collect(term_ptr pattern, term_ptr actual) {
    if (pattern->bare() == qvar_->bare() && pattern->scope() == nullptr) {
      return take(actual);
    }
    if (!occurrences_.in(pattern)) {
      return pattern->blind_hash() == actual->blind_hash();
    }
    if (pattern->type() != actual->type() || (pattern->type() != Apply && pattern->type() != TermList)) {
      return false;
    }
    const std::size_t before = local_binders_.size();
    const term_list names = touched_names(actual);
    local_binders_.insert(local_binders_.end(), names.begin(), names.end());
    const bool fits = all_parts(pattern, actual, [this](term_ptr a, term_ptr b) { return collect(a, b); });
    local_binders_.resize(before);
    return fits;
  }

  term_ptr value() const { return value_; }

 private:
  bool take(term_ptr actual) {
    const auto occurs = [actual](term_ptr binder) { return occurs_free(binder, actual); };
    if (std::any_of(local_binders_.begin(), local_binders_.end(), occurs)) {
      return false;
    }
    if (value_ == nullptr) {
      value_ = actual;
    }
    return alpha_equivalent(value_, actual);
  }

  term_ptr qvar_;
  free_occurrences& occurrences_;  // of the variable in the patterns
  term_list local_binders_;
  term_ptr value_ = nullptr;
};

// Finds the first place where the rule may have been used.
class instance_search {
 public:
  instance_search(const rewrite_sides& pattern, term_ptr qvar, instance_evidence evidence)
      : pattern_(pattern), qvar_(qvar), evidence_(evidence), occurrences_(qvar, free_occurrences::in_scopes::yes) {}

  term_ptr find(term_ptr from, term_ptr to) {
    if (from == nullptr || to == nullptr) {
      return nullptr;
    }
    if (const term_ptr value = infer(from, to); value != nullptr) {
      return value;
    }
    if (from->type() != to->type() || is_closed_to_rewriting(from) || is_closed_to_rewriting(to)) {
      return nullptr;
    }
    term_ptr found = nullptr;
    all_parts(from, to, [&](term_ptr a, term_ptr b) {
      found = find(a, b);
      return found == nullptr;
    });
    return found;
  }

 private:
  term_ptr infer(term_ptr from, term_ptr to) {
    instance_collector both(qvar_, occurrences_);
    if (both.collect(pattern_.source, from) && both.collect(pattern_.target, to) && usable(both.value()) &&
        gives(both.value(), pattern_.source, from) && gives(both.value(), pattern_.target, to)) {
      return both.value();
    }
    instance_collector source(qvar_, occurrences_);
    if (evidence_ == instance_evidence::source && from != to && source.collect(pattern_.source, from) &&
        usable(source.value()) && gives(source.value(), pattern_.source, from) && !alpha_equivalent(from, to)) {
      return source.value();
    }
    return nullptr;
  }

  static bool usable(term_ptr value) { return value != nullptr && has_one_value(value); }

  bool gives(term_ptr value, term_ptr pattern, term_ptr actual) const {
    const term_ptr instance = instantiate_term(qvar_, value, pattern);
    return instance != nullptr && alpha_equivalent(instance, actual);
  }

  const rewrite_sides& pattern_;
  term_ptr qvar_;
  instance_evidence evidence_;
  free_occurrences occurrences_;
};

}  // namespace

bool rewrite_in_alpha_eqb(term_ptr a, term_ptr b) {
  return a == nullptr || b == nullptr ? a == b : alpha_equivalent(a, b);
}

bool have_equal_scopes(term_ptr a, term_ptr b) { return rewrite_in_alpha_eqb(a->scope(), b->scope()); }

bool source_may_stand_in(term_ptr body, term_ptr source, term_ptr qvar) {
  free_occurrences occurrences(qvar, free_occurrences::in_scopes::yes);
  // The variable may be anything, and under `fun` or a quantifier it is not looked for.
  const auto fits = [&](const auto& self, term_ptr pattern, term_ptr t) -> bool {
    if (pattern->type() == Var && pattern->bare() == qvar->bare()) {
      return true;
    }
    if (!occurrences.in(pattern)) {
      return pattern->blind_hash() == t->blind_hash();
    }
    const bool opened = pattern->type() == Apply || pattern->type() == TermList;
    return pattern->type() == t->type() &&
           (!opened || all_parts(pattern, t, [&](term_ptr a, term_ptr b) { return self(self, a, b); }));
  };
  const auto may_stand = [&](const auto& self, term_ptr t) -> bool {
    if (fits(fits, source, t)) {
      return true;
    }
    if ((t->type() != Apply && t->type() != TermList) || is_closed_to_rewriting(t)) {
      return false;
    }
    const term_span parts = t->children();
    return std::any_of(parts.begin(), parts.end(), [&](term_ptr part) { return self(self, part); });
  };
  return may_stand(may_stand, body);
}

bool match_body_rewrite_no_nested_limit(term_ptr from, term_ptr to, const rewrite_sides& sides, std::size_t& hits) {
  body_match match(sides);
  if (!match.exact(from, to) && !match.in_context(from, to)) {
    return false;
  }
  hits += match.hits();
  return true;
}

term_ptr find_rule_instance_no_nested_limit(term_ptr from, term_ptr to, const rewrite_sides& pattern, term_ptr qvar,
                                            instance_evidence evidence) {
  return instance_search(pattern, qvar, evidence).find(from, to);
}

}  // namespace vetro

// Rewriting is binder-safe: a rule is applied under a binder only where the binder binds no variable of the rule. Every
// node with binders counts, and so do the entries of quantifiers.
#include "qv_solver_list/algebra/subterm_rewrite.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "lib/interval_reading.h"
#include "lib/semantic_term.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/openable.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/variables/entries.h"

namespace vetro {
namespace {

class rewrite_check {
 public:
  rewrite_check(term_ptr src, term_ptr dest) : src_(src), dest_(dest), rule_vars_(plain_free_variables(src)) {
    const term_list of_dest = plain_free_variables(dest);
    rule_vars_.insert(rule_vars_.end(), of_dest.begin(), of_dest.end());
    term_list_dedup(rule_vars_);
  }

  std::size_t hits() const { return hits_; }
  void reset_hits() { hits_ = 0; }

  // Equality that looks through arithmetic at every level, as far as the likeness that is asked for here allows.
  bool equal(term_ptr left, term_ptr right) {
    if (left == right) {
      return left != nullptr;
    }
    if (left == nullptr || right == nullptr) {
      return false;
    }
    const node_pair asked{left, right, static_cast<std::uint64_t>(asked_for_)};
    if (const auto found = equal_.find(asked); found != equal_.end()) {
      return found->second;
    }
    const bool answer = equal_as_wholes(left, right) || equal_by_parts(left, right);
    equal_.emplace(asked, answer);
    return answer;
  }

  // Compares every part of t with a side of the rule, the inner ones first. A part that arithmetic has read counts as
  // one in the sum around it, so that a long sum is not read anew for each of its beginnings. Changes no answer.
  void ask_inside_out(term_ptr t, term_ptr side) {
    if (t->children().empty() || !asked_.insert(t)) {
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
    if (rule_applies() && equal(from, src_) && equal(to, dest_)) {
      ++hits_;
      return true;
    }
    if (from == nullptr || to == nullptr || from->type() != to->type() || is_dotted_list(from) ||
        !same_scope(from, to)) {
      return equal(from, to);
    }
    return parts_match(from, to) || equal(from, to);
  }

  // `from` with the replacements made where `to` asks for them; null when the trees do not fit.
  term_ptr candidate(term_ptr from, term_ptr to) {
    if (from == nullptr || to == nullptr) {
      return nullptr;
    }
    if (rule_applies() && equal(from, src_)) {
      if (!equal(to, dest_) && equal(from, to)) {
        return from;
      }
      ++hits_;
      return dest_;
    }
    if (equal(from, to)) {
      return from;
    }
    if (from->type() != to->type() || is_dotted_list(from) || !same_scope(from, to)) {
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
  static bool same_quantifier(term_ptr a, term_ptr b) {
    return a->quant() == b->quant() && term_list_eqb_pure(a->vars(), b->vars());
  }

  bool equal_as_wholes(term_ptr left, term_ptr right) {
    switch (asked_for_) {
      case likeness::value:
        return comparisons_.equal(left, right);
      case likeness::everywhere:
        return comparisons_.equal_everywhere(left, right);
      case likeness::writing:
        break;
    }
    return term_eqb(left, right);
  }

  // Inside of Dom and Defined a rule about calculated expressions says nothing.
  bool rule_applies() const { return asked_for_ != likeness::writing || may_replace(src_, dest_, likeness::writing); }

  bool equal_by_parts(term_ptr left, term_ptr right) {
    if (left->type() != right->type() || is_dotted_list(left) || is_dotted_list(right) || !same_scope(left, right)) {
      return false;
    }
    switch (left->type()) {
      case Apply: {
        const binding of_left(left);
        const binding of_right(right);
        if (of_left.row() == nullptr && of_right.row() == nullptr) {
          return at_parts_of(
              left, [&] { return equal(left->left(), right->left()) && equal(left->right(), right->right()); });
        }
        return same_reading(of_left, of_right) && at_parts_of(left, [&] {
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

  // Inside of a node more may be asked for than outside.
  template <class F>
  bool at_parts_of(term_ptr t, F&& f) {
    const likeness outside = asked_for_;
    asked_for_ = likeness_inside(t, outside);
    const bool result = f();
    asked_for_ = outside;
    return result;
  }

  // Nodes that bind or guard names: a rule that speaks of one of these does not reach inside.
  bool binding_parts_match(term_ptr from, const binding& of_from, term_ptr to, const binding& of_to) {
    if (!same_reading(of_from, of_to)) {
      return false;
    }
    const bool stops = crosses(of_from);
    return at_parts_of(from, [&] {
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
        return at_parts_of(from,
                           [&] { return matches(from->left(), to->left()) && matches(from->right(), to->right()); });
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
      term_ptr left = nullptr;
      term_ptr right = nullptr;
      const bool fits = at_parts_of(from, [&] {
        left = candidate(from->left(), to->left());
        right = left == nullptr ? nullptr : candidate(from->right(), to->right());
        return right != nullptr;
      });
      return fits ? with_meta(mk_apply(left, right), from->meta()) : nullptr;
    }
    if (!same_reading(of_from, of_to)) {
      return nullptr;
    }
    // The parts in step first, then the node with them in their places.
    const bool stops = crosses(of_from);
    term_list parts;
    const bool fits = at_parts_of(from, [&] {
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
  likeness asked_for_ = likeness::value;
  node_set asked_;
  poly_rat_comparisons comparisons_;
  std::unordered_map<node_pair, bool, node_pair_hasher> equal_;  // by likeness
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

}  // namespace

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

}  // namespace vetro

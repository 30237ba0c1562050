// Equal parts are passed over; a limit, sum or set description is opened under one common name, and there the rule is
// tried on the body as a whole before the walk goes deeper. Everything else that binds is closed.
#include "dsl_interpreter/instructions/rewrite_in_walk.h"

#include <algorithm>

#include "dsl_interpreter/instructions/rewrite_in_conditions.h"
#include "dsl_interpreter/instructions/rewrite_in_context.h"
#include "dsl_interpreter/instructions/rewrite_in_match.h"
#include "term/compare.h"
#include "term/print.h"
#include "term/term_split_combine.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

class walker {
 public:
  explicit walker(rewrite_in_state& state) : state_(state), names_(state.rule, state.sdata) {}

  bool walk(term_ptr from, term_ptr to) { return rewrite_in_alpha_eqb(from, to) || walk_different(from, to); }

 private:
  // The same for two forms that are not equal: what is known of a node need not be found out again for the largest of
  // its parts, so that a long term below many binders is compared once.
  bool walk_different(term_ptr from, term_ptr to) {
    if (from == to) {
      return true;
    }
    if (from == nullptr || to == nullptr || from->type() != to->type() || !have_equal_scopes(from, to)) {
      return false;
    }
    if (is_context(from) || is_context(to)) {
      return walk_context(from, to);
    }
    if (is_closed_to_rewriting(from) || is_closed_to_rewriting(to)) {
      return false;
    }
    switch (from->type()) {
      case Apply:
      case TermList:
        return walk_parts(from->children(), to->children());
      case Lambda:
      case Quant:
        return walk_binding(from, to);
      default:
        return false;
    }
  }

  bool walk_lists(term_span from, term_span to) {
    return std::equal(from.begin(), from.end(), to.begin(), to.end(),
                      [this](term_ptr a, term_ptr b) { return walk(a, b); });
  }

  // Parts of two different nodes. The largest is left to the last: where all others are equal, it is different.
  bool walk_parts(term_span from, term_span to) {
    if (from.size() != to.size() || from.empty()) {
      return from.size() == to.size();
    }
    const auto by_size = [](term_ptr a, term_ptr b) { return a->size() < b->size(); };
    const auto largest = static_cast<std::size_t>(std::max_element(from.begin(), from.end(), by_size) - from.begin());
    std::vector<bool> equal(from.size(), true);
    bool all_others = true;
    for (std::size_t i = 0; i < from.size(); ++i) {
      equal[i] = i != largest && rewrite_in_alpha_eqb(from[i], to[i]);
      all_others = all_others && (i == largest || equal[i]);
    }
    equal[largest] = !all_others && rewrite_in_alpha_eqb(from[largest], to[largest]);
    for (std::size_t i = 0; i < from.size(); ++i) {
      if (!equal[i] && !walk_different(from[i], to[i])) {
        return false;
      }
    }
    return true;
  }

  bool fail(const char* reason) {
    state_.failure_reason = reason;
    return false;
  }

  bool is_context(term_ptr t) const {
    switch (state_.context) {
      case rewrite_in_limit:
        return limit_context_of(t).has_value();
      case rewrite_in_sum:
        return is_sum_operator_term(t);
      case rewrite_in_setdesc:
        return is_setdesc_operator_term(t);
    }
    return false;
  }

  bool walk_context(term_ptr from, term_ptr to) {
    const std::size_t outside = names_.count();
    const bool fits = state_.context == rewrite_in_limit ? walk_limit(from, to)
                      : state_.context == rewrite_in_sum ? walk_sum(from, to)
                                                         : walk_setdesc(from, to);
    names_.leave_to(outside);
    return fits;
  }

  rewrite_sides pattern() const { return sides_in_direction(state_.rule, state_.direction); }
  rewrite_sides instance(term_ptr value) const { return instantiate_sides(pattern(), state_.rule.qvar, value); }

  void accept(std::size_t hits, const rewrite_sides& sides, const char* context, const char* place) {
    state_.rewrite_hits += hits;
    std::string text =
        format_text("rewrite_in %s matched by replacing %zu occurrence(s) in %s:\n", context, hits, place);
    print_term(text, sides.source);
    text += " -> ";
    print_term(text, sides.target);
    state_.execute_log->write(text + "\n");
  }

  // Both bodies under one name for their variable, which is then in force. False where there is none.
  template <class View>
  bool bring_together(View& from, View& to, term_list parts) {
    parts.push_back(from.body);
    parts.push_back(to.body);
    const term_ptr name = names_.choose(from.var, to.var, parts);
    if (name == nullptr) {
      return false;
    }
    from.body = rewrite_in_alpha_rename_active_binder(from.var, name, from.body);
    to.body = rewrite_in_alpha_rename_active_binder(to.var, name, to.body);
    names_.enter(name);
    return from.body != nullptr && to.body != nullptr;
  }

  // ---- Limits.

  bool walk_limit(term_ptr from_term, term_ptr to_term) {
    auto from = limit_context_of(from_term);
    auto to = limit_context_of(to_term);
    if (!from || !to || from->op != to->op || !rewrite_in_alpha_eqb(from->point, to->point)) {
      return false;
    }
    if (!is_var(from->var) || !is_var(to->var)) {
      return fail("unsupported limit context for rewrite_in limit");
    }
    if (!bring_together(*from, *to, {from->point, to->point})) {
      return fail("not enough memory while alpha-renaming limit binder");
    }
    from->var = to->var = names_.newest();
    return try_rewrite_direct_limit_body(*from, *to) || walk_different(from->body, to->body);
  }

  // The rule may be used at any one value of its variable: at the first place that looks like a use of it, at the first
  // where both of its sides stand, else at the variable of the limit.
  bool try_rewrite_direct_limit_body(const limit_context& from, const limit_context& to) {
    const rewrite_sides sides = pattern();
    const term_ptr var = state_.rule.qvar;
    const term_ptr values[] = {
        find_rule_instance_no_nested_limit(from.body, to.body, sides, var, instance_evidence::source),
        find_rule_instance_no_nested_limit(from.body, to.body, sides, var, instance_evidence::both_sides), from.var};
    for (std::size_t i = 0; i < std::size(values); ++i) {
      if (values[i] == nullptr || std::find(values, values + i, values[i]) != values + i) {
        continue;
      }
      const rewrite_sides use = instance(values[i]);
      std::size_t hits = 0;
      if (!match_body_rewrite_no_nested_limit(from.body, to.body, use, hits) || hits == 0) {
        continue;
      }
      if (!solve_all_eventual_conditions(from, values[i], state_)) {
        return false;
      }
      accept(hits, use, "limit", "limit body");
      return true;
    }
    return false;
  }

  // ---- Sums.

  bool walk_sum(term_ptr from_term, term_ptr to_term) {
    auto from = sum_context_of(from_term);
    auto to = sum_context_of(to_term);
    if (!from || !to) {
      return fail("unsupported sum context for rewrite_in sum; expected sum_{ var = lower }^{ upper }");
    }
    if (!rewrite_in_alpha_eqb(from->lower, to->lower) || !rewrite_in_alpha_eqb(from->upper, to->upper)) {
      return false;
    }
    if (!bring_together(*from, *to, {from->lower, from->upper, to->lower, to->upper})) {
      return fail("not enough memory while alpha-renaming sum binder");
    }
    from->var = to->var = names_.newest();
    return try_rewrite_direct_sum_body(*from, *to) || walk_different(from->body, to->body);
  }

  bool try_rewrite_direct_sum_body(const sum_context& from, const sum_context& to) {
    const rewrite_sides sides = instance(from.var);
    std::size_t hits = 0;
    if (!match_body_rewrite_no_nested_limit(from.body, to.body, sides, hits) || hits == 0 ||
        !solve_all_sum_conditions(from, state_)) {
      return false;
    }
    accept(hits, sides, "sum", "sum body");
    return true;
  }

  // ---- Set descriptions.

  bool walk_setdesc(term_ptr from_term, term_ptr to_term) {
    auto from = set_context_of(from_term);
    auto to = set_context_of(to_term);
    if (!from || !to) {
      return fail(
          "unsupported setdesc context for rewrite_in setdesc; expected SetDesc(body, TermList(...)) with one Var "
          "binder");
    }
    const term_ptr own_var = from->var;
    term_list conditions = from->conditions;
    conditions.insert(conditions.end(), to->conditions.begin(), to->conditions.end());
    if (!bring_together(*from, *to, conditions)) {
      return fail("not enough memory while alpha-renaming set description binder");
    }
    rename_conditions(*from);
    rename_conditions(*to);
    if (try_rewrite_direct_setdesc(*from, *to, own_var)) {
      return true;
    }
    if (state_.first_failed_condition != nullptr) {
      return false;
    }
    const bool bodies = walk(from->body, to->body);
    const bool lists = walk_lists(from->conditions, to->conditions);
    return bodies && lists;
  }

  void rename_conditions(set_context& view) {
    for (term_ptr& condition : view.conditions) {
      condition = rewrite_in_alpha_rename_active_binder(view.var, names_.newest(), condition);
    }
    view.var = names_.newest();
  }

  bool try_rewrite_direct_setdesc(const set_context& from, const set_context& to, term_ptr own_var) {
    if (!term_eqb_pure(state_.mapped_binder, own_var)) {
      return fail("binder map right side must be the current set description binder");
    }
    const rewrite_sides sides = instance(from.var);
    std::size_t body_hits = 0;
    std::size_t condition_hits = 0;
    term_list unchanged;
    if (!match_body_rewrite_no_nested_limit(from.body, to.body, sides, body_hits) ||
        !analyze_conditions(from.conditions, to.conditions, sides, condition_hits, unchanged) ||
        body_hits + condition_hits == 0) {
      return false;
    }
    if (body_hits > 0 &&
        !solve_all_setdesc_conditions_from_flat(from.var, flattened_setdesc_conditions(from.conditions), state_)) {
      return false;
    }
    // A condition is no reason for a replacement inside itself; those that stay as they are may be.
    if (condition_hits > 0 &&
        !solve_all_setdesc_conditions_from_flat(from.var, flattened_setdesc_conditions(unchanged), state_)) {
      return false;
    }
    accept(body_hits + condition_hits, sides, "setdesc", "set description");
    return true;
  }

  // Conditions in pairs; those without a replacement are collected.
  static bool analyze_conditions(term_span from, term_span to, const rewrite_sides& sides, std::size_t& hits,
                                 term_list& unchanged) {
    return std::equal(from.begin(), from.end(), to.begin(), to.end(), [&](term_ptr a, term_ptr b) {
      return analyze_setdesc_condition_leaf_rewrite(a, b, sides, hits, unchanged);
    });
  }

  static std::optional<composed_prop> conjunction(term_ptr t) {
    const auto view = t->scope() == nullptr ? composed_prop_split(t) : std::nullopt;
    return view && view->connect == And && view->t2 != nullptr ? view : std::nullopt;
  }

  static bool analyze_setdesc_condition_leaf_rewrite(term_ptr from, term_ptr to, const rewrite_sides& sides,
                                                     std::size_t& hits, term_list& unchanged) {
    const auto a = conjunction(from);
    const auto b = conjunction(to);
    if (a.has_value() != b.has_value()) {
      return false;
    }
    if (a) {
      return analyze_setdesc_condition_leaf_rewrite(a->t1, b->t1, sides, hits, unchanged) &&
             analyze_setdesc_condition_leaf_rewrite(a->t2, b->t2, sides, hits, unchanged);
    }
    std::size_t own_hits = 0;
    if (!match_body_rewrite_no_nested_limit(from, to, sides, own_hits)) {
      return false;
    }
    hits += own_hits;
    if (own_hits == 0) {
      unchanged.push_back(from);
    }
    return true;
  }

  // ---- Quantifiers and functions on the way.

  bool walk_binding(term_ptr from, term_ptr to) {
    const bool same_kind = from->type() == Quant ? from->quant() == to->quant()
                                                 : lambda_var_type_list_eqb(from->var_types(), to->var_types()) &&
                                                       (from->condition() == nullptr) == (to->condition() == nullptr);
    if (!same_kind || from->vars().size() != to->vars().size()) {
      return false;
    }
    const std::size_t outside = names_.count();
    const bool fits = open_entries(from, to);
    names_.leave_to(outside);
    return fits;
  }

  // Enters the variables from the left to the right; what stands behind one is brought to its common name before the
  // next is looked at.
  bool open_entries(term_ptr from, term_ptr to) {
    for (std::size_t left = from->vars().size(); left > 0; --left) {
      const auto a = entry_of(from->vars().front());
      const auto b = entry_of(to->vars().front());
      if (!a || !b || !same_domain(*a, *b)) {
        return false;
      }
      const term_ptr behind[] = {behind_first_entry(from), behind_first_entry(to)};
      const term_ptr name = names_.choose(a->var, b->var, behind);
      from = rewrite_in_alpha_rename_active_binder(a->var, name, behind[0]);
      to = rewrite_in_alpha_rename_active_binder(b->var, name, behind[1]);
      if (from == nullptr || to == nullptr) {
        return fail("not enough memory while alpha-renaming explicit binders");
      }
      names_.enter(name);
    }
    if (from->type() == TermList) {  // condition and body of a function
      return rewrite_in_alpha_eqb(from->elements()[0], to->elements()[0]) &&
             walk_different(from->elements()[1], to->elements()[1]);
    }
    return walk_different(from, to);
  }

  // A plain variable, or one that an entry such as x ∈ S gives a domain. Others are not opened: their variables have no
  // name of their own.
  struct quantifier_entry {
    term_ptr var;
    std::optional<pred_type> relation;
    term_ptr domain;
  };

  static std::optional<quantifier_entry> entry_of(term_ptr entry) {
    if (entry->has_meta()) {
      return std::nullopt;
    }
    if (is_var(entry)) {
      return quantifier_entry{entry, std::nullopt, nullptr};
    }
    const auto relation = pred_split(entry);
    if (!relation || !is_var(relation->left) || relation->left->has_meta()) {
      return std::nullopt;
    }
    return quantifier_entry{relation->left, relation->pred, relation->right};
  }

  static bool same_domain(const quantifier_entry& a, const quantifier_entry& b) {
    return a.relation == b.relation && rewrite_in_alpha_eqb(a.domain, b.domain);
  }

  // What the first variable of a quantifier or function stands over.
  static term_ptr behind_first_entry(term_ptr t) {
    const term_span rest = t->vars().subspan(1);
    if (t->type() == Quant) {
      return rest.empty() ? t->body() : mk_quant(t->quant(), rest, t->body());
    }
    if (rest.empty()) {
      const term_ptr parts[] = {t->condition(), t->body()};
      return t->condition() == nullptr ? t->body() : mk_term_list(parts);
    }
    const lambda_var_type_list& types = t->var_types();
    const lambda_var_type_list behind(types.begin() + (types.empty() ? 0 : 1), types.end());
    return mk_lambda(rest, behind, t->condition(), t->body());
  }

  rewrite_in_state& state_;
  opened_names names_;
};

}  // namespace

bool rewrite_in_walk(term_ptr from, term_ptr to, rewrite_in_state& state) { return walker(state).walk(from, to); }

}  // namespace vetro

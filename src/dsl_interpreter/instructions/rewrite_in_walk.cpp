// Equal parts are passed over; a limit, sum or set description is opened under one common name, and there the rule is
// tried on the body as a whole before the walk goes deeper. Everything else that binds is closed.
#include "dsl_interpreter/instructions/rewrite_in_walk.h"

#include <algorithm>

#include "dsl_interpreter/instructions/rewrite_in_conditions.h"
#include "dsl_interpreter/instructions/rewrite_in_context.h"
#include "dsl_interpreter/instructions/rewrite_in_match.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "term/compare.h"
#include "term/print/pretty.h"
#include "term/term_split_combine.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

class walker {
 public:
  walker(term_ptr from, term_ptr to, rewrite_in_state& state)
      : state_(state),
        names_(state.rule, state.sdata, from, to),
        something_is_complex_(from != nullptr &&
                              (speaks_of_complex(from) || !complex_values_of(state.sdata).named().empty())) {
    assume_complex_by({from});
  }

  bool walk(const opened_part& from, const opened_part& to) { return equal(from, to) || walk_different(from, to); }

 private:
  static complex_values& complex_values_of(const solve_data& sdata) { return facts_of(sdata).table<complex_values>(); }

  static bool equal(const opened_part& from, const opened_part& to) {
    return rewrite_in_alpha_eqb(from.term(), to.term());
  }

  // The same for two parts that are not equal: what is known of a node need not be found out again for the largest of
  // its parts, so that a long term below many binders is compared once.
  bool walk_different(const opened_part& from, const opened_part& to) {
    const term_ptr a = from.written();
    const term_ptr b = to.written();
    if (a == nullptr || b == nullptr) {
      return a == b;
    }
    if (a->type() != b->type() || !same_scope(from, to)) {
      return false;
    }
    if (is_context(a) || is_context(b)) {
      return walk_context(from, to);
    }
    if (is_closed_to_rewriting(a) || is_closed_to_rewriting(b)) {
      return false;
    }
    switch (a->type()) {
      case Apply:
      case TermList:
        return walk_parts(from, to);
      case Lambda:
      case Quant:
        return walk_binding(from, to);
      default:
        return equal(from, to);  // where the binders around were different and did not matter
    }
  }

  static bool same_scope(const opened_part& from, const opened_part& to) {
    return equal(from.part(from.written()->scope()), to.part(to.written()->scope()));
  }

  // Parts of two different nodes. The largest is left to the last: where all others are equal, it is different.
  bool walk_parts(const opened_part& from, const opened_part& to) {
    const term_span a = from.written()->children();
    const term_span b = to.written()->children();
    if (a.size() != b.size() || a.empty()) {
      return a.size() == b.size();
    }
    const auto by_size = [](term_ptr x, term_ptr y) { return x->size() < y->size(); };
    const auto largest = static_cast<std::size_t>(std::max_element(a.begin(), a.end(), by_size) - a.begin());
    std::vector<bool> same(a.size(), true);
    bool all_others = true;
    for (std::size_t i = 0; i < a.size(); ++i) {
      same[i] = i != largest && equal(from.part(a[i]), to.part(b[i]));
      all_others = all_others && (i == largest || same[i]);
    }
    same[largest] = !all_others && equal(from.part(a[largest]), to.part(b[largest]));
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (!same[i] && !walk_different(from.part(a[i]), to.part(b[i]))) {
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

  bool walk_context(const opened_part& from, const opened_part& to) {
    return inside([&] {
      return state_.context == rewrite_in_limit ? walk_limit(from, to)
             : state_.context == rewrite_in_sum ? walk_sum(from, to)
                                                : walk_setdesc(from, to);
    });
  }

  // What is opened and assumed meanwhile is in force no longer afterwards.
  template <class F>
  bool inside(F walk_it) {
    const std::size_t names_outside = names_.count();
    const solve_data outside = state_.sdata;
    const bool fits = walk_it();
    state_.sdata = outside;
    names_.leave_to(names_outside);
    return fits;
  }

  // Premises hold of what stands in the formula. What the formula itself, or a part that has been opened, puts into the
  // complex numbers is not taken for real in them.
  void assume_complex_by(const term_list& statements) {
    if (!something_is_complex_) {
      return;
    }
    complex_values& known = complex_values_of(state_.sdata);
    const solve_data with_statements = with_assumptions(state_.sdata, statements);
    complex_values& said = complex_values_of(with_statements);
    term_list complex;
    if (said.sets_may_be_complex() && !known.sets_may_be_complex()) {
      complex.push_back(make_binPred_prop(Subset, mk_const(EmptySet), mk_const(ComplexSet)));
    }
    for (term_ptr statement : statements) {
      for (term_ptr name : plain_free_variables(statement)) {
        if (said.may_be_complex(name) && !known.may_be_complex(name)) {
          complex.push_back(make_binPred_prop(Belong, name, mk_const(ComplexSet)));
        }
      }
    }
    if (!complex.empty()) {
      state_.sdata = with_assumptions(state_.sdata, complex);
    }
  }

  // The node as one of its contexts, settled where it binds a name again that an opened binder around it had.
  template <class View>
  static std::optional<View> view_of(opened_part& node, std::optional<View> (*look)(term_ptr)) {
    std::optional<View> view = look(node.written());
    if (view) {
      node = node.settled_for(view->var);
      view = look(node.written());
    }
    return view;
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

  // The common name for the variables of two nodes, which is then in force; null where there is none.
  template <class View>
  term_ptr open(const View& from, const View& to, term_span parts) {
    const term_ptr name = names_.choose(from.var, to.var, parts);
    if (name != nullptr) {
      names_.enter(name);
    }
    return name;
  }

  bool source_may_stand_in(const opened_part& body) const {
    return vetro::source_may_stand_in(body.written(), pattern().source, state_.rule.qvar);
  }

  // ---- Limits.

  bool walk_limit(opened_part from, opened_part to) {
    auto a = view_of(from, limit_context_of);
    auto b = view_of(to, limit_context_of);
    if (!a || !b || a->op != b->op || !equal(from.part(a->point), to.part(b->point))) {
      return false;
    }
    if (!is_var(a->var) || !is_var(b->var)) {
      return fail("unsupported limit context for rewrite_in limit");
    }
    const term_ptr name = open(*a, *b, term_list{a->point, a->body, b->point, b->body});
    assume_near(from.part(a->point).term(), name);
    return walk_limit_body(from, to, *a, *b, name);
  }

  // What comes near a point that is not real need not be real, neither here nor in the limits inside.
  void assume_near(term_ptr point, term_ptr name) {
    if (point != nullptr && name != nullptr && complex_values_of(state_.sdata).may_be_complex(point)) {
      const term_ptr complex = make_binPred_prop(Belong, name, mk_const(ComplexSet));
      state_.sdata = with_assumptions(state_.sdata, term_list{complex});
    }
  }

  bool walk_limit_body(const opened_part& from, const opened_part& to, const limit_context& a, const limit_context& b,
                       term_ptr name) {
    opened_part from_body = from.under(a.var, name, a.body);
    opened_part to_body = to.under(b.var, name, b.body);
    if (source_may_stand_in(from_body)) {
      from_body = from_body.settled();
      to_body = to_body.settled();
      if (from_body.written() == nullptr || to_body.written() == nullptr) {
        return fail("not enough memory while alpha-renaming limit binder");
      }
      const limit_context old_form{a.op, name, from.part(a.point).term(), from_body.written()};
      if (try_rewrite_direct_limit_body(old_form, to_body.written())) {
        return true;
      }
    }
    return walk_different(from_body, to_body);
  }

  // The rule may be used at any one value of its variable: at the first place that looks like a use of it, at the first
  // where both of its sides stand, else at the variable of the limit.
  bool try_rewrite_direct_limit_body(const limit_context& from, term_ptr to) {
    const rewrite_sides sides = pattern();
    const term_ptr var = state_.rule.qvar;
    const term_ptr values[] = {
        find_rule_instance_no_nested_limit(from.body, to, sides, var, instance_evidence::source),
        find_rule_instance_no_nested_limit(from.body, to, sides, var, instance_evidence::both_sides), from.var};
    for (std::size_t i = 0; i < std::size(values); ++i) {
      if (values[i] == nullptr || std::find(values, values + i, values[i]) != values + i) {
        continue;
      }
      const rewrite_sides use = instance(values[i]);
      std::size_t hits = 0;
      if (!match_body_rewrite_no_nested_limit(from.body, to, use, hits) || hits == 0) {
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

  bool walk_sum(opened_part from, opened_part to) {
    const auto a = view_of(from, sum_context_of);
    const auto b = view_of(to, sum_context_of);
    if (!a || !b) {
      return fail("unsupported sum context for rewrite_in sum; expected sum_{ var = lower }^{ upper }");
    }
    if (!equal(from.part(a->lower), to.part(b->lower)) || !equal(from.part(a->upper), to.part(b->upper))) {
      return false;
    }
    const term_ptr name = open(*a, *b, term_list{a->lower, a->upper, a->body, b->lower, b->upper, b->body});
    opened_part from_body = from.under(a->var, name, a->body);
    opened_part to_body = to.under(b->var, name, b->body);
    if (source_may_stand_in(from_body)) {
      from_body = from_body.settled();
      to_body = to_body.settled();
      if (from_body.written() == nullptr || to_body.written() == nullptr) {
        return fail("not enough memory while alpha-renaming sum binder");
      }
      const sum_context old_form{name, from.part(a->lower).term(), from.part(a->upper).term(), from_body.written()};
      if (try_rewrite_direct_sum_body(old_form, to_body.written())) {
        return true;
      }
    }
    return walk_different(from_body, to_body);
  }

  bool try_rewrite_direct_sum_body(const sum_context& from, term_ptr to) {
    const rewrite_sides sides = instance(from.var);
    std::size_t hits = 0;
    if (!match_body_rewrite_no_nested_limit(from.body, to, sides, hits) || hits == 0 ||
        !solve_all_sum_conditions(from, state_)) {
      return false;
    }
    accept(hits, sides, "sum", "sum body");
    return true;
  }

  // ---- Set descriptions.

  bool walk_setdesc(opened_part from, opened_part to) {
    const auto a = view_of(from, set_context_of);
    const auto b = view_of(to, set_context_of);
    if (!a || !b) {
      return fail(
          "unsupported setdesc context for rewrite_in setdesc; expected SetDesc(body, TermList(...)) with one Var "
          "binder");
    }
    term_list parts = a->conditions;
    parts.insert(parts.end(), b->conditions.begin(), b->conditions.end());
    parts.push_back(a->body);
    parts.push_back(b->body);
    const term_ptr name = open(*a, *b, parts);
    const set_context old_form = opened(from, *a, name);
    const set_context new_form = opened(to, *b, name);
    if (old_form.body == nullptr || new_form.body == nullptr) {
      return fail("not enough memory while alpha-renaming set description binder");
    }
    if (try_rewrite_direct_setdesc(old_form, new_form, a->var)) {
      return true;
    }
    assume_complex_by(old_form.conditions);
    if (state_.first_failed_condition != nullptr) {
      return false;
    }
    // Both are always walked: a reason found in the conditions is told even where the bodies do not fit.
    const bool bodies_fit = walk(old_form.body, new_form.body);
    return walk_conditions(old_form.conditions, new_form.conditions) && bodies_fit;
  }

  bool walk_conditions(const term_list& from, const term_list& to) {
    const std::size_t shared = std::min(from.size(), to.size());
    for (std::size_t i = 0; i < shared; ++i) {
      if (!walk(from[i], to[i])) {
        return false;
      }
    }
    return from.size() == to.size();
  }

  // The set under the common name of its variable.
  static set_context opened(const opened_part& set, const set_context& view, term_ptr name) {
    set_context result{name, set.under(view.var, name, view.body).term(), {}};
    for (term_ptr condition : view.conditions) {
      result.conditions.push_back(set.under(view.var, name, condition).term());
    }
    return result;
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

  bool walk_binding(const opened_part& from, const opened_part& to) {
    const term_ptr a = from.written();
    const term_ptr b = to.written();
    const bool same_kind = a->type() == Quant ? a->quant() == b->quant()
                                              : lambda_var_type_list_eqb(a->var_types(), b->var_types()) &&
                                                    (a->condition() == nullptr) == (b->condition() == nullptr);
    if (!same_kind || a->vars().size() != b->vars().size()) {
      return false;
    }
    return inside([&] { return open_entries(from, to); });
  }

  // Enters the variables from the left to the right; each stands over the entries behind it.
  bool open_entries(opened_part from, opened_part to) {
    for (std::size_t left = from.written()->vars().size(); left > 0; --left) {
      const auto a = first_entry(from);
      const auto b = first_entry(to);
      if (!a || !b || a->relation != b->relation || !equal(from.part(a->domain), to.part(b->domain))) {
        return false;
      }
      const term_list behind{behind_first_entry(from.written()), behind_first_entry(to.written())};
      const term_ptr name = open(*a, *b, behind);
      from = from.under(a->var, name, behind[0]);
      to = to.under(b->var, name, behind[1]);
      if (something_is_complex_) {
        const term_ptr domain = a->relation ? from.part(a->domain).term() : nullptr;
        assume_complex_by(domain == nullptr ? term_list{from.term()}
                                            : term_list{make_binPred_prop(*a->relation, name, domain), from.term()});
      }
    }
    if (from.written()->type() != TermList) {
      return walk_different(from, to);
    }
    const term_span a = from.written()->elements();  // condition and body of a function
    const term_span b = to.written()->elements();
    return equal(from.part(a[0]), to.part(b[0])) && walk_different(from.part(a[1]), to.part(b[1]));
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

  static std::optional<quantifier_entry> first_entry(opened_part& node) {
    const auto entry = entry_of(node.written()->vars().front());
    if (!entry) {
      return std::nullopt;
    }
    node = node.settled_for(entry->var);
    return entry_of(node.written()->vars().front());
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
  bool something_is_complex_;
};

}  // namespace

bool rewrite_in_walk(term_ptr from, term_ptr to, rewrite_in_state& state) {
  return walker(from, to, state).walk(from, to);
}

}  // namespace vetro

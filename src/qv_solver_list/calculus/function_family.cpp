// Reading a description is strict: each of its conjuncts must have a part in the shape, because any other could exclude
// members. All names that it binds get reserved ones, so that nothing is captured and nothing outside has them.
#include "qv_solver_list/calculus/function_family.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "qv_solver_list/calculus/derivative.h"
#include "qv_solver_list/calculus/derivative_value.h"
#include "qv_solver_list/functions/definedness.h"
#include "term/build.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/views.h"

namespace vetro {
namespace {

constexpr std::uint32_t variable_number = 0;
constexpr std::uint32_t member_number = 1;
constexpr std::uint32_t first_bound_number = 2;

bool is_plain_var(term_ptr t) { return is_var(t) && !t->has_meta(); }

// A function with its one equation: its value at the variable, or its derivative there.
struct definition {
  term_ptr value = nullptr;
  term_ptr slope = nullptr;
  bool conditional = false;  // stated under the antecedent
  bool used = false;
};

// A part of a formula that varies from member to member: a constant, or a helper function that is known by its
// derivative.
struct source {
  term_ptr stand_in;  // takes its place in formulas
  term_ptr slope;     // null for a constant
  bool conditional;
};

class family_reader {
 public:
  explicit family_reader(const solve_data& sdata) : facts_(sdata, evalbar_domain_policy) {}

  std::optional<function_family> read(term_ptr set) {
    const auto view = set_description_of(set);
    if (!view || set->scope() != nullptr || !is_plain_var(view->element) || set->binders().size() != 1 ||
        set->binders().front()->bare() != view->element) {
      return std::nullopt;
    }
    const auto holds_shape = [&](term_ptr condition) {
      term_ptr opened = subst_term_capture_avoiding(view->element, family_member(), condition);
      return read_conjunct(opened);
    };
    if (!std::all_of(view->conditions.begin(), view->conditions.end(), holds_shape)) {
      return std::nullopt;
    }
    const auto member = functions_.find(family_member());
    if (member == functions_.end()) {
      return std::nullopt;
    }
    return member->second.value == nullptr ? all_primitives(member->second) : closed_form(member->second);
  }

 private:
  // ---- The conditions.

  bool read_conjunct(term_ptr t) {
    if (t == nullptr || t->scope() != nullptr) {
      return false;
    }
    if (t->type() == Quant) {
      return t->quant() == Exists ? read_exists(t) : t->quant() == Forall && read_forall(t);
    }
    if (const auto view = composed_prop_split(t); view && view->connect == And && view->t2 != nullptr) {
      return read_conjunct(view->t1) && read_conjunct(view->t2);
    }
    return read_membership(t);
  }

  bool read_exists(term_ptr t) {
    term_ptr body = t->body();
    for (term_ptr var : t->vars()) {
      if (!is_plain_var(var)) {
        return false;
      }
      term_ptr name = reserved_var(reserved_kind::family, next_bound_++);
      bound_.push_back(name);
      body = subst_term_capture_avoiding(var, name, body);
    }
    return read_conjunct(body);
  }

  bool read_forall(term_ptr t) {
    if (std::exchange(saw_forall_, true) || t->vars().size() != 1 || !is_plain_var(t->vars().front())) {
      return false;
    }
    return read_body(subst_term_capture_avoiding(t->vars().front(), family_variable(), t->body()), {});
  }

  // c ∈ Real for a constant c, F : S → T and other memberships of the member.
  bool read_membership(term_ptr t) {
    const spine applied = spine_of(t);
    if (applied.head->type() != Pred || applied.head->has_meta() || applied.args.empty()) {
      return false;
    }
    const pred_type pred = applied.head->pred();
    if (applied.args.front() == family_member()) {
      const bool speaks_of_member_alone =
          (pred == IsFunc || pred == IsFuncOn || pred == Belong) &&
          std::none_of(applied.args.begin() + 1, applied.args.end(), [this](term_ptr arg) { return holds_bound(arg); });
      if (speaks_of_member_alone && !(pred == IsFuncOn && is_constant(applied.args.back(), RealSet))) {
        memberships_.push_back(t);
      }
      return speaks_of_member_alone;
    }
    if (pred != Belong || applied.args.size() != 2 || !is_constant(applied.args[1], RealSet) ||
        !is_bound_name(applied.args[0]) || functions_.count(applied.args[0]) != 0) {
      return false;
    }
    constants_.insert(applied.args[0]);
    return uses_agree(applied.args[0]);
  }

  // What stands under the quantifier over the variable.
  bool read_body(term_ptr t, term_list antecedent) {
    if (t == nullptr || t->has_meta()) {
      return false;
    }
    if (t->type() == TermList) {
      return std::all_of(t->elements().begin(), t->elements().end(),
                         [&](term_ptr part) { return read_body(part, antecedent); });
    }
    if (const auto view = composed_prop_split(t); view && view->t2 != nullptr) {
      if (view->connect == And) {
        return read_body(view->t1, antecedent) && read_body(view->t2, antecedent);
      }
      if (view->connect == Impl) {
        const term_list more = split_connect(elim_predchain(view->t1), And);
        antecedent.insert(antecedent.end(), more.begin(), more.end());
        return read_body(view->t2, std::move(antecedent));
      }
      return false;
    }
    const auto equation = pred_split(t);
    return equation && equation->pred == Eq && read_antecedent(antecedent) &&
           read_equation(equation->left, equation->right, !antecedent.empty());
  }

  // All equations that have an antecedent have the same.
  bool read_antecedent(const term_list& antecedent) {
    if (antecedent.empty()) {
      return true;
    }
    if (antecedent_.empty()) {
      antecedent_ = antecedent;
      return true;
    }
    return std::all_of(antecedent.begin(), antecedent.end(),
                       [&](term_ptr t) { return term_list_contains(antecedent_, t); }) &&
           std::all_of(antecedent_.begin(), antecedent_.end(),
                       [&](term_ptr t) { return term_list_contains(antecedent, t); });
  }

  // A derivative comes before a value, the value of the member before that of a helper, the left side before the right.
  bool read_equation(term_ptr left, term_ptr right, bool conditional) {
    const std::pair<term_ptr, term_ptr> sides[] = {{left, right}, {right, left}};
    for (const auto& [side, other] : sides) {
      if (term_ptr f = derived_function(side)) {
        return define(f, {.slope = other, .conditional = conditional});
      }
    }
    for (const auto& [side, other] : sides) {
      if (called_function(side) == family_member()) {
        return define(family_member(), {.value = other, .conditional = conditional});
      }
    }
    for (const auto& [side, other] : sides) {
      if (term_ptr f = called_function(side)) {
        return define(f, {.value = other, .conditional = conditional});
      }
    }
    return false;
  }

  bool define(term_ptr f, const definition& d) {
    return !constants_.contains(f) && uses_agree(f) && functions_.emplace(f, d).second;
  }

  // The member or helper f of FunDeri(f, 1, 1, x).
  term_ptr derived_function(term_ptr t) const {
    function_derivative d;
    const bool derived = as_function_derivative(spine_of(t), d) && d.index == 1 && d.order == 1 &&
                         d.point.size() == 1 && d.point.front() == family_variable();
    return derived && is_function_name(d.function) ? d.function : nullptr;
  }

  // The member or helper f of f(x).
  term_ptr called_function(term_ptr t) const {
    const bool call = is_apply(t) && !t->has_meta() && t->right() == family_variable();
    return call && is_function_name(t->left()) ? t->left() : nullptr;
  }

  bool is_function_name(term_ptr t) const { return t == family_member() || is_bound_name(t); }

  // A name that `exists` binds, or such a name with a literal subscript.
  bool is_bound_name(term_ptr t) const {
    term_ptr name = without_subscript(t);
    return is_bound(name == nullptr ? t : name);
  }

  static term_ptr without_subscript(term_ptr t) {
    const auto view = is_apply(t) && !t->has_meta() ? composed_term_split(t) : std::nullopt;
    const bool subscripted = view && view->oper == Index && view->t2 != nullptr && is_constant(view->t2, Integer);
    return subscripted ? view->t1 : nullptr;
  }

  // A name stands for one thing or, with subscripts, for several: never for both.
  bool uses_agree(term_ptr t) {
    term_ptr name = without_subscript(t);
    const bool subscripted = name != nullptr;
    return subscripted_.get(subscripted ? name : t, [&] { return subscripted; }) == subscripted;
  }

  bool is_bound(term_ptr var) const { return std::find(bound_.begin(), bound_.end(), var) != bound_.end(); }

  // The member, a name that `exists` binds, or a stand-in occurs in t.
  bool holds_bound(term_ptr t) const {
    return any_subterm(t, walk_all, [this](term_ptr part) { return part == family_member() || is_bound(part); });
  }

  // ---- Formulas.

  // The formula with helper functions replaced by their values, and constants and helper functions without a value by
  // stand-ins. Null where a bound name is left, or where values refer to each other in a circle.
  term_ptr unfold(term_ptr t) {
    if (!may_hold_bound(t)) {
      return t;
    }
    return unfolded_.get(t, [&] {
      unfolded_.keep(t, nullptr);  // the answer while it is being unfolded: a circle has none
      return unfold_new(t);
    });
  }

  bool may_hold_bound(term_ptr t) const {
    const auto in_mask = [t](term_ptr name) { return (name->name_mask() & ~t->name_mask()) == 0; };
    return in_mask(family_member()) || std::any_of(bound_.begin(), bound_.end(), in_mask);
  }

  term_ptr unfold_new(term_ptr t) {
    if (constants_.contains(t)) {
      return stand_in(nullptr, false);
    }
    if (term_ptr f = called_function(t)) {
      return unfold_call(f);
    }
    if (t->type() != Apply || t->has_meta()) {
      return holds_bound(t) ? nullptr : t;
    }
    return map_children(t, walk_apply, [this](term_ptr part) { return unfold(part); });
  }

  term_ptr unfold_call(term_ptr f) {
    const auto found = functions_.find(f);
    if (found == functions_.end() || f == family_member()) {
      return nullptr;
    }
    definition& d = found->second;
    d.used = true;
    return d.value != nullptr ? unfold(d.value) : stand_in(d.slope, d.conditional);
  }

  term_ptr stand_in(term_ptr slope, bool conditional) {
    term_ptr name = reserved_var(reserved_kind::family, next_bound_++);
    sources_.push_back({name, slope, conditional});
    bound_.push_back(name);
    return name;
  }

  bool holds_source(term_ptr t) const {
    return std::any_of(sources_.begin(), sources_.end(), [t](const source& s) {
      return (s.stand_in->name_mask() & ~t->name_mask()) == 0 && name_occurs(s.stand_in->name(), t);
    });
  }

  // ---- The two shapes.

  std::optional<function_family> all_primitives(const definition& member) {
    term_ptr integrand = reduced(unfold(member.slope));
    if (integrand == nullptr || holds_source(integrand) || (!member.conditional && !antecedent_.empty())) {
      return std::nullopt;
    }
    return family(integrand, nullptr, {});
  }

  std::optional<function_family> closed_form(const definition& member) {
    term_ptr formula = reduced(unfold(member.value));
    if (formula == nullptr) {
      return std::nullopt;
    }
    term_ptr sum = mk_integer(0);
    term_list slopes;
    bool varies = false;
    const std::vector<source> sources = sources_;
    for (const source& s : sources) {
      term_ptr factor = vetro::derivative(formula, s.stand_in);
      if (factor == nullptr || holds_bound(factor) || name_occurs(family_variable()->name(), factor)) {
        return std::nullopt;
      }
      // Beyond the antecedent the member is as free as a helper that is defined under it alone.
      const bool free = antecedent_.empty() || member.conditional || s.conditional;
      varies = varies || (free && facts_.nonzero(factor));
      if (s.slope != nullptr) {
        term_ptr slope = reduced(unfold(s.slope));
        if (slope == nullptr || holds_source(slope) || (member.conditional && !s.conditional) ||
            !has_primitives(slope)) {
          return std::nullopt;
        }
        slopes.push_back(slope);
        sum = mk_sum(sum, mk_product(factor, slope));
      }
    }
    if (!varies) {
      return std::nullopt;
    }
    term_ptr rest = without_sources(formula);
    term_ptr own_slope = vetro::derivative(rest, family_variable());
    if (own_slope == nullptr) {
      return std::nullopt;
    }
    return family(mk_sum(own_slope, sum), rest, std::move(slopes));
  }

  term_ptr reduced(term_ptr t) { return t == nullptr ? nullptr : reduce_known_derivatives(t, facts_); }

  // Functions that the rules differentiate are continuous and have primitives; an unknown function is taken to have
  // them, since its integral is spoken of.
  static bool has_primitives(term_ptr slope) {
    const bool unknown =
        is_apply(slope) && !slope->has_meta() && slope->right() == family_variable() && is_plain_var(slope->left());
    return unknown || vetro::derivative(slope, family_variable()) != nullptr;
  }

  term_ptr without_sources(term_ptr formula) const {
    for (const source& s : sources_) {
      formula = subst_term_capture_avoiding(s.stand_in, mk_integer(0), formula);
    }
    return formula;
  }

  std::optional<function_family> family(term_ptr derivative, term_ptr formula, term_list slopes) const {
    const bool all_used = std::all_of(functions_.begin(), functions_.end(), [](const auto& entry) {
      return entry.second.used || entry.first == family_member();
    });
    const bool antecedent_free =
        std::none_of(antecedent_.begin(), antecedent_.end(), [this](term_ptr t) { return holds_bound(t); });
    if (!all_used || !antecedent_free) {
      return std::nullopt;
    }
    return function_family{derivative, antecedent_, memberships_, formula, std::move(slopes)};
  }

  domain_prover facts_;
  std::uint32_t next_bound_ = first_bound_number;
  term_list bound_;
  bool saw_forall_ = false;
  term_list antecedent_;
  term_list memberships_;
  node_set constants_;
  node_memo<bool> subscripted_;
  std::unordered_map<term_ptr, definition> functions_;
  node_memo<term_ptr> unfolded_;
  std::vector<source> sources_;
};

}  // namespace

term_ptr family_variable() { return reserved_var(reserved_kind::family, variable_number); }

term_ptr family_member() { return reserved_var(reserved_kind::family, member_number); }

std::optional<function_family> read_function_family(term_ptr set, const solve_data& sdata) {
  return family_reader(sdata).read(set);
}

}  // namespace vetro

// The evaluation walk. Children first, then the node itself: reduced where it is an applied `fun`, decided where it is
// given by cases, unfolded where its head is defined.
//
// Terms share their parts, so the result for a node is remembered with the fuel that was left and the assumptions that
// were in sight; without that, eight levels of definitions that use an argument twice would be walked 2^8 times.
#include "qv_solver_list/functions/apply_normalize.h"

#include <algorithm>
#include <unordered_map>

#include "number/budget.h"
#include "number/limits.h"
#include "term/node_memo.h"
#include "term/substitute/beta.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/variables/entries.h"
#include "term/variables/free_names.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// The assumptions that may be used at a place, and what they define.
struct visible_assumptions {
  visible_assumptions(std::shared_ptr<const solve_data> data, term_list hidden_names, std::uint32_t number)
      : sdata(std::move(data)),
        hidden(std::move(hidden_names)),
        id(number),
        premises(*sdata, side_table::func_apply),
        head_mask(facts_of(*sdata).table<function_definitions>().head_mask()) {}

  std::shared_ptr<const solve_data> sdata;
  term_list hidden;  // the names that are bound around the place and that some assumption speaks of
  std::uint32_t id;
  prover premises;
  std::uint64_t head_mask;
};

// All views of one list of assumptions: the list itself, and the lists without what speaks of a bound name.
class assumption_views {
 public:
  explicit assumption_views(const solve_data& sdata) {
    for (term_ptr assumption : sdata.assum) {
      mask_ |= assumption == nullptr ? 0 : assumption->name_mask();
    }
    // Borrowed: the empty deleter leaves the record to its owner.
    const std::shared_ptr<const solve_data> all(&sdata, [](const solve_data*) {});
    views_.push_back(std::make_unique<visible_assumptions>(all, term_list{}, 0));
  }

  visible_assumptions& all() { return *views_.front(); }

  // What stays in sight below an operator that binds the names.
  visible_assumptions& below(visible_assumptions& around, term_span names) {
    term_list hidden = around.hidden;
    for (term_ptr name : names) {
      if ((name->name_mask() & ~mask_) == 0 && !contains(hidden, name->bare()) && is_mentioned(name->bare())) {
        hidden.push_back(name->bare());
      }
    }
    return hidden.size() == around.hidden.size() ? around : view_without(std::move(hidden));
  }

 private:
  static bool contains(term_span list, term_ptr t) { return std::find(list.begin(), list.end(), t) != list.end(); }

  const std::vector<bool>& mentions(term_ptr name) {
    auto [slot, added] = mentions_.try_emplace(name);
    if (added) {
      free_occurrences occurrences(name, free_occurrences::in_scopes::yes);
      for (term_ptr assumption : all().sdata->assum) {
        slot->second.push_back(assumption != nullptr && occurrences.in(assumption));
      }
    }
    return slot->second;
  }

  bool is_mentioned(term_ptr name) {
    const std::vector<bool>& mentioned = mentions(name);
    return std::find(mentioned.begin(), mentioned.end(), true) != mentioned.end();
  }

  visible_assumptions& view_without(term_list hidden) {
    std::sort(hidden.begin(), hidden.end(), [](term_ptr a, term_ptr b) { return a->serial() < b->serial(); });
    const auto known = std::find_if(views_.begin(), views_.end(), [&](const auto& v) { return v->hidden == hidden; });
    if (known != views_.end()) {
      return **known;
    }
    const solve_data& base = *all().sdata;
    auto visible = std::make_shared<solve_data>(base);
    visible->facts = nullptr;
    visible->assum = {};
    for (std::size_t i = 0; i < base.assum.size(); ++i) {
      if (std::none_of(hidden.begin(), hidden.end(), [&](term_ptr name) { return mentions(name)[i]; })) {
        visible->assum.push_back(base.assum[i]);
      }
    }
    const auto number = static_cast<std::uint32_t>(views_.size());
    views_.push_back(std::make_unique<visible_assumptions>(std::move(visible), std::move(hidden), number));
    return *views_.back();
  }

  std::uint64_t mask_ = 0;  // of all names in the assumptions
  std::vector<std::unique_ptr<visible_assumptions>> views_;
  std::unordered_map<term_ptr, std::vector<bool>> mentions_;
};

// Operators whose operands mean more than their values: the expression under a derivative sign or a bar stands for a
// function, Dom asks where it is defined, ± and a size are one whole.
bool is_entered(term_ptr head, term_span args) {
  if (head->type() == Pred) {
    const pred_type pred = head->pred();
    return pred != Defined && !(pred >= TendsToWithoutIndex && pred <= RightTendsToWithoutIndex);
  }
  if (head->type() != Oper) {
    return true;
  }
  switch (head->oper()) {
    case SingleDeri:
    case NthDeri:
    case ValDeri:
    case D:
    case PD:
    case Bar:
    case VecGrad:
    case VecDiv:
    case VecRot:
    case Nabla:
    case Dom:
    case RadiusOfConvergence:
    case PosNeg:
    case PlusMinus:
    case Cardinal:
    case IndefInt:
      return false;
    case EvalBar:
      return !args.empty() && args.front()->type() == Lambda;
    default:
      return !is_landau(head->oper());
  }
}

// An application on the way: the term with its head and its arguments.
struct position {
  term_ptr whole;
  term_ptr head;
  term_list args;

  static position at(term_ptr t) {
    spine parts = spine_of(t);
    return {t, parts.head, std::move(parts.args)};
  }
};

bool is_pointwise_operation(const position& p) {
  if (p.args.size() != 2 || p.head->type() != Oper || p.args[0]->type() != Lambda || p.args[1]->type() != Lambda ||
      p.args[0]->vars().empty() || p.args[0]->vars().size() != p.args[1]->vars().size()) {
    return false;
  }
  const oper_type oper = p.head->oper();
  return oper == Plus || oper == Minus || oper == Mult || oper == Div;
}

bool is_applied_function(const position& p) {
  return p.head->type() == Lambda && !p.head->vars().empty() && p.args.size() == p.head->vars().size();
}

}  // namespace

class function_evaluator::walk {
 public:
  explicit walk(const solve_data& sdata) : views_(sdata) {}

  term_ptr run(term_ptr t, int fuel) { return normal(t, fuel, views_.all()); }

 private:
  // Null ends the whole evaluation.
  term_ptr normal(term_ptr t, int fuel, visible_assumptions& view) {
    if (spent_) {
      return nullptr;
    }
    if (fuel < 1 ? !t->has(fact_lambda) : leaves_alone(t, view)) {
      return t;
    }
    fuel = std::max(fuel, 0);
    const std::uint64_t place = static_cast<std::uint64_t>(view.id) << 32U | static_cast<std::uint32_t>(fuel);
    if (const term_ptr* known = known_.find(t, place); known != nullptr) {
      // A term that is met again while it is worked on reduces to itself: it has no value.
      return *known != nullptr ? *known : fail();
    }
    known_.keep(t, nullptr, place);
    if (++steps_ > limits::func_apply_steps) {
      ++ended_budgets;
      return fail();
    }
    const term_ptr result = normal_node(t, fuel, view);
    if (result == nullptr) {
      return fail();
    }
    return known_.keep(t, result, place);
  }

  term_ptr fail() {
    spent_ = true;
    return nullptr;
  }

  // Nothing in t is applied, defined, or given by cases.
  bool leaves_alone(term_ptr t, const visible_assumptions& view) {
    return !t->has(fact_lambda) && (t->name_mask() & view.head_mask) == 0 && !holds_cases(t);
  }

  bool holds_cases(term_ptr t) {
    if (t->children().empty()) {
      return is_oper(t, PiecewiseFunc);
    }
    const auto in_parts = [&] {
      const term_span parts = t->children();
      return std::any_of(parts.begin(), parts.end(),
                         [this](term_ptr part) { return part != nullptr && holds_cases(part); });
    };
    return t->size() >= worth_remembering ? holds_cases_.get(t, in_parts) : in_parts();
  }

  term_ptr normal_node(term_ptr t, int fuel, visible_assumptions& view) {
    if (t->type() == Apply) {
      return normal_application(t, fuel, view);
    }
    visible_assumptions& inside = below(t, view);
    constexpr unsigned parts = walk_body | walk_condition | walk_elements | walk_tag_vars | walk_scope | keep_meta;
    return map_children(t, parts, [&](term_ptr part) { return normal(part, fuel, inside); });
  }

  visible_assumptions& below(term_ptr t, visible_assumptions& view) {
    const bool has_entries = t->type() == Quant || t->type() == Lambda;
    const term_list names = has_entries ? entry_names(t) : touched_names(t);
    return names.empty() ? view : views_.below(view, names);
  }

  // A left spine is worked off from its head outwards, so that a long one costs no depth.
  term_ptr normal_application(term_ptr t, int fuel, visible_assumptions& view) {
    struct open_node {
      term_ptr t;
      visible_assumptions* around;
      visible_assumptions* inside;
    };
    std::vector<open_node> nodes;  // outermost first
    visible_assumptions* around = &view;
    term_ptr head = t;
    for (; head->type() == Apply; head = head->left()) {
      nodes.push_back({head, around, &below(head, *around)});
      around = nodes.back().inside;
    }
    if (const spine whole = spine_of(t); !is_entered(whole.head, whole.args)) {
      return t;
    }
    head = normal(head, fuel, *around);
    if (head == nullptr) {
      return nullptr;
    }
    position current = position::at(head);
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
      const term_ptr right = normal(node->t->right(), fuel, *node->inside);
      const term_ptr scope = node->t->scope() == nullptr ? nullptr : normal(node->t->scope(), fuel, *node->inside);
      if (spent_) {
        return nullptr;
      }
      apply(current, node->t, right, scope);
      const term_ptr value = node->t->has_meta() ? current.whole : evaluated(current, fuel, *node->around);
      if (value == nullptr) {
        return nullptr;
      }
      if (value != current.whole) {
        current = position::at(value);
      }
    }
    return current.whole;
  }

  // The application of current to one more argument, in the place of node.
  static void apply(position& current, term_ptr node, term_ptr right, term_ptr scope) {
    const bool unchanged = current.whole == node->left() && right == node->right() && scope == node->scope();
    current.whole =
        unchanged
            ? node
            : with_meta(
                  mk_apply(current.whole, right),
                  {.binders = node->binders(), .scope = scope, .soft = node->meta().soft, .guarded = node->guarded()});
    current.args.push_back(right);
  }

  // What an application with evaluated parts comes to.
  term_ptr evaluated(const position& applied, int fuel, visible_assumptions& view) {
    const bool function = is_applied_function(applied);
    if (!function && !is_pointwise_operation(applied)) {
      return value_of(applied, fuel, view);
    }
    if (std::any_of(applied.args.begin(), applied.args.end(), is_one_whole)) {
      return applied.whole;
    }
    const term_ptr body =
        function ? solver_func_apply_lambda(applied.head, applied.args) : beta_normalize_term(applied.whole);
    if (body == nullptr) {
      return applied.whole;
    }
    const term_ptr reduced = normal(body, 0, view);
    if (reduced == nullptr || fuel < 1) {
      return reduced;
    }
    const term_ptr value = value_of(position::at(reduced), fuel, view);
    return value == reduced ? normal(reduced, fuel - 1, view) : value;
  }

  // The case that holds, or the value by definition; the term itself where there is neither.
  term_ptr value_of(const position& applied, int fuel, visible_assumptions& view) {
    if (fuel < 1) {
      return applied.whole;
    }
    if (is_oper(applied.head, PiecewiseFunc)) {
      const term_ptr chosen = select(applied.whole, fuel, view);
      return chosen != nullptr || spent_ ? chosen : applied.whole;
    }
    if (!is_var(applied.head) || applied.args.empty()) {
      return applied.whole;
    }
    const term_ptr lambda = solver_func_resolve_lambda(applied.head, applied.args.size(), applied.args, view.premises);
    if (lambda == nullptr || lambda->vars().size() != applied.args.size() ||
        !solver_func_lambda_applies(lambda, applied.args, view.premises)) {
      return applied.whole;
    }
    const term_ptr body = solver_func_apply_lambda(lambda, applied.args);
    return body == nullptr ? applied.whole : normal(body, fuel - 1, view);
  }

  term_ptr select(term_ptr t, int fuel, visible_assumptions& view) {
    return solver_func_piecewise_select(
        t, {.premises = view.premises,
            .fuel = fuel,
            .normalize_selected_value = true,
            .normalizer = [&](term_ptr part, int left) { return normal(part, left, view); }});
  }

  assumption_views views_;
  node_memo<term_ptr> known_;  // by view and fuel
  node_memo<bool> holds_cases_;
  std::uint64_t steps_ = 0;
  bool spent_ = false;
};

function_evaluator::function_evaluator(const solve_data& sdata) : walk_(std::make_unique<walk>(sdata)) {}
function_evaluator::~function_evaluator() = default;

term_ptr function_evaluator::normalize(term_ptr t, int fuel) { return t == nullptr ? nullptr : walk_->run(t, fuel); }

term_ptr solver_func_apply_normalize(term_ptr t, const solve_data& sdata, int fuel) {
  return function_evaluator(sdata).normalize(t, fuel);
}

bool solver_func_apply_under_assumption(term_ptr assumption, term_ptr target, const solve_data& sdata,
                                        const std::function<bool(term_ptr, const solve_data&)>& solve) {
  if (assumption == nullptr) {
    return solve(target, sdata);
  }
  return solve(target, with_assumptions(sdata, split_connect(assumption, And)));
}

}  // namespace vetro

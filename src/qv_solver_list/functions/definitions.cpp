// An assumption is opened from the outside in: variables and premises are gathered on the way to its equations. Only an
// equation whose left side has the form of a definition is worth the substitution that brings in the reserved names.
#include "qv_solver_list/functions/definitions.h"

#include <algorithm>

#include "qv_solver_list/functions/conditions.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/variables/free_names.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

term_ptr parameter(std::size_t i) { return reserved_var(reserved_kind::parameter, static_cast<std::uint32_t>(i)); }

term_ptr placeholder(std::size_t i) { return reserved_var(reserved_kind::placeholder, static_cast<std::uint32_t>(i)); }

bool contains(term_span list, term_ptr t) { return std::find(list.begin(), list.end(), t) != list.end(); }

// The operand of a notation that speaks of the variables in it: a value in their place would be no value of a function.
bool guards_operand(term_ptr head, std::size_t argument, term_ptr operand) {
  if (head->type() == Pred) {
    return head->pred() >= TendsToWithoutIndex && head->pred() <= RightTendsToWithoutIndex;
  }
  if (head->type() != Oper) {
    return false;
  }
  switch (head->oper()) {
    case SingleDeri:
    case NthDeri:
      return argument == 0;
    case EvalBar:
      return argument == 0 && operand->type() != Lambda;
    case ValDeri:
    case D:
    case PD:
    case VecGrad:
    case VecDiv:
    case VecRot:
    case Nabla:
    case RadiusOfConvergence:
      return true;
    default:
      return is_landau(head->oper());
  }
}

// Whether placeholders stand where they may not be replaced.
class guarded_places {
 public:
  explicit guarded_places(std::size_t placeholders) : count_(placeholders) {
    for (std::size_t i = 0; i < count_; ++i) {
      mask_ |= placeholder(i)->name_mask();
    }
  }

  bool in(term_ptr t) {
    if ((t->name_mask() & mask_) == 0 || t->children().empty() || !searched_.insert(t)) {
      return false;
    }
    if (t->type() == Apply) {
      const spine parts = spine_of(t);
      for (std::size_t i = 0; i < parts.args.size(); ++i) {
        if (guards_operand(parts.head, i, parts.args[i]) && holds_placeholder(parts.args[i])) {
          return true;
        }
      }
      return in(parts.head) || any_in(parts.args);
    }
    return any_in(t->children());
  }

 private:
  bool any_in(term_span list) {
    return std::any_of(list.begin(), list.end(), [this](term_ptr part) { return part != nullptr && in(part); });
  }

  bool holds_placeholder(term_ptr t) const {
    for (std::size_t i = 0; i < count_; ++i) {
      if (name_occurs(placeholder(i)->name(), t)) {
        return true;
      }
    }
    return false;
  }

  std::size_t count_;
  std::uint64_t mask_ = 0;
  node_set searched_;
};

// A name, or a name with a number for its subscript.
bool is_variable_entry(term_ptr entry) {
  if (is_var(entry)) {
    return true;
  }
  const auto view = composed_term_split(entry);
  return view && view->oper == Index && is_var(view->t1) && view->t2 != nullptr && view->t2->type() == Const &&
         view->t2->constant() == Integer;
}

// All that t speaks of is among the parameters.
bool is_closed(term_ptr t, term_span params) {
  const term_list free = plain_free_variables(t);
  return std::all_of(free.begin(), free.end(), [&](term_ptr var) { return contains(params, var); });
}

bool is_usable(term_ptr t) { return !t->has(fact_scope) && !is_one_whole(t); }

// Reads the definitions in one assumption.
class definition_reader {
 public:
  template <class F>
  void read(term_ptr t, F&& found) {
    if (t->scope() != nullptr || protects(t)) {
      return;
    }
    if (t->type() == Quant) {
      read_quantified(t, found);
    } else if (const auto conjunction = solver_func_binary_connect(t, And)) {
      read(conjunction->left, found);
      read(conjunction->right, found);
    } else if (const auto implication = solver_func_binary_connect(t, Impl)) {
      premises_.push_back({implication->left, vars_.size(), false});
      read(implication->right, found);
      premises_.pop_back();
    } else if (const auto equation = solver_func_binary_pred(t, Eq)) {
      read_equation(*equation, found);
    }
  }

 private:
  // A premise speaks of the first `vars` variables; that of an entry x ∈ S comes with x itself.
  struct premise {
    term_ptr t;
    std::size_t vars;
    bool of_entry;
  };

  template <class F>
  void read_quantified(term_ptr t, F&& found) {
    const std::size_t vars = vars_.size();
    const std::size_t premises = premises_.size();
    if (t->quant() == Forall &&
        std::all_of(t->vars().begin(), t->vars().end(), [this](term_ptr entry) { return open_entry(entry); })) {
      read(t->body(), found);
    }
    vars_.resize(vars);
    premises_.resize(premises);
  }

  // False for an entry that is neither a variable nor a relation that says something of one.
  bool open_entry(term_ptr entry) {
    if (is_variable_entry(entry)) {
      vars_.push_back(entry->bare());
      return true;
    }
    const auto relation = entry->has_meta() ? std::nullopt : pred_split(entry);
    if (!relation || !is_variable_entry(relation->left)) {
      return false;
    }
    premises_.push_back({entry, vars_.size(), true});
    vars_.push_back(relation->left->bare());
    return true;
  }

  template <class F>
  void read_equation(const binary_operands& equation, F&& found) {
    if (vars_.empty() && premises_.empty()) {
      read_assignment(equation, found);
    }
    const spine left = spine_of(equation.left);
    if (!is_var(left.head) || left.head->has_meta() || left.args.empty() || left.args.size() != vars_.size() ||
        contains(vars_, left.head) || !is_usable(equation.right)) {
      return;
    }
    function_definition definition{};
    term_list names;
    for (std::size_t i = 0; i < vars_.size(); ++i) {
      names.push_back(parameter(i));
    }
    for (term_ptr arg : left.args) {
      const auto place = std::find(vars_.begin(), vars_.end(), arg);
      if (place == vars_.end()) {
        return;
      }
      definition.params.push_back(names[static_cast<std::size_t>(place - vars_.begin())]);
    }
    if (!all_different(definition.params) || !open_premises(names, definition.premises)) {
      return;
    }
    definition.body = solver_func_substitute_args(equation.right, vars_, names);
    if (definition.body != nullptr && is_closed(definition.body, names)) {
      found(left.head, std::move(definition));
    }
  }

  static bool all_different(term_span list) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (contains(list.first(i), list[i])) {
        return false;
      }
    }
    return true;
  }

  // A premise in front of a quantifier does not speak of what that one binds: such a name stays free in it, and the
  // definition is not closed.
  bool open_premises(const term_list& names, term_list& out) const {
    for (const premise& p : premises_) {
      const term_span before = term_span(names).first(p.vars);
      const term_span vars = term_span(vars_).first(p.vars);
      term_ptr opened = nullptr;
      if (!is_usable(p.t)) {
        return false;
      }
      if (p.of_entry) {
        const auto relation = pred_split(p.t);
        const term_ptr right = solver_func_substitute_args(relation->right, vars, before);
        opened = right == nullptr ? nullptr : make_binPred_prop(relation->pred, names[p.vars], right);
      } else {
        opened = solver_func_substitute_args(p.t, vars, before);
      }
      if (opened == nullptr || !is_closed(opened, term_span(names).first(p.vars + (p.of_entry ? 1 : 0)))) {
        return false;
      }
      out.push_back(opened);
    }
    return true;
  }

  // f = fun ...
  template <class F>
  static void read_assignment(const binary_operands& equation, F&& found) {
    const term_ptr lambda = equation.right;
    if (!is_var(equation.left) || equation.left->has_meta() || lambda->type() != Lambda || lambda->has_meta() ||
        !solver_func_lambda_params_valid(lambda) || !is_usable(lambda) || !plain_free_variables(lambda).empty()) {
      return;
    }
    function_definition definition{};
    for (std::size_t i = 0; i < lambda->vars().size(); ++i) {
      definition.params.push_back(parameter(i));
    }
    definition.types = lambda->var_types();
    definition.body = solver_func_apply_lambda(lambda, definition.params);
    if (definition.body == nullptr) {
      return;
    }
    if (lambda->condition() != nullptr) {
      definition.condition = solver_func_substitute_args(lambda->condition(), lambda->vars(), definition.params);
      if (definition.condition == nullptr) {
        return;
      }
    }
    found(equation.left, std::move(definition));
  }

  term_list vars_;
  std::vector<premise> premises_;
};

// The number set of a parameter's type; nothing for the reals, which need no mention, and for types of functions.
std::optional<const_type> set_of_type(const lambda_var_type_list& types, std::size_t i) {
  const auto set_of = [](lambda_base_type base) {
    return static_cast<const_type>(int{IntegerSet} + static_cast<int>(base));
  };
  if (i >= types.size() || types[i]->kind != LambdaTypeBase || types[i]->base == LambdaReal) {
    return std::nullopt;
  }
  return set_of(types[i]->base);
}

// The condition of the `fun`, and that the first parameters lie in the sets that their types say.
term_ptr condition_with_types(const function_definition& definition, std::size_t fixed) {
  term_list parts;
  for (std::size_t i = 0; i < fixed; ++i) {
    if (const auto set = set_of_type(definition.types, i)) {
      parts.push_back(make_binPred_prop(Belong, definition.params[i], mk_const(*set)));
    }
  }
  if (definition.condition != nullptr) {
    parts.push_back(definition.condition);
  }
  return lambda_condition_from_list(parts);
}

// The definition as a function of its parameters behind the fixed ones.
term_ptr build_lambda(const function_definition& definition, term_span fixed) {
  const term_span params = definition.params;
  lambda_var_type_list types;
  if (definition.types.size() > fixed.size()) {
    types.assign(definition.types.begin() + static_cast<std::ptrdiff_t>(fixed.size()), definition.types.end());
  }
  const term_ptr condition = condition_with_types(definition, fixed.size());
  const term_ptr lambda = mk_lambda(params.subspan(fixed.size()), types, condition, definition.body);
  return fixed.empty() ? lambda : solver_func_substitute_args(lambda, params.first(fixed.size()), fixed);
}

bool premise_available(const premise_question& question, const premise_checker& checker) {
  if (checker && solver_func_condition_depends_on_active_args(question.premise, question.params, question.fixed)) {
    return checker(question);
  }
  return question.premises.proves(solver_func_substitute_args(question.premise, question.params, question.values));
}

bool has_whole_part(term_span list) { return std::any_of(list.begin(), list.end(), is_one_whole); }

// The parameter still has a say in t, in which it has been replaced: free where nothing could be put in, or as the
// variable of an indefinite integral, which is a function of it.
bool keeps(term_ptr param, term_ptr t) {
  return occurs_free(param, t) ||
         (is_var(param) && holds_any(t, whole_part::indefinite_integral) && name_occurs(param->name(), t));
}

}  // namespace

function_definitions::function_definitions(assumption_facts& facts)
    : below_(facts.below() == nullptr ? nullptr : &facts.below()->table<function_definitions>()) {
  head_mask_ = below_ == nullptr ? 0 : below_->head_mask_;
  for (term_ptr assumption : facts.own()) {
    if (assumption != nullptr) {
      definition_reader().read(assumption, [this](term_ptr head, function_definition&& definition) {
        by_head_[head].push_back(std::move(definition));
        head_mask_ |= head->name_mask();
      });
    }
  }
}

term_ptr solver_func_resolve_lambda_with_options(term_ptr func, std::size_t arity,
                                                 const solver_func_resolve_options& options, prover& premises) {
  if (func == nullptr || arity == 0) {
    return nullptr;
  }
  if (func->type() == Lambda) {
    return func->vars().size() == arity ? func : nullptr;
  }
  const auto& definitions = facts_of(premises.data()).table<function_definitions>();
  if ((definitions.head_mask() & func->name_mask()) == 0) {
    return nullptr;
  }
  const spine applied = spine_of(func);
  const bool at_point = options.eval_args_for_premises.size() == arity;
  if (!is_var(applied.head) || has_whole_part(applied.args) ||
      (at_point && has_whole_part(options.eval_args_for_premises))) {
    return nullptr;
  }
  const std::size_t fixed = applied.args.size();
  return definitions.first(applied.head->bare(), [&](const function_definition& definition) -> term_ptr {
    const term_span params = definition.params;
    if (params.size() != fixed + arity) {
      return nullptr;
    }
    const term_span active = at_point ? options.eval_args_for_premises : params.subspan(fixed);
    term_list values = applied.args;
    values.insert(values.end(), active.begin(), active.end());
    const bool available = std::all_of(definition.premises.begin(), definition.premises.end(), [&](term_ptr premise) {
      return premise_available({premise, params, fixed, values, premises}, options.custom_premise_checker);
    });
    return available ? build_lambda(definition, applied.args) : nullptr;
  });
}

term_ptr solver_func_resolve_lambda(term_ptr func, std::size_t arity, term_span eval_args, prover& premises) {
  return solver_func_resolve_lambda_with_options(func, arity, {.eval_args_for_premises = eval_args}, premises);
}

term_ptr solver_func_resolve_lambda_pointwise(term_ptr func, std::size_t arity, term_span eval_args, prover& premises) {
  if (eval_args.size() != arity) {
    return nullptr;
  }
  return solver_func_resolve_lambda_with_options(
      func, arity,
      {.eval_args_for_premises = eval_args, .custom_premise_checker = solver_func_condition_true_open_for_view},
      premises);
}

std::optional<std::size_t> solver_func_lambda_params_valid(term_ptr lambda) {
  if (lambda == nullptr || lambda->type() != Lambda || lambda->vars().empty()) {
    return std::nullopt;
  }
  const term_span vars = lambda->vars();
  for (std::size_t i = 0; i < vars.size(); ++i) {
    const bool listed_before = std::any_of(vars.begin(), vars.begin() + static_cast<std::ptrdiff_t>(i),
                                           [&](term_ptr earlier) { return earlier->bare() == vars[i]->bare(); });
    if (!is_var(vars[i]) || vars[i]->name().empty() || listed_before) {
      return std::nullopt;
    }
  }
  return vars.size();
}

term_ptr solver_func_substitute_args(term_ptr expr, term_span params, term_span values) {
  const auto is_null = [](term_ptr t) { return t == nullptr; };
  if (expr == nullptr || params.size() != values.size() || std::any_of(params.begin(), params.end(), is_null) ||
      std::any_of(values.begin(), values.end(), is_null)) {
    return nullptr;
  }
  term_ptr result = expr;
  for (std::size_t i = 0; i < params.size() && result != nullptr; ++i) {
    result = subst_term_capture_avoiding(params[i], placeholder(i), result);
    if (result != nullptr && keeps(params[i], result)) {
      return nullptr;
    }
  }
  if (result == nullptr || guarded_places(params.size()).in(result)) {
    return nullptr;
  }
  for (std::size_t i = 0; i < params.size() && result != nullptr; ++i) {
    result = subst_term_capture_avoiding(placeholder(i), values[i], result);
  }
  return result;
}

term_ptr solver_func_apply_lambda(term_ptr lambda, term_span args) {
  return solver_func_lambda_params_valid(lambda) == args.size()
             ? solver_func_substitute_args(lambda->body(), lambda->vars(), args)
             : nullptr;
}

term_list solver_func_lambda_premises(term_ptr lambda, term_span args) {
  term_list premises;
  for (std::size_t i = 0; i < lambda->vars().size(); ++i) {
    if (const auto set = set_of_type(lambda->var_types(), i)) {
      premises.push_back(make_binPred_prop(Belong, args[i], mk_const(*set)));
    }
  }
  if (lambda->condition() != nullptr) {
    premises.push_back(solver_func_substitute_args(lambda->condition(), lambda->vars(), args));
  }
  return premises;
}

std::optional<binary_operands> solver_func_binary_pred(term_ptr t, pred_type pred) {
  const auto view = t == nullptr || t->has_meta() ? std::nullopt : pred_split(t);
  return view && view->pred == pred ? std::optional(binary_operands{view->left, view->right}) : std::nullopt;
}

std::optional<binary_operands> solver_func_binary_connect(term_ptr t, connect_type connect) {
  const auto view = t == nullptr || t->has_meta() ? std::nullopt : composed_prop_split(t);
  return view && view->connect == connect && view->t2 != nullptr ? std::optional(binary_operands{view->t1, view->t2})
                                                                 : std::nullopt;
}

}  // namespace vetro

// Functions that the assumptions define, and the function that a head names, as a `fun` term.
//
// Two forms define a function:
//   f = fun x, y . body                     without free variables
//   forall (x)(y), p ⇒ f(x, y) = body       with any nesting of forall, ∧ and ⇒, where all variables that the equation
//                                           and the premises speak of are those of the quantifiers, which are
//                                           exactly the arguments of f
// An entry such as x ∈ S is the variable x with the premise x ∈ S. A definition that speaks of itself is none, and so
// is one with a scope or with a part on which calculation proves nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/premises.h"

namespace vetro {

// One definition, opened: its parameters are reserved names, so that they are fresh wherever it is used.
struct function_definition {
  term_list params;            // in the order of the arguments
  lambda_var_type_list types;  // as the `fun` gives them; a type missing at the end means the reals
  term_ptr condition;          // of the `fun`; null when there is none
  term_list premises;          // outermost first
  term_ptr body;
};

// The definitions among a list of assumptions by their heads, each group in the order of the assumptions.
class function_definitions {
 public:
  explicit function_definitions(assumption_facts& facts);

  // The first result of visit(const function_definition&) that is not null; null when there is none.
  template <class F>
  term_ptr first(term_ptr head, F visit) const {
    if (term_ptr found = below_ == nullptr ? nullptr : below_->first(head, visit)) {
      return found;
    }
    if (const auto own = by_head_.find(head); own != by_head_.end()) {
      for (const function_definition& definition : own->second) {
        if (term_ptr found = visit(definition)) {
          return found;
        }
      }
    }
    return nullptr;
  }

  // Bits of the names of all heads. A term without any of them has nothing to unfold.
  std::uint64_t head_mask() const { return head_mask_; }

 private:
  const function_definitions* below_;
  std::unordered_map<term_ptr, std::vector<function_definition>> by_head_;
  std::uint64_t head_mask_ = 0;
};

// ---- The function of a head.

// A premise of a definition that is about to be used for f(values). f is applied to `params`; the first `fixed` of them
// have their values for good, the others, the active ones, are the parameters of the function that is looked for.
struct premise_question {
  term_ptr premise;
  term_span params;
  std::size_t fixed;
  term_span values;
  prover& premises;
};
using premise_checker = std::function<bool(const premise_question&)>;

struct solver_func_resolve_options {
  // Where the premises are asked: a value for each active parameter, or nothing for the parameters themselves.
  term_span eval_args_for_premises = {};
  // Decides the premises that speak of an active parameter, in place of the prover.
  premise_checker custom_premise_checker = nullptr;
};

// func as a `fun` of exactly `arity` parameters: func itself where it is one, else what the first definition gives
// whose premises are shown. func may be a name, or a name applied to its first arguments. Types and condition of a
// `fun` stay on the result, and whoever applies it asks for them (solver_func_lambda_premises). Null when there is
// none.
term_ptr solver_func_resolve_lambda_with_options(term_ptr func, std::size_t arity,
                                                 const solver_func_resolve_options& options, prover& premises);
// The premises are asked at the arguments.
term_ptr solver_func_resolve_lambda(term_ptr func, std::size_t arity, term_span eval_args, prover& premises);
// The premises that speak of an active parameter must hold in a neighbourhood of the arguments, of which there must be
// `arity` many.
term_ptr solver_func_resolve_lambda_pointwise(term_ptr func, std::size_t arity, term_span eval_args, prover& premises);

// ---- Tools.

// The number of parameters when lambda is a Lambda whose parameters are different plain names.
std::optional<std::size_t> solver_func_lambda_params_valid(term_ptr lambda);

// expr with the parameters replaced by the values, all at once and without capture. Null for a null among the
// arguments, for lists of different length, and where a value would be captured all the same.
term_ptr solver_func_substitute_args(term_ptr expr, term_span params, term_span values);

// The body of the Lambda with the arguments in it, one for each parameter; null as above.
term_ptr solver_func_apply_lambda(term_ptr lambda, term_span args);

// What an application of the Lambda to the arguments presupposes beside the definedness of its value: a membership for
// each parameter with another type than the reals, and the condition. One argument for each parameter.
term_list solver_func_lambda_premises(term_ptr lambda, term_span args);

// The operands when t is that binary predicate or connective. A scope on t, or variables that it binds, make it none.
struct binary_operands {
  term_ptr left;
  term_ptr right;
};
std::optional<binary_operands> solver_func_binary_pred(term_ptr t, pred_type pred);
std::optional<binary_operands> solver_func_binary_connect(term_ptr t, connect_type connect);

}  // namespace vetro

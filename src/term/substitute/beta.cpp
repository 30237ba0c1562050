// Beta normalisation. The left spine of an application is worked off from its head outwards, so that a long one costs
// no depth and is not searched for its head again at every argument.
#include "term/substitute/beta.h"

#include <algorithm>
#include <array>

#include "number/limits.h"
#include "term/state.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

bool is_arithmetic(term_ptr t) {
  return t->type() == Oper && (t->oper() == Plus || t->oper() == Minus || t->oper() == Mult || t->oper() == Div);
}

// A new name for var: free in none of the contexts nor in extra.
term_ptr beta_fresh_var(term_ptr var, term_list contexts, term_span extra) {
  contexts.insert(contexts.end(), extra.begin(), extra.end());
  return fresh_avoiding(var, contexts);
}

// Where a parameter is listed twice, the later one is the one that the body means.
bool is_shadowed(term_span params, std::size_t i) {
  return std::any_of(params.begin() + static_cast<std::ptrdiff_t>(i) + 1, params.end(),
                     [&](term_ptr later) { return later->bare() == params[i]->bare(); });
}

// A function that says where it is defined: a condition, or parameters that are no reals.
bool has_domain(term_ptr lambda) {
  return lambda->condition() != nullptr ||
         std::any_of(lambda->var_types().begin(), lambda->var_types().end(),
                     [](lambda_type_ptr type) { return type != make_lambda_real_type(); });
}

// A notation whose meaning depends on where its parts are defined.
bool looks_at_domains(term_ptr t) {
  const int head = t->type() == Oper ? static_cast<int>(t->oper()) : t->type() == Pred ? t->pred() : t->head();
  return head == Dom || head == SetDesc || head == Defined;
}

class beta_normalizer {
 public:
  term_ptr run(term_ptr t) {
    const term_ptr result = normal(t);
    return exhausted_ ? nullptr : result;
  }

 private:
  term_ptr normal(term_ptr t) {
    if (!t->has(fact_lambda)) {
      return t;
    }
    auto& known = normal_[domains_count_ ? 1 : 0];
    if (const term_ptr* found = known.find(t); found != nullptr) {
      return *found;
    }
    const int counter = state().fresh_counter;
    const term_ptr result = t->type() == Apply ? normal_spine(t) : normal_parts(t);
    if (result == nullptr || exhausted_) {
      return nullptr;
    }
    // A walk that drew names is not to be swallowed the next time; its result is normal and will draw none.
    if (!stuck_) {
      if (counter == state().fresh_counter) {
        known.keep(t, result);
      }
      known.keep(result, result);
    }
    return result;
  }

  term_ptr normal_parts(term_ptr t) {
    constexpr unsigned parts = walk_body | walk_condition | walk_elements | walk_tag_vars | walk_scope | keep_meta;
    return map_children(t, parts, [this](term_ptr part) { return normal(part); });
  }

  // The head and the arguments of an application whose parts are normal.
  struct position {
    term_ptr whole;
    term_ptr head;
    term_list args;
  };

  static position at(term_ptr t) {
    if (t->type() != Apply || !t->has(fact_lambda)) {
      return {t, t, {}};
    }
    spine parts = spine_of(t);
    return {t, parts.head, std::move(parts.args)};
  }

  [[gnu::noinline]] term_ptr normal_spine(term_ptr t) {
    term_list nodes;  // outermost first
    while (t->type() == Apply && t->has(fact_lambda)) {
      nodes.push_back(t);
      t = t->left();
    }
    const term_ptr head = normal(t);
    if (head == nullptr) {
      return nullptr;
    }
    const bool outside = domains_count_;
    domains_count_ = outside || looks_at_domains(t);
    position current = at(head);
    bool complete = true;
    for (auto node = nodes.rbegin(); complete && node != nodes.rend(); ++node) {
      complete = apply_next(current, *node);
    }
    domains_count_ = outside;
    return complete ? current.whole : nullptr;
  }

  bool may_reduce(term_ptr lambda) const { return !domains_count_ || !has_domain(lambda); }

  // Applies current to the argument of node, and reduces where that makes a ready application.
  bool apply_next(position& current, term_ptr node) {
    const term_ptr left = current.whole;
    const term_ptr right = normal(node->right());
    if (right == nullptr) {
      return false;
    }
    const term_ptr reduced = reduce(current, right);
    if (exhausted_) {
      return false;
    }
    if (reduced != nullptr) {
      const term_ptr again = normal(reduced);
      if (again != nullptr) {
        current = at(again);
      }
      return again != nullptr;
    }
    current.args.push_back(right);
    const term_ptr scope = node->scope() == nullptr ? nullptr : normal(node->scope());
    if (scope == nullptr && node->scope() != nullptr) {
      return false;
    }
    current.whole =
        left == node->left() && right == node->right() && scope == node->scope()
            ? node
            : with_meta(
                  mk_apply(left, right),
                  {.binders = node->binders(), .scope = scope, .soft = node->meta().soft, .guarded = node->guarded()});
    return true;
  }

  // The application of current to one more argument, reduced by one step; null where there is nothing to reduce.
  term_ptr reduce(position& current, term_ptr right) {
    if (current.head->type() == Lambda) {
      const std::size_t count = current.head->vars().size();
      if (count == 0 || current.args.size() + 1 < count || !may_reduce(current.head)) {
        return nullptr;
      }
      current.args.push_back(right);
      const term_span args = current.args;
      const term_ptr body = charged(beta_substitute_lambda(current.head, args.first(count)));
      const term_ptr result = mk_apply_all(body, args.subspan(count));
      current.args.pop_back();
      return result;
    }
    const term_ptr left = current.whole;
    if (right->type() != Lambda || left->type() != Apply || !is_arithmetic(left->left()) ||
        left->right()->type() != Lambda || left->right()->vars().size() != right->vars().size() ||
        right->vars().empty() || !may_reduce(left->right()) || !may_reduce(right)) {
      return nullptr;
    }
    return charged(pointwise(left->left()->oper(), left->right(), right));
  }

  // The operation on two functions, as the function of the operation on their values.
  term_ptr pointwise(oper_type oper, term_ptr f, term_ptr g) {
    term_list vars;
    for (term_ptr var : f->vars()) {
      const term_ptr name = beta_fresh_var(var, {f, g}, vars);
      if (name == nullptr) {
        return nullptr;
      }
      vars.push_back(name);
    }
    const term_ptr left = beta_substitute_lambda(f, vars);
    const term_ptr right = beta_substitute_lambda(g, vars);
    return mk_lambda(vars, {}, nullptr, make_binOp_term(oper, left, right));
  }

  // Counts a step. A null result is a step that failed: the application stands.
  term_ptr charged(term_ptr result) {
    if (result == nullptr) {
      stuck_ = true;
      return nullptr;
    }
    work_ += result->size();
    ++reductions_;
    exhausted_ =
        result->size() > limits::beta_result_size || work_ > limits::beta_work || reductions_ > limits::beta_reductions;
    return result;
  }

  std::array<node_memo<term_ptr>, 2> normal_;  // elsewhere; where domains count
  bool domains_count_ = false;
  std::uint64_t work_ = 0;
  std::uint32_t reductions_ = 0;
  bool exhausted_ = false;
  bool stuck_ = false;  // some step failed, so that a result need not be normal
};

}  // namespace

term_ptr beta_normalize_term(term_ptr t) { return t == nullptr ? nullptr : beta_normalizer().run(t); }

term_ptr beta_substitute_lambda(term_ptr lambda, term_span args) {
  if (lambda == nullptr || lambda->type() != Lambda || args.empty() || lambda->vars().size() != args.size() ||
      std::find(args.begin(), args.end(), nullptr) != args.end()) {
    return nullptr;
  }
  const term_span params = lambda->vars();
  term_list contexts{lambda->body()};
  contexts.insert(contexts.end(), params.begin(), params.end());
  contexts.insert(contexts.end(), args.begin(), args.end());
  term_list names;
  for (term_ptr param : params) {
    const term_ptr name = beta_fresh_var(param, contexts, names);
    if (name == nullptr) {
      return nullptr;
    }
    names.push_back(name);
  }
  term_ptr body = lambda->body();
  for (std::size_t i = 0; i < params.size(); ++i) {
    if (!is_shadowed(params, i)) {
      body = subst_term_capture_avoiding(params[i], names[i], body);
    }
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    body = subst_term_capture_avoiding(names[i], args[i], body);
  }
  return body;
}

}  // namespace vetro

// One run of unfolding. An equivalence is unfolded in both polarities on each level, so results are kept by node.
#include "qv_solver_list/logic/negation.h"

#include <array>

#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class unfolder {
 public:
  term_ptr run(term_ptr t) {
    return done_.get(t, [&] { return t->scope() != nullptr ? t : unfold(t); });
  }

  // The negation of t, pushed inward.
  term_ptr negated(term_ptr t) { return run(make_composed_prop(Not, t, nullptr)); }

 private:
  term_ptr unfold(term_ptr t);
  term_ptr unfold_negated(term_ptr x);

  node_memo<term_ptr> done_;
};

// ---- Laws about the negation of x; null where x has another shape.

using law_of_negation = term_ptr (*)(unfolder& u, term_ptr x);

template <connect_type connect>
std::optional<composed_prop> connected(term_ptr x) {
  const auto view = composed_prop_split(x);
  return view && view->connect == connect && (view->t2 == nullptr) == (connect == Not) ? view : std::nullopt;
}

term_ptr of_negation(unfolder& u, term_ptr x) {
  const auto view = connected<Not>(x);
  return view ? u.run(view->t1) : nullptr;
}

template <quant_type from, quant_type to>
term_ptr of_quantifier(unfolder& u, term_ptr x) {
  return x->type() == Quant && x->quant() == from ? mk_quant(to, x->vars(), u.negated(x->body())) : nullptr;
}

template <connect_type from, connect_type to>
term_ptr of_both(unfolder& u, term_ptr x) {
  const auto view = connected<from>(x);
  if (!view) {
    return nullptr;
  }
  term_ptr right = u.negated(view->t2);
  term_ptr left = u.negated(view->t1);
  return make_composed_prop(to, left, right);
}

term_ptr of_implication(unfolder& u, term_ptr x) {
  const auto view = connected<Impl>(x);
  if (!view) {
    return nullptr;
  }
  term_ptr refuted = u.negated(view->t2);
  term_ptr premise = u.run(view->t1);
  return make_composed_prop(And, premise, refuted);
}

term_ptr of_equivalence(unfolder& u, term_ptr x) {
  const auto view = connected<Iff>(x);
  if (!view) {
    return nullptr;
  }
  term_ptr not_right = u.negated(view->t2);
  term_ptr not_left = u.negated(view->t1);
  term_ptr left = u.run(view->t1);
  term_ptr right = u.run(view->t2);
  term_ptr only_left = make_composed_prop(And, left, not_right);
  term_ptr only_right = make_composed_prop(And, not_left, right);
  return make_composed_prop(Or, only_left, only_right);
}

// A list is in a set when all its members are; x, y ∉ A says more than the negation of that.
template <pred_type from, pred_type to>
term_ptr of_relation(unfolder& /*u*/, term_ptr x) {
  const auto view = pred_split(x);
  return view && view->pred == from && view->left->type() != TermList ? make_binPred_prop(to, view->left, view->right)
                                                                      : nullptr;
}

struct law_row {
  negation_law text;
  law_of_negation apply;  // null for the law that is not about a negation
};

constexpr std::array rows = {
    law_row{{negation_rule::double_negation, "¬¬(a = b) ⇔ a = b"}, of_negation},
    law_row{{negation_rule::universal, "¬(forall (x ∈ S), x = a) ⇔ exists (x ∈ S), x ≠ a"},
            of_quantifier<Forall, Exists>},
    law_row{{negation_rule::existential, "¬(exists (x), x = a) ⇔ forall (x), x ≠ a"}, of_quantifier<Exists, Forall>},
    law_row{{negation_rule::conjunction, "¬(a = b ∧ c = d) ⇔ a ≠ b ∨ c ≠ d"}, of_both<And, Or>},
    law_row{{negation_rule::disjunction, "¬(a = b ∨ c = d) ⇔ a ≠ b ∧ c ≠ d"}, of_both<Or, And>},
    law_row{{negation_rule::implication, "¬(a = b ⇒ c = d) ⇔ a = b ∧ c ≠ d"}, of_implication},
    law_row{{negation_rule::equivalence, "¬(a = b ⇔ c = d) ⇔ a = b ∧ c ≠ d ∨ a ≠ b ∧ c = d"}, of_equivalence},
    law_row{{negation_rule::equal, "¬(a = b) ⇔ a ≠ b"}, of_relation<Eq, Neq>},
    law_row{{negation_rule::not_equal, "¬(a ≠ b) ⇔ a = b"}, of_relation<Neq, Eq>},
    law_row{{negation_rule::greater, "¬(a > b) ⇔ a ≤ b"}, of_relation<Gt, Le>},
    law_row{{negation_rule::greater_or_equal, "¬(a ≥ b) ⇔ a < b"}, of_relation<Ge, Lt>},
    law_row{{negation_rule::less, "¬(a < b) ⇔ a ≥ b"}, of_relation<Lt, Ge>},
    law_row{{negation_rule::less_or_equal, "¬(a ≤ b) ⇔ a > b"}, of_relation<Le, Gt>},
    law_row{{negation_rule::member, "¬(a ∈ A) ⇔ a ∉ A"}, of_relation<Belong, NotBelong>},
    law_row{{negation_rule::not_member, "¬(a ∉ A) ⇔ a ∈ A"}, of_relation<NotBelong, Belong>},
    law_row{{negation_rule::implies_false, "(a = b ⇒ False) ⇔ a ≠ b"}, nullptr},
};

constexpr auto texts = [] {
  std::array<negation_law, rows.size()> list{};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    list[i] = rows[i].text;
  }
  return list;
}();

term_ptr unfolder::unfold_negated(term_ptr x) {
  for (const law_row& row : rows) {
    if (term_ptr pushed = row.apply == nullptr || x->scope() != nullptr ? nullptr : row.apply(*this, x)) {
      return pushed;
    }
  }
  return nullptr;
}

term_ptr unfolder::unfold(term_ptr t) {
  if (t->type() == Quant) {
    return mk_quant(t->quant(), t->vars(), run(t->body()));
  }
  const auto view = composed_prop_split(t);
  if (!view) {
    return t;
  }
  if (view->t2 == nullptr) {
    term_ptr pushed = view->connect == Not ? unfold_negated(view->t1) : nullptr;
    return pushed == nullptr ? t : pushed;
  }
  if (view->connect == Impl && is_constant(view->t2, False)) {
    return negated(view->t1);
  }
  term_ptr left = run(view->t1);
  term_ptr right = run(view->t2);
  return make_composed_prop(view->connect, left, right);
}

}  // namespace

std::span<const negation_law> negation_laws() { return texts; }

term_ptr solver_not_unfold_term(term_ptr t) { return t == nullptr ? nullptr : unfolder().run(t); }

}  // namespace vetro

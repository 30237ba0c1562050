// Which parts a reader takes as a whole, and where an expression may lack a value.
#include "qv_solver_list/algebra/expression_reader.h"

#include "term/node_memo.h"

namespace vetro {
namespace {

constexpr total_operator total_rows[] = {
    {Plus, "{ x | x + y - y > 0 } = { x | x > 0 }"},
    {Neg, "{ x | x > -x + x } = { x | x > 0 }"},
    {Minus, "{ x | x > x - x } = { x | x > 0 }"},
    {Mult, "{ x | x > 0 * (x * x) } = { x | x > 0 }"},
    {Abs, "{ x | x > |x| - |x| } = { x | x > 0 }"},
    {Sgn, "{ x | x > sgn(x) - sgn(x) } = { x | x > 0 }"},
    {Floor, "{ x | x > floor(x) - floor(x) } = { x | x > 0 }"},
    {Ceil, "{ x | x > ceil(x) - ceil(x) } = { x | x > 0 }"},
    {Sin, "{ x | x > sin(x) - sin(x) } = { x | x > 0 }"},
    {Cos, "{ x | x > cos(x) - cos(x) } = { x | x > 0 }"},
    {Arctan, "{ x | x > arctan(x) - arctan(x) } = { x | x > 0 }"},
    {Sinh, "{ x | x > sinh(x) - sinh(x) } = { x | x > 0 }"},
    {Cosh, "{ x | x > cosh(x) - cosh(x) } = { x | x > 0 }"},
    {Tanh, "{ x | x > tanh(x) - tanh(x) } = { x | x > 0 }"},
    {Cbrt, "{ x | x > cbrt(x) - cbrt(x) } = { x | x > 0 }"},
    {SetEnum, "{ x | 0 * f_1({ x }) > y } = { x | 0 * f_1({ x + 0 }) > y }"},
    {SetDesc, "{ x | 0 * f_1({ z | z > x }) > y } = { x | 0 * f_1({ z | z > x + 0 }) > y }"},
    {Tuple, "{ x | (x, y) = (z, y) } = { x | (x + 0, y) = (z, y) }"},
};

bool is_differential(term_ptr t) { return is_apply(t) && (is_oper(t->left(), PD) || is_oper(t->left(), D)); }

bool holds_differential(term_ptr t) { return any_subterm(t, walk_children, is_differential); }

// A differential, or a product or power with one in it.
bool is_product_with_differential(term_ptr t) {
  term_list open{t};
  node_set opened;
  while (!open.empty()) {
    term_ptr part = open.back();
    open.pop_back();
    if (is_differential(part)) {
      return true;
    }
    const auto view = composed_term_split(part);
    if (!view || view->t2 == nullptr || (view->oper != Mult && view->oper != Power) || !opened.insert(part)) {
      continue;
    }
    open.push_back(view->t1);
    if (view->oper == Mult) {
      open.push_back(view->t2);
    }
  }
  return false;
}

// A differential of a differential, or a quotient of differentials.
bool holds_second_order(term_ptr t) {
  return holds_differential(t) && any_subterm(t, walk_children, [](term_ptr part) {
           if (is_differential(part)) {
             return holds_differential(part->right());
           }
           const auto view = composed_term_split(part);
           return view && view->t2 != nullptr && (view->oper == Div || view->oper == Frac) &&
                  holds_differential(view->t2);
         });
}

}  // namespace

bool is_plain_proposition(term_ptr t) {
  if (!is_apply(t) || t->has_meta() || is_dotted_list(t)) {
    return false;
  }
  term_ptr head = spine_of(t).head;
  return head->type() == Pred || head->type() == Connect;
}

bool is_conditional_proposition(term_ptr t) { return t->scope() != nullptr && is_proposition_by_head(t); }

bool is_dotted_list(term_ptr t) {
  if (!t->has(fact_ellipsis)) {
    return false;
  }
  const auto is_ellipsis = [](term_ptr part) { return is_constant(part, Ellipsis); };
  if (t->type() == TermList) {
    return std::any_of(t->elements().begin(), t->elements().end(), is_ellipsis);
  }
  for (term_ptr part = t; part->type() == Apply; part = part->left()) {
    if (is_ellipsis(part->right())) {
      return true;
    }
  }
  // In 1 + 2 + ... + n, the operand to the left ends in the ellipsis.
  const auto view = composed_term_split(t);
  const auto before = view && view->t2 != nullptr ? composed_term_split(view->t1) : std::nullopt;
  return before && before->t2 != nullptr && is_ellipsis(before->t2);
}

bool divides_by_differentials(const composed_term& view) {
  term_ptr divisor = view.oper == Power ? view.t1 : view.t2;
  const bool first_order =
      is_differential(divisor) && is_oper(divisor->left(), D) && !holds_differential(divisor->right());
  if (view.oper == Power) {
    const auto exponent = integer_literal(view.t2);
    return (!exponent || *exponent < (first_order ? -1 : 0)) && is_product_with_differential(divisor);
  }
  return first_order ? holds_second_order(view.t1) : is_product_with_differential(divisor);
}

bool depends_on_writing(term_ptr t) { return is_pred(t->left(), Defined) || is_oper(t->left(), Dom); }

bool describes_set(term_ptr t) { return is_apply(t) && is_apply(t->left()) && is_oper(t->left()->left(), SetDesc); }

std::span<const total_operator> total_operators() { return total_rows; }

partiality partiality_of(term_ptr t) {
  term_ptr head = spine_of(t).head;
  if (head->type() != Oper) {
    return head->type() == Pred || head->type() == Connect ? partiality::none : partiality::function;
  }
  const auto view = composed_term_split(t);
  const bool binary = view && view->t2 != nullptr;
  if (binary && (head->oper() == Div || head->oper() == Frac)) {
    const auto divisor = number_literal(view->t2);
    return divisor && !divisor->is_zero() ? partiality::none : partiality::divisor;
  }
  if (binary && head->oper() == Power) {
    const auto exponent = integer_literal(view->t2);
    return exponent && *exponent > 0 ? partiality::none : partiality::power;
  }
  const bool total = std::any_of(std::begin(total_rows), std::end(total_rows),
                                 [head](const total_operator& row) { return row.oper == head->oper(); });
  return total ? partiality::none : partiality::function;
}

bool may_lack_value(term_ptr t) {
  term_list open{t};
  node_set opened;
  while (!open.empty()) {
    term_ptr part = open.back();
    open.pop_back();
    if (part == nullptr || part->children().empty() || !opened.insert(part)) {
      continue;
    }
    if (part->type() != Apply) {
      open.insert(open.end(), part->children().begin(), part->children().end());
      continue;
    }
    if (partiality_of(part) != partiality::none) {
      return true;
    }
    const spine whole = spine_of(part);
    open.push_back(whole.head);
    open.insert(open.end(), whole.args.begin(), whole.args.end());
  }
  return false;
}

}  // namespace vetro

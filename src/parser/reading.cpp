// What the rules of the grammar build, one function for each shape.
#include "parser/reading.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "term/report.h"

namespace vetro {

// ---- Terms.

term_ptr number_term(lexeme digits) {
  std::string_view text = digits.text();
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size() - 1));
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() ? mk_integer(value) : mk_decimal(text);
}

term_ptr name_term(lexeme name) { return name.number < 0 ? mk_var(name.text()) : name_dispatch(name.text()); }

term_ptr unary(oper_type oper, term_ptr a) { return mk_apply(mk_oper(oper), a); }

term_ptr binary(oper_type oper, term_ptr a, term_ptr b) { return mk_apply(unary(oper, a), b); }

term_ptr pair(term_ptr a, term_ptr b) {
  const term_ptr parts[] = {a, b};
  return unary(Tuple, mk_term_list(parts));
}

term_ptr limit_operator(oper_type plain, limit_index index) {
  return binary(static_cast<oper_type>(plain + static_cast<int>(index.side)), index.variable, index.point);
}

namespace {

bool is_membership(term_ptr head) { return is_pred(head, Belong) || is_pred(head, NotBelong) || is_pred(head, Subset); }

term_ptr list_in_front(term_ptr first, term_ptr second) {
  const term_ptr parts[] = {first, second};
  return mk_term_list(parts);
}

// The proposition t, which opens with a membership of one term, with another term put in front of that one.
term_ptr with_term_in_front(term_ptr term, term_ptr t) {
  const term_ptr function = t->left();
  term_ptr changed = nullptr;
  if (is_membership(function->left())) {
    changed = mk_apply(mk_apply(function->left(), list_in_front(term, function->right())), t->right());
  } else if (is_pred(function->left(), PredChain)) {
    term_list operands(t->right()->elements().begin(), t->right()->elements().end());
    operands.front() = list_in_front(term, operands.front());
    changed = mk_apply(function, mk_term_list(operands));
  } else if (function->left()->type() == Connect) {
    const term_ptr first = with_term_in_front(term, function->right());
    changed = mk_apply(mk_apply(function->left(), first), t->right());
  } else {
    changed = mk_apply(with_term_in_front(term, function), t->right());
  }
  return with_scope(changed, t->scope());
}

// «f(a, b ∈ S)» is f of a and b ∈ S, or f of (a, b) ∈ S. Gives whether the arguments have such a place, after
// reporting.
bool report_two_lists(parse_context& context, term_ptr head, const list_cell* arguments) {
  for (const list_cell* cell = arguments; cell != nullptr && cell->before != nullptr; cell = cell->before) {
    if (!cell->opens_membership || !cell->before->is_term) {
      continue;
    }
    const term_list separate = context.items(arguments);
    term_list joined = separate;
    const auto place = joined.begin() + cell->before->length - 1;
    *place = with_term_in_front(*place, cell->term);
    joined.erase(place + 1);
    context.ambiguous(mk_apply_all(head, separate), mk_apply_all(head, joined));
    return true;
  }
  return false;
}

}  // namespace

term_ptr apply_arguments(parse_context& context, term_ptr head, const list_cell* arguments) {
  if (report_two_lists(context, head, arguments)) {
    return head;
  }
  const term_list& items = context.items(arguments);
  if (!is_pred(head, PredChain)) {
    return mk_apply_all(head, items);
  }
  const term_span all(items);
  const std::size_t preds = (all.size() - 1) / 2;
  const term_ptr pred_list = mk_term_list(all.first(preds));
  const term_ptr operand_list = mk_term_list(all.subspan(preds));
  return mk_apply(mk_apply(head, pred_list), operand_list);
}

term_ptr make_lambda(parse_context& context, const list_cell* binders, const list_cell* conditions, term_ptr body) {
  term_ptr condition = nullptr;
  for (term_ptr next : context.items(conditions)) {
    condition = condition == nullptr ? next : connective(And, condition, next);
  }
  lambda_var_type_list types(binders->length);
  for (const list_cell* cell = binders; cell != nullptr; cell = cell->before) {
    types[cell->length - 1] = cell->type;
  }
  return mk_lambda(context.items(binders), types, condition, body);
}

lambda_type_ptr named_lambda_type(lexeme name) {
  bool known = false;
  const lambda_base_type base = lambda_base_type_from_name(name.text(), &known);
  if (!known) {
    report_text("unknown lambda type '" + std::string(name.text()) + "'\n");
    return nullptr;
  }
  return make_lambda_base_type(base);
}

// ---- Propositions.

term_ptr connective(connect_type connect, term_ptr a, term_ptr b) {
  return mk_apply(mk_apply(mk_connect(connect), a), b);
}

term_ptr congruence(term_ptr a, term_ptr b, term_ptr modulus) {
  return mk_apply(mk_apply(mk_apply(mk_pred(CongruentMod), a), b), modulus);
}

term_ptr function_on(term_ptr function, term_ptr domain, term_ptr codomain) {
  return mk_apply(mk_apply(mk_apply(mk_pred(IsFuncOn), function), domain), codomain);
}

term_ptr quantified(parse_context& context, quant_type quant, const list_cell* vars, proposition body) {
  return mk_quant(quant, context.items(vars), body.term);
}

// ---- Relations and their chains.

relation plain_relation(pred_type pred, term_ptr operand) { return {mk_pred(pred), operand}; }

relation limit_relation(pred_type plain, limit_index index, term_ptr operand) {
  const term_ptr pred = mk_pred(static_cast<pred_type>(plain + static_cast<int>(index.side)));
  return {mk_apply(mk_apply(pred, index.variable), index.point), operand};
}

term_ptr atomic_relation(term_ptr left, relation r) { return mk_apply(mk_apply(r.pred, left), r.operand); }

relation_chain start_chain(parse_context& context, proposition atomic) {
  const term_ptr function = atomic.term->left();
  const list_cell* preds = context.append(nullptr, function->left());
  const list_cell* operands = context.append(context.append(nullptr, function->right()), atomic.term->right());
  return {preds, operands, atomic.opens_membership};
}

relation_chain extend_chain(parse_context& context, relation_chain chain, relation r) {
  const list_cell* preds = context.append(chain.preds, r.pred);
  return {preds, context.append(chain.operands, r.operand), chain.opens_membership};
}

proposition chain_prop(parse_context& context, relation_chain chain) {
  const term_ptr preds = context.list_term(chain.preds);
  const term_ptr operands = context.list_term(chain.operands);
  return {mk_apply(mk_apply(mk_pred(PredChain), preds), operands), chain.opens_membership};
}

}  // namespace vetro

// Opening a node into its head and operands, building such nodes, and cutting conjunctions and chains.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "term/ast.h"

namespace vetro {

// f(a) and f(a, b) with an Oper leaf f; t2 is null in the unary view.
struct composed_term {
  oper_type oper;
  term_ptr t1;
  term_ptr t2;
};
// The same with a Pred leaf.
struct atomic_prop {
  pred_type pred;
  term_ptr t1;
  term_ptr t2;
};
// The same with a Connect leaf.
struct composed_prop {
  connect_type connect;
  term_ptr t1;
  term_ptr t2;
};
// A two-argument application of a Pred leaf.
struct prop {
  pred_type pred;
  term_ptr left;
  term_ptr right;
};

// Each gives nothing for another shape, for more than two arguments, and for null; the splits of propositions also for
// one that carries a side condition, which says something else than the proposition without it.
std::optional<composed_term> composed_term_split(term_ptr t);
std::optional<atomic_prop> atomic_prop_split(term_ptr t);
std::optional<composed_prop> composed_prop_split(term_ptr t);
std::optional<prop> pred_split(term_ptr t);

// Builders. make_composed_term, make_atomic_prop and make_composed_prop know a fixed list of heads and report any other
// on standard output ("error, unsupport ...") with a null result.
term_ptr make_composed_term(oper_type oper, term_ptr t1, term_ptr t2);
term_ptr make_atomic_prop(pred_type pred, term_ptr t1, term_ptr t2);
term_ptr make_composed_prop(connect_type connect, term_ptr t1, term_ptr t2);
term_ptr make_quant_prop(quant_type type, std::string_view name, term_ptr body);
term_ptr make_binPred_prop(pred_type pred, term_ptr t1, term_ptr t2);
term_ptr make_binOp_term(oper_type oper, term_ptr t1, term_ptr t2);
term_ptr make_unOp_term(oper_type oper, term_ptr t1);
term_ptr make_const(const_type type, int num);  // num is the value of an Integer, ignored otherwise
std::string make_quantvar_str(int id);          // "qvar%d"
term_ptr make_var(int id);                      // the variable of that name
term_ptr make_tuple(term_span components);      // Tuple(T(components))

// The conjuncts of t in text order; scopes on an And go to its conjuncts, and every scope is brought to its flat form.
term_list term_split_and(term_ptr t);
term_ptr term_split_and_preserve(term_ptr t);

// The links of a comparison nested on its left side, or of a PredChain, last link first; (t) for any other term, and
// the empty list for null.
term_list long_order_split(term_ptr t);

// The flattened operands of the connective, left to right; (t) for any other term.
term_list split_connect(term_ptr t, connect_type connect);

// Null for the empty list, the element for one, else joined by And: the first nests to the right, the second to the
// left.
term_ptr and_compose(term_span list);
term_ptr lambda_condition_from_list(term_span list);

// Chained relations.
bool is_predchain(term_ptr t);
term_list predchain_split(term_ptr t);  // the relations in text order; empty when t is no chain
term_ptr elim_predchain(term_ptr t);    // each chain replaced by the conjunction of its relations; null for null
// A chain from its n predicates and n + 1 operands; the next two build it link by link, which costs a copy each time.
term_ptr make_predchain(term_span preds, term_span operands);
term_ptr atomic_to_pre_chained_prop(term_ptr t);                                 // null for any other shape
term_ptr pre_chained_prop_add(term_ptr chain, term_ptr pred, term_ptr operand);  // on failure chain as it was

// Directly nested quantifiers of one kind joined into one, everywhere in t.
bool is_Quant_in_Quant(term_ptr t);
term_ptr merge_quant_term(term_ptr t);
term_list merge_quant_term_list(term_span list);

}  // namespace vetro

// What the rules of the grammar build, one function for each shape.
#pragma once

#include "parser/parse_context.h"

namespace vetro {

// ---- Terms.
term_ptr number_term(lexeme digits);  // beyond 32 bits a Decimal constant with the digits
term_ptr name_term(lexeme name);      // the leaf that the name stands for, or a variable
term_ptr unary(oper_type oper, term_ptr a);
term_ptr binary(oper_type oper, term_ptr a, term_ptr b);
term_ptr pair(term_ptr a, term_ptr b);
term_ptr limit_operator(oper_type plain, limit_index index);
inline oper_type with_upper_bound(oper_type bounded) { return static_cast<oper_type>(bounded + 1); }

// Applies head to the arguments; the flat printed form of a chain becomes its two lists. Arguments with two readings
// are reported and stop the context.
term_ptr apply_arguments(parse_context& context, term_ptr head, const list_cell* arguments);

term_ptr make_lambda(parse_context& context, const list_cell* binders, const list_cell* conditions, term_ptr body);
lambda_type_ptr named_lambda_type(lexeme name);  // null, reported, for an unknown name

// ---- Propositions.
inline proposition closed(term_ptr t) { return {t, false}; }
// A proposition that begins with the text of another one.
inline proposition continued(proposition first, term_ptr t) { return {t, first.opens_membership}; }
term_ptr connective(connect_type connect, term_ptr a, term_ptr b);
term_ptr congruence(term_ptr a, term_ptr b, term_ptr modulus);
term_ptr function_on(term_ptr function, term_ptr domain, term_ptr codomain);
term_ptr quantified(parse_context& context, quant_type quant, const list_cell* vars, proposition body);

// ---- Relations and their chains.
relation plain_relation(pred_type pred, term_ptr operand);
relation limit_relation(pred_type plain, limit_index index, term_ptr operand);
term_ptr atomic_relation(term_ptr left, relation r);
relation_chain start_chain(parse_context& context, proposition atomic);
relation_chain extend_chain(parse_context& context, relation_chain chain, relation r);
proposition chain_prop(parse_context& context, relation_chain chain);

}  // namespace vetro

/* The grammar of the formula language.

   A generalised parser: where the tables have two actions it follows both, actions wait until one reading is left, and
   two readings that both survive are reported, never chosen between. Precedences stand only where the language has one
   reading. A vertical bar, a tilde and an indexed arrow have none on purpose: in «a | f(x)» the argument list may belong
   to f or to the whole proposition.

   Two things keep the cost linear. A bar in front of a subscript is a token of its own, so that no other bar opens the
   search for an evaluation bar. And the items of an argument list are taken one by one: whether the last terms also
   read as the left side of a membership, as in «f(a, b ∈ S)», is seen when the list is complete (apply_arguments). */

%glr-parser
%expect 26  /* 18 around the evaluation bar; 8 of relations without precedence in front of "(" and "[@scope" */
%define api.pure
%define api.prefix {formula_}
%define api.token.prefix {TOK_}
%define parse.error verbose
%param { vetro::parse_context& context }
%param { vetro::scanner& tokens }

%code requires {
#include "parser/parse_context.h"
namespace vetro {
class scanner;
}
}

%union {
  vetro::lexeme word;
  vetro::term_ptr term;
  vetro::proposition prop;
  vetro::relation relation;
  vetro::relation_chain chain;
  vetro::limit_index limit;
  const vetro::list_cell* list;
  vetro::lambda_type_ptr type;
  vetro::oper_type oper;
  vetro::pred_type pred;
}

%code {
#include <cstdlib>
#include <utility>

#include "parser/reading.h"
#include "parser/scanner.h"
#include "number/limits.h"
#include "platform/memory_end.h"

// While several readings are open, the skeleton's stack also holds what they have reduced.
#define YYINITDEPTH vetro::limits::parse_stack_initial
#define YYMAXDEPTH \
  (yystackp->yysplitPoint == nullptr ? vetro::limits::parse_stack : vetro::limits::parse_stack_of_readings)
// The skeleton goes on with half-made tables where it gets no memory, so that it never learns of that. It reallocates
// nothing but its table of readings; none above their limit means "memory exhausted".
#define YYMALLOC(bytes) allocate(bytes)
#define YYREALLOC(block, bytes) grow_readings(block, bytes)

using namespace vetro;  // NOLINT: the kinds of terms, in the actions

namespace {

int yylex(FORMULA_STYPE* value, parse_context&, scanner& tokens) { return tokens.next(*value); }

void yyerror(parse_context& context, scanner&, const char* message) { context.syntax_error(message); }

void* or_out_of_memory(void* block) {
  if (block == nullptr) {
    out_of_memory();
  }
  return block;
}

void* allocate(std::size_t bytes) { return or_out_of_memory(std::malloc(bytes)); }

void* grow_readings(void* block, std::size_t bytes) {
  return bytes > limits::parse_readings * sizeof(void*) ? nullptr : or_out_of_memory(std::realloc(block, bytes));
}

// Two readings that meet in a term or in a proposition.
term_ptr two_terms(FORMULA_STYPE first, FORMULA_STYPE second);
proposition two_props(FORMULA_STYPE first, FORMULA_STYPE second);

}  // namespace
}

%token YYEOF 0 "end of file"
%token <word> INTEGER DECIMAL VAR QUOTED_VAR
%token <term> PRED CONNECT
%token START_PROGRAM START_TERM START_METHOD START_METHOD_LIST START_TARGET
%token COMMA APOSTROPHE QUESTION_MARK DOT CARET UNDERSCORE IMAGINARY_UNIT LPAREN RPAREN LBRACKET RBRACKET LBRACE RBRACE
/* The bracket of a modulus opens no argument list, so that it ends the right side whatever operators that holds. */
%token LPAREN_OF_MODULUS "LPAREN"
%token SCOPELBRACKET ATRBRACKET COLON SEMICOLON VERTICAL_BAR BAR_BEFORE_SUBSCRIPT "VERTICAL_BAR"
%token INFTY POS_INFTY NEG_INFTY PLUS MINUS PLUSMINUS MULT DOTPROD DIV MOD FACT EMPTYSET INTER UNION SETDIFF COMPOSE
%token OPER_SUM OPER_PROD OPER_UNION OPER_INTER OPER_SEQLIM OPER_SEQLIMSUP OPER_SEQLIMINF OPER_LIM OPER_LIMSUP
%token OPER_LIMINF OPER_INT OPER_BIGO OPER_LITTLEO SEQ_TENDS_TO ARROW CASES IF OTHERWISE ELLIPSIS FALSE
%token EQ NEQ LT LE GT GE APPRO IDENTEQ TILDE NOT CONJ DISJ IMPLY EQUIV FORALL EXISTS EXISTS_UNIQUE
%token BELONG NOT_BELONG SUBSET
%token PATTERN_VAR PATTERN_CONST PATTERN_OPER PATTERN_PRED PATTERN_CONNECT PATTERN_TERMLIST PATTERN_FUNCAPPLY FUN

/* Reserved for the notation of whole proofs; no formula holds one. */
%token KNOWN GOAL PROVE CONCLUDE FIND_ALL SOLVE_END CALCULATE SOLUTION RANGE AFTER_CHECK CHECK_PASS CHECK_FAIL WITH
%token CONTRA SOLVE HAVE THEN SUFFICE SUBGOAL USE SUPPOSE FIX SUCH_THAT WHEN SET TO_SATISFY SINCE SUBSTITUTE INTO SAME
%token BY TRANS BOTH ACTION_MULT ACTION_SQUARE ACTION_LOG ACTION_SIN FOR ORDER ACTION_DERI ACTION_DIFF ACTION_INT
%token ACTION_LIM ACTION_COMPARE_COEF FORALL_UNICODE EXISTS_UNICODE QUANT_SCOPE_BLOCK WHEN_END
%token METHOD DERIVATION KNOWLEDGE PARTIAL BIG_OPER UMINUS INVALID_UTF8 UNKNOWN_UTF8

/* Weakest first. */
%precedence COMMA
%precedence ARGUMENT    /* an argument ends at a comma */
%precedence QUANTIFIER  /* reaches over all connectives */
%left EQUIV
%left IMPLY
%left DISJ
%left CONJ
%precedence NOT
%precedence SCOPELBRACKET
%precedence EQ IDENTEQ BELONG NOT_BELONG SUBSET ARROW  /* a relation ends its right operand here */
%precedence FUN
%left UNION INTER SETDIFF
%nonassoc COMPOSE
%left PLUS MINUS PLUSMINUS
%left MULT DOTPROD DIV MOD
%precedence UMINUS
%precedence CARET UNDERSCORE FACT APOSTROPHE LPAREN

%type <term> term_or_prop term infinity interval pattern_term big_oper case_branch
%type <prop> prop atomic_chained_prop
%type <chain> pre_chained_prop chained_prop
%type <relation> relation membership
%type <limit> limit_index
%type <list> term_or_prop_paren_list term_comma_list term_or_term_comma_list prop_or_prop_comma_list arguments
%type <list> case_branches case_branch_list lambda_binder_list optional_lambda_condition
%type <type> lambda_type lambda_type_atom lambda_base_type
%type <oper> bounded_oper limit_oper
%type <pred> comparison

%%

start: START_TERM term_or_prop { context.result = $2; };

term_or_prop:
  term
| prop { $$ = $1.term; }
;

/* ---- Terms. */

term:
  VAR { $$ = name_term($1); }
| QUOTED_VAR { $$ = mk_var($1.text()); }
| IMAGINARY_UNIT { $$ = mk_const(I); }
| INTEGER { $$ = number_term($1); }
| DECIMAL { $$ = mk_decimal($1.text()); }
| EMPTYSET { $$ = mk_const(EmptySet); }
| ELLIPSIS { $$ = mk_const(Ellipsis); }
| infinity
| interval
| pattern_term %merge <two_terms>
| LPAREN term RPAREN { $$ = $2; }
| LBRACKET term RBRACKET { $$ = $2; }
| PLUS term %prec UMINUS %merge <two_terms> { $$ = $2; }
| MINUS term %prec UMINUS %merge <two_terms> { $$ = unary(Neg, $2); }
| PLUSMINUS term %prec UMINUS %merge <two_terms> { $$ = unary(PosNeg, $2); }
| term PLUS term %merge <two_terms> { $$ = binary(Plus, $1, $3); }
| term MINUS term %merge <two_terms> { $$ = binary(Minus, $1, $3); }
| term PLUSMINUS term %merge <two_terms> { $$ = binary(PlusMinus, $1, $3); }
| term SETDIFF term %merge <two_terms> { $$ = binary(SetMinus, $1, $3); }
| term MULT term %merge <two_terms> { $$ = binary(Mult, $1, $3); }
| term DOTPROD term %merge <two_terms> { $$ = binary(DotProd, $1, $3); }
| term DIV term %merge <two_terms> { $$ = binary(Div, $1, $3); }
| term MOD term %merge <two_terms> { $$ = binary(Mod, $1, $3); }
| term INTER term %merge <two_terms> { $$ = binary(Inter, $1, $3); }
| term UNION term %merge <two_terms> { $$ = binary(Union, $1, $3); }
| term COMPOSE term %merge <two_terms> { $$ = binary(Compose, $1, $3); }
| term FACT %merge <two_terms> { $$ = unary(Fact, $1); }
| term APOSTROPHE %merge <two_terms> { $$ = unary(SingleDeri, $1); }
| term CARET LBRACE term RBRACE %merge <two_terms> { $$ = binary(Power, $1, $4); }
| term CARET LPAREN term RPAREN %merge <two_terms> { $$ = binary(Power, $1, $4); }
| term CARET INTEGER %merge <two_terms> { $$ = binary(Power, $1, number_term($3)); }
| term CARET VAR %merge <two_terms> { $$ = binary(Power, $1, mk_var($3.text())); }
| term CARET IMAGINARY_UNIT %merge <two_terms> { $$ = binary(Power, $1, mk_const(I)); }
| term UNDERSCORE LBRACE term_or_prop RBRACE %merge <two_terms> { $$ = binary(Index, $1, $4); }
| term UNDERSCORE INTEGER %merge <two_terms> { $$ = binary(Index, $1, number_term($3)); }
| term UNDERSCORE VAR %merge <two_terms> { $$ = binary(Index, $1, mk_var($3.text())); }
| term LPAREN arguments RPAREN %merge <two_terms> {
    $$ = apply_arguments(context, $1, $3);
    if (context.stopped()) {
      YYABORT;
    }
  }
| term SCOPELBRACKET prop ATRBRACKET %merge <two_terms> { $$ = with_scope($1, $3.term); }
| term BAR_BEFORE_SUBSCRIPT UNDERSCORE LBRACE term RBRACE CARET LBRACE term RBRACE %merge <two_terms> {
    $$ = mk_apply(binary(EvalBar, $1, $5), $9);
  }
| VERTICAL_BAR term VERTICAL_BAR { $$ = unary(Abs, $2); }
| VERTICAL_BAR term BAR_BEFORE_SUBSCRIPT { $$ = unary(Abs, $2); }
| LBRACE term RBRACE { $$ = unary(SetEnum, mk_term_list({&$2, 1})); }
| LBRACE term_comma_list RBRACE { $$ = unary(SetEnum, context.list_term($2)); }
| LBRACE term VERTICAL_BAR prop_or_prop_comma_list RBRACE { $$ = binary(SetDesc, $2, context.list_term($4)); }
| LPAREN term_comma_list RPAREN { $$ = unary(Tuple, context.list_term($2)); }
| CASES LBRACE case_branches RBRACE { $$ = unary(PiecewiseFunc, context.list_term($3)); }
| FUN lambda_binder_list optional_lambda_condition DOT term %prec FUN %merge <two_terms> { $$ = make_lambda(context, $2, $3, $5); }
| big_oper LPAREN term_or_term_comma_list RPAREN { $$ = mk_apply_all($1, context.items($3)); }
;

infinity:
  INFTY { $$ = mk_const(Infty); }
| POS_INFTY { $$ = mk_const(PosInfty); }
| NEG_INFTY { $$ = mk_const(NegInfty); }
;

interval:
  LBRACKET term COMMA term RPAREN { $$ = binary(IntervalLcRo, $2, $4); }
| LPAREN term COMMA term RBRACKET { $$ = binary(IntervalLoRc, $2, $4); }
| LBRACKET term COMMA term RBRACKET { $$ = binary(IntervalLcRc, $2, $4); }
;

pattern_term:
  UNDERSCORE { $$ = mk_pattern(PatternIgnore); }
| QUESTION_MARK { $$ = mk_pattern(PatternWildCard); }
| PATTERN_VAR { $$ = mk_pattern(PatternVar); }
| PATTERN_CONST { $$ = mk_pattern(PatternConst); }
| PATTERN_OPER { $$ = mk_pattern(PatternOper); }
| PATTERN_FUNCAPPLY { $$ = mk_pattern(PatternFuncApply); }
| LBRACE PATTERN_TERMLIST RBRACE { $$ = unary(SetEnum, mk_pattern(PatternTermList)); }
| LBRACE term VERTICAL_BAR PATTERN_TERMLIST RBRACE { $$ = binary(SetDesc, $2, mk_pattern(PatternTermList)); }
| LPAREN PATTERN_TERMLIST RPAREN { $$ = unary(Tuple, mk_pattern(PatternTermList)); }
| CASES LBRACE PATTERN_TERMLIST RBRACE { $$ = unary(PiecewiseFunc, mk_pattern(PatternTermList)); }
| PATTERN_TERMLIST BELONG term {
    $$ = atomic_relation(mk_pattern(PatternTermList), plain_relation(Belong, $3));
  }
| PATTERN_TERMLIST SUBSET term {
    $$ = atomic_relation(mk_pattern(PatternTermList), plain_relation(Subset, $3));
  }
;

/* Heads of big operators: partial applications that the list in parentheses completes. */

big_oper:
  OPER_INT { $$ = mk_oper(IndefInt); }
| OPER_INT UNDERSCORE LBRACE term RBRACE CARET LBRACE term RBRACE { $$ = binary(DefInt, $4, $8); }
| bounded_oper UNDERSCORE LBRACE term_or_prop RBRACE { $$ = unary($1, $4); }
| bounded_oper UNDERSCORE LBRACE term_or_prop RBRACE CARET LBRACE term RBRACE { $$ = binary(with_upper_bound($1), $4, $8); }
| limit_oper UNDERSCORE LBRACE limit_index RBRACE { $$ = limit_operator($1, $4); }
;

bounded_oper:
  OPER_SUM { $$ = BigSum; }
| OPER_PROD { $$ = BigProd; }
| OPER_UNION { $$ = BigUnion; }
| OPER_INTER { $$ = BigInter; }
;

limit_oper:
  OPER_LIM { $$ = Lim; }
| OPER_LIMSUP { $$ = LimSup; }
| OPER_LIMINF { $$ = LimInf; }
| OPER_SEQLIM { $$ = SeqLim; }
| OPER_SEQLIMSUP { $$ = SeqLimSup; }
| OPER_SEQLIMINF { $$ = SeqLimInf; }
| OPER_BIGO { $$ = BigO; }
| OPER_LITTLEO { $$ = LittleO; }
;

limit_index:
  term ARROW term { $$ = {$1, $3, two_sided}; }
| term ARROW term CARET PLUS { $$ = {$1, $3, from_right}; }
| term ARROW term CARET MINUS { $$ = {$1, $3, from_left}; }
;

case_branches:
  case_branch_list
| case_branch_list SEMICOLON OTHERWISE term { $$ = context.append($1, $4); }
;

case_branch_list:
  case_branch { $$ = context.append(nullptr, $1); }
| case_branch_list SEMICOLON case_branch { $$ = context.append($1, $3); }
;

case_branch: term IF prop { $$ = pair($1, $3.term); };

/* ---- Lambdas. */

lambda_binder_list:
  term { $$ = context.append_binder(nullptr, $1, make_lambda_real_type()); }
| term COLON lambda_type { $$ = context.append_binder(nullptr, $1, $3); }
| lambda_binder_list COMMA term { $$ = context.append_binder($1, $3, make_lambda_real_type()); }
| lambda_binder_list COMMA term COLON lambda_type { $$ = context.append_binder($1, $3, $5); }
;

optional_lambda_condition:
  %empty { $$ = nullptr; }
| LBRACKET prop_or_prop_comma_list RBRACKET { $$ = $2; }
;

lambda_type:
  lambda_type_atom
| lambda_type_atom ARROW lambda_type { $$ = make_lambda_func_type($1, $3); }
;

lambda_type_atom:
  lambda_base_type
| LPAREN lambda_type RPAREN { $$ = $2; }
;

lambda_base_type:
  VAR {
    $$ = named_lambda_type($1);
    if ($$ == nullptr) {
      YYABORT;
    }
  }
;

/* ---- Propositions. */

prop:
  PRED { $$ = closed($1); }
| CONNECT { $$ = closed($1); }
| PATTERN_PRED { $$ = closed(mk_pattern(PatternPred)); }
| PATTERN_CONNECT { $$ = closed(mk_pattern(PatternConnect)); }
| FALSE { $$ = closed(mk_const(False)); }
| LPAREN prop RPAREN { $$ = closed($2.term); }
| prop LPAREN arguments RPAREN %merge <two_props> {
    $$ = continued($1, apply_arguments(context, $1.term, $3));
    if (context.stopped()) {
      YYABORT;
    }
  }
| atomic_chained_prop %merge <two_props>
| chained_prop %merge <two_props> { $$ = chain_prop(context, $1); }
| term IDENTEQ term LPAREN_OF_MODULUS MOD term RPAREN { $$ = closed(congruence($1, $3, $6)); }
| term COLON term ARROW term { $$ = closed(function_on($1, $3, $5)); }
| NOT prop { $$ = closed(mk_apply(mk_connect(Not), $2.term)); }
| prop CONJ prop { $$ = continued($1, connective(And, $1.term, $3.term)); }
| prop DISJ prop { $$ = continued($1, connective(Or, $1.term, $3.term)); }
| prop IMPLY prop { $$ = continued($1, connective(Impl, $1.term, $3.term)); }
| prop EQUIV prop { $$ = continued($1, connective(Iff, $1.term, $3.term)); }
| FORALL term_or_prop_paren_list COMMA prop %prec QUANTIFIER {
    $$ = closed(quantified(context, Forall, $2, $4));
  }
| EXISTS term_or_prop_paren_list COMMA prop %prec QUANTIFIER {
    $$ = closed(quantified(context, Exists, $2, $4));
  }
| EXISTS_UNIQUE term_or_prop_paren_list COMMA prop %prec QUANTIFIER {
    $$ = closed(quantified(context, ExistsUnique, $2, $4));
  }
| prop SCOPELBRACKET prop ATRBRACKET %merge <two_props> { $$ = continued($1, with_scope($1.term, $3.term)); }
;

atomic_chained_prop:
  term relation { $$ = closed(atomic_relation($1, $2)); }
| term membership { $$ = {atomic_relation($1, $2), true}; }
| term_comma_list membership { $$ = {atomic_relation(context.list_term($1), $2), true}; }
;

pre_chained_prop:
  atomic_chained_prop { $$ = start_chain(context, $1); }
| chained_prop
;

chained_prop:
  pre_chained_prop relation { $$ = extend_chain(context, $1, $2); }
| pre_chained_prop membership { $$ = extend_chain(context, $1, $2); }
;

/* A relation and its right operand. Only a membership may stand behind a list of terms. */

relation:
  comparison term %prec EQ { $$ = plain_relation($1, $2); }
| IDENTEQ term { $$ = plain_relation(IdentEq, $2); }
| VERTICAL_BAR term { $$ = plain_relation(Divides, $2); }
| ARROW term { $$ = plain_relation(TendsToWithoutIndex, $2); }
| ARROW term CARET PLUS { $$ = plain_relation(RightTendsToWithoutIndex, $2); }
| ARROW term CARET MINUS { $$ = plain_relation(LeftTendsToWithoutIndex, $2); }
| ARROW UNDERSCORE LBRACE limit_index RBRACE term { $$ = limit_relation(TendsTo, $4, $6); }
| SEQ_TENDS_TO UNDERSCORE LBRACE limit_index RBRACE term { $$ = limit_relation(SeqTendsTo, $4, $6); }
| TILDE UNDERSCORE LBRACE limit_index RBRACE term { $$ = limit_relation(AsymEquiv, $4, $6); }
;

comparison:
  EQ { $$ = Eq; }
| NEQ { $$ = Neq; }
| GE { $$ = Ge; }
| LE { $$ = Le; }
| GT { $$ = Gt; }
| LT { $$ = Lt; }
| APPRO { $$ = Appro; }
;

membership:
  BELONG term { $$ = plain_relation(Belong, $2); }
| NOT_BELONG term { $$ = plain_relation(NotBelong, $2); }
| SUBSET term { $$ = plain_relation(Subset, $2); }
;

/* ---- Lists. */

term_or_prop_paren_list:
  LPAREN term_or_prop RPAREN { $$ = context.append(nullptr, $2); }
| term_or_prop_paren_list LPAREN term_or_prop RPAREN { $$ = context.append($1, $3); }
;

term_comma_list:
  term COMMA term { $$ = context.append(context.append(nullptr, $1), $3); }
| term_comma_list COMMA term { $$ = context.append($1, $3); }
;

term_or_term_comma_list:
  term { $$ = context.append(nullptr, $1); }
| term_comma_list
;

prop_or_prop_comma_list:
  prop { $$ = context.append(nullptr, $1.term); }
| prop_or_prop_comma_list COMMA prop { $$ = context.append($1, $3.term); }
;

arguments:
  term %prec ARGUMENT { $$ = context.append_term(nullptr, $1); }
| prop { $$ = context.append_prop(nullptr, $1); }
| arguments COMMA term %prec ARGUMENT { $$ = context.append_term($1, $3); }
| arguments COMMA prop { $$ = context.append_prop($1, $3); }
;

%%

namespace {

// The skeleton hands over nothing but the two values, so the record of the running parse is found here.
thread_local parse_context* running = nullptr;

term_ptr two_terms(FORMULA_STYPE first, FORMULA_STYPE second) {
  running->ambiguous(first.term, second.term);
  return first.term;
}

proposition two_props(FORMULA_STYPE first, FORMULA_STYPE second) {
  running->ambiguous(first.prop.term, second.prop.term);
  return first.prop;
}

}  // namespace

int vetro::parse_source(parse_context& context) {
  scanner tokens(context);
  parse_context* const outer = std::exchange(running, &context);
  const int code = formula_parse(context, tokens);
  running = outer;
  return context.stopped() ? 1 : code;
}

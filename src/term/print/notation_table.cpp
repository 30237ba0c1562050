// The rows of the pretty printer, in the order of trial. A head has more than one row only where the first asks for a
// TermList.
#include "term/print/notation_table.h"

#include <algorithm>
#include <array>

namespace vetro::print_table {
namespace {

// The strengths, in short.
constexpr print_prec IFF = PRINT_PREC_IFF;
constexpr print_prec IMPL = PRINT_PREC_IMPL;
constexpr print_prec OR = PRINT_PREC_OR;
constexpr print_prec AND = PRINT_PREC_AND;
constexpr print_prec NOT = PRINT_PREC_NOT;
constexpr print_prec REL = PRINT_PREC_REL;
constexpr print_prec COLON = PRINT_PREC_COLON;
constexpr print_prec BIG = PRINT_PREC_BIG_OPER;
constexpr print_prec SET = PRINT_PREC_SET;
constexpr print_prec COMPOSE = PRINT_PREC_COMPOSE;
constexpr print_prec ADD = PRINT_PREC_ADD;
constexpr print_prec MUL = PRINT_PREC_MUL;
constexpr print_prec UNARY = PRINT_PREC_UNARY;
constexpr print_prec FACT = PRINT_PREC_FACT;
constexpr print_prec POWER = PRINT_PREC_POWER_INDEX;
constexpr print_prec APPLY = PRINT_PREC_APPLY;

// Operands, by the number of the argument.
constexpr operand p(std::uint8_t i) { return {i, operand_rule::plain, PRINT_PREC_NONE}; }
constexpr operand c(std::uint8_t i, print_prec at) { return {i, operand_rule::child, at}; }
constexpr operand s(std::uint8_t i, print_prec at) { return {i, operand_rule::strict, at}; }
constexpr operand mult_right(std::uint8_t i) { return {i, operand_rule::mult_right, MUL}; }
constexpr operand rel(std::uint8_t i) { return {i, operand_rule::relation, REL}; }
constexpr operand side(std::uint8_t i) { return {i, operand_rule::side_point, POWER}; }
constexpr operand elements(std::uint8_t i) { return {i, operand_rule::elements, PRINT_PREC_NONE}; }

constexpr print_row rows[] = {
    {PredChain, 2, REL, "", {}, 0, row_form::chain},
    {IntervalLoRo, 2, APPLY, "(#, #)", {p(0), p(1)}},
    {IntervalLcRo, 2, APPLY, "[#, #)", {p(0), p(1)}},
    {IntervalLoRc, 2, APPLY, "(#, #]", {p(0), p(1)}},
    {IntervalLcRc, 2, APPLY, "[#, #]", {p(0), p(1)}},
    {Plus, 2, ADD, "# + #", {c(0, ADD), c(1, ADD)}},
    {Neg, 1, UNARY, "-#", {s(0, UNARY)}},
    {Minus, 2, ADD, "# - #", {c(0, ADD), s(1, ADD)}},
    {PosNeg, 1, UNARY, "±#", {s(0, UNARY)}},
    {PlusMinus, 2, ADD, "# ± #", {c(0, ADD), s(1, ADD)}},
    {Mult, 2, MUL, "# * #", {c(0, MUL), mult_right(1)}},
    {Div, 2, MUL, "# / #", {c(0, MUL), s(1, MUL)}},
    {Mod, 2, MUL, "# mod #", {c(0, MUL), s(1, MUL)}},
    {Fact, 1, FACT, "#!", {c(0, FACT)}},
    {Power, 2, POWER, "#^{#}", {s(0, POWER), p(1)}},
    {NthDeri, 2, POWER, "NthDeri(#, #)", {p(0), p(1)}},
    {Index, 2, POWER, "#_{#}", {s(0, POWER), p(1)}},
    {Abs, 1, APPLY, "|#|", {p(0)}},
    {Cardinal, 1, APPLY, "|#|", {p(0)}},
    {Sqrtn, 2, APPLY, "sqrtn(#, #)", {p(0), p(1)}},
    {MaxInSet, 1, APPLY, "max(#)", {p(0)}},
    {MinInSet, 1, APPLY, "min(#)", {p(0)}},
    {SetEnum, 1, APPLY, "{ # }", {elements(0)}, 0},
    {SetDesc, 2, APPLY, "{ # | # }", {p(0), elements(1)}, 1},
    {Union, 2, SET, "# ∪ #", {c(0, SET), c(1, SET)}},
    {Inter, 2, SET, "# ∩ #", {c(0, SET), c(1, SET)}},
    {SetMinus, 2, SET, "# \\ #", {c(0, SET), s(1, SET)}},
    {Compose, 2, COMPOSE, "# ∘ #", {s(0, COMPOSE), s(1, COMPOSE)}},
    {SingleDeri, 1, FACT, "#'", {c(0, FACT)}},
    {BigSum, 2, BIG, "sum_{ # } (#)", {p(0), p(1)}},
    {BigSumSup, 3, BIG, "sum_{ # }^{ # } (#)", {p(0), p(1), p(2)}},
    {BigProd, 2, BIG, "prod_{ # } (#)", {p(0), p(1)}},
    {BigProdSup, 3, BIG, "prod_{ # }^{ # } (#)", {p(0), p(1), p(2)}},
    {BigUnion, 2, BIG, "union_{ # } (#)", {p(0), p(1)}},
    {BigUnionSup, 3, BIG, "union_{ # }^{ # } (#)", {p(0), p(1), p(2)}},
    {BigInter, 2, BIG, "inter_{ # } (#)", {p(0), p(1)}},
    {BigInterSup, 3, BIG, "inter_{ # }^{ # } (#)", {p(0), p(1), p(2)}},
    {SeqLim, 3, BIG, "seqlim_{ # → # } (#)", {p(0), p(1), p(2)}},
    {SeqLimSup, 3, BIG, "seqlimsup_{ # → # } (#)", {p(0), p(1), p(2)}},
    {SeqLimInf, 3, BIG, "seqliminf_{ # → # } (#)", {p(0), p(1), p(2)}},
    {Lim, 3, BIG, "lim_{ # → # } (#)", {p(0), p(1), p(2)}},
    {LimSup, 3, BIG, "limsup_{ # → # } (#)", {p(0), p(1), p(2)}},
    {LimInf, 3, BIG, "liminf_{ # → # } (#)", {p(0), p(1), p(2)}},
    {BigO, 3, BIG, "bigO_{ # → # } (#)", {p(0), p(1), p(2)}},
    {LittleO, 3, BIG, "littleo_{ # → # } (#)", {p(0), p(1), p(2)}},
    {LeftSeqLim, 3, BIG, "seqlim_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftSeqLimSup, 3, BIG, "seqlimsup_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftSeqLimInf, 3, BIG, "seqliminf_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftLim, 3, BIG, "lim_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftLimSup, 3, BIG, "limsup_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftLimInf, 3, BIG, "liminf_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftBigO, 3, BIG, "bigO_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {LeftLittleO, 3, BIG, "littleo_{ # → #^- } (#)", {p(0), side(1), p(2)}},
    {RightSeqLim, 3, BIG, "seqlim_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightSeqLimSup, 3, BIG, "seqlimsup_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightSeqLimInf, 3, BIG, "seqliminf_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightLim, 3, BIG, "lim_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightLimSup, 3, BIG, "limsup_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightLimInf, 3, BIG, "liminf_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightBigO, 3, BIG, "bigO_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {RightLittleO, 3, BIG, "littleo_{ # → #^+ } (#)", {p(0), side(1), p(2)}},
    {EvalBar, 3, FACT, "#|_{#}^{#}", {c(0, FACT), p(1), p(2)}},
    {DotProd, 2, MUL, "# · #", {c(0, MUL), c(1, MUL)}},
    {CrossProd, 2, MUL, "# × #", {c(0, MUL), c(1, MUL)}},
    {Tuple, 1, APPLY, "(#)", {elements(0)}, 0},
    {PiecewiseFunc, 1, APPLY, "", {}, 0, row_form::cases},
    {Eq, 2, REL, "# = #", {s(0, REL), s(1, REL)}},
    {Neq, 2, REL, "# ≠ #", {s(0, REL), s(1, REL)}},
    {Gt, 2, REL, "# > #", {s(0, REL), s(1, REL)}},
    {Ge, 2, REL, "# ≥ #", {s(0, REL), s(1, REL)}},
    {Lt, 2, REL, "# < #", {s(0, REL), s(1, REL)}},
    {Le, 2, REL, "# ≤ #", {s(0, REL), s(1, REL)}},
    {Appro, 2, REL, "# ≈ #", {s(0, REL), s(1, REL)}},
    {IdentEq, 2, REL, "# ≡ #", {s(0, REL), s(1, REL)}},
    {Divides, 2, REL, "# | #", {rel(0), rel(1)}},
    {CongruentMod, 3, APPLY, "# ≡ #(mod #)", {s(0, REL), s(1, REL), p(2)}},
    {TendsToWithoutIndex, 2, REL, "# → #", {rel(0), rel(1)}},
    {LeftTendsToWithoutIndex, 2, REL, "# → #^-", {rel(0), side(1)}},
    {RightTendsToWithoutIndex, 2, REL, "# → #^+", {rel(0), side(1)}},
    {SeqTendsTo, 4, REL, "# seqTendsTo_{ # → # } #", {rel(2), p(0), p(1), rel(3)}},
    {LeftSeqTendsTo, 4, REL, "# seqTendsTo_{ # → #^- } #", {rel(2), p(0), side(1), rel(3)}},
    {RightSeqTendsTo, 4, REL, "# seqTendsTo_{ # → #^+ } #", {rel(2), p(0), side(1), rel(3)}},
    {TendsTo, 4, REL, "# →_{ # → # } #", {rel(2), p(0), p(1), rel(3)}},
    {LeftTendsTo, 4, REL, "# →_{ # → #^- } #", {rel(2), p(0), side(1), rel(3)}},
    {RightTendsTo, 4, REL, "# →_{ # → #^+ } #", {rel(2), p(0), side(1), rel(3)}},
    {AsymEquiv, 4, REL, "# ∼_{ # → # } #", {rel(2), p(0), p(1), rel(3)}},
    {LeftAsymEquiv, 4, REL, "# ∼_{ # → #^- } #", {rel(2), p(0), side(1), rel(3)}},
    {RightAsymEquiv, 4, REL, "# ∼_{ # → #^+ } #", {rel(2), p(0), side(1), rel(3)}},
    {Not, 1, NOT, "¬#", {s(0, NOT)}},
    {And, 2, AND, "# ∧ #", {c(0, AND), c(1, AND)}},
    {Or, 2, OR, "# ∨ #", {c(0, OR), c(1, OR)}},
    {Impl, 2, IMPL, "# ⇒ #", {s(0, IMPL), c(1, IMPL)}},
    {Iff, 2, IFF, "# ⇔ #", {s(0, IFF), c(1, IFF)}},
    {Belong, 2, REL, "# ∈ #", {elements(0), s(1, REL)}, 0},
    {Belong, 2, REL, "# ∈ #", {s(0, REL), s(1, REL)}},
    {NotBelong, 2, REL, "# ∉ #", {s(0, REL), s(1, REL)}},
    {Subset, 2, REL, "# ⊆ #", {elements(0), s(1, REL)}, 0},
    {Subset, 2, REL, "# ⊆ #", {s(0, REL), s(1, REL)}},
    {IsFuncOn, 3, COLON, "# : # → #", {s(0, COLON), s(1, COLON), s(2, COLON)}},
    {Frac, 2, APPLY, "frac(", {}, -1, row_form::point},
    {FunDeri, 3, APPLY, "FunDeri(", {}, -1, row_form::point},
    {ValDeri, 3, APPLY, "ValDeri(", {}, -1, row_form::point},
};
constexpr std::uint8_t no_row = 255;
static_assert(std::size(rows) < no_row);

// The first row of each number.
constexpr auto first_rows = [] {
  std::array<std::uint8_t, Iff + 1> first{};
  first.fill(no_row);
  for (std::size_t i = std::size(rows); i-- > 0;) {
    first[static_cast<std::size_t>(rows[i].head)] = static_cast<std::uint8_t>(i);
  }
  return first;
}();

// The lookup relies on rows of one head standing together and asking for the same number of arguments, and the printer
// on each mark having its operand.
constexpr bool rows_are_sound() {
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const print_row& row = rows[i];
    const std::size_t first = first_rows[static_cast<std::size_t>(row.head)];
    if (row.arity > max_arguments || row.text.marks > max_arguments || rows[first].arity != row.arity ||
        (first != i && rows[i - 1].head != row.head) ||
        (row.form == row_form::notation && row.text.marks != row.arity)) {
      return false;
    }
    for (int mark = 0; mark < row.text.marks; ++mark) {
      if (row.operands[mark].argument >= row.arity) {
        return false;
      }
    }
  }
  return true;
}
static_assert(rows_are_sound());

// The number of an operator, predicate or connective leaf, -1 for any other term. A leaf with a scope or binders is not
// the operator.
int head_number(term_ptr head) {
  if (head->has_meta() && (head->scope() != nullptr || !head->binders().empty())) {
    return -1;
  }
  switch (head->type()) {
    case Oper:
      return head->oper();
    case Pred:
      return head->pred();
    case Connect:
      return head->connect();
    default:
      return -1;
  }
}

// Only bare predicates have a symbol to print, and each must stand between two operands.
bool is_printable_chain(const term_ptr* arguments) {
  if (arguments[0]->type() != TermList || arguments[1]->type() != TermList) {
    return false;
  }
  const term_span predicates = arguments[0]->elements();
  return arguments[1]->elements().size() == predicates.size() + 1 &&
         std::all_of(predicates.begin(), predicates.end(),
                     [](term_ptr predicate) { return predicate->type() == Pred && predicate->scope() == nullptr; });
}

bool takes(const print_row& row, const term_ptr* arguments) {
  if (row.form == row_form::chain) {
    return is_printable_chain(arguments);
  }
  return row.list_argument < 0 || arguments[row.list_argument]->type() == TermList;
}

}  // namespace

const print_row* row_of_head(term_ptr head) {
  const int number = head_number(head);
  if (number < 0 || number > Iff) {
    return nullptr;
  }
  const std::uint8_t first = first_rows[static_cast<std::size_t>(number)];
  return first == no_row ? nullptr : &rows[first];
}

found_row find_row(term_ptr t) {
  found_row found{};
  term_ptr head = t;
  int count = 0;
  for (; is_apply(head); head = head->left()) {
    if (count++ == max_arguments) {
      return found;
    }
  }
  if (count == 0 || head == nullptr) {
    return found;
  }
  const print_row* row = row_of_head(head);
  if (row == nullptr || row->arity != count || row->form == row_form::point) {
    return found;
  }
  for (term_ptr node = t; count > 0; node = node->left()) {
    found.arguments[--count] = node->right();
  }
  for (const int number = row->head; row != std::end(rows) && row->head == number; ++row) {
    if (takes(*row, found.arguments)) {
      found.row = row;
      break;
    }
  }
  return found;
}

print_prec strength_of(term_ptr t, const found_row& found) {
  if (t == nullptr) {
    return PRINT_PREC_UNKNOWN;
  }
  switch (t->type()) {
    case Apply:
      return found.row != nullptr ? found.row->strength : PRINT_PREC_APPLY;
    case Lambda:
      return PRINT_PREC_FUN;
    case Quant:
      return PRINT_PREC_QUANT;
    case Var:
    case Const:
    case Oper:
    case Pred:
    case Connect:
    case Pattern:
      return PRINT_PREC_ATOM;
    default:
      return PRINT_PREC_UNKNOWN;
  }
}

bool is_negative_constant(term_ptr t) {
  if (t->type() != Const) {
    return false;
  }
  switch (t->constant()) {
    case Integer:
      return t->integer() < 0;
    case Decimal:
      return t->decimal().starts_with('-');
    default:
      return t->constant() == NegInfty;
  }
}

bool needs_parentheses(operand_rule rule, print_prec at, term_ptr t, const found_row& found, print_prec own) {
  if (rule == operand_rule::plain || at == PRINT_PREC_NONE) {
    return false;
  }
  if (own == PRINT_PREC_UNKNOWN) {
    return true;
  }
  switch (rule) {
    case operand_rule::strict:
      return own <= at;
    case operand_rule::mult_right: {
      const bool quotient = found.row != nullptr && (found.row->head == Div || found.row->head == Mod);
      return quotient ? own <= at : own < at;
    }
    case operand_rule::relation:
      return own == PRINT_PREC_APPLY || own <= at;
    case operand_rule::side_point:
      return is_negative_constant(t) || own < at;
    default:
      return own < at;
  }
}

}  // namespace vetro::print_table

// A layout says how a row's operands are set in two dimensions; a row without one is set as it is written, a sign for a
// sign. Each operand becomes one element, as the elements of MathML with a fixed number of children ask for.
#include "term/print/mathml.h"

#include <algorithm>
#include <cctype>

#include "platform/xml_text.h"
#include "term/print/notation_table.h"
#include "term/print/parts.h"
#include "term/print/pretty.h"

namespace vetro {
namespace {

using print_table::find_row;
using print_table::found_row;
using print_table::operand;
using print_table::operand_rule;
using print_table::print_row;
using print_table::row_form;

// In a pattern, a mark and the number of an argument stand for that argument as one element:
//   #  in parentheses where the row asks for them    ~  never in parentheses, for places that enclose it
//   ^  in parentheses unless an index may hang on it  @  in parentheses unless it is at least a product
// and $ stands for the word.
struct layout {
  int head;
  int arity;
  std::string_view pattern;
  std::string_view word = {};
};

constexpr std::string_view bars =
    R"(<mo form="prefix" stretchy="true">|</mo>~0<mo form="postfix" stretchy="true">|</mo>)";
constexpr std::string_view big_below = "<munder><mo>$</mo>~0</munder>@1";
constexpr std::string_view big_around = "<munderover><mo>$</mo>~0~1</munderover>@2";
constexpr std::string_view limit = "<munder><mo>$</mo><mrow>~0<mo>→</mo>~1</mrow></munder>@2";
constexpr std::string_view limit_left =
    "<munder><mo>$</mo><mrow>~0<mo>→</mo><msup>#1<mo>−</mo></msup></mrow></munder>@2";
constexpr std::string_view limit_right =
    "<munder><mo>$</mo><mrow>~0<mo>→</mo><msup>#1<mo>+</mo></msup></mrow></munder>@2";
constexpr std::string_view landau = "<munder><mi>$</mi><mrow>~0<mo>→</mo>~1</mrow></munder><mo>(</mo>~2<mo>)</mo>";
constexpr std::string_view landau_left =
    "<munder><mi>$</mi><mrow>~0<mo>→</mo><msup>#1<mo>−</mo></msup></mrow></munder><mo>(</mo>~2<mo>)</mo>";
constexpr std::string_view landau_right =
    "<munder><mi>$</mi><mrow>~0<mo>→</mo><msup>#1<mo>+</mo></msup></mrow></munder><mo>(</mo>~2<mo>)</mo>";
constexpr std::string_view tends = "#2<munder><mo>$</mo><mrow>~0<mo>→</mo>~1</mrow></munder>#3";
constexpr std::string_view tends_left =
    "#2<munder><mo>$</mo><mrow>~0<mo>→</mo><msup>#1<mo>−</mo></msup></mrow></munder>#3";
constexpr std::string_view tends_right =
    "#2<munder><mo>$</mo><mrow>~0<mo>→</mo><msup>#1<mo>+</mo></msup></mrow></munder>#3";

// In the order of kinds.h.
constexpr layout layouts[] = {
    {Div, 2, "<mfrac>~0~1</mfrac>"},
    {Power, 2, "<msup>#0~1</msup>"},
    {Index, 2, "<msub>#0~1</msub>"},
    {Abs, 1, bars},
    {Cardinal, 1, bars},
    {Frac, 2, "<mfrac>~0~1</mfrac>"},
    {Sqrt, 1, "<msqrt>~0</msqrt>"},
    {Sqrtn, 2, "<mroot>~1~0</mroot>"},
    {Cbrt, 1, "<mroot>~0<mn>3</mn></mroot>"},
    {SingleDeri, 1, R"(<msup>^0<mo lspace="0" rspace="0">′</mo></msup>)"},
    {NthDeri, 2, "<msup>^0<mrow><mo>(</mo>~1<mo>)</mo></mrow></msup>"},
    {D, 1, R"(<mo lspace="0.17em" rspace="0">d</mo>#0)"},
    {EvalBar, 3, R"(<msubsup><mrow>#0<mo form="postfix" stretchy="true">|</mo></mrow>~1~2</msubsup>)"},
    {Floor, 1, "<mo>⌊</mo>~0<mo>⌋</mo>"},
    {Ceil, 1, "<mo>⌈</mo>~0<mo>⌉</mo>"},
    {BigSum, 2, big_below, "∑"},
    {BigSumSup, 3, big_around, "∑"},
    {BigProd, 2, big_below, "∏"},
    {BigProdSup, 3, big_around, "∏"},
    {BigUnion, 2, big_below, "⋃"},
    {BigUnionSup, 3, big_around, "⋃"},
    {BigInter, 2, big_below, "⋂"},
    {BigInterSup, 3, big_around, "⋂"},
    {SeqLim, 3, limit, "seqlim"},
    {LeftSeqLim, 3, limit_left, "seqlim"},
    {RightSeqLim, 3, limit_right, "seqlim"},
    {SeqLimSup, 3, limit, "seqlimsup"},
    {LeftSeqLimSup, 3, limit_left, "seqlimsup"},
    {RightSeqLimSup, 3, limit_right, "seqlimsup"},
    {SeqLimInf, 3, limit, "seqliminf"},
    {LeftSeqLimInf, 3, limit_left, "seqliminf"},
    {RightSeqLimInf, 3, limit_right, "seqliminf"},
    {Lim, 3, limit, "lim"},
    {LeftLim, 3, limit_left, "lim"},
    {RightLim, 3, limit_right, "lim"},
    {LimSup, 3, limit, "limsup"},
    {LeftLimSup, 3, limit_left, "limsup"},
    {RightLimSup, 3, limit_right, "limsup"},
    {LimInf, 3, limit, "liminf"},
    {LeftLimInf, 3, limit_left, "liminf"},
    {RightLimInf, 3, limit_right, "liminf"},
    {IndefInt, 1, "<mo>∫</mo>@0"},
    {DefInt, 3, "<msubsup><mo>∫</mo>~0~1</msubsup>@2"},
    {BigO, 3, landau, "O"},
    {LeftBigO, 3, landau_left, "O"},
    {RightBigO, 3, landau_right, "O"},
    {LittleO, 3, landau, "o"},
    {LeftLittleO, 3, landau_left, "o"},
    {RightLittleO, 3, landau_right, "o"},
    {LeftTendsToWithoutIndex, 2, "#0<mo>→</mo><msup>#1<mo>−</mo></msup>"},
    {RightTendsToWithoutIndex, 2, "#0<mo>→</mo><msup>#1<mo>+</mo></msup>"},
    {SeqTendsTo, 4, tends, "seq→"},
    {LeftSeqTendsTo, 4, tends_left, "seq→"},
    {RightSeqTendsTo, 4, tends_right, "seq→"},
    {TendsTo, 4, tends, "→"},
    {LeftTendsTo, 4, tends_left, "→"},
    {RightTendsTo, 4, tends_right, "→"},
    {AsymEquiv, 4, tends, "∼"},
    {LeftAsymEquiv, 4, tends_left, "∼"},
    {RightAsymEquiv, 4, tends_right, "∼"},
};

static_assert(std::is_sorted(std::begin(layouts), std::end(layouts),
                             [](const layout& a, const layout& b) { return a.head < b.head; }));

const layout* find_layout(int head, int arity) {
  const auto found = std::lower_bound(std::begin(layouts), std::end(layouts), head,
                                      [](const layout& row, int wanted) { return row.head < wanted; });
  return found != std::end(layouts) && found->head == head && found->arity == arity ? found : nullptr;
}

// ---- Signs and words.

void put(std::string& out, std::string_view element, std::string_view text) {
  ((((out += '<') += element) += '>') += xml_text(text)) += "</";
  (out += element) += '>';
}

std::string_view sign_on_paper(std::string_view sign) {
  if (sign == "-") {
    return "−";
  }
  if (sign == "*") {
    return "⋅";
  }
  if (sign == "·") {
    return "•";
  }
  return sign == "\\" ? "∖" : sign;
}

// The words and signs of a row's text, an element each.
void put_tokens(std::string& out, std::string_view text) {
  const auto is_letter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  while (!text.empty()) {
    std::size_t length = 1;
    if (is_letter(text[0])) {
      while (length < text.size() && is_letter(text[length])) {
        ++length;
      }
      put(out, "mi", text.substr(0, length));
    } else {
      while (length < text.size() && continues(text[length])) {
        ++length;
      }
      if (text[0] != ' ') {
        put(out, "mo", sign_on_paper(text.substr(0, length)));
      }
    }
    text.remove_prefix(length);
  }
}

// A number set with a condition on its sign has the condition below.
bool put_number_set(std::string& out, const_type kind) {
  if (kind == ComplexSet || kind == PrimeSet) {
    put(out, "mi", kind == ComplexSet ? "ℂ" : "ℙ");
    return true;
  }
  if (kind < IntegerSet || kind > NonNegRealSet) {
    return false;
  }
  constexpr std::string_view letters[] = {"ℤ", "ℚ", "ℝ"};
  constexpr std::string_view conditions[] = {"", ">", "<", "≤", "≥"};
  const int place = kind - IntegerSet;
  const std::string_view condition = conditions[place % 5];
  if (condition.empty()) {
    put(out, "mi", letters[place / 5]);
    return true;
  }
  out += "<msub>";
  put(out, "mi", letters[place / 5]);
  out += "<mrow>";
  put(out, "mo", condition);
  out += "<mn>0</mn></mrow></msub>";
  return true;
}

void put_leaf(std::string& out, term_ptr t) {
  if (t->type() == Const && put_number_set(out, t->constant())) {
    return;
  }
  std::string text;
  if (!print_parts::print_leaf(text, t, false)) {
    text = "?";
  }
  if (t->type() != Const) {
    put(out, "mi", text);
    return;
  }
  const bool is_number = t->constant() == Integer || t->constant() == Decimal;
  if (text.size() > 1 && (text[0] == '-' || text[0] == '+')) {
    out += "<mrow>";
    put(out, "mo", sign_on_paper(text.substr(0, 1)));
    put(out, is_number ? "mn" : "mi", std::string_view(text).substr(1));
    out += "</mrow>";
    return;
  }
  put(out, is_number ? "mn" : "mi", text == "Pi" || text == "pi" ? "π" : text);
}

// ---- Terms. Each of these writes one element.

void put_term(std::string& out, term_ptr t, const found_row& found);

void put_term(std::string& out, term_ptr t) { put_term(out, t, find_row(t)); }

void put_row(std::string& out, term_ptr t, const found_row& found, bool parentheses) {
  if (!parentheses) {
    put_term(out, t, found);
    return;
  }
  out += "<mrow><mo>(</mo>";
  put_term(out, t, found);
  out += "<mo>)</mo></mrow>";
}

void put_list(std::string& out, term_span list) {
  out += "<mrow>";
  for (std::size_t i = 0; i < list.size(); ++i) {
    out += i == 0 ? "" : "<mo>,</mo>";
    put_term(out, list[i]);
  }
  out += "</mrow>";
}

// An integral reaches as far as a sum does, though it is written as an application.
print_prec strength_on_paper(term_ptr t, const found_row& found) {
  const bool integral = is_apply(t) && ((t->head() == DefInt && t->argument_count() == 3) ||
                                        (t->head() == IndefInt && t->argument_count() == 1));
  return integral ? PRINT_PREC_BIG_OPER : strength_of(t, found);
}

void put_operand(std::string& out, term_ptr t, operand_rule rule, print_prec at) {
  if (rule == operand_rule::elements) {
    put_list(out, t->elements());
    return;
  }
  const found_row found = find_row(t);
  const bool guarded_sign = rule != operand_rule::plain && at >= PRINT_PREC_MUL && print_table::is_negative_constant(t);
  put_row(out, t, found,
          guarded_sign || print_table::needs_parentheses(rule, at, t, found, strength_on_paper(t, found)));
}

void put_marked(std::string& out, char mark, term_ptr t, const operand* part, int head) {
  switch (mark) {
    case '#':
      if (part != nullptr) {
        put_operand(out, t, part->rule, part->at);
        return;
      }
      break;
    case '^': {
      const bool primes = head == SingleDeri && is_apply(t) && t->head() == SingleDeri;
      put_operand(out, t, primes ? operand_rule::plain : operand_rule::strict, PRINT_PREC_POWER_INDEX);
      return;
    }
    case '@':
      put_operand(out, t, operand_rule::child, PRINT_PREC_MUL);
      return;
    default:
      break;
  }
  put_operand(out, t, operand_rule::plain, PRINT_PREC_NONE);
}

const operand* operand_of(const print_row* row, int argument) {
  for (int i = 0; row != nullptr && i < row->text.marks; ++i) {
    if (row->operands[i].argument == argument) {
      return &row->operands[i];
    }
  }
  return nullptr;
}

void put_layout(std::string& out, const layout& how, const print_row* row, const term_ptr* arguments) {
  out += "<mrow>";
  for (std::size_t i = 0; i < how.pattern.size(); ++i) {
    const char c = how.pattern[i];
    if (c == '$') {
      out += how.word;
    } else if (c == '#' || c == '~' || c == '^' || c == '@') {
      const int argument = how.pattern[++i] - '0';
      put_marked(out, c, arguments[argument], operand_of(row, argument), how.head);
    } else {
      out += c;
    }
  }
  out += "</mrow>";
}

// A number before a name needs no sign between them.
bool is_bare_product(const found_row& found) {
  const auto is_name = [](term_ptr t) { return t->type() == Var && t->scope() == nullptr; };
  const term_ptr left = found.arguments[0];
  const term_ptr right = found.arguments[1];
  const bool number = left->type() == Const && left->scope() == nullptr &&
                      (left->constant() == Integer || left->constant() == Decimal) &&
                      !print_table::is_negative_constant(left);
  return found.row->head == Mult && number &&
         (is_name(right) ||
          (is_apply(right) && right->head() == Power && right->argument_count() == 2 && is_name(right->argument(0))));
}

void put_notation(std::string& out, const found_row& found) {
  const print_row& row = *found.row;
  out += "<mrow>";
  for (int mark = 0; mark < row.text.marks; ++mark) {
    if (mark == 1 && is_bare_product(found)) {
      out += "<mo>\xE2\x81\xA2</mo>";
    } else {
      put_tokens(out, row.text.texts[mark]);
    }
    const operand& part = row.operands[mark];
    put_operand(out, found.arguments[part.argument], part.rule, part.at);
  }
  put_tokens(out, row.text.texts[row.text.marks]);
  out += "</mrow>";
}

void put_chain(std::string& out, term_span predicates, term_span operands) {
  out += "<mrow>";
  for (std::size_t i = 0; i < operands.size(); ++i) {
    if (i > 0) {
      put(out, "mo", print_parts::chain_symbol(predicates[i - 1]->pred()));
    }
    put_operand(out, operands[i], operand_rule::strict, PRINT_PREC_REL);
  }
  out += "</mrow>";
}

bool is_case_with_condition(term_ptr branch) {
  return is_apply(branch) && is_oper(branch->left(), Tuple) && branch->right()->type() == TermList &&
         branch->right()->elements().size() == 2;
}

void put_cases(std::string& out, term_span branches) {
  out += "<mrow><mo>{</mo><mtable columnalign=\"left\">";
  for (term_ptr branch : branches) {
    const bool conditional = is_case_with_condition(branch);
    out += "<mtr><mtd>";
    put_term(out, conditional ? branch->right()->elements()[0] : branch);
    out += "</mtd><mtd>";
    if (conditional) {
      out += "<mrow><mtext>if&#160;</mtext>";
      put_term(out, branch->right()->elements()[1]);
      out += "</mrow>";
    } else {
      out += "<mtext>otherwise</mtext>";
    }
    out += "</mtd></mtr>";
  }
  out += "</mtable></mrow>";
}

void put_arguments(std::string& out, term_ptr t, std::size_t count) {
  if (count > 1) {
    put_arguments(out, t->left(), count - 1);
    out += "<mo>,</mo>";
  }
  put_term(out, t->right());
}

// The last arguments of t, in parentheses behind their head.
void put_argument_list(std::string& out, term_ptr t, std::size_t count) {
  out += "<mo>\xE2\x81\xA1</mo><mrow><mo>(</mo>";
  put_arguments(out, t, count);
  out += "<mo>)</mo></mrow>";
}

bool put_application_layout(std::string& out, term_ptr t, const print_parts::spine_end& end) {
  if (end.head->scope() != nullptr || t->head() < 0 || end.count > print_table::max_arguments ||
      end.count != t->argument_count()) {
    return false;
  }
  const layout* how = find_layout(t->head(), static_cast<int>(end.count));
  if (how == nullptr) {
    return false;
  }
  term_ptr arguments[print_table::max_arguments] = {};
  for (unsigned i = 0; i < end.count; ++i) {
    arguments[i] = t->argument(i);
  }
  put_layout(out, *how, nullptr, arguments);
  return true;
}

bool is_one(term_ptr t) { return t->type() == Const && t->constant() == Integer && t->integer() == 1; }

// As a raised order, which is left out where it is 1.
void put_order(std::string& out, std::string_view sign, term_ptr order) {
  if (is_one(order)) {
    out += sign;
    return;
  }
  (out += "<msup>") += sign;
  put_term(out, order);
  out += "</msup>";
}

// A derived function: a prime or a raised order for a function of one variable, ∂ with the number of the variable else.
void put_derived_function(std::string& out, term_ptr function, term_ptr variable, term_ptr order,
                          bool of_one_variable) {
  if (!of_one_variable || !is_one(variable)) {
    out += is_one(order) ? "<msub><mo>∂</mo>" : "<msubsup><mo>∂</mo>";
    put_term(out, variable);
    if (!is_one(order)) {
      put_term(out, order);
    }
    out += is_one(order) ? "</msub>" : "</msubsup>";
    put_operand(out, function, operand_rule::strict, PRINT_PREC_POWER_INDEX);
    return;
  }
  out += "<msup>";
  put_operand(out, function, operand_rule::strict, PRINT_PREC_POWER_INDEX);
  if (is_one(order)) {
    out += R"(<mo lspace="0" rspace="0">′</mo>)";
  } else {
    out += "<mrow><mo>(</mo>";
    put_term(out, order);
    out += "<mo>)</mo></mrow>";
  }
  out += "</msup>";
}

// The derivative of an expression by a variable, in Leibniz' notation.
void put_derived_expression(std::string& out, term_ptr expression, term_ptr variable, term_ptr order) {
  out += "<mfrac>";
  put_order(out, "<mi>d</mi>", order);
  out += "<mrow><mi>d</mi>";
  if (is_one(order)) {
    put_term(out, variable);
  } else {
    out += "<msup>";
    put_operand(out, variable, operand_rule::strict, PRINT_PREC_POWER_INDEX);
    put_term(out, order);
    out += "</msup>";
  }
  out += "</mrow></mfrac>";
  put_operand(out, expression, operand_rule::child, PRINT_PREC_MUL);
}

// The three arguments that say what is derived, and behind them the point.
bool put_derivative(std::string& out, term_ptr t, const print_parts::spine_end& end) {
  constexpr std::size_t described = 3;
  const bool function = is_oper(end.head, FunDeri);
  if ((!function && !is_oper(end.head, ValDeri)) || end.head->scope() != nullptr || end.count < described ||
      end.count != t->argument_count()) {
    return false;
  }
  const std::size_t point = end.count - described;
  const term_ptr derived = t->argument(0);
  out += "<mrow>";
  if (function) {
    const bool one = derived->type() == Lambda ? derived->vars().size() == 1 : point == 1;
    put_derived_function(out, derived, t->argument(1), t->argument(2), one);
    if (point > 0) {
      put_argument_list(out, t, point);
    }
  } else {
    out += point > 0 ? "<msub><mrow>" : "";
    put_derived_expression(out, derived, t->argument(1), t->argument(2));
    if (point > 0) {
      out += R"(<mo form="postfix" stretchy="true">|</mo></mrow><mrow>)";
      put_arguments(out, t, point);
      out += "</mrow></msub>";
    }
  }
  out += "</mrow>";
  return true;
}

// Head and arguments. Where an inner part of the spine has a notation of its own, that part is the head, as in f'(x)
// and in a fraction of differentials at a point.
void put_application(std::string& out, term_ptr t) {
  print_parts::spine_end end = print_parts::end_of_spine(t);
  if (put_application_layout(out, t, end) || put_derivative(out, t, end)) {
    return;
  }
  const print_row* row = print_table::row_of_head(end.head);
  if (row != nullptr && end.count > static_cast<std::size_t>(row->arity)) {
    const std::size_t outer = end.count - static_cast<std::size_t>(row->arity);
    term_ptr inner = print_parts::left_times(t, outer);
    if (row->form == row_form::point || find_row(inner).row != nullptr) {
      end = {inner, outer};
    }
  }
  out += "<mrow>";
  const found_row head = find_row(end.head);
  put_row(out, end.head, head, strength_on_paper(end.head, head) < PRINT_PREC_FACT);
  put_argument_list(out, t, end.count);
  out += "</mrow>";
}

void put_apply(std::string& out, term_ptr t, const found_row& found) {
  if (found.row == nullptr) {
    put_application(out, t);
    return;
  }
  switch (found.row->form) {
    case row_form::chain:
      put_chain(out, found.arguments[0]->elements(), found.arguments[1]->elements());
      return;
    case row_form::cases:
      put_cases(out, found.arguments[0]->elements());
      return;
    default:
      break;
  }
  if (const layout* how = find_layout(found.row->head, found.row->arity); how != nullptr) {
    put_layout(out, *how, found.row, found.arguments);
  } else {
    put_notation(out, found);
  }
}

// A number set, or an arrow between two types.
void put_type(std::string& out, lambda_type_ptr type) {
  if (type == nullptr || type->kind != LambdaTypeFunc) {
    // The types stand in the order of the sets.
    const lambda_base_type base = type == nullptr ? LambdaReal : type->base;
    put_number_set(out, static_cast<const_type>(IntegerSet + static_cast<int>(base)));
    return;
  }
  out += "<mrow>";
  const bool nested = type->param_type != nullptr && type->param_type->kind == LambdaTypeFunc;
  out += nested ? "<mo>(</mo>" : "";
  put_type(out, type->param_type);
  out += nested ? "<mo>)</mo>" : "";
  out += "<mo>→</mo>";
  put_type(out, type->return_type);
  out += "</mrow>";
}

void put_lambda(std::string& out, term_ptr t) {
  out += "<mrow><mo>(</mo>";
  for (std::size_t i = 0; i < t->vars().size(); ++i) {
    out += i == 0 ? "" : "<mo>,</mo>";
    put_term(out, t->vars()[i]);
    out += "<mo>:</mo>";
    put_type(out, i < t->var_types().size() ? t->var_types()[i] : nullptr);
  }
  if (t->condition() != nullptr) {
    out += "<mo>|</mo>";
    put_term(out, t->condition());
  }
  out += "<mo>)</mo><mo>↦</mo>";
  put_operand(out, t->body(), operand_rule::child, PRINT_PREC_FUN);
  out += "</mrow>";
}

void put_quant(std::string& out, term_ptr t) {
  constexpr std::string_view signs[] = {"∀", "∃", "∃!"};
  out += "<mrow>";
  put(out, "mo", signs[t->quant() - Forall]);
  for (std::size_t i = 0; i < t->vars().size(); ++i) {
    out += i == 0 ? "" : "<mo>,</mo>";
    const term_ptr v = t->vars()[i];
    put_row(out, v, find_row(v), v->type() != Var);
  }
  out += "<mo>:</mo>";
  put_operand(out, t->body(), operand_rule::child, PRINT_PREC_QUANT);
  out += "</mrow>";
}

void put_tag(std::string& out, term_ptr t) {
  out += "<mrow><mo>[</mo><mtext>free&#160;</mtext>";
  put_list(out, t->vars());
  out += "<mo>]</mo>";
  put_term(out, t->body());
  out += "</mrow>";
}

void put_without_scope(std::string& out, term_ptr t, const found_row& found) {
  switch (t->type()) {
    case Apply:
      put_apply(out, t, found);
      return;
    case Lambda:
      put_lambda(out, t);
      return;
    case Quant:
      put_quant(out, t);
      return;
    case TermList:
      put_list(out, t->elements());
      return;
    case FreeVarTag:
      put_tag(out, t);
      return;
    default:
      put_leaf(out, t);
      return;
  }
}

void put_term(std::string& out, term_ptr t, const found_row& found) {
  if (t == nullptr) {
    out += "<mrow/>";
    return;
  }
  if (t->scope() == nullptr) {
    put_without_scope(out, t, found);
    return;
  }
  out += "<mrow>";
  put_without_scope(out, t, found);
  out += "<mo>[</mo><mtext>where&#160;</mtext>";
  put_term(out, t->scope());
  out += "<mo>]</mo></mrow>";
}

}  // namespace

std::string print_term_mathml(term_ptr t) {
  std::string out;
  if (t != nullptr && t->size() <= mathml_most_nodes && t->depth() <= mathml_most_depth) {
    put_term(out, t);
  }
  return out;
}

}  // namespace vetro

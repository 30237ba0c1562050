#include "qv_solver_list/logic/smt_translation.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "term/kinds.h"
#include "term/node_memo.h"
#include "term/print/pretty.h"
#include "term/report.h"
#include "term/reserved.h"
#include "term/substitute/careful.h"
#include "term/term_split_combine.h"
#include "term/variables/binding.h"
#include "term/variables/free_names.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

constexpr whole_part no_relation =
    whole_part::ellipsis | whole_part::landau | whole_part::several_values | whole_part::indefinite_integral;
constexpr whole_part no_sum = whole_part::infinity_value | whole_part::set_size;

// What is more than its value: the same only as the same text, whatever its parts are equal to.
constexpr bool is_more_than_its_value(oper_type oper) {
  switch (oper) {
    case D:
    case PD:
    case EvalBar:
    case VecGrad:
    case VecDiv:
    case VecRot:
    case Nabla:
    case Dom:
    case RadiusOfConvergence:
      return true;
    default:
      return false;
  }
}

// Operands beside the one that the notation itself speaks of (term/variables/binding.h). A name is ordinary there; an
// expression such as a_n or x^2 stands for a sequence or a function of names that the notation does not tell.
enum class operand_kind : unsigned char { function, sequence, set };
struct operand_row {
  int first;
  int last;
  unsigned args;  // as bits, the first is bit 0
  operand_kind kind;
};
constexpr operand_row operands[] = {
    {MaxInSet, Inf, 0b1, operand_kind::set},
    {Compose, Compose, 0b11, operand_kind::function},
    {IsSubseqIndexFunc, SingularPoint, 0b11, operand_kind::sequence},
    {ReflexiveBinRel, PartialOrderBinRel, 0b1, operand_kind::set},
    {UniformConvergent, UniformConvergent, 0b11, operand_kind::sequence},
};

// A term of a sequence, the value of a function, or a calculation.
bool is_value_expression(term_ptr t) {
  while (t->type() == Apply && t->left()->type() == Apply) {
    t = t->left();
  }
  const int head = t->type() == Apply ? t->head() : -1;
  return t->type() == Apply && (t->left()->type() == Var || head == Index || (head >= Plus && head <= Power));
}

bool is_general_expression(term_ptr t, operand_kind kind) {
  const bool indexed = t->type() == Apply && t->head() == Index;
  switch (kind) {
    case operand_kind::function:
      return !is_function_expression(t);
    case operand_kind::sequence:
      return indexed || !is_function_expression(t);
    case operand_kind::set:
      return is_value_expression(t);
  }
  return true;
}

// Head and arguments; the arguments in text order.
struct applied {
  term_ptr head;
  term_list args;
};

applied taken_apart(term_ptr t) {
  applied result{t, {}};
  for (; result.head->type() == Apply; result.head = result.head->left()) {
    result.args.push_back(result.head->right());
  }
  std::reverse(result.args.begin(), result.args.end());
  return result;
}

// A scope stands on the term itself, beside those inside its arguments, or the term binds or guards names.
bool is_closed(term_ptr t) {
  bool found = t->has_meta();
  for (; t->type() == Apply && !found; t = t->left()) {
    found = t->left()->has_meta() || protects(t);
  }
  return found;
}

bool has_general_operand(int head, term_span args) {
  const auto* row = std::find_if(std::begin(operands), std::end(operands),
                                 [head](const operand_row& r) { return head >= r.first && head <= r.last; });
  if (row == std::end(operands)) {
    return false;
  }
  for (std::size_t i = 0; i < args.size() && i < 8; ++i) {
    if ((row->args >> i & 1U) != 0 && args[i]->name_mask() != 0 && is_general_expression(args[i], row->kind)) {
      return true;
    }
  }
  return false;
}

// One name for the whole term, because of its head.
bool is_opaque(term_ptr head, term_span args) {
  switch (head->type()) {
    case Oper:
      return is_more_than_its_value(head->oper()) || has_general_operand(head->oper(), args) ||
             (is_derivative(head->oper()) && !is_function_expression(args[0]));
    case Pred:
      return is_tendency(head->pred()) || head->pred() == Defined || has_general_operand(head->pred(), args) ||
             (is_of_function(head->pred()) && !is_function_expression(args[0]));
    default:
      return false;
  }
}

enum class reading : unsigned char { term, proposition, invalid };

// What a term is, by the type of its head.
reading is_term_or_prop(term_ptr t) {
  if (t == nullptr) {
    return reading::invalid;
  }
  switch (t->type()) {
    case Var:
    case Const:
    case Oper:
    case Pred:
    case TermList:
      return reading::term;
    case Quant:
      return reading::proposition;
    case Apply:
      break;
    default:
      return reading::invalid;
  }
  while (t->type() == Apply) {
    t = t->left();
  }
  switch (t->type()) {
    case Var:
    case Oper:
      return reading::term;
    case Pred:
    case Connect:
      return reading::proposition;
    default:
      return reading::invalid;
  }
}

// Takes out the names that something in t binds or guards.
void erase_touched(term_ptr t, term_list& names, node_set& seen) {
  constexpr auto touching = static_cast<term_fact>(fact_binding | fact_guard);
  if (names.empty() || !t->has(touching) || !seen.insert(t)) {
    return;
  }
  if (const binding here(t); here.touches_names()) {
    std::erase_if(names, [&here](term_ptr name) { return here.catches(name); });
  }
  for (term_ptr part : t->children()) {
    if (part != nullptr) {
      erase_touched(part, names, seen);
    }
  }
}

std::optional<SmtBinPred> order_of(pred_type pred) {
  switch (pred) {
    case Gt:
      return SMT_GT;
    case Ge:
      return SMT_GE;
    case Lt:
      return SMT_LT;
    case Le:
      return SMT_LE;
    default:
      return std::nullopt;
  }
}

SmtTermBop smt_bop(oper_type oper) {
  return oper == Plus ? LIA_ADD : oper == Minus ? LIA_MINUS : oper == Mult ? LIA_MULT : LIA_DIV;
}

bool valid_lia_oper(oper_type oper) {
  return oper == Plus || oper == Minus || oper == Mult || oper == Div || oper == Frac;
}

bool fits_constant(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}

// Exact, in 64 bits; nothing where it does not fit or does not come out even.
std::optional<std::int64_t> calculate(oper_type oper, std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  bool wraps = false;
  switch (oper) {
    case Plus:
      wraps = __builtin_add_overflow(a, b, &result);
      break;
    case Minus:
      wraps = __builtin_sub_overflow(a, b, &result);
      break;
    case Mult:
      wraps = __builtin_mul_overflow(a, b, &result);
      break;
    default:
      wraps = b == 0 || (b == -1 && a == std::numeric_limits<std::int64_t>::min()) || a % b != 0;
      result = wraps ? 0 : a / b;
      break;
  }
  return wraps ? std::nullopt : std::optional(result);
}

term_ptr without_outer_negations(term_ptr t, bool& negative) {
  for (auto view = composed_term_split(t); view && view->oper == Neg && view->t2 == nullptr;
       view = composed_term_split(t)) {
    negative = !negative;
    t = view->t1;
  }
  return t;
}

}  // namespace

std::vector<smt_prop> smt_translation::constraints() {
  const smt_term zero = language_.const_num(0);
  std::vector<smt_prop> all;
  for (std::size_t i = abstractions_.size(); i > 0; --i) {
    const auto [name, inner] = abstractions_[i - 1];
    const smt_term opposite = language_.negated(inner);
    const smt_prop itself = language_.atom(SMT_EQ, name, inner);
    const smt_prop turned = language_.atom(SMT_EQ, name, opposite);
    all.push_back(language_.connective(SMTPROP_OR, itself, turned));
    all.push_back(language_.atom(SMT_GE, name, zero));
    // These follow, and save the search from trying all signs of many absolute values.
    all.push_back(language_.atom(SMT_GE, name, inner));
    all.push_back(language_.atom(SMT_GE, name, opposite));
  }
  return all;
}

// ---- Propositions.

smt_prop smt_translation::refuse(term_ptr t) {
  std::string message;
  if (t != nullptr) {
    print_term(message, t);
  }
  message += "Error: input term is NULL or not a proposition in SmtProp translation.\n";
  print_progress(message);
  complained_ = true;
  return smt_none;
}

// A chain says all its links. A part that occurs several times is translated, or complained of, once.
smt_prop smt_translation::proposition(term_ptr t, bool may_weaken) {
  if (is_term_or_prop(t) != reading::proposition) {
    return refuse(t);
  }
  return known_props_.get(
      t, [&] { return new_proposition(t, may_weaken); }, may_weaken ? 1 : 0);
}

smt_prop smt_translation::new_proposition(term_ptr t, bool may_weaken) {
  const term_list links = t->has_meta() ? term_list{t} : long_order_split(t);
  smt_prop all = smt_none;
  bool complete = true;
  for (term_ptr part : links) {
    const smt_prop p = link(part, may_weaken);
    complete = complete && p != smt_none;
    all = p == smt_none ? all : all == smt_none ? p : language_.connective(SMTPROP_AND, all, p);
  }
  return complete || may_weaken ? all : smt_none;
}

smt_prop smt_translation::link(term_ptr t, bool may_weaken) {
  if (is_term_or_prop(t) != reading::proposition) {
    return refuse(t);
  }
  if (t->type() != Apply) {
    return smt_none;
  }
  const applied parts = taken_apart(t);
  if (parts.head->type() == Pred) {
    return relation(t, parts.head, parts.args);
  }
  // A connective with a scope says less than its parts.
  return is_closed(t) ? opaque_proposition(t) : connection(parts.head->connect(), parts.args, may_weaken);
}

smt_prop smt_translation::connection(connect_type connect, term_span args, bool may_weaken) {
  if (args.size() != (connect == Not ? 1 : 2)) {
    return smt_none;
  }
  if (connect == Not) {
    const smt_prop p = proposition(args[0], false);
    return p == smt_none ? p : language_.negation(p);
  }
  const bool left_weaker = may_weaken && (connect == And || connect == Or);
  const smt_prop left = proposition(args[0], left_weaker);
  if (left == smt_none && !(may_weaken && connect == And)) {
    return smt_none;
  }
  const smt_prop right = proposition(args[1], may_weaken && connect != Iff);
  if (left == smt_none || right == smt_none) {
    return may_weaken && connect == And ? std::max(left, right) : smt_none;
  }
  constexpr std::array connectives = {SMTPROP_AND, SMTPROP_OR, SMTPROP_IMPLY, SMTPROP_IFF};
  return language_.connective(connectives[static_cast<std::size_t>(connect - And)], left, right);
}

smt_prop smt_translation::relation(term_ptr t, term_ptr head, term_span args) {
  const pred_type pred = head->pred();
  if (is_closed(t) || holds_any(t, no_relation) || is_opaque(head, args)) {
    return opaque_proposition(t);
  }
  const bool binary = args.size() == 2;
  if (pred == Eq && binary) {
    return equation(args[0], args[1], mode::abstracting);
  }
  if (pred == Neq && binary) {
    const smt_prop p = equation(args[0], args[1], mode::plain);
    return p == smt_none ? p : language_.negation(p);
  }
  const auto order = order_of(pred);
  if (pred == Eq || pred == Neq || (order && !binary)) {
    return smt_none;
  }
  if (!order || !is_real(args[0]) || !is_real(args[1])) {
    return is_true(term(t, mode::abstracting).term);
  }
  const smt_term left = term(args[0], mode::abstracting).term;
  const smt_term right = left == smt_none ? smt_none : term(args[1], mode::abstracting).term;
  return right == smt_none ? smt_none : language_.atom(*order, left, right);
}

smt_prop smt_translation::equation(term_ptr left, term_ptr right, mode m) {
  const smt_term l = term(left, m).term;
  const smt_term r = l == smt_none ? smt_none : term(right, m).term;
  return r == smt_none ? smt_none : language_.atom(SMT_EQ, l, r);
}

smt_prop smt_translation::opaque_proposition(term_ptr t) { return is_true(opaque(t)); }

smt_prop smt_translation::is_true(smt_term t) {
  return t == smt_none ? smt_none : language_.atom(SMT_EQ, t, language_.true_term());
}

// Order and absolute values belong to the reals; an infinity has neither here.
bool smt_translation::is_real(term_ptr t) {
  return kinds_.of(t) == value_kind::real && !holds_any(t, whole_part::infinity_value);
}

// ---- Terms.

smt_translation::translated smt_translation::term(term_ptr t, mode m) {
  return known_.get(
      t, [&] { return new_term(t, m); }, static_cast<std::uint64_t>(m));
}

smt_translation::translated smt_translation::new_term(term_ptr t, mode m) {
  if (is_closed(t)) {
    return {closed(t)};
  }
  switch (t->type()) {
    case Var:
      return {language_.var_name(smt_name::variable, t->name())};
    case Const:
      return {constant(t), t->constant() == Integer ? std::optional<std::int64_t>(t->integer()) : std::nullopt};
    case Oper:
      return {language_.var_name(smt_name::oper, "_op", t->oper())};
    case Pred:
      return {language_.var_name(smt_name::pred, "_pred", t->pred())};
    case Connect:
      return {language_.var_name(smt_name::connective, "_conn", t->connect())};
    case Lambda:
      return {};
    case TermList:
      return list(t, m);
    case Apply:
      return application(t, m);
    default:
      complained_ = true;
      print_progress("Error: encountered unsupported term type:" + std::to_string(t->type()) + " in LIA translation.");
      return {};
  }
}

smt_term smt_translation::constant(term_ptr t) {
  switch (t->constant()) {
    case Integer:
      return language_.const_num(t->integer());
    case Decimal:
      return language_.var_name(smt_name::decimal, t->decimal());
    default:
      return language_.var_name(smt_name::constant, "const_t", t->constant());
  }
}

smt_translation::translated smt_translation::list(term_ptr t, mode m) {
  std::vector<smt_term> elements;
  for (term_ptr element : t->elements()) {
    elements.push_back(term(element, m).term);
    if (elements.back() == smt_none) {
      return {};
    }
  }
  return elements.empty() ? translated{} : translated{language_.uf_term(smt_function::tl_uf, elements)};
}

smt_translation::translated smt_translation::application(term_ptr t, mode m) {
  const applied parts = taken_apart(t);
  if (is_opaque(parts.head, parts.args)) {
    return {opaque(t)};
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return ordinary(t, m);
  }
  if ((view->t2 == nullptr ? view->oper == Neg : valid_lia_oper(view->oper)) && holds_any(t, no_sum)) {
    return {opaque(t)};
  }
  if (view->t2 == nullptr) {
    if (view->oper == Abs && is_real(view->t1)) {
      return {m == mode::abstracting ? absolute(view->t1) : smt_none};
    }
    return view->oper == Neg && is_number(view->t1) ? calculation(*view, m) : ordinary(t, m);
  }
  if (view->oper == Power && is_constant(view->t2, Integer) && view->t2->integer() >= 0 &&
      view->t2->integer() % 2 == 0) {
    // The absolute value vanishes under an even power.
    const auto base = composed_term_split(view->t1);
    if (base && base->oper == Abs && base->t2 == nullptr && is_real(base->t1)) {
      return term(make_binOp_term(Power, base->t1, view->t2), m);
    }
  }
  return valid_lia_oper(view->oper) && is_number(view->t1) && is_number(view->t2) ? calculation(*view, m)
                                                                                  : ordinary(t, m);
}

// Negation and the four operations. Signs in front of factors are taken together in front of the product.
smt_translation::translated smt_translation::calculation(const composed_term& view, mode m) {
  const oper_type oper = view.oper;
  const bool unary = view.t2 == nullptr;
  bool negative = unary;
  term_ptr left = view.t1;
  term_ptr right = view.t2;
  if (!unary && oper != Plus && oper != Minus) {
    left = without_outer_negations(left, negative);
    right = without_outer_negations(right, negative);
  }
  const translated l = term(left, m);
  const translated r = unary || l.term == smt_none ? translated{} : term(right, m);
  if (l.term == smt_none || (!unary && r.term == smt_none)) {
    return {};
  }
  translated result{unary ? l.term : language_.binary(smt_bop(oper), l.term, r.term), l.number};
  if (!unary) {
    result.number = l.number && r.number ? calculate(oper, *l.number, *r.number) : std::nullopt;
  }
  if (negative) {
    result.number = result.number ? calculate(Minus, 0, *result.number) : std::nullopt;
  }
  if (result.number && fits_constant(*result.number)) {
    result.term = language_.const_num(*result.number);
  } else if (negative) {
    result.term = language_.negated(result.term);
  }
  return result;
}

smt_translation::translated smt_translation::ordinary(term_ptr t, mode m) {
  const smt_term function = term(t->left(), m).term;
  const smt_term argument = function == smt_none ? smt_none : term(t->right(), m).term;
  if (argument == smt_none) {
    return {};
  }
  const smt_term parts[] = {function, argument};
  return {language_.uf_term(smt_function::ap_uf, parts)};
}

// The number is taken before the inner term is translated, and the entry comes after that: of two nested absolute
// values the outer one has the smaller number, and the inner one comes first.
smt_term smt_translation::absolute(term_ptr inner) {
  const std::int32_t number = absolute_numbers_.of(inner);
  if (const auto found = absolute_of_.find(number); found != absolute_of_.end()) {
    return abstractions_[found->second].name;
  }
  const std::int32_t id = ++next_abs_id_;
  const smt_term translated_inner = term(inner, mode::abstracting).term;
  if (translated_inner == smt_none) {
    return smt_none;
  }
  const smt_term name = language_.var_name(smt_name::absolute, "abs_c", id);
  absolute_of_.emplace(number, abstractions_.size());
  abstractions_.push_back({name, translated_inner});
  return name;
}

// A term that binds names, such as a sum, is a function of its free names, so that equal names give equal terms. What
// something inside guards is no name that may be replaced.
smt_term smt_translation::closed(term_ptr t) {
  const binding b(t);
  const bool binds = b.row() != nullptr && binds_indices(b.row()->kind) && !b.indices().empty() && !b.guards_any();
  if (!binds || t->has(fact_scope) || holds_any(t, no_relation)) {
    return opaque(t);
  }
  term_list holes = plain_free_variables(t);
  node_set seen;
  erase_touched(t, holes, seen);
  term_list marks;
  for (std::size_t i = 0; i < holes.size(); ++i) {
    marks.push_back(reserved_var(reserved_kind::hole, static_cast<std::uint32_t>(i)));
  }
  const term_ptr shape = holes.empty() ? nullptr : substitute_all(holes, marks, t);
  if (shape == nullptr) {
    return opaque(t);
  }
  smt_term value = opaque(shape);
  for (term_ptr name : holes) {
    const smt_term parts[] = {value, language_.var_name(smt_name::variable, name->name())};
    value = language_.uf_term(smt_function::ap_uf, parts);
  }
  return value;
}

smt_term smt_translation::opaque(term_ptr t) {
  return language_.var_name(smt_name::opaque, "opaque_", opaque_numbers_.of(t));
}

}  // namespace vetro

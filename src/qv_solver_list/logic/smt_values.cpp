#include "qv_solver_list/logic/smt_values.h"

#include <algorithm>
#include <utility>

#include "qv_solver_list/complex_values.h"
#include "term/kinds.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// Operators and predicates, from one to another by number, whose arguments (as bits, the first is bit 0) are no
// numbers.
struct use_row {
  int first;
  int last;
  unsigned args;
};
constexpr use_row uses[] = {
    // Operators.
    {Index, Index, 0b1},  // a sequence
    {Cardinal, Cardinal, 0b1},
    {MaxInSet, Inf, 0b1},
    {Union, Compose, 0b11},
    {SingleDeri, ValDeri, 0b1},
    {DotProd, CrossProd, 0b11},
    {VecGrad, Nabla, 0b1},
    {SetUnion, PowerSet, 0b1},
    {SetMinus, CartesianProd, 0b11},
    {Dom, Dom, 0b1},
    {InverseBinRel, BinRelComp, 0b11},
    {EquivClass, EquivClass, 0b10},
    {TransitiveClosure, MinimumPointOn, 0b1},
    {RestrictFunc, OscillationOn, 0b11},
    {OscillationAt, RadiusOfConvergence, 0b1},
    // Predicates. The last argument of a membership is looked at apart.
    {Subset, Subset, 0b11},
    {IsSet, IsFunc, 0b1},
    {IsFuncOn, IsFuncOn, 0b111},
    {OddFunc, ConcaveFunc, 0b1},
    {ConvexFuncOn, ConcaveFuncOn, 0b11},
    {BoundedFunc, BoundedBelowFunc, 0b1},
    {BoundedFuncOn, BoundedBelowFuncOn, 0b11},
    {MonoIncFunc, StrictMonoDecFunc, 0b1},
    {MonoIncFuncOn, StrictMonoDecFuncOn, 0b11},
    {ReflexiveBinRel, PartialOrderBinRel, 0b11},
    {SetPartition, PartitionRefine, 0b111},
    {IsInjection, HasBijection, 0b111},
    {InductiveSet, InductiveSet, 0b1},
    {ContinuousFunc, ContinuousFunc, 0b1},
    {ContinuousFuncOn, ContinuousFuncOn, 0b11},
    {ContinuousFuncAt, PiecewiseContinuousFunc, 0b1},
    {PiecewiseContinuousFuncOn, PiecewiseContinuousFuncOn, 0b11},
    {UniformContinuousFunc, UniformContinuousFunc, 0b1},
    {UniformContinuousFuncOn, UniformContinuousFuncOn, 0b11},
    {LipschitzContinuousFunc, LipschitzContinuousFunc, 0b1},
    {LipschitzContinuousFuncOn, LipschitzContinuousFuncOn, 0b11},
    {DiffableFunc, DiffableFunc, 0b1},
    {DiffableFuncOn, DiffableFuncOn, 0b11},
    {DiffableFuncAt, LeftDiffableFunc, 0b1},
    {LeftDiffableFuncOn, LeftDiffableFuncOn, 0b11},
    {LeftDiffableFuncAt, RightDiffableFunc, 0b1},
    {RightDiffableFuncOn, RightDiffableFuncOn, 0b11},
    {RightDiffableFuncAt, ContinuouslyDiffableFunc, 0b1},
    {ContinuouslyDiffableFuncOn, ContinuouslyDiffableFuncOn, 0b11},
    {FuncOfClassK, SmoothFunc, 0b1},
    {SmoothFuncOn, SmoothFuncOn, 0b11},
    {IntegrableFunc, IntegrableFunc, 0b1},
    {IntegrableFuncOn, IntegrableFuncOn, 0b11},
    {SquareIntegrableFunc, SquareIntegrableFunc, 0b1},
    {SquareIntegrableFuncOn, SquareIntegrableFuncOn, 0b11},
    {UniformlyBoundedFuncFamily, StrictMonoDecSeq, 0b1},
    {MonoIncSeqOn, StrictMonoDecSeqOn, 0b11},
    {BoundedSeq, BoundedBelowSeq, 0b1},
    {BoundedSeqOn, BoundedBelowSeqOn, 0b11},
    {ConvergentSeq, ConditionalConvergentSeries, 0b1},
};

// Operators whose value is no number.
struct value_row {
  int first;
  int last;
};
constexpr value_row no_numbers[] = {
    {IntervalLoRo, IntervalLcRc},
    {SetEnum, Compose},
    {Vec, Vec},
    {CrossProd, Tuple},
    {VecGrad, VecGrad},
    {VecRot, Dom},
    {BigUnion, BigInterSup},
    {IdentityBinRel, InverseFunc},
    {RestrictFunc, ImageOn},
    {AccumulationPointSet, AccumulationPointSet},
};

template <class Rows>
const auto* row_of(const Rows& rows, int number) {
  const auto* found = std::find_if(std::begin(rows), std::end(rows),
                                   [&](const auto& r) { return number >= r.first && number <= r.last; });
  return found == std::end(rows) ? nullptr : found;
}

int number_of(term_ptr head) {
  return head->type() == Oper   ? static_cast<int>(head->oper())
         : head->type() == Pred ? static_cast<int>(head->pred())
                                : -1;
}

// Values that are numbers as long as their operands are.
bool calculates(oper_type oper) {
  switch (oper) {
    case Plus:
    case Neg:
    case Minus:
    case PosNeg:
    case PlusMinus:
    case Mult:
    case Div:
    case Frac:
    case Power:
      return true;
    default:
      return false;
  }
}

bool is_membership(term_ptr head) {
  return head->type() == Pred && (head->pred() == Belong || head->pred() == NotBelong);
}

bool is_function_name(term_ptr t) { return t->type() == Var || t->type() == Oper; }

term_ptr first_argument(term_ptr t) {
  while (t->left()->type() == Apply) {
    t = t->left();
  }
  return t->right();
}

}  // namespace

void value_kinds::add(term_ptr proposition) {
  if (proposition != nullptr) {
    visit(proposition);
  }
}

// Only what holds: a premise, a case, and what is said of a bound name of the same spelling, hold of nothing else.
void value_kinds::assume_reals(term_ptr assumption) {
  for (term_ptr conjunct : term_split_and(assumption)) {
    const auto view = pred_split(conjunct);
    if (view && view->pred == Belong && is_set_of_reals(view->right)) {
      reals_.insert(view->left->bare());
    }
  }
}

void value_kinds::visit(term_ptr t) {
  const bool built_set = t->head() == SetEnum || t->head() == SetDesc;
  if (!complex_set_is_named_ && (is_constant(t, ComplexSet) || (built_set && is_built_on_complex(t)))) {
    complex_set_is_named_ = true;
    settled_ = false;
  }
  if ((t->children().empty() && !t->has_meta()) || !seen_.insert(t)) {
    return;
  }
  term_ptr head = t;
  while (head->type() == Apply) {
    head = head->left();
  }
  if (t->type() == Apply) {
    visit_application(head, t);
    const bool in_complex = is_membership(head) && is_constant(t->right(), ComplexSet) && !t->right()->has_meta();
    for (term_ptr node = in_complex ? t->left() : t; node->type() == Apply; node = node->left()) {
      visit(node->right());
    }
    visit(head);
  } else {
    for (term_ptr part : t->children()) {
      if (part != nullptr) {
        visit(part);
      }
    }
  }
  if (t->scope() != nullptr) {
    visit(t->scope());
  }
}

void value_kinds::visit_application(term_ptr head, term_ptr t) {
  if (head->type() == Var) {
    mark(head, value_kind::other);
    return;
  }
  unsigned count = 0;
  for (term_ptr node = t; node->type() == Apply; node = node->left()) {
    ++count;
  }
  const use_row* row = row_of(uses, number_of(head));
  const bool membership = is_membership(head);
  for (term_ptr node = t; node->type() == Apply; node = node->left()) {
    --count;
    const bool is_set = membership && node == t;
    if (is_set || (row != nullptr && count < 8 && (row->args >> count & 1U) != 0)) {
      mark(node->right(), value_kind::other);
    }
  }
  const auto view = pred_split(t);
  if (view && (membership || view->pred == Subset)) {
    add_membership(*view);
  }
  if (term_ptr element = said_to_be_no_real(t); element != nullptr) {
    node_set seen;
    put_into_complex(element, seen);
  }
  if (view && (view->pred == Eq || view->pred == Neq || view->pred == IdentEq)) {
    equations_.emplace_back(view->left, view->right);
    settled_ = false;
  }
}

// What stands in a set that is built on complex numbers; or, once such a set has a name or is part of another, in any
// set that is not one of reals by its form.
void value_kinds::add_membership(const prop& membership) {
  if (is_built_on_complex(membership.right)) {
    node_set seen;
    put_into_complex(membership.left, seen);
  } else if (!is_set_of_reals(membership.right)) {
    memberships_.push_back(membership.left);
    settled_ = settled_ && !complex_set_is_named_;
  }
}

// The whole, and each name in a list or an enumeration of elements.
void value_kinds::put_into_complex(term_ptr elements, node_set& seen) {
  if (!seen.insert(elements)) {
    return;
  }
  if ((seen.size() == 1 || elements->type() == Var) && !is_known_real(elements)) {
    mark(elements, value_kind::complex);
  }
  for (term_ptr part : elements->children()) {
    if (part != nullptr) {
      put_into_complex(part, seen);
    }
  }
}

// Numbers and operators keep the kind of their form.
void value_kinds::mark(term_ptr t, value_kind kind) {
  if (t->type() == Const || t->type() == Oper) {
    return;
  }
  value_kind& known = marked_[t->bare()];
  if (known < kind) {
    known = kind;
    settled_ = false;
  }
}

// Equations carry the greater kind from one side to the other, in both directions by turns, until nothing changes.
// A number, or what stands in a set of reals.
bool value_kinds::is_known_real(term_ptr t) const { return t->name_mask() == 0 || reals_.count(t->bare()) != 0; }

void value_kinds::settle() {
  if (complex_set_is_named_) {
    node_set seen;
    for (term_ptr elements : std::exchange(memberships_, {})) {
      seen.clear();
      put_into_complex(elements, seen);
    }
  }
  known_.clear();
  settled_ = true;
  for (bool grown = !marked_.empty() || !equations_.empty(); grown;) {
    grown = false;
    for (const auto& [left, right] : equations_) {
      const value_kind of_left = of(left);
      const value_kind of_right = of(right);
      if (of_left != of_right) {
        const term_ptr lesser = of_left < of_right ? left : right;
        const term_ptr greater = of_left < of_right ? right : left;
        if (std::max(of_left, of_right) == value_kind::complex && is_known_real(lesser)) {  // z + i = 2
          node_set seen;
          put_into_complex(greater, seen);
        } else {
          mark(lesser, std::max(of_left, of_right));
        }
        grown = grown || !settled_;
        known_.clear();
        settled_ = true;
      }
    }
    std::reverse(equations_.begin(), equations_.end());
  }
}

value_kind value_kinds::of(term_ptr t) {
  if (!settled_) {
    settle();
  }
  const auto marked = marked_.empty() ? marked_.end() : marked_.find(t->bare());
  if (marked != marked_.end() && marked->second == value_kind::other) {
    return value_kind::other;
  }
  const value_kind by_use = marked == marked_.end() ? value_kind::real : marked->second;
  if (t->children().empty()) {
    return std::max(by_use, by_form(t));
  }
  return known_.get(t, [&] { return std::max(by_use, by_form(t)); });
}

value_kind value_kinds::by_form(term_ptr t) {
  switch (t->type()) {
    case Var:
      return value_kind::real;
    case Const:
      switch (t->constant()) {
        case Integer:
        case Decimal:
        case E:
        case Pi:
          return value_kind::real;
        default:
          return t->constant() == I ? value_kind::complex : value_kind::other;
      }
    case Apply:
      return by_application(t);
    default:
      return value_kind::other;
  }
}

// The value of an operator is complex when an argument is, a magnitude excepted.
value_kind value_kinds::by_application(term_ptr t) {
  bool any_complex = false;
  bool any_other = false;
  unsigned count = 0;
  term_ptr head = t;
  for (; head->type() == Apply; head = head->left()) {
    const value_kind kind = of(head->right());
    any_complex = any_complex || kind == value_kind::complex;
    any_other = any_other || kind == value_kind::other;
    ++count;
  }
  if (head->type() != Oper) {
    return head->type() == Pred || head->type() == Connect ? value_kind::other
           : any_complex                                   ? value_kind::complex
                                                           : value_kind::real;
  }
  const oper_type oper = head->oper();
  const bool derivative = (oper == SingleDeri && count == 1) || (oper == NthDeri && count == 2);
  if (row_of(no_numbers, oper) != nullptr || (derivative && is_function_name(first_argument(t)))) {
    return value_kind::other;
  }
  if (any_other && (oper == Abs || calculates(oper))) {
    return value_kind::other;
  }
  return any_complex && oper != Abs ? value_kind::complex : value_kind::real;
}

}  // namespace vetro

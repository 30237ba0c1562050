// The numbered kinds of every leaf and node. All enumerations share one continuous run of numbers, so that a number in
// a diagnostic names its kind without saying which enumeration it is from.
#pragma once

#include <cstdint>
#include <string_view>

#include "term/kind_rows.h"

namespace vetro {

#define VETRO_ENUMERATOR(number, name, printed) name = number,
enum const_type : std::int16_t { VETRO_CONST_TYPES(VETRO_ENUMERATOR) };

enum oper_type : std::int16_t { VETRO_OPER_TYPES(VETRO_ENUMERATOR) };

enum pred_type : std::int16_t { VETRO_PRED_TYPES(VETRO_ENUMERATOR) };

enum connect_type : std::int16_t { VETRO_CONNECT_TYPES(VETRO_ENUMERATOR) };

enum quant_type : std::int16_t { Forall = 315, Exists, ExistsUnique };

enum pattern_type : std::int16_t { VETRO_PATTERN_TYPES(VETRO_ENUMERATOR) };
#undef VETRO_ENUMERATOR

enum term_type : std::int16_t {
  Var = 327,
  Const,
  Oper,
  Apply,
  Pred,
  Connect,
  Lambda,
  Quant,
  TermList,
  FreeVarTag,
  Pattern
};

enum method_type : std::int16_t {
  Knowledge = 338,
  Inference,
  Substitute,
  Same,
  Trans,
  MultBothTerms,
  SquareBothTerms,
  LogBothTerms,
  SinBothTerms,
  DeriBothTerms,
  DiffBothTerms,
  TakeIntOnBothTerms,
  TakeLimOnBothTerms,
  CompareCoef,
  CustomMethod
};

static_assert(Ellipsis == 27 && RadiusOfConvergence == 168 && Defined == 309 && Iff == 314 && ExistsUnique == 317);
static_assert(PatternIgnore == 326 && Pattern == 337 && CustomMethod == 352);

// ---- Families. Each is a run of numbers.

constexpr bool is_big_operator(oper_type oper) { return oper >= BigSum && oper <= BigInterSup; }
// Big operators with an upper bound beside the lower part: every second one.
constexpr bool has_upper_bound(oper_type oper) { return is_big_operator(oper) && (oper - BigSum) % 2 == 1; }
constexpr bool is_sequence_limit(oper_type oper) { return oper >= SeqLim && oper <= RightSeqLimInf; }
constexpr bool is_limit(oper_type oper) { return oper >= SeqLim && oper <= RightLimInf; }
// Limits of functions, no sequence limits.
constexpr bool is_function_limit(oper_type oper) { return oper >= Lim && oper <= RightLimInf; }
constexpr bool is_derivative(oper_type oper) { return oper >= SingleDeri && oper <= ValDeri; }
constexpr bool is_integral(oper_type oper) { return oper >= IndefInt && oper <= VolumeInt; }
constexpr bool is_landau(oper_type oper) { return oper >= BigO && oper <= RightLittleO; }
constexpr bool is_infinity(const_type kind) { return kind >= Infty && kind <= NegInfty; }
// Tendencies and equivalences: x → a, and those that name their index.
constexpr bool is_tendency(pred_type pred) { return pred >= TendsToWithoutIndex && pred <= RightAsymEquiv; }
constexpr bool has_tendency_index(pred_type pred) { return pred >= SeqTendsTo && pred <= RightAsymEquiv; }
// Predicates of functions and sequences.
constexpr bool is_of_function(pred_type pred) {
  return (pred >= IsFunc && pred <= StrictMonoDecFuncOn) ||
         (pred >= ContinuousFunc && pred <= ConditionalConvergentSeries && pred != SingularPoint);
}

static_assert(BigSumSup == BigSum + 1 && BigInterSup == BigInter + 1 && BigInterSup == BigSum + 7);
static_assert(RightSeqLimInf == SeqLim + 8 && Lim == RightSeqLimInf + 1 && RightLimInf == Lim + 8);
static_assert(RightLittleO == BigO + 5 && VolumeInt == IndefInt + 6 && RightAsymEquiv == TendsToWithoutIndex + 11);

// Printed names, by number. An unknown number (Vec included: nothing builds it) is reported on standard error and gives
// "Unknown_..._type".
std::string_view const_type_internal(int number);
std::string_view oper_type_internal(int number);
std::string_view pred_type_internal(int number);
std::string_view connect_type_internal(int number);
std::string_view pattern_type_internal(int number);

// The number of the leaf that a word stands for, or -1 for an ordinary variable. Case counts.
int name_number(std::string_view word);

}  // namespace vetro

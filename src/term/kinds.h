// The numbered kinds of every leaf and node. All enumerations share one continuous run of numbers, so that a number in
// a diagnostic names its kind without saying which enumeration it is from.
#pragma once

#include <cstdint>
#include <string_view>

namespace vetro {

enum const_type : std::int16_t {
  Integer = 0,
  Decimal,
  Infty,
  PosInfty,
  NegInfty,
  E,
  I,
  Pi,
  EmptySet,
  False,
  IntegerSet,
  PosIntegerSet,
  NegIntegerSet,
  NonPosIntegerSet,
  NonNegIntegerSet,
  RationalSet,
  PosRationalSet,
  NegRationalSet,
  NonPosRationalSet,
  NonNegRationalSet,
  RealSet,
  PosRealSet,
  NegRealSet,
  NonPosRealSet,
  NonNegRealSet,
  ComplexSet,
  PrimeSet,
  Ellipsis
};

enum oper_type : std::int16_t {
  IntervalLoRo = 28,
  IntervalLcRo,
  IntervalLoRc,
  IntervalLcRc,
  Plus,
  Neg,
  Minus,
  PosNeg,
  PlusMinus,
  Mult,
  Div,
  Mod,
  Fact,
  Power,
  Index,
  Abs,
  Cardinal,
  Frac,
  Sqrt,
  Sqrtn,
  Cbrt,
  Max,
  Min,
  MaxInSet,
  MinInSet,
  Sup,
  Inf,
  Ln,
  Lg,
  Log,
  SetEnum,
  SetDesc,
  Union,
  Inter,
  Compose,
  SingleDeri,
  NthDeri,
  FunDeri,
  ValDeri,
  D,
  PD,
  EvalBar,
  Bar,
  Vec,
  DotProd,
  CrossProd,
  Tuple,
  PiecewiseFunc,
  Sin,
  Cos,
  Tan,
  Cot,
  Sec,
  Csc,
  Arcsin,
  Arccos,
  Arctan,
  Arccot,
  Arcsec,
  Arccsc,
  Sinh,
  Cosh,
  Tanh,
  Coth,
  Sech,
  Csch,
  Arcsinh,
  Arccosh,
  Arctanh,
  Arccoth,
  Arcsech,
  Arccsch,
  Sgn,
  Floor,
  Ceil,
  VecGrad,
  VecDiv,
  VecRot,
  Nabla,
  SetUnion,
  SetInter,
  PowerSet,
  SetMinus,
  CartesianProd,
  Dom,
  BigSum,
  BigSumSup,
  BigProd,
  BigProdSup,
  BigUnion,
  BigUnionSup,
  BigInter,
  BigInterSup,
  SeqLim,
  LeftSeqLim,
  RightSeqLim,
  SeqLimSup,
  LeftSeqLimSup,
  RightSeqLimSup,
  SeqLimInf,
  LeftSeqLimInf,
  RightSeqLimInf,
  Lim,
  LeftLim,
  RightLim,
  LimSup,
  LeftLimSup,
  RightLimSup,
  LimInf,
  LeftLimInf,
  RightLimInf,
  IndefInt,
  DefInt,
  ScalarCurveInt,
  VectorCurveInt,
  ScalarSurfaceInt,
  VectorSurfaceInt,
  VolumeInt,
  BigO,
  LeftBigO,
  RightBigO,
  LittleO,
  LeftLittleO,
  RightLittleO,
  IdentityBinRel,
  InverseBinRel,
  BinRelComp,
  EquivClass,
  TransitiveClosure,
  RelTransClosure,
  InverseFunc,
  MaximumPoint,
  MinimumPoint,
  MaximumPointOn,
  MinimumPointOn,
  RestrictFunc,
  ImageOn,
  OscillationOn,
  OscillationAt,
  AccumulationPointSet,
  RadiusOfConvergence
};

enum pred_type : std::int16_t {
  PredChain = 169,
  Eq,
  Neq,
  Gt,
  Ge,
  Lt,
  Le,
  Appro,
  IdentEq,
  Divides,
  CongruentMod,
  Coprime,
  Belong,
  NotBelong,
  Subset,
  Odd,
  Even,
  BigEnough,
  SmallEnough,
  IsSet,
  FiniteSet,
  InfiniteSet,
  CountableSet,
  UncountableSet,
  IsFunc,
  IsFuncOn,
  OddFunc,
  EvenFunc,
  InjectiveFunc,
  SurjectiveFunc,
  BijectiveFunc,
  PeriodicFunc,
  AntiperiodicFunc,
  ConvexFunc,
  ConcaveFunc,
  ConvexFuncOn,
  ConcaveFuncOn,
  BoundedFunc,
  BoundedAboveFunc,
  BoundedBelowFunc,
  BoundedFuncOn,
  BoundedAboveFuncOn,
  BoundedBelowFuncOn,
  MonoIncFunc,
  MonoDecFunc,
  StrictMonoIncFunc,
  StrictMonoDecFunc,
  MonoIncFuncOn,
  MonoDecFuncOn,
  StrictMonoIncFuncOn,
  StrictMonoDecFuncOn,
  ReflexiveBinRel,
  SymmetricBinRel,
  AntisymmetricBinRel,
  TransitiveBinRel,
  EquivalenceBinRel,
  PreOrderBinRel,
  PartialOrderBinRel,
  SetPartition,
  PartitionRefine,
  IsInjection,
  IsSurjection,
  IsBijection,
  Equinumerous,
  HasInjection,
  HasSurjection,
  HasBijection,
  InductiveSet,
  TendsToWithoutIndex,
  LeftTendsToWithoutIndex,
  RightTendsToWithoutIndex,
  SeqTendsTo,
  LeftSeqTendsTo,
  RightSeqTendsTo,
  TendsTo,
  LeftTendsTo,
  RightTendsTo,
  AsymEquiv,
  LeftAsymEquiv,
  RightAsymEquiv,
  ContinuousFunc,
  ContinuousFuncOn,
  ContinuousFuncAt,
  PiecewiseContinuousFunc,
  PiecewiseContinuousFuncOn,
  UniformContinuousFunc,
  UniformContinuousFuncOn,
  LipschitzContinuousFunc,
  LipschitzContinuousFuncOn,
  DiffableFunc,
  DiffableFuncOn,
  DiffableFuncAt,
  LeftDiffableFunc,
  LeftDiffableFuncOn,
  LeftDiffableFuncAt,
  RightDiffableFunc,
  RightDiffableFuncOn,
  RightDiffableFuncAt,
  ContinuouslyDiffableFunc,
  ContinuouslyDiffableFuncOn,
  FuncOfClassK,
  FuncOfClassKOn,
  SmoothFunc,
  SmoothFuncOn,
  IntegrableFunc,
  IntegrableFuncOn,
  SquareIntegrableFunc,
  SquareIntegrableFuncOn,
  UniformlyBoundedFuncFamily,
  IsSeq,
  IsSubseqIndexFunc,
  SingularPoint,
  PosSeq,
  NegSeq,
  NonNegSeq,
  AlterSeq,
  MonoIncSeq,
  MonoDecSeq,
  StrictMonoIncSeq,
  StrictMonoDecSeq,
  MonoIncSeqOn,
  MonoDecSeqOn,
  StrictMonoIncSeqOn,
  StrictMonoDecSeqOn,
  BoundedSeq,
  BoundedAboveSeq,
  BoundedBelowSeq,
  BoundedSeqOn,
  BoundedAboveSeqOn,
  BoundedBelowSeqOn,
  ConvergentSeq,
  ConvergentSeqTo,
  DivergentSeq,
  CauchySeq,
  UniformConvergent,
  ConvergentSeries,
  ConvergentSeriesTo,
  DivergentSeries,
  AbsoluteConvergentSeries,
  ConditionalConvergentSeries,
  Defined
};

enum connect_type : std::int16_t { Not = 310, And, Or, Impl, Iff };

enum quant_type : std::int16_t { Forall = 315, Exists, ExistsUnique };

enum pattern_type : std::int16_t {
  PatternWildCard = 318,
  PatternVar,
  PatternConst,
  PatternOper,
  PatternPred,
  PatternConnect,
  PatternTermList,
  PatternFuncApply,
  PatternIgnore
};

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

inline constexpr int const_type_count = Ellipsis - Integer + 1;
inline constexpr int oper_type_count = RadiusOfConvergence - IntervalLoRo + 1;
inline constexpr int pred_type_count = Defined - PredChain + 1;
static_assert(Ellipsis == 27 && RadiusOfConvergence == 168 && Defined == 309 && Iff == 314 && ExistsUnique == 317);
static_assert(PatternIgnore == 326 && Pattern == 337 && CustomMethod == 352);

// ---- Families. Each is a run of numbers.

constexpr bool is_interval(oper_type oper) { return oper >= IntervalLoRo && oper <= IntervalLcRc; }
constexpr bool is_big_operator(oper_type oper) { return oper >= BigSum && oper <= BigInterSup; }
// Big operators with an upper bound beside the lower part: every second one.
constexpr bool has_upper_bound(oper_type oper) { return is_big_operator(oper) && (oper - BigSum) % 2 == 1; }
constexpr bool is_sequence_limit(oper_type oper) { return oper >= SeqLim && oper <= RightSeqLimInf; }
constexpr bool is_limit(oper_type oper) { return oper >= SeqLim && oper <= RightLimInf; }
constexpr bool is_integral(oper_type oper) { return oper >= IndefInt && oper <= VolumeInt; }
constexpr bool is_landau(oper_type oper) { return oper >= BigO && oper <= RightLittleO; }
constexpr bool is_infinity(const_type kind) { return kind >= Infty && kind <= NegInfty; }
constexpr bool is_number_set(const_type kind) { return kind >= IntegerSet && kind <= ComplexSet; }
// Tendencies and equivalences: x → a, and those that name their index.
constexpr bool is_tendency(pred_type pred) { return pred >= TendsToWithoutIndex && pred <= RightAsymEquiv; }
constexpr bool has_tendency_index(pred_type pred) { return pred >= SeqTendsTo && pred <= RightAsymEquiv; }

static_assert(BigSumSup == BigSum + 1 && BigInterSup == BigInter + 1 && BigInterSup == BigSum + 7);
static_assert(RightSeqLimInf == SeqLim + 8 && Lim == RightSeqLimInf + 1 && RightLimInf == Lim + 8);
static_assert(RightLittleO == BigO + 5 && VolumeInt == IndefInt + 6 && RightAsymEquiv == TendsToWithoutIndex + 11);

// One row for each enumerator that has a printed name, in the order of the numbers.
struct name_row {
  int number;
  std::string_view printed;
};

// A spelling that name_dispatch accepts beside the printed name.
struct alias_row {
  std::string_view written;
  int number;
};

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

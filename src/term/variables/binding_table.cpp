// The rows, and the lookup by the head of a node.
#include "term/variables/binding_table.h"

#include <algorithm>

#include "term/relation.h"

namespace vetro {
namespace {

constexpr region in = region::inside;
constexpr region out = region::outside;
constexpr region idx = region::index;

// A notation whose first argument is the operand; what follows stands outside and belongs to other nodes.
constexpr binding_row operand_row(int head, binding_kind kind) { return {head, 1, kind, {in}}; }
constexpr binding_row function_row(int head) { return operand_row(head, binding_kind::function_operand); }
constexpr binding_row sequence_row(int head) { return operand_row(head, binding_kind::sequence_operand); }
constexpr binding_row any_row(int head) { return operand_row(head, binding_kind::any_operand); }
constexpr binding_row sum_row(int head) { return {head, 2, binding_kind::index_part, {idx, in}}; }
constexpr binding_row bounded_sum_row(int head) { return {head, 3, binding_kind::index_part, {idx, out, in}}; }
constexpr binding_row limit_row(int head) { return {head, 3, binding_kind::index_part, {idx, out, in}}; }
constexpr binding_row tendency_row(int head) { return {head, 4, binding_kind::index_part, {idx, out, in, in}}; }
constexpr binding_row domain_integral_row(int head) { return {head, 2, binding_kind::differentials, {out, in}}; }
constexpr binding_row landau_row(int head) { return {head, 3, binding_kind::landau_term, {in, out, in}}; }

constexpr binding_row rows[] = {
    sum_row(BigSum),
    bounded_sum_row(BigSumSup),
    sum_row(BigProd),
    bounded_sum_row(BigProdSup),
    sum_row(BigUnion),
    bounded_sum_row(BigUnionSup),
    sum_row(BigInter),
    bounded_sum_row(BigInterSup),
    {IndefInt, 1, binding_kind::differentials, {in}},
    {DefInt, 3, binding_kind::differentials, {out, out, in}},
    domain_integral_row(ScalarCurveInt),
    domain_integral_row(VectorCurveInt),
    domain_integral_row(ScalarSurfaceInt),
    domain_integral_row(VectorSurfaceInt),
    domain_integral_row(VolumeInt),
    limit_row(SeqLim),
    limit_row(LeftSeqLim),
    limit_row(RightSeqLim),
    limit_row(SeqLimSup),
    limit_row(LeftSeqLimSup),
    limit_row(RightSeqLimSup),
    limit_row(SeqLimInf),
    limit_row(LeftSeqLimInf),
    limit_row(RightSeqLimInf),
    limit_row(Lim),
    limit_row(LeftLim),
    limit_row(RightLim),
    limit_row(LimSup),
    limit_row(LeftLimSup),
    limit_row(RightLimSup),
    limit_row(LimInf),
    limit_row(LeftLimInf),
    limit_row(RightLimInf),
    tendency_row(SeqTendsTo),
    tendency_row(LeftSeqTendsTo),
    tendency_row(RightSeqTendsTo),
    tendency_row(TendsTo),
    tendency_row(LeftTendsTo),
    tendency_row(RightTendsTo),
    tendency_row(AsymEquiv),
    tendency_row(LeftAsymEquiv),
    tendency_row(RightAsymEquiv),
    {ValDeri, 3, binding_kind::index_part, {in, idx, out}},
    {SetDesc, 2, binding_kind::set_element, {in, in}},
    landau_row(BigO),
    landau_row(LeftBigO),
    landau_row(RightBigO),
    landau_row(LittleO),
    landau_row(LeftLittleO),
    landau_row(RightLittleO),

    // Differentials; the value that tends.
    any_row(D),
    any_row(PD),
    any_row(TendsToWithoutIndex),
    any_row(LeftTendsToWithoutIndex),
    any_row(RightTendsToWithoutIndex),

    // Derivatives, bars, and what is said or made of a function.
    function_row(SingleDeri),
    function_row(NthDeri),
    function_row(FunDeri),
    function_row(EvalBar),
    function_row(VecGrad),
    function_row(VecDiv),
    function_row(VecRot),
    function_row(Nabla),
    function_row(Dom),
    function_row(InverseFunc),
    function_row(MaximumPoint),
    function_row(MinimumPoint),
    function_row(MaximumPointOn),
    function_row(MinimumPointOn),
    function_row(RestrictFunc),
    function_row(ImageOn),
    function_row(OscillationOn),
    function_row(OscillationAt),
    function_row(IsFunc),
    function_row(IsFuncOn),
    function_row(OddFunc),
    function_row(EvenFunc),
    function_row(InjectiveFunc),
    function_row(SurjectiveFunc),
    function_row(BijectiveFunc),
    function_row(PeriodicFunc),
    function_row(AntiperiodicFunc),
    function_row(ConvexFunc),
    function_row(ConcaveFunc),
    function_row(ConvexFuncOn),
    function_row(ConcaveFuncOn),
    function_row(BoundedFunc),
    function_row(BoundedAboveFunc),
    function_row(BoundedBelowFunc),
    function_row(BoundedFuncOn),
    function_row(BoundedAboveFuncOn),
    function_row(BoundedBelowFuncOn),
    function_row(MonoIncFunc),
    function_row(MonoDecFunc),
    function_row(StrictMonoIncFunc),
    function_row(StrictMonoDecFunc),
    function_row(MonoIncFuncOn),
    function_row(MonoDecFuncOn),
    function_row(StrictMonoIncFuncOn),
    function_row(StrictMonoDecFuncOn),
    function_row(IsInjection),
    function_row(IsSurjection),
    function_row(IsBijection),
    function_row(ContinuousFunc),
    function_row(ContinuousFuncOn),
    function_row(ContinuousFuncAt),
    function_row(PiecewiseContinuousFunc),
    function_row(PiecewiseContinuousFuncOn),
    function_row(UniformContinuousFunc),
    function_row(UniformContinuousFuncOn),
    function_row(LipschitzContinuousFunc),
    function_row(LipschitzContinuousFuncOn),
    function_row(DiffableFunc),
    function_row(DiffableFuncOn),
    function_row(DiffableFuncAt),
    function_row(LeftDiffableFunc),
    function_row(LeftDiffableFuncOn),
    function_row(LeftDiffableFuncAt),
    function_row(RightDiffableFunc),
    function_row(RightDiffableFuncOn),
    function_row(RightDiffableFuncAt),
    function_row(ContinuouslyDiffableFunc),
    function_row(ContinuouslyDiffableFuncOn),
    function_row(FuncOfClassK),
    function_row(FuncOfClassKOn),
    function_row(SmoothFunc),
    function_row(SmoothFuncOn),
    function_row(IntegrableFunc),
    function_row(IntegrableFuncOn),
    function_row(SquareIntegrableFunc),
    function_row(SquareIntegrableFuncOn),

    // What is said of a sequence or a series by its general term.
    sequence_row(RadiusOfConvergence),
    sequence_row(AccumulationPointSet),
    sequence_row(UniformlyBoundedFuncFamily),
    sequence_row(IsSeq),
    sequence_row(IsSubseqIndexFunc),
    sequence_row(PosSeq),
    sequence_row(NegSeq),
    sequence_row(NonNegSeq),
    sequence_row(AlterSeq),
    sequence_row(MonoIncSeq),
    sequence_row(MonoDecSeq),
    sequence_row(StrictMonoIncSeq),
    sequence_row(StrictMonoDecSeq),
    sequence_row(MonoIncSeqOn),
    sequence_row(MonoDecSeqOn),
    sequence_row(StrictMonoIncSeqOn),
    sequence_row(StrictMonoDecSeqOn),
    sequence_row(BoundedSeq),
    sequence_row(BoundedAboveSeq),
    sequence_row(BoundedBelowSeq),
    sequence_row(BoundedSeqOn),
    sequence_row(BoundedAboveSeqOn),
    sequence_row(BoundedBelowSeqOn),
    sequence_row(ConvergentSeq),
    sequence_row(ConvergentSeqTo),
    sequence_row(DivergentSeq),
    sequence_row(CauchySeq),
    sequence_row(UniformConvergent),
    sequence_row(ConvergentSeries),
    sequence_row(ConvergentSeriesTo),
    sequence_row(DivergentSeries),
    sequence_row(AbsoluteConvergentSeries),
    sequence_row(ConditionalConvergentSeries),
};

// Both operands of a relation around Landau terms, and all of a chain or a product, lie inside.
constexpr binding_row landau_atom_row = {-1, 2, binding_kind::landau_atom, {in, in, in}};
constexpr binding_row landau_congruence_row = {-1, 3, binding_kind::landau_atom, {in, in, in}};
constexpr binding_row tendency_chain_row = {-1, 2, binding_kind::tendency_chain, {in, in}};
constexpr binding_row nabla_product_row = {-1, 2, binding_kind::nabla_product, {in, in}};

constexpr auto row_of_head = [] {
  std::array<unsigned char, Defined + 1> places{};
  unsigned char place = 0;
  for (const binding_row& row : rows) {
    places[static_cast<std::size_t>(row.head)] = ++place;
  }
  return places;
}();
static_assert(std::size(rows) < 256);

bool is_bare_nabla(term_ptr t) { return is_oper(t, Nabla); }

// ∇ · F, ∇ × F, c * ∇ and the like: the sign stands as a factor, so that it acts on what follows.
bool holds_nabla_factor(term_ptr t) {
  const term_ptr left = t->argument(0);
  const term_ptr right = t->argument(1);
  const auto holds = [](term_ptr factor) {
    return is_bare_nabla(factor) || (factor->type() == Apply && binding_row_of(factor) == &nabla_product_row);
  };
  return (left->has(fact_guard) && holds(left)) || (right->has(fact_guard) && holds(right));
}

bool holds_tendency_with_index(term_ptr chain) {
  const term_ptr preds = chain->argument(0);
  return preds->type() == TermList && std::any_of(preds->elements().begin(), preds->elements().end(), [](term_ptr p) {
           return p->type() == Apply && has_tendency_index(static_cast<pred_type>(p->head()));
         });
}

const binding_row* row_by_what_is_inside(term_ptr t) {
  switch (t->head()) {
    case Mult:
    case DotProd:
    case CrossProd:
    case Power:
      return t->argument_count() == 2 && holds_nabla_factor(t) ? &nabla_product_row : nullptr;
    case PredChain:
      if (t->argument_count() != 2) {
        return nullptr;
      }
      return holds_tendency_with_index(t) ? &tendency_chain_row : (t->has(fact_landau) ? &landau_atom_row : nullptr);
    case CongruentMod:
      return t->argument_count() == 3 && t->has(fact_landau) ? &landau_congruence_row : nullptr;
    default:
      return t->has(fact_landau) && relates_two_sides(t) ? &landau_atom_row : nullptr;
  }
}

}  // namespace

const binding_row* binding_row_by_head(term_ptr t) {
  const int head = t->head();
  if (head > Defined) {
    return nullptr;
  }
  const unsigned char place = row_of_head[static_cast<std::size_t>(head)];
  if (place == 0) {
    return t->has(fact_guard) ? row_by_what_is_inside(t) : nullptr;
  }
  const binding_row& row = rows[place - 1];
  return row.arity == t->argument_count() ? &row : nullptr;
}

unsigned facts_of_head(int head) {
  const unsigned char place = head >= 0 && head <= Defined ? row_of_head[static_cast<std::size_t>(head)] : 0;
  if (place == 0) {
    return 0;
  }
  switch (rows[place - 1].kind) {
    case binding_kind::index_part:
      // In a chain the partial application of a tendency speaks of its index.
      return has_tendency_index(static_cast<pred_type>(head)) ? fact_binding | fact_guard : fact_binding;
    case binding_kind::differentials:
    case binding_kind::set_element:
      return fact_binding;
    case binding_kind::landau_term:
      return fact_landau | fact_guard | fact_binding;
    default:
      return fact_guard;
  }
}

}  // namespace vetro

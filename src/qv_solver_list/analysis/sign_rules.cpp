// The two tables. The order of rows is the order of trial.
#include "qv_solver_list/analysis/sign_rules.h"

namespace vetro {
namespace {

using enum sign_form;
using enum sign_question;
using namespace sign_rules;

constexpr need base_is_e = is(need_kind::base_is_e);
constexpr need number = is(need_kind::number);
constexpr need no_number = is(need_kind::no_number);
constexpr need even = is(need_kind::even);
constexpr need even_from_2 = is(need_kind::even_from_2);
constexpr need odd = is(need_kind::odd);
constexpr need zero = is(need_kind::zero);
constexpr need above_zero = is(need_kind::above_zero);
constexpr need undefined = is(need_kind::undefined);
constexpr need cut = is(need_kind::cut);
constexpr need never = is(need_kind::never);
constexpr need def = whole(defined);
constexpr need by_sum = is(need_kind::by_sum);
constexpr need by_others = is(need_kind::by_others);
constexpr need first_nonzero_by_others = is(need_kind::first_nonzero_by_others);

constexpr otherwise no = otherwise::no;
constexpr otherwise go_on = otherwise::go_on;

constexpr std::array full_rules = std::to_array<rule>({
    when(absolute, ge0, no, all()),
    when(absolute, gt0, no, all(first_nonzero_by_others)),
    when(negated, le0, no, all(first(ge0))),
    when(negated, lt0, no, all(first(gt0))),

    when(root, ge0, no, all(even, def), all(odd, def, first(ge0))),
    when(root, gt0, no, all(number, def, first(gt0))),
    when(root, le0, no, all(odd, def, first(le0)), all(even, def, first(ge0), first(le0))),
    when(root, lt0, no, all(odd, def, first(lt0))),

    when(power, ge0, go_on, all(base_is_e, def), all(even, def), all(odd, def, cut, first(ge0)), all(def, first(gt0))),
    when(power, gt0, go_on, all(base_is_e, def), all(zero, cut, def), all(number, undefined, cut, never)),
    when(power, gt0, go_on, all(number, first(gt0)), all(even, first_nonzero_by_others),
         all(no_number, def, first(gt0))),
    when(power, le0, no, all(odd, def, first(le0)), all(even_from_2, def, first(ge0), first(le0))),
    when(power, lt0, no, all(odd, def, first(lt0))),

    when(quotient, ge0, go_on, all(second(gt0), first(ge0)), all(second(lt0), first(le0))),
    when(quotient, gt0, go_on, all(first(gt0), second(gt0)), all(first(lt0), second(lt0))),
    when(quotient, le0, go_on, all(second(gt0), first(le0)), all(second(lt0), first(ge0))),
    when(quotient, lt0, go_on, all(second(gt0), first(lt0)), all(second(lt0), first(gt0))),

    when(product, ge0, go_on, all(first(ge0), second(ge0)), all(first(le0), second(le0))),
    when(product, gt0, go_on, all(first(gt0), second(gt0)), all(first(lt0), second(lt0))),
    when(product, le0, go_on, all(first(ge0), second(le0)), all(first(le0), second(ge0))),
    when(product, lt0, go_on, all(first(gt0), second(lt0)), all(first(lt0), second(gt0))),

    when(sum, ge0, no, all(by_sum)),
    when(sum, gt0, no, all(by_sum)),
    when(negated, ge0, no, all(by_sum)),
    when(negated, gt0, no, all(by_sum)),

    // A summand, at a glance.
    when(absolute, obvious_ge0, no, all()),
    when(negated, obvious_ge0, no, all(first(obvious_le0))),
    when(negated, obvious_le0, no, all(first(obvious_ge0))),
    when(root, obvious_ge0, no, all(whole(ge0))),
    when(root, obvious_le0, no, all(whole(le0))),
    when(power, obvious_ge0, no, all(whole(ge0))),
    when(product, obvious_ge0, go_on, all(first(obvious_ge0), second(obvious_ge0)),
         all(first(obvious_le0), second(obvious_le0))),
    when(product, obvious_le0, go_on, all(first(obvious_ge0), second(obvious_le0)),
         all(first(obvious_le0), second(obvious_ge0))),

    when(other, ge0, no, all(by_others)),
    when(other, gt0, no, all(by_others)),
    when(other, le0, no, all(by_others)),
    when(other, lt0, no, all(by_others)),
    when(other, obvious_ge0, no, all(by_others)),
    when(other, obvious_le0, no, all(by_others)),
});

constexpr std::array pure_rules = std::to_array<rule>({
    when(absolute, ge0, no, all(first(defined))),
    when(absolute, gt0, no, all(first(defined), first(neq0))),
    when(negated, ge0, no, all(first(le0))),
    when(negated, gt0, no, all(first(lt0))),
    when(negated, le0, no, all(first(ge0))),
    when(negated, lt0, no, all(first(gt0))),

    when(root, ge0, no, all(odd, def, first(ge0)), all(even, def)),
    when(root, gt0, no, all(number, def, first(gt0))),
    when(root, le0, no, all(odd, def, first(le0)), all(even, def, first(ge0), first(le0))),
    when(root, lt0, no, all(odd, def, first(lt0))),

    when(power, ge0, no, all(base_is_e, cut, def), all(even, cut, def), all(odd, cut, def, first(ge0)),
         all(def, first(gt0))),
    when(power, gt0, no, all(base_is_e, cut, def), all(zero, cut, def), all(even, cut, def, first(neq0)),
         all(def, first(gt0))),
    when(power, le0, no, all(odd, def, first(le0)), all(even_from_2, def, first(ge0), first(le0))),
    when(power, lt0, no, all(odd, def, first(lt0))),

    when(quotient, ge0, no, all(second(gt0), cut, first(ge0)), all(second(lt0), first(le0))),
    when(quotient, gt0, no, all(first(gt0), second(gt0)), all(first(lt0), second(lt0))),
    when(quotient, le0, no, all(second(gt0), cut, first(le0)), all(second(lt0), first(ge0))),
    when(quotient, lt0, no, all(second(gt0), first(lt0)), all(second(lt0), first(gt0))),

    when(product, ge0, no, all(first(ge0), second(ge0)), all(first(le0), second(le0))),
    when(product, gt0, no, all(first(gt0), second(gt0)), all(first(lt0), second(lt0))),
    when(product, le0, no, all(first(ge0), second(le0)), all(first(le0), second(ge0))),
    when(product, lt0, no, all(first(gt0), second(lt0)), all(first(lt0), second(gt0))),

    when(sum, ge0, no, all(by_sum)),
    when(sum, gt0, no, all(by_sum)),
    when(sum, le0, no, all(by_sum)),
    when(sum, lt0, no, all(by_sum)),

    when(negated, neq0, no, all(first(neq0))),
    when(absolute, neq0, no, all(first(defined), first(neq0))),
    when(product, neq0, no, all(first(defined), second(defined), first(neq0), second(neq0))),
    when(quotient, neq0, no, all(first(defined), second(defined), first(neq0), second(neq0))),
    when(power, neq0, no, all(base_is_e, cut, def), all(zero, cut, first(defined), second(defined), first(neq0), def),
         all(number, cut, first(defined), second(defined), first(neq0)), all(def, first(gt0))),
    when(root, neq0, no, all(number, def, first(neq0))),
    when(other, neq0, no, all(whole(gt0)), all(whole(lt0))),

    // Where the expression has a value. Names and constants are no rows.
    when(negated, defined, no, all(first(defined))),
    when(absolute, defined, no, all(first(defined))),
    when(root, defined, no, all(first(defined), odd), all(first(defined), even, first(ge0))),
    when(sum, defined, no, all(first(defined), second(defined))),
    when(product, defined, no, all(first(defined), second(defined))),
    when(quotient, defined, no, all(first(defined), second(defined), second(neq0))),
    when(power, defined, no, all(first(defined), second(defined), base_is_e),
         all(first(defined), second(defined), no_number, first(gt0)), all(first(defined), second(defined), above_zero),
         all(first(defined), second(defined), number, first(neq0))),
});

}  // namespace

std::span<const rule> full_sign_rules() { return full_rules; }
std::span<const rule> pure_sign_rules() { return pure_rules; }

}  // namespace vetro

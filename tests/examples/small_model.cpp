// Values of terms and truth of propositions in the small world. Truth has a third value, open, for what the world does
// not know; a choice of values counts only where every premise is true. Limits, slopes and integrals are calculated
// with Laurent series, so that a function is given by how it acts on them.
#include "small_model.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <variant>
#include <vector>

#include "laurent.h"

namespace vetro::test {
namespace {

enum class truth { no, open, yes };

truth of_bool(bool b) { return b ? truth::yes : truth::no; }
truth negation(truth a) { return a == truth::open ? a : of_bool(a == truth::no); }
truth both(truth a, truth b) { return a < b ? a : b; }
truth either(truth a, truth b) { return a < b ? b : a; }
truth agree(truth a, truth b) { return a == truth::open || b == truth::open ? truth::open : of_bool(a == b); }

struct value;
using member_test = std::function<truth(const value&)>;
struct set_value {
  member_test contains;
};
struct function_value {
  std::function<value(const value&)> at;
};
struct value : std::variant<std::monostate, laurent, set_value, function_value> {
  using variant::variant;
  const laurent* number() const { return std::get_if<laurent>(this); }
  // The number, where it is a known one and not the neighbourhood of one.
  const cnum* plain() const {
    const laurent* series = number();
    return series != nullptr && series->constant() && series->has_limit() ? &series->at(0) : nullptr;
  }
  const set_value* set() const { return std::get_if<set_value>(this); }
  const function_value* function() const { return std::get_if<function_value>(this); }
};

value number(std::int64_t num, std::int64_t den = 1) { return laurent_of(cnum_from_frac(num, den)); }
value number(const cnum& n) { return laurent_of(n); }
value set_of(member_test test) { return set_value{std::move(test)}; }

enum class role { number, set, function, family };

// ---- What a variable stands for, told by the places where it occurs.

bool one_of(int head, std::initializer_list<int> heads) {
  return std::find(heads.begin(), heads.end(), head) != heads.end();
}

bool argument_is_set(term_ptr t, unsigned i) {
  const bool of_membership = t->head() == Belong && (i == 1 || (i == 0 && t->argument(1)->head() == PowerSet));
  return of_membership || one_of(t->head(), {Subset, Union, Inter, SetMinus, PowerSet}) ||
         (t->head() == BigUnion && i == 1) || (t->head() == BigInter && i == 1);
}

void find_role(term_ptr t, term_ptr var, bool in_set_place, role& found) {
  if (t == var && in_set_place) {
    found = role::set;
  } else if (t->type() == Apply && t->head() < 0 && t->left() == var) {
    found = in_set_place ? role::family : found == role::family ? found : role::function;
  }
  if (t->type() == Apply && t->head() >= 0) {
    for (unsigned i = 0; i < t->argument_count(); ++i) {
      const bool of_function = one_of(t->head(), {FunDeri, ContinuousFuncAt, ContinuousFuncOn, DiffableFuncAt,
                                                  DiffableFuncOn, IntegrableFuncOn, Index});
      if ((i == 0 && of_function && t->argument(0) == var) ||
          (i < 2 && t->head() == Compose && t->argument(i) == var)) {
        found = role::function;
      }
      find_role(t->argument(i), var, argument_is_set(t, i), found);
    }
    return;
  }
  for (term_ptr child : t->children()) {
    if (child != nullptr) {
      find_role(child, var, false, found);
    }
  }
}

bool speaks_of(term_ptr t, const std::function<bool(term_ptr)>& what) {
  if (what(t)) {
    return true;
  }
  for (term_ptr child : t->children()) {
    if (child != nullptr && speaks_of(child, what)) {
      return true;
    }
  }
  return false;
}

// ---- The world.

constexpr int element_count = 3;

value polynomial(std::vector<int> coefficients, const laurent& x) {
  laurent result;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    result = result * x + laurent_of(cnum_from_int(coefficients[k]));
  }
  return result;
}

value of_polynomial(std::vector<int> coefficients) {
  return function_value{
      [=](const value& x) -> value { return x.number() == nullptr ? value() : polynomial(coefficients, *x.number()); }};
}

value reciprocal_plus(int constant) {
  return function_value{[=](const value& x) -> value {
    return x.number() == nullptr ? value() : laurent_of(cnum_from_int(1)) / *x.number() + laurent_of({constant, 1});
  }};
}

class world {
 public:
  explicit world(term_ptr formula) {
    const auto is_number = [](term_ptr t) { return t->type() == Const && t->constant() != EmptySet; };
    const auto is_set_sign = [](term_ptr t) {
      return t->type() == Pred && (t->pred() == Belong || t->pred() == Subset);
    };
    finite_ = !speaks_of(formula, is_number) && speaks_of(formula, is_set_sign);
  }

  bool finite() const { return finite_; }

  // The values of a variable that is bound at the outside.
  std::vector<value> choices(role kind) const {
    switch (kind) {
      case role::number:
        return finite_ ? elements() : outer_numbers();
      case role::set:
        return subsets();
      case role::function:
        return finite_ ? maps(elements()) : functions();
      case role::family:
        return finite_ ? maps(subsets()) : std::vector<value>{};
    }
    return {};
  }

  // The numbers that a quantifier inside ranges over.
  std::vector<value> points() const {
    std::vector<value> result = finite_ ? elements() : outer_numbers();
    if (!finite_) {
      for (const int quarters : {-6, -3, -2, -1, 1, 3, 5, 6, 10, 16, 20, 24, 28}) {
        result.push_back(number(quarters, 4));
      }
      result.push_back(number(1, 1000));
    }
    return result;
  }

 private:
  static std::vector<value> elements() { return {number(0), number(1), number(2)}; }

  static std::vector<value> outer_numbers() {
    return {number(-2), number(-1), number(0), number(1, 2), number(1), number(2), number(3)};
  }

  // Of the elements 0, 1, 2 in the finite world; of the natural numbers elsewhere, where those from 7 on stay together.
  std::vector<value> subsets() const {
    std::vector<unsigned> masks = {0x00, 0x01, 0x02, 0x06, 0x0f, 0x55, 0xfe, 0xff};
    if (finite_) {
      masks = {0, 1, 2, 3, 4, 5, 6, 7};
    }
    std::vector<value> result;
    for (const unsigned mask : masks) {
      result.push_back(set_of([mask](const value& x) {
        std::int64_t element = 0;
        return x.plain() == nullptr ? truth::open
                                    : of_bool(cnum_is_int(*x.plain(), &element) && element >= 0 &&
                                              (mask >> std::min<std::int64_t>(element, 7) & 1U) != 0);
      }));
    }
    return result;
  }

  // All maps from the elements to these values.
  static std::vector<value> maps(const std::vector<value>& to) {
    std::vector<value> result;
    const std::size_t n = to.size();
    for (std::size_t code = 0; code < n * n * n; ++code) {
      const std::vector<value> table = {to[code % n], to[code / n % n], to[code / n / n]};
      result.push_back(function_value{[table](const value& x) -> value {
        return x.plain() == nullptr || x.plain()->num < 0 || x.plain()->num >= element_count
                   ? value()
                   : table[static_cast<std::size_t>(x.plain()->num)];
      }});
    }
    return result;
  }

  static std::vector<value> functions() {
    return {of_polynomial({1}),     of_polynomial({0, 1}),        of_polynomial({0, 2}),
            of_polynomial({1, -1}), of_polynomial({1, 2}),        of_polynomial({0, 0, 1}),
            reciprocal_plus(0),     of_polynomial({0, -3, 0, 1}), reciprocal_plus(2)};
  }

  bool finite_ = false;
};

// ---- Values of terms, truth of propositions.

class model {
 public:
  explicit model(const world& w) : world_(w) {}

  truth holds(term_ptr p);
  void bind(term_ptr var, value v) { values_[var->bare()].push_back(std::move(v)); }
  void unbind(term_ptr var) { values_[var->bare()].pop_back(); }

 private:
  value value_of(term_ptr t);
  value arithmetic(term_ptr t);
  value number_function(term_ptr t, const laurent& x);
  value set_operation(term_ptr t);
  value description(term_ptr t);
  value summation(term_ptr t);
  value limit(term_ptr t);
  value derivative(term_ptr t);
  value integral(term_ptr t);
  value power_of(term_ptr base, term_ptr exponent);
  value applied(const value& f, const value& x) { return f.function() == nullptr ? value() : f.function()->at(x); }
  value with(term_ptr var, const value& v, term_ptr t) {
    bind(var, v);
    value result = value_of(t);
    unbind(var);
    return result;
  }

  truth relation(term_ptr p);
  truth compared(term_ptr p);
  truth member(const value& x, term_ptr set);
  static truth member_of_constant(const value& x, const_type set);
  truth smooth(term_ptr f, const value& x);
  truth quantified(term_ptr p, std::size_t first);
  truth same_set(const value& a, const value& b, bool subset_only);

  const world& world_;
  std::map<term_ptr, std::vector<value>> values_;  // by the variable itself
  int below_some_ = 0;                             // existential quantifiers around
};

value model::value_of(term_ptr t) {
  switch (t->type()) {
    case Var: {
      const auto found = values_.find(t->bare());
      return found == values_.end() || found->second.empty() ? value() : found->second.back();
    }
    case Const:
      if (t->constant() == Integer) {
        return number(t->integer());
      }
      return t->constant() != EmptySet && (t->constant() < IntegerSet || t->constant() > PrimeSet)
                 ? value()
                 : set_of([t](const value& x) { return member_of_constant(x, t->constant()); });
    case Lambda: {
      // The closure keeps the values of now.
      return function_value{[*this, t](const value& x) mutable { return with(t->vars()[0], x, t->body()); }};
    }
    case Apply:
      return t->head() < 0 ? applied(value_of(t->left()), value_of(t->right())) : arithmetic(t);
    default:
      return {};
  }
}

value model::arithmetic(term_ptr t) {
  if (one_of(t->head(), {Union, Inter, SetMinus, PowerSet, SetEnum, SetDesc, BigUnion, BigInter}) ||
      (t->head() >= IntervalLoRo && t->head() <= IntervalLcRc)) {
    return set_operation(t);
  }
  switch (t->head()) {
    case Index:
      return applied(value_of(t->argument(0)), value_of(t->argument(1)));
    case BigSumSup:
    case BigProdSup:
      return summation(t);
    case Lim:
    case LeftLim:
    case RightLim:
    case SeqLim:
      return limit(t);
    case FunDeri:
      return derivative(t);
    case DefInt:
      return integral(t);
    case Power:
      return power_of(t->argument(0), t->argument(1));
    case Compose: {
      const value inner = applied(value_of(t->argument(1)), value_of(t->argument(t->argument_count() - 1)));
      return t->argument_count() == 3 ? applied(value_of(t->argument(0)), inner) : value();
    }
    default:
      break;
  }
  const value a = value_of(t->argument(0));
  if (a.number() == nullptr) {
    return {};
  }
  if (t->argument_count() == 1) {
    return number_function(t, *a.number());
  }
  const value b = value_of(t->argument(1));
  if (b.number() == nullptr || t->argument_count() != 2) {
    return {};
  }
  switch (t->head()) {
    case Plus:
      return *a.number() + *b.number();
    case Minus:
      return *a.number() - *b.number();
    case Mult:
      return *a.number() * *b.number();
    case Div:
      return *a.number() / *b.number();
    case Max:
    case Min:
      return a.plain() == nullptr || b.plain() == nullptr                   ? value()
             : (cnum_cmp(*a.plain(), *b.plain()) < 0) == (t->head() == Max) ? b
                                                                            : a;
    default:
      return {};
  }
}

value model::number_function(term_ptr t, const laurent& x) {
  const cnum one = cnum_from_int(1);
  switch (t->head()) {
    case Neg:
      return laurent_of(cnum_from_int(-1)) * x;
    case Abs:
      if (x.order() < 0 || x.order() > laurent::highest) {
        return x.order() < 0 ? value() : x;
      }
      return x.order() > 0 || cnum_is_zero(x.at(0)) ? value() : x.at(0).num < 0 ? laurent_of(cnum_from_int(-1)) * x : x;
    case Sin:
      return composed({cnum{}, one, cnum{}, cnum_from_frac(-1, 6), cnum{}}, x);
    case Cos:
      return composed({one, cnum{}, cnum_from_frac(-1, 2), cnum{}, cnum_from_frac(1, 24)}, x);
    case Ln:
      return composed({cnum{}, one, cnum_from_frac(-1, 2), cnum_from_frac(1, 3), cnum_from_frac(-1, 4)},
                      x - laurent_of(one));
    case Fact: {
      std::int64_t n = 0;
      if (!x.constant() || !cnum_is_int(x.at(0), &n) || n < 0) {
        return {};
      }
      laurent result = laurent_of(one);
      for (std::int64_t i = 2; i <= n; ++i) {
        result = result * laurent_of(cnum_from_int(i));
      }
      return result;
    }
    case Sqrt:
      for (std::int64_t root = 0; x.constant() && root < 100; ++root) {
        for (const std::int64_t den : {1, 2, 3}) {
          if (cnum_from_frac(root * root, den * den) == x.at(0)) {
            return number(root, den);
          }
        }
      }
      return {};
    default:
      return {};
  }
}

value model::power_of(term_ptr base, term_ptr exponent) {
  const value e = value_of(exponent);
  if (base->type() == Const && base->constant() == E && e.number() != nullptr) {
    const cnum one = cnum_from_int(1);
    return composed({one, one, cnum_from_frac(1, 2), cnum_from_frac(1, 6), cnum_from_frac(1, 24)}, *e.number());
  }
  const value b = value_of(base);
  std::int64_t n = 0;
  if (b.number() == nullptr || e.plain() == nullptr || !cnum_is_int(*e.plain(), &n)) {
    return {};
  }
  return power(*b.number(), n);
}

value model::set_operation(term_ptr t) {
  if (t->head() == SetDesc) {
    return description(t);
  }
  // Sets are asked later, under other values of the variables: they keep those of now.
  return set_of([*this, t](const value& x) mutable -> truth {
    const auto in = [&](unsigned i) { return member(x, t->argument(i)); };
    const auto bound = [&](unsigned i) { return value_of(t->argument(i)); };
    switch (t->head()) {
      case Union:
        return either(in(0), in(1));
      case Inter:
        return both(in(0), in(1));
      case SetMinus:
        return both(in(0), negation(in(1)));
      case PowerSet:
        return same_set(x, bound(0), true);
      case SetEnum: {
        truth found = truth::no;
        for (term_ptr element : t->argument(0)->elements()) {
          const value e = value_of(element);
          found = either(
              found, x.plain() == nullptr || e.plain() == nullptr ? truth::open : of_bool(*x.plain() == *e.plain()));
        }
        return found;
      }
      case BigUnion:
      case BigInter: {
        const bool some = t->head() == BigUnion;
        truth result = of_bool(!some);
        const term_ptr index = t->argument(0);
        for (const value& i : world_.points()) {
          bind(index->argument(0), i);
          const truth inside = member(i, index->argument(1));
          const truth has = member(x, t->argument(1));
          result = some ? either(result, both(inside, has)) : both(result, either(negation(inside), has));
          unbind(index->argument(0));
        }
        return result;
      }
      default: {
        const value low = bound(0);
        const value high = bound(1);
        if (x.plain() == nullptr || low.plain() == nullptr || high.plain() == nullptr) {
          return truth::open;
        }
        const int left = cnum_cmp(*low.plain(), *x.plain());
        const int right = cnum_cmp(*x.plain(), *high.plain());
        const bool left_closed = t->head() == IntervalLcRo || t->head() == IntervalLcRc;
        const bool right_closed = t->head() == IntervalLoRc || t->head() == IntervalLcRc;
        return of_bool((left_closed ? left <= 0 : left < 0) && (right_closed ? right <= 0 : right < 0));
      }
    }
  });
}

// { element | conditions } over one variable: y belongs to it if the element is y for some point that fits.
value model::description(term_ptr t) {
  if (!world_.finite() || t->binders().size() != 1) {
    return {};
  }
  return set_of([*this, t](const value& y) mutable {
    truth found = truth::no;
    for (const value& point : world_.points()) {
      bind(t->binders()[0], point);
      truth fits = truth::yes;
      for (term_ptr condition : t->argument(1)->elements()) {
        fits = both(fits, holds(condition));
      }
      const value element = value_of(t->argument(0));
      fits = both(fits, y.plain() == nullptr || element.plain() == nullptr ? truth::open
                                                                           : of_bool(*y.plain() == *element.plain()));
      found = either(found, fits);
      unbind(t->binders()[0]);
    }
    return found;
  });
}

value model::summation(term_ptr t) {
  const term_ptr start = t->argument(0);
  const value low = value_of(start->argument(1));
  const value high = value_of(t->argument(1));
  std::int64_t first = 0;
  std::int64_t last = 0;
  if (start->head() != Eq || low.plain() == nullptr || high.plain() == nullptr || !cnum_is_int(*low.plain(), &first) ||
      !cnum_is_int(*high.plain(), &last) || last < first - 1) {
    return {};
  }
  const bool sum = t->head() == BigSumSup;
  laurent result = laurent_of(cnum_from_int(sum ? 0 : 1));
  for (std::int64_t i = first; i <= last; ++i) {
    const value term = with(start->argument(0), number(i), t->argument(2));
    if (term.number() == nullptr) {
      return {};
    }
    result = sum ? result + *term.number() : result * *term.number();
  }
  return result;
}

value model::limit(term_ptr t) {
  const value point = value_of(t->argument(1));
  const bool infinite = t->argument(1)->type() == Const && t->argument(1)->constant() == Infty;
  if (!infinite && point.plain() == nullptr) {
    return {};
  }
  laurent near = infinite ? laurent_of({1, 1}) / laurent_of({}, {1, 1}) : laurent_of(*point.plain(), {1, 1});
  const value body = with(t->argument(0), near, t->argument(2));
  return body.number() == nullptr || !body.number()->has_limit() ? value() : number(body.number()->at(0));
}

// FunDeri(f, 1, 1, x), by the slopes of f(x) and x as series.
value model::derivative(term_ptr t) {
  const value point = value_of(t->argument(3));
  if (t->argument_count() != 4 || !is_integer(t->argument(1), 1) || !is_integer(t->argument(2), 1) ||
      point.number() == nullptr) {
    return {};
  }
  const bool plain = point.plain() != nullptr;
  const laurent near = plain ? laurent_of(*point.plain(), {1, 1}) : *point.number();
  const value there = applied(value_of(t->argument(0)), near);
  if (there.number() == nullptr) {
    return {};
  }
  const laurent result = slope(*there.number()) / slope(near);
  return !plain ? value(result) : result.has_limit() ? number(result.at(0)) : value();
}

// Boole's rule is exact up to the fifth degree; an integral for which halving the step changes its value is open.
value model::integral(term_ptr t) {
  const value low = value_of(t->argument(0));
  const value high = value_of(t->argument(1));
  const term_ptr integrand = t->argument(2);
  if (low.number() == nullptr || high.number() == nullptr || integrand->head() != Mult ||
      integrand->argument(1)->head() != D) {
    return {};
  }
  const term_ptr var = integrand->argument(1)->argument(0);
  const auto rule = [&](const laurent& from, const laurent& step) -> laurent {
    constexpr int weights[] = {7, 32, 12, 32, 7};
    laurent sum;
    for (int k = 0; k < 5; ++k) {
      const value y = with(var, from + laurent_of({k, 1}) * step, integrand->argument(0));
      sum = sum + (y.number() == nullptr ? laurent_unknown() : laurent_of({weights[k], 1}) * *y.number());
    }
    return laurent_of(cnum_from_frac(2, 45)) * step * sum;
  };
  const laurent length = *high.number() - *low.number();
  const laurent coarse = rule(*low.number(), length / laurent_of({4, 1}));
  const laurent step = length / laurent_of({8, 1});
  const laurent fine = rule(*low.number(), step) + rule(*low.number() + laurent_of({4, 1}) * step, step);
  return coarse == fine && cnum_is_finite(coarse.at(0)) ? value(coarse) : value();
}

truth model::holds(term_ptr p) {
  if (p->type() == Quant) {
    return quantified(p, 0);
  }
  if (p->type() != Apply) {
    return truth::open;
  }
  switch (p->head()) {
    case Not:
      return negation(holds(p->argument(0)));
    case And: {
      const truth left = holds(p->argument(0));
      return left == truth::no ? left : both(left, holds(p->argument(1)));
    }
    case Or:
      return either(holds(p->argument(0)), holds(p->argument(1)));
    case Impl: {
      const truth premise = holds(p->argument(0));
      return premise == truth::yes ? holds(p->argument(1)) : negation(premise);
    }
    case Iff:
      return agree(holds(p->argument(0)), holds(p->argument(1)));
    default:
      return relation(p);
  }
}

truth model::quantified(term_ptr p, std::size_t first) {
  if (first == p->vars().size()) {
    return holds(p->body());
  }
  const bool some = p->quant() == Exists;
  if (p->quant() == ExistsUnique || (!some && below_some_ > 0 && !world_.finite())) {
    return truth::open;
  }
  below_some_ += some ? 1 : 0;
  truth result = of_bool(!some);
  for (const value& v : world_.points()) {
    bind(p->vars()[first], v);
    const truth here = quantified(p, first + 1);
    result = some ? either(result, here) : both(result, here);
    unbind(p->vars()[first]);
    if (result == of_bool(some)) {
      break;
    }
  }
  below_some_ -= some ? 1 : 0;
  // Another number than the sampled ones might do.
  return some && result == truth::no && !world_.finite() ? truth::open : result;
}

truth model::relation(term_ptr p) {
  if (p->argument_count() == 1) {
    const value n = value_of(p->argument(0));
    std::int64_t integer = 0;
    return (p->head() != Even && p->head() != Odd) || n.plain() == nullptr || !cnum_is_int(*n.plain(), &integer)
               ? truth::open
               : of_bool((integer % 2 == 0) == (p->head() == Even));
  }
  switch (p->head()) {
    case Belong:
      return member(value_of(p->argument(0)), p->argument(1));
    case Subset:
      return same_set(value_of(p->argument(0)), value_of(p->argument(1)), true);
    case ContinuousFuncAt:
    case DiffableFuncAt:
      return smooth(p->argument(0), value_of(p->argument(1)));
    case ContinuousFuncOn:
    case DiffableFuncOn:
    case IntegrableFuncOn: {
      truth everywhere = truth::yes;
      for (const value& x : world_.points()) {
        const truth inside = member(x, p->argument(1));
        everywhere = both(everywhere, inside == truth::no ? truth::yes : both(inside, smooth(p->argument(0), x)));
      }
      return everywhere;
    }
    case Eq:
    case Neq: {
      const value a = value_of(p->argument(0));
      const value b = value_of(p->argument(1));
      const truth equal = a.set() != nullptr && b.set() != nullptr       ? same_set(a, b, false)
                          : a.plain() != nullptr && b.plain() != nullptr ? of_bool(*a.plain() == *b.plain())
                                                                         : truth::open;
      return p->head() == Eq ? equal : negation(equal);
    }
    default:
      return compared(p);
  }
}

truth model::compared(term_ptr p) {
  const value a = value_of(p->argument(0));
  const value b = value_of(p->argument(1));
  if (a.plain() == nullptr || b.plain() == nullptr) {
    return truth::open;
  }
  const int order = cnum_cmp(*a.plain(), *b.plain());
  std::int64_t x = 0;
  std::int64_t y = 0;
  std::int64_t m = 0;
  switch (p->head()) {
    case Lt:
      return of_bool(order < 0);
    case Le:
      return of_bool(order <= 0);
    case Gt:
      return of_bool(order > 0);
    case Ge:
      return of_bool(order >= 0);
    case Divides:
    case CongruentMod: {
      const value modulus = p->head() == Divides ? a : value_of(p->argument(2));
      if (!cnum_is_int(*a.plain(), &x) || !cnum_is_int(*b.plain(), &y) || modulus.plain() == nullptr ||
          !cnum_is_int(*modulus.plain(), &m)) {
        return truth::open;
      }
      const std::int64_t multiple = p->head() == Divides ? y : x - y;
      return of_bool(m == 0 ? multiple == 0 : multiple % m == 0);
    }
    default:
      return truth::open;
  }
}

truth model::member(const value& x, term_ptr set) {
  const value s = value_of(set);
  return s.set() == nullptr ? truth::open : s.set()->contains(x);
}

truth model::member_of_constant(const value& x, const_type set) {
  if (set == EmptySet) {
    return truth::no;
  }
  if (x.plain() == nullptr) {
    return truth::open;
  }
  const bool integer = cnum_is_int(*x.plain(), nullptr);
  const std::int64_t sign = x.plain()->num;
  switch (set) {
    case RealSet:
    case RationalSet:
      return truth::yes;
    case PosRealSet:
      return of_bool(sign > 0);
    case IntegerSet:
      return of_bool(integer);
    case PosIntegerSet:
      return of_bool(integer && sign > 0);
    case NonNegIntegerSet:
      return of_bool(integer && sign >= 0);
    default:
      return truth::open;
  }
}

// The functions of this world are differentiable wherever they have a value and a slope.
truth model::smooth(term_ptr f, const value& x) {
  if (x.plain() == nullptr) {
    return truth::open;
  }
  const value near = applied(value_of(f), laurent_of(*x.plain(), {1, 1}));
  const bool known = near.number() != nullptr && near.number()->has_limit() && cnum_is_finite(near.number()->at(1));
  return known ? truth::yes : truth::open;
}

truth model::same_set(const value& a, const value& b, bool subset_only) {
  if (a.set() == nullptr || b.set() == nullptr) {
    return truth::open;
  }
  truth result = truth::yes;
  for (const value& x : world_.points()) {
    const truth in_a = a.set()->contains(x);
    const truth in_b = b.set()->contains(x);
    result = both(result, subset_only ? either(negation(in_a), in_b) : agree(in_a, in_b));
  }
  return result;
}

// ---- The outermost quantifier.

// The conclusion where all premises hold; open elsewhere.
truth conclusion(model& m, term_ptr p) {
  while (p->head() == Impl) {
    if (m.holds(p->argument(0)) != truth::yes) {
      return truth::open;
    }
    p = p->argument(1);
  }
  return m.holds(p);
}

void try_choices(model& m, const world& w, term_ptr formula, std::size_t first, trial& result) {
  const bool general = formula->type() == Quant && formula->quant() == Forall;
  const term_ptr body = general ? formula->body() : formula;
  if (!general || first == formula->vars().size()) {
    const truth answer = conclusion(m, body);
    result.contradicted += answer == truth::no ? 1 : 0;
    result.held += answer == truth::yes ? 1 : 0;
    return;
  }
  role kind = role::number;
  find_role(body, formula->vars()[first], false, kind);
  for (const value& v : w.choices(kind)) {
    m.bind(formula->vars()[first], v);
    try_choices(m, w, formula, first + 1, result);
    m.unbind(formula->vars()[first]);
  }
}

}  // namespace

trial try_formula(term_ptr formula) {
  const world w(formula);
  model m(w);
  trial result;
  try_choices(m, w, formula, 0, result);
  return result;
}

}  // namespace vetro::test

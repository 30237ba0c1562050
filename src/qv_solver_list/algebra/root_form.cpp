// A product is opened from its deepest node down, each node once with the total of the exponents under which it occurs,
// so that a product which shares its parts costs its size as a graph: x^2^2^...^2 is x to one large exponent.
#include "qv_solver_list/algebra/root_form.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "number/exact.h"
#include "number/limits.h"
#include "qv_solver_list/algebra/root_view.h"
#include "qv_solver_list/number_reading.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/split_arithmetic.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// ---- The order of factors.

template <class T>
int three_way(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

// Comparing two terms that share parts, but not with each other, could take exponential time without the memory.
class term_order {
 public:
  int compare(term_ptr a, term_ptr b) {
    if (a == b) {
      return 0;
    }
    if (a == nullptr || b == nullptr) {
      return a == nullptr ? -1 : 1;
    }
    if (a->type() != b->type()) {
      return three_way<int>(a->type(), b->type());
    }
    switch (a->type()) {
      case Var:
        return three_way(a->name(), b->name());
      case Const:
        return compare_constants(a, b);
      case Oper:
        return three_way<int>(a->oper(), b->oper());
      case Apply:
        return compare_applications(a, b);
      default:
        return 0;
    }
  }

 private:
  static int compare_constants(term_ptr a, term_ptr b) {
    if (a->constant() != b->constant()) {
      return three_way<int>(a->constant(), b->constant());
    }
    switch (a->constant()) {
      case Integer:
        return three_way(a->integer(), b->integer());
      case Decimal:
        return three_way(a->decimal(), b->decimal());
      default:
        return 0;
    }
  }

  int compare_applications(term_ptr a, term_ptr b) {
    const bool remembers = a->size() >= worth_remembering && b->size() >= worth_remembering;
    if (const auto known = remembers ? known_.find({a, b}) : known_.end(); known != known_.end()) {
      return known->second;
    }
    const int left = compare(a->left(), b->left());
    const int result = left != 0 ? left : compare(a->right(), b->right());
    if (remembers) {
      known_.emplace(node_pair{a, b}, result);
    }
    return result;
  }

  std::unordered_map<node_pair, int, node_pair_hasher> known_;
};

void list_sort(term_list& list) {
  term_order order;
  std::stable_sort(list.begin(), list.end(), [&](term_ptr a, term_ptr b) { return order.compare(a, b) < 0; });
}

// ---- Building.

// An integer of any size: beyond 32 bits it is written in digits.
term_ptr mk_int(const exact& value) {
  if (value.sign() < 0) {
    return make_unOp_term(Neg, mk_int(-value));
  }
  const auto small = value.to_int64();
  return small && *small <= INT32_MAX ? mk_integer(static_cast<std::int32_t>(*small)) : mk_decimal(to_string(value));
}

term_ptr mk_power(term_ptr base, const exact& exponent) {
  return exponent.is_one() ? base : make_binOp_term(Power, base, number_of_any_size(exponent));
}

term_ptr mk_sqrtn(const exact& index, term_ptr radicand) {
  const term_ptr n = mk_int(index);
  return make_binOp_term(Sqrtn, n, radicand);
}

// The list joined from the left; null for none.
term_ptr joined(oper_type oper, const term_list& list) {
  term_ptr result = nullptr;
  for (term_ptr part : list) {
    result = result == nullptr ? part : make_binOp_term(oper, result, part);
  }
  return result;
}

// ---- Reading.

bool is_odd(const exact& integer) { return !(integer / exact(2)).is_integer(); }
bool is_even_root(const exact& exponent) { return !is_odd(exponent.denominator()); }

// base^exponent. An odd root stays a root: it is real for a negative base, too, which a power of -1 need not be.
term_ptr mk_real_power(term_ptr base, const exact& exponent) {
  const bool odd_root = !exponent.is_integer() && !is_even_root(exponent);
  return odd_root ? mk_power(mk_sqrtn(exponent.denominator(), base), exponent.numerator()) : mk_power(base, exponent);
}

// A number, perhaps with a sign in front.
std::optional<exact> literal(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view || view->oper != Neg || view->t2 != nullptr || t->has_meta()) {
    return number_literal(t);
  }
  const auto number = number_literal(view->t1);
  return number ? std::optional(-*number) : std::nullopt;
}

// A literal exponent other than 0: an integer, or the quotient of two.
std::optional<exact> exponent_literal(term_ptr t) {
  if (const auto integer = integer_literal(t)) {
    return *integer == 0 ? std::nullopt : std::optional<exact>(*integer);
  }
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  if (!view || view->t2 == nullptr || (view->oper != Div && view->oper != Frac)) {
    return std::nullopt;
  }
  const auto p = integer_literal(view->t1);
  const auto q = integer_literal(view->t2);
  return p && q && *p != 0 && *q != 0 ? quotient(*p, *q) : std::nullopt;
}

// The operators that a product is made of, with their operands.
enum class part_kind : std::uint8_t { number, product, quotient, power, root, negation, absolute, other };

struct part_view {
  part_kind kind = part_kind::other;
  term_ptr t1 = nullptr;
  term_ptr t2 = nullptr;
  exact number = 0;  // the literal, the exponent or the index
};

part_view view_of(term_ptr t) {
  if (t->has_meta()) {
    return {};
  }
  if (const auto number = literal(t)) {
    return {part_kind::number, nullptr, nullptr, *number};
  }
  if (const auto root = indexed_root_of(t)) {
    return {part_kind::root, root->radicand, nullptr, root->index};
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return {};
  }
  if (view->t2 == nullptr) {
    const part_kind kind = view->oper == Neg   ? part_kind::negation
                           : view->oper == Abs ? part_kind::absolute
                                               : part_kind::other;
    return {kind, view->t1, nullptr, 0};
  }
  switch (view->oper) {
    case Mult:
      return {part_kind::product, view->t1, view->t2, 0};
    case Div:
    case Frac:
      return {part_kind::quotient, view->t1, view->t2, 0};
    case Power:
      if (const auto exponent = exponent_literal(view->t2)) {
        return {part_kind::power, view->t1, nullptr, *exponent};
      }
      return {};
    default:
      return {};
  }
}

// ---- Signs.

constexpr allowed_forms forms_of_numbers = {.powers = true, .absolute = true};

// What is known of the signs of terms: from their form, else by proof.
class sign_knowledge {
 public:
  explicit sign_knowledge(const solve_data* sdata) : sdata_(sdata) {}

  bool positive(term_ptr t) { return remembered(t, Gt); }
  bool nonnegative(term_ptr t) { return remembered(t, Ge); }

 private:
  struct key {
    term_ptr t;
    pred_type pred;
    bool operator==(const key&) const = default;
  };
  struct key_hash {
    std::size_t operator()(const key& k) const { return static_cast<std::size_t>(k.t->hash() * 2 + (k.pred == Gt)); }
  };

  bool remembered(term_ptr t, pred_type pred) {
    if (const auto known = known_.find({t, pred}); known != known_.end()) {
      return known->second;
    }
    const bool answer = by_form(t, pred) || (pred == Ge && positive(t)) || proved(t, pred);
    known_.emplace(key{t, pred}, answer);
    return answer;
  }

  bool by_form(term_ptr t, pred_type pred) {
    if (t->type() == Const && (t->constant() == E || t->constant() == Pi)) {
      return true;
    }
    if (const auto number = evaluate(t, forms_of_numbers)) {
      return pred == Gt ? number->sign() > 0 : number->sign() >= 0;
    }
    const auto both = [&](const part_view& view) { return remembered(view.t1, pred) && remembered(view.t2, pred); };
    const part_view view = view_of(t);
    switch (view.kind) {
      case part_kind::product:
      case part_kind::quotient:
        return both(view);
      case part_kind::root:
        return remembered(view.t1, pred) || (pred == Ge && !is_odd(view.number));
      case part_kind::power:
        return remembered(view.t1, pred) || (pred == Ge && (!is_odd(view.number) || is_even_root(view.number)));
      case part_kind::absolute:
        return pred == Ge || remembered(view.t1, Gt);
      default:
        break;
    }
    const auto whole = t->has_meta() ? std::nullopt : composed_term_split(t);
    if (!whole || whole->t2 == nullptr) {
      return false;
    }
    if (whole->oper == Power) {
      const auto exponent = evaluate(whole->t2, {});
      return exponent && exponent->is_zero();  // 1 where it is defined
    }
    return whole->oper == Plus && remembered(whole->t1, pred) && remembered(whole->t2, pred);
  }

  bool proved(term_ptr t, pred_type pred) {
    constexpr solver_id provers[] = {solver_id::context_poly_rat, solver_id::sgn_pure, solver_id::interval};
    if (sdata_ == nullptr || (sdata_->assum.empty() && t->name_mask() != 0) || ++proofs_ > limits::root_sign_proofs) {
      return false;
    }
    const term_ptr fact = make_binPred_prop(pred, t, mk_integer(0));
    return std::any_of(std::begin(provers), std::end(provers), [&](solver_id id) {
      const solver_decide solve = find_solver(id);
      return solve != nullptr && solve(fact, *sdata_);
    });
  }

  const solve_data* sdata_;
  std::unordered_map<key, bool, key_hash> known_;
  int proofs_ = 0;
};

// ---- Products as powers.

class product_collector {
 public:
  explicit product_collector(sign_knowledge& signs) : signs_(signs) {}

  // Nothing when an exponent is beyond all limits.
  std::optional<power_product> collect(term_ptr t) {
    add(t, {1, true, false});
    do {
      while (!open_.empty()) {
        open_next();
      }
    } while (reopen_factors());
    settle_primes();
    std::erase_if(product_.factors, [](const power_factor& f) { return f.exponent.is_zero(); });
    return spoilt_ || !product_.coefficient.is_known() ? std::nullopt : std::optional(std::move(product_));
  }

 private:
  // How a node occurs: the sum of its exponents, and whether some are positive and some negative. What cancels is still
  // opened, because a 0 in it does not cancel.
  struct occurrence {
    exact exponent;
    bool above;
    bool below;

    occurrence times(const exact& k) const {
      return k.sign() > 0 ? occurrence{exponent * k, above, below} : occurrence{exponent * k, below, above};
    }
  };

  // Deep nodes first: everything that leads to a node is deeper than it, so that its exponent is complete.
  struct place {
    std::uint32_t depth;
    std::size_t number;
    bool operator<(const place& other) const {
      return depth != other.depth ? depth > other.depth : number < other.number;
    }
  };

  void add(term_ptr t, const occurrence& how) {
    const auto [slot, added] = waiting_.try_emplace(t, place{t->depth(), next_});
    if (added) {
      open_.emplace(slot->second, std::pair(t, how));
      ++next_;
      return;
    }
    occurrence& known = open_.at(slot->second).second;
    known = {known.exponent + how.exponent, known.above || how.above, known.below || how.below};
  }

  void open_next() {
    const auto [t, how] = open_.begin()->second;
    open_.erase(open_.begin());
    waiting_.erase(t);
    spoilt_ = spoilt_ || !how.exponent.is_known();
    if (!spoilt_ && !open_part(t, how)) {
      keep(t, how.exponent);
    }
  }

  // True when the factor came apart.
  bool open_part(term_ptr t, const occurrence& how) {
    const part_view view = view_of(t);
    switch (view.kind) {
      case part_kind::number:
        return add_number(view.number, how);
      case part_kind::product:
        return add_both(view, how, how);
      case part_kind::quotient:
        return add_both(view, how, how.times(-1));
      case part_kind::power:
        // (-8)^(1/3) is not defined, unlike sqrtn(3, -8).
        if (!view.number.is_integer() && is_negative_number(view.t1)) {
          return false;
        }
        add_power(view.t1, view.number, how);
        return true;
      case part_kind::root:
        add_power(view.t1, exact(1) / view.number, how);
        return true;
      case part_kind::negation:
        if (!is_even_root(how.exponent)) {
          change_sign(how.exponent);
          add(view.t1, how);
          return true;
        }
        break;
      case part_kind::absolute:
        if (signs_.nonnegative(view.t1)) {
          add(view.t1, how);
          return true;
        }
        if (open_magnitude(view_of(view.t1), how)) {
          return true;
        }
        break;
      case part_kind::other:
        break;
    }
    const bool calculates = view.kind == part_kind::absolute || !how.exponent.is_integer();
    const auto number = calculates ? evaluate(t, forms_of_numbers) : std::nullopt;
    return number && add_number(*number, how);
  }

  // |a * b| is |a| * |b|, and alike. As none of these is negative, that holds under every exponent.
  bool open_magnitude(const part_view& inner, const occurrence& how) {
    const auto add_size = [this](term_ptr t, const occurrence& of) { add(make_unOp_term(Abs, t), of); };
    switch (inner.kind) {
      case part_kind::product:
      case part_kind::quotient:
        add_size(inner.t1, how);
        add_size(inner.t2, inner.kind == part_kind::product ? how : how.times(-1));
        return true;
      case part_kind::power:
        if (inner.number.is_integer()) {
          add_size(inner.t1, how.times(inner.number));
          return true;
        }
        return false;
      case part_kind::root:
        if (is_odd(inner.number)) {
          add_size(inner.t1, how.times(exact(1) / inner.number));
          return true;
        }
        return false;
      case part_kind::negation:
        add_size(inner.t1, how);
        return true;
      default:
        return false;
    }
  }

  static bool is_negative_number(term_ptr t) {
    const auto number = evaluate(t, forms_of_numbers);
    return number && number->sign() < 0;
  }

  bool add_both(const part_view& view, const occurrence& left, const occurrence& right) {
    const bool splits = !is_even_root(left.exponent) || signs_.positive(view.t1) || signs_.positive(view.t2) ||
                        (signs_.nonnegative(view.t1) && signs_.nonnegative(view.t2));
    if (splits) {
      add(view.t1, left);
      add(view.t2, right);
    }
    return splits;
  }

  // (base^inner)^outer.
  void add_power(term_ptr base, const exact& inner, const occurrence& outer) {
    const bool keeps_sign = !is_even_root(outer.exponent) || is_odd(inner.numerator()) || signs_.nonnegative(base);
    add(keeps_sign ? base : make_unOp_term(Abs, base), outer.times(inner));
  }

  // (-1)^exponent for an exponent with an odd denominator.
  void change_sign(const exact& exponent) {
    if (is_odd(exponent.numerator())) {
      product_.coefficient = -product_.coefficient;
    }
  }

  bool add_number(const exact& value, const occurrence& how) {
    if (value.is_zero()) {
      product_.zero_above = product_.zero_above || how.above;
      product_.zero_below = product_.zero_below || how.below;
      return true;
    }
    if (how.exponent.is_integer()) {
      return multiply_coefficient(value, how.exponent);
    }
    if (value.sign() < 0 && is_even_root(how.exponent)) {
      return false;
    }
    const exact size = value.sign() < 0 ? -value : value;
    if (!size.numerator().to_int64() || !size.denominator().to_int64()) {
      return false;
    }
    if (value.sign() < 0) {
      change_sign(how.exponent);
    }
    for (const auto& [prime, times] : prime_exponents(size)) {
      product_.primes[*prime.to_int64()] += times * how.exponent;
    }
    return true;
  }

  bool multiply_coefficient(const exact& value, const exact& exponent) {
    const auto small = exponent.to_int64();
    const auto result = small ? power(value, *small) : std::nullopt;
    const exact coefficient = result ? product_.coefficient * *result : exact::beyond();
    if (coefficient.is_known()) {
      product_.coefficient = coefficient;
    }
    return coefficient.is_known();
  }

  void keep(term_ptr base, const exact& exponent) {
    if (exponent.is_zero()) {
      return;
    }
    const auto [slot, added] = position_.try_emplace(base, product_.factors.size());
    if (added) {
      product_.factors.push_back({base, exponent});
    } else {
      product_.factors[slot->second].exponent += exponent;
    }
  }

  // What stayed together under a root comes apart to an integer power: (x * y)^(3/2) holds x * y once. And the square
  // of an absolute value is that of its operand. True when there is something new to open.
  bool reopen_factors() {
    for (power_factor& factor : product_.factors) {
      const part_view view = view_of(factor.base);
      const bool absolute = view.kind == part_kind::absolute;
      if (!absolute && view.kind != part_kind::product && view.kind != part_kind::quotient &&
          view.kind != part_kind::negation) {
        continue;
      }
      const exact whole = floor(factor.exponent);
      const exact taken = absolute && is_odd(whole) ? whole - exact(1) : whole;
      if (!taken.is_zero()) {
        factor.exponent -= taken;
        add(absolute ? view.t1 : factor.base, {taken, taken.sign() > 0, taken.sign() < 0});
      }
    }
    return !open_.empty();
  }

  // The integer parts of their exponents go to the coefficient.
  void settle_primes() {
    for (auto& [prime, exponent] : product_.primes) {
      const exact whole = floor(exponent);
      if (multiply_coefficient(prime, whole)) {
        exponent -= whole;
      }
    }
    std::erase_if(product_.primes, [](const auto& entry) { return entry.second.is_zero(); });
  }

  sign_knowledge& signs_;
  power_product product_;
  std::map<place, std::pair<term_ptr, occurrence>> open_;
  std::unordered_map<term_ptr, place> waiting_;
  std::size_t next_ = 0;
  std::unordered_map<term_ptr, std::size_t, alpha_hasher, alpha_equal> position_;
  bool spoilt_ = false;
};

// ---- The form with roots.

// Factors to write down, above and below the line.
class quotient_writer {
 public:
  explicit quotient_writer(const power_product& product) {
    write_roots_of_primes(product.primes);
    for (const power_factor& factor : product.factors) {
      write(factor.base, factor.exponent);
    }
    write_coefficient(product);
  }

  term_ptr written() {
    list_sort(num_);
    list_sort(den_);
    const term_ptr numerator = joined(Mult, num_);
    return den_.empty() ? numerator : make_binOp_term(Div, numerator, joined(Mult, den_));
  }

 private:
  // base^exponent with the root above the line: x^(-1/2) is x^(1/2) / x.
  void write(term_ptr base, const exact& exponent) {
    const exact whole = floor(exponent);
    const exact root = exponent - whole;
    if (!whole.is_zero()) {
      copies(whole.sign() > 0 ? num_ : den_, base, whole.sign() > 0 ? whole : -whole);
    }
    if (!root.is_zero()) {
      copies(num_, mk_sqrtn(root.denominator(), base), root.numerator());
    }
  }

  // A factor once for each time that it occurs, as long as these are few.
  static void copies(term_list& list, term_ptr factor, const exact& count) {
    constexpr std::int64_t most = 64;
    const auto small = count.to_int64();
    if (small && *small <= most) {
      list.insert(list.end(), static_cast<std::size_t>(*small), factor);
    } else {
      list.push_back(mk_power(factor, count));
    }
  }

  // One root for each index.
  void write_roots_of_primes(const std::map<std::int64_t, exact>& primes) {
    std::map<std::int64_t, exact> radicands;
    for (const auto& [prime, exponent] : primes) {
      const auto index = exponent.denominator().to_int64();
      const auto times = exponent.numerator().to_int64();
      const auto value = index && times ? power(exact(prime), *times) : std::nullopt;
      exact* radicand = index ? &radicands.try_emplace(*index, 1).first->second : nullptr;
      if (value && (*radicand * *value).is_known()) {
        *radicand *= *value;
      } else {
        write(mk_int(prime), exponent);
      }
    }
    for (const auto& [index, radicand] : radicands) {
      if (!radicand.is_one()) {
        num_.push_back(mk_sqrtn(index, mk_int(radicand)));
      }
    }
  }

  void write_coefficient(const power_product& product) {
    const exact numerator = product.coefficient.numerator();
    const exact denominator = product.coefficient.denominator();
    if (!denominator.is_one()) {
      den_.push_back(mk_int(denominator));
    }
    if (product.zero_below) {
      den_.push_back(mk_integer(0));
    }
    if (product.zero_above) {
      num_.push_back(mk_integer(0));
    }
    if (!numerator.is_one() || num_.empty()) {
      num_.push_back(mk_int(numerator));
    }
  }

  term_list num_;
  term_list den_;
};

}  // namespace

int compare_terms(term_ptr a, term_ptr b) { return term_order().compare(a, b); }

term_ptr number_of_any_size(const exact& value) {
  if (value.is_integer()) {
    return mk_int(value);
  }
  const term_ptr numerator = mk_int(value.numerator());
  const term_ptr denominator = mk_int(value.denominator());
  return make_binOp_term(Frac, numerator, denominator);
}

std::vector<std::pair<exact, exact>> prime_exponents(const exact& value) {
  constexpr std::int64_t last_divisor = 10'000;
  const auto numerator = value.numerator().to_int64();
  const auto denominator = value.denominator().to_int64();
  if (!numerator || !denominator) {
    return {{value, 1}};
  }
  std::vector<std::pair<exact, exact>> result;
  const auto take_out = [&](std::int64_t n, int sign) {
    for (std::int64_t p = 2; n > 1; p += p == 2 ? 1 : 2) {
      const bool last = p > last_divisor || p > n / p;
      const std::int64_t prime = last ? n : p;
      std::int64_t times = 0;
      for (; n % prime == 0 && n > 1; n /= prime) {
        times += sign;
      }
      if (times != 0) {
        result.emplace_back(prime, times);
      }
    }
  };
  take_out(*numerator, 1);
  take_out(*denominator, -1);
  return result;
}

bool stands_for_its_value(term_ptr application) {
  term_ptr head = application;
  while (head->type() == Apply) {
    head = head->left();
  }
  if (head->type() == Pred) {
    return head->pred() != Defined;
  }
  return head->type() != Oper || (head->oper() != Dom && head->oper() != SetDesc);
}

class root_normalizer::worker {
 public:
  explicit worker(const solve_data* sdata) : signs_(sdata) {}

  term_ptr core(term_ptr t) {
    return cores_.get(t, [&] {
      const auto product = product_collector(signs_).collect(t);
      return product ? quotient_writer(*product).written() : t;
    });
  }

  std::optional<power_product> powers_of(term_ptr t) { return product_collector(signs_).collect(t); }
  bool nonnegative(term_ptr t) { return signs_.nonnegative(t); }

  term_ptr power_form(term_ptr t) {
    if (t->children().empty() || !t->binders().empty() || t->scope() != nullptr) {
      return t;
    }
    return power_forms_.get(t, [&] { return new_power_form(t); });
  }

 private:
  term_ptr new_power_form(term_ptr t) {
    if (t->type() == TermList) {
      return map_children(t, walk_elements | keep_meta, [this](term_ptr part) { return power_form(part); });
    }
    if (t->type() != Apply) {
      return t;
    }
    const part_kind kind = view_of(t).kind;
    if (kind == part_kind::product || kind == part_kind::quotient || kind == part_kind::power ||
        kind == part_kind::root) {
      const auto product = product_collector(signs_).collect(t);
      return product && !product->zero_below ? written_as_powers(*product) : t;
    }
    if (!stands_for_its_value(t)) {
      return t;
    }
    return map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return power_form(part); });
  }

  term_ptr written_as_powers(const power_product& product) {
    term_list list;
    list.push_back(product.zero_above ? mk_integer(0) : number_of_any_size(product.coefficient));
    for (const auto& [prime, exponent] : product.primes) {
      list.push_back(mk_power(mk_int(prime), exponent));
    }
    for (const power_factor& factor : product.factors) {
      list.push_back(mk_real_power(parts_as_powers(factor.base), factor.exponent));
    }
    return joined(Mult, list);
  }

  // A factor that did not come apart: what it is made of may still hold products.
  term_ptr parts_as_powers(term_ptr t) {
    const part_kind kind = view_of(t).kind;
    const bool whole = kind != part_kind::product && kind != part_kind::quotient && kind != part_kind::power;
    return whole ? power_form(t)
                 : map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return power_form(part); });
  }

  sign_knowledge signs_;
  node_memo<term_ptr> cores_;
  node_memo<term_ptr> power_forms_;
};

root_normalizer::root_normalizer(const solve_data* sdata) : worker_(std::make_unique<worker>(sdata)) {}
root_normalizer::~root_normalizer() = default;

term_ptr root_normalizer::rootfrac_core(term_ptr t) { return t == nullptr ? nullptr : worker_->core(t); }

std::optional<power_product> root_normalizer::powers_of(term_ptr t) { return worker_->powers_of(t); }

bool root_normalizer::nonnegative(term_ptr t) { return worker_->nonnegative(t); }

term_ptr root_normalizer::power_form(term_ptr t) { return t == nullptr ? nullptr : worker_->power_form(t); }

term_ptr root_normalizer::sum_of_cores(term_ptr t) {
  if (t == nullptr) {
    return nullptr;
  }
  term_list pos;
  term_list neg;
  for (const signed_term& part : summands(t, {.negation = false})) {
    (part.negative ? neg : pos).push_back(worker_->core(part.t));
  }
  list_sort(pos);
  list_sort(neg);
  if (pos.empty()) {
    pos.push_back(mk_integer(0));
  }
  term_ptr result = joined(Plus, pos);
  for (term_ptr part : neg) {
    result = make_binOp_term(Minus, result, part);
  }
  return result;
}

}  // namespace vetro

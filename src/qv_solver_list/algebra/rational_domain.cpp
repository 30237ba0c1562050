// Keys for opaque parts, and powers. The laws of powers that hold wherever both sides are defined:
//
//   b^(m + n) = b^m b^n    b^(k n) = (b^n)^k for an integer k    (c b)^n = c^n b^n for a positive number c
//
// A root is a power, sqrt(b) is b^(1/2), with the same laws.
//
// (b^m)^n = b^(m n) is not among them: ((-1)^2)^(1/2) is 1. A power with a symbolic exponent is therefore a product of
// keys, one for each addend of the exponent with its numeric coefficient taken out, and a base that is itself a power
// is a new base. Positive numbers are products of powers of primes under every exponent.
#include "qv_solver_list/algebra/rational_domain.h"

#include <algorithm>

#include "number/hash_mix.h"
#include "number/primes_and_roots.h"

namespace vetro {
namespace {

// First words of keys; 1 is a root.
enum key_tag : std::uint64_t { tag_leaf = 2, tag_opaque, tag_symbolic_power, tag_compound, tag_unexpanded };

bool is_sum(term_ptr t) {
  const auto view = composed_term_split(t);
  return view && (view->oper == Plus || view->oper == Minus);
}

std::uint64_t address_word(term_ptr t) { return reinterpret_cast<std::uintptr_t>(t); }

}  // namespace

std::size_t rational_domain::rat_hash::operator()(const rat& r) const {
  std::size_t hash = r.coef.hash() ^ r.monomial;
  for (const sum_power& power : r.sums) {
    for (const std::uint64_t word : {std::uint64_t{power.sum}, static_cast<std::uint64_t>(power.exp)}) {
      hash = mix(hash, word);
    }
  }
  return hash;
}

// ---- Numbers of forms.

// The first form that equals v though its list is another; null when there is none. A fingerprint spares comparisons.
rational_domain::value rational_domain::known_equal(const value& v) {
  const bool canonical = rat_is_canonical(registry_, v->r);
  const auto is_equal = [&](const value& known) {
    return !rat_surely_differ(registry_, v->r, known->r) && registry_.pdata.charge(1) && equal(v, known);
  };
  const auto first_in = [&](const std::vector<value>& list) {
    const auto found = std::find_if(list.begin(), list.end(), is_equal);
    return found == list.end() ? nullptr : *found;
  };
  if (!v->print.has_value) {
    return first_in(canonical ? uncertain_ : representatives_);
  }
  const auto [first, last] = by_fingerprint_.equal_range(v->print.value);
  const auto found = std::find_if(first, last, [&](const auto& entry) { return is_equal(entry.second); });
  return found != last ? found->second : first_in(without_fingerprint_);
}

std::optional<std::uint32_t> rational_domain::form_number(const value& v) {
  if (v->number != 0) {
    return v->number;
  }
  if (rat_is_nan(v->r)) {
    return std::nullopt;
  }
  if (const auto known = numbers_.find(v->r); known != numbers_.end()) {
    v->number = known->second;
    return v->number;
  }
  const value same = known_equal(v);
  if (gave_up()) {
    return std::nullopt;
  }
  if (same != nullptr) {
    v->number = same->number;
  } else {
    representatives_.push_back(v);
    v->number = static_cast<std::uint32_t>(representatives_.size());
    if (v->print.has_value) {
      by_fingerprint_.emplace(v->print.value, v);
    } else {
      without_fingerprint_.push_back(v);
    }
    if (!rat_is_canonical(registry_, v->r)) {
      uncertain_.push_back(v);
    }
  }
  numbers_.emplace(v->r, v->number);
  return v->number;
}

// ---- Opaque parts.

rational_domain::value rational_domain::atom(factor_kind kind, const key_words& words, const fingerprint& print,
                                             bool special) {
  const std::int32_t key = registry_.pdata.intern_key(kind, words);
  if (special) {
    registry_.mark_special(key);
  }
  return make(rat_atom(registry_, key, cnum_from_int(1)), print);
}

rational_domain::value rational_domain::leaf(term_ptr t) {
  return atom(F_ATOM, {tag_leaf, address_word(t)}, fingerprint_leaf(t), holds_any(t, not_finite));
}

rational_domain::value rational_domain::opaque(term_ptr t) {
  return atom(F_ATOM, {tag_opaque, address_word(t)}, fingerprint_opaque(t), holds_any(t, several_valued | not_finite));
}

rational_domain::value rational_domain::compound(compound_kind kind, std::span<const value> parts, bool special) {
  key_words words{tag_compound, static_cast<std::uint64_t>(kind)};
  std::vector<fingerprint> prints;
  for (const value& part : parts) {
    const auto number = form_number(part);
    if (!number) {
      return failed();
    }
    words.push_back(*number);
    prints.push_back(part->print);
  }
  return atom(F_ATOM, words, fingerprint_compound(kind, prints), special);
}

bool rational_domain::arrange(std::vector<value>& parts) {
  for (const value& part : parts) {
    if (!form_number(part)) {
      return false;
    }
  }
  std::sort(parts.begin(), parts.end(), [](const value& a, const value& b) { return a->number < b->number; });
  parts.erase(
      std::unique(parts.begin(), parts.end(), [](const value& a, const value& b) { return a->number == b->number; }),
      parts.end());
  return true;
}

// ---- Arithmetic.

rational_domain::value rational_domain::sum(std::span<const signed_value<value>> addends) {
  if (addends.size() == 1 && !addends.front().negative) {
    return addends.front().value;
  }
  std::vector<signed_rat> rats;
  std::vector<signed_value<fingerprint>> prints;
  for (const auto& [v, negative] : addends) {
    rats.push_back({&v->r, negative});
    prints.push_back({v->print, negative});
  }
  return make(rat_sum(registry_, rats), fingerprint_sum(prints));
}

rational_domain::value rational_domain::product(std::span<const value> factors) {
  std::vector<rat> rats;
  std::vector<fingerprint> prints;
  for (const value& v : factors) {
    rats.push_back(v->r);
    prints.push_back(v->print);
  }
  return make(rat_product(registry_, rats), fingerprint_product(prints));
}

rational_domain::value rational_domain::quotient(const value& numerator, const value& denominator) {
  return make(rat_div(registry_, numerator->r, denominator->r),
              fingerprint_quotient(numerator->print, denominator->print));
}

rational_domain::value rational_domain::power(const value& base, const value& exponent,
                                              std::span<const signed_value<value>> addends) {
  const fingerprint print = fingerprint_power(base->print, exponent->print);
  if (rat_is_nan(exponent->r)) {
    return failed();
  }
  exact constant;
  const bool by_number = rat_is_const(exponent->r, &constant);
  rat result = by_number ? number_power(base, constant) : symbolic_power(base, addends);
  if (rat_is_nan(result) && !rat_is_nan(base->r) && !gave_up()) {
    result = unexpanded_power(base, exponent);  // too great a number
  }
  return make(std::move(result), print);
}

// The power with exponent 1/index; but the odd root of a negative number is a number too, and a negative one.
rational_domain::value rational_domain::root(const value& radicand, std::int64_t index) {
  const value exponent = number(exact(1) / exact(index));
  exact constant;
  if (index % 2 != 0 && !rat_is_nan(radicand->r) && rat_is_const(radicand->r, &constant) && constant.sign() < 0) {
    const signed_value<value> negated{power(number(-constant), exponent, {}), true};
    return sum({&negated, 1});
  }
  if (index % 2 != 0 && !rat_is_const(radicand->r, nullptr) && equal(radicand, number(-1))) {
    return number(-1);
  }
  return power(radicand, exponent, {});
}

rat rational_domain::unexpanded_power(const value& base, const value& exponent) {
  const auto base_number = form_number(base);
  const auto exponent_number = form_number(exponent);
  if (!base_number || !exponent_number) {
    return rat_nan();
  }
  const bool special = is_special(base) || is_special(exponent);
  return atom(F_ATOM, {tag_unexpanded, *base_number, *exponent_number}, {}, special)->r;
}

// base^exponent for a number: powers with a whole exponent are products, others have a number and a root.
rat rational_domain::number_power(const value& base, const exact& exponent) {
  if (const auto k = exponent.to_int64()) {
    return rat_pow_int(registry_, base->r, *k);
  }
  const cnum fraction = to_cnum(exponent);
  if (rat_is_nan(base->r) || !cnum_is_finite(fraction)) {
    return rat_nan();
  }
  if (base->r.pole || rat_is_zero(base->r)) {
    return base->r.pole == (fraction.num > 0) ? rat_pole() : rat_const(0);
  }
  const exact& coef = base->r.coef;
  const rat of_number = power_of_number(coef.sign() < 0 ? -coef : coef, fraction);
  return rat_mul(registry_, of_number, root_power(without_number(base), fraction));
}

// The base divided by the magnitude of its coefficient.
rational_domain::value rational_domain::without_number(const value& base) {
  const exact magnitude = base->r.coef.sign() < 0 ? -base->r.coef : base->r.coef;
  if (magnitude.is_one()) {
    return base;
  }
  rat rest = base->r;
  rest.coef = base->r.coef.sign();
  return make(std::move(rest), fingerprint_quotient(base->print, fingerprint::of_number(magnitude)));
}

// The power of a positive number: each prime factor is a base of its own.
rat rational_domain::power_of_number(const exact& base, const cnum& exponent) {
  std::vector<rat> powers;
  for (const auto& [prime, exp] : prime_powers(base)) {
    const cnum total = cnum_mul_reduced(cnum_from_int(exp), exponent);
    if (!cnum_is_finite(total)) {
      return rat_nan();
    }
    const auto number = form_number(this->number(prime));
    if (!number) {
      return rat_nan();
    }
    powers.push_back(rat_atom(registry_, registry_.root_key(*number, rat_const(prime)), total));
  }
  return rat_product(registry_, powers);
}

// The power of a base without numeric factor. A plain name needs no root key: its exponent tells all. Of equal bases,
// the one that was met first stands for all.
rat rational_domain::root_power(const value& base, const cnum& exponent) {
  exact constant;
  if (rat_is_const(base->r, &constant) && constant.is_one()) {
    return rat_const(1);
  }
  const auto number = form_number(base);
  if (!number) {
    return rat_nan();
  }
  const rat& first = representatives_[*number - 1]->r;
  if (const auto name = plain_name(first)) {
    return rat_atom(registry_, *name, exponent);
  }
  const std::int32_t key = registry_.root_key(*number, first);
  if (is_special(base)) {
    registry_.mark_special(key);
  }
  return rat_atom(registry_, key, exponent);
}

// The key that is all of r, if it stands for an opaque value.
std::optional<std::int32_t> rational_domain::plain_name(const rat& r) const {
  if (!r.sums.empty() || r.pole || !r.coef.is_one()) {
    return std::nullopt;
  }
  const factor_view factors = registry_.pdata.factors(r.monomial);
  const bool plain =
      factors.size() == 1 && cnum_is_one(factors.front().exp) && registry_.pdata.kind_of(factors.front().key) == F_ATOM;
  return plain ? std::optional(factors.front().key) : std::nullopt;
}

// The product over the addends of the exponent. An addend N/D counts with each term of N alone. The bases are the
// primes of the number in front of the base, and the rest.
rat rational_domain::symbolic_power(const value& base, std::span<const signed_value<value>> addends) {
  if (rat_is_nan(base->r)) {
    return rat_nan();
  }
  std::vector<std::pair<value, exact>> bases;  // with the exponents that they have before
  const value rest = without_number(base);
  exact constant;
  if (!rat_is_const(rest->r, &constant) || !constant.is_one()) {
    bases.emplace_back(rest, 1);
  }
  if (!rat_is_zero(base->r) && !base->r.pole) {
    for (const auto& [prime, exp] : prime_powers(base->r.coef.sign() < 0 ? -base->r.coef : base->r.coef)) {
      bases.emplace_back(number(prime), exp);
    }
  }
  std::vector<rat> powers;
  for (const auto& [part, before] : bases) {
    const auto number = form_number(part);
    if (!number) {
      return rat_nan();
    }
    for (const auto& [addend, negative] : addends) {
      rat denominator;
      for (const poly_term& t : rat_numerator(registry_, addend->r, &denominator)) {
        const rat numerator{.coef = 1, .monomial = t.monomial};
        powers.push_back(power_of_part(part, *number, rat_div(registry_, numerator, denominator),
                                       (negative ? -t.coef : t.coef) * before));
      }
    }
  }
  return rat_product(registry_, powers);
}

// base^(coef * part).
rat rational_domain::power_of_part(const value& base, std::uint32_t base_number, rat part, const exact& coef) {
  exact constant;
  if (rat_is_const(part, &constant)) {
    return number_power(base, coef * constant);
  }
  const exact exponent = coef * part.coef;
  if (exponent.is_known()) {
    part.coef = 1;
  }
  const bool special = is_special(base) || registry_.is_special(part);
  const auto part_number = form_number(make(std::move(part), {}));
  if (!part_number || !cnum_is_finite(to_cnum(exponent))) {
    return rat_nan();
  }
  const std::int32_t key = registry_.pdata.intern_key(F_SYMBOLIC, {tag_symbolic_power, base_number, *part_number});
  if (special) {
    registry_.mark_special(key);
  }
  return rat_atom(registry_, key, to_cnum(exponent));
}

// ---- One caller's forms.

rational_forms::rational_forms(std::uint64_t work)
    : work_(work), all_(work * (limits::poly_question_work / limits::poly_work)), domain_(all_), reader_(domain_) {}

rational_forms::~rational_forms() = default;

template <class Question>
auto rational_forms::ask(std::initializer_list<term_ptr> about, Question question) {
  std::uint64_t of_size = 0;
  for (term_ptr t : about) {
    of_size += limits::poly_work_of_node * t->size();
  }
  all_.allow(of_size);
  budget own(work_ + of_size, &all_);
  domain_.charge_to(own);
  auto answer = question();
  domain_.charge_to(all_);
  return answer;
}

std::optional<std::uint32_t> rational_forms::key(term_ptr t) {
  return t == nullptr ? std::nullopt : ask({t}, [&] { return domain_.form_number(reader_.read(t)); });
}

std::string rational_forms::text(term_ptr t) {
  return t == nullptr ? "" : ask({t}, [&] { return rat_to_string(domain_.registry(), reader_.read(t)->r); });
}

bool rational_forms::equal(term_ptr a, term_ptr b) {
  return ask({a, b}, [&] {
    const rational_domain::value left = reader_.read(a);
    const rational_domain::value right = reader_.read(b);
    return domain_.equal(left, right);
  });
}

bool rational_forms::equal_at_once(term_ptr a, term_ptr b) {
  return ask({a, b}, [&] {
    if (is_sum(a) || is_sum(b)) {
      const rational_domain::value difference = reader_.read_difference(a, b);
      if (!difference->r.pole) {
        return domain_.is_zero(difference);
      }
    }
    const rational_domain::value left = reader_.read(a);
    const rational_domain::value right = reader_.read(b);
    return domain_.equal(left, right);
  });
}

bool rational_forms::equal_everywhere(term_ptr a, term_ptr b) {
  return ask({a, b}, [&] {
    const rational_domain::value left = reader_.read_everywhere(a);
    const rational_domain::value right = reader_.read_everywhere(b);
    return domain_.equal(left, right);
  });
}

bool rational_forms::equal_differences(term_ptr a1, term_ptr a2, term_ptr b1, term_ptr b2) {
  return ask({a1, a2, b1, b2}, [&] {
    const signed_value<rational_domain::value> left[] = {{reader_.read(a1), false}, {reader_.read(b1), true}};
    const signed_value<rational_domain::value> right[] = {{reader_.read(a2), false}, {reader_.read(b2), true}};
    const rational_domain::value moved = domain_.sum(left);
    return domain_.equal(moved, domain_.sum(right)) && !domain_.is_special(moved);
  });
}

}  // namespace vetro

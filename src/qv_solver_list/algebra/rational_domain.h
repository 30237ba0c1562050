// Terms to rational forms: the exact domain for expression_reader.
//
// Opaque parts become keys. Two are the same key exactly when they are the same kind of node with equal parts, or the
// same written term; neither texts nor hashes nor fingerprints decide, so that nothing is confused that looks alike and
// nothing depends on how a variable is called.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "number/budget.h"
#include "number/limits.h"
#include "number/rational.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/fingerprint.h"

namespace vetro {

class rational_domain {
 public:
  struct form {
    rat r;
    fingerprint print;
    mutable std::uint32_t number = 0;  // of form_number, once it is known
  };
  using value = std::shared_ptr<const form>;

  explicit rational_domain(budget& work) : registry_(work) {}

  const value* recall(term_ptr t) const { return known_.find(t); }
  const value* recall_equal(term_ptr t) const { return known_.find_equal(t); }
  // What was read after the end of a budget is not remembered: the next expression has a budget of its own.
  void remember(term_ptr t, const value& v) {
    if (!gave_up()) {
      known_.keep(t, v);
    }
  }
  bool gave_up() const { return registry_.pdata.exhausted(); }
  void charge_to(budget& work) { registry_.pdata.charge_to(work); }
  value failed() const { return make(rat_nan(), {}); }

  value number(const exact& c) const { return make(rat_const(c), fingerprint::of_number(c)); }
  value leaf(term_ptr t);
  value opaque(term_ptr t);
  value compound(compound_kind kind, std::span<const value> parts, bool special);
  bool arrange(std::vector<value>& parts);
  value sum(std::span<const signed_value<value>> addends);
  value product(std::span<const value> factors);
  value quotient(const value& numerator, const value& denominator);
  value power(const value& base, const value& exponent, std::span<const signed_value<value>> addends);
  value root(const value& radicand, std::int64_t index);

  bool equal(const value& a, const value& b) { return rat_eq(registry_, a->r, b->r); }
  bool is_zero(const value& v) { return rat_eq(registry_, v->r, rat_const(0)); }
  // Holds an unknown that is no single finite value.
  bool is_special(const value& v) const { return registry_.is_special(v->r); }
  // Equal forms have equal numbers, from 1 on. Nothing for a not-a-number.
  std::optional<std::uint32_t> form_number(const value& v);
  const rational_registry& registry() const { return registry_; }
  rational_registry& registry() { return registry_; }

 private:
  struct rat_hash {
    std::size_t operator()(const rat& r) const;
  };

  static value make(rat r, const fingerprint& print) { return std::make_shared<const form>(form{std::move(r), print}); }
  value atom(factor_kind kind, const key_words& words, const fingerprint& print, bool special);
  std::optional<std::int32_t> plain_name(const rat& r) const;
  value without_number(const value& base);
  rat number_power(const value& base, const exact& exponent);
  rat power_of_number(const exact& base, const cnum& exponent);
  rat root_power(const value& base, const cnum& exponent);
  rat symbolic_power(const value& base, std::span<const signed_value<value>> addends);
  rat power_of_part(const value& base, std::uint32_t base_number, rat part, const exact& coef);
  rat unexpanded_power(const value& base, const value& exponent);
  value known_equal(const value& v);

  rational_registry registry_;
  values_of_terms<value> known_;
  std::unordered_map<rat, std::uint32_t, rat_hash> numbers_;
  // The first form of each number, and the same in other orders: those with a fingerprint by that, those without one,
  // and those that may equal a form with another list.
  std::vector<value> representatives_;
  std::unordered_multimap<std::uint64_t, value> by_fingerprint_;
  std::vector<value> without_fingerprint_;
  std::vector<value> uncertain_;
};

// The rational forms of one comparison or of one caller's table. Reads each subterm once. Each question has a budget of
// its own, within one for all of them.
class rational_forms {
 public:
  explicit rational_forms(std::uint64_t work = limits::poly_work);
  ~rational_forms();

  // Terms that are equal as rational expressions get the same number. Nothing where a not-a-number takes part.
  std::optional<std::uint32_t> key(term_ptr t);
  // The form in a readable notation, "nan" included; empty for null.
  std::string text(term_ptr t);

  bool equal(term_ptr a, term_ptr b);
  // The same, where a and b are not compared with anything else: what both add up in common goes away before anything
  // is multiplied out, and is not remembered.
  bool equal_at_once(term_ptr a, term_ptr b);
  // Equal, and defined at the same places.
  bool equal_everywhere(term_ptr a, term_ptr b);
  // a1 - a2 = b1 - b2, so that an equation or comparison of the first two says the same of the others. What is no
  // single finite value is not moved across: both sides differ by the same finite expression.
  bool equal_differences(term_ptr a1, term_ptr a2, term_ptr b1, term_ptr b2);

 private:
  template <class Question>
  auto ask(std::initializer_list<term_ptr> about, Question question);

  std::uint64_t work_;
  budget all_;
  rational_domain domain_;
  expression_reader<rational_domain> reader_;
};

}  // namespace vetro

// Reads a term as a rational expression over any domain of values: sums, products, quotients and powers are computed,
// everything else is an opaque value that is told apart by its parts.
//
// Two domains use it: exact rational forms, and fingerprints of them modulo a prime. As one walk serves both, whatever
// is equal as a rational form has equal fingerprints. A domain gives
//
//   value                                    a cheap copyable handle
//   const value* recall(term_ptr)            what was remembered for a term, or null
//   const value* recall_equal(term_ptr)      the same for one that is equal up to bound names
//   void remember(term_ptr, const value&)
//   bool gave_up()                           no further reading makes sense; every value may be failed()
//   value failed()
//   value number(const exact&)
//   value leaf(term_ptr)                     a name, constant or symbol, without metadata
//   value opaque(term_ptr)                   a term that is compared as it is written
//   value compound(compound_kind, span<const value>, bool special)
//   bool arrange(vector<value>&)             in an order that equal lists share, without repetitions; false on failure
//   value sum(span<const signed_value<value>>)
//   value product(span<const value>)
//   value quotient(const value&, const value&)
//   value power(const value& base, const value& exponent, span<const signed_value<value>> addends_of_exponent)
//   value root(const value& radicand, int64_t index)
//
// What calculation would confuse is kept whole here, for every caller:
//
//   a list with an ellipsis, and a proposition with a side condition, are compared as they are written;
//   a term that stands for several values (±x, O(x), an indefinite integral) is one unknown where it stands alone in
//   its sum, product, quotient or power; several of them side by side are not merged, as each is another value;
//   infinity and sizes of sets are unknowns that are marked as special, so that nobody cancels them across an equation.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "number/exact.h"
#include "qv_solver_list/algebra/root_form.h"
#include "qv_solver_list/algebra/root_view.h"
#include "qv_solver_list/number_reading.h"
#include "term/ast.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/whole_parts.h"
#include "term/written.h"

namespace vetro {

// Opaque values that are equal when their parts are equal as rational expressions.
enum class compound_kind : std::uint8_t {
  application,  // function, argument
  list,         // elements
  binding,      // an application that binds variables, the variables
  // Operations on values of which two or more stand for several values; the operands.
  several_sum,
  several_product,
  several_quotient,
  several_power,
  proposition,    // head, arguments
  described_set,  // element, conditions, each with where it is defined
  defined_at,     // the value of an expression, then the parts that may lack a value
  // Such parts: a divisor; the base and the exponent of a power.
  divisor,
  raised,
};

constexpr whole_part several_valued = whole_part::landau | whole_part::several_values | whole_part::indefinite_integral;
constexpr whole_part not_finite = whole_part::infinity_value | whole_part::set_size;

// What was read for terms. Terms that are equal up to bound names have one value.
template <class Value>
class values_of_terms {
 public:
  const Value* find(term_ptr t) const {
    const auto known = by_node_.find(t);
    return known == by_node_.end() ? nullptr : &known->second;
  }
  const Value* find_equal(term_ptr t) const {
    const auto known = binds_names(t) ? by_meaning_.find(t) : by_meaning_.end();
    return known == by_meaning_.end() ? nullptr : &known->second;
  }
  void keep(term_ptr t, const Value& value) {
    by_node_.emplace(t, value);
    if (binds_names(t)) {
      by_meaning_.emplace(t, value);
    }
  }
  std::size_t size() const { return by_node_.size(); }

 private:
  static bool binds_names(term_ptr t) {
    return t->has(fact_binding) && (t->type() == Quant || t->type() == Lambda || binding_row_of(t) != nullptr);
  }

  std::unordered_map<term_ptr, Value> by_node_;
  std::unordered_map<term_ptr, Value, alpha_hasher, alpha_equal> by_meaning_;
};

template <class Value>
struct signed_value {
  Value value;
  bool negative;
};

// A proposition with a side condition; and a relation or connective with its arguments, without one.
bool is_conditional_proposition(term_ptr t);
bool is_plain_proposition(term_ptr t);

// A list with an ellipsis among its members: 1 + 2 + ... + n, f(1, ..., n), { a, ..., b }, up to the member behind the
// ellipsis. What is added behind that is no part of it.
bool is_dotted_list(term_ptr t);

// The domain or definedness of an expression as it is written, which no calculation keeps: Dom(x/x) is not Dom(1).
bool depends_on_writing(term_ptr t);

// { element | conditions }, applied to both.
bool describes_set(term_ptr t);

// How an application may lack a value where its arguments have theirs.
enum class partiality : std::uint8_t { none, divisor, power, function };
partiality partiality_of(term_ptr t);

// Whether some expression in t may lack a value: a quotient, f(x), ln(x), a_n.
bool may_lack_value(term_ptr t);

// The operators that give a value for all arguments, with a law that holds of the set because of it.
struct total_operator {
  oper_type oper;
  std::string_view law;
};
std::span<const total_operator> total_operators();

// A quotient (Div, Frac) by differentials, or a power of them that stands for one, that is a symbol and no number that
// cancels: by a partial differential, as the product of pdiff(x)/pdiff(y), pdiff(y)/pdiff(z) and pdiff(z)/pdiff(x) is
// -1; by a product or power of differentials; and of what is a quotient of differentials or a second differential
// itself. The quotient of something else by diff(x) is a number, as the chain rule has it.
bool divides_by_differentials(const composed_term& view);

template <class Domain>
class expression_reader {
 public:
  using value = typename Domain::value;

  explicit expression_reader(Domain& domain) : domain_(domain) {}

  value read(term_ptr t) {
    if (const value* known = domain_.recall(t)) {
      return *known;
    }
    if (const value* known = domain_.recall_equal(t)) {
      const value equal = *known;
      domain_.remember(t, equal);
      return equal;
    }
    value result = domain_.gave_up() ? domain_.failed() : read_new(t);
    domain_.remember(t, result);
    return result;
  }

  // The value of t together with where its expressions are defined. Two terms with the same are equal everywhere: x/x
  // differs from 1 here, and ln(x) - ln(x) from 0, but 1/(x + 1) is 1/(1 + x).
  value read_everywhere(term_ptr t) {
    if (const auto known = everywhere_.find(t); known != everywhere_.end()) {
      return known->second;
    }
    value result = domain_.gave_up() ? domain_.failed() : read_everywhere_new(t);
    if (!domain_.gave_up()) {
      everywhere_.emplace(t, result);
    }
    return result;
  }

  // a - b, with what both add up in common taken away before anything is multiplied out.
  value read_difference(term_ptr a, term_ptr b) {
    addends all = read_addends(a);
    for (signed_value<value>& addend : read_addends(b)) {
      all.push_back({std::move(addend.value), !addend.negative});
    }
    return domain_.sum(all);
  }

 private:
  using addends = std::vector<signed_value<value>>;

  value read_everywhere_new(term_ptr t) {
    const bool listed = t->type() == TermList && !is_dotted_list(t);
    if (!listed && !is_plain_proposition(t)) {
      return with_partial_parts(t);
    }
    std::vector<value> parts;
    if (listed) {
      for (term_ptr element : t->elements()) {
        parts.push_back(read_everywhere(element));
      }
      return domain_.compound(compound_kind::list, parts, is_special(t));
    }
    const spine whole = spine_of(t);
    parts.push_back(read(whole.head));
    for (term_ptr argument : whole.args) {
      parts.push_back(read_everywhere(argument));
    }
    return domain_.compound(compound_kind::proposition, parts, is_special(t));
  }

  value with_partial_parts(term_ptr t) {
    std::vector<value> parts;
    node_set visited;
    collect_partial_parts(t, parts, visited);
    const value own = read(t);
    if (parts.empty()) {
      return own;
    }
    if (!domain_.arrange(parts)) {
      return domain_.failed();
    }
    parts.insert(parts.begin(), own);
    return domain_.compound(compound_kind::defined_at, parts, is_special(t));
  }

  // Of the expression and of its operands; what is bound inside a part stays in that part, as it is written.
  void collect_partial_parts(term_ptr t, std::vector<value>& parts, node_set& visited) {
    if (!is_apply(t) || !visited.insert(t)) {
      return;
    }
    if (binding(t).touches_names() && may_lack_value(t)) {
      parts.push_back(domain_.opaque(as_written(t)));
      return;
    }
    switch (partiality_of(t)) {
      case partiality::none:
        break;
      case partiality::divisor:
        parts.push_back(read_compound(compound_kind::divisor, std::array{t->right()}, is_special(t)));
        break;
      case partiality::power:
        parts.push_back(
            read_compound(compound_kind::raised, std::array{t->left()->right(), t->right()}, is_special(t)));
        break;
      case partiality::function:
        parts.push_back(read(t));
        break;
    }
    for (term_ptr node = t; node->type() == Apply; node = node->left()) {
      if (node->right()->type() == TermList) {
        for (term_ptr element : node->right()->elements()) {
          collect_partial_parts(element, parts, visited);
        }
      } else {
        collect_partial_parts(node->right(), parts, visited);
      }
    }
  }

  value read_new(term_ptr t) {
    if (is_conditional_proposition(t) || is_dotted_list(t)) {
      return domain_.opaque(as_written(t));
    }
    switch (t->type()) {
      case Const:
        if (const auto number = number_literal(t->bare())) {
          return domain_.number(*number);
        }
        return domain_.leaf(t->bare());
      case Var:
      case Oper:
      case Pred:
      case Connect:
        return domain_.leaf(t->bare());
      case TermList:
        return read_compound(compound_kind::list, t->elements(), is_special(t));
      case Apply:
        return read_apply(t);
      default:
        return domain_.opaque(as_written(t));
    }
  }

  static bool is_several(term_ptr t) { return holds_any(t, several_valued); }
  static bool is_special(term_ptr t) { return holds_any(t, several_valued | not_finite); }

  value read_apply(term_ptr t) {
    const auto view = arithmetic_view(t);
    if (!view) {
      const auto root = is_dotted_list(t) ? std::nullopt : root_of(t);
      return root ? domain_.root(read(root->radicand), root->index) : read_application(t);
    }
    switch (view->oper) {
      case Plus:
      case Minus:
      case Neg:
        return domain_.sum(read_addends(t));
      case Mult:
        return domain_.product(read_factors(t));
      case Power: {
        if (is_several(view->t1) && is_several(view->t2)) {
          return read_several(compound_kind::several_power, *view);
        }
        const value base = read(view->t1);
        const value exponent = read(view->t2);
        return domain_.power(base, exponent, read_addends(view->t2));
      }
      default: {
        if (is_several(view->t1) && is_several(view->t2)) {
          return read_several(compound_kind::several_quotient, *view);
        }
        const value numerator = read(view->t1);
        const value denominator = read(view->t2);
        return domain_.quotient(numerator, denominator);
      }
    }
  }

  value read_several(compound_kind kind, const composed_term& view) {
    const term_ptr operands[] = {view.t1, view.t2};
    return read_compound(kind, operands, true);
  }

  value read_application(term_ptr t) {
    if (depends_on_writing(t)) {
      return domain_.opaque(as_written(t));
    }
    const bool special = is_special(t);
    const value application =
        describes_set(t) ? read_set_description(t, special)
                         : read_compound(compound_kind::application, std::array{t->left(), t->right()}, special);
    const term_list names = touched_names(t);
    return names.empty() ? application : read_binding(application, names, special);
  }

  // Whether an element is in the set depends on where the conditions are defined.
  value read_set_description(term_ptr t, bool special) {
    const value parts[] = {read_everywhere(t->left()->right()), read_everywhere(t->right())};
    return domain_.compound(compound_kind::described_set, parts, special);
  }

  // Calculation may take a variable out of an index part, and what the operator binds must not change by that:
  // sum_{i = k - k}^{n}(k) binds k, sum_{i = 0}^{n}(k) does not.
  value read_binding(const value& application, term_list binders, bool special) {
    std::sort(binders.begin(), binders.end(), [](term_ptr a, term_ptr b) { return compare_terms(a, b) < 0; });
    std::vector<value> values{application};
    for (term_ptr variable : binders) {
      values.push_back(domain_.opaque(as_written(variable)));
    }
    return domain_.compound(compound_kind::binding, values, special);
  }

  value read_compound(compound_kind kind, term_span parts, bool special) {
    std::vector<value> values;
    values.reserve(parts.size());
    for (term_ptr part : parts) {
      values.push_back(read(part));
    }
    return domain_.compound(kind, values, special);
  }

  // The operators that are computed, with their operands (t2 is null for Neg). A node that binds variables is no
  // arithmetic, whatever its head, and neither is a derivative that is written as a quotient.
  static std::optional<composed_term> arithmetic_view(term_ptr t) {
    const auto view = binding_row_of(t) == nullptr && !is_dotted_list(t) ? composed_term_split(t) : std::nullopt;
    if (!view || (view->oper == Neg) != (view->t2 == nullptr)) {
      return std::nullopt;
    }
    switch (view->oper) {
      case Plus:
      case Minus:
      case Neg:
      case Mult:
        return view;
      case Power:
      case Div:
      case Frac:
        return divides_by_differentials(*view) ? std::nullopt : view;
      default:
        return std::nullopt;
    }
  }

  // What a tree of sums, differences and negations adds up, left to right; the term itself when it is none. A part that
  // is met again, or is known, counts as one addend: shared parts are read once.
  addends read_addends(term_ptr t) {
    addends out;
    std::vector<value> several;
    std::vector<signed_value<term_ptr>> open{{t, false}};
    node_set opened;
    while (!open.empty()) {
      const auto [part, negative] = open.back();
      open.pop_back();
      const auto view = arithmetic_view_of_sum(part);
      if (!view || (part != t && (domain_.recall(part) != nullptr || !opened.insert(part)))) {
        const signed_value<value> addend{read(part), negative};
        if (is_several(part)) {
          several.push_back(domain_.sum({&addend, 1}));
        } else {
          out.push_back(addend);
        }
      } else if (view->oper == Neg) {
        open.push_back({view->t1, !negative});
      } else if (view->oper != Minus || view->t1 != view->t2 || is_several(view->t1)) {  // x - x is zero whatever x is
        open.push_back({view->t2, negative != (view->oper == Minus)});
        open.push_back({view->t1, negative});
      }
    }
    if (!several.empty()) {
      out.push_back({unmerged(compound_kind::several_sum, several), false});
    }
    return out;
  }

  value unmerged(compound_kind kind, const std::vector<value>& several) {
    return several.size() == 1 ? several.front() : domain_.compound(kind, several, true);
  }

  static std::optional<composed_term> arithmetic_view_of_sum(term_ptr t) {
    const auto view = is_apply(t) ? arithmetic_view(t) : std::nullopt;
    return view && (view->oper == Plus || view->oper == Minus || view->oper == Neg) ? view : std::nullopt;
  }

  // The same for products.
  std::vector<value> read_factors(term_ptr t) {
    std::vector<value> out;
    std::vector<value> several;
    std::vector<term_ptr> open{t};
    node_set opened;
    while (!open.empty()) {
      term_ptr part = open.back();
      open.pop_back();
      const auto view = is_apply(part) ? arithmetic_view(part) : std::nullopt;
      if (!view || view->oper != Mult || (part != t && (domain_.recall(part) != nullptr || !opened.insert(part)))) {
        (is_several(part) ? several : out).push_back(read(part));
      } else {
        open.push_back(view->t2);
        open.push_back(view->t1);
      }
    }
    if (!several.empty()) {
      out.push_back(unmerged(compound_kind::several_product, several));
    }
    return out;
  }

  Domain& domain_;
  std::unordered_map<term_ptr, value> everywhere_;
};

}  // namespace vetro

// One walk finds all kinds. Where an infinity stands decides whether it is a value, so an application is looked at with
// all its arguments.
#include "term/whole_parts.h"

#include <array>

#include "term/state.h"

namespace vetro {
namespace {

// A node with its head and up to four arguments, in text order.
struct flat_application {
  term_ptr head = nullptr;  // null when there are more arguments
  std::size_t count = 0;
  std::array<term_ptr, 4> args{};
};

flat_application flat(term_ptr t) {
  flat_application result;
  std::size_t count = 0;
  term_ptr head = t;
  for (; head->type() == Apply; head = head->left()) {
    if (++count > result.args.size()) {
      return {};
    }
  }
  result.head = head;
  result.count = count;
  for (term_ptr node = t; count > 0; node = node->left()) {
    result.args[--count] = node->right();
  }
  return result;
}

bool is_infinite(term_ptr t) { return t->type() == Const && is_infinity(t->constant()); }

// Operators and predicates that take a point, a bound or an end; the arguments that are one, as bits.
struct point_row {
  int first;
  int last;
  unsigned args;
};
constexpr point_row point_rows[] = {
    {IntervalLoRo, IntervalLcRc, 0b0011},  // both ends
    {BigSum, BigInterSup, 0b0011},         // the start, inside the index part, and the bound
    {SeqLim, RightLimInf, 0b0010},        {DefInt, DefInt, 0b0011},
    {BigO, RightLittleO, 0b0010},         {TendsToWithoutIndex, RightTendsToWithoutIndex, 0b0010},
    {SeqTendsTo, RightTendsTo, 0b1010},  // the index and what the term tends to
    {AsymEquiv, RightAsymEquiv, 0b0010},
};

unsigned points_among_arguments(term_ptr head) {
  const int number = head->type() == Oper   ? static_cast<int>(head->oper())
                     : head->type() == Pred ? static_cast<int>(head->pred())
                                            : -1;
  for (const point_row& row : point_rows) {
    if (number >= row.first && number <= row.last) {
      return row.args;
    }
  }
  return 0;
}

// A differential stands somewhere. Kept with the answers of a walk, and no part of them outside.
constexpr whole_part differential = static_cast<whole_part>(128);

constexpr whole_part without(whole_part all, whole_part some) {
  return static_cast<whole_part>(static_cast<unsigned>(all) & ~static_cast<unsigned>(some));
}

class whole_part_walk {
 public:
  whole_part parts(term_ptr t) {
    if (!t->has(fact_whole)) {
      return whole_part::none;
    }
    if (t->size() < worth_remembering) {
      return parts_of_node(t);
    }
    const auto found = [&] { return static_cast<std::uint8_t>(parts_of_node(t)); };
    return static_cast<whole_part>(state().whole_parts.get(t, found));
  }

 private:
  whole_part parts_of_node(term_ptr t) {
    switch (t->type()) {
      case Const:
        return t->constant() == Ellipsis ? whole_part::ellipsis
               : is_infinite(t)          ? whole_part::infinity_value
                                         : whole_part::none;
      case Oper:
        return part_named(t->oper());
      case Apply:
        return parts_of_application(t);
      default:
        return parts_of_list(t->children());
    }
  }

  static whole_part part_named(oper_type oper) {
    if (is_landau(oper)) {
      return whole_part::landau;
    }
    switch (oper) {
      case PosNeg:
      case PlusMinus:
        return whole_part::several_values;
      case IndefInt:
        return whole_part::indefinite_integral;
      case Cardinal:
        return whole_part::set_size;
      case D:
      case PD:
        return differential;
      default:
        return whole_part::none;
    }
  }

  whole_part parts_of_list(term_span list) {
    whole_part result = whole_part::none;
    for (term_ptr part : list) {
      if (part != nullptr) {
        result = result | parts(part);
      }
    }
    return result;
  }

  whole_part parts_of_application(term_ptr t) {
    const flat_application whole = flat(t);
    if (whole.head == nullptr) {
      return parts_of_list(t->children());
    }
    const unsigned points = points_among_arguments(whole.head);
    whole_part result = parts(whole.head);
    for (std::size_t i = 0; i < whole.count; ++i) {
      const bool is_point = (points >> i & 1U) != 0;
      if (is_point && is_infinite(whole.args[i])) {
        continue;
      }
      const whole_part found = parts(whole.args[i]);
      const bool names_start = i == 0 && whole.head->type() == Oper && is_big_operator(whole.head->oper());
      result = result | (names_start ? without(found, whole_part::infinity_value) : found);
    }
    if (whole.head->type() == Oper && is_integral(whole.head->oper())) {
      return without(result, differential);  // an integral takes them up
    }
    return divides_by_differential(whole) ? result | whole_part::differential_quotient : result;
  }

  bool divides_by_differential(const flat_application& whole) {
    if (whole.head->type() != Oper || whole.count != 2) {
      return false;
    }
    switch (whole.head->oper()) {
      case Div:
      case Frac:
        return (parts(whole.args[1]) & differential) != whole_part::none;
      case Power:
        return (parts(whole.args[0]) & differential) != whole_part::none;
      default:
        return false;
    }
  }
};

}  // namespace

whole_part whole_parts_of(term_ptr t) {
  return t == nullptr ? whole_part::none : without(whole_part_walk().parts(t), differential);
}

}  // namespace vetro

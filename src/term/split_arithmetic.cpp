// Both walks keep the parts that are still to be opened in a list of their own, so that depth costs nothing; a count of
// openings ends the walk over a term that is huge only because it shares its parts.
#include "term/split_arithmetic.h"

#include "number/limits.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

std::optional<composed_term> plain_view(term_ptr t) {
  return is_apply(t) && !t->has_meta() ? composed_term_split(t) : std::nullopt;
}

// Calls open(part) for t and for all parts that open puts on the list, the last one first, until too many were opened;
// open gives false for a part that it leaves whole, which goes to keep, and so do the parts that are left.
template <class Part, class Open, class Keep>
void take_apart(Part whole, Open open, Keep keep) {
  std::vector<Part> parts{whole};
  for (std::size_t opened = 0; !parts.empty();) {
    const Part part = parts.back();
    parts.pop_back();
    if (opened < limits::arithmetic_parts && open(part, parts)) {
      ++opened;
    } else {
      keep(part);
    }
  }
}

}  // namespace

std::vector<signed_term> summands(term_ptr t, sum_forms forms) {
  std::vector<signed_term> result;
  take_apart(
      signed_term{t, false},
      [&](const signed_term& part, std::vector<signed_term>& parts) {
        const auto view = plain_view(part.t);
        if (view && view->t2 != nullptr && (view->oper == Plus || view->oper == Minus)) {
          parts.push_back({view->t2, part.negative != (view->oper == Minus)});
          parts.push_back({view->t1, part.negative});
          return true;
        }
        if (view && view->t2 == nullptr && view->oper == Neg && forms.negation) {
          parts.push_back({view->t1, !part.negative});
          return true;
        }
        return false;
      },
      [&](const signed_term& part) { result.push_back(part); });
  return result;
}

quotient_parts factors(term_ptr t, product_forms forms) {
  struct factor {
    term_ptr t;
    bool below;
  };
  quotient_parts result;
  take_apart(
      factor{t, false},
      [&](const factor& part, std::vector<factor>& parts) {
        const auto view = plain_view(part.t);
        if (view && view->t2 != nullptr && view->oper == Mult) {
          parts.push_back({view->t2, part.below});
          parts.push_back({view->t1, part.below});
          return true;
        }
        if (view && view->t2 != nullptr && (view->oper == Div || view->oper == Frac) && forms.quotients) {
          parts.push_back({view->t2, !part.below});
          parts.push_back({view->t1, part.below});
          return true;
        }
        if (view && view->t2 == nullptr && view->oper == Neg && forms.negation) {
          parts.push_back({view->t1, part.below});
          result.negative = !result.negative;
          return true;
        }
        return false;
      },
      [&](const factor& part) { (part.below ? result.den : result.num).push_back(part.t); });
  return result;
}

}  // namespace vetro

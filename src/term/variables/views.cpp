// All views start from the operator and its arguments; the families of kinds.h say which roles these have.
#include "term/variables/views.h"

#include "term/kinds.h"

namespace vetro {
namespace {

// The three forms of an operator stand in the order: two-sided, left, right.
approach_side side_of(oper_type oper, oper_type first) { return static_cast<approach_side>((oper - first) % 3); }

}  // namespace

operator_view operator_of(term_ptr t) {
  operator_view view;
  term_ptr head = t;
  std::uint8_t count = 0;
  for (; is_apply(head); head = head->left()) {
    if (++count > 4) {
      return view;
    }
  }
  if (head == nullptr || head->type() != Oper || head->has_meta()) {
    return view;
  }
  view.oper = head->oper();
  view.count = count;
  for (term_ptr node = t; count > 0; node = node->left()) {
    view.args[--count] = node->right();
  }
  return view;
}

std::optional<limit_view> limit_of(term_ptr t) {
  const operator_view view = operator_of(t);
  if (!view.oper || view.count != 3 || !is_limit(*view.oper)) {
    return std::nullopt;
  }
  const oper_type oper = *view.oper;
  const oper_type first = is_sequence_limit(oper) ? SeqLim : Lim;
  return limit_view{.oper = oper,
                    .kind = static_cast<limit_kind>((oper - first) / 3),
                    .side = side_of(oper, first),
                    .of_sequence = is_sequence_limit(oper),
                    .var = view.args[0],
                    .point = view.args[1],
                    .body = view.args[2]};
}

std::optional<sum_view> sum_of(term_ptr t) {
  const operator_view view = operator_of(t);
  if (!view.oper || !is_big_operator(*view.oper)) {
    return std::nullopt;
  }
  const bool bounded = has_upper_bound(*view.oper);
  if (view.count != (bounded ? 3 : 2)) {
    return std::nullopt;
  }
  return sum_view{.oper = *view.oper,
                  .index_part = view.args[0],
                  .upper = bounded ? view.args[1] : nullptr,
                  .body = view.args[bounded ? 2 : 1]};
}

std::optional<set_view> set_description_of(term_ptr t) {
  const operator_view view = operator_of(t);
  if (view.oper != SetDesc || view.count != 2 || view.args[1]->type() != TermList) {
    return std::nullopt;
  }
  return set_view{view.args[0], view.args[1]->elements()};
}

}  // namespace vetro

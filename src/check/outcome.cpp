#include "check/outcome.h"

#include <algorithm>
#include <iterator>

namespace vetro {

std::optional<outcome> outcome_of_name(std::string_view name) {
  const auto row = std::find_if(std::begin(outcome_rows), std::end(outcome_rows),
                                [&](const outcome_row& r) { return r.name == name; });
  return row == std::end(outcome_rows) ? std::nullopt : std::optional(row->value);
}

int graver_status(int a, int b) {
  // An admitted proof says less than an unproved one.
  constexpr int order[] = {0, exit_not_clean, exit_some_not, exit_input_error, exit_limit, exit_fault};
  const auto rank = [&](int status) { return std::find(std::begin(order), std::end(order), status); };
  return rank(a) < rank(b) ? b : a;
}

}  // namespace vetro

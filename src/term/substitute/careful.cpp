// The rules of capture-avoiding substitution, for one variable and for many.
#include "term/substitute/careful.h"

#include <algorithm>

#include "term/reserved.h"
#include "term/substitute/substitution.h"

namespace vetro {
namespace {

constexpr substitution_rules careful_rules = {.renamed = substitution_rules::capture::names_of_value,
                                              .scopes = substitution_rules::scope::replaced,
                                              .reads_propositions = true,
                                              .reports_empty_lists = false,
                                              .draws_visible_names = true};
constexpr substitution_rules inside_rules = {.renamed = substitution_rules::capture::where_replaced,
                                             .scopes = substitution_rules::scope::replaced,
                                             .reads_propositions = true,
                                             .reports_empty_lists = false,
                                             .draws_visible_names = false};

// In groups of what one walk can take.
term_ptr in_groups(term_span sources, term_span values, term_ptr t) {
  for (std::size_t first = 0; t != nullptr && first < sources.size(); first += substitution::most_sources) {
    const std::size_t count = std::min(substitution::most_sources, sources.size() - first);
    t = substitution(sources.subspan(first, count), values.subspan(first, count), t, inside_rules).walk(t);
  }
  return t;
}

}  // namespace

term_ptr subst_term_capture_avoiding(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    return nullptr;
  }
  return substitution({&src, 1}, {&dest, 1}, t, careful_rules).walk(t);
}

term_ptr substitute_all(term_span vars, term_span values, term_ptr t) {
  if (t == nullptr || vars.size() != values.size() || std::find(vars.begin(), vars.end(), nullptr) != vars.end() ||
      std::find(values.begin(), values.end(), nullptr) != values.end()) {
    return nullptr;
  }
  if (vars.size() <= substitution::most_sources) {
    return in_groups(vars, values, t);
  }
  term_list placeholders;
  for (std::uint32_t i = 0; i < vars.size(); ++i) {
    placeholders.push_back(reserved_var(reserved_kind::placeholder, i));
  }
  return in_groups(placeholders, values, in_groups(vars, placeholders, t));
}

}  // namespace vetro

// The rules of plain substitution.
#include "term/substitute/plain.h"

#include "term/report.h"
#include "term/substitute/substitution.h"

namespace vetro {
namespace {

constexpr substitution_rules plain_rules = {.renamed = substitution_rules::capture::value_itself,
                                            .scopes = substitution_rules::scope::kept,
                                            .reads_propositions = false,
                                            .reports_empty_lists = true,
                                            .draws_visible_names = true};

}  // namespace

term_ptr subst_term(term_ptr src, term_ptr dest, term_ptr t) {
  if (src == nullptr || dest == nullptr || t == nullptr) {
    report_error("Error: subst_term visiting NULL pointer\n");
    return nullptr;
  }
  return substitution({&src, 1}, {&dest, 1}, t, plain_rules).walk(t);
}

term_list subst_term_list(term_ptr src, term_ptr dest, term_span list) {
  term_list result;
  bool complete = true;
  for (term_ptr t : list) {
    result.push_back(subst_term(src, dest, t));
    complete = complete && result.back() != nullptr;
  }
  return complete ? result : term_list{};
}

}  // namespace vetro

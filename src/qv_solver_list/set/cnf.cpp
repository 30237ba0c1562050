// Tseitin's translation. The order of fresh variables and clauses matters: the core decides variables and propagates
// clauses by their numbers.
#include "qv_solver_list/set/cnf.h"

#include <algorithm>

namespace vetro {
namespace {

// Clauses that say: nv stands for the connective of l and r. Where both operands are one literal, the clauses shrink.
void define(CNF& cnf, sat_term_type type, int nv, int l, int r) {
  switch (type) {
    case SAT_AND:
      cnf.add_clause({-nv, l});
      cnf.add_clause({-nv, r});
      cnf.add_clause({-l, -r, nv});
      break;
    case SAT_OR:
      cnf.add_clause({-l, nv});
      cnf.add_clause({-r, nv});
      cnf.add_clause({-nv, l, r});
      break;
    case SAT_IMPLY:
      if (l == r) {
        cnf.add_clause({nv});
        break;
      }
      cnf.add_clause({l, nv});
      cnf.add_clause({-r, nv});
      cnf.add_clause({-l, r, -nv});
      break;
    case SAT_IFF:
      if (l == r) {
        cnf.add_clause({nv});
        break;
      }
      cnf.add_clause({-l, -r, nv});
      cnf.add_clause({l, r, nv});
      cnf.add_clause({-l, r, -nv});
      cnf.add_clause({l, -r, -nv});
      break;
    case SAT_VAR:
    case SAT_NOT:
      break;
  }
}

}  // namespace

void CNF::add_clause(std::initializer_list<int> literals) {
  const std::size_t begin = literals_.size();
  for (const int literal : literals) {
    const auto known = literals_.begin() + static_cast<std::ptrdiff_t>(begin);
    if (std::find(known, literals_.end(), -literal) != literals_.end()) {
      literals_.resize(begin);
      return;
    }
    if (std::find(known, literals_.end(), literal) == literals_.end()) {
      literals_.push_back(literal);
    }
  }
  end_.push_back(literals_.size());
}

literal_span CNF::clause(int i) const {
  const auto c = static_cast<std::size_t>(i);
  const std::size_t begin = c == 0 ? 0 : end_[c - 1];
  return literal_span(literals_).subspan(begin, end_[c] - begin);
}

CNF build_cnf(const sat_formula& formula, int atoms) {
  CNF cnf(atoms);
  std::vector<int> literals;  // of each node
  literals.reserve(formula.nodes().size());
  const auto literal_of = [&](int node) { return literals[static_cast<std::size_t>(node)]; };
  for (const sat_term& node : formula.nodes()) {
    int literal = 0;
    switch (node.type) {
      case SAT_VAR:
        literal = node.left;
        break;
      case SAT_NOT:
        literal = -literal_of(node.left);
        break;
      default:
        literal = cnf.fresh_var();
        define(cnf, node.type, literal, literal_of(node.left), literal_of(node.right));
        break;
    }
    literals.push_back(literal);
  }
  if (!literals.empty()) {
    cnf.add_clause({literals.back()});
  }
  return cnf;
}

sat_data init_solver(const CNF& cnf) {
  sat_data s = init_cdcl(cnf.var_count(), cnf.clause_count());
  for (int i = cnf.clause_count() - 1; i >= 0; --i) {
    add_clause(s, cnf.clause(i));
  }
  return s;
}

}  // namespace vetro

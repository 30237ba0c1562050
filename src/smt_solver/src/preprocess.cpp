#include "smt_solver/src/preprocess.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vetro::smt {
namespace {

enum done_bit : std::uint8_t { asserted_true = 1, asserted_false = 2, defined_true = 4, defined_false = 8 };

// Disjunctions and conjunctions of more parts are not searched for equations that hold in every case.
constexpr std::size_t most_common_parts = 64;

// Disjunctions of more cases, or with longer ones, are not searched for bounds that hold in every case.
constexpr std::size_t most_bounded_cases = 4;
constexpr std::size_t longest_bounded_case = 6;

bool is_composed(const smt_prop_row& row) { return row.type == SMTB_PROP || row.type == SMTU_PROP; }

}  // namespace

truth preprocessor::add(smt_prop formula) {
  find_reachable(formula);
  evaluate();
  if (values_[at(formula)] != truth::open) {
    return values_[at(formula)];
  }
  assert_true(formula, true);
  connect_atoms();
  return truth::open;
}

std::vector<std::pair<smt_term, delta_number>> preprocessor::values_of_names() const {
  std::vector<std::pair<smt_term, delta_number>> values;
  for (std::size_t i = 0; i < language_.term_count(); ++i) {
    const auto t = static_cast<smt_term>(i);
    const smt_term_row& row = language_.term(t);
    const bool variable = row.type == SMT_VarName && row.detail == static_cast<std::uint8_t>(smt_name::variable);
    const node n = variable ? terms_.known_node(t) : no_node;
    if (n != no_node && theories_.has_meaning(n)) {
      values.emplace_back(t, theories_.value_of(n));
    }
  }
  return values;
}

// Parts have smaller numbers than what they are part of.
void preprocessor::find_reachable(smt_prop formula) {
  uses_.assign(at(formula) + 1, 0);
  uses_[at(formula)] = 1;
  std::vector<smt_term> roots;
  for (smt_prop p = formula; p >= 0; --p) {
    const smt_prop_row& row = language_.prop(p);
    if (uses_[at(p)] == 0) {
      continue;
    }
    if (row.type == SMTB_PROP || row.type == SMTU_PROP) {
      ++uses_[at(row.a)];
      if (row.type == SMTB_PROP) {
        ++uses_[at(row.b)];
      }
    } else if (row.type != SMTTF_PROP) {
      roots.push_back(row.a);
      roots.push_back(row.b);
    }
  }
  work_.charge(uses_.size());
  terms_.prepare(roots);
}

void preprocessor::evaluate() {
  const std::size_t count = uses_.size();
  values_.assign(count, truth::open);
  atom_of_.assign(count, -1);
  atom_negated_.assign(count, 0);
  names_.assign(count, -1);
  done_.assign(count, 0);
  for (std::size_t p = 0; p < count; ++p) {
    if (uses_[p] == 0) {
      continue;
    }
    const smt_prop_row& row = language_.prop(static_cast<smt_prop>(p));
    if (row.type == SMTTF_PROP || is_composed(row)) {
      values_[p] = evaluate(row);
      continue;
    }
    atom content = read_atom(row);
    if (content.kind == atom_kind::always || content.kind == atom_kind::never) {
      values_[p] = content.kind == atom_kind::always ? truth::yes : truth::no;
      continue;
    }
    atom_negated_[p] = content.negated ? 1 : 0;
    atom_of_[p] = keep(std::move(content));
  }
}

truth preprocessor::evaluate(const smt_prop_row& row) const {
  if (row.type == SMTTF_PROP) {
    return row.detail != 0 ? truth::yes : truth::no;
  }
  const truth a = values_[at(row.a)];
  if (row.type == SMTU_PROP) {
    return -a;
  }
  const truth b = values_[at(row.b)];
  switch (row.detail) {
    case SMTPROP_AND:
      return std::min(a, b);
    case SMTPROP_OR:
      return std::max(a, b);
    case SMTPROP_IMPLY:
      return std::max(-a, b);
    default:
      return a == truth::open || b == truth::open ? (row.a == row.b ? truth::yes : truth::open)
                                                  : (a == b ? truth::yes : truth::no);
  }
}

// ---- Atoms.

preprocessor::atom preprocessor::read_atom(const smt_prop_row& row) {
  if (row.type == SMTAT_PROP_EQ) {
    return read_equation(row.a, row.b);
  }
  // a >= b is the negation of a < b, and a > b that of a <= b.
  const bool turned = row.detail == SMT_GE || row.detail == SMT_GT;
  const bool strict = row.detail == SMT_LT || row.detail == SMT_GE;
  const linear_form difference = linear_sum(terms_.form_of(row.a), terms_.form_of(row.b), exact(-1));
  beyond_ = beyond_ || !difference.is_known();
  primitive_form p = primitive(difference);
  if (p.terms.empty()) {
    const bool holds = strict ? p.constant.sign() < 0 : p.constant.sign() <= 0;
    return {.kind = holds != turned ? atom_kind::always : atom_kind::never};
  }
  // scale * form + constant <= 0; dividing by a negative scale turns the relation, and "at least" is the negation of
  // "below".
  const bool mirrored = p.scale.sign() < 0;
  const bool at_most_exactly = strict == mirrored;
  return {.kind = atom_kind::at_most,
          .negated = mirrored != turned,
          .terms = std::move(p.terms),
          .bound = {-p.constant / p.scale, exact(at_most_exactly ? 0 : -1)}};
}

preprocessor::atom preprocessor::read_equation(smt_term t1, smt_term t2) {
  if (terms_.is_plain(t1) && terms_.is_plain(t2)) {
    const node a = terms_.node_of(t1);
    const node b = terms_.node_of(t2);
    return nodes_equal(a, b);
  }
  const linear_form difference = linear_sum(terms_.form_of(t1), terms_.form_of(t2), exact(-1));
  beyond_ = beyond_ || !difference.is_known();
  primitive_form p = primitive(difference);
  if (p.terms.empty()) {
    return {.kind = p.constant.is_zero() ? atom_kind::always : atom_kind::never};
  }
  const exact value = -p.constant / p.scale;
  const auto& first = p.terms.front();
  if (p.terms.size() == 1 && first.second.is_one()) {
    return nodes_equal(static_cast<node>(first.first), terms_.number(value));
  }
  if (p.terms.size() == 2 && value.is_zero() && first.second.is_one() && p.terms[1].second == exact(-1)) {
    return nodes_equal(static_cast<node>(first.first), static_cast<node>(p.terms[1].first));
  }
  return {.kind = atom_kind::equal_value, .terms = std::move(p.terms), .bound = {value, exact(0)}};
}

preprocessor::atom preprocessor::nodes_equal(node a, node b) const {
  if (a == b) {
    return {.kind = atom_kind::always};
  }
  return {.kind = atom_kind::equal_nodes, .a = std::min(a, b), .b = std::max(a, b)};
}

std::int32_t preprocessor::keep(atom content) {
  std::uint64_t h = mix(static_cast<std::uint64_t>(content.kind), content.bound.hash());
  h = mix(mix(h, static_cast<std::uint64_t>(content.a)), static_cast<std::uint64_t>(content.b));
  for (const auto& [n, coefficient] : content.terms) {
    h = mix(mix(h, n), coefficient.hash());
  }
  const auto same = [&](std::int32_t i) {
    const atom& known = atoms_[at(i)].content;
    return known.kind == content.kind && known.a == content.a && known.b == content.b && known.terms == content.terms &&
           known.bound == content.bound;
  };
  std::int32_t number = atom_index_.find(h, same);
  if (number < 0) {
    number = static_cast<std::int32_t>(atoms_.size());
    atoms_.push_back({std::move(content)});
    atom_index_.insert(h, number);
  }
  return number;
}

// First everything that makes nodes take part in arithmetic, then the equations between nodes, which depend on it.
void preprocessor::connect_atoms() {
  terms_.connect();
  for (const known_atom& known : atoms_) {
    if (known.name >= 0) {
      for (const auto& term : known.content.terms) {
        terms_.share(static_cast<node>(term.first));
      }
    }
  }
  for (const known_atom& known : atoms_) {
    if (known.name >= 0) {
      connect(known);
    }
  }
  theories_.add_bounds_of_equations(search_);
  theories_.add_order_clauses(search_);
  theories_.start();
}

void preprocessor::connect(const known_atom& known) {
  const atom& content = known.content;
  if (content.kind == atom_kind::at_most) {
    theories_.add_at_most(known.name, content.terms, content.bound);
  } else if (content.kind == atom_kind::equal_value) {
    theories_.add_equal(known.name, content.terms, content.bound.real);
  } else {
    theories_.nodes().add_atom(known.name, content.a, content.b);
    theories_.connect_equation(known.name, content.a, content.b);
  }
}

// ---- Clauses.

// What is true or false by itself is left out: by the caller, which asks the values.
void preprocessor::assert_true(smt_prop p, bool positive) {
  const std::uint8_t bit = positive ? asserted_true : asserted_false;
  const truth value = positive ? values_[at(p)] : -values_[at(p)];
  if ((done_[at(p)] & bit) != 0 || value == truth::yes) {
    return;
  }
  done_[at(p)] |= bit;
  work_.charge(1);
  const smt_prop_row& row = language_.prop(p);
  if (row.type == SMTU_PROP) {
    return assert_true(row.a, !positive);
  }
  if (row.type == SMTB_PROP && row.detail != SMTPROP_IFF) {
    const bool conjunction = positive == (row.detail == SMTPROP_AND);
    if (conjunction) {
      assert_true(row.a, row.detail == SMTPROP_IMPLY ? true : positive);
      return assert_true(row.b, positive);
    }
    std::vector<literal> clause;
    gather_parts(p, positive, clause);
    search_.add_clause(clause);
    learn_common_equations(p, positive);
    return learn_common_bounds(p, positive);
  }
  if (row.type == SMTB_PROP) {
    define(p, positive, -1);
    return;
  }
  const literal clause[] = {use(p, positive)};
  search_.add_clause(clause);
}

// The parts of a disjunction. A part that is used elsewhere too keeps its name, so that nothing is copied many times.
void preprocessor::gather(smt_prop p, bool positive, std::vector<literal>& clause) {
  const smt_prop_row& row = language_.prop(p);
  const truth value = positive ? values_[at(p)] : -values_[at(p)];
  if (value == truth::no) {
    return;
  }
  if (row.type == SMTU_PROP) {
    return gather(row.a, !positive, clause);
  }
  const bool disjunction =
      row.type == SMTB_PROP && row.detail != SMTPROP_IFF && positive == (row.detail != SMTPROP_AND);
  if (disjunction && uses_[at(p)] == 1) {
    gather_parts(p, positive, clause);
  } else {
    clause.push_back(use(p, positive));
  }
}

void preprocessor::gather_parts(smt_prop p, bool positive, std::vector<literal>& clause) {
  const smt_prop_row& row = language_.prop(p);
  gather(row.a, row.detail == SMTPROP_IMPLY ? !positive : positive, clause);
  gather(row.b, positive, clause);
}

// A literal whose truth makes the proposition true, or false where positive is false.
literal preprocessor::use(smt_prop p, bool positive) {
  const smt_prop_row& row = language_.prop(p);
  if (row.type == SMTU_PROP) {
    return use(row.a, !positive);
  }
  if (!is_composed(row)) {
    return use_atom(p, positive);
  }
  std::int32_t& name = names_[at(p)];
  if (name < 0) {
    name = literal_of(search_.add_variable(false));
  }
  const literal l = positive ? name : negation(name);
  const std::uint8_t bit = positive ? defined_true : defined_false;
  if ((done_[at(p)] & bit) == 0) {
    done_[at(p)] |= bit;
    work_.charge(1);
    define(p, positive, negation(l));
  }
  return l;
}

literal preprocessor::use_atom(smt_prop p, bool positive) {
  const literal name = name_of(atoms_[at(atom_of_[at(p)])]);
  return positive == (atom_negated_[at(p)] == 0) ? name : negation(name);
}

literal preprocessor::name_of(known_atom& known) {
  if (known.name < 0) {
    known.name = literal_of(search_.add_variable(true));
  }
  return known.name;
}

// Clauses "otherwise, or the proposition is true (false)"; without otherwise where that is -1.
void preprocessor::define(smt_prop p, bool positive, literal otherwise) {
  const smt_prop_row& row = language_.prop(p);
  std::vector<literal> clause;
  const auto begin = [&] {
    clause.clear();
    if (otherwise >= 0) {
      clause.push_back(otherwise);
    }
  };
  // One clause of parts, each with the truth value that it is to have; nothing when one of them has it anyway.
  const auto one_of = [&](std::initializer_list<std::pair<smt_prop, bool>> parts) {
    begin();
    for (const auto& [part, wanted] : parts) {
      const truth value = wanted ? values_[at(part)] : -values_[at(part)];
      if (value == truth::yes) {
        return;
      }
      if (value == truth::open) {
        clause.push_back(use(part, wanted));
      }
    }
    search_.add_clause(clause);
  };
  if (row.detail == SMTPROP_IFF) {
    one_of({{row.a, false}, {row.b, positive}});
    one_of({{row.a, true}, {row.b, !positive}});
    return;
  }
  const bool left = row.detail == SMTPROP_IMPLY ? !positive : positive;
  if (positive == (row.detail == SMTPROP_AND)) {
    one_of({{row.a, left}});
    one_of({{row.b, positive}});
    return;
  }
  begin();
  gather_parts(p, positive, clause);
  search_.add_clause(clause);
}

// ---- Equations that hold in every case.

// The parts of a disjunction or of a conjunction, each with the truth value that it is asked to have.
void preprocessor::take_parts(signed_prop whole, bool of_disjunction, std::vector<signed_prop>& parts) const {
  std::vector<signed_prop> open{whole};
  while (!open.empty()) {
    const signed_prop next = open.back();
    open.pop_back();
    const smt_prop_row& row = language_.prop(next.p);
    if (row.type == SMTU_PROP) {
      open.push_back({row.a, !next.positive});
    } else if (row.type == SMTB_PROP && row.detail != SMTPROP_IFF &&
               next.positive == ((row.detail != SMTPROP_AND) == of_disjunction)) {
      open.push_back({row.b, next.positive});
      open.push_back({row.a, row.detail == SMTPROP_IMPLY ? !next.positive : next.positive});
    } else {
      parts.push_back(next);
    }
    if (parts.size() + open.size() > most_common_parts) {
      parts.clear();
      return;
    }
  }
}

// x = y = z or x = u = z gives x = z. The search alone would meet each way through a row of such cases. Two nodes are
// equal in every case when they are in one class of each.
void preprocessor::learn_common_equations(smt_prop disjunction, bool positive) {
  std::vector<signed_prop> cases;
  take_parts({disjunction, positive}, true, cases);
  std::map<node, std::vector<node>> classes;  // for nodes of all cases so far: a representative in each
  for (std::size_t i = 0; i < cases.size(); ++i) {
    std::vector<signed_prop> parts;
    take_parts(cases[i], false, parts);
    std::map<node, node> up;
    const auto top = [&](node n) {
      for (auto found = up.emplace(n, n).first; found->second != n; found = up.find(n)) {
        n = found->second;
      }
      return n;
    };
    for (const signed_prop& p : parts) {
      const std::int32_t number = is_composed(language_.prop(p.p)) ? -1 : atom_of_[at(p.p)];
      if (number >= 0 && atoms_[at(number)].content.kind == atom_kind::equal_nodes && p.positive) {
        const node a = top(atoms_[at(number)].content.a);
        up[a] = top(atoms_[at(number)].content.b);
      }
    }
    for (auto entry = up.begin(); i == 0 && entry != up.end(); ++entry) {
      classes[entry->first];
    }
    for (auto entry = classes.begin(); entry != classes.end();) {
      if (up.count(entry->first) == 0) {
        entry = classes.erase(entry);
      } else {
        entry->second.push_back(top(entry->first));
        ++entry;
      }
    }
    if (classes.size() < 2) {
      return;
    }
  }
  std::map<std::vector<node>, node> first;
  for (const auto& [n, of_cases] : classes) {
    const auto [known, added] = first.emplace(of_cases, n);
    if (!added) {
      const literal equation[] = {name_of(atoms_[at(keep(nodes_equal(known->second, n)))])};
      search_.add_clause(equation);
    }
  }
}

// Only where an equation stands in some case and an inequality in some case of more than one part: x = y or x = z has
// no bound in common.
void preprocessor::learn_common_bounds(smt_prop disjunction, bool positive) {
  std::vector<signed_prop> parts;
  take_parts({disjunction, positive}, true, parts);
  if (parts.size() < 2 || parts.size() > most_bounded_cases) {
    return;
  }
  std::vector<sum_case> cases;
  bool any_equation = false;
  bool any_inequality = false;
  for (const signed_prop& part : parts) {
    std::vector<signed_prop> conjuncts;
    take_parts(part, false, conjuncts);
    sum_case& constraints = cases.emplace_back();
    for (const signed_prop& conjunct : conjuncts) {
      if (constraints.size() == longest_bounded_case || !add_constraint(conjunct, constraints)) {
        return;
      }
      const bool equation = constraints.back().at_most && constraints.back().at_least;
      any_equation = any_equation || equation;
      any_inequality = any_inequality || (!equation && conjuncts.size() > 1);
    }
  }
  if (!any_equation || !any_inequality) {
    return;
  }
  for (common_bound& b : common_bounds(cases, work_)) {
    const std::int32_t number = keep({.kind = atom_kind::at_most, .terms = std::move(b.terms), .bound = b.at_most});
    const literal name = name_of(atoms_[at(number)]);
    const literal clause[] = {b.negated ? negation(name) : name};
    search_.add_clause(clause);
  }
}

// False for what is no linear atom, or is false by itself.
bool preprocessor::add_constraint(const signed_prop& part, sum_case& to) const {
  const std::int32_t number = is_composed(language_.prop(part.p)) ? -1 : atom_of_[at(part.p)];
  if (number < 0) {
    return false;
  }
  const atom& a = atoms_[at(number)].content;
  const bool holds = part.positive == (atom_negated_[at(part.p)] == 0);
  switch (a.kind) {
    case atom_kind::at_most:
      to.push_back({a.terms, holds ? a.bound : delta_number{a.bound.real, a.bound.delta + exact(1)}, holds, !holds});
      return true;
    case atom_kind::equal_value:
      to.push_back({a.terms, a.bound, true, true});
      return holds;
    case atom_kind::equal_nodes:
      to.push_back({{{static_cast<atom_id>(a.a), exact(1)}, {static_cast<atom_id>(a.b), exact(-1)}}, {}, true, true});
      return holds;
    default:
      return false;
  }
}

}  // namespace vetro::smt

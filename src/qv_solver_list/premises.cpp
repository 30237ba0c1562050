// The memory of premises. An answer that was cut short, because a premise came up again during its own proof or too
// many provers were at work inside one another, is no answer and is not remembered.
#include "qv_solver_list/premises.h"

#include <algorithm>
#include <limits>

#include "number/limits.h"
#include "term/node_memo.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

struct question {
  term_ptr fact;
  side_table table;
  bool operator==(const question&) const = default;
};

struct answer {
  bool proved;
  int names_drawn;  // fresh names that the proof drew: the next one must find the counter as if it had been done again
};

struct answered_premises {
  explicit answered_premises(assumption_facts& /*facts*/) {}
  node_memo<answer> known;  // by table
};

// The premises whose proofs are under way, outermost first.
struct open_premise {
  const assumption_facts* facts;
  question asked;
  std::size_t cut = std::numeric_limits<std::size_t>::max();  // the outermost premise that the proof ran into
};

struct open_premises {
  std::vector<open_premise> list;
};

std::vector<open_premise>& under_way() { return state().slots.of<open_premises>().list; }

// Keeps the list right also when memory or budget runs out below.
class opened {
 public:
  explicit opened(open_premise p) { under_way().push_back(p); }
  ~opened() {
    const std::size_t cut = under_way().back().cut;
    under_way().pop_back();
    if (!under_way().empty()) {
      under_way().back().cut = std::min(under_way().back().cut, cut);
    }
  }
  opened(const opened&) = delete;
  opened& operator=(const opened&) = delete;
};

}  // namespace

prover::prover(const solve_data& sdata, side_table table)
    : sdata_(&sdata), facts_(shared_facts_of(sdata)), table_(table) {}

prover::prover(std::shared_ptr<const solve_data> owned, side_table table)
    : owned_(std::move(owned)), sdata_(owned_.get()), facts_(shared_facts_of(*sdata_)), table_(table) {}

prover prover::under(term_span assumptions) const {
  return {std::make_shared<const solve_data>(with_assumptions(*sdata_, assumptions)), table_};
}

bool prover::relation(pred_type pred, term_ptr left, term_ptr right) {
  return left != nullptr && right != nullptr && proves(make_binPred_prop(pred, left, right));
}

bool prover::relation(pred_type pred, term_ptr left, std::int32_t right) {
  return relation(pred, left, mk_integer(right));
}

bool prover::member(term_ptr t, const_type set) { return relation(Belong, t, mk_const(set)); }

bool prover::proves(term_ptr fact) {
  if (fact == nullptr) {
    return false;
  }
  auto& known = facts_->table<answered_premises>().known;
  const question asked{fact, table_};
  const auto in_table = static_cast<std::uint64_t>(table_);
  if (const answer* found = known.find(fact, in_table); found != nullptr) {
    state().fresh_counter += found->names_drawn;
    return found->proved;
  }
  auto& open = under_way();
  const auto again = std::find_if(open.begin(), open.end(),
                                  [&](const open_premise& p) { return p.facts == facts_.get() && p.asked == asked; });
  if (again != open.end() || open.size() >= limits::premise_depth) {
    const auto cut = again == open.end() ? 0 : static_cast<std::size_t>(again - open.begin());
    open.back().cut = std::min(open.back().cut, cut);
    return false;
  }
  const int names_before = state().fresh_counter;
  const std::size_t place = open.size();
  const opened guard({facts_.get(), asked});
  const bool proved = ask(fact);
  if (proved || under_way().back().cut >= place) {
    if (known.size() >= limits::premises_remembered) {
      known.clear();
    }
    known.keep(fact, {proved, state().fresh_counter - names_before}, in_table);
  }
  return proved;
}

bool prover::ask(term_ptr fact) {
  if (facts_->holds_part(fact)) {
    return true;
  }
  const auto rows = solvers_of(table_);
  return std::any_of(rows.begin(), rows.end(), [&](const premise_solver& row) {
    const solver_decide solve = row.enabled ? find_solver(row.solver) : nullptr;
    return solve != nullptr && solve(fact, *sdata_);
  });
}

}  // namespace vetro

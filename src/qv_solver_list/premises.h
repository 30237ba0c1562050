// Proving the premises of a rule: by the assumptions themselves, else by the side solvers of a table in their order.
#pragma once

#include <cstdint>
#include <memory>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/side_solvers.h"
#include "qv_solver_list/solver.h"

namespace vetro {

// Answers are remembered with the list of assumptions, so that a premise that several rules ask for is proved once. A
// premise that comes up again during its own proof is open there.
class prover {
 public:
  // sdata is borrowed and must outlive the prover.
  prover(const solve_data& sdata, side_table table);

  // False for null.
  bool proves(term_ptr fact);

  bool relation(pred_type pred, term_ptr left, term_ptr right);
  bool relation(pred_type pred, term_ptr left, std::int32_t right);
  bool nonzero(term_ptr t) { return relation(Neq, t, 0); }
  bool positive(term_ptr t) { return relation(Gt, t, 0); }
  bool nonnegative(term_ptr t) { return relation(Ge, t, 0); }
  // t ∈ set for one of the constant sets.
  bool member(term_ptr t, const_type set);

  // The same under further assumptions.
  prover under(term_span assumptions) const;

  const solve_data& data() const { return *sdata_; }
  side_table table() const { return table_; }

 private:
  prover(std::shared_ptr<const solve_data> owned, side_table table);
  bool ask(term_ptr fact);

  std::shared_ptr<const solve_data> owned_;  // of a prover with assumptions of its own
  const solve_data* sdata_;
  std::shared_ptr<assumption_facts> facts_;
  side_table table_;
};

}  // namespace vetro

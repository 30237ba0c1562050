// Every budget and limit of the program in one place, with its unit and its reason. Budgets are counts of work, never
// clocks: the same input stops at the same place on every machine. Reaching one means "not proved" (or a failed step),
// never a wrong answer.
#pragma once

#include <cstdint>

namespace vetro::limits {

// Nodes (as a tree) that beta normalisation may produce. Applied lambdas can double a term at each level.
inline constexpr std::uint32_t beta_result_size = 4'000'000;

// Reductions in one beta normalisation. Real proofs need a few; a term without a normal form would go on for ever.
inline constexpr std::uint32_t beta_reductions = 100'000;

// Nodes (as a tree) of the results of all reductions in one beta normalisation, so that many large steps end too.
inline constexpr std::uint64_t beta_work = 40'000'000;

}  // namespace vetro::limits

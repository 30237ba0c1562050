// Every budget and limit of the program in one place, with its unit and its reason. Budgets are counts of work, never
// clocks: the same input stops at the same place on every machine. Reaching one means "not proved" (or a failed step),
// never a wrong answer.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vetro::limits {

// Nodes (as a tree) that beta normalisation may produce. Applied lambdas can double a term at each level.
inline constexpr std::uint32_t beta_result_size = 4'000'000;

// Reductions in one beta normalisation. Real proofs need a few; a term without a normal form would go on for ever.
inline constexpr std::uint32_t beta_reductions = 100'000;

// Nodes (as a tree) of the results of all reductions in one beta normalisation, so that many large steps end too.
inline constexpr std::uint64_t beta_work = 40'000'000;

// Factory calls of one solver call. The hardest real goals need some hundred thousand; this is about a second.
inline constexpr std::uint64_t solver_factory_calls = 10'000'000;

// Connectives and atoms of one propositional problem, counted as a tree. A gap of 10,000 assumptions has about 100,000.
inline constexpr std::size_t propositional_nodes = 1'000'000;

// Inclusions and equations of sets in one question. Each is asked of every element and of a witness for each other.
inline constexpr std::size_t set_statements = 200;

// Literals that one run of the clause-learning core may look at, counted at each assignment, each return and each
// resolution. Nine pigeons in eight holes are refuted with 32 to 52 million, however they are written; ten in nine
// learn their full quota of clauses with 130 million, or 400 million where all is one conjunction. About a second.
inline constexpr std::uint64_t cdcl_work = 450'000'000;

// Terms of one polynomial that a multiplication may make. An identity of a page has some hundred, (x1 + ... + x5)^20
// has 10,000; a term takes some 60 bytes.
inline constexpr std::size_t poly_terms = 4'000'000;

// Tightenings of each expression's bounds before everything else has had its turn, in one settling of intervals. Bounds
// that reach a fixed point at all reach it in a few; x = x/2 + y/2 goes on for ever.
inline constexpr std::uint32_t interval_tightenings_first = 64;

// Tightenings beyond that, of all expressions together: some ten milliseconds.
inline constexpr std::uint64_t interval_tightenings = 20'000;

// Work of one comparison of two polynomials that may be one expression, as poly_work counts it: a few milliseconds.
// Polynomials that take more count as different.
inline constexpr std::uint64_t interval_comparison_work = 50'000;

// Different subterms of one assumption that the squeezing solver reads. A list with a larger one is left alone.
inline constexpr std::uint32_t squeeze_subterms = 128;

// Factors tried and edges followed in one call of the squeezing solver: some ten milliseconds. A real chain has a few.
inline constexpr std::uint64_t squeeze_steps = 1'000'000;

// Subterms of one closed expression for which bounds are computed, some ten microseconds each. A formula has some ten.
inline constexpr std::size_t closed_value_nodes = 2'000;

// Questions about one applied chain of implications that may end undecided. Each can cost the full work of the core.
inline constexpr int apply_undecided = 8;

// Work for the forms of one expression, beside what its size allows: products of two terms, and eight bytes of what is
// stored each. Some tenths of a second and 300 MB at most. The identities that people write need some hundred;
// (x1 + ... + x5)^20 needs 500,000, two products of a million terms 26 million.
inline constexpr std::uint64_t poly_work = 40'000'000;

// The same for each node of the expression, so that long sums and products that nothing multiplies out are read.
inline constexpr std::uint64_t poly_work_of_node = 16;

// The same for all expressions of one question, such as a goal that is compared with each assumption.
inline constexpr std::uint64_t poly_question_work = 16 * poly_work;

// Bits of the numerator and of the denominator of an exact rational: 20,000 digits. Real proofs need some hundred; one
// product of two such numbers takes about a tenth of a millisecond, and GMP's temporary memory for it is on the stack.
inline constexpr std::size_t exact_bits = 65'536;

// Nodes that one evaluation by definitions may work on, each counted once for every depth of unfolding at which it is
// met. Real goals need some hundred; about half a second.
inline constexpr std::uint64_t func_apply_steps = 200'000;

// Sums or products that are opened to list the summands or factors of one term. A long sum has some thousand; a term
// that shares its parts may have 2^60.
inline constexpr std::size_t arithmetic_parts = 100'000;

// Signs of factors that one comparison of root expressions tries to prove; each asks some solvers.
inline constexpr int root_sign_proofs = 200;

// Facts about terms and pairs of terms that comparisons remember, beside those of the terms at hand; about 100 bytes
// each.
inline constexpr std::size_t poly_remembered = 200'000;

// Work for telling whether the gaps of a formula are those of its derivative, as poly_work counts it: a few
// milliseconds.
inline constexpr std::uint64_t zero_set_work = 200'000;

// Distinct subterms that one computation of derivatives may look at, those of all orders together. The derivative of a
// page of formulas looks at some hundred; this is some tenths of a second.
inline constexpr std::uint64_t derivative_steps = 100'000;

// Differentials and Landau terms that one preparation of a formula may look at, counted for each integral or equation
// around them: 3,000 nested integrals over different variables. About a second and 100 MB.
inline constexpr std::uint64_t collected_binders = 4'000'000;

// Premises whose proofs may be under way inside one another. Definitions that rest on definitions nest a few deep.
inline constexpr std::size_t premise_depth = 64;

// Functions that one question of definedness may look through. A formula names a handful; definitions that call one
// another would go on for ever.
inline constexpr std::size_t domain_unfoldings = 1'000;

// Answers of side solvers that one list of assumptions keeps, and closed expressions whose value the run keeps; about
// 100 bytes each.
inline constexpr std::size_t premises_remembered = 200'000;
inline constexpr std::size_t constants_remembered = 200'000;

// Steps of one run of the SMT kernel: watched clauses, literals in reasons, merged nodes, entries of rows (times their
// words). About three seconds of work; the goals that people write need some hundred.
inline constexpr std::uint64_t smt_work = 300'000'000;

// Entries of the formula reader's stack: at the start, and at most.
inline constexpr std::int64_t parse_stack_initial = 200;
inline constexpr std::int64_t parse_stack = 1'000'000;

// While the reader follows several readings of a text at once, entries for all that these have read, and readings.
// Real formulas open a handful of readings over a few tokens; brackets nested within open readings double them.
inline constexpr std::int64_t parse_stack_of_readings = 8'000'000;
inline constexpr std::size_t parse_readings = 256;

// Degree of a rational function of one variable, and sums and products of coefficients in all functions that one
// question about limits reads. The limits of textbooks have degrees below 20; a sum of 200 fractions takes some
// 100,000.
inline constexpr std::size_t univariate_degree = 4096;
inline constexpr std::uint64_t univariate_work = 4'000'000;

}  // namespace vetro::limits

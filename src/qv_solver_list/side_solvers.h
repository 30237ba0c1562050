// Which solvers may be asked for a premise, and in which order: one table for all clients.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "qv_solver_list/solver.h"

namespace vetro {

// The lists of side solvers, a column each.
enum class side_table : std::uint8_t { func_apply, deriv, cont, integrable, limit_domain, evalbar_domain };
inline constexpr std::size_t side_table_count = 6;

struct premise_solver {
  solver_id solver{};
  bool enabled = true;  // a row that is switched off keeps its place and is never called
};

namespace side_solvers_detail {

inline constexpr int none = 0;
inline constexpr int off = -1;  // times the place

struct row {
  solver_id solver;
  std::array<int, side_table_count> place;  // from 1 on; negative: switched off; none: no such row
};

// clang-format off
inline constexpr std::array rows = std::to_array<row>({
    //                            func_apply  deriv    cont  integrable  limit_domain  evalbar_domain
    {solver_id::eqb,              {1,         1,       1,    1,          1,            1}},
    {solver_id::reflexivity,      {2,         none,    2,    2,          2,            2}},
    {solver_id::context_poly_rat, {3,         2,       3,    3,          3,            3}},
    {solver_id::poly_rat,         {4,         3,       4,    4,          4,            4}},
    {solver_id::smt_lra,          {5,         off * 5, none, none,       none,         5}},
    {solver_id::interval,         {none,      none,    5,    5,          5,            6}},
    {solver_id::squeeze,          {none,      4,       6,    6,          6,            none}},
    {solver_id::sgn_pure,         {none,      none,    none, none,       none,         7}},
    {solver_id::sgn,              {none,      none,    7,    7,          7,            8}},
    {solver_id::numeric_calc,     {6,         none,    8,    8,          8,            9}},
    {solver_id::domain_type,      {7,         6,       9,    9,          9,            10}},
    {solver_id::const_type,       {8,         7,       10,   10,         10,           11}},
});
// clang-format on

struct column {
  std::array<premise_solver, rows.size()> list{};
  std::size_t count = 0;
};

consteval column column_of(std::size_t table) {
  column out;
  for (const row& r : rows) {
    const int place = r.place[table];
    if (place != none) {
      const auto at = static_cast<std::size_t>(place < 0 ? -place : place) - 1;
      out.list[at] = {r.solver, place > 0};
      out.count = std::max(out.count, at + 1);
    }
  }
  return out;
}

inline constexpr std::array<column, side_table_count> columns = {column_of(0), column_of(1), column_of(2),
                                                                 column_of(3), column_of(4), column_of(5)};

}  // namespace side_solvers_detail

// The solvers of a table in their order of trial.
constexpr std::span<const premise_solver> solvers_of(side_table table) {
  const auto& column = side_solvers_detail::columns[static_cast<std::size_t>(table)];
  return std::span(column.list).first(column.count);
}

}  // namespace vetro

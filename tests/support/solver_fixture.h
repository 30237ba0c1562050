// Formulas, assumptions and printed results for the tests of solvers.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "qv_solver_list/solver_list.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"
#include "term/print/pretty.h"
#include "term/state.h"

namespace vetro {

struct solver_case {
  std::initializer_list<std::string_view> assumed;
  std::string_view goal;
};

// A test of solvers starts with an empty store and zeroed counters.
class solver_test : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
    install_solvers(solver_registry());
  }

  static term_ptr read(std::string_view text) {
    term_ptr t = parse_semantic_term_from_str(text);
    EXPECT_NE(t, nullptr) << text;
    return t;
  }

  static solve_data given(std::initializer_list<std::string_view> assumptions) {
    solve_data sdata;
    for (const std::string_view text : assumptions) {
      sdata.assum.push_back(read(text));
    }
    return sdata;
  }

  // Each goal has that answer under the assumptions as they are written, without enrichment.
  static void expect(solver_decide solve, bool proved, std::initializer_list<solver_case> cases) {
    for (const solver_case& c : cases) {
      std::string assumed;
      for (const std::string_view text : c.assumed) {
        assumed += std::string(text) + ", ";
      }
      EXPECT_EQ(solve(read(c.goal), given(c.assumed)), proved) << assumed << "|- " << c.goal;
    }
  }

  // The variable of that name and number.
  static term_ptr numbered(std::string name, int number) {
    name += std::to_string(number);
    return mk_var(name);
  }

  static std::string shown(term_ptr t) { return t == nullptr ? "(null)" : print_term_to_string(t); }

  static std::string shown(term_span list) {
    std::string out;
    for (term_ptr t : list) {
      out += (out.empty() ? "" : "; ") + shown(t);
    }
    return out;
  }
};

}  // namespace vetro

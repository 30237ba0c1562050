// Holds docs/formula_language.md to its word: each row of its tables is read by the formula reader. The header of a
// table says what it promises: an internal form, a message, or that a text has two readings.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "qv_solver_list/solver_list.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"
#include "term/print/pretty.h"

namespace vetro {
namespace {

struct table_row {
  std::string header;
  std::string place;
  std::vector<std::string> cells;
};

// The texts between the backquotes of a cell.
std::vector<std::string> code_spans(const std::string& cell) {
  std::vector<std::string> spans;
  for (std::size_t open = cell.find('`'); open != std::string::npos;) {
    const std::size_t start = cell.find_first_not_of('`', open);
    const std::string quotes = cell.substr(open, start - open);
    const std::size_t end = cell.find(quotes, start);
    std::string text = cell.substr(start, end - start);
    if (text.size() > 2 && text.front() == ' ' && text.back() == ' ') {
      text = text.substr(1, text.size() - 2);
    }
    spans.push_back(text);
    open = cell.find('`', end + quotes.size());
  }
  return spans;
}

std::string code_span(const std::string& cell) {
  const std::vector<std::string> spans = code_spans(cell);
  return spans.empty() ? "" : spans.front();
}

// The cells between the bars of a table line; "\|" is a bar inside a cell.
std::vector<std::string> cells_of(const std::string& line) {
  std::vector<std::string> cells;
  std::string cell;
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '|') {
      cells.push_back(cell);
      cell.clear();
    } else if (line.compare(i, 2, "\\|") == 0) {
      cell += line[++i];
    } else {
      cell += line[i];
    }
  }
  return cells;
}

// The rows of all tables of a document, each with the header line of its table.
std::vector<table_row> read_tables(const std::string& name) {
  std::ifstream document(VETRO_DOCS_FOLDER "/" + name);
  EXPECT_TRUE(document) << name;
  std::vector<table_row> rows;
  std::string header;
  std::string line;
  bool inside = false;
  for (int number = 1; std::getline(document, line); ++number) {
    if (line.empty() || line.front() != '|') {
      inside = false;
    } else if (!inside) {
      inside = true;
      header = line;
    } else if (line.rfind("|---", 0) != 0) {
      rows.push_back({header, name + ":" + std::to_string(number), cells_of(line)});
    }
  }
  return rows;
}

struct reading {
  term_ptr formula;
  std::string messages;
};

reading read(const std::string& text) {
  testing::internal::CaptureStderr();
  const term_ptr formula = parse_semantic_term_from_str(text);
  return {formula, testing::internal::GetCapturedStderr()};
}

using row_cells = std::vector<std::string>;

void check_internal_form(const row_cells& cells) {
  const reading result = read(code_span(cells[0]));
  ASSERT_NE(result.formula, nullptr) << result.messages;
  std::string printed;
  print_term_internal(printed, result.formula);
  EXPECT_EQ(printed, code_span(cells[1]));
}

void check_arguments(const row_cells& cells) { check_internal_form({cells[2], cells[3]}); }

void check_rejected(const row_cells& cells) {
  const reading result = read(code_span(cells[0]));
  EXPECT_EQ(result.formula, nullptr);
  EXPECT_NE(result.messages.find(code_span(cells[1])), std::string::npos) << result.messages;
  EXPECT_EQ(result.messages.find("syntax is ambiguous"), std::string::npos);
}

void check_ambiguous(const row_cells& cells) {
  const reading result = read(code_span(cells[0]));
  EXPECT_EQ(result.formula, nullptr);
  EXPECT_NE(result.messages.find(": syntax is ambiguous.\n"), std::string::npos) << result.messages;
  EXPECT_NE(read(code_span(cells[1])).formula, nullptr);
}

// A cell without code stands for all solvers, or for no assumptions.
void check_answer(const row_cells& cells) {
  solve_data sdata;
  for (const std::string& text : code_spans(cells[1])) {
    sdata.assum.push_back(read(text).formula);
    ASSERT_NE(sdata.assum.back(), nullptr) << text;
  }
  const reading goal = read(code_span(cells[2]));
  ASSERT_NE(goal.formula, nullptr) << goal.messages;
  const std::string& answer = cells[3];
  ASSERT_TRUE(answer == " proved " || answer == " not proved ") << answer;
  testing::internal::CaptureStdout();
  const bool proved = solver_manager_dsl_with_solver(goal.formula, sdata, 2, code_span(cells[0]));
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(proved, answer == " proved ");
}

struct promise {
  std::string_view header;
  std::size_t columns;
  void (*check)(const row_cells& cells);
  int rows = 0;
};

TEST(documents, tables_tell_the_truth) {
  match_init(read_pattern);
  install_solvers(solver_registry());
  promise promises[] = {{"| Text | Internal form |", 2, check_internal_form},
                        {"| Operator | Arguments | Text | Internal form |", 4, check_arguments},
                        {"| Rejected text | Message |", 2, check_rejected},
                        {"| Ambiguous text | What decides |", 2, check_ambiguous},
                        {"| Solver | Assumptions | Goal | Answer |", 4, check_answer}};
  for (const char* document : {"cookbook.md", "formula_language.md", "solvers.md", "trust.md"}) {
    for (const table_row& row : read_tables(document)) {
      for (promise& kept : promises) {
        if (row.header == kept.header) {
          SCOPED_TRACE(row.place);
          ASSERT_EQ(row.cells.size(), kept.columns);
          kept.check(row.cells);
          ++kept.rows;
        }
      }
    }
  }
  for (const promise& kept : promises) {
    EXPECT_GT(kept.rows, 4) << "no table with the header " << kept.header;
  }
}

}  // namespace
}  // namespace vetro

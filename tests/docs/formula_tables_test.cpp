// Holds docs/formula_language.md to its word: each row of its tables is read by the formula reader. The header of a
// table says what it promises: an internal form, a message, or that a text has two readings.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "lib/semantic_term.h"
#include "term/print.h"

namespace vetro {
namespace {

struct table_row {
  std::string header;
  int line;
  std::vector<std::string> cells;
};

// The text between the backquotes of a cell's first code span, or nothing where there is none.
std::string code_span(const std::string& cell) {
  const std::size_t open = cell.find('`');
  if (open == std::string::npos) {
    return {};
  }
  const std::size_t start = cell.find_first_not_of('`', open);
  const std::string quotes = cell.substr(open, start - open);
  std::string text = cell.substr(start, cell.find(quotes, start) - start);
  if (text.size() > 2 && text.front() == ' ' && text.back() == ' ') {
    text = text.substr(1, text.size() - 2);
  }
  return text;
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

// The rows of all tables whose cells hold code, each with the header line of its table.
std::vector<table_row> read_tables() {
  std::ifstream document(VETRO_DOCS_FOLDER "/formula_language.md");
  EXPECT_TRUE(document);
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
      rows.push_back({header, number, cells_of(line)});
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

void check_internal_form(const std::string& text, const std::string& shown) {
  const reading result = read(text);
  ASSERT_NE(result.formula, nullptr) << result.messages;
  std::string printed;
  print_term_internal(printed, result.formula);
  EXPECT_EQ(printed, shown);
}

void check_rejected(const std::string& text, const std::string& message) {
  const reading result = read(text);
  EXPECT_EQ(result.formula, nullptr);
  EXPECT_NE(result.messages.find(message), std::string::npos) << result.messages;
  EXPECT_EQ(result.messages.find("syntax is ambiguous"), std::string::npos);
}

void check_ambiguous(const std::string& text, const std::string& decided) {
  const reading result = read(text);
  EXPECT_EQ(result.formula, nullptr);
  EXPECT_NE(result.messages.find(": syntax is ambiguous.\n"), std::string::npos) << result.messages;
  EXPECT_NE(read(decided).formula, nullptr) << decided;
}

struct promise {
  std::string_view header;
  void (*check)(const std::string& text, const std::string& shown);
  int rows = 0;
};

TEST(FormulaLanguage, TablesTellTheTruth) {
  promise promises[] = {{"| Text | Internal form |", check_internal_form},
                        {"| Rejected text | Message |", check_rejected},
                        {"| Ambiguous text | What decides |", check_ambiguous}};
  for (const table_row& row : read_tables()) {
    for (promise& kept : promises) {
      if (row.header == kept.header) {
        SCOPED_TRACE("line " + std::to_string(row.line));
        ASSERT_EQ(row.cells.size(), 2u);
        kept.check(code_span(row.cells[0]), code_span(row.cells[1]));
        ++kept.rows;
      }
    }
  }
  for (const promise& kept : promises) {
    EXPECT_GT(kept.rows, 4) << "no table with the header " << kept.header;
  }
}

}  // namespace
}  // namespace vetro

// The proof state: its file, its three states, its printed layouts; and the files and streams that carry it.
#include "lib/proof_gap.h"

#include <gtest/gtest.h>

#include <string>

#include "lib/line_reader.h"
#include "lib/log_stream.h"
#include "lib/proof_gap_parser.h"
#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "support/temporary_file.h"
#include "term/pattern_match.h"
#include "term/state.h"

namespace vetro {
namespace {

using std::string_literals::operator""s;

class proof_gap : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
  }
};

struct read_gap {
  std::optional<proof_gap_full> gap;
  std::string messages;
};

read_gap read_file(const std::string& path) {
  read_gap result;
  testing::internal::CaptureStderr();
  result.gap = parse_proof_gap(path);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

read_gap read_text(std::string_view text) { return read_file(temporary_file(text).path()); }

std::string printed(const proof_gap_full& gap) {
  std::string out;
  print_proof_gap_full(out, gap);
  return out;
}

TEST_F(proof_gap, assumption_lines) {
  const struct {
    const char* line;
    const char* formula;  // null where the format is wrong
  } rows[] = {
      {"1. x > 0", "x > 0"},
      {"hypothesis 3 . x > 0", "x > 0"},
      {"  hypothesis12...  . x > 0", "x > 0"},
      {"2 < x", "< x"},
      {"007x", "x"},
      {"1.\tx", "\tx"},
      {"x > 0", nullptr},
      {"hypothesis x > 0", nullptr},
      {"hypothesis", nullptr},
      {"Hypothesis 1. x", nullptr},
      {"hypothesis hypothesis 1. x", nullptr},
      {"  ", nullptr},
      {"1", nullptr},
      {"1. . ", nullptr},
  };
  for (const auto& row : rows) {
    const std::string_view line = row.line;
    const std::size_t start = parse_assumption_formula_start(line);
    if (row.formula == nullptr) {
      EXPECT_EQ(start, std::string_view::npos) << line;
    } else {
      ASSERT_LE(start, line.size()) << line;
      EXPECT_EQ(line.substr(start), row.formula);
    }
  }
}

TEST_F(proof_gap, sections_and_layout_read_back) {
  const read_gap read = read_text(
      "not read\n1. neither\nthe ASSUM: 1. x > 5 GOAL: here\n\nhypothesis 1. x > 0\n99. y = x + 1\n\n"
      "GOAL: z > 2\n\ny > 1\nx > 7\n");
  ASSERT_TRUE(read.gap);
  EXPECT_EQ(read.messages, "");
  EXPECT_EQ(printed(*read.gap), "ASSUM:\n1. x > 0\n2. y = x + 1\n\nGOAL:\ny > 1\n\nMETHOD:\n");
  EXPECT_EQ(read.gap->goal, parse_semantic_term_from_str("y > 1"));
  std::string internal;
  print_proof_gap_full_internal(internal, *read.gap);
  EXPECT_EQ(internal,
            "ASSUM:\nhypothesis 1. Gt(x, 0)\nhypothesis 2. Eq(y, Plus(x, 1))\n\nGOAL:\nGt(y, 1)\n\nMethod:\n");

  const read_gap again = read_text(printed(*read.gap));
  ASSERT_TRUE(again.gap);
  EXPECT_EQ(again.gap->assum, read.gap->assum);
  EXPECT_EQ(again.gap->goal, read.gap->goal);
}

TEST_F(proof_gap, the_first_goal_line_counts) {
  const char* texts[] = {
      "GOAL:\nx > 1\n",
      "GOAL:\nx > 1\nx + + 2\n",
      "GOAL:\nx > 1\nGOAL:\nx > 2\n",
      "ASSUM:\nGOAL:\nx > 1",
      "ASSUM:\r\n\r\nGOAL:\r\n\r\nx > 1\r\n",
  };
  for (const char* text : texts) {
    const read_gap read = read_text(text);
    ASSERT_TRUE(read.gap) << text;
    EXPECT_EQ(read.gap->assu_num(), 0);
    EXPECT_EQ(read.gap->goal, parse_semantic_term_from_str("x > 1"));
  }
  // The assumptions may come last.
  const read_gap turned = read_text("GOAL:\nx > 1\nASSUM:\n1. x > 2\n");
  ASSERT_TRUE(turned.gap);
  EXPECT_EQ(turned.gap->assu_num(), 1);
}

TEST_F(proof_gap, every_bad_line_is_reported) {
  const read_gap read = read_text("ASSUM:\n1. x >\nx > 0\n  \n2. y > 0\nGOAL:\nx +\n");
  EXPECT_FALSE(read.gap);
  for (const char* message : {"Error: Parse failed for: x >\n", "Error: Invalid assumption format: x > 0\n",
                              "Error: Invalid assumption format:   \n", "Error: Goal parse failed: x +\n"}) {
    EXPECT_NE(read.messages.find(message), std::string::npos) << message;
  }
  EXPECT_EQ(read.messages.find("y > 0"), std::string::npos);
  // Files with either line end read alike, bad lines included.
  EXPECT_EQ(read_text("ASSUM:\r\nx > 0\r\n").messages, read_text("ASSUM:\nx > 0\n").messages);
}

TEST_F(proof_gap, files_without_a_gap) {
  for (const std::string& text : {std::string(), std::string("\n\n"), std::string("ASSUM:\n1. x > 0\n"),
                                  std::string("GOAL:\n"), "\0\0\xff\xfe binary\n\0"s, std::string(5'000'000, 'x')}) {
    const read_gap read = read_text(text);
    EXPECT_FALSE(read.gap);
    EXPECT_EQ(read.messages, "");
  }
  for (const char* path : {"/no/such/file", "/tmp", ""}) {
    const read_gap read = read_file(path);
    EXPECT_FALSE(read.gap);
    EXPECT_TRUE(read.messages.starts_with("File open failed: ")) << read.messages;
  }
  const read_gap nul = read_text("ASSUM:\n1. x\0y > 0\nGOAL:\nx > 0\n"s);
  EXPECT_FALSE(nul.gap);
  EXPECT_NE(nul.messages.find("Error: Parse failed for: x\0y > 0\n"s), std::string::npos);
}

TEST_F(proof_gap, states) {
  proof_gap_full gap;
  proof_gap_full_mark_finished(gap);
  EXPECT_FALSE(gap.finished);
  EXPECT_FALSE(proof_gap_full_is_finished(gap));
  EXPECT_FALSE(proof_gap_full_is_pending(gap));

  gap.goal = parse_semantic_term_from_str("x > 0");
  EXPECT_TRUE(proof_gap_full_is_pending(gap));
  EXPECT_EQ(printed(gap), "ASSUM:\n\nGOAL:\nx > 0\n\nMETHOD:\n");
  proof_gap_full_mark_finished(gap);
  EXPECT_TRUE(proof_gap_full_is_finished(gap));
  EXPECT_FALSE(proof_gap_full_is_pending(gap));
  gap.meth_list = {{Knowledge, "a"}, {Knowledge, "b"}};
  EXPECT_EQ(printed(gap), "ASSUM:\n\nGOAL:\n[finished]\n\n\nMETHOD:\n[@method a @][@method b @]");
  proof_gap_full_mark_unfinished(gap);
  EXPECT_TRUE(proof_gap_full_is_pending(gap));
}

TEST_F(proof_gap, hypothesis_numbers) {
  proof_gap_full gap;
  add_assumption(gap, mk_integer(1));
  add_assumption(gap, mk_integer(2));
  EXPECT_EQ(gap.hypothesis(1), mk_integer(1));
  EXPECT_EQ(gap.hypothesis(2), mk_integer(2));
  for (const std::int64_t number : {std::int64_t{0}, std::int64_t{3}, std::int64_t{-1}, (std::int64_t{1} << 32) + 1}) {
    EXPECT_EQ(gap.hypothesis(number), nullptr);
  }
}

TEST(line_reader, keeps_every_byte) {
  const temporary_file file("a\0b\n\r\nlong: "s + std::string(100'000, 'x') + "\nlast\r");
  std::FILE* stream = std::fopen(file.path().c_str(), "r");
  std::string line;
  ASSERT_EQ(qv_read_line(stream, line), line_status::line);
  EXPECT_EQ(line, "a\0b\n"s);
  ASSERT_EQ(qv_read_line(stream, line), line_status::line);
  EXPECT_EQ(line, "\r\n");
  EXPECT_EQ(without_line_end(line), "");
  ASSERT_EQ(qv_read_line(stream, line), line_status::line);
  EXPECT_EQ(line.size(), 100'007U);
  ASSERT_EQ(qv_read_line(stream, line), line_status::line);
  EXPECT_EQ(without_line_end(line), "last");
  EXPECT_EQ(qv_read_line(stream, line), line_status::end);
  std::fclose(stream);

  stream = std::fopen("/tmp", "r");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(qv_read_line(stream, line), line_status::failed);
  std::fclose(stream);
}

TEST(log_stream, writes_everything_or_says_so) {
  const temporary_file file("old text");
  const std::string large(100'000, 'x');
  {
    log_stream log;
    ASSERT_TRUE(log.open(file.path()));
    log.print("%s %d", large.c_str(), 7);
    log.write("\n");
    EXPECT_TRUE(log.close());
    EXPECT_TRUE(log.close());
  }
  std::FILE* stream = std::fopen(file.path().c_str(), "r");
  std::string line;
  EXPECT_EQ(qv_read_line(stream, line), line_status::line);
  EXPECT_EQ(line, large + " 7\n");
  EXPECT_EQ(qv_read_line(stream, line), line_status::end);
  std::fclose(stream);

  log_stream full;
  ASSERT_TRUE(full.open("/dev/full"));
  full.write("lost");
  EXPECT_FALSE(full.close());
  ASSERT_TRUE(full.open(file.path())) << "a new file starts without old failures";
  EXPECT_TRUE(full.close());
  EXPECT_FALSE(full.open("/no/such/folder/log"));

  std::string text;
  log_stream memory(&text);
  memory.print("%d", 1);
  memory.write("2");
  EXPECT_EQ(text, "12");
  EXPECT_EQ(format_text("%s-%d", large.c_str(), 3), large + "-3");
}

}  // namespace
}  // namespace vetro

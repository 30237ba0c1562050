// Theorem libraries: headers and formulas of the file, lookups by number and by name, external libraries, bad files.
#include "lib/thm_lib.h"

#include <gtest/gtest.h>

#include <string>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "support/temporary_file.h"
#include "term/pattern_match.h"
#include "term/state.h"

namespace vetro {
namespace {

using std::string_literals::operator""s;

class theorem_library : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
  }
};

struct parsed {
  thm_lib lib;
  std::string messages;
};

parsed parse(std::string_view text) {
  parsed result;
  testing::internal::CaptureStderr();
  thm_lib_parse(text, result.lib);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

// The only theorem of a text whose header is given; an empty name when there is none.
theorem only_theorem(const std::string& header) {
  const parsed result = parse(header + "\nx > 0\n");
  return result.lib.table.empty() ? theorem{} : result.lib.table.begin()->second;
}

TEST_F(theorem_library, formulas_reach_to_the_next_header) {
  const parsed result = parse(
      "ignored\nThm 5. (sum) all of this is ignored\n  x > 0 ∧\r\n\n\ty > 0  \nThm 1. (one)\nx > 1\n"
      "Thm 2. (no formula at the end)\n");
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.lib.num, 5);
  EXPECT_EQ(result.lib.table.size(), 2U);
  EXPECT_EQ(thm_lib_find_by_id(&result.lib, 5)->content(), parse_semantic_term_from_str("x > 0 ∧ y > 0"));
  EXPECT_EQ(thm_lib_find_by_id(&result.lib, 5)->name, "sum");
  EXPECT_EQ(thm_lib_find_by_id(&result.lib, 1)->content(), parse_semantic_term_from_str("x > 1"));
  for (const std::int64_t id :
       {std::int64_t{2}, std::int64_t{0}, std::int64_t{-1}, std::int64_t{6}, (std::int64_t{1} << 32) + 1}) {
    EXPECT_EQ(thm_lib_find_by_id(&result.lib, id), nullptr) << id;
  }
  EXPECT_EQ(thm_lib_find_by_id(nullptr, 1), nullptr);
}

TEST_F(theorem_library, headers) {
  EXPECT_EQ(only_theorem("  Thm   12.(a b").name, "a b") << "white space is free, and nobody looks for the end";
  EXPECT_EQ(only_theorem("Thm +7. (a(b)c)").id, 7);
  EXPECT_EQ(only_theorem("Thm +7. (a(b)c)").name, "a(b");
  EXPECT_EQ(only_theorem("Thm 007. ( )").name, " ");
  EXPECT_EQ(only_theorem("Thm 1. (" + std::string(300, 'n') + ")").name, std::string(255, 'n'));
  EXPECT_EQ(only_theorem("Thm 2147483647. (a)").id, 2147483647);
  // Numbers that no theorem has are no error and name no other theorem.
  for (const char* number : {"0", "-3", "2147483648", "4294967297", "99999999999999999999999"}) {
    const parsed result = parse("Thm " + std::string(number) + ". (a)\nx > 0\n");
    EXPECT_EQ(result.messages, "") << number;
    EXPECT_TRUE(result.lib.table.empty()) << number;
    EXPECT_EQ(result.lib.num, 0);
  }
  for (const char* header :
       {"Thm 1 (a)", "Thm 1.", "Thm 1. a", "Thm 1. ()", "Thm x. (a)", "Thm . (a)", "Thm - 1. (a)", "Thm 1 . (a)"}) {
    const parsed result =
        parse("Thm 9. (before)\nx > 0\n" + std::string(header) + " \nnot read (\nThm 2. (b)\nx > 0\n");
    EXPECT_EQ(result.messages, "Error: Wrong Format: " + std::string(header) + "\n");
    EXPECT_EQ(result.lib.table.size(), 2U) << header;
  }
  EXPECT_TRUE(parse("Thm\n1. (a)\nThm\t1. (a)\nx > 0\n").lib.table.empty()) << "no header without the blank";
}

TEST_F(theorem_library, bad_formulas_are_left_out) {
  const parsed result = parse("Thm 1. (bad)\nx +\nThm 2. (empty)\nThm 3. (good)\nx > 0\n");
  EXPECT_NE(result.messages, "");
  EXPECT_EQ(result.lib.table.size(), 1U);
  EXPECT_EQ(result.lib.num, 3);
  EXPECT_TRUE(parse("").lib.table.empty());
  EXPECT_EQ(parse("\0Thm\n\xff\xfe(\n"s).messages, "");
}

TEST_F(theorem_library, names) {
  thm_lib lib = parse("Thm 1. (a)\nx > 1\nThm 2. (b)\nx > 2\nThm 3. (a)\nx > 3\n").lib;
  int matches = -1;
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "b", &matches)->id, 2);
  EXPECT_EQ(matches, 1);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "a", &matches), nullptr);
  EXPECT_EQ(matches, 2);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "B", &matches), nullptr);
  EXPECT_EQ(matches, 0);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "", &matches), nullptr);
  EXPECT_EQ(matches, 0);

  // A theorem that is replaced loses its name, too.
  thm_lib_add({3, "c", mk_integer(3)}, lib);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "a", &matches)->id, 1);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "c", &matches)->content(), mk_integer(3));
  thm_lib_add({2, "b", mk_integer(2)}, lib);
  EXPECT_EQ(thm_lib_find_unique_by_name(&lib, "b", &matches)->content(), mk_integer(2));
  EXPECT_EQ(lib.num, 3);
}

struct loaded {
  std::unique_ptr<thm_lib> lib;
  std::string messages;
};

loaded load(const FileConfig& config) {
  loaded result;
  testing::internal::CaptureStderr();
  result.lib = thm_lib_load_from_config(config);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

TEST_F(theorem_library, external_libraries) {
  const temporary_file main("Thm 1. (m)\nx > 1\n");
  const temporary_file first("Thm 1. (f)\nx > 2\nThm 4. (m)\nx > 4\n");
  const temporary_file second("Thm 1. (s)\nx > 3\n");
  FileConfig config;
  config.theorem_library.lib_index_file = main.path();
  add_external_theorem_library(config, "first", first.path());
  add_external_theorem_library(config, "main", second.path());
  const loaded result = load(config);
  ASSERT_NE(result.lib, nullptr);
  const thm_lib* lib = result.lib.get();
  EXPECT_EQ(thm_lib_find_by_ref(lib, "", 1)->name, "m");
  EXPECT_EQ(thm_lib_find_by_ref(lib, "main", 1)->name, "m") << "an external library called main is out of reach";
  EXPECT_EQ(thm_lib_find_by_ref(lib, "first", 1)->name, "f");
  EXPECT_EQ(thm_lib_find_by_ref(lib, "", 4), nullptr);
  EXPECT_EQ(thm_lib_find_by_ref(lib, "other", 1), nullptr);
  int matches = -1;
  EXPECT_EQ(thm_lib_find_unique_by_name_ref(lib, "first", "m", &matches)->id, 4);
  EXPECT_EQ(thm_lib_find_unique_by_name_ref(lib, "other", "m", &matches), nullptr);
  EXPECT_EQ(matches, 0);

  thm_lib changed = parse("").lib;
  EXPECT_TRUE(thm_lib_add_external_from_file(changed, "a", first.path()));
  EXPECT_TRUE(thm_lib_add_external_from_file(changed, "a", second.path()));
  EXPECT_EQ(changed.external_libs.size(), 1U);
  EXPECT_EQ(thm_lib_find_by_ref(&changed, "a", 1)->name, "s");
  EXPECT_FALSE(thm_lib_add_external_from_file(changed, "", first.path()));
}

TEST_F(theorem_library, unreadable_files) {
  FileConfig config;
  EXPECT_EQ(load(config).lib, nullptr);
  EXPECT_EQ(load(config).messages, "");
  for (const char* path : {"/no/such/file", "/tmp"}) {
    config.theorem_library.lib_index_file = path;
    const loaded result = load(config);
    EXPECT_EQ(result.lib, nullptr);
    EXPECT_TRUE(result.messages.starts_with("Error Opening File: ")) << result.messages;
  }
  const temporary_file empty("");
  config.theorem_library.lib_index_file = empty.path();
  EXPECT_NE(load(config).lib, nullptr);
  add_external_theorem_library(config, "bad", "/no/such/file");
  const loaded result = load(config);
  EXPECT_EQ(result.lib, nullptr);
  EXPECT_TRUE(result.messages.ends_with("Error: failed to load external theorem library @bad from /no/such/file\n"));
}

}  // namespace
}  // namespace vetro

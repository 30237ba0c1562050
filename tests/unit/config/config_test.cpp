// The configuration file: sections, keys and values, the two passes, joined paths, external libraries, bad files.
#include <gtest/gtest.h>

#include <string>

#include "config/config_load.h"
#include "support/temporary_file.h"

namespace vetro {
namespace {

struct loaded {
  bool good = false;
  FileConfig config;
  std::string messages;
};

loaded load(const char* path) {
  loaded result;
  testing::internal::CaptureStderr();
  result.good = parse_config(path, result.config);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

loaded load_text(std::string_view text) { return load(temporary_file(text).path().c_str()); }

// The settings of a text whose root is /r.
FileConfig config_of(const std::string& settings) {
  const loaded result = load_text("[ROOT_PATH]\nROOT_PATH=/r\n" + settings);
  EXPECT_TRUE(result.good);
  EXPECT_EQ(result.messages, "");
  return result.config;
}

config_text error_log(const std::string& lines) { return config_of("[DSL_RESPONSES]\n" + lines).dsl_responses.err_log; }

TEST(config, every_key_reaches_its_own_field) {
  const FileConfig config = config_of(
      "[THEOREM_LIBRARY]\nTHMEOREM_LIB_SET = lib\n"
      "[LLM_RESPONSES]\nTHEOREM_SELECT_COT=a\nTHEOREM_SELECT_FAST=b\nEXISTS_SELECT=c\n"
      "[DISPLAY_FILE]\nLOG_FILE=d\nQV_LIST_INFO=e\nQV_SOLVE_INFO=f\nQV_OUTPUT=g\n"
      "[DSL_RESPONSES]\nDSL_ERROR_LOG=h\nDSL_EXECUTE_LOG=i\n"
      "[QV_GEN]\nQV_GEN_DIR=j\n"
      "[LLM_QUERY]\nBASE_DIR=k\nPROOF_GAP=l\nPROGRAM_DIR=m\n"
      "[DSL_QUERY]\nBASE_DIR=n\nPROOF_GAP=o\nQUERY=p\nDSL_COMMANDS=q\n"
      "[DSL_PROCESS]\nPROOF_GAP=early\nBASE_DIR=s\nCOMMANDS=u\n"
      "[EXISTS_QUERY.PROGRAMS]\nMERGE_PROMPT=v\nQUERY=w\n"
      "[THEOREM_SELECT_COT.PROGRAMS]\nMERGE_PROMPT=x\nQUERY=y\nPOSTPROCESS=z\n"
      "[THEOREM_SELECT_FAST.PROGRAMS]\nMERGE_PROMPT=A\nQUERY=/B\n");
  EXPECT_EQ(config.root_dir, "/r");
  EXPECT_EQ(config.theorem_library.lib_index_file, "/r/lib");
  EXPECT_EQ(config.llm_responses.theorem_select_cot, "/r/a");
  EXPECT_EQ(config.llm_responses.theorem_select_fast, "/r/b");
  EXPECT_EQ(config.llm_responses.exists_select, "/r/c");
  EXPECT_EQ(config.display_file.log_file, "/r/d");
  EXPECT_EQ(config.display_file.qv_list_info, "/r/e");
  EXPECT_EQ(config.display_file.qv_solve_info, "/r/f");
  EXPECT_EQ(config.display_file.qv_output, "/r/g");
  EXPECT_EQ(config.display_file.nfl_file, std::nullopt);
  EXPECT_EQ(config.dsl_responses.err_log, "/r/h");
  EXPECT_EQ(config.dsl_responses.execute_log, "/r/i");
  EXPECT_EQ(config.qv_gen.qv_gen_dir, "/r/j");
  EXPECT_EQ(config.llm_query.base_dir, "/r/k");
  EXPECT_EQ(config.llm_query.proof_gap, "/r/l");
  EXPECT_EQ(config.llm_query.program_dir, "/r/m");
  EXPECT_EQ(config.dsl_query.base_dir, "/r/n");
  EXPECT_EQ(config.dsl_query.proof_gap, "/r/o");
  EXPECT_EQ(config.dsl_query.query_program, "/r/p");
  EXPECT_EQ(config.dsl_query.commands, "/r/q");
  EXPECT_EQ(config.dsl_process.base_dir, "/r/s");
  EXPECT_EQ(config.dsl_process.proof_gap, std::nullopt) << "it stands before its base";
  EXPECT_EQ(config.dsl_process.commands, "/r/s/u");
  EXPECT_EQ(config.programs.exists.merge_prompt, "v");
  EXPECT_EQ(config.programs.exists.query, "w");
  EXPECT_EQ(config.programs.theorem_cot.merge_prompt, "x");
  EXPECT_EQ(config.programs.theorem_cot.query, "y");
  EXPECT_EQ(config.programs.theorem_cot.postprocess, "z");
  EXPECT_EQ(config.programs.theorem_fast.merge_prompt, "A");
  EXPECT_EQ(config.programs.theorem_fast.query, "/B");
}

TEST(config, lines) {
  EXPECT_EQ(error_log("  DSL_ERROR_LOG  =  a b = c ; d  \n"), "/r/a b = c ; d");
  EXPECT_EQ(error_log("DSL_ERROR_LOG=first\nDSL_ERROR_LOG=last"), "/r/last") << "also without a line end";
  EXPECT_EQ(error_log("DSL_ERROR_LOG=kept\nDSL_ERROR_LOG=\nDSL_ERROR_LOG\n;DSL_ERROR_LOG=x\n"), "/r/kept");
  EXPECT_EQ(error_log("DSL_ERROR_LOG=\ta\n"), "/r/\ta") << "a tab is no white space";
  EXPECT_EQ(error_log("DSL_ERROR_LOG\t=a\n"), std::nullopt);
  EXPECT_EQ(error_log("DSL_ERROR_LOG=a=\n"), "/r/a=");
  EXPECT_EQ(error_log("[no end of section\nDSL_ERROR_LOG=a\n"), "/r/a") << "the section stays";
  EXPECT_EQ(error_log("[OTHER]\nDSL_ERROR_LOG=a\n"), std::nullopt);
  EXPECT_EQ(error_log("[OTHER]\n[  DSL_RESPONSES ] ]x\nDSL_ERROR_LOG=a\n"), "/r/a");
  EXPECT_EQ(error_log("dsl_error_log=a\n"), std::nullopt);
  EXPECT_EQ(config_of("[THEOREM_LIBRARY]\nTHEOREM_LIB_SET=a\n").theorem_library.lib_index_file, std::nullopt);
}

TEST(config, carriage_returns_belong_to_the_line_end) {
  const loaded twin = load_text("[ROOT_PATH]\r\nROOT_PATH=/r\r\n\r\n[DSL_RESPONSES]\r\nDSL_ERROR_LOG=a\r\n");
  EXPECT_TRUE(twin.good);
  EXPECT_EQ(twin.config.root_dir, "/r");
  EXPECT_EQ(twin.config.dsl_responses.err_log, "/r/a");
}

// A line is read in pieces of 511 bytes; each is a line of its own.
TEST(config, long_lines_are_read_in_pieces) {
  const std::string key = "DSL_ERROR_LOG=";
  const std::string fits = key + std::string(511 - key.size(), 'a');
  for (const char* end : {"\n", "\r\n"}) {
    SCOPED_TRACE(end);
    EXPECT_EQ(error_log(fits + end)->size(), 259U);
    EXPECT_EQ(error_log(fits + key + "b" + end), "/r/b");
    EXPECT_EQ(error_log(std::string(510, ' ') + key + "b" + end), std::nullopt);
    EXPECT_EQ(error_log(std::string(511, ';') + key + "b" + end), "/r/b");
  }
}

TEST(config, root) {
  const loaded last = load_text("ROOT_PATH=/0\n[ROOT_PATH]\nROOT_PATH=/a\nROOT_PATH= /b = c\n[X]\nROOT_PATH=/d\n");
  EXPECT_TRUE(last.good);
  EXPECT_EQ(last.config.root_dir, "/b") << "in its own section, the last one, up to the next =";

  // The root may stand behind what is joined to it.
  EXPECT_EQ(load_text("[QV_GEN]\nQV_GEN_DIR=q\n[ROOT_PATH]\nROOT_PATH=/z/\n").config.qv_gen.qv_gen_dir, "/z/q");
  EXPECT_EQ(load_text("[ROOT_PATH]\nROOT_PATH= \n[QV_GEN]\nQV_GEN_DIR=q\n").config.qv_gen.qv_gen_dir, "q");

  using std::string_view_literals::operator""sv;
  for (const std::string_view without :
       {""sv, "[ROOT_PATH]\n"sv, "[ROOT_PATH]\nROOT_PATH=\n"sv, "ROOT_PATH=/a\n"sv, "\0\xff\x01[\n\0=\0"sv}) {
    const loaded result = load_text(without);
    EXPECT_FALSE(result.good);
    EXPECT_EQ(result.messages, "Error: ROOT_PATH not found in config\n");
  }
}

TEST(config, files_that_cannot_be_read) {
  for (const char* path : {static_cast<const char*>(nullptr), "/no/such/file", "/tmp", ""}) {
    const loaded result = load(path);
    EXPECT_FALSE(result.good);
    EXPECT_TRUE(result.messages.starts_with("Error opening file: ")) << result.messages;
  }
}

TEST(config, join_path) {
  EXPECT_EQ(join_path("/data/run", "logs/err.txt"), "/data/run/logs/err.txt");
  EXPECT_EQ(join_path("/data/run/", "logs"), "/data/run/logs");
  EXPECT_EQ(join_path("", "logs"), "logs");
  EXPECT_EQ(join_path("/data", "/logs"), "/logs");
  EXPECT_EQ(join_path("/data", "C:\\logs"), "/data/C:\\logs");
  EXPECT_EQ(join_path("/d", std::string(256, 'x')), "/d/" + std::string(256, 'x'));
  EXPECT_EQ(join_path("/d", std::string(257, 'x')), "/d/" + std::string(256, 'x'));
  EXPECT_EQ(join_path("/d", "/" + std::string(300, 'x')).size(), 301U) << "a copied path is not cut";
}

TEST(config, external_libraries_keep_the_order_of_first_appearance) {
  const FileConfig config = config_of(
      "[THEOREM_LIBRARY]\nEXTERNAL_LIB_one=1\nEXTERNAL_LIB_=none\nEXTERNAL_LIB_two=2\nexternal_lib_three=3\n"
      "[EXTERNAL_THEOREM_LIBS]\nfour=/4\none=5\n=6\nEXTERNAL_LIB_two=7\n");
  const auto& libraries = config.theorem_library.external_libs;
  ASSERT_EQ(libraries.size(), 4U);
  EXPECT_EQ(libraries[0].alias + " " + libraries[0].path, "one /r/5");
  EXPECT_EQ(libraries[1].alias + " " + libraries[1].path, "two /r/2");
  EXPECT_EQ(libraries[2].alias + " " + libraries[2].path, "four /4");
  EXPECT_EQ(libraries[3].alias + " " + libraries[3].path, "EXTERNAL_LIB_two /r/7");

  FileConfig other;
  EXPECT_FALSE(add_external_theorem_library(other, "", "path"));
  EXPECT_FALSE(add_external_theorem_library(other, "alias", ""));
  EXPECT_TRUE(other.theorem_library.external_libs.empty());
}

}  // namespace
}  // namespace vetro

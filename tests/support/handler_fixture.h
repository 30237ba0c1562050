// Instructions, written as in a script, carried out one after the other on a gap.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "lib/dsl_parser.h"
#include "lib/thm_lib.h"
#include "qv_solver_list/solver_registry.h"
#include "support/run_fixture.h"
#include "term/print/pretty.h"

namespace vetro::test {

// What one step came to. The error text is what this step wrote to the error log.
struct outcome {
  dsl_exe_code flag = exe_fail;
  std::string error;
  dsl_redundant_result redundant = redundant_ignore;

  bool operator==(const outcome&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const outcome& o) {
    return out << "flag " << o.flag << ", redundant " << int{o.redundant} << ", error log: " << o.error;
  }
};

inline outcome failed(std::string error, dsl_redundant_result redundant = redundant_ignore) {
  return {exe_fail, std::move(error), redundant};
}
inline const outcome success{exe_success, "", redundant_ignore};
inline const outcome strong_success{exe_success, "", redundant_success};

class script_run : public run {
 public:
  explicit script_run(proof_gap_full start, dsl_execute_mode mode = fast_mode, std::string_view library = "")
      : run(std::move(start), mode) {
    install_solvers(solver_registry());
    thm_lib_parse(library, lib);
    data.thmlib = &lib;
  }

  // One instruction. A formula that does not parse leaves its lines on standard error, which the tests do not look at.
  outcome step(std::string text) {
    testing::internal::CaptureStderr();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(text.data(), text.size(), "rb"), &std::fclose);
    dsl_parser_error error;
    const auto list = parse_dsl_instructions(file.get(), &error);
    outcome result;
    if (!list || list->size() != 1) {
      ADD_FAILURE() << "no instruction: " << text;
    } else {
      error_text.clear();
      result.flag = execute(*list);
      result.error = error_text;
      result.redundant = data.summary.steps.back().redundant_flag;
    }
    testing::internal::GetCapturedStderr();
    return result;
  }

  std::string goal() const { return gap.goal == nullptr ? "(none)" : print_term_to_string(gap.goal); }
  std::string hypothesis(int number) const { return print_term_to_string(gap.hypothesis(number)); }

  thm_lib lib;
};

inline std::string read_and_printed(std::string_view text) { return print_term_to_string(formula(text)); }

}  // namespace vetro::test

// Runs one proof in this process and says what became of it.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "check/report.h"
#include "check/task.h"
#include "lib/thm_lib.h"

namespace vetro {

struct examine_settings {
  bool explain = false;
  bool times = false;
  bool pages = false;     // what pages show beside that: the gap, and formulas as MathML
  std::string logs = {};  // the folder for what vetro writes on each proof; empty: none
};

// The libraries of a run. That of the run is read once; others when a proof first asks for them.
class library_shelf {
 public:
  explicit library_shelf(const thm_lib* main) : main_(main) {}
  // Null when it cannot be read; an empty path is the library of the run.
  const thm_lib* find(const std::string& path);

 private:
  const thm_lib* main_;
  std::map<std::string, std::unique_ptr<thm_lib>> others_;
};

// The report on the proof. What a run leaves in the process and could show in the next one is put back behind it.
proof_report examine(const proof_task& task, library_shelf& libraries, const examine_settings& settings);

// A report on a proof whose process said nothing, or that has an input to blame.
proof_report report_without_run(const proof_task& task, outcome result, const char* code, std::string message);

}  // namespace vetro

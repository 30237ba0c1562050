// The engine: runs an instruction list against one proof gap and keeps a record of every step.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "diagnostics/diagnostics.h"
#include "dsl_interpreter/gap_texts.h"
#include "lib/dsl_ast.h"
#include "lib/log_stream.h"
#include "lib/proof_gap.h"
#include "lib/thm_lib.h"
#include "qv_solver_list/solver_list.h"

namespace vetro {

enum dsl_exe_code : int { exe_success = 0, exe_fail = 1, exe_gap_split = 2, exe_finish = 3 };
enum dsl_redundant_result : unsigned char { redundant_ignore = 0, redundant_fail = 1, redundant_success = 2 };
enum dsl_execute_mode : unsigned char { fast_mode = 0, debug_mode = 1, strong_check_mode = 2 };

// What a handler gives back. It starts as a failure and becomes a success only at the handler's very end.
struct dsl_result {
  dsl_redundant_result redundant_flag = redundant_ignore;
  dsl_exe_code flag = exe_fail;
};

// A gap at one moment of the run. Steps share it while the gap stays what it is.
using gap_snapshot = std::shared_ptr<const proof_gap_full>;

// One executed instruction. The instruction, which outlives the record, and the gaps are there only where the run keeps
// records to be read; without them no step counts as repeated, because only that reader is told.
struct dsl_execution_step {
  int step_index = 0;
  std::string step_id;
  dsl_type instruction_type{};
  dsl_exe_code result_flag = exe_fail;
  dsl_redundant_result redundant_flag = redundant_ignore;
  bool repeated_input = false;
  bool goal_changed = false;
  bool assumption_changed = false;
  std::size_t split_gap_count = 0;
  const char* effect_class = "";
  const dsl_instruction* instruction = nullptr;
  gap_snapshot gap_before;
  gap_snapshot gap_after;
};

// The different instructions of a run by their signatures. A text is written again where two hashes are equal, so that
// the record does not hold the whole script a second time.
class instruction_signatures {
 public:
  // False for an instruction whose signature is there already.
  bool insert(const dsl_instruction& inst);

 private:
  struct entry {
    const dsl_instruction* instruction;
    std::size_t hash;
    bool operator==(const entry& other) const;
  };
  struct entry_hash {
    std::size_t operator()(const entry& e) const { return e.hash; }
  };
  std::unordered_set<entry, entry_hash> known_;
};

struct dsl_execution_summary {
  std::vector<dsl_execution_step> steps;
  instruction_signatures signatures;  // of the steps, where records are kept
  std::size_t repeated_input_count = 0;
  dsl_exe_code final_code = exe_success;
};

// A proposition that was admitted without proof.
struct dsl_admit_obligation {
  term_ptr proposition = nullptr;
  proof_gap_full gap;  // the gap at the admit, with the proposition as goal; empty where gaps are not kept
  int source_line = 0;
  std::string step_id;
  std::int64_t hypothesis_num = 0;
};

struct dsl_execute_data {
  log_stream* err_log = nullptr;
  log_stream* execute_log = nullptr;
  const thm_lib* thmlib = nullptr;
  dsl_execute_mode mode = fast_mode;
  proof_gap_full* cur_gap = nullptr;  // changed in place by handlers, not owned
  bool goal_was_given_up = false;     // a rewritten hypothesis took the goal's place: what is proved is another goal
  std::vector<proof_gap_full> split_gaps;
  const dsl_instruction* inst = nullptr;
  bool print_internal = false;
  bool keep_records = false;         // fill the instructions and gaps of the step records
  std::shared_ptr<gap_texts> texts;  // shared with the runs of proof blocks; made when first needed
  int trace_depth = 0;
  std::string trace_prefix;  // parent step id, empty at top level
  std::string current_step_id;
  dsl_execution_summary summary;
  std::vector<dsl_admit_obligation> admits;
  bool keep_admit_gaps = true;  // only the result document reads the gaps of admitted propositions
};

// Longest step id; deeper ones are cut.
inline constexpr std::size_t step_id_size = 128;

dsl_execute_data dsl_execute_data_init(log_stream& execute_log, log_stream& err_log, const thm_lib* lib,
                                       dsl_execute_mode mode, proof_gap_full& gap);

// The run of a proof block inside the parent's current step: same logs, library and mode, one level deeper. It keeps no
// texts, because the steps of a block are reported to nobody.
dsl_execute_data dsl_nested_execute_data(const dsl_execute_data& parent, proof_gap_full& local_gap);

void dsl_execute_data_set_trace_parent(dsl_execute_data& data, const std::string& parent_step_id, int trace_depth);

// Runs the list until an instruction gives anything but exe_success. exe_success also when the list ends with the goal
// still open.
dsl_exe_code execute_instruction_list(dsl_execute_data& data, const dsl_instruction_list& list);

// Runs data.inst. Nothing when there is no handler for its type.
std::optional<dsl_result> execute_instruction(dsl_execute_data& data);

// The rendered gaps of the run.
gap_texts& dsl_gap_texts(dsl_execute_data& data);

// The internal text of an instruction without its line number: two instructions with the same signature are the same.
std::string instruction_signature_from_text(const std::string& text);

const char* effect_class_for_step(dsl_exe_code flag, bool goal_changed);

// A solve_data of all assumptions, or of the listed hypotheses by their numbers. The second gives false when a number
// is out of range, after a line in the error log.
solve_data dsl_data_to_solve_data_all(const dsl_execute_data& data);
bool dsl_data_to_solve_data(const dsl_execute_data& data, const dsl_term_list& hlist, solve_data& sdata);

term_ptr dsl_prepare_term_for_substitution(term_ptr t);
term_ptr dsl_prepare_term_for_rewrite(term_ptr t);

// Whether a step changed the goal or an assumption (up to bound names).
bool goal_changed_between(const proof_gap_full& before, const proof_gap_full& after);
bool assumption_changed_between(const proof_gap_full& before, const proof_gap_full& after);

// ---- Handlers, one file for each family. Each reads data.inst and data.cur_gap.

dsl_result execute_get_prop(dsl_execute_data& data);
dsl_result execute_exists(dsl_execute_data& data);
dsl_result execute_destruct_and(dsl_execute_data& data);
dsl_result execute_rewrite(dsl_execute_data& data);
dsl_result execute_rewrite_in(dsl_execute_data& data);
dsl_result execute_apply(dsl_execute_data& data);
dsl_result execute_assert(dsl_execute_data& data);
dsl_result execute_case_analysis(dsl_execute_data& data);
dsl_result execute_or_intro(dsl_execute_data& data);
dsl_result execute_use_condition(dsl_execute_data& data);
dsl_result execute_get_exists(dsl_execute_data& data);
dsl_result execute_get_forall(dsl_execute_data& data);
dsl_result execute_get_condition(dsl_execute_data& data);
dsl_result execute_autoreplace(dsl_execute_data& data);
dsl_result execute_not_normalize(dsl_execute_data& data);
dsl_result execute_solver(dsl_execute_data& data);

}  // namespace vetro

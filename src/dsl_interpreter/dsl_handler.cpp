// Shared parts of the instruction handlers.
#include "dsl_interpreter/dsl_handler.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

#include "dsl_interpreter/advice.h"
#include "term/compare.h"
#include "term/print/pretty.h"
#include "term/term_split_combine.h"

namespace vetro {

void log_error(const dsl_execute_data& data, const fault& about, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::vector<char> text(static_cast<std::size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  log_error_text(data, about, std::string(text.data(), static_cast<std::size_t>(length)));
}

void log_error_text(const dsl_execute_data& data, const fault& about, const std::string& text) {
  data.err_log->write(text);
  note_fault(data, about, text);
}

void note_fault(const dsl_execute_data& data, const fault& about, const std::string& text) {
  if (collecting_diagnostics != nullptr) {
    collecting_diagnostics->add(described_fault(data, about, text));
  }
}

void compare_written(const dsl_execute_data& data, const dsl_term& written, term_ptr added, int number) {
  if (collecting_diagnostics == nullptr) {
    return;
  }
  if (written.t != nullptr && added != nullptr && !term_eqb(written.t, added)) {
    note_fault(data, fault(diagnostic_code::written_differs).at_formula(written).differs(added, written.t),
               "the formula written here differs from the one that was added");
  }
  if (written.type == dsl_hypo && written.num != number) {
    note_fault(data, fault(diagnostic_code::written_differs).at(written),
               "the new hypothesis has number " + std::to_string(number) + ", whatever is written here");
  }
}

void log_failed_instantiation(const dsl_execute_data& data, const dsl_sub_pair& pair, term_ptr refused) {
  const fault about = fault(diagnostic_code::value_refused).at(pair);
  if (refused == nullptr) {
    log_error(data, about, "the instantiation of a quantifier failed\n");
  } else {
    log_error_text(
        data, about,
        "instantiation failed: a notation speaks of '" + pretty(refused) + "' without telling whether it binds it\n");
  }
}

void log_value_refused(const dsl_execute_data& data, const dsl_sub_pair& pair) {
  log_error_text(data, fault(diagnostic_code::value_refused).at(pair),
                 "instantiation failed: '" + pretty(pair.binder) + "' stands for one finite value\n");
}

void log_pair_refused(const dsl_execute_data& data) {
  log_error(data, fault(diagnostic_code::value_refused),
            "instantiation failed: a pair would stand in the place of a set, where it reads as an interval\n");
}

std::string pretty(term_ptr t) {
  std::string text;
  print_term(text, t);
  return text;
}

std::string internal(term_ptr t) {
  std::string text;
  print_term_internal(text, t);
  return text;
}

bool strong_checks(const dsl_execute_data& data) { return data.mode == strong_check_mode; }

void strong_compare(const dsl_execute_data& data, dsl_result& result, term_ptr actual, term_ptr written,
                    const char* actual_words, const char* expected_words) {
  if (strong_checks(data) && !term_eqb(actual, written)) {
    result.redundant_flag = redundant_fail;
    log_error_text(data, fault(diagnostic_code::written_differs),
                   actual_words + pretty(actual) + expected_words + pretty(written) + "\n");
  }
}

void succeed(const dsl_execute_data& data, dsl_result& result, dsl_exe_code flag) {
  result.flag = flag;
  if (strong_checks(data) && result.redundant_flag != redundant_fail) {
    result.redundant_flag = redundant_success;
  }
}

std::optional<std::pair<term_ptr, term_ptr>> separate_imply(term_ptr t) {
  const auto view = composed_prop_split(t);
  if (!view || view->connect != Impl || view->t2 == nullptr) {
    return std::nullopt;
  }
  return std::pair{view->t1, view->t2};
}

const theorem* theorem_by_number(const dsl_execute_data& data, const dsl_term& ref) {
  const theorem* found = thm_lib_find_by_ref(data.thmlib, ref.lib_alias, ref.num);
  const long long number = ref.num;
  if (found == nullptr && !ref.lib_alias.empty()) {
    log_error(data, fault(diagnostic_code::no_such_theorem).at(ref), "Invalid external theorem reference @%s:%lld\n",
              ref.lib_alias.c_str(), number);
  } else if (found == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_theorem).at(ref),
              "Invalid theorem number: %lld, theorem library has %d theorems\n", number,
              data.thmlib == nullptr ? 0 : data.thmlib->num);
  }
  return found;
}

void install_goal(dsl_execute_data& data, term_ptr t) {
  data.cur_gap->goal = t;
  proof_gap_full_mark_unfinished(*data.cur_gap);
}

bool install_hypothesis(proof_gap_full& gap, const dsl_term& from, const dsl_term& to) {
  if (to.num == from.num) {
    gap.assum.replace(static_cast<std::size_t>(from.num - 1), to.t);
    return true;
  }
  if (to.num == gap.assu_num() + 1) {
    add_assumption(gap, to.t);
    return true;
  }
  return false;
}

}  // namespace vetro

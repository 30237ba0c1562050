// What the handlers of all instruction families share: messages, checks of written references, the end of a handler.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

// The instruction's own record.
template <class Content>
const Content& instruction_as(const dsl_execute_data& data) {
  return std::get<Content>(data.inst->content);
}

// What a message of the error log is about, for programs that collect diagnostics.
struct fault {
  explicit fault(diagnostic_code c) : code(c) {}
  fault& at(const dsl_term& written) {
    reference = &written;
    place = written.head;
    return *this;
  }
  fault& at_formula(const dsl_term& written) {
    reference = &written;
    place = written.formula;
    return *this;
  }
  fault& at(const dsl_sub_pair& pair) {
    place = pair.place;
    return *this;
  }
  // The formula that had to stand there, and the one that did. Either may be null.
  fault& differs(term_ptr needed_formula, term_ptr given_formula) {
    needed = needed_formula;
    given = given_formula;
    return *this;
  }

  diagnostic_code code;
  text_span place;
  const dsl_term* reference = nullptr;
  term_ptr needed = nullptr;
  term_ptr given = nullptr;
};

// Writes one message to the error log.
[[gnu::format(printf, 3, 4)]] void log_error(const dsl_execute_data& data, const fault& about, const char* format, ...);
void log_error_text(const dsl_execute_data& data, const fault& about, const std::string& text);
// The same for what the error log does not hold.
void note_fault(const dsl_execute_data& data, const fault& about, const std::string& text);

// The message for an instantiation that came out null; refused is the name that a notation guards, or null.
void log_failed_instantiation(const dsl_execute_data& data, const dsl_sub_pair& pair, term_ptr refused);

// The message for a value that is no single finite one, as a variable stands for.
void log_value_refused(const dsl_execute_data& data, const dsl_sub_pair& pair);
// The message for a pair that a value brings into the place of a set, where its text would be an interval.
void log_pair_refused(const dsl_execute_data& data);

// The pretty and the internal form for a message; a null term gives no text and its line on standard error.
std::string pretty(term_ptr t);
std::string internal(term_ptr t);

// Only this mode compares what the script declares but the handler can work out for itself.
bool strong_checks(const dsl_execute_data& data);

// A diagnostic where the formula or the number that a script writes for a new hypothesis is not what was added. The
// number is the one that the hypothesis has.
void compare_written(const dsl_execute_data& data, const dsl_term& written, term_ptr added, int number);

// In strong_check_mode, when the two terms differ: writes "<what> actual <actual> but expected <written>\n" in the
// given words and marks the result.
void strong_compare(const dsl_execute_data& data, dsl_result& result, term_ptr actual, term_ptr written,
                    const char* actual_words, const char* expected_words);

// The end of a successful handler: sets the flag and, in strong_check_mode, that nothing redundant was wrong.
void succeed(const dsl_execute_data& data, dsl_result& result, dsl_exe_code flag = exe_success);

// Premise and conclusion of an implication; nothing for any other term.
std::optional<std::pair<term_ptr, term_ptr>> separate_imply(term_ptr t);

// The theorem that a reference's alias and number name, or null after a message.
const theorem* theorem_by_number(const dsl_execute_data& data, const dsl_term& ref);

// Makes t the goal of the current gap and marks the gap unfinished.
void install_goal(dsl_execute_data& data, term_ptr t);

// Puts what a hypothesis was rewritten to in its place, or behind the last one where its number says so. False for any
// other number, with the gap unchanged.
bool install_hypothesis(proof_gap_full& gap, const dsl_term& from, const dsl_term& to);

}  // namespace vetro

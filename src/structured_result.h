// The result document: a JSON file with the outcome, every top-level step, the branches of a split and the admitted
// propositions. It is built once, after the script has run.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "program_context.h"

struct cJSON;

namespace vetro {

struct json_deleter {
  void operator()(cJSON* document) const;
};
using json_document = std::unique_ptr<cJSON, json_deleter>;

// The document of a run that ended with code. It refers to texts of data, which must outlive it. Null when there is no
// memory for it.
json_document build_structured_summary(const ProgramContext& context, dsl_execute_data& data, const proof_gap_full& gap,
                                       dsl_exe_code code, const shared_text& initial_gap);

// Writes the document and releases it. False, with a message on standard error, when the file cannot be opened or
// written or the document cannot be serialised.
bool write_structured_result_file(const std::string& path, json_document document);

}  // namespace vetro

// A checker for JSON documents against a JSON Schema, for the keywords that docs/result.schema.json uses. A keyword
// that it does not know is an error, so that no promise of the schema goes unchecked.
#pragma once

#include <cjson/cJSON.h>

#include <string>

namespace vetro {

// What is wrong with the document, one line for each fault with its place in front; empty if nothing is. Beyond JSON
// Schema, the keys of an object must stand in the order of "properties".
std::string schema_faults(const cJSON* schema, const cJSON* document);

}  // namespace vetro

// Reading of small JSON objects.
#pragma once

#include <cjson/cJSON.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vetro {

struct json_tree_deleter {
  void operator()(cJSON* item) const { cJSON_Delete(item); }
};
using json_tree = std::unique_ptr<cJSON, json_tree_deleter>;

// Null for a text that is not JSON, and for one with something behind it.
json_tree parse_json(const std::string& text);

// Members of an object; the empty value where there is none of that kind.
const cJSON* json_member(const cJSON* object, const char* key);
std::string json_text_of(const cJSON* object, const char* key);
bool json_true(const cJSON* object, const char* key);
// Whole numbers up to 2^53; 0 for anything else.
std::uint64_t json_number(const cJSON* object, const char* key);

}  // namespace vetro

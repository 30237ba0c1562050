// The library holds numbers as its own type; whole ones are taken over by their digits.
#include "check/json_reading.h"

#include <charconv>
#include <system_error>

namespace vetro {

json_tree parse_json(const std::string& text) {
  return json_tree(cJSON_ParseWithLengthOpts(text.c_str(), text.size() + 1, nullptr, 1));
}

const cJSON* json_member(const cJSON* object, const char* key) { return cJSON_GetObjectItemCaseSensitive(object, key); }

std::string json_text_of(const cJSON* object, const char* key) {
  const char* text = cJSON_GetStringValue(json_member(object, key));
  return text == nullptr ? std::string() : std::string(text);
}

bool json_true(const cJSON* object, const char* key) { return cJSON_IsTrue(json_member(object, key)) != 0; }

std::uint64_t json_number(const cJSON* object, const char* key) {
  const cJSON* item = json_member(object, key);
  if (cJSON_IsNumber(item) == 0) {
    return 0;
  }
  char* digits = cJSON_PrintUnformatted(item);
  std::uint64_t value = 0;
  if (digits != nullptr) {
    const std::string text = digits;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    value = error == std::errc() && end == text.data() + text.size() ? value : 0;
    cJSON_free(digits);
  }
  return value;
}

}  // namespace vetro

// JSON objects under construction. A text that is not UTF-8 gets U+FFFD in place of each bad byte, so that what is
// written is valid JSON.
#pragma once

#include <cjson/cJSON.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/utf8.h"

namespace vetro {

struct json_deleter {
  void operator()(cJSON* item) const { cJSON_Delete(item); }
  void operator()(char* text) const { cJSON_free(text); }
};
using json_text = std::unique_ptr<char, json_deleter>;

// One object under construction. A member for which there is no memory makes the object a failure.
class json_object {
 public:
  json_object() : object_(cJSON_CreateObject()) {}

  const cJSON* get() const { return failed_ ? nullptr : object_.get(); }

  // The object refers to the value, which must outlive it.
  void text(const char* key, const std::string& value) {
    if (is_utf8_text(value)) {
      word(key, value.c_str());
    } else {
      add(key, cJSON_CreateString(utf8_with_replacements(value).c_str()));
    }
  }

  void text(const char* key, const std::shared_ptr<const std::string>& value) {
    kept_.push_back(value);
    text(key, *value);
  }

  // A copy of the value is kept.
  void own_text(const char* key, std::string value) {
    text(key, std::make_shared<const std::string>(std::move(value)));
  }

  void object(const char* key, json_object value) {
    add(key, value.release());
    kept_.insert(kept_.end(), value.kept_.begin(), value.kept_.end());
  }
  void objects(const char* key, std::vector<json_object> values) {
    cJSON* array = cJSON_CreateArray();
    for (json_object& value : values) {
      cJSON* item = value.release();
      if (item == nullptr || cJSON_AddItemToArray(array, item) == 0) {
        cJSON_Delete(item);
        failed_ = true;
      }
      kept_.insert(kept_.end(), value.kept_.begin(), value.kept_.end());
    }
    add(key, array);
  }
  void texts(const char* key, const std::vector<std::string>& values) {
    cJSON* array = cJSON_CreateArray();
    for (const std::string& value : values) {
      cJSON* item = cJSON_CreateString(utf8_with_replacements(value).c_str());
      if (item == nullptr || cJSON_AddItemToArray(array, item) == 0) {
        cJSON_Delete(item);
        failed_ = true;
      }
    }
    add(key, array);
  }

  void word(const char* key, const char* literal) { add(key, cJSON_CreateStringReference(literal)); }
  void boolean(const char* key, bool value) { add(key, cJSON_CreateBool(value ? 1 : 0)); }

  // Written digit by digit: a hypothesis number of 19 digits does not fit the library's number type.
  template <class Integer>
  void number(const char* key, Integer value) {
    add(key, cJSON_CreateRaw(std::to_string(value).c_str()));
  }

 private:
  // The key must be a literal: it is not copied.
  void add(const char* key, cJSON* item) {
    if (item == nullptr || cJSON_AddItemToObjectCS(object_.get(), key, item) == 0) {
      cJSON_Delete(item);
      failed_ = true;
    }
  }

  cJSON* release() {
    if (failed_) {
      object_.reset();
    }
    return object_.release();
  }

  std::vector<std::shared_ptr<const std::string>> kept_;
  std::unique_ptr<cJSON, json_deleter> object_;
  bool failed_ = false;
};

}  // namespace vetro

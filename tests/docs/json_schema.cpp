// See json_schema.h. A schema is walked keyword by keyword, beside the value that it describes.
#include "json_schema.h"

#include <cmath>
#include <string_view>

namespace vetro {
namespace {

constexpr std::string_view annotations[] = {"$schema", "$id", "$defs", "title", "description"};

class checker {
 public:
  explicit checker(const cJSON* root) : root_(root) {}

  void check(const cJSON* schema, const cJSON* value, const std::string& place) {
    for (const cJSON* keyword = schema->child; keyword != nullptr; keyword = keyword->next) {
      check_keyword(keyword, schema, value, place);
    }
  }

  std::string faults;

 private:
  void check_keyword(const cJSON* keyword, const cJSON* schema, const cJSON* value, const std::string& place) {
    const std::string_view name = keyword->string;
    if (name == "$ref") {
      check(definition(keyword->valuestring), value, place);
    } else if (name == "type") {
      require(has_type(keyword, value), place, "has another type");
    } else if (name == "const") {
      require(cJSON_Compare(keyword, value, true), place, "is another constant");
    } else if (name == "enum") {
      require(contains(keyword, value), place, "is none of the listed values");
    } else if (name == "minimum") {
      require(!cJSON_IsNumber(value) || value->valuedouble >= keyword->valuedouble, place, "is too small");
    } else if (name == "pattern") {
      require(keyword->valuestring == std::string_view("^[1-9][0-9]*(\\.[1-9][0-9]*)*$"), place,
              "has a pattern that this checker does not know");
      require(!cJSON_IsString(value) || is_step_id(value->valuestring), place, "does not match the pattern");
    } else if (name == "items") {
      check_items(keyword, value, place);
    } else if (name == "properties") {
      check_properties(keyword, value, place);
    } else if (name == "required") {
      check_required(keyword, value, place);
    } else if (name == "additionalProperties") {
      require(cJSON_IsFalse(keyword), place, "has a schema with an unknown form of additionalProperties");
      check_no_others(cJSON_GetObjectItemCaseSensitive(schema, "properties"), value, place);
    } else {
      bool known = false;
      for (const std::string_view annotation : annotations) {
        known = known || name == annotation;
      }
      require(known, place, "has a schema with the unknown keyword " + std::string(name));
    }
  }

  const cJSON* definition(std::string_view reference) {
    const std::string name(reference.substr(std::string_view("#/$defs/").size()));
    return cJSON_GetObjectItemCaseSensitive(cJSON_GetObjectItemCaseSensitive(root_, "$defs"), name.c_str());
  }

  void require(bool holds, const std::string& place, const std::string& fault) {
    if (!holds) {
      faults += place + " " + fault + "\n";
    }
  }

  static bool is_of_type(std::string_view type, const cJSON* value) {
    return (type == "object" && cJSON_IsObject(value)) || (type == "array" && cJSON_IsArray(value)) ||
           (type == "string" && cJSON_IsString(value)) || (type == "boolean" && cJSON_IsBool(value)) ||
           (type == "null" && cJSON_IsNull(value)) ||
           (type == "integer" && cJSON_IsNumber(value) && std::floor(value->valuedouble) == value->valuedouble);
  }

  static bool has_type(const cJSON* types, const cJSON* value) {
    if (cJSON_IsString(types)) {
      return is_of_type(types->valuestring, value);
    }
    for (const cJSON* type = types->child; type != nullptr; type = type->next) {
      if (is_of_type(type->valuestring, value)) {
        return true;
      }
    }
    return false;
  }

  static bool contains(const cJSON* values, const cJSON* value) {
    for (const cJSON* listed = values->child; listed != nullptr; listed = listed->next) {
      if (cJSON_Compare(listed, value, true)) {
        return true;
      }
    }
    return false;
  }

  // Numbers from 1, joined by dots.
  static bool is_step_id(std::string_view text) {
    bool at_start = true;
    for (const char c : text) {
      if (c == '.' ? at_start : (c < (at_start ? '1' : '0') || c > '9')) {
        return false;
      }
      at_start = c == '.';
    }
    return !at_start;
  }

  void check_items(const cJSON* schema, const cJSON* value, const std::string& place) {
    int index = 0;
    for (const cJSON* item = cJSON_IsArray(value) ? value->child : nullptr; item != nullptr; item = item->next) {
      check(schema, item, place + "[" + std::to_string(index++) + "]");
    }
  }

  void check_properties(const cJSON* properties, const cJSON* value, const std::string& place) {
    const cJSON* next = properties->child;
    for (const cJSON* member = cJSON_IsObject(value) ? value->child : nullptr; member != nullptr;
         member = member->next) {
      const cJSON* schema = cJSON_GetObjectItemCaseSensitive(properties, member->string);
      if (schema == nullptr) {
        continue;
      }
      const std::string member_place = place + "." + member->string;
      // Keys that may be left out are passed over.
      const cJSON* expected = next;
      while (expected != nullptr && expected != schema) {
        expected = expected->next;
      }
      require(expected != nullptr, member_place, "is out of order");
      next = expected == nullptr ? next : schema->next;
      check(schema, member, member_place);
    }
  }

  void check_required(const cJSON* names, const cJSON* value, const std::string& place) {
    for (const cJSON* name = names->child; cJSON_IsObject(value) && name != nullptr; name = name->next) {
      require(cJSON_HasObjectItem(value, name->valuestring), place, "lacks " + std::string(name->valuestring));
    }
  }

  void check_no_others(const cJSON* properties, const cJSON* value, const std::string& place) {
    for (const cJSON* member = cJSON_IsObject(value) ? value->child : nullptr; member != nullptr;
         member = member->next) {
      require(cJSON_GetObjectItemCaseSensitive(properties, member->string) != nullptr, place,
              "has the unknown key " + std::string(member->string));
    }
  }

  const cJSON* root_;
};

}  // namespace

std::string schema_faults(const cJSON* schema, const cJSON* document) {
  checker faults(schema);
  faults.check(schema, document, "$");
  return faults.faults;
}

}  // namespace vetro

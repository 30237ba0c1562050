// docs/result.schema.json against the result documents of the whole runs in tests/cases. These are compared with what
// the program writes byte for byte there, so they are real documents.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "json_schema.h"

namespace vetro {
namespace {

namespace fs = std::filesystem;

using json = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

json read_json(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  return {cJSON_Parse(text.c_str()), cJSON_Delete};
}

json read_schema() { return read_json(VETRO_DOCS_FOLDER "/result.schema.json"); }

json read_case(const std::string& name) {
  return read_json(fs::path(VETRO_CASES_FOLDER) / name / "expected_result.json");
}

TEST(result_schema, fits_every_document) {
  const json schema = read_schema();
  ASSERT_NE(schema, nullptr);
  int documents = 0;
  for (const fs::directory_entry& folder : fs::directory_iterator(VETRO_CASES_FOLDER)) {
    const fs::path path = folder.path() / "expected_result.json";
    if (fs::exists(path)) {
      const json document = read_json(path);
      ASSERT_NE(document, nullptr) << path;
      EXPECT_EQ(schema_faults(schema.get(), document.get()), "") << path;
      ++documents;
    }
  }
  EXPECT_GT(documents, 5);
}

// The first element of a list in the document, or the document itself without a list.
cJSON* object_in(cJSON* document, const char* list) {
  return list == nullptr ? document : cJSON_GetArrayItem(cJSON_GetObjectItem(document, list), 0);
}

// The faults of a copy of the document, in which `change` has worked on the object in `list`.
template <class Change>
std::string faults_after(const cJSON* document, const char* list, Change change) {
  const json schema = read_schema();
  const json copy(cJSON_Duplicate(document, true), cJSON_Delete);
  change(object_in(copy.get(), list));
  return schema_faults(schema.get(), copy.get());
}

// Every key is needed, in its place and with its type, and no other may be added.
void expect_each_fault_found(cJSON* document, const char* list) {
  ASSERT_NE(object_in(document, list), nullptr) << list;
  const int keys = cJSON_GetArraySize(object_in(document, list));
  for (int i = 0; i < keys; ++i) {
    const std::string key = cJSON_GetArrayItem(object_in(document, list), i)->string;
    SCOPED_TRACE(key);
    EXPECT_NE(faults_after(document, list, [&](cJSON* object) { cJSON_DeleteItemFromArray(object, i); }), "");
    EXPECT_NE(faults_after(document, list,
                           [&](cJSON* object) {
                             cJSON_ReplaceItemInObjectCaseSensitive(object, key.c_str(), cJSON_CreateNumber(-1.5));
                           }),
              "");
    if (i + 1 < keys) {
      EXPECT_NE(faults_after(document, list,
                             [&](cJSON* object) {
                               cJSON* member = cJSON_DetachItemFromArray(object, i);
                               cJSON_AddItemToObject(object, key.c_str(), member);
                             }),
                "");
    }
  }
  EXPECT_NE(faults_after(document, list, [](cJSON* object) { cJSON_AddNullToObject(object, "surprise"); }), "");
  EXPECT_EQ(faults_after(document, list, [](cJSON*) {}), "");
}

TEST(result_schema, refuses_broken_documents) {
  const json branches = read_case("branches");
  expect_each_fault_found(branches.get(), nullptr);
  expect_each_fault_found(branches.get(), "steps");
  expect_each_fault_found(branches.get(), "split_gaps");
  const json admits = read_case("block_fails_but_admits_stay");
  expect_each_fault_found(admits.get(), "admits");
}

TEST(result_schema, refuses_values_outside_the_lists) {
  const json schema = read_schema();
  const json document = read_case("branches");
  const auto refuses = [&](cJSON* object, const char* key, const char* text) {
    cJSON* member = cJSON_GetObjectItem(object, key);
    const std::string old = member->valuestring;
    cJSON_SetValuestring(member, text);
    const bool refused = !schema_faults(schema.get(), document.get()).empty();
    cJSON_SetValuestring(member, old.c_str());
    return refused && schema_faults(schema.get(), document.get()).empty();
  };
  cJSON* step = cJSON_GetArrayItem(cJSON_GetObjectItem(document.get(), "steps"), 0);
  EXPECT_TRUE(refuses(document.get(), "schema_version", "vetro_structured_v1"));
  EXPECT_TRUE(refuses(document.get(), "final_status", "proved"));
  EXPECT_TRUE(refuses(step, "effect_class", "progress"));
  EXPECT_TRUE(refuses(step, "instruction_type", "solver"));
  for (const char* id : {"", "0", "1.", ".1", "1..2", "a"}) {
    EXPECT_TRUE(refuses(step, "step_id", id)) << id;
  }
  EXPECT_FALSE(refuses(step, "step_id", "10.2.305"));
}

}  // namespace
}  // namespace vetro

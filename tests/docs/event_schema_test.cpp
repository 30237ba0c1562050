// docs/check.schema.json against events that the program prints: those of the whole runs in tests/check, which hold
// every kind and nearly every key.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "json_schema.h"

namespace vetro {
namespace {

using json = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

std::string read_file(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The schema of one kind of event.
json schema_of(const std::string& kind) {
  json schema(cJSON_Parse(read_file(VETRO_DOCS_FOLDER "/check.schema.json").c_str()), cJSON_Delete);
  cJSON_DeleteItemFromObject(schema.get(), "oneOf");
  cJSON_AddStringToObject(schema.get(), "$ref", ("#/$defs/" + kind).c_str());
  return schema;
}

TEST(event_schema, fits_every_event) {
  std::map<std::string, int> seen;
  for (const auto& folder : std::filesystem::directory_iterator(VETRO_CHECK_FOLDER)) {
    std::ifstream lines(folder.path() / "expected_stdout");
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("{\"event\":")) {
        continue;
      }
      for (std::size_t at = line.find("\"work\":N"); at != std::string::npos; at = line.find("\"work\":N")) {
        line.replace(at, 8, "\"work\":1");
      }
      const json event(cJSON_Parse(line.c_str()), cJSON_Delete);
      ASSERT_NE(event, nullptr) << line;
      const std::string kind = cJSON_GetStringValue(cJSON_GetObjectItem(event.get(), "event"));
      EXPECT_EQ(schema_faults(schema_of(kind).get(), event.get()), "") << line;
      ++seen[kind];
    }
  }
  for (const char* kind : {"run", "gap", "step", "diagnostic", "proof", "summary"}) {
    EXPECT_GT(seen[kind], 0) << kind;
  }
}

TEST(event_schema, notices_what_does_not_fit) {
  const json unknown(cJSON_Parse(R"({"event":"summary","proofs":1})"), cJSON_Delete);
  EXPECT_NE(schema_faults(schema_of("summary").get(), unknown.get()), "");
}

}  // namespace
}  // namespace vetro

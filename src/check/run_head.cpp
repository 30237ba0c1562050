// Results depend on what the library's theorems say, not on where they stand: they are told apart by a hash of them.
#include "check/run_head.h"

#include <array>
#include <cstdio>

#include "check/json_object.h"
#include "check/json_reading.h"
#include "check/report.h"
#include "term/print/pretty.h"

namespace vetro {
namespace {

// FNV-1a.
class text_hash {
 public:
  void add(std::string_view text) {
    for (const char c : text) {
      value_ = (value_ ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    }
    value_ = (value_ ^ 0xFFU) * 0x100000001b3U;  // no byte of a text
  }
  std::string digits() const {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(value_));
    return text.data();
  }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325U;
};

void add_library(text_hash& hash, const thm_lib& library) {
  for (const auto& [id, theorem] : library.table) {
    hash.add(std::to_string(id));
    hash.add(theorem.name);
    hash.add(print_term_internal_to_string(theorem.content()));
  }
  for (const external_thm_lib& external : library.external_libs) {
    hash.add(external.alias);
    add_library(hash, external.lib);
  }
}

std::string line_of(const cJSON* event) {
  const json_text text(event == nullptr ? nullptr : cJSON_PrintUnformatted(event));
  return text == nullptr ? std::string() : std::string(text.get()) + "\n";
}

std::string shown_member(const cJSON* object, const char* key) {
  const cJSON* member = json_member(object, key);
  const json_text text(member == nullptr ? nullptr : cJSON_PrintUnformatted(member));
  return text == nullptr ? "missing" : text.get();
}

}  // namespace

std::string run_head(const check_options& options, const std::string& library_path, const thm_lib& library) {
  text_hash hash;
  add_library(hash, library);
  json_object object;
  object.word("event", "run");
  object.number("format", event_format);
  object.word("program", "vetro-check");
  object.word("version", VETRO_VERSION);
  object.text("library", library_path);
  object.number("theorems", library.table.size());
  object.own_text("library_hash", hash.digits());
  object.boolean("strict", options.strict);
  object.boolean("explain", options.explain || !options.html.empty());
  object.boolean("mathml", !options.html.empty());
  object.boolean("times", options.times);
  object.number("timeout", options.timeout);
  object.number("memory", options.memory);
  object.number("work", options.work);
  object.number("shard", options.shard);
  object.number("shards", options.shards);
  return line_of(object.get());
}

std::string head_of_whole(const std::string& head) {
  const json_tree event = parse_json(head);
  for (const char* key : {"shard", "shards"}) {
    if (cJSON* member = cJSON_GetObjectItemCaseSensitive(event.get(), key); member != nullptr) {
      cJSON_SetNumberValue(member, 0);
    }
  }
  return line_of(event.get());
}

run_part part_of_head(const std::string& head) {
  const json_tree event = parse_json(head);
  const std::uint64_t of = json_number(event.get(), "shards");
  return of == 0 ? run_part() : run_part{json_number(event.get(), "shard"), of};
}

std::string difference_of_heads(const std::string& one, const std::string& other) {
  const json_tree a = parse_json(one);
  const json_tree b = parse_json(other);
  for (const json_tree* from : {&a, &b}) {
    const cJSON* member = nullptr;
    cJSON_ArrayForEach(member, from->get()) {
      const std::string key = member->string;
      if (key == "library" || key == "shard") {
        continue;
      }
      const std::string here = shown_member(a.get(), member->string);
      const std::string there = shown_member(b.get(), member->string);
      if (here != there) {
        return '"' + key + "\" is " + here + " in the one, " + there + " in the other";
      }
    }
  }
  return {};
}

}  // namespace vetro

// What stands in the files for other programs, whatever a message holds.
#include "check/build_reports.h"

#include <gtest/gtest.h>

#include <string>

namespace vetro {
namespace {

// A control character, a character that XML does not know, a byte that is no text.
proof_report report_with_odd_texts() {
  proof_report report;
  report.id = "a<b";
  report.result = outcome::failed;
  report_diagnostic d;
  d.level = "error";
  d.code = "not-proved";
  d.file = "a \"gap\".txt";
  d.message = "no solver proves \x01 \xEF\xBF\xBE \xFF \"x\"";
  d.suggestion = "write something else there";
  report.diagnostics.push_back(d);
  return report;
}

TEST(build_reports, sarif_holds_texts_that_were_put_together) {
  sarif_report sarif;
  EXPECT_NE(sarif.begin().find(R"({"id":"gap-without-goal","shortDescription":{"text":"The gap has no goal."}})"),
            std::string::npos);
  const std::string text = sarif.proof(report_with_odd_texts());
  EXPECT_NE(
      text.find(
          "{\"text\":\"no solver proves \\u0001 \xEF\xBF\xBE \xEF\xBF\xBD \\\"x\\\"; write something else there\"}"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find(R"({"uri":"a \"gap\".txt"})"), std::string::npos) << text;
}

TEST(build_reports, junit_replaces_what_xml_cannot_hold) {
  junit_report junit;
  const std::string text = junit.proof(report_with_odd_texts());
  EXPECT_NE(text.find("name=\"a&lt;b\""), std::string::npos) << text;
  EXPECT_NE(text.find("no solver proves \xEF\xBF\xBD \xEF\xBF\xBD \xEF\xBF\xBD &quot;x&quot;&#10;"), std::string::npos)
      << text;
}

}  // namespace
}  // namespace vetro

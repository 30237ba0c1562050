// The script reader: what each instruction line may and may not look like, references and their numbers, proof blocks,
// and the one error that a failed parse leaves.
#include "lib/dsl_parser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "support/script_text.h"

namespace vetro {
namespace {

// A line as a failed test names it: the large ones have megabytes.
std::string brief(const std::string& line) { return line.substr(0, 100); }

// The only instruction of a one-line script; an empty apply when the line does not parse.
dsl_instruction only_instruction(const std::string& line) {
  const parsed_script script = parse_script(line);
  EXPECT_TRUE(script.list.has_value()) << brief(line);
  return script.list ? script.list->front() : dsl_instruction{0, dsl_apply{}};
}

// The reference of an apply line whose head is given.
dsl_term reference(const std::string& head) {
  return std::get<dsl_apply>(only_instruction("apply (" + head + ": {p})").content).hypo;
}

bool parses(const std::string& line) { return parse_script(line).list.has_value(); }

void expect_bad_line(const std::string& line) {
  const parsed_script script = parse_script("# first\n" + line + "\napply (GOAL: {p})\n");
  EXPECT_FALSE(script.list.has_value()) << brief(line);
  EXPECT_EQ(script.error.line, 2) << brief(line);
  EXPECT_TRUE(script.error.text == line + "\n") << brief(script.error.text);
  EXPECT_TRUE(script.messages.ends_with("Error: Error parsing line 2: " + line + "\n\n")) << brief(script.messages);
}

TEST(dsl_parser, accepted_lines_mean_what_they_print) {
  const struct {
    const char* line;
    const char* printed;
  } rows[] = {
      {"get_prop (theorem 12: {p}) as (hypothesis 3: {q})", "get_prop (theorem 12: {p}) as (hypothesis 3: {q})"},
      {"get_prop(theorem 1:{p})(x:={a})(y :=  {b})as(hypothesis 3:{q}) rest",
       "get_prop (theorem 1: {p}) (x := {a}) (y := {b}) as (hypothesis 3: {q})"},
      {"exists (x := {a}) # why", "exists (x := {a}) "},
      {"exists ( x := {a} ) (y := {b})", "exists (x := {a}) (y := {b}) "},
      {"destruct_and (hypothesis 1: {p}) as (hypothesis 2: {q}) (hypothesis 3: {r}) rest",
       "destruct_and (hypothesis 1: {p}) as (hypothesis 2: {q}) (hypothesis 3: {r}) "},
      {"rewrite (left_to_right, equation) (hypothesis 1: {p}); from (GOAL: {q}) to (GOAL: {r})",
       "rewrite (left_to_right, equation) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})"},
      {"rewrite(right_to_left,iff)(hypothesis 1:{p})from(obvious:{q})to(hypothesis 2:{r})",
       "rewrite (right_to_left, iff) (hypothesis 1: {p}) from (obvious: {q}) to (hypothesis 2: {r})"},
      {"rewrite_in limit (left_to_right , iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
       "rewrite_in limit (left_to_right, iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})"},
      {"rewrite_in sum(left_to_right, equation) (hypothesis 1: {p}); from (GOAL: {q}) to (GOAL: {r})",
       "rewrite_in sum (left_to_right, equation) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})"},
      {"rewrite_in setdesc (left_to_right, iff) (hypothesis 1: {p}) (x := {y}); from (GOAL: {q}) to (GOAL: {r})",
       "rewrite_in setdesc (left_to_right, iff) (hypothesis 1: {p}) (x := {y}); from (GOAL: {q}) to (GOAL: {r})"},
      {"apply (hypothesis 12: {p}) # why", "apply (hypothesis 12: {p})"},
      {"assert (hypothesis 4: {p}) # why", "assert (hypothesis 4: {p})"},
      {"assert(hypothesis 4: {p})by admit # why", "assert (hypothesis 4: {p}) by admit"},
      {"case_analysis (hypothesis 1: {p}) by cases", "case_analysis (hypothesis 1: {p})"},
      {"or_intro left \t", "or_intro left"},
      {"or_introright", "or_intro right"},
      {"use_condition in (hypothesis 1: {p}) as (hypothesis 2: {q})",
       "use_condition in (hypothesis 1: {p}) as (hypothesis 2: {q})"},
      {"use_condition (hypothesis 1: {p}) (obvious: {q}) in (theorem 2: {r}) as (hypothesis 3: {q})",
       "use_condition (hypothesis 1: {p}) (obvious: {q}) in (theorem 2: {r}) as (hypothesis 3: {q})"},
      {"get_exists (hypothesis 1: {p}) (x := {a})rest", "get_exists (hypothesis 1: {p}) (x := {a}) "},
      {"get_forall (GOAL: {p}) (x := {a}) (y := {b})", "get_forall (GOAL: {p}) (x := {a}) (y := {b}) "},
      {"get_condition in (GOAL: {p})", "get_condition in (GOAL: {p})"},
      {"get_condition (hypothesis 1: {p}) in (GOAL: {q})", "get_condition (hypothesis 1: {p}) in (GOAL: {q})"},
      {"not_normalize from (GOAL: {p}) to (GOAL: {q})", "not_normalize from (GOAL: {p}) to (GOAL: {q})"},
      {"autoreplace all_hypothesis; from (f(a)) to (b); from (GOAL: {p}) to (GOAL: {q})",
       "autoreplace all_hypothesis from (f(a)) to (b) from (GOAL: {p}) to (GOAL: {q})"},
      {"autoreplace no_hypothesis from (a) to (b) from (GOAL: {p}) to (GOAL: {q})",
       "autoreplace no_hypothesis from (a) to (b) from (GOAL: {p}) to (GOAL: {q})"},
      {"autoreplace (hypothesis 1: {p})(hypothesis 2: {q});from(a)to(b)from(GOAL:{p})to(GOAL:{q})",
       "autoreplace (hypothesis 1: {p}) (hypothesis 2: {q}) from (a) to (b) from (GOAL: {p}) to (GOAL: {q})"},
      {"autosolve", "autosolve "},
      {"autosolve all_assume", "autosolve all_hypothesis "},
      {"autosolve all_hypothesis (whatever", "autosolve all_hypothesis "},
      {"autosolve (hypothesis 1: {p})(GOAL: {q}) using eqb", "autosolve (hypothesis 1: {p}) (GOAL: {q}) using eqb"},
      {"autosolve using eqb ", "autosolve using eqb"},
      {"autosolveusing eqb", "autosolve using eqb"},
      {"  7 .  apply (obvious: {p})", "apply (obvious: {p})"},
      {"7 apply (obvious: {p})", "apply (obvious: {p})"},
      {"99999999999999999999999.apply (obvious: {p})", "apply (obvious: {p})"},
  };
  for (const auto& row : rows) {
    const std::string expected = "1. " + std::string(row.printed) + "\n";
    const parsed_script script = parse_script(row.line);
    EXPECT_EQ(printed_script(script), expected) << row.line;
    EXPECT_EQ(script.messages, "");
    EXPECT_EQ(printed_script(parse_script(expected)), expected) << "printed text reads back as itself";
  }
}

TEST(dsl_parser, rejected_lines_are_recorded_as_read) {
  const char* const lines[] = {
      "hello (hypothesis 1: {p})",
      ". apply (hypothesis 1: {p})",
      "1. 2. apply (hypothesis 1: {p})",
      "-1. apply (hypothesis 1: {p})",
      "applyfoo (hypothesis 1: {p})",
      "Apply (hypothesis 1: {p})",
      "get_prop (theorem 1: {p}) (x = {a}) as (hypothesis 1: {q})",
      "get_prop (theorem 1: {p}) (x := {a})",
      "exists",
      "exists x := {a}",
      "exists (x := {a}) (y = {b})",
      "exists (x := {a}) (# why",
      "exists (:= {a})",
      "exists (x : = {a})",
      "exists (x := {a}",
      "exists (x := a)",
      "destruct_and (hypothesis 1: {p}) as",
      "destruct_and (hypothesis 1: {p}) as (hypothesis 2: {p}) (hypothesis)",
      "rewrite (left_to_right) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite (forwards, iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite (left_to_right, rule) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite (left_to_right, iff) (theorem 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite (left_to_right, iff) (hypothesis 1: {p}) (x := {y}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in integral (left_to_right, iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in limits (left_to_right, iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in limit (left_to_right, iff) (GOAL: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in limit (left_to_right, iff) (hypothesis 1: {p}) (x := {y}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in setdesc (left_to_right, iff) (hypothesis 1: {p}) from (GOAL: {q}) to (GOAL: {r})",
      "rewrite_in setdesc (left_to_right, iff) (hypothesis 1: {p}) (x:={y})(a:={b}) from (GOAL: {q}) to (GOAL: {r})",
      "apply",
      "apply hypothesis 1: {p}",
      "apply (hypothesis 1)",
      "apply (hypothesis 1: p)",
      "apply (hypothesis 1: {p)",
      "apply (hypothesis 1: {{p})",
      "apply (hypothesis 1: {p}",
      "apply (goal: {p})",
      "assertion (hypothesis 1: {p})",
      "assert (hypothesis 1: {p}) then",
      "assert (hypothesis 1: {p}) by",
      "assert (hypothesis 1: {p}) by magic",
      "assert (hypothesis 1: {p}) by admitted",
      "assert (hypothesis 1: {p}) by admit {",
      "assert (hypothesis 1: {p}) by proof { apply (GOAL: {p}) }",
      "assert (hypothesis 1: {p}) by proof by proof",
      "or_intro",
      "or_intro middle",
      "or_intro left # why",
      "or_intro left right",
      "use_condition (hypothesis 1: {p}) as (hypothesis 2: {q})",
      "get_exists (x := {a})",
      "get_exists (hypothesis 1: {p})",
      "get_exists (hypothesis 1: {p}) (x := {a}) (y",
      "get_forall (x := {a})",
      "get_forall (GOAL: {p})",
      "get_forall (GOAL: {p}) (x := {a}) (",
      "get_condition (hypothesis 1: {p}) in (hypothesis 2: {q})",
      "not_normalize from (hypothesis 1: {p}) to (GOAL: {q})",
      "not_normalize from (GOAL: {p}) to (obvious: {q})",
      "autoreplace from (a) to (b) from (GOAL: {p}) to (GOAL: {q})",
      "autoreplace (theorem 1: {p}) from (a) to (b) from (GOAL: {p}) to (GOAL: {q})",
      "autoreplace no_hypothesis from (a to (b) from (GOAL: {p}) to (GOAL: {q})",
      "autoreplace no_hypothesis from a to b from (GOAL: {p}) to (GOAL: {q})",
      "autosolve # why",
      "autosolve (hypothesis 1: {p}) # why",
      "autosolve (hypothesis 1: {p}) all_hypothesis",
      "autosolve all_hypothesis using",
      "autosolve all_hypothesis using   ",
      "autosolve (hypothesis 1: {p}) using",
      "autosolve using",
      "autosolve using eqb poly",
      "autosolve (hypothesis 1: {a using b}) using eqb",
      "} else",
      "{",
  };
  for (const char* line : lines) {
    expect_bad_line(line);
  }
  // Without a line end behind it, too, the word asks for a name.
  EXPECT_FALSE(parses("autosolve all_hypothesis using"));
  EXPECT_FALSE(parses("exists (x := {a}) ("));
}

TEST(dsl_parser, use_condition_tells_of_a_missing_as) {
  const parsed_script script = parse_script("use_condition in (hypothesis 1: {p}) (hypothesis 2: {q})\n");
  EXPECT_FALSE(script.list.has_value());
  EXPECT_EQ(script.messages,
            "Error: Expected 'as' after target hypothesis\n"
            "Error: Error parsing line 1: use_condition in (hypothesis 1: {p}) (hypothesis 2: {q})\n\n");
}

TEST(dsl_parser, numbers_of_references_have_at_most_19_digits) {
  EXPECT_EQ(reference("hypothesis 0").num, 0);
  EXPECT_EQ(reference("hypothesis12").num, 12);
  EXPECT_EQ(reference("theorem 0000000000000000012").num, 12);
  EXPECT_EQ(reference("hypothesis 9223372036854775807").num, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(reference("hypothesis 9999999999999999999").num, std::numeric_limits<std::int64_t>::max());
  for (const char* head : {"hypothesis ", "theorem ", "theorem @lib:", "theorem 'Thm ", "theorem '@lib:"}) {
    EXPECT_TRUE(parses("apply (" + std::string(head) + "0000000000000000001: {p})")) << head;
    EXPECT_FALSE(parses("apply (" + std::string(head) + "00000000000000000001: {p})")) << head;
    EXPECT_FALSE(parses("apply (" + std::string(head) + "-1: {p})")) << head;
    EXPECT_FALSE(parses("apply (" + std::string(head) + ": {p})")) << head;
  }
  EXPECT_EQ(reference("GOAL").num, 0);
  EXPECT_EQ(reference("obvious").type, dsl_obvious);
}

TEST(dsl_parser, theorem_references) {
  const struct {
    const char* head;
    std::int64_t num;
    const char* alias;
    const char* name;
  } rows[] = {
      {"theorem 12", 12, "", ""},
      {"theorem@a_b-c.9:12 ", 12, "a_b-c.9", ""},
      {"theorem 'Thm 12. (mean value)'", 12, "", "mean value"},
      {"theorem 'Thm12(a (b)'", 12, "", "a (b"},
      {"theorem '12'", 12, "", ""},
      {"theorem '12. ( x )", 12, "", " x "},
      {"theorem '12. ()'", 12, "", ""},
      {"theorem '@lib:12. (squeeze: 'both')'", 12, "lib", "squeeze: 'both'"},
      {"theorem 'Thm @lib:12", 12, "lib", ""},
  };
  for (const auto& row : rows) {
    const dsl_term ref = reference(row.head);
    EXPECT_EQ(ref.type, dsl_thm) << row.head;
    EXPECT_EQ(ref.num, row.num) << row.head;
    EXPECT_EQ(ref.lib_alias, row.alias) << row.head;
    EXPECT_EQ(ref.name, row.name) << row.head;
  }
  for (const char* head : {"theorem @:12", "theorem @a b:12", "theorem @é:12", "theorem @lib 12", "theorem Thm 12",
                           "theorem 12. (name)", "theorem '12. (name'", "theorem '12' (name)", "theorem (name)"}) {
    EXPECT_FALSE(parses("apply (" + std::string(head) + ": {p})")) << head;
  }
  EXPECT_EQ(reference("theorem '1. (" + std::string(255, 'n') + ")'").name, std::string(255, 'n'));
  EXPECT_EQ(reference("theorem '1. (" + std::string(256, 'n') + ")'").name, std::string(255, 'n'));
}

TEST(dsl_parser, a_formula_that_does_not_parse_leaves_a_reference_without_one) {
  for (const char* formula : {"", "+", "a {+} b", "a b )"}) {
    const std::string braced = std::string("{") + formula + "}";
    const parsed_script script = parse_script("apply (hypothesis 1: " + braced + ")\napply (GOAL: {p})\n");
    ASSERT_TRUE(script.list.has_value()) << formula;
    EXPECT_EQ(std::get<dsl_apply>(script.list->front().content).hypo.t, nullptr) << formula;
    EXPECT_NE(std::get<dsl_apply>(script.list->back().content).hypo.t, nullptr);
    EXPECT_NE(script.messages, "") << "the formula's own message";
    EXPECT_EQ(script.error.line, 0);
  }
  // Elsewhere the formula is what the instruction does.
  EXPECT_FALSE(parses("exists (x := {+})"));
  EXPECT_FALSE(parses("exists (+ := {x})"));
  EXPECT_FALSE(parses("autoreplace no_hypothesis from (+) to (b) from (GOAL: {p}) to (GOAL: {q})"));
  EXPECT_FALSE(parses("autoreplace no_hypothesis from (a) to () from (GOAL: {p}) to (GOAL: {q})"));
}

TEST(dsl_parser, lines_are_counted_physically) {
  const parsed_script script = parse_script(
      "# a comment\n"
      "\n"
      "12. apply (hypothesis 1: {p})\n"
      "  3.  # another\n"
      "4\n"
      "\t\v\f\r\n"
      "assert (hypothesis 2: {q}) by proof\n"
      "\n"
      "# before the brace\n"
      "8. { # and behind it\n"
      "   9 or_intro left\n"
      "\n"
      "   autosolve\n"
      "10. } # done\n"
      "autosolve");
  EXPECT_EQ(printed_script(script),
            "3. apply (hypothesis 1: {p})\n"
            "7. assert (hypothesis 2: {q}) by proof {\n"
            "11. or_intro left\n"
            "13. autosolve \n"
            "}\n"
            "15. autosolve \n");
}

TEST(dsl_parser, carriage_returns_belong_to_the_line_end) {
  const std::string script =
      "1. or_intro left\n\n# why\nassert (hypothesis 1: {p}) by {\nautosolve using eqb\n}\nautosolve\n";
  std::string twin;
  for (const char c : script) {
    twin += c == '\n' ? "\r\n" : std::string(1, c);
  }
  EXPECT_NE(printed_script(parse_script(script)), "(none)");
  EXPECT_EQ(printed_script(parse_script(twin)), printed_script(parse_script(script)));
  EXPECT_EQ(parse_script("nonsense\r\n").error.text, "nonsense\r\n");
  EXPECT_FALSE(parses("autosolve all_hypothesis using\r\n"));
}

TEST(dsl_parser, modes_and_bodies_of_assert) {
  const auto assertion = [](const std::string& text) { return std::get<dsl_assert>(only_instruction(text).content); };
  EXPECT_EQ(assertion("assert (hypothesis 1: {p})").mode, dsl_assert_auto);
  EXPECT_EQ(assertion("assert (hypothesis 1: {p}) by admit").mode, dsl_assert_by_admit);
  for (const char* head : {" by proof {#", " by proof{", " by { # why", "by{", " by proof\n{ # why",
                           " by proof # why\n{", " by proof\n\n# why\n1. {"}) {
    const dsl_assert inst = assertion("assert (hypothesis 1: {p})" + std::string(head) + "\nautosolve\n}");
    EXPECT_EQ(inst.mode, dsl_assert_by_proof) << head;
    EXPECT_EQ(inst.proof_body.size(), 1u) << head;
  }
}

TEST(dsl_parser, errors_of_blocks) {
  const std::string assertion = "assert (hypothesis 1: {p}) by proof";
  const std::string no_brace = "assert by proof requires `{` on the same line or the next non-empty line";
  const std::string no_block = "assert by proof requires a proof block in DSL files";
  const std::string not_closed = "missing closing brace for assert proof block";
  const std::string empty = "assert proof block must contain at least one instruction";
  const struct {
    std::string script;
    int line;
    std::string text;
    std::string messages;
  } rows[] = {
      {"\n" + assertion + "\n", 2, no_block, ""},
      {"\n" + assertion + " # why\n\n# end", 2, no_block, ""},
      {assertion + "\n# why\n\nautosolve\n", 4, no_brace, ""},
      {assertion + "\n}\n", 2, no_brace, ""},
      {assertion + "\n{ autosolve\n}\n", 2, no_brace, ""},
      {assertion + " {", 2, not_closed, ""},
      {assertion + " {\nautosolve\n\n", 4, not_closed, ""},
      {assertion + "\n{\n" + assertion + " {\nautosolve\n}\n", 6, not_closed, ""},
      {"\n" + assertion + " {\n\n# nothing\n}\nautosolve\n", 2, empty, ""},
      {assertion + " {\n" + assertion + "\n{\n}\n}\n", 2, empty, ""},
      {assertion + " {\nautosolve\nwrong\n}\n", 3, "wrong\n", "Error: Error parsing line 3: wrong\n\n"},
      {"autosolve\n} # why\n", 2, "} # why\n", "Error: unmatched assert proof block close at line 2: } # why\n\n"},
      {"3. }", 1, "3. }", "Error: unmatched assert proof block close at line 1: 3. }\n"},
  };
  for (const auto& row : rows) {
    const parsed_script script = parse_script(row.script);
    EXPECT_FALSE(script.list.has_value()) << row.script;
    EXPECT_EQ(script.error.line, row.line) << row.script;
    EXPECT_EQ(script.error.text, row.text) << row.script;
    EXPECT_EQ(script.messages, row.messages) << row.script;
  }
}

TEST(dsl_parser, blocks_nest_16_deep) {
  const auto nested = [](int depth) {
    std::string script;
    for (int i = 0; i < depth; ++i) {
      script += "assert (hypothesis 1: {p}) by proof {\n";
    }
    script += "autosolve\n";
    for (int i = 0; i < depth; ++i) {
      script += "}\n";
    }
    return script;
  };
  const parsed_script inside = parse_script(nested(16));
  ASSERT_TRUE(inside.list.has_value());
  const dsl_instruction_list* list = &*inside.list;
  for (int i = 0; i < 16; ++i) {
    list = &std::get<dsl_assert>(list->front().content).proof_body;
  }
  EXPECT_EQ(list->front().number, 17);

  const parsed_script outside = parse_script(nested(17));
  EXPECT_FALSE(outside.list.has_value());
  EXPECT_EQ(outside.error.text, "assert proof block nesting is too deep");
  EXPECT_EQ(outside.error.line, 18) << "behind the line that opens the 17th block";
  EXPECT_EQ(outside.messages, "");
}

TEST(dsl_parser, files_that_hold_no_script) {
  const auto parse_file = [](const std::string& path) {
    parsed_script result;
    result.error = {7, "of an earlier parse"};
    testing::internal::CaptureStderr();
    result.list = parse_dsl_instructions(path, &result.error);
    result.messages = testing::internal::GetCapturedStderr();
    return result;
  };
  const parsed_script missing = parse_file("/nonexistent/script.txt");
  EXPECT_FALSE(missing.list.has_value());
  EXPECT_EQ(missing.error.line, 0);
  EXPECT_EQ(missing.error.text, "/nonexistent/script.txt");
  EXPECT_EQ(missing.messages, "File open failed: No such file or directory\n");

  const parsed_script directory = parse_file("/");
  EXPECT_FALSE(directory.list.has_value());
  EXPECT_EQ(directory.error.line, 1);
  EXPECT_EQ(directory.error.text, "failed reading dsl file line dynamically");
  EXPECT_EQ(directory.messages, "Error: failed reading dsl file line dynamically\n");

  const parsed_script empty = parse_file("/dev/null");
  EXPECT_FALSE(empty.list.has_value());
  EXPECT_EQ(empty.error.line, 0);
  EXPECT_EQ(empty.error.text, "");
  EXPECT_EQ(empty.messages, "");

  EXPECT_FALSE(parse_script("# only\n\n 3.\n# comments").list.has_value());
  const parsed_script binary = parse_script(std::string("\0\xff\x01\n", 4));
  EXPECT_FALSE(binary.list.has_value());
  EXPECT_EQ(binary.error.text, std::string("\0\xff\x01\n", 4));
}

// Nothing here may cost more than its length: each of these takes minutes when a line is scanned again for each of its
// parts.
TEST(dsl_parser, large_scripts) {
  std::string script;
  for (int i = 0; i < 10000; ++i) {
    script += "apply (hypothesis 1: {p})\n";
  }
  const parsed_script many_lines = parse_script(script);
  ASSERT_TRUE(many_lines.list.has_value());
  EXPECT_EQ(many_lines.list->size(), 10000u);
  EXPECT_EQ(many_lines.list->back().number, 10000);

  std::string pairs = "exists";
  for (int i = 0; i < 100000; ++i) {
    pairs += " (x := {a})";
  }
  EXPECT_EQ(std::get<dsl_exists>(only_instruction(pairs).content).list.size(), 100000u);
  expect_bad_line(pairs + " (");

  expect_bad_line("apply (hypothesis 1: " + std::string(4000000, '{') + "})");
  expect_bad_line("autosolve (hypothesis 1: {" + std::string(4000000, ' ') + "}");
  std::string words;
  for (int i = 0; i < 500000; ++i) {
    words += "xusing ";
  }
  expect_bad_line("autosolve " + words);
}

}  // namespace
}  // namespace vetro

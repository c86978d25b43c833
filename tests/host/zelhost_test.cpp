#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "function_pages.h"
#include "host_test_support.h"
#include "support/files.h"

namespace {

using zeltest::fileBytes;

constexpr const char* kFake = ZEL_FAKE_PLUGIN_PATH;
constexpr const char* kReal = ZEL_PLUGIN_PATH;

struct ToolRun {
  int status;
  std::string out;
  std::string err;
};

// Runs zelhost with `plugin` (null: none given), `arguments` (shell words) and `input` on stdin.
ToolRun zelhost(const char* plugin, const std::string& arguments, const std::string& input = "") {
  const auto folder =
      std::filesystem::temp_directory_path() / ("zelhost-test-" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "in", std::ios::binary) << input;
  const std::string command = std::string(ZELHOST_PATH) +
                              (plugin ? std::string(" --plugin ") + plugin : "") + " " + arguments +
                              " <" + (folder / "in").string() + " >" + (folder / "out").string() +
                              " 2>" + (folder / "err").string();
  const int status = std::system(command.c_str());
  ToolRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileBytes(folder / "out"),
              fileBytes(folder / "err")};
  std::filesystem::remove_all(folder);
  return run;
}

struct Case {
  const char* plugin;
  const char* arguments;
  const char* input;
  int status;
  const char* out;  // contained in stdout; "" when stdout must be empty
  const char* err;  // all of stderr
};

void expectRun(const Case& c) {
  const ToolRun run = zelhost(c.plugin, c.arguments, c.input);
  EXPECT_EQ(run.status, c.status) << c.arguments << "\nstderr: " << run.err;
  if (*c.out == '\0') {
    EXPECT_EQ(run.out, "") << c.arguments;
  } else {
    EXPECT_NE(run.out.find(c.out), std::string::npos) << c.arguments << " gave\n" << run.out;
  }
  EXPECT_EQ(run.err, c.err) << c.arguments;
}

TEST(ZelhostTest, CommandsAndExitStatus) {
  const Case cases[] = {
      {kFake, "call --json AddZEL 1", "", 0,
       "{\"function\": \"AddZEL(a as Integer, b as Integer = 2) as Integer\", \"result\": 3, "
       "\"exception\": null, \"leaked\": {\"strings\": 0, \"objects\": 0}}\n",
       ""},
      // A negative Integer result keeps its sign where Integer is 32 bits wide.
      {kFake, "call AddZEL -5", "", 0, "-3\n", ""},
      {kFake, "call UpperZEL text:abc", "", 0, "ABC (UTF-8)\n", ""},
      {kFake, "call EchoZEL hex:ff", "", 0, "hex:ff (no encoding)\n", ""},
      {kFake, "call FailZEL why", "", 0, "nil\nexception OutOfBoundsException: why\n", ""},
      {kFake, "call SplitZEL text:ab", "", 0, "[0] a (UTF-8)\n[1] b (UTF-8)\n", ""},
      {kFake, "--host-version 2012 --ide list --json", "", 0,
       "\"kind\": \"module-property\", \"owner\": \"FakeModuleZEL\", \"declaration\": "
       "\"Debugging as Boolean\", \"flags\": 38, \"setter\": true}]",
       ""},
      {kFake, "list", "", 0, "class-extension-method MemoryBlock.TagZEL", ""},
      {kFake, "batch",
       "{\"name\": \"NotZEL\", \"args\": [true]}\n\n{\"name\": \"HalfZEL\", \"args\": [5]}\n", 0,
       "\"result\": false, \"exception\": null, \"leaked\": {\"strings\": 0, \"objects\": 0}}\n"
       "{\"function\": \"HalfZEL(d as Double) as Double\", \"result\": 2.5,",
       ""},
      {kFake, "batch", "{\"name\": \"NoSuchZEL\"}\n[1]\n{\"name\": \"AddZEL\", \"args\": 1}\n", 2,
       "{\"error\": \"unknown function NoSuchZEL\"}\n{\"error\": \"a request is a JSON object\"}\n"
       "{\"error\": \"\\\"args\\\" must be an array\"}\n",
       ""},
      {kFake, "demo", "", 0, "nothing to show yet\n", ""},
      {kFake, "call AddZEL 1 2 3", "", 2, "",
       "zelhost: no overload of AddZEL takes 3 arguments; there are:\n"
       "  AddZEL(a as Integer, b as Integer = 2) as Integer\n"},
      {kFake, "call NotZEL maybe", "", 2, "",
       "zelhost: wants true or false in argument 1 of NotZEL(b as Boolean) as Boolean\n"},
      {kFake, "call PickZEL hex:4g", "", 2, "",
       "zelhost: no overload of PickZEL fits the arguments; there are:\n"
       "  PickZEL(s as String) as Integer  (bad hex digit 'g' in argument 1)\n"
       "  PickZEL(m as MemoryBlock) as Integer  (wants mem:HEX in argument 1)\n"},
      {kFake, "call SizeZEL mem:abc", "", 2, "",
       "zelhost: odd number of hex digits (3) in argument 1 of SizeZEL(m as MemoryBlock) as "
       "Integer\n"},
      {kFake, "rtf-read file.rtf", "", 2, "", "zelhost: cannot read file.rtf\n"},
      {kFake, "--ide", "", 2, "",
       "zelhost: no command given\nusage: zelhost [--plugin PATH] [--host-version V] [--ide] "
       "COMMAND [OPTION...] [WORD...]; zelhost help lists the commands\n"},
      {kFake, "--host-version soon list", "", 2, "",
       "zelhost: --host-version wants a number, not soon\n"},
      {kFake, "--plugin", "", 2, "", "zelhost: --plugin wants a value\n"},
      {kFake, "--frob list", "", 2, "",
       "zelhost: unknown option --frob; zelhost help lists the options\n"},
      {kFake, "lst", "", 2, "", "zelhost: unknown command lst; did you mean list?\n"},
      {kFake, "frobnicate", "", 2, "",
       "zelhost: unknown command frobnicate; zelhost help lists the commands\n"},
      {kFake, "call", "", 2, "", "zelhost: call wants NAME ARG...\n"},
      {kFake, "demo now", "", 2, "", "zelhost: demo wants no more words\n"},
      {kFake, "list --skip-paragraphs", "", 2, "",
       "zelhost: list takes no option --skip-paragraphs\n"},
  };
  for (const Case& c : cases) expectRun(c);
}

TEST(ZelhostTest, MessagesOfTheRealPlugin) {
  const Case cases[] = {
      {kReal, "call EncodingToHexZEL hex:4g", "", 2, "",
       "zelhost: bad hex digit 'g' in argument 1 of EncodingToHexZEL(s as string) as string\n"},
      {kReal, "call EncodingToHexZEL hex/utf8:41", "", 2, "",
       "zelhost: bad encoding 'utf8' (decimal or 0x-prefixed hex) in argument 1 of "
       "EncodingToHexZEL(s as string) as string\n"},
      {kReal, "call HasPrefixZEL", "", 2, "",
       "zelhost: no overload of HasPrefixZEL takes 0 arguments; there are:\n"
       "  HasPrefixZEL(Text as String, Prefix as String) as boolean\n"},
      {kReal, "call yDecodeStringZEL abc", "", 2, "",
       "zelhost: unknown function yDecodeStringZEL; did you mean _yDecodeStringZEL?\n"},
      {kReal, "help yDecodeMemoryZEL", "", 2, "",
       "zelhost: nothing named yDecodeMemoryZEL is registered; did you mean _yDecodeMemoryZEL?\n"},
      {kReal, "call GetStringsFromDataZEL mem:00414243007f446566000a 1", "", 0,
       "[0] ABC (UTF-8)\n[1] Def (UTF-8)\n", ""},
      {kReal, "demo", "", 0,
       "ConvertUnicodeToCharacterDecompositionZEL(text:\xC3\xA9)\n  -> e\xCC\x81 (UTF-8)\n"
       "     U+00E9 -> U+0065 U+0301\n",
       ""},
      {kReal, "demo", "", 0, "     U+0065 U+0301 -> U+00E9\n", ""},
      {kReal, "demo", "", 0, "  -> [0] ABC (UTF-8)\n     [1] Def (UTF-8)\n", ""},
      {kReal, "--version", "", 0,
       "plug-in: $$ Plugin version: 26.0 (2026) $$, SDK level 13\nUnicode data: 15.0.0\nhost: "
       "2025.03, built application\n",
       ""},
      {kReal, "--host-version 2012.5 --ide version", "", 0,
       "SDK level 10\nUnicode data: 15.0.0\nhost: 2012.5, development environment\n", ""},
      {kFake, "--version", "", 0, "plug-in: no version banner, SDK level 13\n", ""},
      {"/nonexistent/plugin.so", "list", "", 1, "",
       "zelhost: cannot load the plug-in /nonexistent/plugin.so: no such file\n"},
      {ZEL_SOURCE_DIR, "demo", "", 1, "",
       "zelhost: cannot load the plug-in " ZEL_SOURCE_DIR ": not a file\n"},
  };
  for (const Case& c : cases) expectRun(c);
}

TEST(ZelhostTest, AForeignFileIsNotLoaded) {
  const ToolRun run = zelhost(ZEL_SOURCE_DIR "/README.md", "list");
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(
      run.err.starts_with("zelhost: cannot load the plug-in " ZEL_SOURCE_DIR "/README.md: "))
      << run.err;
  EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
}

TEST(ZelhostTest, ListFilterIgnoresCase) {
  const ToolRun run = zelhost(kReal, "list uRl");
  ASSERT_EQ(run.status, 0) << run.err;
  std::istringstream lines(run.out);
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);) found.push_back(line);
  ASSERT_EQ(found.size(), 4U) << run.out;  // EncodingToURLZEL and DecodingFromURLZEL, two each
  for (const std::string& line : found) EXPECT_NE(line.find("URLZEL("), std::string::npos) << line;
  EXPECT_EQ(zelhost(kReal, "list --json NoSuchThing").out, "[]\n");
}

TEST(ZelhostTest, HelpNamesEveryFormAndItsExamplesRun) {
  const ToolRun help = zelhost(nullptr, "--help");
  ASSERT_EQ(help.status, 0) << help.err;
  EXPECT_EQ(zelhost(nullptr, "help").out, help.out);
  EXPECT_EQ(zelhost(nullptr, "-h").out, help.out);
  for (const char* form :
       {"nil ", "text:TEXT", "hex:HEX", "hex/ENC:HEX", "mem:HEX", "ptr:HEX", "true, false",
        "--plugin PATH", "--host-version V", "--ide", "--version", "exit status"}) {
    EXPECT_NE(help.out.find(form), std::string::npos) << form;
  }
  const std::regex example("  (call [A-Z_][^\n]+)\n");
  int examples = 0;
  for (std::sregex_iterator at(help.out.begin(), help.out.end(), example), end; at != end; ++at) {
    const ToolRun run = zelhost(kReal, (*at)[1].str());
    EXPECT_EQ(run.status, 0) << (*at)[1] << ": " << run.err;
    ++examples;
  }
  EXPECT_GE(examples, 10);
}

TEST(ZelhostTest, HelpForAFunctionShowsEveryOverloadAndItsPage) {
  const ToolRun run = zelhost(kReal, "help encodingtourlzel");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "module-method          StringGlobalsZEL.EncodingToURLZEL(s as string) as string  "
            "[flags 0x14]\n"
            "module-method          StringGlobalsZEL.EncodingToURLZEL(s as string, options as "
            "integer) as string  [flags 0x14]\n"
            "reference: docs/functions/transfer_encodings.md\n");
}

class ZelhostPagesTest : public zeltest::PluginFixture {};

// Every function the plug-in registers has a reference page, and that page describes it.
TEST_F(ZelhostPagesTest, EveryRegisteredFunctionHasAPageThatNamesIt) {
  for (const zelhost::RegisteredMember& member : registration().members) {
    if (member.kind == zelhost::RegisteredMember::Kind::ModuleProperty) continue;
    const auto page = zelhost::functionPage(member.parsed.name);
    ASSERT_TRUE(page.has_value()) << member.parsed.name;
    const std::string text =
        fileBytes(std::filesystem::path(ZEL_SOURCE_DIR) / "docs/functions" / (*page + ".md"));
    EXPECT_NE(text.find(member.parsed.name), std::string::npos)
        << member.parsed.name << " is not on " << *page;
  }
}

}  // namespace

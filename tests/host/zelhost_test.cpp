#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

struct ToolRun {
  int status;
  std::string output;
};

// Runs zelhost on the fake plug-in with `arguments` (shell words) and `input` on stdin.
ToolRun zelhost(const std::string& arguments, const std::string& input = "") {
  const std::string command = "printf '" + input +
                              "' | " ZELHOST_PATH " --plugin " ZEL_FAKE_PLUGIN_PATH " " +
                              arguments + " 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    output.append(buffer, got);
  const int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

TEST(ZelhostTest, CommandsAndExitStatus) {
  const struct {
    const char* arguments;
    const char* input;
    int status;
    const char* expected;
  } cases[] = {
      {"call --json AddZEL 1", "", 0,
       "{\"function\": \"AddZEL(a as Integer, b as Integer = 2) as Integer\", \"result\": 3, "
       "\"exception\": null, \"leaked\": {\"strings\": 0, \"objects\": 0}}\n"},
      {"call AddZEL -5", "", 0, "-3\n"},  // a negative Integer result keeps its sign
      {"call UpperZEL text:abc", "", 0, "ABC (UTF-8)\n"},
      {"call EchoZEL hex:ff", "", 0, "hex:ff (no encoding)\n"},
      {"call FailZEL why", "", 0, "nil\nexception OutOfBoundsException: why\n"},
      {"--host-version 2012 --ide list --json", "", 0,
       "\"kind\": \"module-property\", \"owner\": "
       "\"FakeModuleZEL\", \"declaration\": \"Debugging as Boolean\", \"flags\": 38, \"setter\": "
       "true}]"},
      {"list", "", 0, "class-extension-method MemoryBlock.TagZEL"},
      {"batch",
       "{\"name\": \"NotZEL\", \"args\": [true]}\\n\\n{\"name\": \"HalfZEL\", \"args\": "
       "[\"5\"]}\\n",
       0,
       "\"result\": false, \"exception\": null, \"leaked\": {\"strings\": 0, \"objects\": 0}}\n"
       "{\"function\": \"HalfZEL(d as Double) as Double\", \"result\": 2.5,"},
      {"batch", "{\"name\": \"NoSuchZEL\"}\\n", 2, "{\"error\": \"unknown function NoSuchZEL\"}\n"},
      {"call NoSuchZEL", "", 2, ""},
      {"call AddZEL 1 2 3", "", 2, ""},
      {"call NotZEL maybe", "", 2, ""},
      {"rtf-read file.rtf", "", 2, ""},
      {"--host-version soon list", "", 2, ""},
      {"frobnicate", "", 2, ""},
      {"demo", "", 0, "nothing to show yet\n"},
  };
  for (const auto& c : cases) {
    const ToolRun run = zelhost(c.arguments, c.input);
    EXPECT_EQ(run.status, c.status) << c.arguments;
    if (*c.expected == '\0') {
      EXPECT_EQ(run.output, "") << c.arguments;
    } else {
      EXPECT_NE(run.output.find(c.expected), std::string::npos)
          << c.arguments << " gave " << run.output;
    }
  }
}

}  // namespace

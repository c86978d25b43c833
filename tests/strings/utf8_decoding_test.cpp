// Malformed UTF-8 arguments through a registered function that reads the text as UTF-16: decoding
// stops at the bad sequence and never swallows the ASCII byte inside it.
#include <gtest/gtest.h>

#include <string>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using namespace zeltest;

constexpr const char* kCompose =
    "ConvertUnicodeToCharacterCompositionZEL(text as string) as string";

class Utf8DecodingTest : public PluginFixture {};

TEST_F(Utf8DecodingTest, ABadSecondByteEndsTheText) {
  const struct {
    std::string input, expected;
  } cases[] = {
      {"a\xED\x41\x80z", "a"},
      {"a\xED<\x80z", "a"},
      {"a\xF4\"\x80\x80z", "a"},
      {"a\xED\x7F\x80z", "a"},
      {"a\xED\x9F\xBFz", "a\xED\x9F\xBFz"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.input));
    const HostString argument(c.input, encoding::kUTF8);
    expectString(zelhost::call<REALstring>(kCompose, argument.get()), c.expected, encoding::kUTF8);
  }
}

}  // namespace

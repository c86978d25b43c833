// Composition, decomposition and accent removal through the built plug-in, where the reference's
// examples cannot reach: the debug log and the development environment.
#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using zeltest::HostString;
using zeltest::utf16Bytes;

constexpr const char* kCompose =
    "ConvertUnicodeToCharacterCompositionZEL(text as string) as string";
constexpr const char* kDecompose =
    "ConvertUnicodeToCharacterDecompositionZEL(text as string) as string";
constexpr const char* kRemoveAccents =
    "RemoveAccentsZEL(text as string, IgnoreCase as boolean = false) as string";

struct Case {
  std::optional<std::string> input;  // nullopt: the nil string
  std::uint32_t inputEncoding;
  std::optional<std::string> expected;  // UTF-8; nullopt: the nil string
  bool ignoreCase = false;
};
const std::uint32_t kUtf8 = encoding::kUTF8, kUtf16 = encoding::kUTF16;

// Text results are built from UTF-16 and handed back as UTF-8.
void checkRemoveAccents(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.input));
    const HostString argument(zeltest::makeArgument(c.input, c.inputEncoding));
    zeltest::expectString(
        zelhost::call<REALstring>(kRemoveAccents, argument.get(), RBBoolean{c.ignoreCase}),
        c.expected, kUtf8);
  }
}

// The debug lines appear in this order, with the bridge's own lines in between.
testing::AssertionResult containsInOrder(const std::vector<std::string>& log,
                                         const std::vector<std::string>& expected) {
  auto wanted = expected.begin();
  for (const std::string& line : log) {
    if (wanted != expected.end() && line == "ZEL Debug: " + *wanted) ++wanted;
  }
  if (wanted == expected.end()) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "missing \"" << *wanted << "\" in " << testing::PrintToString(log);
}

class UnicodeDebugTest : public zeltest::DebugSwitchOn<> {
 protected:
  std::vector<std::string> logOf(const char* declaration, std::u16string_view text) {
    zelhost::captureLog(true);
    const HostString argument(utf16Bytes(text), kUtf16);
    const HostString result(zelhost::call<REALstring>(declaration, argument.get()));
    return zelhost::capturedLog();
  }
};

TEST_F(UnicodeDebugTest, CompositionLogsTableSizeLookupsAndOutputLength) {
  EXPECT_TRUE(
      containsInOrder(logOf(kCompose, u"1e\u0301"),
                      {"ConvertUnicodeToCharacterCompositionZEL", "count compositions 12197",
                       "findCompositionInText 101", "outsize 2"}));
}

TEST_F(UnicodeDebugTest, DecompositionLogsItsBinarySearch) {
  // U+00E9 is row 34 of the table: six rows from U+00C0, nine from U+00C7, six from U+00D1,
  // five from U+00D9, six from U+00E0, then U+00E7 and U+00E8.
  EXPECT_TRUE(containsInOrder(
      logOf(kDecompose, u"\u00E9\u2126"),
      {"ConvertUnicodeToCharacterDecompositionZEL", "findComposition 233", "middle before 6098",
       "middle 3048", "Char found 233, 34", "findComposition 8486", "middle before 6098",
       "Char not found 8486", "outsize 3"}));
}

TEST_F(UnicodeDebugTest, NilArgumentsReturnBeforeLogging) {
  zelhost::captureLog(true);
  for (const char* declaration : {kCompose, kDecompose}) {
    EXPECT_EQ(zelhost::call<REALstring>(declaration, REALstring{nullptr}), nullptr);
  }
  EXPECT_THAT(zelhost::capturedLog(), testing::IsEmpty());
}

// In the development environment the folding table is never built: every unit looked up in it
// reads as U+0000, while marks are still dropped and fractions still spelled out.
class RemoveAccentsInIdeTest : public zeltest::PluginFixture {
 protected:
  zelhost::HostConfig hostConfig() const override { return {.inRuntime = false}; }
};

TEST_F(RemoveAccentsInIdeTest, UnbuiltTableGivesZeroUnits) {
  checkRemoveAccents({
      {"ab\u0301\u00BD", kUtf8, std::string(2, '\0') + "1/2"},
      {"\u00E6z", kUtf8, std::string("AE\0", 3), true},
      {"", kUtf8, std::nullopt},
  });
}

}  // namespace

// Composition, decomposition and accent removal through the built plug-in.
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
void check(const char* declaration, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.input));
    const HostString argument(zeltest::makeArgument(c.input, c.inputEncoding));
    zeltest::expectString(
        std::string_view(declaration) == kRemoveAccents
            ? zelhost::call<REALstring>(declaration, argument.get(), RBBoolean{c.ignoreCase})
            : zelhost::call<REALstring>(declaration, argument.get()),
        c.expected, kUtf8);
  }
}

class UnicodeTest : public zeltest::PluginFixture {};

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

TEST_F(UnicodeTest, CompositionTakesTheFirstRowThatMatches) {
  check(kCompose, {
                      {"e\u0301", kUtf8, "\u00E9"},
                      {utf16Bytes(u"\u1100\u1161"), kUtf16, "\uAC00"},
                      {"\U000242EE!", kUtf8, "\uFA6C!"},
                      // Malformed UTF-8 ends the text, with the ASCII byte inside the sequence.
                      {"a\xED<\x80z", kUtf8, "a"},
                      {"", kUtf8, std::nullopt},
                      {std::nullopt, 0, std::nullopt},
                  });
}

TEST_F(UnicodeTest, DecompositionReplacesEveryUnitThatHasARow) {
  check(kDecompose, {
                        {"\u00E9", kUtf8, "e\u0301"},
                        {utf16Bytes(u"\uAC01"), kUtf16, "\u1100\u1161\u11A8"},
                        {"caf\xE9", encoding::kNone, "cafe\u0301"},
                        {"", kUtf8, std::nullopt},
                        {std::nullopt, 0, std::nullopt},
                    });
}

TEST_F(UnicodeTest, RemoveAccentsReducesToBaseLetters) {
  check(kRemoveAccents, {
                            {"Cr\u00E8me Br\u00FBl\u00E9e", kUtf8, "CREME BRULEE", true},
                            {"\u0401 \u00DE \u00DF", kUtf8, "\u0401 P s"},
                            {utf16Bytes(u"\u212Bngstr\u00F6m"), kUtf16, "Angstrom"},
                            {"", kUtf8, std::nullopt},
                            {std::nullopt, 0, std::nullopt, true},
                        });
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
  check(kRemoveAccents, {
                            {"ab\u0301\u00BD", kUtf8, std::string(2, '\0') + "1/2"},
                            {"\u00E6z", kUtf8, std::string("AE\0", 3), true},
                            {"", kUtf8, std::nullopt},
                        });
}

}  // namespace

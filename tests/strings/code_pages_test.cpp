// The four code page functions through the built plug-in: raw bytes in, UTF-16 built text out;
// any text in, bytes out.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using zeltest::HostString;
using zeltest::utf16Bytes;
namespace enc = encoding;

constexpr std::uint32_t kNil = 0;

struct Case {
  const char* declaration;
  std::optional<std::string> input;  // nullopt: the nil string
  std::uint32_t inputEncoding;
  std::string expected;  // empty: the nil string
  std::uint32_t expectedEncoding;
};

constexpr const char* kDecodeIso = "DecodingFromISO8859ZEL(s as string) as string";
constexpr const char* kDecodeCp = "DecodingFromCP1252ZEL(s as string) as string";
constexpr const char* kEncodeIso = "EncodingToISO8859ZEL(s as string) as string";
constexpr const char* kEncodeCp = "EncodingToCP1252ZEL(s as string) as string";

class CodePagesTest : public zeltest::PluginFixture {
 protected:
  void check(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.declaration) + " of " + testing::PrintToString(c.input));
      const HostString argument(zeltest::makeArgument(c.input, c.inputEncoding));
      zeltest::expectString(zelhost::call<REALstring>(c.declaration, argument.get()),
                            c.expected.empty() ? std::nullopt : std::optional(c.expected),
                            c.expectedEncoding);
    }
  }
};

TEST_F(CodePagesTest, DecodingReadsTheStoredBytesWhateverTheirEncoding) {
  check({
      {kDecodeCp, "\x80", enc::kNone, "\u20AC", enc::kUTF8},
      {kDecodeCp, "\x81", enc::kNone, std::string(1, '\0'), enc::kUTF8},
      {kDecodeIso, "\x80", enc::kNone, "\u0080", enc::kUTF8},
      {kDecodeIso, "caf\xE9", enc::kUTF8, "caf\u00E9", enc::kUTF8},
      // UTF-8 "é" is two bytes and decodes as two characters.
      {kDecodeIso, "\u00E9", enc::kUTF8, "\u00C3\u00A9", enc::kUTF8},
      {kDecodeCp, utf16Bytes(u"A"), enc::kUTF16, std::string("A\0", 2), enc::kUTF8},
      {kDecodeIso, "plain", enc::kASCII, "plain", enc::kUTF8},
      {kDecodeIso, "", enc::kUTF8, "", kNil},
      {kDecodeCp, std::nullopt, kNil, "", kNil},
  });
}

TEST_F(CodePagesTest, EncodingTakesTheTextAndDropsWhatThePageLacks) {
  check({
      {kEncodeCp, "\u20ACuro", enc::kUTF8, "\x80uro", enc::kNone},
      {kEncodeCp, "abc", enc::kUTF8, "abc", enc::kASCII},
      {kEncodeIso, "a\u20ACbc", enc::kUTF8, "abc", enc::kASCII},
      {kEncodeIso, "x\u4E00y\u00E9", enc::kUTF8, "xy\xE9", enc::kNone},
      {kEncodeIso, utf16Bytes(u"\u00E9t\u00E9"), enc::kUTF16, "\xE9t\xE9", enc::kNone},
      {kEncodeCp, "\x80\xE9s", enc::kWindowsLatin1, "\x80\xE9s", enc::kNone},
      {kEncodeIso, "\xE9t\xE9", enc::kNone, "\xE9t\xE9", enc::kNone},
      {kEncodeCp, std::string("\0ab", 3), enc::kUTF8, std::string("\0ab", 3), enc::kASCII},
      {kEncodeCp, "\u0081\u0090\u009D", enc::kUTF8, "", kNil},
      {kEncodeCp, "ab", enc::kUTF8, "", kNil},
      {kEncodeIso, "", enc::kUTF8, "", kNil},
      {kEncodeCp, std::nullopt, kNil, "", kNil},
  });
}

}  // namespace

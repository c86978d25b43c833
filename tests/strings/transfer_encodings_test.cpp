// Hexadecimal, URL, quoted-printable and mail-subject encodings through the built plug-in.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using namespace std::string_literals;
using zeltest::HostString;

constexpr std::uint32_t kNone = encoding::kNone, kAscii = encoding::kASCII, kUtf8 = encoding::kUTF8,
                        kUtf16 = encoding::kUTF16, kLatin1 = encoding::kISOLatin1;
const std::nullopt_t nil = std::nullopt;

struct Case {
  const char* function;
  std::optional<RBInteger> option;  // the integer argument, for the forms that take one
  std::optional<std::string> input;
  std::uint32_t inputEncoding;
  std::optional<std::string> expected;  // nullopt: the nil string
  std::uint32_t expectedEncoding = kAscii;
};

void check(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.function) + " of " + testing::PrintToString(c.input) +
                 (c.option ? " with " + std::to_string(*c.option) : ""));
    const HostString input(zeltest::makeArgument(c.input, c.inputEncoding));
    zeltest::expectString(c.option ? zelhost::call<REALstring>(c.function, input.get(), *c.option)
                                   : zelhost::call<REALstring>(c.function, input.get()),
                          c.expected, c.expectedEncoding);
  }
}

class TransferEncodingsTest : public zeltest::PluginFixture {};

TEST_F(TransferEncodingsTest, HexEncodesRawBytesAndDecodesTheAsciiText) {
  check({
      {"EncodingToHexZEL", {}, "\x00\xFF"s, kNone, "00FF"},
      {"EncodingToHexZEL", {}, "Z\xC3\xBCrich", kUtf8, "5AC3BC72696368"},
      {"EncodingToHexZEL", {}, "\xFC", kLatin1, "FC"},
      {"EncodingToHexZEL", {}, "", kUtf8, nil},
      {"EncodingToHexZEL", {}, nil, 0, nil},
      {"DecodingFromHexZEL", {}, "00ff", kUtf8, "\x00\xFF"s, kNone},
      {"DecodingFromHexZEL",
       {},
       "4\0"
       "1\0"
       "4\0"
       "2\0"s,
       kUtf16,
       "AB"},
      {"DecodingFromHexZEL",
       {},
       "\xC3\xA9"
       "1",
       kUtf8,
       "\x01"},
      {"DecodingFromHexZEL", {}, "a", kUtf8, nil},
      {"DecodingFromHexZEL", {}, nil, 0, nil},
  });
}

TEST_F(TransferEncodingsTest, UrlOptionsDecideSpaceAndPlus) {
  check({
      {"EncodingToURLZEL", {}, "a b+c", kUtf8, "a%20b+c"},
      {"EncodingToURLZEL", 1, "a b+c", kUtf8, "a+b%2Bc"},
      {"EncodingToURLZEL", 2, "a b+c", kUtf8, "a%20b%2Bc"},
      {"EncodingToURLZEL", {}, "\xC3\xA9", kUtf8, "%C3%A9"},
      {"EncodingToURLZEL", {}, "\xE9\x00"s, kUtf16, "%E9%00"},
      {"EncodingToURLZEL", 1, nil, 0, nil},
      {"DecodingFromURLZEL", {}, "a+b", kUtf8, "a+b"},
      {"DecodingFromURLZEL", 1, "a+b", kUtf8, "a b"},
      {"DecodingFromURLZEL", 0, "%C3%A9", kAscii, "\xC3\xA9", kNone},
      {"DecodingFromURLZEL", {}, "", kUtf8, nil},
      {"DecodingFromURLZEL", 1, nil, 0, nil},
  });
}

TEST_F(TransferEncodingsTest, QuotedPrintableRoundTrip) {
  check({
      {"EncodingToQuotedPrintableZEL", 72, "a=b\xE9", kLatin1, "a=3Db=E9"},
      {"EncodingToQuotedPrintableZEL", 72, "a \nb", kUtf8, "a=20\r\nb=\r\n"},
      {"EncodingToQuotedPrintableZEL", 0, "a ", kUtf8, "a "},
      {"EncodingToQuotedPrintableZEL", 1, "a\nb", kUtf8, "a\r\nb=\r\n"},
      {"EncodingToQuotedPrintableZEL", 72, nil, 0, nil},
      {"DecodingFromQuotedPrintableZEL", {}, "a= \r\nb\r\nc", kUtf8, "ab\nc"},
      {"DecodingFromQuotedPrintableZEL", {}, "=E9=ZZ", kUtf8, "\xE9=ZZ", kAscii},
      {"DecodingFromQuotedPrintableZEL", {}, nil, 0, nil},
  });
}

TEST_F(TransferEncodingsTest, EmailSubjectBecomesOneEncodedWordFromUtf8) {
  check({
      {"EncodeEmailSubjectZEL",
       {},
       "Gr\xC3\xBC\xC3\x9F"
       "e a_b",
       kUtf8,
       "=?utf-8?Q?Gr=C3=BC=C3=9Fe_a=5Fb?="},
      {"EncodeEmailSubjectZEL",
       {},
       "\xE9\x00?\x00"s,
       kUtf16,
       "=?utf-8?Q?=C3=A9?"
       "?="},
      {"EncodeEmailSubjectZEL", {}, "x=\xE9", kLatin1, "=?utf-8?Q?x=3D=C3=A9?="},
      {"EncodeEmailSubjectZEL", {}, "a\tb", kUtf8, "=?utf-8?Q?a\tb?="},
      {"EncodeEmailSubjectZEL", {}, nil, 0, nil},
  });
}

TEST_F(TransferEncodingsTest, PlainSubjectIsTheCallersOwnString) {
  const std::pair<const char*, std::uint32_t> plain[] = {
      {"Hello World", kUtf8}, {"Hello", kLatin1}, {"", kUtf8}};
  for (const auto& [text, encoding] : plain) {
    SCOPED_TRACE(text);
    const HostString subject(text, encoding);
    zeltest::expectOwnString(zelhost::call<REALstring>("EncodeEmailSubjectZEL", subject.get()),
                             subject);
    EXPECT_EQ(subject.encoding(), encoding);
  }
}

TEST_F(TransferEncodingsTest, ConcurrentUrlCallsKeepTheirOwnOptions) {
  auto encodeMany = [](RBInteger options, std::string expected) {
    const HostString input("a b+c", kUtf8);
    for (int i = 0; i < 200; ++i) {
      const HostString result(zelhost::call<REALstring>("EncodingToURLZEL", input.get(), options));
      if (result.bytes() != expected) return false;
    }
    return true;
  };
  bool formOk = false, escapedOk = false;
  std::thread form([&] { formOk = encodeMany(1, "a+b%2Bc"); });
  std::thread escaped([&] { escapedOk = encodeMany(2, "a%20b%2Bc"); });
  form.join();
  escaped.join();
  EXPECT_TRUE(formOk);
  EXPECT_TRUE(escapedOk);
}

}  // namespace

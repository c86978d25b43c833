#include "strings/code_pages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zel::strings {
namespace {

std::u16string decode(std::vector<std::uint8_t> bytes, CodePage page) {
  return decodeCodePage(bytes, page);
}

struct DecodeCase {
  CodePage page;
  std::uint8_t byte;
  char16_t unit;
};

TEST(CodePagesKernel, DecodesEachByteByTable) {
  const DecodeCase cases[] = {
      {CodePage::Windows1252, 0x80, 0x20AC}, {CodePage::Windows1252, 0x81, 0x0000},
      {CodePage::Windows1252, 0x8D, 0x0000}, {CodePage::Windows1252, 0x8F, 0x0000},
      {CodePage::Windows1252, 0x90, 0x0000}, {CodePage::Windows1252, 0x9D, 0x0000},
      {CodePage::Windows1252, 0x8C, 0x0152}, {CodePage::Windows1252, 0x9F, 0x0178},
      {CodePage::Windows1252, 0x99, 0x2122}, {CodePage::Windows1252, 0x7F, 0x007F},
      {CodePage::Windows1252, 0xA0, 0x00A0}, {CodePage::Windows1252, 0xFF, 0x00FF},
      {CodePage::Iso8859_1, 0x80, 0x0080},   {CodePage::Iso8859_1, 0x9F, 0x009F},
      {CodePage::Iso8859_1, 0x00, 0x0000},   {CodePage::Iso8859_1, 0xFF, 0x00FF},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(decode({c.byte}, c.page), std::u16string(1, c.unit)) << int{c.byte};
  }
  EXPECT_EQ(decode({}, CodePage::Iso8859_1), u"");
  EXPECT_EQ(decode({0x41, 0x80, 0x42}, CodePage::Windows1252), u"A\u20ACB");
}

struct EncodeCase {
  CodePage page;
  std::u16string text;
  std::string bytes;
};

TEST(CodePagesKernel, EncodesByFirstMatchAndDropsTheRest) {
  const EncodeCase cases[] = {
      {CodePage::Windows1252, u"\u20ACuro", "\x80uro"},
      {CodePage::Windows1252, u"ab", ""},
      {CodePage::Windows1252, u"\u20AC", ""},
      {CodePage::Windows1252, u"abc", "abc"},
      {CodePage::Iso8859_1, u"a\u20ACbc", "abc"},
      {CodePage::Iso8859_1, u"x\u4E00yz", "xyz"},
      {CodePage::Windows1252, u"x\u4E00yz", "xyz"},
      // U+0000 finds byte 0 before the undefined positions that also hold 0.
      {CodePage::Windows1252, std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
      {CodePage::Windows1252, u"a\u0081\u0080b", "ab"},
      {CodePage::Iso8859_1, u"a\u0081\u0080b",
       "a\x81\x80"
       "b"},
      {CodePage::Iso8859_1, u"\u0152\u0153\u017D", ""},
      {CodePage::Windows1252, u"\u0152\u0153\u017D\u2122", "\x8C\x9C\x8E\x99"},
      {CodePage::Windows1252, u"\u00E9t\u00E9", "\xE9t\xE9"},
      // Each surrogate half is looked up alone.
      {CodePage::Iso8859_1, u"a\U0001F600b", "ab"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(encodeCodePage(c.text, c.page), c.bytes);
  }
}

TEST(CodePagesKernel, EveryDefinedByteSurvivesTheRoundTrip) {
  std::vector<std::uint8_t> all(256);
  for (int byte = 0; byte < 256; ++byte)
    all[static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(byte);
  const std::string identity(all.begin(), all.end());
  EXPECT_EQ(encodeCodePage(decodeCodePage(all, CodePage::Iso8859_1), CodePage::Iso8859_1),
            identity);

  std::string expected = identity;
  for (const std::size_t undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) expected[undefined] = '\0';
  EXPECT_EQ(encodeCodePage(decodeCodePage(all, CodePage::Windows1252), CodePage::Windows1252),
            expected);
}

}  // namespace
}  // namespace zel::strings

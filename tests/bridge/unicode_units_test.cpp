// The bridge's pure conversions: the old hosts' UTF-32 to UTF-16 path and the UTF-16 to UTF-32
// fallback.
#include <gtest/gtest.h>

#include <vector>

#include "bridge/unicode_units.h"
#include "bridge_fixture.h"

namespace zel {
namespace {

TEST(UnicodeUnits, FallbackCombinationKeepsItsAsymmetry) {
  const struct {
    std::u16string_view units;
    std::u32string_view expected;
  } cases[] = {
      {u"\xDC00\x0041\x0042", U"\x42"},    // a low surrogate takes the next unit with it
      {u"\xD800\x0041\x0042", U"\x42"},    // a high one followed by anything else: both go
      {u"\xD83D\xDE00x", U"\U0001F600x"},  // a pair
      {u"A\xD800", U"A\xD800"},            // lone and last: kept
      {u"A\xDC00", U"A\xDC00"},           {u"\xD800\xD800\xDC00", U"\xDC00"}, {u"", U""},
  };
  for (const auto& c : cases) {
    std::vector<char32_t> out(c.units.size() + 1, 0xFFFF);
    const std::size_t count = combineUtf16ToUtf32(c.units, out.data());
    EXPECT_EQ(std::u32string_view(out.data(), count), c.expected);
    EXPECT_EQ(out[count], 0U);
  }
}

TEST(UnicodeUnits, Utf32ToUtf16ForOldHosts) {
  using zeltest::utf32Bytes;
  const struct {
    std::string bytes;
    std::u16string_view expected;
  } cases[] = {
      {utf32Bytes(U"A\x110000\xD800\U0001F600\xDFFF"), u"A\xFFFD\xD83D\xDE00"},
      {utf32Bytes(U"A") + std::string("\x42\x00", 2), u"A"},  // a partial code point is ignored
      {utf32Bytes(U"\xFFFFFFFF"), u"\xFFFD"},
      {std::string("\0\0\0\0", 4), {u"\0", 1}},
  };
  for (const auto& c : cases) {
    std::vector<char16_t> out(c.bytes.size() / 2 + 1, 0xAAAA);
    const std::size_t count = utf32BytesToUtf16(
        {reinterpret_cast<const std::uint8_t*>(c.bytes.data()), c.bytes.size()}, out.data());
    EXPECT_EQ(std::u16string_view(out.data(), count), c.expected);
    EXPECT_EQ(out[count], 0);
  }
}

TEST(UnicodeUnits, AsciiTestCoversWordsAndTail) {
  std::string text(21, 'a');
  const auto bytes = [&] {
    return std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  };
  EXPECT_TRUE(isAscii(bytes()));
  text[20] = '\x7F';
  EXPECT_TRUE(isAscii(bytes()));
  for (const std::size_t at : {0u, 7u, 9u, 20u}) {
    text.assign(21, 'a');
    text[at] = '\x80';
    EXPECT_FALSE(isAscii(bytes())) << at;
  }
  EXPECT_TRUE(isAscii({}));
}

}  // namespace
}  // namespace zel

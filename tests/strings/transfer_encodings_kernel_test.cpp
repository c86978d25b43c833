#include "strings/transfer_encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "strings/kernel_test_support.h"
#include "text/simd_path.h"

namespace zel::strings {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Case {
  std::string input;
  std::int64_t option;
  std::string expected;
};

TEST(HexKernel, EncodeAndDecode) {
  EXPECT_EQ(encodeHex("\x00\xFF\x5A"s), "00FF5A");
  EXPECT_EQ(encodeHex(""), "");
  const std::vector<Case> decodes = {
      {"00ff", 0, "\x00\xFF"s}, {"abc", 0, "\xAB"}, {"a", 0, ""},         {"ZZ", 0, "\0"s},
      {"G1", 0, "\x01"},        {"1G", 0, "\x10"},  {"4a 4A", 0, "J\x04"}};
  for (const auto& c : decodes) EXPECT_EQ(decodeHex(ExactBytes(c.input)), c.expected) << c.input;
}

TEST(UrlKernel, EncodeFollowsTheEscapeTableAndOptions) {
  const std::vector<Case> cases = {
      {"a b+c", 0, "a%20b+c"},
      {"a b+c", 3, "a%20b+c"},
      {"a b+c", 1, "a+b%2Bc"},
      {"a b+c", 2, "a%20b%2Bc"},
      {"a b+c", 5, "a+b%2Bc"},
      {"a b+c", -4, "a%20b+c"},
      {"\xC3\xA9", 0, "%C3%A9"},
      {"~_.-!*@", 0, "~_.-!*@"},
      {"'", 0, "%27"},
      {"\0\x7F"s, 1, "%00%7F"},
      {"", 0, ""},
      {"\"#$%&(),/:;<=>?[\\]^`{|}", 0,
       "%22%23%24%25%26%28%29%2C%2F%3A%3B%3C%3D%3E%3F%5B%5C%5D%5E%60%7B%7C%7D"}};
  for (const auto& c : cases)
    EXPECT_EQ(encodeUrl(ExactBytes(c.input), c.option), c.expected) << c.input;

  const std::string plain =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!*+-.@_~";
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
    EXPECT_EQ(encodeUrl(one, 0), plain.find(one) != std::string::npos ? one : escaped) << byte;
  }
}

TEST(UrlKernel, DecodeReadsBadOrMissingDigitsAsZero) {
  const std::vector<Case> cases = {{"a+b", 0, "a+b"},
                                   {"a+b", 1, "a b"},
                                   {"a+b", 3, "a b"},
                                   {"a+b", 2, "a+b"},
                                   {"%41%4a", 0, "AJ"},
                                   {"%zz", 0, "\0"s},
                                   {"%g1x", 0, "\x01x"},
                                   {"%4g", 0, "@"},
                                   {"a%2", 0, "a "},
                                   {"100%", 0, "100\0"s},
                                   {"%", 0, "\0"s},
                                   {"%%41", 0,
                                    "\x04"
                                    "1"},
                                   {"", 1, ""}};
  for (const auto& c : cases)
    EXPECT_EQ(decodeUrl(ExactBytes(c.input), c.option), c.expected) << c.input;
  // Option 3 encodes like 0 but decodes like 1, so it does not undo itself.
  EXPECT_EQ(decodeUrl(encodeUrl("a+b", 3), 3), "a b");
}

TEST(QuotedPrintableKernel, EncodeCases) {
  const std::vector<Case> cases = {{"a=b", 72, "a=3Db"},
                                   {"\xE9t\xE9", 72, "=E9t=E9"},
                                   {"a \nb", 72, "a=20\r\nb=\r\n"},
                                   {"a ", 72, "a "},
                                   {"a  b", 72, "a  b"},
                                   {"a \t\n", 72, "a =09\r\n"},
                                   {"a\nb", 72, "a\r\nb=\r\n"},
                                   {"a\r\nb", 72, "a\r\nb=\r\n"},
                                   {"a\n\rb", 72, "a\r\nb=\r\n"},
                                   {"a\r\rb", 72, "a\r\n\r\nb=\r\n"},
                                   {"a\n", 72, "a\r\n"},
                                   {"!\"#$@[\\]^`{|}~", 72, "!\"#$@[\\]^`{|}~"},
                                   {"aaaaaaaaaaaa", 10, "aaaaaaaa=\r\naaaa"},
                                   {"aaaaa\xFF", 10, "aaaaa=FF"},
                                   {"aaaaaa\xFF", 10, "aaaaaa=\r\n=FF"},
                                   {"ab", 2, "=\r\na=\r\nb"},
                                   {"", 72, ""}};
  for (const auto& c : cases)
    EXPECT_EQ(encodeQuotedPrintable(ExactBytes(c.input), c.option), c.expected) << c.input;

  const std::string text(500, 'x');
  for (const std::int64_t tooShort : {0LL, 1LL, -5LL, 1LL << 32, (1LL << 32) + 72}) {
    EXPECT_EQ(encodeQuotedPrintable(text, tooShort), encodeQuotedPrintable(text, 72)) << tooShort;
  }
}

// Every kind of line break collapses to one LF, as the decoder writes it.
std::string withLfBreaks(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' && text[i] != '\n') {
      out += text[i];
      continue;
    }
    if (i + 1 < text.size() && (text[i + 1] == '\r' || text[i + 1] == '\n') &&
        text[i + 1] != text[i])
      ++i;
    out += '\n';
  }
  return out;
}

// Every string of one and two bytes: 256 + 65,536 inputs.
std::vector<std::string> everyShortString() {
  constexpr int kByteValues = 256;
  std::vector<std::string> all;
  all.reserve(kByteValues + kByteValues * kByteValues);
  for (int first = 0; first < kByteValues; ++first) {
    all.emplace_back(1, static_cast<char>(first));
    for (int second = 0; second < kByteValues; ++second) {
      all.push_back({static_cast<char>(first), static_cast<char>(second)});
    }
  }
  return all;
}

bool isAsciiText(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

struct RoundTrip {
  const char* name;
  std::function<std::string(std::string_view)> encode;
  std::function<std::string(std::string_view)> decode;
  std::function<std::string(std::string_view)> restored;  // what decoding gives back
};

TEST(TransferEncodingKernels, EveryShortStringRoundTripsThroughAsciiText) {
  using Text = std::string_view;
  const auto same = [](Text text) { return std::string(text); };
  const auto url = [](std::int64_t option) {
    return [=](Text bytes) { return encodeUrl(bytes, option); };
  };
  const auto fromUrl = [](std::int64_t option) {
    return [=](Text bytes) { return decodeUrl(bytes, option); };
  };
  const auto qp = [](std::int64_t lineLength) {
    return [=](Text bytes) { return encodeQuotedPrintable(bytes, lineLength); };
  };
  // Option 3 keeps "+" like option 0, so decoding without options undoes it.
  const RoundTrip trips[] = {
      {"hex", encodeHex, decodeHex, same},
      {"url 0", url(0), fromUrl(0), same},
      {"url 1", url(1), fromUrl(1), same},
      {"url 2", url(2), fromUrl(2), same},
      {"url 3", url(3), fromUrl(0), same},
      {"quoted-printable", qp(72), decodeQuotedPrintable, withLfBreaks},
      {"quoted-printable, soft break before every character", qp(2), decodeQuotedPrintable,
       withLfBreaks},
  };
  const std::vector<std::string> inputs = everyShortString();
  for (const auto& trip : trips) {
    for (const std::string& input : inputs) {
      const std::string encoded = trip.encode(ExactBytes(input));
      ASSERT_TRUE(isAsciiText(encoded)) << trip.name << ": " << encodeHex(input);
      ASSERT_EQ(trip.decode(ExactBytes(encoded)), trip.restored(input))
          << trip.name << ": " << encodeHex(input);
    }
  }
}

// Runs each case once on every vector path this processor offers.
class HexOnEachPath : public testing::TestWithParam<text::SimdPath> {
 protected:
  void SetUp() override { text::forceSimdPath(GetParam()); }
  void TearDown() override { text::forceSimdPath(text::supportedSimdPaths().back()); }
};

INSTANTIATE_TEST_SUITE_P(
    Paths, HexOnEachPath,
    testing::ValuesIn(std::vector<text::SimdPath>(text::supportedSimdPaths().begin(),
                                                  text::supportedSimdPaths().end())),
    [](const auto& path) { return std::string(text::simdPathName(path.param)); });

std::string referenceEncodeHex(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    std::array<char, 3> pair{};
    std::snprintf(pair.data(), pair.size(), "%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    out += pair.data();
  }
  return out;
}

std::string referenceDecodeHex(std::string_view digits) {
  const auto value = [](const char& c) {
    unsigned parsed = 0;  // stays 0 for a character that is not a digit
    std::from_chars(&c, &c + 1, parsed, 16);
    return parsed;
  };
  std::string out;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    out += static_cast<char>(value(digits[i]) * 16 + value(digits[i + 1]));
  }
  return out;
}

// Digits of both cases, and the characters beside each digit range, also with the high bit set.
constexpr std::string_view kDigitNeighbours =
    "0123456789abcdefABCDEF/:@G`g \0\x80\xB0\xB9\xC1\xE6\xFF"sv;

TEST_P(HexOnEachPath, EveryLengthUpTo200AgreesWithTheReference) {
  std::mt19937 random(2026);
  for (std::size_t length = 0; length <= 200; ++length) {
    std::string bytes(length, '\0');
    std::string digits(length, '\0');
    for (std::size_t i = 0; i < length; ++i) {
      bytes[i] = static_cast<char>(random());
      digits[i] = kDigitNeighbours[random() % kDigitNeighbours.size()];
    }
    ASSERT_EQ(encodeHex(ExactBytes(bytes)), referenceEncodeHex(bytes)) << length;
    ASSERT_EQ(decodeHex(ExactBytes(digits)), referenceDecodeHex(digits)) << digits;
  }
}

TEST_P(HexOnEachPath, EveryBadCharacterPositionDecodesLikeTheReference) {
  std::string valid;
  for (int i = 0; valid.size() < 200; ++i)
    valid += referenceEncodeHex(std::string(1, static_cast<char>(i * 37)));
  for (std::size_t at = 0; at < valid.size(); ++at) {
    ASSERT_EQ(decodeHex(ExactBytes(valid.substr(0, at))), referenceDecodeHex(valid.substr(0, at)));
    for (const char bad : kDigitNeighbours.substr(kDigitNeighbours.find('/'))) {
      std::string broken = valid;
      broken[at] = bad;
      ASSERT_EQ(decodeHex(ExactBytes(broken)), referenceDecodeHex(broken)) << at << ' ' << +bad;
    }
  }
}

// All of them in one run, so that every byte and every pair of characters passes through the
// vector blocks.
TEST_P(HexOnEachPath, EveryShortStringAndEveryPairRoundTripsInsideBlocks) {
  std::string bytes;
  for (const std::string& input : everyShortString()) bytes += input;
  const std::string encoded = encodeHex(ExactBytes(bytes));
  ASSERT_EQ(encoded, referenceEncodeHex(bytes));
  ASSERT_EQ(decodeHex(ExactBytes(encoded)), bytes);
  std::string everyPair;
  for (int high = 0; high < 256; ++high) {
    for (int low = 0; low < 256; ++low)
      everyPair += {static_cast<char>(high), static_cast<char>(low)};
  }
  ASSERT_EQ(decodeHex(ExactBytes(everyPair)), referenceDecodeHex(everyPair));
}

TEST(QuotedPrintableKernel, DecodeCases) {
  const std::vector<Case> cases = {
      {"a=3Db", 0, "a=b"},   {"a=\r\nb", 0, "ab"},    {"a= \t\r\nb", 0, "ab"},
      {"a=\nb", 0, "ab"},    {"a=\n\rb", 0, "ab"},    {"a\r\nb", 0, "a\nb"},
      {"a\n\rb", 0, "a\nb"}, {"a\r\rb", 0, "a\n\nb"}, {"=4a=4A", 0, "JJ"},
      {"=ZZ", 0, "=ZZ"},     {"=4G", 0, "=4G"},       {"x=4", 0, "x=4"},
      {"=", 0, "="},         {"= x", 0, "= x"},       {"a=  ", 0, "a=  "},
      {"a=\r", 0, "a"},      {"==41", 0, "=A"},       {"", 0, ""}};
  for (const auto& c : cases)
    EXPECT_EQ(decodeQuotedPrintable(ExactBytes(c.input)), c.expected) << c.input;
}

TEST(EmailSubjectKernel, PlainTextStaysAndOtherTextBecomesOneWord) {
  EXPECT_EQ(encodeEmailSubject("Hello World"), std::nullopt);
  EXPECT_EQ(encodeEmailSubject(""), std::nullopt);
  EXPECT_EQ(encodeEmailSubject("x\x7F"), std::nullopt);
  EXPECT_EQ(encodeEmailSubject("Gr\xC3\xBC\xC3\x9F"
                               "e a_b"),
            "=?utf-8?Q?Gr=C3=BC=C3=9Fe_a=5Fb?=");
  EXPECT_EQ(encodeEmailSubject("a=b?\x01"), "=?utf-8?Q?a=3Db?\x01?=");
  std::string tabbed(300, 'a');
  tabbed += '\t';
  const auto longSubject = encodeEmailSubject(tabbed);
  ASSERT_TRUE(longSubject);
  EXPECT_EQ(longSubject->size(), 10U + 301U + 2U);  // never folded
}

}  // namespace
}  // namespace zel::strings

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "text/simd_path.h"
#include "text/surrogates.h"
#include "text/utf8.h"

namespace zel::text {
namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

// An independent reading of the rules: each sequence judged by the value it spells rather than by
// byte ranges.
std::size_t referenceSequenceLength(const Bytes& bytes, std::size_t at) {
  static constexpr char32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};
  const std::uint8_t lead = bytes[at];
  const std::size_t length = lead >= 0xF8   ? 0
                             : lead >= 0xF0 ? 4
                             : lead >= 0xE0 ? 3
                             : lead >= 0xC0 ? 2
                                            : 0;
  if (length == 0 || bytes.size() - at < length) return 0;
  char32_t value = lead & (0x7F >> length);
  for (std::size_t k = 1; k < length; ++k) {
    if ((bytes[at + k] & 0xC0) != 0x80) return 0;
    value = value << 6 | (bytes[at + k] & 0x3F);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  return value < kShortest[length] || surrogate || value > 0x10FFFF ? 0 : length;
}

struct Reference {
  std::size_t ascii = 0;
  std::size_t valid = 0;
  std::u32string codePoints;  // decoded up to `valid`, byte order marks dropped
  std::u16string units;
};

Reference reference(const Bytes& bytes) {
  Reference r;
  while (r.ascii < bytes.size() && bytes[r.ascii] < 0x80) ++r.ascii;
  std::size_t at = 0;
  while (at < bytes.size()) {
    std::size_t length = 1;
    char32_t value = bytes[at];
    if (value >= 0x80) {
      length = referenceSequenceLength(bytes, at);
      if (length == 0) break;
      value = bytes[at] & (0x7F >> length);
      for (std::size_t k = 1; k < length; ++k) value = value << 6 | (bytes[at + k] & 0x3F);
    }
    at += length;
    if (value == 0xFEFF || value == 0xFFFE) continue;
    r.codePoints += value;
    if (value >= 0x10000) {
      r.units += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      r.units += static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    } else {
      r.units += static_cast<char16_t>(value);
    }
  }
  r.valid = at;
  return r;
}

// Every entry point against the reference; the output buffers have exactly the documented room,
// so the sanitizer build sees a write past it.
void expectLikeReference(const Bytes& bytes) {
  const Reference expected = reference(bytes);
  const std::optional<std::size_t> badOffset =
      expected.valid < bytes.size() ? std::optional(expected.valid) : std::nullopt;
  ASSERT_EQ(asciiPrefixLength(bytes), expected.ascii);
  ASSERT_EQ(validUtf8Length(bytes), expected.valid);

  std::vector<char16_t> units(bytes.size() + 1, u'?');
  const Utf8DecodeResult utf16 = decodeUtf8(bytes, units.data());
  ASSERT_EQ(utf16.badOffset, badOffset);
  ASSERT_EQ(std::u16string(units.data(), utf16.units), expected.units);
  ASSERT_EQ(units[utf16.units], 0);

  std::vector<char32_t> codePoints(bytes.size() + 1, U'?');
  const Utf8DecodeResult utf32 = decodeUtf8(bytes, codePoints.data());
  ASSERT_EQ(utf32.badOffset, badOffset);
  ASSERT_EQ(std::u32string(codePoints.data(), utf32.units), expected.codePoints);
  ASSERT_EQ(codePoints[utf32.units], 0);
}

// Runs every case once on each path this processor offers.
class Utf8OnEachPath : public testing::TestWithParam<SimdPath> {
 protected:
  void SetUp() override { forceSimdPath(GetParam()); }
  void TearDown() override { forceSimdPath(supportedSimdPaths().back()); }
};

INSTANTIATE_TEST_SUITE_P(Paths, Utf8OnEachPath,
                         testing::ValuesIn(std::vector<SimdPath>(supportedSimdPaths().begin(),
                                                                 supportedSimdPaths().end())),
                         [](const auto& path) { return std::string(simdPathName(path.param)); });

// `bytes` inside ASCII, where a vector path reads them across two 16-byte lanes.
Bytes acrossLanes(const Bytes& bytes) {
  constexpr std::size_t kAt = 14, kSize = 32;
  Bytes padded(kSize, 'a');
  std::copy(bytes.begin(), bytes.end(), padded.begin() + kAt);
  return padded;
}

// Each input alone and across lanes. Inputs that start with ASCII are the shorter inputs again,
// and three bytes that start with a stray continuation byte end at that byte.
TEST_P(Utf8OnEachPath, AgreesWithTheReferenceOnEveryInputUpToThreeBytes) {
  constexpr std::uint8_t kFirstLead = 0xC0;
  for (std::size_t length = 1; length <= 3; ++length) {
    for (std::uint32_t n = 0; n < 1u << (8 * length); ++n) {
      if (length == 3 && (n & 0xFF) < kFirstLead) continue;
      Bytes bytes(length);
      for (std::size_t k = 0; k < length; ++k) bytes[k] = static_cast<std::uint8_t>(n >> (8 * k));
      expectLikeReference(bytes);
      if (bytes[0] >= 0x80) expectLikeReference(acrossLanes(bytes));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

// Every lead byte before the edges of the trailing-byte ranges, ASCII that must not be swallowed
// and other leads: cut after four bytes, and whole across lanes.
TEST_P(Utf8OnEachPath, AgreesWithTheReferenceForEveryLeadOfLongerSequences) {
  constexpr std::uint8_t kSamples[] = {0x00, 0x22, 0x3C, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                       0xA0, 0xBF, 0xC0, 0xC2, 0xE0, 0xED, 0xF4, 0xF8, 0xFF};
  for (unsigned lead = 0; lead < 0x100; ++lead) {
    for (const std::uint8_t b1 : kSamples) {
      for (const std::uint8_t b2 : kSamples) {
        for (const std::uint8_t b3 : kSamples) {
          const Bytes input = {static_cast<std::uint8_t>(lead), b1, b2, b3, 0x80, 'z'};
          expectLikeReference(Bytes(input.begin(), input.begin() + 4));
          expectLikeReference(acrossLanes(input));
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
}

// Every code point, encoded and decoded, at every offset within a vector block.
TEST_P(Utf8OnEachPath, EveryCodePointRoundTrips) {
  constexpr char32_t kBatch = 0x1000;
  for (char32_t first = 0; first <= kLastCodePoint; first += kBatch) {
    std::string text;
    std::u32string expected;
    for (char32_t c = first; c < first + kBatch && c <= kLastCodePoint; ++c) {
      if (isSurrogate(c)) continue;
      text.append(c % 37, 'a');
      expected.append(c % 37, U'a');
      appendUtf8(c, text);
      if (c != 0xFEFF && c != 0xFFFE) expected += c;
    }
    std::vector<char32_t> out(text.size() + 1);
    const Utf8DecodeResult result = decodeUtf8(bytesOf(text), out.data());
    ASSERT_FALSE(result.badOffset);
    ASSERT_EQ(std::u32string(out.data(), result.units), expected);
    expectLikeReference(bytesOf(text));
  }
}

// The pieces random inputs are made of: every kind of well-formed and malformed sequence.
constexpr std::size_t kWellFormedPieces = 12;
const std::string_view kPieces[] = {
    // Well-formed:
    "a", "plain ascii text that spans vector blocks ", "\x7F", "\0"sv, "\xC3\xA9", "\xDF\xBF",
    "\xE2\x82\xAC", "\xEF\xBB\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80",
    "\xF4\x8F\xBF\xBF",
    // Malformed: stray, overlong, surrogate, beyond U+10FFFF, cut off, bad trailing bytes.
    "\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
    "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF",
    "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xE2\x28\xA1", "\xF0\x9F\x28\x80"};

TEST_P(Utf8OnEachPath, RandomMixesOfEveryLengthUpTo200) {
  std::mt19937 random(2026);
  for (std::size_t length = 0; length <= 200; ++length) {
    for (int sample = 0; sample < 40; ++sample) {
      // Mostly well-formed pieces, so that errors sit at every depth.
      std::string text;
      while (text.size() < length) {
        const std::size_t pick = random() % std::size(kPieces);
        text += kPieces[random() % 4 == 0 ? pick : pick % kWellFormedPieces];
      }
      text.resize(length);
      expectLikeReference(bytesOf(text));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST_P(Utf8OnEachPath, EveryErrorPositionAndTruncation) {
  std::string valid;
  for (int i = 0; valid.size() < 200; ++i)
    valid += kPieces[static_cast<std::size_t>(i * 7) % kWellFormedPieces];
  const Bytes clean = bytesOf(valid);
  for (std::size_t at = 0; at <= clean.size(); ++at) {
    expectLikeReference(Bytes(clean.begin(), clean.begin() + static_cast<std::ptrdiff_t>(at)));
    for (const std::uint8_t bad : {0x80, 0xC0, 0xE0, 0xF4, 0xFF}) {
      Bytes broken = clean;
      broken.insert(broken.begin() + static_cast<std::ptrdiff_t>(at), bad);
      expectLikeReference(broken);
    }
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(Surrogates, KnownPairs) {
  struct Case {
    char32_t codePoint;
    char16_t high, low;
  };
  for (const Case& c : std::vector<Case>{{0x10000, 0xD800, 0xDC00},
                                         {0x1F600, 0xD83D, 0xDE00},
                                         {0x10FFFF, 0xDBFF, 0xDFFF},
                                         {0x20BB7, 0xD842, 0xDFB7}}) {
    EXPECT_EQ(highSurrogateOf(c.codePoint), c.high);
    EXPECT_EQ(lowSurrogateOf(c.codePoint), c.low);
    EXPECT_EQ(combineSurrogates(c.high, c.low), c.codePoint);
    EXPECT_TRUE(isHighSurrogate(c.high) && !isLowSurrogate(c.high));
    EXPECT_TRUE(isLowSurrogate(c.low) && !isHighSurrogate(c.low));
  }
  for (const char32_t outside : {0xD7FF, 0xE000, 0xFFFF, 0x10000}) {
    EXPECT_FALSE(isSurrogate(outside)) << static_cast<std::uint32_t>(outside);
  }
}

TEST(EncodeUtf8, PairsCombineAndStrayUnitsBecomeReplacements) {
  struct Case {
    std::u16string_view units;
    std::string_view expected;
  };
  for (const Case& c : std::vector<Case>{{u"a\u00E9\u20AC", "a\xC3\xA9\xE2\x82\xAC"},
                                         {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
                                         {u"\xD83D", "\xEF\xBF\xBD"},
                                         {u"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                                         {u"\xD83Dx", "\xEF\xBF\xBDx"}}) {
    EXPECT_EQ(encodeUtf8(c.units), c.expected);
  }
  EXPECT_EQ(encodeUtf8(std::u32string_view(U"\U0010FFFF\x110000\xDC00")),
            "\xF4\x8F\xBF\xBF\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace zel::text

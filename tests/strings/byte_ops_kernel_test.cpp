#include "strings/byte_ops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "strings/kernel_test_support.h"
#include "text/simd_path.h"

namespace zel::strings {
namespace {

using namespace std::string_literals;

std::string randomString(std::mt19937& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (auto& c : bytes) c = static_cast<char>(random());
  return bytes;
}

struct MaskKernel {
  std::string (*run)(std::string_view data, std::string_view mask, std::int64_t offset);
  unsigned (*combine)(unsigned dataByte, unsigned maskByte);
  bool takesOffset, xorsPosition;
};

const MaskKernel kMaskKernels[] = {
    {[](std::string_view d, std::string_view m, std::int64_t) { return maskAnd(d, m); },
     [](unsigned a, unsigned b) { return a & b; }, false, false},
    {[](std::string_view d, std::string_view m, std::int64_t) { return maskOr(d, m); },
     [](unsigned a, unsigned b) { return a | b; }, false, false},
    {maskXor, [](unsigned a, unsigned b) { return a ^ b; }, true, false},
    {maskXorWithPosition, [](unsigned a, unsigned b) { return a ^ b; }, true, true}};

// The plain byte loop the word-at-a-time paths must reproduce.
std::string referenceMask(std::string_view data, std::string_view mask, std::size_t cursor,
                          const MaskKernel& kernel) {
  std::string out;
  for (std::size_t i = 0; i < data.size(); ++i, cursor = (cursor + 1) % mask.size()) {
    unsigned value = kernel.combine(static_cast<unsigned char>(data[i]),
                                    static_cast<unsigned char>(mask[cursor]));
    if (kernel.xorsPosition) value ^= i % 256;
    out += static_cast<char>(value);
  }
  return out;
}

void expectMaskMatchesReference(std::mt19937& random, std::size_t size, std::size_t maskSize) {
  const ExactBytes data(randomString(random, size));
  const ExactBytes mask(randomString(random, maskSize));
  std::vector<std::size_t> offsets = {0, 1, maskSize / 2, maskSize - 1};
  if (maskSize <= 9) {
    offsets.clear();
    for (std::size_t offset = 0; offset < maskSize; ++offset) offsets.push_back(offset);
  }
  for (const auto& kernel : kMaskKernels) {
    for (const std::size_t offset : kernel.takesOffset ? offsets : std::vector<std::size_t>{0}) {
      ASSERT_EQ(kernel.run(data, mask, static_cast<std::int64_t>(offset)),
                referenceMask(data, mask, offset, kernel))
          << "kernel " << &kernel - kMaskKernels << " size " << size << " mask " << maskSize
          << " offset " << offset;
    }
  }
}

TEST(ByteMaskKernel, MatchesPlainLoopForShortMasksAndLengths) {
  std::mt19937 random(1234);
  for (std::size_t size = 0; size <= 300; ++size) {
    for (std::size_t maskSize = 1; maskSize <= 9; ++maskSize) {
      expectMaskMatchesReference(random, size, maskSize);
    }
  }
}

TEST(ByteMaskKernel, MatchesPlainLoopOverSeveralTurnsOfLongMasks) {
  std::mt19937 random(99);
  for (const std::size_t size : {1023, 1024, 1025, 3001, 70000}) {
    for (const std::size_t maskSize : {1, 3, 7, 8, 511, 512, 513, 1000, 1024, 5000}) {
      expectMaskMatchesReference(random, size, maskSize);
    }
  }
}

TEST(ByteMaskKernel, DescribedCases) {
  EXPECT_EQ(maskAnd("abcdef", "\x5F\x7F\xFF"), "AbcDef");
  EXPECT_EQ(maskOr("ABCDEF", "\x20\x00\x20"s), "aBcdEf");
  EXPECT_EQ(maskOr("ab", "\x20\x20\x20\x20"), "ab");
  EXPECT_EQ(maskXor("\0\0\0\0\0"s, "abc", 2), "cabca");

  std::string expected;
  for (int i = 0; i < 300; ++i) expected += static_cast<char>(i % 256);
  EXPECT_EQ(maskXorWithPosition(std::string(300, '\0'), "\0"s, 0), expected);

  const std::string secret = "attack at dawn";
  EXPECT_EQ(maskXorWithPosition(maskXorWithPosition(secret, "key", 1), "key", 1), secret);
}

TEST(ByteMaskKernel, NoMaskToApplyGivesEmpty) {
  EXPECT_EQ(maskAnd("data", ""), "");
  EXPECT_EQ(maskOr("data", ""), "");
  const std::int64_t badOffsets[] = {-1, 3, 4, INT64_MIN, INT64_MAX};
  for (const auto offset : badOffsets) {
    EXPECT_EQ(maskXor("data", "abc", offset), "") << offset;
    EXPECT_EQ(maskXorWithPosition("data", "abc", offset), "") << offset;
  }
  EXPECT_EQ(maskXor("data", "", 0), "");
}

TEST(ByteSearchKernel, ByteSetAndRanges) {
  const std::vector<ByteRange> highBytes = {{128, 255}};
  const std::vector<ByteRange> negative = {{-128, -1}};
  const std::vector<ByteRange> three = {{'z', 'a'}, {'0', '9'}, {'X', 'X'}};
  EXPECT_EQ(positionOfAnyByte("hello", "ol"), 3);
  EXPECT_EQ(positionOfAnyByte("hello", "o"), 5);
  EXPECT_EQ(positionOfAnyByte("hello", "xyz"), 0);
  EXPECT_EQ(positionOfAnyByte("hello", ""), 0);
  EXPECT_EQ(positionOfAnyByte("", "h"), 0);
  EXPECT_EQ(positionOfAnyByte("a\xE9"s, "\xE9\x01"), 2);

  EXPECT_EQ(positionOfByteInRanges("\xC8", highBytes), 1);
  EXPECT_EQ(positionOfByteInRanges("\xC8", negative), 0);
  EXPECT_EQ(positionOfByteInRanges("", highBytes), 0);
  EXPECT_EQ(positionOfByteInRanges("abcX9", three), 4);  // 'z' to 'a' matches nothing

  EXPECT_EQ(positionOfSignedByteInRangesOrSet("\xC8", "", highBytes), 0);
  EXPECT_EQ(positionOfSignedByteInRangesOrSet("\xC8", "", negative), 1);
  EXPECT_EQ(positionOfSignedByteInRangesOrSet("ab\xC8", "\xC8", highBytes), 3);
  EXPECT_EQ(positionOfSignedByteInRangesOrSet("abcX9", "c", three), 3);
}

// Runs each case once on every vector path this processor offers.
class ByteSearchOnEachPath : public testing::TestWithParam<text::SimdPath> {
 protected:
  void SetUp() override { text::forceSimdPath(GetParam()); }
  void TearDown() override { text::forceSimdPath(text::supportedSimdPaths().back()); }
};

INSTANTIATE_TEST_SUITE_P(
    Paths, ByteSearchOnEachPath,
    testing::ValuesIn(std::vector<text::SimdPath>(text::supportedSimdPaths().begin(),
                                                  text::supportedSimdPaths().end())),
    [](const auto& path) { return std::string(text::simdPathName(path.param)); });

// A member at every position of every length up to 200, among random bytes that are not members
// (the values next to each range included); also behind a long lead, which the vector loops read.
constexpr std::size_t kLongLead = 1024;
constexpr std::size_t kLongestShort = 200;

// 0 to kLongestShort bytes, alone and after kLongLead bytes.
std::vector<std::size_t> lengthsToTry() {
  std::vector<std::size_t> lengths;
  for (const std::size_t lead : {std::size_t{0}, kLongLead}) {
    for (std::size_t length = 0; length <= kLongestShort; ++length)
      lengths.push_back(lead + length);
  }
  return lengths;
}

// Where a planted byte goes: every position of a short length, every position after the lead.
std::size_t firstPlantedPosition(std::size_t length) {
  return length > kLongestShort ? kLongLead : 0;
}

TEST_P(ByteSearchOnEachPath, FirstMemberAtEveryPositionOfEveryLength) {
  using Text = std::string_view;
  struct Case {
    const char* name;
    std::function<std::int64_t(Text)> find;
    std::function<bool(int)> isMember;
  };
  const auto in = [](Text set) {
    return [=](int b) { return set.find(static_cast<char>(b)) != Text::npos; };
  };
  const std::vector<Case> cases = {
      {"five bytes", [](Text t) { return positionOfAnyByte(t, "#$%{}"); }, in("#$%{}")},
      {"more runs than are compared at once",
       [](Text t) { return positionOfAnyByte(t, "acegikmoqs"); }, in("acegikmoqs")},
      {"controls and high bytes",
       [](Text t) {
         return positionOfByteInRanges(t, std::vector<ByteRange>{{0, 9}, {128, 255}});
       },
       [](int b) { return b <= 9 || b >= 128; }},
      {"both ends",
       [](Text t) {
         return positionOfByteInRanges(t, std::vector<ByteRange>{{0, 0}, {255, 255}});
       },
       [](int b) { return b == 0 || b == 255; }},
      {"signed ranges and a set",
       [](Text t) {
         const std::vector<ByteRange> ranges = {{'0', '9'}, {'A', 'F'}, {-3, 2}};
         return positionOfSignedByteInRangesOrSet(t, "\x7F", ranges);
       },
       [](int b) {
         return (b >= '0' && b <= '9') || (b >= 'A' && b <= 'F') || b >= 253 || b <= 2 || b == 127;
       }}};
  std::mt19937 random(2026);
  for (const auto& c : cases) {
    std::string members, others;
    for (int value = 0; value < 256; ++value)
      (c.isMember(value) ? members : others) += static_cast<char>(value);
    for (const std::size_t length : lengthsToTry()) {
      std::string target(length, '\0');
      for (auto& b : target) b = others[random() % others.size()];
      ASSERT_EQ(c.find(ExactBytes(target)), 0) << c.name << ' ' << length;
      for (std::size_t at = firstPlantedPosition(length); at < length; ++at) {
        std::string planted = target;
        planted[at] = members[random() % members.size()];
        ASSERT_EQ(c.find(ExactBytes(planted)), static_cast<std::int64_t>(at) + 1)
            << c.name << ' ' << length;
      }
    }
  }
}

TEST_P(ByteSearchOnEachPath, AsciiModesFindTheOneBadByteAnywhere) {
  struct Case {
    std::int64_t mode;
    std::string bad;  // each fails the mode; every other byte of the filler passes
  };
  const std::vector<Case> cases = {{0, "\x80\xFF"}, {1, "\0\x1F\x80\xFF"s}, {2, "\0\t\x1F"s}};
  for (const auto& c : cases) {
    for (const std::size_t length : lengthsToTry()) {
      if (length == 0) continue;  // empty is never ASCII
      const std::string filler(length, c.mode == 2 ? '\xFF' : ' ');
      ASSERT_TRUE(isAscii(ExactBytes(filler), c.mode)) << c.mode << ' ' << length;
      for (std::size_t at = firstPlantedPosition(length); at < length; ++at) {
        for (const char bad : c.bad) {
          std::string broken = filler;
          broken[at] = bad;
          ASSERT_FALSE(isAscii(ExactBytes(broken), c.mode)) << c.mode << ' ' << at << ' ' << +bad;
        }
      }
    }
  }
}

TEST(ByteCompareKernel, ZeroPaddedUnsigned) {
  struct Case {
    std::string a, b;
    int expected;
  };
  const std::vector<Case> cases = {{"abc", "abcd", -1}, {"abcd", "abc", 1},  {"abc", "abc\0"s, 0},
                                   {"", "\0\0"s, 0},    {"\x80", "\x7F", 1}, {"", "a", -1},
                                   {"ab\0c"s, "ab", 1}, {"a", "b", -1}};
  for (const auto& c : cases) EXPECT_EQ(compareBytesZeroPadded(c.a, c.b), c.expected) << c.a;
}

TEST(ByteFillKernel, RepeatToLength) {
  EXPECT_EQ(repeatToLength(5, "ab"), "ababa");
  EXPECT_EQ(repeatToLength(3, ""), "\0\0\0"s);
  EXPECT_EQ(repeatToLength(2, "abc"), "ab");
  EXPECT_EQ(repeatToLength(0, "ab"), "");
  EXPECT_EQ(repeatToLength(-4, "ab"), "");
  EXPECT_EQ(repeatToLength(20, "xyz"), "xyzxyzxyzxyzxyzxyzxy");
  EXPECT_THROW(repeatToLength(INT64_MAX, "ab"), std::bad_alloc);
}

TEST(ByteWipeKernel, EveryByteBecomesZero) {
  for (std::size_t size : {0U, 1U, 3U, 64U}) {
    std::vector<std::uint8_t> bytes(size, 0xA5);
    wipeBytes(bytes);
    EXPECT_EQ(bytes, std::vector<std::uint8_t>(size, 0)) << size;
  }
}

// Repeats the draws 00 00 00 00, FF FF FF FF, 5F 00 00 00, 60 00 00 00.
void cyclingDraws(std::span<std::uint8_t> bytes) {
  static constexpr std::uint8_t kDraws[] = {0,    0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,
                                            0x5F, 0, 0, 0, 0x60, 0,    0,    0};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = kDraws[i % std::size(kDraws)];
}

TEST(RandomBytesKernel, RawAndAsciiDraws) {
  EXPECT_EQ(randomBytes(0, false, cyclingDraws), "");
  EXPECT_EQ(randomBytes(6, false, cyclingDraws), "\0\0\0\0\xFF\xFF"s);
  // 0xFFFFFFFF mod 96 is 63; 0x5F is 95 (DEL can occur); 0x60 wraps to 0.
  EXPECT_EQ(randomBytes(5, true, cyclingDraws), " _\x7F  ");

  const std::string secure = randomBytes(4096, true);
  EXPECT_TRUE(std::all_of(secure.begin(), secure.end(), [](char c) { return c >= 32; }));
  EXPECT_NE(randomBytes(32, false), randomBytes(32, false));
}

TEST(AsciiKernel, ModesAndReplacement) {
  struct Case {
    std::string bytes;
    bool plain, mode1, mode2;
  };
  const std::vector<Case> cases = {{"abc", true, true, true},    {"\xC8", false, false, true},
                                   {"a\tb", true, false, false}, {"\x7F", true, true, true},
                                   {"", false, false, false},    {"\0"s, true, false, false}};
  for (const auto& c : cases) {
    EXPECT_EQ(isAscii(c.bytes), c.plain) << c.bytes;
    EXPECT_EQ(isAscii(c.bytes, 0), c.plain) << c.bytes;
    EXPECT_EQ(isAscii(c.bytes, 1), c.mode1) << c.bytes;
    EXPECT_EQ(isAscii(c.bytes, 2), c.mode2) << c.bytes;
    EXPECT_FALSE(isAscii(c.bytes, 3));
    EXPECT_FALSE(isAscii(c.bytes, -1));
  }
  EXPECT_EQ(replaceNonPrintable("a\tb\x7F\x80\xFF\0"s, 46), "a.b\x7F...");
  EXPECT_EQ(replaceNonPrintable("\n", 0x12A), "*");
}

TEST(UnicodeMarkerKernel, DetectsTheMarkThatStartsRealText) {
  struct Case {
    std::string bytes;
    int kind;
  };
  const std::vector<Case> cases = {
      {"\xEF\xBB\xBFhi", 1},
      {"\xFE\xFF\0h\0i"s, 3},
      {"\xFF\xFEh\0i\0"s, 4},
      {"\0\0\xFE\xFF\0\0\0h"s, 6},
      {"\xFF\xFE\0\0h\0\0\0"s, 7},
      // UTF-16LE text that starts with U+0000 cannot be told from UTF-32LE.
      {"\xFF\xFE\0\0h\0"s, 7},
      {"\xFF\xFE\0h"s, 4},
      {"h\xEF\xBB\xBF", 0},
      {"\xEF\xBB", 0},
      {"\0\0\xFE"s, 0},
      {"\xFE\xFE", 0},
      {"", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(detectUnicodeMarker(c.bytes), c.kind) << c.kind;
}

TEST(UnicodeMarkerKernel, ProducedMarksAreDetectedAsTheirKind) {
  struct Case {
    int kind;
    int detected;  // the little-endian aliases 2 and 5 read back as 4 and 7
    UnicodeForm form;
    std::size_t unitBytes;
  };
  const Case cases[] = {
      {1, 1, UnicodeForm::utf8, 3},  {2, 4, UnicodeForm::utf16, 2}, {3, 3, UnicodeForm::utf16, 2},
      {4, 4, UnicodeForm::utf16, 2}, {5, 7, UnicodeForm::utf32, 4}, {6, 6, UnicodeForm::utf32, 4},
      {7, 7, UnicodeForm::utf32, 4},
  };
  for (const auto& c : cases) {
    const auto marker = unicodeMarker(c.kind);
    ASSERT_TRUE(marker) << c.kind;
    EXPECT_EQ(detectUnicodeMarker(marker->bytes), c.detected) << c.kind;
    EXPECT_EQ(marker->form, c.form) << c.kind;
    EXPECT_EQ(marker->bytes.size(), c.unitBytes) << c.kind;
  }
  for (const int kind : {0, 8, -1}) EXPECT_FALSE(unicodeMarker(kind)) << kind;
}

TEST(ConcatKernel, JoinsInOrder) {
  EXPECT_EQ(concatBytes({"ab", "", "\0c"s, "d"}), "ab\0cd"s);
  EXPECT_EQ(concatBytes({"", ""}), "");
}

}  // namespace
}  // namespace zel::strings

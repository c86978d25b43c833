// The strict UTF-8 decoder: chosen cases, then every short input against a plain reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/utf8_decoder.h"

namespace zel {
namespace {

struct DecodeCase {
  const char* name;
  std::string_view input;
  std::u16string_view utf16;
  std::u32string_view utf32;
  std::optional<std::size_t> badOffset;
};

const DecodeCase kDecodeCases[] = {
    {"ascii with nul", {"a\0b", 3}, {u"a\0b", 3}, {U"a\0b", 3}, {}},
    {"two-byte", "\xC3\xA9t\xC2\x80", u"\u00E9t\u0080", U"\u00E9t\u0080", {}},
    {"non-minimal two-byte stops",
     "a\xC0\x80"
     "b",
     u"a", U"a", 1},
    {"byte order marks dropped", "x\xEF\xBB\xBFy\xEF\xBF\xBE", u"xy", U"xy", {}},
    {"astral becomes a pair", "\xF0\x9F\x98\x80!", u"\xD83D\xDE00!", U"\U0001F600!", {}},
    {"highest code point", "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF", U"\U0010FFFF", {}},
    {"overlong three-byte", "\xE0\x9F\x80", u"", U"", 0},
    {"encoded surrogate", "ok\xED\xA0\x80", u"ok", U"ok", 2},
    {"beyond U+10FFFF", "\xF4\x90\x80\x80", u"", U"", 0},
    {"five-byte form", "\xF8\x88\x80\x80\x80", u"", U"", 0},
    {"stray continuation", "z\x80", u"z", U"z", 1},
    {"truncated at the end", "ab\xE2\x82", u"ab", U"ab", 2},
    {"bad trailing byte", "\xE2\x28\xA1", u"", U"", 0},
    {"lead C1 is illegal", "\xC1\xBF", u"", U"", 0},
    {"ASCII after ED", "\xED\x41\x80", u"", U"", 0},
    {"ED must not swallow a <", "x\xED<\x80y", u"x", U"x", 1},
    {"F4 must not swallow a quote", "\xF4\"\x80\x80", u"", U"", 0},
    {"ED 7F stops instead of dropping", "\xED\x7F\x80z", u"", U"", 0},
    {"ASCII after F4 in the third byte", "\xF4\x80\x41\x80", u"", U"", 0},
    {"highest below the surrogates", "\xED\x9F\xBF", u"\xD7FF", U"\xD7FF", {}},
};

template <class Unit>
struct Decoded {
  std::basic_string<Unit> units;
  std::optional<std::size_t> badOffset;
  bool operator==(const Decoded&) const = default;
};

template <class Unit>
void PrintTo(const Decoded<Unit>& decoded, std::ostream* out) {
  *out << "units {";
  for (const Unit unit : decoded.units) *out << " " << std::hex << static_cast<std::uint32_t>(unit);
  *out << " }, stopped at " << (decoded.badOffset ? std::to_string(*decoded.badOffset) : "none");
}

constexpr std::size_t kLongestInput = 32;

template <class Unit>
Decoded<Unit> decodeWith(std::span<const std::uint8_t> bytes) {
  std::array<Unit, kLongestInput + 1> out;
  out.fill(Unit{0xAAAA});
  EXPECT_LE(bytes.size(), kLongestInput);
  const Utf8DecodeResult result =
      decodeUtf8(bytes.first(std::min(bytes.size(), kLongestInput)), out.data());
  EXPECT_EQ(out[result.units], Unit{0}) << "no terminator";
  return {std::basic_string<Unit>(out.data(), result.units), result.badOffset};
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(Utf8Decoder, DecodesStrictlyAndStopsAtTheFirstBadSequence) {
  for (const auto& c : kDecodeCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(decodeWith<char16_t>(bytesOf(c.input)),
              (Decoded<char16_t>{std::u16string(c.utf16), c.badOffset}));
    EXPECT_EQ(decodeWith<char32_t>(bytesOf(c.input)),
              (Decoded<char32_t>{std::u32string(c.utf32), c.badOffset}));
  }
}

// The reference: the table of well-formed byte sequences written out row by row.
struct ByteRange {
  std::uint8_t low, high;
  bool holds(std::uint8_t b) const { return b >= low && b <= high; }
};
struct WellFormed {
  ByteRange lead;
  std::vector<ByteRange> following;
};
const ByteRange kAny{0x80, 0xBF};
const WellFormed kWellFormed[] = {
    {{0xC2, 0xDF}, {kAny}},
    {{0xE0, 0xE0}, {{0xA0, 0xBF}, kAny}},
    {{0xE1, 0xEC}, {kAny, kAny}},
    {{0xED, 0xED}, {{0x80, 0x9F}, kAny}},
    {{0xEE, 0xEF}, {kAny, kAny}},
    {{0xF0, 0xF0}, {{0x90, 0xBF}, kAny, kAny}},
    {{0xF1, 0xF3}, {kAny, kAny, kAny}},
    {{0xF4, 0xF4}, {{0x80, 0x8F}, kAny, kAny}},
};

Decoded<char32_t> referenceDecode(std::span<const std::uint8_t> bytes) {
  Decoded<char32_t> out;
  for (std::size_t i = 0; i < bytes.size();) {
    if (bytes[i] < 0x80) {
      out.units += bytes[i++];
      continue;
    }
    const auto* form = std::ranges::find_if(
        kWellFormed, [&](const WellFormed& f) { return f.lead.holds(bytes[i]); });
    const std::size_t n = form == std::end(kWellFormed) ? 0 : form->following.size();
    bool ok = n > 0 && i + n < bytes.size();
    for (std::size_t k = 0; ok && k < n; ++k) ok = form->following[k].holds(bytes[i + 1 + k]);
    if (!ok) {
      out.badOffset = i;
      break;
    }
    char32_t value = bytes[i] & (0xFF >> (n + 2));
    for (std::size_t k = 1; k <= n; ++k) value = (value << 6) | (bytes[i + k] & 0x3F);
    if (value != 0xFEFF && value != 0xFFFE) out.units += value;
    i += n + 1;
  }
  return out;
}

Decoded<char16_t> toUtf16(const Decoded<char32_t>& decoded) {
  Decoded<char16_t> out{{}, decoded.badOffset};
  for (const char32_t c : decoded.units) {
    if (c < 0x10000) {
      out.units += static_cast<char16_t>(c);
    } else {
      out.units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      out.units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return out;
}

// Compares both widths with the reference; an empty string when they agree.
std::string disagreement(std::span<const std::uint8_t> bytes) {
  const Decoded<char32_t> expected = referenceDecode(bytes);
  if (decodeWith<char32_t>(bytes) == expected && decodeWith<char16_t>(bytes) == toUtf16(expected)) {
    return {};
  }
  std::string hex;
  for (const std::uint8_t b : bytes) hex += ::testing::PrintToString(static_cast<int>(b)) + " ";
  return hex;
}

TEST(Utf8Decoder, AgreesWithTheReferenceOnEveryInputUpToThreeBytes) {
  std::array<std::uint8_t, 3> bytes{};
  for (std::size_t length = 1; length <= bytes.size(); ++length) {
    const std::uint32_t inputs = 1u << (8 * length);
    for (std::uint32_t n = 0; n < inputs; ++n) {
      for (std::size_t k = 0; k < length; ++k) bytes[k] = static_cast<std::uint8_t>(n >> (8 * k));
      const std::string failed = disagreement(std::span(bytes).first(length));
      ASSERT_EQ(failed, "") << "bytes (decimal): " << failed;
    }
  }
}

TEST(Utf8Decoder, AgreesWithTheReferenceForEveryLeadOfLongerSequences) {
  // Each edge of the trailing-byte ranges, ASCII that must not be swallowed, and other leads.
  constexpr std::array<std::uint8_t, 18> kSamples = {0x00, 0x22, 0x3C, 0x41, 0x7F, 0x80,
                                                     0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                                                     0xC2, 0xE0, 0xED, 0xF4, 0xF8, 0xFF};
  for (int lead = 0; lead < 0x100; ++lead) {
    for (const std::uint8_t b1 : kSamples) {
      for (const std::uint8_t b2 : kSamples) {
        for (const std::uint8_t b3 : kSamples) {
          const std::array<std::uint8_t, 6> input = {
              static_cast<std::uint8_t>(lead), b1, b2, b3, 0x80, 'z'};
          for (const std::size_t length : {4u, 5u, 6u}) {
            const std::string failed = disagreement(std::span(input).first(length));
            ASSERT_EQ(failed, "") << "bytes (decimal): " << failed;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace zel

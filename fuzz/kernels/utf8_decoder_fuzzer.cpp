// The plug-in's UTF-8 decoder against a plain reference decoder written from the rules: the
// length of a sequence comes from its lead byte, every trailing byte is 0x80-0xBF, the second
// byte is further limited after E0, ED, F0 and F4, decoding stops at the first bad sequence,
// and U+FEFF and U+FFFE are dropped.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <vector>

#include "bridge/utf8_decoder.h"

namespace {

struct Reference {
  std::vector<char32_t> codePoints;
  std::optional<std::size_t> badOffset;
};

constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kNonCharacterFffe = 0xFFFE;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kSurrogateBase = 0xD800;
constexpr char32_t kLowSurrogateBase = 0xDC00;
constexpr unsigned kSurrogateBits = 10;
constexpr char32_t kSurrogateMask = 0x3FF;

struct SecondByteRange {
  std::uint8_t low;
  std::uint8_t high;
};

SecondByteRange secondByteRange(std::uint8_t lead) {
  switch (lead) {
    case 0xE0:
      return {0xA0, 0xBF};
    case 0xED:
      return {0x80, 0x9F};
    case 0xF0:
      return {0x90, 0xBF};
    case 0xF4:
      return {0x80, 0x8F};
    default:
      return {0x80, 0xBF};
  }
}

// Trailing bytes after the lead, or none when the lead byte cannot start a sequence.
std::optional<std::size_t> trailingBytes(std::uint8_t lead) {
  if (lead < 0x80) return 0;
  if (lead < 0xC2) return std::nullopt;
  if (lead < 0xE0) return 1;
  if (lead < 0xF0) return 2;
  if (lead < 0xF5) return 3;
  return std::nullopt;
}

Reference referenceDecode(std::span<const std::uint8_t> bytes) {
  Reference out;
  std::size_t i = 0;
  while (i < bytes.size()) {
    const std::uint8_t lead = bytes[i];
    const auto trailing = trailingBytes(lead);
    if (!trailing || bytes.size() - i <= *trailing) {
      out.badOffset = i;
      return out;
    }
    const auto [low, high] = secondByteRange(lead);
    char32_t value = *trailing == 0 ? lead : lead & (0x3F >> *trailing);
    for (std::size_t k = 1; k <= *trailing; ++k) {
      const std::uint8_t byte = bytes[i + k];
      const bool fits = k == 1 ? byte >= low && byte <= high : byte >= 0x80 && byte <= 0xBF;
      if (!fits) {
        out.badOffset = i;
        return out;
      }
      value = (value << 6) | (byte & 0x3F);
    }
    if (value != kByteOrderMark && value != kNonCharacterFffe) out.codePoints.push_back(value);
    i += *trailing + 1;
  }
  return out;
}

std::vector<char16_t> toUtf16(const std::vector<char32_t>& codePoints) {
  std::vector<char16_t> units;
  for (const char32_t c : codePoints) {
    if (c < kFirstSupplementary) {
      units.push_back(static_cast<char16_t>(c));
    } else {
      const char32_t offset = c - kFirstSupplementary;
      units.push_back(static_cast<char16_t>(kSurrogateBase + (offset >> kSurrogateBits)));
      units.push_back(static_cast<char16_t>(kLowSurrogateBase + (offset & kSurrogateMask)));
    }
  }
  return units;
}

template <class Unit>
void compare(std::span<const std::uint8_t> bytes, const std::vector<Unit>& expected,
             const Reference& reference) {
  std::vector<Unit> decoded(bytes.size() + 1, Unit{0x7F});
  const zel::Utf8DecodeResult result = zel::decodeUtf8(bytes, decoded.data());
  const bool same = result.units == expected.size() && result.badOffset == reference.badOffset &&
                    std::equal(expected.begin(), expected.end(), decoded.begin()) &&
                    decoded[result.units] == 0;
  if (same) return;
  std::fprintf(stderr, "FUZZ FINDING: UTF-8 decoder (%zu-bit units) disagrees with the reference:",
               sizeof(Unit) * 8);
  for (const std::uint8_t byte : bytes) std::fprintf(stderr, " %02X", byte);
  std::fprintf(stderr, "\n  decoder: %zu units, stopped at %lld; reference: %zu units, at %lld\n",
               result.units, result.badOffset ? static_cast<long long>(*result.badOffset) : -1LL,
               expected.size(),
               reference.badOffset ? static_cast<long long>(*reference.badOffset) : -1LL);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  const Reference reference = referenceDecode(bytes);
  compare(bytes, reference.codePoints, reference);
  compare(bytes, toUtf16(reference.codePoints), reference);
  return 0;
}

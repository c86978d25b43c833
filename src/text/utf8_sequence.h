// The rules of one multi-byte UTF-8 sequence: every path of the transcoders and the validator
// falls back to these, so all of them agree byte for byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::text {

inline constexpr std::uint8_t kFirstNonAscii = 0x80;

// What a lead byte asks of a multi-byte sequence: its length (0 for no sequence at all) and the
// range of its second byte, which rules out overlong forms, encoded surrogates and values beyond
// U+10FFFF; later bytes are plain continuation bytes.
struct Utf8Lead {
  std::uint8_t length = 0;
  std::uint8_t secondLow = 0x80;
  std::uint8_t secondHigh = 0xBF;
};

inline constexpr auto kUtf8Leads = [] {
  std::array<Utf8Lead, 256> leads{};
  for (int b = 0xC2; b <= 0xDF; ++b) leads[b] = {2, 0x80, 0xBF};
  for (int b = 0xE0; b <= 0xEF; ++b) leads[b] = {3, 0x80, 0xBF};
  leads[0xE0].secondLow = 0xA0;
  leads[0xED].secondHigh = 0x9F;
  for (int b = 0xF0; b <= 0xF4; ++b) leads[b] = {4, 0x80, 0xBF};
  leads[0xF0].secondLow = 0x90;
  leads[0xF4].secondHigh = 0x8F;
  return leads;
}();

constexpr bool isContinuationByte(std::uint8_t b) noexcept {
  return (b & 0xC0) == 0x80;
}

// Length of the well-formed sequence of 2 to 4 bytes at `bytes`, of which `available` can be
// read, or 0 when there is none.
inline std::size_t multiByteSequenceLength(const std::uint8_t* bytes,
                                           std::size_t available) noexcept {
  const Utf8Lead lead = kUtf8Leads[bytes[0]];
  if (lead.length == 0 || available < lead.length) return 0;
  if (bytes[1] < lead.secondLow || bytes[1] > lead.secondHigh) return 0;
  for (std::size_t k = 2; k < lead.length; ++k) {
    if (!isContinuationByte(bytes[k])) return 0;
  }
  return lead.length;
}

// The code point of a well-formed sequence of `length` bytes.
inline char32_t multiByteSequenceValue(const std::uint8_t* bytes, std::size_t length) noexcept {
  static constexpr std::array<std::uint8_t, 5> kLeadPayload = {0, 0, 0x1F, 0x0F, 0x07};
  constexpr unsigned kPayloadBits = 6;
  constexpr std::uint8_t kContinuationPayload = 0x3F;
  char32_t value = bytes[0] & kLeadPayload[length];
  for (std::size_t k = 1; k < length; ++k) {
    value = (value << kPayloadBits) | (bytes[k] & kContinuationPayload);
  }
  return value;
}

}  // namespace zel::text

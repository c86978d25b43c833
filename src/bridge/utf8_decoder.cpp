#include "bridge/utf8_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "framework/debug_log.h"

namespace zel {
namespace {

// Trailing bytes announced by each lead byte, including the 5- and 6-byte forms that are then
// rejected as too long.
constexpr std::array<std::uint8_t, 256> kTrailingBytes = [] {
  std::array<std::uint8_t, 256> table{};
  for (int lead = 0xC0; lead < 0x100; ++lead) {
    table[lead] = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
  }
  return table;
}();

constexpr std::uint8_t kTrailingMin = 0x80;
constexpr std::uint8_t kTrailingMax = 0xBF;

// Every trailing byte lies in 80..BF; some lead bytes narrow the second byte further, to rule out
// overlong forms, encoded surrogates and values beyond U+10FFFF.
bool isWellFormed(std::span<const std::uint8_t> sequence) noexcept {
  const std::uint8_t lead = sequence[0];
  if (sequence.size() > 4 || (lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
  for (const std::uint8_t trailing : sequence.subspan(1)) {
    if (trailing < kTrailingMin || trailing > kTrailingMax) return false;
  }
  if (sequence.size() < 2) return true;
  const std::uint8_t second = sequence[1];
  switch (lead) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second <= 0x9F;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second <= 0x8F;
    default:
      return true;
  }
}

char32_t valueOf(std::span<const std::uint8_t> sequence) noexcept {
  static constexpr std::array<std::uint8_t, 4> kLeadMask = {0x7F, 0x1F, 0x0F, 0x07};
  char32_t value = sequence[0] & kLeadMask[sequence.size() - 1];
  for (const std::uint8_t trailing : sequence.subspan(1)) value = (value << 6) | (trailing & 0x3F);
  return value;
}

void emit(char32_t value, char16_t*& out) noexcept {
  if (value > 0xFFFF) {
    value -= 0x10000;
    *out++ = static_cast<char16_t>(0xD800 + (value >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (value & 0x3FF));
  } else {
    *out++ = static_cast<char16_t>(value);
  }
}

void emit(char32_t value, char32_t*& out) noexcept {
  *out++ = value;
}

template <class Unit>
Utf8DecodeResult decode(std::span<const std::uint8_t> bytes, Unit* const out) noexcept {
  Utf8DecodeResult result;
  Unit* next = out;
  std::size_t i = 0;
  while (i < bytes.size()) {
    // Runs of ASCII go eight bytes at a time.
    std::uint64_t word;
    while (i + 8 <= bytes.size() &&
           (std::memcpy(&word, bytes.data() + i, 8), (word & 0x8080808080808080ULL) == 0)) {
      next = std::copy_n(bytes.data() + i, 8, next);
      i += 8;
    }
    if (i == bytes.size()) break;
    const std::uint8_t lead = bytes[i];
    if (lead < 0x80) {
      *next++ = lead;
      ++i;
      continue;
    }
    const std::size_t length = kTrailingBytes[lead] + std::size_t{1};
    const auto sequence = bytes.subspan(i, std::min(length, bytes.size() - i));
    if (sequence.size() < length || !isWellFormed(sequence)) {
      result.badOffset = i;
      break;
    }
    i += length;
    char32_t value = valueOf(sequence);
    if (value == 0xFEFF || value == 0xFFFE || (value >= 0xD800 && value <= 0xDFFF)) continue;
    if (value > 0x10FFFF) value = 0xFFFD;
    emit(value, next);
  }
  *next = 0;
  result.units = static_cast<std::size_t>(next - out);
  return result;
}

template <class Unit>
std::size_t decodeLogged(const std::uint8_t* bytes, std::size_t count, Unit* out) noexcept {
  const auto result = decode(std::span(bytes, count), out);
  if (result.badOffset && debugEnabled()) {
    debugLogInt64("Illegal UTF-8 sequence!", static_cast<std::int64_t>(*result.badOffset));
  }
  return result.units;
}

}  // namespace

Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char16_t* out) noexcept {
  return decode(bytes, out);
}
Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char32_t* out) noexcept {
  return decode(bytes, out);
}

std::size_t Utf8ToUtf16(const std::uint8_t* bytes, std::size_t count, char16_t* out) noexcept {
  return decodeLogged(bytes, count, out);
}
std::size_t Utf8ToUtf32(const std::uint8_t* bytes, std::size_t count, char32_t* out) noexcept {
  return decodeLogged(bytes, count, out);
}

}  // namespace zel

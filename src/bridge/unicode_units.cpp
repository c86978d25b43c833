#include "bridge/unicode_units.h"

#include <algorithm>
#include <cstring>

namespace zel {

bool isAscii(std::span<const std::uint8_t> bytes) noexcept {
  // Eight bytes at a time: the hot path of every pure-ASCII argument.
  constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
  std::size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    std::uint64_t word;
    std::memcpy(&word, bytes.data() + i, sizeof word);
    if (word & kHighBits) return false;
  }
  return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.end(),
                     [](std::uint8_t byte) { return byte < 0x80; });
}

std::size_t utf32BytesToUtf16(std::span<const std::uint8_t> bytes, char16_t* out) noexcept {
  char16_t* next = out;
  for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + i, sizeof value);
    if (value < 0x10000) {
      if (value < 0xD800 || value > 0xDFFF) *next++ = static_cast<char16_t>(value);
    } else if (value > 0x10FFFF) {
      *next++ = 0xFFFD;
    } else {
      *next++ = static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      *next++ = static_cast<char16_t>(0xDC00 + (value & 0x3FF));
    }
  }
  *next = 0;
  return static_cast<std::size_t>(next - out);
}

std::size_t combineUtf16ToUtf32(std::u16string_view units, char32_t* out) noexcept {
  char32_t* next = out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    const bool last = i + 1 == units.size();
    if (isHighSurrogate(unit) && !last) {
      const char32_t low = units[++i];
      if (isLowSurrogate(low)) *next++ = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    } else if (isLowSurrogate(unit) && !last) {
      ++i;
    } else {
      *next++ = unit;
    }
  }
  *next = 0;
  return static_cast<std::size_t>(next - out);
}

}  // namespace zel

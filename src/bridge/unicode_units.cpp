#include "bridge/unicode_units.h"

#include <cstring>

#include "text/utf8.h"

namespace zel {

bool isAscii(std::span<const std::uint8_t> bytes) noexcept {
  return text::asciiPrefixLength(bytes) == bytes.size();
}

std::size_t utf32BytesToUtf16(std::span<const std::uint8_t> bytes, char16_t* out) noexcept {
  char16_t* next = out;
  for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + i, sizeof value);
    if (value < text::kFirstSupplementary) {
      if (!text::isSurrogate(value)) *next++ = static_cast<char16_t>(value);
    } else if (value > text::kLastCodePoint) {
      *next++ = text::kReplacementCharacter;
    } else {
      *next++ = text::highSurrogateOf(value);
      *next++ = text::lowSurrogateOf(value);
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
      if (isLowSurrogate(low)) *next++ = text::combineSurrogates(unit, low);
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

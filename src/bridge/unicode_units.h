// Unit-level conversions the bridge needs besides the UTF-8 decoder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "text/surrogates.h"

namespace zel {

using text::isHighSurrogate;
using text::isLowSurrogate;

// True for no bytes at all.
bool isAscii(std::span<const std::uint8_t> bytes) noexcept;

// Code points (native byte order, any alignment; a trailing partial unit is ignored) to UTF-16
// for hosts that cannot take UTF-32: surrogate values are dropped, values beyond U+10FFFF become
// U+FFFD. `out` must hold two units per code point plus the terminator written after them.
std::size_t utf32BytesToUtf16(std::span<const std::uint8_t> bytes, char16_t* out) noexcept;

// The fallback from UTF-16 units to code points. Pairs combine; a high surrogate followed by
// anything else is dropped with that unit; a low surrogate that is not last is dropped with the
// unit after it; a lone surrogate in last place stays. `out` holds units.size() + 1.
std::size_t combineUtf16ToUtf32(std::u16string_view units, char32_t* out) noexcept;

}  // namespace zel

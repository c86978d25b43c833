// The plug-in's own UTF-8 decoder: strict, stops at the first malformed sequence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "text/utf8.h"

namespace zel {

using text::Utf8DecodeResult;

// `out` must hold bytes.size() + 1 units. U+FEFF, U+FFFE and surrogate values are dropped, values
// beyond U+10FFFF become U+FFFD; a zero unit follows the output.
using text::decodeUtf8;

// As above, logging the offset of a malformed sequence when the debug log is on.
std::size_t Utf8ToUtf16(const std::uint8_t* bytes, std::size_t count, char16_t* out) noexcept;
std::size_t Utf8ToUtf32(const std::uint8_t* bytes, std::size_t count, char32_t* out) noexcept;

}  // namespace zel

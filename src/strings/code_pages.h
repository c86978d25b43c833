// ISO 8859-1 and Windows-1252 by table, independent of the host's converters.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zel::strings {

enum class CodePage { Iso8859_1, Windows1252 };

// One UTF-16 unit per byte; bytes that Windows-1252 leaves undefined become U+0000.
std::u16string decodeCodePage(std::span<const std::uint8_t> bytes, CodePage page);

// Each unit becomes the first byte whose table entry equals it; units without one (including
// every surrogate half) are dropped. Text of two units or fewer gives no bytes at all.
std::string encodeCodePage(std::u16string_view text, CodePage page);

}  // namespace zel::strings

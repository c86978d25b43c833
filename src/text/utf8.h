// UTF-8 scanning, validation and transcoding over plain buffers, on the best vector path of the
// processor; every path gives the same results as the portable one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zel::text {

// Length of the leading run of bytes below 0x80.
std::size_t asciiPrefixLength(std::span<const std::uint8_t> bytes) noexcept;

// Offset of the first byte that neither is below 0x80 nor starts a well-formed sequence of 2 to
// 4 bytes (no overlong forms, surrogates or values beyond U+10FFFF), or bytes.size().
std::size_t validUtf8Length(std::span<const std::uint8_t> bytes) noexcept;

struct Utf8DecodeResult {
  std::size_t units = 0;                 // written, the terminator not counted
  std::optional<std::size_t> badOffset;  // where decoding stopped, if it did
};

// Decodes up to the first malformed sequence. `out` must hold bytes.size() + 1 units. U+FEFF and
// U+FFFE are dropped; a zero unit follows the output.
Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char16_t* out) noexcept;
Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char32_t* out) noexcept;

// Encoding code points; a surrogate that is not part of a pair, and anything beyond U+10FFFF,
// becomes U+FFFD.
void appendUtf8(char32_t codePoint, std::string& out);
std::string encodeUtf8(std::u32string_view codePoints);
std::string encodeUtf8(std::u16string_view units);

}  // namespace zel::text

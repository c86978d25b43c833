// The plug-in's own UTF-8 decoder: strict, stops at the first malformed sequence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zel {

struct Utf8DecodeResult {
  std::size_t units = 0;                 // written, the terminator not counted
  std::optional<std::size_t> badOffset;  // where decoding stopped, if it did
};

// `out` must hold bytes.size() + 1 units. U+FEFF, U+FFFE and surrogate values are dropped, values
// beyond U+10FFFF become U+FFFD; a zero unit follows the output.
Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char16_t* out) noexcept;
Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char32_t* out) noexcept;

// As above, logging the offset of a malformed sequence when the debug log is on.
std::size_t Utf8ToUtf16(const std::uint8_t* bytes, std::size_t count, char16_t* out) noexcept;
std::size_t Utf8ToUtf32(const std::uint8_t* bytes, std::size_t count, char32_t* out) noexcept;

}  // namespace zel

// Byte-string operations: masks, concatenation, byte-set search, comparison, filling, wiping,
// random bytes, ASCII tests and byte-order marks. Strings are plain runs of bytes here; an empty
// std::string result stands for the nil string.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zel::strings {

// result[i] = data[i] op mask[i mod mask.size()]. An empty mask has nothing to apply: empty result.
std::string maskAnd(std::string_view data, std::string_view mask);
std::string maskOr(std::string_view data, std::string_view mask);

// XOR with the mask cursor starting at maskOffset and wrapping to mask byte 0. An empty mask or an
// offset outside 0 to mask.size() - 1 gives an empty result.
std::string maskXor(std::string_view data, std::string_view mask, std::int64_t maskOffset);

// maskXor, each byte also XORed with the low 8 bits of its position; its own inverse.
std::string maskXorWithPosition(std::string_view data, std::string_view mask,
                                std::int64_t maskOffset);

std::string concatBytes(std::initializer_list<std::string_view> parts);

// 1-based position of the first byte of target that occurs in set; 0 when there is none.
std::int64_t positionOfAnyByte(std::string_view target, std::string_view set);

struct ByteRange {
  std::int64_t first;
  std::int64_t last;  // inclusive; a range with first > last matches nothing
};

// 1-based position of the first byte, read as unsigned (0 to 255), inside any range; else 0.
std::int64_t positionOfByteInRanges(std::string_view target, std::span<const ByteRange> ranges);

// 1-based position of the first byte that, read as signed (-128 to 127), lies inside any range, or
// that equals a byte of set; else 0.
std::int64_t positionOfSignedByteInRangesOrSet(std::string_view target, std::string_view set,
                                               std::span<const ByteRange> ranges);

// Unsigned comparison as if the shorter string were padded with zero bytes: -1, 0 or 1.
int compareBytesZeroPadded(std::string_view a, std::string_view b);

// Whole copies of content (or zero bytes when content is empty) cut to length; empty for
// length < 1. Throws OutOfMemoryError("Failed to allocate memory.") when the memory cannot be had.
std::string repeatToLength(std::int64_t length, std::string_view content);

// Zeroes bytes, even when nobody reads them afterwards.
void wipeBytes(std::span<std::uint8_t> bytes);

using RandomFill = void (*)(std::span<std::uint8_t>);

// length bytes, one random draw each: the draw's low 8 bits, or 32 + draw mod 96 when ascii.
// Empty for length < 1.
std::string randomBytes(std::int64_t length, bool ascii,
                        RandomFill fill = &platform::secureRandomBytes);

// No byte above 127; false for empty bytes.
bool isAscii(std::string_view bytes);

// mode 0: no byte above 127; 1: every byte in 32 to 127; 2: no byte below 32; otherwise false.
// False for empty bytes.
bool isAscii(std::string_view bytes, std::int64_t mode);

// Bytes outside 32 to 127 become the low 8 bits of replacement.
std::string replaceNonPrintable(std::string_view bytes, std::int64_t replacement);

// Kinds of byte-order mark, as the registered functions number them. Writing also takes the
// aliases 2 and 5 for the little-endian forms.
inline constexpr int kNoMarker = 0;
inline constexpr int kUtf8Marker = 1;
inline constexpr int kUtf16LittleEndianMarkerAlias = 2;
inline constexpr int kUtf16BigEndianMarker = 3;
inline constexpr int kUtf16LittleEndianMarker = 4;
inline constexpr int kUtf32LittleEndianMarkerAlias = 5;
inline constexpr int kUtf32BigEndianMarker = 6;
inline constexpr int kUtf32LittleEndianMarker = 7;

// The kind of mark the bytes start with; kNoMarker for none.
int detectUnicodeMarker(std::string_view bytes);

enum class UnicodeForm { utf8, utf16, utf32 };

struct UnicodeMarker {
  std::string_view bytes;
  UnicodeForm form;  // the text encoding the marker's string carries
};

// The mark for a kind, aliases included; nullopt for any other kind.
std::optional<UnicodeMarker> unicodeMarker(std::int64_t kind);

}  // namespace zel::strings

// Hexadecimal, URL percent-encoding, quoted-printable and the Q-encoded mail subject.
// An empty result stands for the nil string.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zel::strings {

// Two upper-case hexadecimal digits per byte.
std::string encodeHex(std::string_view bytes);

// Pairs of digits to bytes; an odd last character is ignored, bad digits count as 0.
std::string decodeHex(std::string_view asciiText);

// The URL encoder's mode, options & kUrlEncodeModeBits: 1 writes space as "+" and escapes plus,
// 2 escapes both, 0 and 3 escape only space.
inline constexpr std::int64_t kUrlEncodeModeBits = 3;
// The URL decoder's option bit that turns "+" into a space.
inline constexpr std::int64_t kUrlPlusIsSpaceBit = 1;

std::string encodeUrl(std::string_view bytes, std::int64_t options);

// "%" and the next two characters give one byte.
std::string decodeUrl(std::string_view bytes, std::int64_t options);

// Lines end in CR LF; no line (its soft break included) is longer than lineLength - 1 characters.
std::string encodeQuotedPrintable(std::string_view bytes, std::int64_t lineLength);

// Line breaks come out as LF; soft breaks vanish; a malformed escape is copied as it stands.
std::string decodeQuotedPrintable(std::string_view bytes);

// One "=?utf-8?Q?...?=" word; nullopt when the text is plain printable ASCII (the caller then
// returns its own string).
std::optional<std::string> encodeEmailSubject(std::string_view utf8);

}  // namespace zel::strings

// Text conversion between the host's encodings: the Unicode forms exactly, the legacy code pages
// through the platform's converter. Malformed source bytes read as U+FFFD; a character that the
// target cannot hold is written as '?'.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelhost::detail {

// Every encoding the stand-in can convert from and to (no encoding included).
bool isConvertible(std::uint32_t encoding);

// Code points of `bytes` read in `encoding`; no encoding reads as Windows Latin 1.
std::u32string decodeText(std::string_view bytes, std::uint32_t encoding);
// `text` (Unicode scalar values) written in `encoding`; no mark is added.
std::string encodeText(std::u32string_view text, std::uint32_t encoding);

// Null when either encoding is not convertible. Into no encoding (and within one encoding) the
// bytes are kept as they are.
std::optional<std::string> convertBytes(std::string_view bytes, std::uint32_t from,
                                        std::uint32_t to);

// Appends the UTF-8 form of one code point.
void appendUtf8(std::string& out, char32_t c);

// True when every byte is well formed in `encoding`; never for no encoding unless pure ASCII.
bool isValidIn(std::string_view bytes, std::uint32_t encoding);

// "UTF-8", "Windows Latin 1", "no encoding", or the number in hex for others.
std::string encodingName(std::uint32_t encoding);

}  // namespace zelhost::detail

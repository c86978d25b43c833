// A bare yEnc body decoder, a decoder of MySQL backslash escapes and a configurable hex dump.
// An empty result stands for the nil string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zel::strings {

// Each byte minus 42; "=" escapes the next byte, which loses another 64. Header, trailer and line
// breaks are not recognised. A final "=" escapes a zero byte.
std::string yDecode(std::string_view body);

// Backslash escapes to bytes; an unknown escape keeps both characters, a final backslash is kept
// and followed by a zero byte.
std::string decodeMySqlEscapes(std::string_view bytes);

struct HexDumpLayout {
  std::int64_t groupDigits;  // hex digits per group
  std::int64_t groupsPerLine;
  std::string_view lineStart;
  std::string_view lineEnd;
  std::string_view spacer;  // between the groups of a line
  std::string_view filler;  // pads the last line; empty means "0"
};

// Lines of groups of upper-case hex digits; empty when either count is below 1. Throws
// std::bad_alloc when the dump cannot be held in memory.
std::string hexDump(std::string_view bytes, const HexDumpLayout& layout);

}  // namespace zel::strings

// The host's legacy code pages (DOS, Windows, Mac and the CJK double-byte pages) and the platform
// converter that reads and writes them: glibc's iconv on Unix, the Win32 conversions on Windows.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelhost::detail {

// A byte whose meaning Apple's published table gives differently from the platform converter.
struct ByteOverride {
  unsigned char byte;
  char32_t codePoint;
};

inline constexpr unsigned kUpperHalfStart = 0x80;
using UpperHalf = std::array<char32_t, 256 - kUpperHalfStart>;

struct CodePage {
  std::uint32_t hostEncoding;
  unsigned windowsCodePage;
  const char* iconvName;
  bool singleByte;
  std::span<const ByteOverride> overrides;
  // Our own table, for the pages glibc has no converter for; below it the page is ASCII.
  const UpperHalf* upperHalf = nullptr;
};

// Null when `encoding` is not one of the host's legacy code pages.
const CodePage* findCodePage(std::uint32_t encoding);

// Implemented once per platform.
bool platformConverts(const CodePage& page);
// Malformed bytes read as U+FFFD.
std::u32string platformDecode(std::string_view bytes, const CodePage& page);
// A character the page cannot hold is written as '?'.
std::string platformEncode(std::u32string_view text, const CodePage& page);

}  // namespace zelhost::detail

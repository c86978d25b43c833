// The byte-to-UTF-16 tables of the single-byte code pages.
#pragma once

#include <array>
#include <cstddef>

namespace zel::strings {

using CodePageTable = std::array<char16_t, 256>;

inline constexpr CodePageTable kIso8859_1Table = [] {
  CodePageTable table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) table[byte] = static_cast<char16_t>(byte);
  return table;
}();

// Identity outside 0x80-0x9F; the five positions Windows-1252 leaves undefined hold 0.
inline constexpr CodePageTable kWindows1252Table = [] {
  constexpr std::array<char16_t, 32> kHighControls = {
      0x20AC, 0x0000, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 0x80
      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x0000, 0x017D, 0x0000,  // 0x88
      0x0000, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90
      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x0000, 0x017E, 0x0178,  // 0x98
  };
  CodePageTable table = kIso8859_1Table;
  for (std::size_t i = 0; i < kHighControls.size(); ++i) table[0x80 + i] = kHighControls[i];
  return table;
}();

}  // namespace zel::strings

// Arguments for registered functions and checks of what they hand back, shared by the end-to-end
// suites.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "stand_in_host.h"

namespace zeltest {

// Native-order (little-endian here) bytes of code units, as a host string stores them.
template <class Unit>
std::string unitBytes(std::basic_string_view<Unit> units) {
  std::string bytes;
  for (const Unit unit : units) {
    for (std::size_t b = 0; b < sizeof(Unit); ++b) {
      bytes.push_back(static_cast<char>((static_cast<std::uint32_t>(unit) >> (8 * b)) & 0xFF));
    }
  }
  return bytes;
}
inline std::string utf16Bytes(std::u16string_view units) {
  return unitBytes(units);
}
inline std::string utf32Bytes(std::u32string_view codePoints) {
  return unitBytes(codePoints);
}

// A string argument in its encoding, or the nil string.
struct Text {
  std::string bytes;
  std::uint32_t encoding = encoding::kUTF8;
  bool nil = false;
};
inline const Text kNil{"", encoding::kUTF8, true};

Text utf16(std::u16string_view units);

// A new host string (+1) of the argument; null for the nil string, or for nullopt bytes.
REALstring makeArgument(const Text& text);
REALstring makeArgument(const std::optional<std::string>& bytes,
                        std::uint32_t encoding = encoding::kUTF8);

// Takes over the reference on `result` and checks it, and that nothing was raised: null for
// nullopt, else exactly these bytes tagged with this encoding.
void expectString(REALstring result, const std::optional<std::string>& expected,
                  std::uint32_t encoding);

// `result` is the caller's own `argument`, shared by one more reference (released here).
void expectOwnString(REALstring result, REALstring argument);

}  // namespace zeltest

// Hexadecimal digits both ways: the upper-case pair written for each byte, and the value read
// from each character.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zel::text {

inline constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// Two upper-case digits per byte value, high nibble first.
inline constexpr std::array<std::array<char, 2>, 256> kHexPairs = [] {
  std::array<std::array<char, 2>, 256> pairs{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    pairs[byte] = {kHexDigits[byte >> 4], kHexDigits[byte & 15]};
  }
  return pairs;
}();

inline constexpr std::int8_t kNotHex = -1;

// Digit value of 0-9, A-F and a-f; kNotHex for every other byte.
inline constexpr std::array<std::int8_t, 256> kHexValue = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(kNotHex);
  for (int digit = 0; digit < 10; ++digit) values['0' + digit] = static_cast<std::int8_t>(digit);
  for (int digit = 0; digit < 6; ++digit) {
    values['A' + digit] = static_cast<std::int8_t>(10 + digit);
    values['a' + digit] = static_cast<std::int8_t>(10 + digit);
  }
  return values;
}();

// The decoders read a bad digit as 0 and go on.
constexpr unsigned hexValueOrZero(char c) {
  const int value = kHexValue[static_cast<unsigned char>(c)];
  return value == kNotHex ? 0U : static_cast<unsigned>(value);
}

constexpr bool isHexDigit(char c) {
  return kHexValue[static_cast<unsigned char>(c)] != kNotHex;
}

}  // namespace zel::text

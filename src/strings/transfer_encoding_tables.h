// Compile-time tables of the transfer encoders and decoders.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace zel::strings::tables {

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

// Whether the URL encoder escapes a byte, one table per mode (options & kUrlEncodeModeBits): space
// and plus depend on the options (option 1 writes an unescaped space as "+").
inline constexpr std::array<std::array<bool, 256>, 4> kUrlEscaped = [] {
  std::array<std::array<bool, 256>, 4> modes{};
  for (auto& escaped : modes) {
    escaped.fill(true);
    for (int c = '0'; c <= '9'; ++c) escaped[c] = false;
    for (int c = 'A'; c <= 'Z'; ++c) escaped[c] = false;
    for (int c = 'a'; c <= 'z'; ++c) escaped[c] = false;
    for (const char c : std::string_view("!*-.@_~")) escaped[static_cast<unsigned char>(c)] = false;
  }
  modes[0]['+'] = false;
  modes[3]['+'] = false;
  modes[1][' '] = false;
  return modes;
}();

// The quoted-printable encoder's view of a byte. The characters that are unsafe through EBCDIC
// gateways (! " # $ @ [ \ ] ^ ` { | } ~) are written as they are, so they share the literal class.
enum class QuotedPrintableClass : std::uint8_t { literal, blank, lineBreak, encoded };

inline constexpr std::array<QuotedPrintableClass, 256> kQuotedPrintableClass = [] {
  std::array<QuotedPrintableClass, 256> classes{};
  classes.fill(QuotedPrintableClass::encoded);
  for (int c = 33; c < 127; ++c) classes[c] = QuotedPrintableClass::literal;
  classes['='] = QuotedPrintableClass::encoded;
  classes['\t'] = QuotedPrintableClass::blank;
  classes[' '] = QuotedPrintableClass::blank;
  classes['\n'] = QuotedPrintableClass::lineBreak;
  classes['\r'] = QuotedPrintableClass::lineBreak;
  return classes;
}();

}  // namespace zel::strings::tables

// Compile-time tables of the transfer encoders and decoders.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "text/hex_digits.h"

namespace zel::strings::tables {

using text::hexValueOrZero;
using text::isHexDigit;
using text::kHexPairs;

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

// Code point limits and the UTF-16 surrogate arithmetic, in one place.
#pragma once

namespace zel::text {

inline constexpr char32_t kHighSurrogateFirst = 0xD800;
inline constexpr char32_t kHighSurrogateLast = 0xDBFF;
inline constexpr char32_t kLowSurrogateFirst = 0xDC00;
inline constexpr char32_t kLowSurrogateLast = 0xDFFF;
inline constexpr char32_t kFirstSupplementary = 0x10000;
inline constexpr char32_t kLastCodePoint = 0x10FFFF;
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

inline constexpr unsigned kSurrogatePayloadBits = 10;
inline constexpr char32_t kSurrogatePayloadMask = 0x3FF;

constexpr bool isHighSurrogate(char32_t unit) noexcept {
  return unit >= kHighSurrogateFirst && unit <= kHighSurrogateLast;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
  return unit >= kLowSurrogateFirst && unit <= kLowSurrogateLast;
}
constexpr bool isSurrogate(char32_t unit) noexcept {
  return unit >= kHighSurrogateFirst && unit <= kLowSurrogateLast;
}

// The code point of a high surrogate followed by a low one.
constexpr char32_t combineSurrogates(char32_t high, char32_t low) noexcept {
  return kFirstSupplementary + ((high - kHighSurrogateFirst) << kSurrogatePayloadBits) +
         (low - kLowSurrogateFirst);
}

// The two units of a code point from U+10000 to U+10FFFF.
constexpr char16_t highSurrogateOf(char32_t supplementary) noexcept {
  return static_cast<char16_t>(kHighSurrogateFirst +
                               ((supplementary - kFirstSupplementary) >> kSurrogatePayloadBits));
}
constexpr char16_t lowSurrogateOf(char32_t supplementary) noexcept {
  return static_cast<char16_t>(kLowSurrogateFirst + (supplementary & kSurrogatePayloadMask));
}

}  // namespace zel::text

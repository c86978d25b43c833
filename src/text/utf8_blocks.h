// The loops shared by every path: vector blocks while the bytes are ASCII, the one-sequence rules
// from the first byte that is not.
#pragma once

#include <cstddef>
#include <cstdint>

#include "text/surrogates.h"
#include "text/utf8.h"
#include "text/utf8_sequence.h"

namespace zel::text::blocks {

inline constexpr char32_t kByteOrderMark = 0xFEFF;
inline constexpr char32_t kSwappedByteOrderMark = 0xFFFE;

template <class Lanes>
std::size_t asciiPrefix(const std::uint8_t* bytes, std::size_t count) noexcept {
  std::size_t at = 0;
  while (count - at >= Lanes::kWidth) {
    const std::size_t run = Lanes::asciiRun(bytes + at);
    at += run;
    if (run < Lanes::kWidth) return at;
  }
  while (at < count && bytes[at] < kFirstNonAscii) ++at;
  return at;
}

template <class Lanes>
std::size_t validPrefix(const std::uint8_t* bytes, std::size_t count) noexcept {
  std::size_t at = 0;
  while ((at += asciiPrefix<Lanes>(bytes + at, count - at)) < count) {
    do {
      const std::size_t length = multiByteSequenceLength(bytes + at, count - at);
      if (length == 0) return at;
      at += length;
    } while (at < count && bytes[at] >= kFirstNonAscii);
  }
  return count;
}

// Where the one-sequence rules take over from a vector check that found an error in the block
// at `at`: the last sequence start at or before it, as the bytes before are known well-formed but
// for a sequence the previous block left open.
inline std::size_t sequenceStartBefore(const std::uint8_t* bytes, std::size_t at) noexcept {
  constexpr std::size_t kLongestReach = 3;
  for (std::size_t k = 1; k <= kLongestReach && k <= at; ++k) {
    const std::uint8_t b = bytes[at - k];
    if (!isContinuationByte(b)) return b < kFirstNonAscii ? at : at - k;
  }
  return at;
}

inline void emit(char32_t value, char16_t*& out) noexcept {
  if (value >= kFirstSupplementary) {
    *out++ = highSurrogateOf(value);
    *out++ = lowSurrogateOf(value);
  } else {
    *out++ = static_cast<char16_t>(value);
  }
}

inline void emit(char32_t value, char32_t*& out) noexcept {
  *out++ = value;
}

// Copies the ASCII run at `at`, a block at a time while the blocks stay ASCII. A block is widened
// whole even when only its leading run is ASCII: the units past the run are overwritten next, and
// they fit because no sequence yields more units than it has bytes.
template <class Lanes, class Unit>
void copyAsciiRun(const std::uint8_t* bytes, std::size_t count, std::size_t& at,
                  Unit*& next) noexcept {
  while (count - at >= Lanes::kWidth) {
    const std::size_t run = Lanes::asciiRun(bytes + at);
    Lanes::widen(bytes + at, next);
    at += run;
    next += run;
    if (run < Lanes::kWidth) break;
  }
  while (at < count && bytes[at] < kFirstNonAscii) *next++ = bytes[at++];
}

template <class Lanes, class Unit>
Utf8DecodeResult decode(const std::uint8_t* bytes, std::size_t count, Unit* out) noexcept {
  Utf8DecodeResult result;
  Unit* next = out;
  std::size_t at = 0;
  while (at < count) {
    copyAsciiRun<Lanes>(bytes, count, at, next);
    while (at < count && bytes[at] >= kFirstNonAscii) {
      const std::size_t length = multiByteSequenceLength(bytes + at, count - at);
      if (length == 0) {
        result.badOffset = at;
        at = count;
        break;
      }
      // Well-formed sequences hold neither surrogates nor values beyond U+10FFFF.
      const char32_t value = multiByteSequenceValue(bytes + at, length);
      at += length;
      if (value != kByteOrderMark && value != kSwappedByteOrderMark) emit(value, next);
    }
  }
  *next = 0;
  result.units = static_cast<std::size_t>(next - out);
  return result;
}

// As decode, over bytes already known to be well-formed UTF-8: the sequences need no checks.
template <class Lanes, class Unit>
std::size_t decodeWellFormed(const std::uint8_t* bytes, std::size_t count, Unit* out) noexcept {
  constexpr std::uint8_t kFirstLeadOf3 = 0xE0;
  constexpr std::uint8_t kFirstLeadOf4 = 0xF0;
  Unit* next = out;
  std::size_t at = 0;
  while (at < count) {
    copyAsciiRun<Lanes>(bytes, count, at, next);
    while (at < count && bytes[at] >= kFirstNonAscii) {
      const std::uint8_t lead = bytes[at];
      const std::size_t length = lead < kFirstLeadOf3 ? 2 : lead < kFirstLeadOf4 ? 3 : 4;
      const char32_t value = multiByteSequenceValue(bytes + at, length);
      at += length;
      if (value != kByteOrderMark && value != kSwappedByteOrderMark) emit(value, next);
    }
  }
  *next = 0;
  return static_cast<std::size_t>(next - out);
}

}  // namespace zel::text::blocks

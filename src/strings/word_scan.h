// Looking at eight bytes at a time: which bytes of a 64-bit word equal a given value.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zel::strings::word_scan {

inline constexpr std::size_t kWordBytes = sizeof(std::uint64_t);
inline constexpr std::uint64_t kOnes = 0x0101010101010101;
inline constexpr std::uint64_t kHighBits = 0x8080808080808080;

inline std::uint64_t load(const void* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Sets the high bit of every byte equal to `byte` that comes before any other such byte in
// memory order; later bytes may be marked spuriously, so only "any" and "first" are exact.
constexpr std::uint64_t bytesEqualTo(std::uint64_t word, unsigned char byte) {
  const std::uint64_t x = word ^ (kOnes * byte);
  return (x - kOnes) & ~x & kHighBits;
}

// Offset of the first marked byte in memory order; `marks` is not zero.
inline std::size_t firstMarkedByte(std::uint64_t marks) {
  if constexpr (std::endian::native == std::endian::little) {
    return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
  } else {
    return static_cast<std::size_t>(std::countl_zero(marks)) / 8;
  }
}

}  // namespace zel::strings::word_scan

// Blocks of bytes as the vector units see them: how many leading bytes of a block are ASCII, and
// the block widened to UTF-16 or UTF-32 units. One struct per path, all with the same members.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace zel::text::lanes {

struct Portable {
  static constexpr std::size_t kWidth = sizeof(std::uint64_t);

  static std::size_t asciiRun(const std::uint8_t* block) noexcept {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    constexpr unsigned kBitsPerByte = 8;
    std::uint64_t word;
    std::memcpy(&word, block, sizeof word);
    const std::uint64_t high = word & kHighBits;
    if (high == 0) return kWidth;
    if constexpr (std::endian::native == std::endian::little) {
      return static_cast<std::size_t>(std::countr_zero(high)) / kBitsPerByte;
    } else {
      return static_cast<std::size_t>(std::countl_zero(high)) / kBitsPerByte;
    }
  }

  template <class Unit>
  static void widen(const std::uint8_t* block, Unit* out) noexcept {
    for (std::size_t k = 0; k < kWidth; ++k) out[k] = block[k];
  }
};

#if defined(__x86_64__)

struct Sse2 {
  static constexpr std::size_t kWidth = sizeof(__m128i);

  static std::size_t asciiRun(const std::uint8_t* block) noexcept {
    const auto mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(block))));
    return mask == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(mask));
  }

  static void widen(const std::uint8_t* block, char16_t* out) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    const __m128i zero = _mm_setzero_si128();
    auto* units = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, zero));
  }

  static void widen(const std::uint8_t* block, char32_t* out) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi8(bytes, zero);
    const __m128i high = _mm_unpackhi_epi8(bytes, zero);
    auto* units = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(units, _mm_unpacklo_epi16(low, zero));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi16(low, zero));
    _mm_storeu_si128(units + 2, _mm_unpacklo_epi16(high, zero));
    _mm_storeu_si128(units + 3, _mm_unpackhi_epi16(high, zero));
  }
};

struct Avx2 {
  static constexpr std::size_t kWidth = sizeof(__m256i);

  [[gnu::target("avx2")]] static std::size_t asciiRun(const std::uint8_t* block) noexcept {
    const auto mask = static_cast<unsigned>(
        _mm256_movemask_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(block))));
    return mask == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(mask));
  }

  [[gnu::target("avx2")]] static void widen(const std::uint8_t* block, char16_t* out) noexcept {
    const auto* halves = reinterpret_cast<const __m128i*>(block);
    auto* units = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(units, _mm256_cvtepu8_epi16(_mm_loadu_si128(halves)));
    _mm256_storeu_si256(units + 1, _mm256_cvtepu8_epi16(_mm_loadu_si128(halves + 1)));
  }

  [[gnu::target("avx2")]] static void widen(const std::uint8_t* block, char32_t* out) noexcept {
    constexpr std::size_t kBytesPerStore = sizeof(__m256i) / sizeof(char32_t);
    auto* units = reinterpret_cast<__m256i*>(out);
    for (std::size_t k = 0; k < kWidth / kBytesPerStore; ++k) {
      const __m128i eight =
          _mm_loadl_epi64(reinterpret_cast<const __m128i*>(block + k * kBytesPerStore));
      _mm256_storeu_si256(units + k, _mm256_cvtepu8_epi32(eight));
    }
  }
};

#elif defined(__aarch64__)

struct Neon {
  static constexpr std::size_t kWidth = sizeof(uint8x16_t);

  static std::size_t asciiRun(const std::uint8_t* block) noexcept {
    // Four bits per byte: the narrowed comparison is the cheapest mask NEON offers.
    constexpr unsigned kMaskBitsPerByte = 4;
    const uint8x16_t high = vcgeq_u8(vld1q_u8(block), vdupq_n_u8(0x80));
    const std::uint64_t mask = vget_lane_u64(
        vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(high), kMaskBitsPerByte)), 0);
    return mask == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(mask)) / kMaskBitsPerByte;
  }

  static void widen(const std::uint8_t* block, char16_t* out) noexcept {
    const uint8x16_t bytes = vld1q_u8(block);
    auto* units = reinterpret_cast<std::uint16_t*>(out);
    vst1q_u16(units, vmovl_u8(vget_low_u8(bytes)));
    vst1q_u16(units + kWidth / 2, vmovl_high_u8(bytes));
  }

  static void widen(const std::uint8_t* block, char32_t* out) noexcept {
    const uint8x16_t bytes = vld1q_u8(block);
    const uint16x8_t low = vmovl_u8(vget_low_u8(bytes));
    const uint16x8_t high = vmovl_high_u8(bytes);
    constexpr std::size_t kQuarter = kWidth / 4;
    auto* units = reinterpret_cast<std::uint32_t*>(out);
    vst1q_u32(units, vmovl_u16(vget_low_u16(low)));
    vst1q_u32(units + kQuarter, vmovl_high_u16(low));
    vst1q_u32(units + 2 * kQuarter, vmovl_u16(vget_low_u16(high)));
    vst1q_u32(units + 3 * kQuarter, vmovl_high_u16(high));
  }
};

#endif

}  // namespace zel::text::lanes

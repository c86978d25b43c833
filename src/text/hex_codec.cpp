#include "text/hex_codec.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/hex_digits.h"
#include "text/simd_lanes.h"
#include "text/simd_path.h"

namespace zel::text {
namespace {

constexpr unsigned kNibbleBits = 4;
constexpr std::uint8_t kLowNibble = 0x0F;
constexpr std::uint8_t kDecimalDigits = 10;
constexpr std::uint8_t kLetterDigits = 6;
constexpr std::uint8_t kLowerCaseBit = 0x20;

// The rules for one byte or pair, used by every path for the bytes its blocks leave over.
struct Scalar {
  static void encode(const char* bytes, std::size_t count, char* out) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
      std::memcpy(out + 2 * i, kHexPairs[static_cast<unsigned char>(bytes[i])].data(), 2);
    }
  }
  static void decode(const char* digits, std::size_t pairs, char* out) noexcept {
    for (std::size_t i = 0; i < pairs; ++i) {
      out[i] = static_cast<char>(hexValueOrZero(digits[2 * i]) << kNibbleBits |
                                 hexValueOrZero(digits[2 * i + 1]));
    }
  }
};

// A vector path encodes Lanes::kWidth bytes and decodes Lanes::kWidth pairs per block. Every
// character has a value (0 for a non-digit) that the blocks compute exactly, so no block needs to
// hand its bytes back to the scalar rules.
template <class Lanes>
void encodeBlocks(const char* bytes, std::size_t count, char* out) noexcept {
  std::size_t at = 0;
  for (; count - at >= Lanes::kWidth; at += Lanes::kWidth) {
    Lanes::encode(reinterpret_cast<const std::uint8_t*>(bytes + at),
                  reinterpret_cast<std::uint8_t*>(out + 2 * at));
  }
  Scalar::encode(bytes + at, count - at, out + 2 * at);
}

template <class Lanes>
void decodeBlocks(const char* digits, std::size_t pairs, char* out) noexcept {
  std::size_t at = 0;
  for (; pairs - at >= Lanes::kWidth; at += Lanes::kWidth) {
    Lanes::decode(reinterpret_cast<const std::uint8_t*>(digits + 2 * at),
                  reinterpret_cast<std::uint8_t*>(out + at));
  }
  Scalar::decode(digits + 2 * at, pairs - at, out + at);
}

#if defined(__x86_64__)

// Distance from '9' + 1 to 'A': added to the nibbles above 9.
constexpr std::uint8_t kLetterGap = 'A' - '9' - 1;

struct Sse2Hex {
  static constexpr std::size_t kWidth = lanes::Sse2::kWidth;

  static __m128i digitsOf(__m128i nibbles) noexcept {
    const __m128i letters = _mm_cmpgt_epi8(nibbles, _mm_set1_epi8(kDecimalDigits - 1));
    const __m128i zeroDigit = _mm_add_epi8(nibbles, _mm_set1_epi8('0'));
    return _mm_add_epi8(zeroDigit, _mm_and_si128(letters, _mm_set1_epi8(kLetterGap)));
  }

  // Unsigned value < limit, as all-ones lanes.
  static __m128i below(__m128i value, std::uint8_t limit) noexcept {
    return _mm_cmpeq_epi8(_mm_min_epu8(value, _mm_set1_epi8(static_cast<char>(limit - 1))), value);
  }

  static __m128i valuesOf(__m128i characters) noexcept {
    const __m128i decimal = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    const __m128i letter =
        _mm_sub_epi8(_mm_or_si128(characters, _mm_set1_epi8(kLowerCaseBit)), _mm_set1_epi8('a'));
    const __m128i letterValue = _mm_add_epi8(letter, _mm_set1_epi8(kDecimalDigits));
    return _mm_or_si128(_mm_and_si128(below(decimal, kDecimalDigits), decimal),
                        _mm_and_si128(below(letter, kLetterDigits), letterValue));
  }

  // Each 16-bit lane holds a pair's values, high character first in memory: one byte from each.
  static __m128i packPairs(__m128i values) noexcept {
    const __m128i joined =
        _mm_or_si128(_mm_slli_epi16(values, kNibbleBits), _mm_srli_epi16(values, 8));
    return _mm_and_si128(joined, _mm_set1_epi16(0xFF));
  }

  static void encode(const std::uint8_t* bytes, std::uint8_t* out) noexcept {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i lowMask = _mm_set1_epi8(kLowNibble);
    const __m128i high = digitsOf(_mm_and_si128(_mm_srli_epi16(block, kNibbleBits), lowMask));
    const __m128i low = digitsOf(_mm_and_si128(block, lowMask));
    auto* pairs = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(pairs, _mm_unpacklo_epi8(high, low));
    _mm_storeu_si128(pairs + 1, _mm_unpackhi_epi8(high, low));
  }

  static void decode(const std::uint8_t* digits, std::uint8_t* out) noexcept {
    const auto* halves = reinterpret_cast<const __m128i*>(digits);
    const __m128i first = packPairs(valuesOf(_mm_loadu_si128(halves)));
    const __m128i second = packPairs(valuesOf(_mm_loadu_si128(halves + 1)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(first, second));
  }
};

struct Avx2Hex {
  static constexpr std::size_t kWidth = lanes::Avx2::kWidth;
  // 128-bit halves in the order 0, 2, 1, 3: undoes the per-half interleaving of packs.
  static constexpr int kHalvesInOrder = 0xD8;
  static constexpr int kLowHalves = 0x20;
  static constexpr int kHighHalves = 0x31;

  [[gnu::target("avx2")]] static __m256i digitsOf(__m256i nibbles) noexcept {
    const __m256i table = _mm256_broadcastsi128_si256(
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits.data())));
    return _mm256_shuffle_epi8(table, nibbles);
  }

  [[gnu::target("avx2")]] static __m256i below(__m256i value, std::uint8_t limit) noexcept {
    return _mm256_cmpeq_epi8(_mm256_min_epu8(value, _mm256_set1_epi8(static_cast<char>(limit - 1))),
                             value);
  }

  [[gnu::target("avx2")]] static __m256i valuesOf(__m256i characters) noexcept {
    const __m256i decimal = _mm256_sub_epi8(characters, _mm256_set1_epi8('0'));
    const __m256i letter = _mm256_sub_epi8(
        _mm256_or_si256(characters, _mm256_set1_epi8(kLowerCaseBit)), _mm256_set1_epi8('a'));
    const __m256i letterValue = _mm256_add_epi8(letter, _mm256_set1_epi8(kDecimalDigits));
    return _mm256_or_si256(_mm256_and_si256(below(decimal, kDecimalDigits), decimal),
                           _mm256_and_si256(below(letter, kLetterDigits), letterValue));
  }

  [[gnu::target("avx2")]] static __m256i packPairs(__m256i values) noexcept {
    const __m256i joined =
        _mm256_or_si256(_mm256_slli_epi16(values, kNibbleBits), _mm256_srli_epi16(values, 8));
    return _mm256_and_si256(joined, _mm256_set1_epi16(0xFF));
  }

  [[gnu::target("avx2")]] static void encode(const std::uint8_t* bytes,
                                             std::uint8_t* out) noexcept {
    const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
    const __m256i lowMask = _mm256_set1_epi8(kLowNibble);
    const __m256i high = digitsOf(_mm256_and_si256(_mm256_srli_epi16(block, kNibbleBits), lowMask));
    const __m256i low = digitsOf(_mm256_and_si256(block, lowMask));
    const __m256i front = _mm256_unpacklo_epi8(high, low);
    const __m256i back = _mm256_unpackhi_epi8(high, low);
    auto* pairs = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(pairs, _mm256_permute2x128_si256(front, back, kLowHalves));
    _mm256_storeu_si256(pairs + 1, _mm256_permute2x128_si256(front, back, kHighHalves));
  }

  [[gnu::target("avx2")]] static void decode(const std::uint8_t* digits,
                                             std::uint8_t* out) noexcept {
    const auto* halves = reinterpret_cast<const __m256i*>(digits);
    const __m256i first = packPairs(valuesOf(_mm256_loadu_si256(halves)));
    const __m256i second = packPairs(valuesOf(_mm256_loadu_si256(halves + 1)));
    _mm256_storeu_si256(
        reinterpret_cast<__m256i*>(out),
        _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), kHalvesInOrder));
  }
};

// Flattened, so that the blocks are compiled for AVX2 with the lanes inlined.
[[gnu::target("avx2"), gnu::flatten]] void encodeAvx2(const char* bytes, std::size_t count,
                                                      char* out) noexcept {
  encodeBlocks<Avx2Hex>(bytes, count, out);
}

[[gnu::target("avx2"), gnu::flatten]] void decodeAvx2(const char* digits, std::size_t pairs,
                                                      char* out) noexcept {
  decodeBlocks<Avx2Hex>(digits, pairs, out);
}

#elif defined(__aarch64__)

struct NeonHex {
  static constexpr std::size_t kWidth = lanes::Neon::kWidth;

  static uint8x16_t valuesOf(uint8x16_t characters) noexcept {
    const uint8x16_t decimal = vsubq_u8(characters, vdupq_n_u8('0'));
    const uint8x16_t letter =
        vsubq_u8(vorrq_u8(characters, vdupq_n_u8(kLowerCaseBit)), vdupq_n_u8('a'));
    const uint8x16_t letterValue = vaddq_u8(letter, vdupq_n_u8(kDecimalDigits));
    return vorrq_u8(vandq_u8(vcltq_u8(decimal, vdupq_n_u8(kDecimalDigits)), decimal),
                    vandq_u8(vcltq_u8(letter, vdupq_n_u8(kLetterDigits)), letterValue));
  }

  static void encode(const std::uint8_t* bytes, std::uint8_t* out) noexcept {
    const uint8x16_t table = vld1q_u8(reinterpret_cast<const std::uint8_t*>(kHexDigits.data()));
    const uint8x16_t block = vld1q_u8(bytes);
    uint8x16x2_t pairs;
    pairs.val[0] = vqtbl1q_u8(table, vshrq_n_u8(block, kNibbleBits));
    pairs.val[1] = vqtbl1q_u8(table, vandq_u8(block, vdupq_n_u8(kLowNibble)));
    vst2q_u8(out, pairs);
  }

  static void decode(const std::uint8_t* digits, std::uint8_t* out) noexcept {
    const uint8x16x2_t pairs = vld2q_u8(digits);
    const uint8x16_t high = valuesOf(pairs.val[0]);
    vst1q_u8(out, vorrq_u8(vshlq_n_u8(high, kNibbleBits), valuesOf(pairs.val[1])));
  }
};

#endif

}  // namespace

void encodeHex(std::string_view bytes, char* out) noexcept {
  switch (activeSimdPath()) {
#if defined(__x86_64__)
    case SimdPath::avx2:
      return encodeAvx2(bytes.data(), bytes.size(), out);
    case SimdPath::sse2:
      return encodeBlocks<Sse2Hex>(bytes.data(), bytes.size(), out);
#elif defined(__aarch64__)
    case SimdPath::neon:
      return encodeBlocks<NeonHex>(bytes.data(), bytes.size(), out);
#endif
    default:
      return Scalar::encode(bytes.data(), bytes.size(), out);
  }
}

void decodeHex(std::string_view digits, char* out) noexcept {
  const std::size_t pairs = digits.size() / 2;
  switch (activeSimdPath()) {
#if defined(__x86_64__)
    case SimdPath::avx2:
      return decodeAvx2(digits.data(), pairs, out);
    case SimdPath::sse2:
      return decodeBlocks<Sse2Hex>(digits.data(), pairs, out);
#elif defined(__aarch64__)
    case SimdPath::neon:
      return decodeBlocks<NeonHex>(digits.data(), pairs, out);
#endif
    default:
      return Scalar::decode(digits.data(), pairs, out);
  }
}

}  // namespace zel::text

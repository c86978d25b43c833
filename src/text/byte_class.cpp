#include "text/byte_class.h"

#include <bit>
#include <cstring>

#include "text/simd_path.h"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace zel::text {
namespace {

// Each path tests one block: every byte against the bound, the high bit and each listed value.
// `prepare` spreads the class over vector registers once per search.

// Eight bytes in a 64-bit word. Each test marks the first member exactly and may mark later
// bytes spuriously (borrows run upwards only), which is all that a search for the first needs.
struct PortableBlocks {
  static constexpr std::size_t kWidth = sizeof(std::uint64_t);
  static constexpr std::uint64_t kOnes = 0x0101010101010101;
  static constexpr std::uint64_t kHighBits = 0x8080808080808080;
  static constexpr unsigned kBitsPerByte = 8;

  struct Tests {
    std::uint64_t below = 0;
    std::uint64_t high = 0;
    std::array<std::uint64_t, ByteClass::kMaxListed> listed{};
    std::size_t listedCount = 0;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests{kOnes * members.below(), members.high() ? kHighBits : 0, {}, 0};
    for (const std::uint8_t b : members.listed()) tests.listed[tests.listedCount++] = kOnes * b;
    return tests;
  }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    std::uint64_t word;
    std::memcpy(&word, block, sizeof word);
    std::uint64_t marks = ((word - tests.below) & ~word & kHighBits) | (word & tests.high);
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      const std::uint64_t x = word ^ tests.listed[k];
      marks |= (x - kOnes) & ~x & kHighBits;
    }
    if (marks == 0) return kWidth;
    if constexpr (std::endian::native == std::endian::little) {
      return static_cast<std::size_t>(std::countr_zero(marks)) / kBitsPerByte;
    } else {
      return static_cast<std::size_t>(std::countl_zero(marks)) / kBitsPerByte;
    }
  }
};

#if defined(__x86_64__)

struct Sse2Blocks {
  static constexpr std::size_t kWidth = sizeof(__m128i);
  static constexpr unsigned kAllLanes = 0xFFFF;

  struct Tests {
    __m128i below;
    unsigned high;
    __m128i listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests{
        _mm_set1_epi8(static_cast<char>(members.below())), members.high() ? kAllLanes : 0u, {}, 0};
    for (const std::uint8_t b : members.listed()) {
      tests.listed[tests.listedCount++] = _mm_set1_epi8(static_cast<char>(b));
    }
    return tests;
  }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    // SSE2 compares bytes as signed; the unsigned maximum tells "at or above the bound".
    const __m128i atOrAbove = _mm_cmpeq_epi8(_mm_max_epu8(bytes, tests.below), bytes);
    __m128i equal = _mm_setzero_si128();
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      equal = _mm_or_si128(equal, _mm_cmpeq_epi8(bytes, tests.listed[k]));
    }
    const auto lanes = [](__m128i v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); };
    const unsigned marks =
        (~lanes(atOrAbove) & kAllLanes) | (lanes(bytes) & tests.high) | lanes(equal);
    return marks == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(marks));
  }
};

struct Avx2Blocks {
  static constexpr std::size_t kWidth = sizeof(__m256i);

  struct Tests {
    __m256i below;
    unsigned high;
    __m256i listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  [[gnu::target("avx2")]] static Tests prepare(const ByteClass& members) noexcept {
    Tests tests{
        _mm256_set1_epi8(static_cast<char>(members.below())), members.high() ? ~0u : 0u, {}, 0};
    for (const std::uint8_t b : members.listed()) {
      tests.listed[tests.listedCount++] = _mm256_set1_epi8(static_cast<char>(b));
    }
    return tests;
  }

  [[gnu::target("avx2")]] static std::size_t firstMember(const std::uint8_t* block,
                                                         const Tests& tests) noexcept {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block));
    const __m256i atOrAbove = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, tests.below), bytes);
    __m256i equal = _mm256_setzero_si256();
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      equal = _mm256_or_si256(equal, _mm256_cmpeq_epi8(bytes, tests.listed[k]));
    }
    const unsigned marks = ~static_cast<unsigned>(_mm256_movemask_epi8(atOrAbove)) |
                           (static_cast<unsigned>(_mm256_movemask_epi8(bytes)) & tests.high) |
                           static_cast<unsigned>(_mm256_movemask_epi8(equal));
    return marks == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(marks));
  }
};

#elif defined(__aarch64__)

struct NeonBlocks {
  static constexpr std::size_t kWidth = sizeof(uint8x16_t);
  // Four bits per byte: the narrowed comparison is the cheapest mask NEON offers.
  static constexpr unsigned kMaskBitsPerByte = 4;

  struct Tests {
    uint8x16_t below;
    uint8x16_t high;
    uint8x16_t listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests{
        vdupq_n_u8(members.below()), vdupq_n_u8(members.high() ? ByteClass::kFirstHigh : 0), {}, 0};
    for (const std::uint8_t b : members.listed()) tests.listed[tests.listedCount++] = vdupq_n_u8(b);
    return tests;
  }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    const uint8x16_t bytes = vld1q_u8(block);
    uint8x16_t found = vorrq_u8(vcltq_u8(bytes, tests.below), vtstq_u8(bytes, tests.high));
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      found = vorrq_u8(found, vceqq_u8(bytes, tests.listed[k]));
    }
    const std::uint64_t mask = vget_lane_u64(
        vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(found), kMaskBitsPerByte)), 0);
    return mask == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(mask)) / kMaskBitsPerByte;
  }
};

#endif

template <class Blocks>
std::size_t findInBlocks(const std::uint8_t* bytes, std::size_t count,
                         const ByteClass& members) noexcept {
  const typename Blocks::Tests tests = Blocks::prepare(members);
  std::size_t at = 0;
  for (; count - at >= Blocks::kWidth; at += Blocks::kWidth) {
    const std::size_t hit = Blocks::firstMember(bytes + at, tests);
    if (hit < Blocks::kWidth) return at + hit;
  }
  while (at < count && !members.contains(bytes[at])) ++at;
  return at;
}

// Flattened, so that each path's loop runs with its tests inlined.
template <class Blocks>
[[gnu::flatten]] std::size_t find(const std::uint8_t* bytes, std::size_t count,
                                  const ByteClass& members) noexcept {
  return findInBlocks<Blocks>(bytes, count, members);
}

#if defined(__x86_64__)
// Compiled for AVX2, which the build does not assume: only reached after the processor was found
// to run it.
[[gnu::target("avx2"), gnu::flatten]] std::size_t findAvx2(const std::uint8_t* bytes,
                                                           std::size_t count,
                                                           const ByteClass& members) noexcept {
  return findInBlocks<Avx2Blocks>(bytes, count, members);
}
#endif

}  // namespace

std::size_t findByteInClass(std::span<const std::uint8_t> bytes,
                            const ByteClass& members) noexcept {
  switch (activeSimdPath()) {
#if defined(__x86_64__)
    case SimdPath::avx2:
      return findAvx2(bytes.data(), bytes.size(), members);
    case SimdPath::sse2:
      return find<Sse2Blocks>(bytes.data(), bytes.size(), members);
#elif defined(__aarch64__)
    case SimdPath::neon:
      return find<NeonBlocks>(bytes.data(), bytes.size(), members);
#endif
    default:
      return find<PortableBlocks>(bytes.data(), bytes.size(), members);
  }
}

}  // namespace zel::text

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

// Each path tests one block: every byte against the bound, the gaps, the high bit and each listed
// value. `prepare` spreads the class over registers once per search; the slots past the counts
// stay unset, since clearing them would cost more than a short search.

// Eight bytes in a 64-bit word, with carries kept inside each byte so that every mark is exact.
struct PortableBlocks {
  static constexpr std::size_t kWidth = sizeof(std::uint64_t);
  static constexpr std::uint64_t kOnes = 0x0101010101010101;
  static constexpr std::uint64_t kHighBits = 0x8080808080808080;
  static constexpr std::uint64_t kLowBits = ~kHighBits;
  static constexpr unsigned kBitsPerByte = 8;

  struct Tests {
    std::uint64_t belowComplement;  // added to the low seven bits, sets the high bit at the bound
    std::uint64_t high;
    std::uint64_t gaps[ByteClass::kMaxGaps];
    std::size_t gapCount;
    std::uint64_t listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests;
    tests.belowComplement = kOnes * (ByteClass::kFirstHigh - members.below());
    tests.high = members.high() ? kHighBits : 0;
    tests.gapCount = tests.listedCount = 0;
    for (const std::uint8_t b : members.gaps()) tests.gaps[tests.gapCount++] = kOnes * b;
    for (const std::uint8_t b : members.listed()) tests.listed[tests.listedCount++] = kOnes * b;
    return tests;
  }

  // The high bit of every byte that is zero.
  static std::uint64_t zeroBytes(std::uint64_t x) noexcept {
    return ~(((x & kLowBits) + kLowBits) | x) & kHighBits;
  }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    std::uint64_t word;
    std::memcpy(&word, block, sizeof word);
    const std::uint64_t atOrAbove = ((word & kLowBits) + tests.belowComplement) | word;
    std::uint64_t gaps = 0, listed = 0;
    for (std::size_t k = 0; k < tests.gapCount; ++k) gaps |= zeroBytes(word ^ tests.gaps[k]);
    for (std::size_t k = 0; k < tests.listedCount; ++k) listed |= zeroBytes(word ^ tests.listed[k]);
    const std::uint64_t marks = (~atOrAbove & ~gaps & kHighBits) | (word & tests.high) | listed;
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
    __m128i gaps[ByteClass::kMaxGaps];
    std::size_t gapCount;
    __m128i listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests;
    tests.below = _mm_set1_epi8(static_cast<char>(members.below()));
    tests.high = members.high() ? kAllLanes : 0u;
    tests.gapCount = tests.listedCount = 0;
    for (const std::uint8_t b : members.gaps()) {
      tests.gaps[tests.gapCount++] = _mm_set1_epi8(static_cast<char>(b));
    }
    for (const std::uint8_t b : members.listed()) {
      tests.listed[tests.listedCount++] = _mm_set1_epi8(static_cast<char>(b));
    }
    return tests;
  }

  static unsigned lanes(__m128i v) noexcept { return static_cast<unsigned>(_mm_movemask_epi8(v)); }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    // SSE2 compares bytes as signed; the unsigned maximum tells "at or above the bound".
    const __m128i atOrAbove = _mm_cmpeq_epi8(_mm_max_epu8(bytes, tests.below), bytes);
    __m128i gaps = atOrAbove;
    for (std::size_t k = 0; k < tests.gapCount; ++k) {
      gaps = _mm_or_si128(gaps, _mm_cmpeq_epi8(bytes, tests.gaps[k]));
    }
    __m128i listed = _mm_setzero_si128();
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      listed = _mm_or_si128(listed, _mm_cmpeq_epi8(bytes, tests.listed[k]));
    }
    const unsigned marks = (~lanes(gaps) & kAllLanes) | (lanes(bytes) & tests.high) | lanes(listed);
    return marks == 0 ? kWidth : static_cast<std::size_t>(std::countr_zero(marks));
  }
};

struct Avx2Blocks {
  static constexpr std::size_t kWidth = sizeof(__m256i);

  struct Tests {
    __m256i below;
    unsigned high;
    __m256i gaps[ByteClass::kMaxGaps];
    std::size_t gapCount;
    __m256i listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  [[gnu::target("avx2")]] static Tests prepare(const ByteClass& members) noexcept {
    Tests tests;
    tests.below = _mm256_set1_epi8(static_cast<char>(members.below()));
    tests.high = members.high() ? ~0u : 0u;
    tests.gapCount = tests.listedCount = 0;
    for (const std::uint8_t b : members.gaps()) {
      tests.gaps[tests.gapCount++] = _mm256_set1_epi8(static_cast<char>(b));
    }
    for (const std::uint8_t b : members.listed()) {
      tests.listed[tests.listedCount++] = _mm256_set1_epi8(static_cast<char>(b));
    }
    return tests;
  }

  [[gnu::target("avx2")]] static unsigned lanes(__m256i v) noexcept {
    return static_cast<unsigned>(_mm256_movemask_epi8(v));
  }

  [[gnu::target("avx2")]] static std::size_t firstMember(const std::uint8_t* block,
                                                         const Tests& tests) noexcept {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block));
    const __m256i atOrAbove = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, tests.below), bytes);
    __m256i gaps = atOrAbove;
    for (std::size_t k = 0; k < tests.gapCount; ++k) {
      gaps = _mm256_or_si256(gaps, _mm256_cmpeq_epi8(bytes, tests.gaps[k]));
    }
    __m256i listed = _mm256_setzero_si256();
    for (std::size_t k = 0; k < tests.listedCount; ++k) {
      listed = _mm256_or_si256(listed, _mm256_cmpeq_epi8(bytes, tests.listed[k]));
    }
    const unsigned marks = ~lanes(gaps) | (lanes(bytes) & tests.high) | lanes(listed);
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
    uint8x16_t gaps[ByteClass::kMaxGaps];
    std::size_t gapCount;
    uint8x16_t listed[ByteClass::kMaxListed];
    std::size_t listedCount;
  };

  static Tests prepare(const ByteClass& members) noexcept {
    Tests tests;
    tests.below = vdupq_n_u8(members.below());
    tests.high = vdupq_n_u8(members.high() ? ByteClass::kFirstHigh : 0);
    tests.gapCount = tests.listedCount = 0;
    for (const std::uint8_t b : members.gaps()) tests.gaps[tests.gapCount++] = vdupq_n_u8(b);
    for (const std::uint8_t b : members.listed()) tests.listed[tests.listedCount++] = vdupq_n_u8(b);
    return tests;
  }

  static std::size_t firstMember(const std::uint8_t* block, const Tests& tests) noexcept {
    const uint8x16_t bytes = vld1q_u8(block);
    uint8x16_t gaps = vdupq_n_u8(0);
    for (std::size_t k = 0; k < tests.gapCount; ++k) {
      gaps = vorrq_u8(gaps, vceqq_u8(bytes, tests.gaps[k]));
    }
    uint8x16_t found =
        vorrq_u8(vbicq_u8(vcltq_u8(bytes, tests.below), gaps), vtstq_u8(bytes, tests.high));
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

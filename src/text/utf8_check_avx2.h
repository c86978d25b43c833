// Validation 32 bytes at a time with AVX2 table lookups. A block that shows an error sends the
// search back to the one-sequence rules from the last sequence start before it, so the offset
// found is always theirs.
#pragma once

#if defined(__x86_64__)

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "text/simd_lanes.h"
#include "text/utf8_blocks.h"
#include "text/utf8_check_tables.h"

namespace zel::text::avx2_check {

[[gnu::target("avx2")]] inline __m256i broadcast(const check_tables::Table& table) noexcept {
  return _mm256_broadcastsi128_si256(
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(table.data())));
}

// The bytes `Distance` places before each byte of `input`, reaching into `previous`.
template <int Distance>
[[gnu::target("avx2")]] inline __m256i before(__m256i input, __m256i previous) noexcept {
  constexpr int kLaneBytes = 16;
  constexpr int kLowOfInputHighOfPrevious = 0x21;
  return _mm256_alignr_epi8(input,
                            _mm256_permute2x128_si256(previous, input, kLowOfInputHighOfPrevious),
                            kLaneBytes - Distance);
}

[[gnu::target("avx2")]] inline __m256i highHalves(__m256i bytes) noexcept {
  constexpr int kHalfBits = 4;
  return _mm256_and_si256(_mm256_srli_epi16(bytes, kHalfBits), _mm256_set1_epi8(0x0F));
}

[[gnu::target("avx2")]] inline __m256i blockErrors(__m256i input, __m256i previous) noexcept {
  using namespace check_tables;
  const __m256i previous1 = before<1>(input, previous);
  const __m256i special = _mm256_and_si256(
      _mm256_and_si256(_mm256_shuffle_epi8(broadcast(kPreviousHigh), highHalves(previous1)),
                       _mm256_shuffle_epi8(broadcast(kPreviousLow),
                                           _mm256_and_si256(previous1, _mm256_set1_epi8(0x0F)))),
      _mm256_shuffle_epi8(broadcast(kCurrentHigh), highHalves(input)));
  const __m256i third = _mm256_subs_epu8(before<2>(input, previous),
                                         _mm256_set1_epi8(static_cast<char>(kThirdByteBias)));
  const __m256i fourth = _mm256_subs_epu8(before<3>(input, previous),
                                          _mm256_set1_epi8(static_cast<char>(kFourthByteBias)));
  const __m256i mustContinue =
      _mm256_and_si256(_mm256_or_si256(third, fourth), _mm256_set1_epi8(static_cast<char>(0x80)));
  return _mm256_xor_si256(mustContinue, special);
}

// Non-zero where the block's last bytes open a sequence it does not close.
[[gnu::target("avx2")]] inline __m256i openAtEnd(__m256i input) noexcept {
  using namespace check_tables;
  const auto all = static_cast<char>(0xFF);
  const __m256i lastLeads = _mm256_setr_epi8(
      all, all, all, all, all, all, all, all, all, all, all, all, all, all, all, all, all, all, all,
      all, all, all, all, all, all, all, all, all, all, static_cast<char>(kLastLeadOf4),
      static_cast<char>(kLastLeadOf3), static_cast<char>(kLastLeadOf2));
  return _mm256_subs_epu8(input, lastLeads);
}

[[gnu::target("avx2")]] inline std::size_t validPrefix(const std::uint8_t* bytes,
                                                       std::size_t count) noexcept {
  constexpr std::size_t kBlock = sizeof(__m256i);
  __m256i previous = _mm256_setzero_si256();
  __m256i open = _mm256_setzero_si256();
  std::size_t at = 0;
  for (; count - at >= kBlock; at += kBlock) {
    const __m256i input = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + at));
    __m256i errors = open;
    if (_mm256_movemask_epi8(input) == 0) {
      open = _mm256_setzero_si256();
    } else {
      errors = blockErrors(input, previous);
      open = openAtEnd(input);
    }
    if (_mm256_testz_si256(errors, errors) == 0) break;
    previous = input;
  }
  const std::size_t restart = blocks::sequenceStartBefore(bytes, at);
  return restart + blocks::validPrefix<lanes::Avx2>(bytes + restart, count - restart);
}

}  // namespace zel::text::avx2_check

#endif

// Validation 16 bytes at a time with NEON table lookups, the same scheme as the AVX2 check.
#pragma once

#if defined(__aarch64__)

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

#include "text/simd_lanes.h"
#include "text/utf8_blocks.h"
#include "text/utf8_check_tables.h"

namespace zel::text::neon_check {

constexpr std::size_t kBlock = sizeof(uint8x16_t);

// The bytes `Distance` places before each byte of `input`, reaching into `previous`.
template <int Distance>
uint8x16_t before(uint8x16_t input, uint8x16_t previous) noexcept {
  return vextq_u8(previous, input, static_cast<int>(kBlock) - Distance);
}

inline uint8x16_t blockErrors(uint8x16_t input, uint8x16_t previous) noexcept {
  using namespace check_tables;
  constexpr int kHalfBits = 4;
  const uint8x16_t previous1 = before<1>(input, previous);
  const uint8x16_t special = vandq_u8(
      vandq_u8(vqtbl1q_u8(vld1q_u8(kPreviousHigh.data()), vshrq_n_u8(previous1, kHalfBits)),
               vqtbl1q_u8(vld1q_u8(kPreviousLow.data()), vandq_u8(previous1, vdupq_n_u8(0x0F)))),
      vqtbl1q_u8(vld1q_u8(kCurrentHigh.data()), vshrq_n_u8(input, kHalfBits)));
  const uint8x16_t third = vqsubq_u8(before<2>(input, previous), vdupq_n_u8(kThirdByteBias));
  const uint8x16_t fourth = vqsubq_u8(before<3>(input, previous), vdupq_n_u8(kFourthByteBias));
  const uint8x16_t mustContinue = vandq_u8(vorrq_u8(third, fourth), vdupq_n_u8(0x80));
  return veorq_u8(mustContinue, special);
}

// Non-zero where the block's last bytes open a sequence it does not close.
inline uint8x16_t openAtEnd(uint8x16_t input) noexcept {
  using namespace check_tables;
  constexpr std::uint8_t kAll = 0xFF;
  static constexpr std::uint8_t kLastLeads[kBlock] = {
      kAll, kAll, kAll, kAll, kAll, kAll,         kAll,         kAll,
      kAll, kAll, kAll, kAll, kAll, kLastLeadOf4, kLastLeadOf3, kLastLeadOf2};
  return vqsubq_u8(input, vld1q_u8(kLastLeads));
}

inline std::size_t validPrefix(const std::uint8_t* bytes, std::size_t count) noexcept {
  uint8x16_t previous = vdupq_n_u8(0);
  uint8x16_t open = vdupq_n_u8(0);
  std::size_t at = 0;
  for (; count - at >= kBlock; at += kBlock) {
    const uint8x16_t input = vld1q_u8(bytes + at);
    uint8x16_t errors = open;
    if (vmaxvq_u8(input) < kFirstNonAscii) {
      open = vdupq_n_u8(0);
    } else {
      errors = blockErrors(input, previous);
      open = openAtEnd(input);
    }
    if (vmaxvq_u8(errors) != 0) break;
    previous = input;
  }
  const std::size_t restart = blocks::sequenceStartBefore(bytes, at);
  return restart + blocks::validPrefix<lanes::Neon>(bytes + restart, count - restart);
}

}  // namespace zel::text::neon_check

#endif

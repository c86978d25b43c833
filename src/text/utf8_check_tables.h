// Vector UTF-8 checking by table lookups: three 16-entry tables, indexed by the high and low half
// of the byte before and the high half of the current byte, each give the set of errors that pair
// of bytes could be; an error is real when all three agree. Only the bits of these tables matter
// to the vector paths; the one-sequence rules stay the reference.
#pragma once

#include <array>
#include <cstdint>

namespace zel::text::check_tables {

inline constexpr std::uint8_t kTooShort = 1 << 0;      // lead then ASCII or another lead
inline constexpr std::uint8_t kTooLong = 1 << 1;       // ASCII then continuation
inline constexpr std::uint8_t kOverlong3 = 1 << 2;     // E0 then 80..9F
inline constexpr std::uint8_t kTooLarge = 1 << 3;      // F4 then 90..BF, or F5..FF
inline constexpr std::uint8_t kSurrogate = 1 << 4;     // ED then A0..BF
inline constexpr std::uint8_t kOverlong2 = 1 << 5;     // C0 or C1
inline constexpr std::uint8_t kOverlong4 = 1 << 6;     // F0 then 80..8F
inline constexpr std::uint8_t kTooLarge1000 = 1 << 6;  // F5..FF then 80..8F
inline constexpr std::uint8_t kTwoContinuations = 1 << 7;
inline constexpr std::uint8_t kCarry = kTooShort | kTooLong | kTwoContinuations;

using Table = std::array<std::uint8_t, 16>;

inline constexpr Table kPreviousHigh = {
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,  // ASCII
    kTwoContinuations,
    kTwoContinuations,
    kTwoContinuations,
    kTwoContinuations,                                    // 80..BF
    kTooShort | kOverlong2,                               // C0..CF
    kTooShort,                                            // D0..DF
    kTooShort | kOverlong3 | kSurrogate,                  // E0..EF
    kTooShort | kTooLarge | kTooLarge1000 | kOverlong4};  // F0..FF

inline constexpr Table kPreviousLow = {kCarry | kOverlong3 | kOverlong2 | kOverlong4,  // x0
                                       kCarry | kOverlong2,                            // x1
                                       kCarry,
                                       kCarry,
                                       kCarry | kTooLarge,                  // x4
                                       kCarry | kTooLarge | kTooLarge1000,  // x5..xC
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000 | kSurrogate,  // xD
                                       kCarry | kTooLarge | kTooLarge1000,
                                       kCarry | kTooLarge | kTooLarge1000};

inline constexpr Table kCurrentHigh = {
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,                                                                            // ASCII
    kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge1000 | kOverlong4,  // 8x
    kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge,                   // 9x
    kTooLong | kOverlong2 | kTwoContinuations | kSurrogate | kTooLarge,                   // Ax
    kTooLong | kOverlong2 | kTwoContinuations | kSurrogate | kTooLarge,                   // Bx
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort};  // leads

// A third or fourth byte must be a continuation: subtracting these (saturating) from the bytes two
// and three places before leaves the high bit set exactly there.
inline constexpr std::uint8_t kThirdByteBias = 0xE0 - 0x80;
inline constexpr std::uint8_t kFourthByteBias = 0xF0 - 0x80;

// The last three bytes of a block may open a sequence the block does not close.
inline constexpr std::uint8_t kLastLeadOf4 = 0xF0 - 1;
inline constexpr std::uint8_t kLastLeadOf3 = 0xE0 - 1;
inline constexpr std::uint8_t kLastLeadOf2 = 0xC0 - 1;

}  // namespace zel::text::check_tables

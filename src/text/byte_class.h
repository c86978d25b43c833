// Finding the next byte that needs attention: a set of byte values, searched a vector block at a
// time on the best path of the processor; every path gives the same offset as the portable one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace zel::text {

// A set of byte values in the shape the vector paths test cheaply: every value below a bound but
// a few gaps (tab and line breaks among the controls), optionally every value from 0x80 up, and a
// few single values.
class ByteClass {
 public:
  static constexpr std::size_t kMaxListed = 8;
  static constexpr std::size_t kMaxGaps = 4;
  static constexpr unsigned kValues = 256;
  static constexpr std::uint8_t kFirstHigh = 0x80;

  // A set that needs more than kMaxListed single values is refused (at compile time when the
  // class is a constant).
  template <class IsMember>
  constexpr explicit ByteClass(IsMember isMember) {
    for (unsigned b = 0; b < kValues; ++b) members_[b] = isMember(static_cast<std::uint8_t>(b));
    std::array<std::uint8_t, kMaxGaps> gaps{};
    std::size_t gapCount = 0;
    for (unsigned b = 0; b < kFirstHigh; ++b) {
      if (members_[b]) {
        below_ = static_cast<std::uint8_t>(b + 1);
        gaps_ = gaps;
        gapCount_ = gapCount;
      } else if (gapCount < kMaxGaps) {
        gaps[gapCount++] = static_cast<std::uint8_t>(b);
      } else {
        break;
      }
    }
    high_ = true;
    for (unsigned b = kFirstHigh; b < kValues; ++b) high_ = high_ && members_[b];
    for (unsigned b = below_; b < kValues; ++b) {
      if (!members_[b] || (high_ && b >= kFirstHigh)) continue;
      if (listedCount_ == kMaxListed) throw std::invalid_argument("too many single byte values");
      listed_[listedCount_++] = static_cast<std::uint8_t>(b);
    }
  }

  constexpr bool contains(std::uint8_t b) const noexcept { return members_[b]; }
  // Every value below this one is a member, but the gaps.
  constexpr std::uint8_t below() const noexcept { return below_; }
  constexpr std::span<const std::uint8_t> gaps() const noexcept {
    return {gaps_.data(), gapCount_};
  }
  // Every value from 0x80 up is a member.
  constexpr bool high() const noexcept { return high_; }
  // The members that neither of the two ranges covers.
  constexpr std::span<const std::uint8_t> listed() const noexcept {
    return {listed_.data(), listedCount_};
  }

 private:
  std::array<bool, kValues> members_{};
  std::uint8_t below_ = 0;
  std::array<std::uint8_t, kMaxGaps> gaps_{};
  std::size_t gapCount_ = 0;
  bool high_ = false;
  std::array<std::uint8_t, kMaxListed> listed_{};
  std::size_t listedCount_ = 0;
};

// Offset of the first byte that belongs to `members`, or bytes.size() when none does.
std::size_t findByteInClass(std::span<const std::uint8_t> bytes, const ByteClass& members) noexcept;

}  // namespace zel::text

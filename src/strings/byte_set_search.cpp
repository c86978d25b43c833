#include "strings/byte_set_search.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "text/simd_path.h"

namespace zel::strings {
namespace {

// A set of a few runs of consecutive values is tested with one unsigned comparison per run,
// which the compiler turns into vector code; a more scattered set is looked up byte by byte.
constexpr std::size_t kMostComparedRuns = 8;
constexpr std::size_t kBlockBytes = 128;
// Below this many bytes finding the runs costs more than the vector loop saves.
constexpr std::size_t kLeastBytesForRuns = 4 * kBlockBytes;

// The values first to first + width.
struct ByteRun {
  std::uint8_t first;
  std::uint8_t width;
};

struct ByteRuns {
  std::array<ByteRun, kMostComparedRuns> runs{};
  std::size_t count = 0;
  bool fits = true;
};

ByteRuns runsOf(const ByteSet& members) noexcept {
  ByteRuns found;
  for (std::size_t value = 0; value < members.size(); ++value) {
    if (!members[value]) continue;
    std::size_t last = value;
    while (last + 1 < members.size() && members[last + 1]) ++last;
    if (found.count == kMostComparedRuns) {
      found.fits = false;
      return found;
    }
    found.runs[found.count++] = {static_cast<std::uint8_t>(value),
                                 static_cast<std::uint8_t>(last - value)};
    value = last;
  }
  return found;
}

// Offset of the first whole block that holds a member, or of the bytes after the last whole
// block.
[[gnu::always_inline]] inline std::size_t firstBlockWithMember(const std::uint8_t* bytes,
                                                               std::size_t count,
                                                               const ByteRuns& set) noexcept {
  std::size_t at = 0;
  for (; count - at >= kBlockBytes; at += kBlockBytes) {
    // Per byte, kept apart until the block is done so that the loops stay vector code.
    std::array<std::uint8_t, kBlockBytes> hits{};
    for (std::size_t r = 0; r < set.count; ++r) {
      const ByteRun run = set.runs[r];
      for (std::size_t k = 0; k < kBlockBytes; ++k) {
        hits[k] |= static_cast<std::uint8_t>(static_cast<std::uint8_t>(bytes[at + k] - run.first) <=
                                             run.width);
      }
    }
    // Word by word: the compiler reduces words with far fewer steps than bytes.
    std::uint64_t any = 0;
    for (std::size_t k = 0; k < kBlockBytes; k += sizeof any) {
      std::uint64_t word;
      std::memcpy(&word, hits.data() + k, sizeof word);
      any |= word;
    }
    if (any != 0) break;
  }
  return at;
}

std::size_t firstBlockPortable(const std::uint8_t* bytes, std::size_t count,
                               const ByteRuns& set) noexcept {
  return firstBlockWithMember(bytes, count, set);
}

#if defined(__x86_64__)
// The same loop compiled for AVX2, only reached after the processor was found to run it.
[[gnu::target("avx2")]] std::size_t firstBlockAvx2(const std::uint8_t* bytes, std::size_t count,
                                                   const ByteRuns& set) noexcept {
  return firstBlockWithMember(bytes, count, set);
}
#endif

std::size_t firstBlock(const std::uint8_t* bytes, std::size_t count, const ByteRuns& set) noexcept {
#if defined(__x86_64__)
  if (text::activeSimdPath() == text::SimdPath::avx2) return firstBlockAvx2(bytes, count, set);
#endif
  return firstBlockPortable(bytes, count, set);
}

}  // namespace

std::size_t findByteInSet(std::string_view bytes, const ByteSet& members) noexcept {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  std::size_t from = 0;
  if (bytes.size() >= kLeastBytesForRuns) {
    const ByteRuns set = runsOf(members);
    if (set.fits && set.count == 0) return bytes.size();
    if (set.fits) from = firstBlock(data, bytes.size(), set);
  }
  const auto* found =
      std::find_if(data + from, data + bytes.size(), [&](std::uint8_t b) { return members[b]; });
  return static_cast<std::size_t>(found - data);
}

}  // namespace zel::strings

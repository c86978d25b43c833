#include "strings/string_distance.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "base/out_of_memory_error.h"

namespace zel::strings {
namespace {

constexpr std::size_t kWordBits = 64;
// The match flags carry four spare bytes, which a failed allocation reports in its count.
constexpr std::size_t kMatchFlagSlack = 4;

template <typename T>
std::vector<T> allocateScratch(std::size_t count, T initial = T{}) {
  try {
    return std::vector<T>(count, initial);
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError::forBytes(count * sizeof(T));
  }
}

// For every unit of the pattern, a bit vector of the positions where it occurs, in words of 64.
// Slot 0 is all zeros and stands for every unit the pattern does not contain.
class MatchVectors {
 public:
  explicit MatchVectors(std::u16string_view pattern)
      : words_((pattern.size() + kWordBits - 1) / kWordBits) {
    auto units = allocateScratch<char16_t>(pattern.size());
    std::copy(pattern.begin(), pattern.end(), units.begin());
    std::sort(units.begin(), units.end());
    units.erase(std::unique(units.begin(), units.end()), units.end());
    const auto firstHigh =
        std::lower_bound(units.begin(), units.end(), static_cast<char16_t>(lowSlots_.size()));
    for (auto unit = units.begin(); unit != firstHigh; ++unit) {
      lowSlots_[*unit] = static_cast<std::uint32_t>(++lowCount_);
    }
    highUnits_ = allocateScratch<char16_t>(static_cast<std::size_t>(units.end() - firstHigh));
    std::copy(firstHigh, units.end(), highUnits_.begin());
    bits_ = allocateScratch<std::uint64_t>((units.size() + 1) * words_);
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      bits_[slotOf(pattern[i]) * words_ + i / kWordBits] |= std::uint64_t{1} << (i % kWordBits);
    }
  }

  std::size_t words() const { return words_; }
  const std::uint64_t* of(char16_t unit) const { return &bits_[slotOf(unit) * words_]; }

 private:
  std::size_t slotOf(char16_t unit) const {
    if (unit < lowSlots_.size()) return lowSlots_[unit];
    const auto found = std::lower_bound(highUnits_.begin(), highUnits_.end(), unit);
    if (found == highUnits_.end() || *found != unit) return 0;
    return lowCount_ + 1 + static_cast<std::size_t>(found - highUnits_.begin());
  }

  std::size_t words_;
  std::array<std::uint32_t, 256> lowSlots_{};
  std::size_t lowCount_ = 0;
  std::vector<char16_t> highUnits_;
  std::vector<std::uint64_t> bits_;
};

// A bit per position of each unit of a text of at most one word's length, kept on the stack so
// that short distances need no heap. Open addressing; an empty slot has no bits.
class ShortMatchTable {
 public:
  explicit ShortMatchTable(std::u16string_view text) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const std::size_t slot = slotOf(text[i]);
      keys_[slot] = text[i];
      bits_[slot] |= std::uint64_t{1} << i;
    }
  }

  std::uint64_t of(char16_t unit) const noexcept { return bits_[slotOf(unit)]; }

 private:
  // Twice as many slots as a word has positions, so probes stay short.
  static constexpr std::size_t kSlots = 2 * kWordBits;
  static constexpr int kSlotBits = std::countr_zero(kSlots);
  static constexpr std::uint32_t kFibonacciMultiplier = 0x9E3779B1U;

  // The unit's slot, or the empty slot where it would go.
  std::size_t slotOf(char16_t unit) const noexcept {
    std::size_t slot = (unit * kFibonacciMultiplier) >> (32 - kSlotBits);
    while (bits_[slot] != 0 && keys_[slot] != unit) slot = (slot + 1) % kSlots;
    return slot;
  }

  std::array<char16_t, kSlots> keys_{};
  std::array<std::uint64_t, kSlots> bits_{};
};

// The single-word form of the bit-parallel distance below, for patterns of at most 64 units.
std::size_t shortAlignmentDistance(std::u16string_view pattern, std::u16string_view text) noexcept {
  const ShortMatchTable match(pattern);
  const std::uint64_t lastBit = std::uint64_t{1} << (pattern.size() - 1);
  std::uint64_t positive = ~std::uint64_t{0}, negative = 0, diagonal = 0, previousMatch = 0;
  std::size_t distance = pattern.size();
  for (const char16_t unit : text) {
    const std::uint64_t eq = match.of(unit);
    const std::uint64_t transposed = ((~diagonal & eq) << 1) & previousMatch;
    const std::uint64_t d0 = (((eq & positive) + positive) ^ positive) | eq | negative | transposed;
    const std::uint64_t hp = negative | ~(d0 | positive);
    const std::uint64_t hn = d0 & positive;
    distance += (hp & lastBit) ? 1 : 0;
    distance -= (hn & lastBit) ? 1 : 0;
    const std::uint64_t hpShifted = (hp << 1) | 1;
    const std::uint64_t hnShifted = hn << 1;
    positive = hnShifted | ~(d0 | hpShifted);
    negative = hpShifted & d0;
    diagonal = d0;
    previousMatch = eq;
  }
  return distance;
}

// Bit-parallel optimal string alignment distance (Hyyro 2003): one column of the distance
// matrix per text unit, as vertical deltas packed into words.
std::size_t alignmentDistance(std::u16string_view pattern, std::u16string_view text) {
  const MatchVectors match(pattern);
  const std::size_t words = match.words();
  auto positive = allocateScratch<std::uint64_t>(words, ~std::uint64_t{0});
  auto negative = allocateScratch<std::uint64_t>(words);
  auto diagonal = allocateScratch<std::uint64_t>(words);
  auto previousMatch = allocateScratch<std::uint64_t>(words);
  const std::uint64_t lastBit = std::uint64_t{1} << ((pattern.size() - 1) % kWordBits);
  std::size_t distance = pattern.size();

  for (const char16_t unit : text) {
    const std::uint64_t* matches = match.of(unit);
    std::uint64_t sumCarry = 0, transposeCarry = 0, raiseCarry = 1, lowerCarry = 0;
    for (std::size_t w = 0; w < words; ++w) {
      const std::uint64_t eq = matches[w], vp = positive[w], vn = negative[w];
      const std::uint64_t swappable = ~diagonal[w] & eq;
      const std::uint64_t transposed = ((swappable << 1) | transposeCarry) & previousMatch[w];
      transposeCarry = swappable >> (kWordBits - 1);

      const std::uint64_t addend = eq & vp;
      const std::uint64_t partial = addend + vp;
      const std::uint64_t sum = partial + sumCarry;
      sumCarry = (partial < addend || sum < partial) ? 1 : 0;

      const std::uint64_t d0 = (sum ^ vp) | eq | vn | transposed;
      const std::uint64_t hp = vn | ~(d0 | vp);
      const std::uint64_t hn = d0 & vp;
      if (w + 1 == words) {
        distance += (hp & lastBit) ? 1 : 0;
        distance -= (hn & lastBit) ? 1 : 0;
      }
      const std::uint64_t hpShifted = (hp << 1) | raiseCarry;
      const std::uint64_t hnShifted = (hn << 1) | lowerCarry;
      raiseCarry = hp >> (kWordBits - 1);
      lowerCarry = hn >> (kWordBits - 1);
      positive[w] = hnShifted | ~(d0 | hpShifted);
      negative[w] = hpShifted & d0;
      diagonal[w] = d0;
      previousMatch[w] = eq;
    }
  }
  return distance;
}

// b's positions grouped by unit, each group in ascending order, with a cursor per group: the
// windows only move forward, so a group's positions below the window are never wanted again.
class PositionsByUnit {
 public:
  explicit PositionsByUnit(std::u16string_view text)
      : text_(text),
        order_(allocateScratch<std::uint32_t>(text.size())),
        cursor_(allocateScratch<std::uint32_t>(text.size())) {
    std::iota(order_.begin(), order_.end(), 0U);
    std::stable_sort(order_.begin(), order_.end(),
                     [text](std::uint32_t x, std::uint32_t y) { return text[x] < text[y]; });
    std::iota(cursor_.begin(), cursor_.end(), 0U);
  }

  // The first position of unit in [low, high) not taken before, taken now; high when none.
  std::size_t take(char16_t unit, std::size_t low, std::size_t high) {
    const auto group =
        std::lower_bound(order_.begin(), order_.end(), unit,
                         [this](std::uint32_t p, char16_t u) { return text_[p] < u; });
    if (group == order_.end() || text_[*group] != unit) return high;
    std::uint32_t& next = cursor_[static_cast<std::size_t>(group - order_.begin())];
    while (next < order_.size() && text_[order_[next]] == unit && order_[next] < low) ++next;
    if (next >= order_.size() || text_[order_[next]] != unit || order_[next] >= high) return high;
    return order_[next++];
  }

 private:
  std::u16string_view text_;
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> cursor_;
};

// The Jaro similarity from the matching counts, with the Winkler boost for a shared prefix.
double jaroWinkler(std::u16string_view a, std::u16string_view b, std::size_t matches,
                   std::size_t transpositions) noexcept {
  const std::size_t n = a.size(), m = b.size();
  const auto matched = static_cast<double>(matches);
  const double jaro = (matched / static_cast<double>(m) + matched / static_cast<double>(n) +
                       static_cast<double>(matches - transpositions / 2) / matched) /
                      3.0;
  if (jaro <= 0.7) return jaro;
  const std::size_t prefixLimit = std::min({m, n, std::size_t{4}});
  const auto prefix = static_cast<std::size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(prefixLimit), b.begin())
          .first -
      a.begin());
  if (prefix == 0) return jaro;
  return jaro + static_cast<double>(prefix) * 0.1 * (1.0 - jaro);
}

std::size_t matchWindow(std::size_t n, std::size_t m) noexcept {
  const std::size_t longer = std::max(n, m);
  return longer / 2 >= 1 ? longer / 2 - 1 : 0;
}

std::uint64_t bitsBelow(std::size_t count) noexcept {
  return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

// Both texts fit a word: the matched flags are words, and a unit's first free match in its window
// is the lowest bit left.
double shortJaroWinklerSimilarity(std::u16string_view a, std::u16string_view b) noexcept {
  const std::size_t n = a.size(), m = b.size();
  const std::size_t window = matchWindow(n, m);
  const ShortMatchTable positions(b);
  std::uint64_t matchedA = 0, matchedB = 0;
  std::size_t matches = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t low = i > window ? i - window : 0;
    const std::size_t high = std::min(m, i + window + 1);
    if (low >= high) continue;
    const std::uint64_t free = positions.of(a[i]) & bitsBelow(high) & ~bitsBelow(low) & ~matchedB;
    if (free == 0) continue;
    matchedB |= free & (~free + 1);
    matchedA |= std::uint64_t{1} << i;
    ++matches;
  }
  if (matches == 0) return 0.0;

  std::size_t transpositions = 0;
  for (; matchedA != 0; matchedA &= matchedA - 1, matchedB &= matchedB - 1) {
    const auto i = static_cast<std::size_t>(std::countr_zero(matchedA));
    const auto j = static_cast<std::size_t>(std::countr_zero(matchedB));
    if (a[i] != b[j]) ++transpositions;
  }
  return jaroWinkler(a, b, matches, transpositions);
}

double jaroWinklerSimilarity(std::u16string_view a, std::u16string_view b) {
  const std::size_t n = a.size(), m = b.size();
  const std::size_t window = matchWindow(n, m);
  auto matchedA = allocateScratch<char>(n + kMatchFlagSlack);
  auto matchedB = allocateScratch<char>(m + kMatchFlagSlack);
  PositionsByUnit positions(b);

  std::size_t matches = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t low = i > window ? i - window : 0;
    const std::size_t high = std::min(m, i + window + 1);
    if (low >= high) continue;
    const std::size_t j = positions.take(a[i], low, high);
    if (j == high) continue;
    matchedA[i] = matchedB[j] = 1;
    ++matches;
  }
  if (matches == 0) return 0.0;

  std::size_t transpositions = 0;
  for (std::size_t i = 0, j = 0; i < n; ++i) {
    if (!matchedA[i]) continue;
    while (!matchedB[j]) ++j;
    transpositions += a[i] != b[j++] ? 1 : 0;
  }

  return jaroWinkler(a, b, matches, transpositions);
}

}  // namespace

double levenshteinDistance(std::u16string_view a, std::u16string_view b) {
  if (a.empty() || b.empty()) return 1.0;
  const auto shorter = static_cast<double>(std::min(a.size(), b.size()));
  // A shared prefix or suffix never takes part in an optimal alignment.
  const std::size_t prefix = static_cast<std::size_t>(
      std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
  a.remove_prefix(prefix);
  b.remove_prefix(prefix);
  const std::size_t suffix = static_cast<std::size_t>(
      std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first - a.rbegin());
  a.remove_suffix(suffix);
  b.remove_suffix(suffix);
  if (a.size() > b.size()) std::swap(a, b);
  std::size_t distance = b.size();
  if (!a.empty()) {
    distance = a.size() <= kWordBits ? shortAlignmentDistance(a, b) : alignmentDistance(a, b);
  }
  if (distance == 0) return 0.0;
  return 1.0 / (shorter / static_cast<double>(distance));
}

double jaroWinklerDistance(std::u16string_view a, std::u16string_view b) {
  if (a.empty()) return b.empty() ? 0.0 : 1.0;
  if (b.empty()) return 1.0;
  const bool fitsAWord = a.size() <= kWordBits && b.size() <= kWordBits;
  return 1.0 - (fitsAWord ? shortJaroWinklerSimilarity(a, b) : jaroWinklerSimilarity(a, b));
}

}  // namespace zel::strings
